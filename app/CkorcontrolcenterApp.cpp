// What the application does when it starts.
#include "app/CkorcontrolcenterApp.h"

#include <commctrl.h>

#include "app/CkorcontrolcenterDlg.h"

CkorcontrolcenterApp theApp;

BOOL CkorcontrolcenterApp::InitInstance() {
    INITCOMMONCONTROLSEX controls = {};
    controls.dwSize = sizeof(controls);
    controls.dwICC = ICC_WIN95_CLASSES;
    InitCommonControlsEx(&controls);

    CWinApp::InitInstance();
    SetRegistryKey(L"KOR Control Center");

    CkorcontrolcenterDlg dialog;
    m_pMainWnd = &dialog;
    dialog.DoModal();
    return FALSE;
}
