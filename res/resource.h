// The ids of the program's resources.
#pragma once

#define IDD_KORCONTROLCENTER_DIALOG 102
#define IDR_HTML_KORCONTROLCENTER_DIALOG 129
#define IDR_MAINFRAME 134
