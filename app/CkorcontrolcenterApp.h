// The application: it shows its dialog and ends with it.
#pragma once

#include <afxwin.h>

class CkorcontrolcenterApp : public CWinApp {
public:
    BOOL InitInstance() override;
};

extern CkorcontrolcenterApp theApp;
