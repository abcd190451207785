// The one way in which a fatal message reaches the user.
#pragma once

// Shows the message with the caption; style is that of MessageBoxW. A process in the services
// session sends it to the console session instead. Returns the button that was pressed.
// May be called from any thread.
int ReportFatalError(const wchar_t* message, const wchar_t* caption, unsigned int style);
