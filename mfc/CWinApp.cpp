// The application object.
#include "mfc/afxwin.h"

#include <cwchar>

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

void CWinApp::SetRegistryKey(LPCTSTR lpszRegistryKey) {
    m_registryKey = std::make_unique<wchar_t[]>(std::wcslen(lpszRegistryKey) + 1);
    std::wcscpy(m_registryKey.get(), lpszRegistryKey);
    m_pszRegistryKey = m_registryKey.get();
}

CWinApp* AfxGetApp() {
    return g_application;
}
