// The application object.
#include "mfc/afxwin.h"

namespace {

CWinApp* g_application = nullptr;

} // namespace

CWinApp::CWinApp() {
    g_application = this;
}

CWinApp::~CWinApp() {
    g_application = nullptr;
}

BOOL CWinApp::InitInstance() {
    return TRUE;
}

HICON CWinApp::LoadIcon(UINT nIDResource) const {
    return ::LoadIcon(GetModuleHandle(nullptr), MAKEINTRESOURCE(nIDResource));
}

CWinApp* AfxGetApp() {
    return g_application;
}
