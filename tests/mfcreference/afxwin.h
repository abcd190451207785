// What app/ uses of MFC, declared as MFC's public reference declares it: signatures, return types,
// what a macro asks of a handler. Nothing is defined, so app/ is compiled against it and not
// linked.
#pragma once

#ifdef _INC_WINDOWS
#error MFC includes windows.h itself and refuses one that came before it
#endif
#include <windows.h>

class CWnd;
class CDC;

#define afx_msg
struct AFX_MSGMAP;

#define DECLARE_MESSAGE_MAP()                                                                      \
protected:                                                                                         \
    static const AFX_MSGMAP* PASCAL GetThisMessageMap();                                           \
    const AFX_MSGMAP* GetMessageMap() const override;

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are names
// Entries are checked for the handler's signature, within the class's own scope.
#define BEGIN_MESSAGE_MAP(theClass, baseClass)                                                     \
    const AFX_MSGMAP* theClass::GetMessageMap() const {                                            \
        return GetThisMessageMap();                                                                \
    }                                                                                              \
    const AFX_MSGMAP* PASCAL theClass::GetThisMessageMap() {                                       \
        using ThisClass [[maybe_unused]] = theClass;                                               \
        static_cast<void>(static_cast<const AFX_MSGMAP* (*)()>(&baseClass::GetThisMessageMap));
#define ON_WM_PAINT() static_cast<void>(static_cast<void (ThisClass::*)()>(&ThisClass::OnPaint));
#define ON_WM_GETMINMAXINFO()                                                                      \
    static_cast<void>(static_cast<void (ThisClass::*)(MINMAXINFO*)>(&ThisClass::OnGetMinMaxInfo));
#define END_MESSAGE_MAP()                                                                          \
    return nullptr;                                                                                \
    }
// NOLINTEND(bugprone-macro-parentheses)

class CObject {
public:
    virtual ~CObject();
    CObject(const CObject&) = delete;
    void operator=(const CObject&) = delete;

protected:
    CObject() = default;
};

class CCmdTarget : public CObject {
protected:
    static const AFX_MSGMAP* PASCAL GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;
};

class CWnd : public CCmdTarget {
public:
    BOOL IsIconic() const;
    void GetClientRect(LPRECT lpRect) const;
    HICON SetIcon(HICON hIcon, BOOL bBigIcon);
    void SetWindowText(LPCTSTR lpszString);
    BOOL SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags);
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    int MessageBox(LPCTSTR lpszText, LPCTSTR lpszCaption = nullptr, UINT nType = MB_OK);

    HWND m_hWnd;

protected:
    static const AFX_MSGMAP* PASCAL GetThisMessageMap();
    const AFX_MSGMAP* GetMessageMap() const override;
    afx_msg void OnPaint();
    afx_msg void OnGetMinMaxInfo(MINMAXINFO* lpMMI);
};

class CDC : public CObject {
public:
    HDC GetSafeHdc() const;
    BOOL DrawIcon(int x, int y, HICON hIcon);
    BOOL DrawIcon(POINT point, HICON hIcon);
};

class CPaintDC : public CDC {
public:
    explicit CPaintDC(CWnd* pWnd);
    ~CPaintDC() override;

    PAINTSTRUCT m_ps;
};

class CDialog : public CWnd {
public:
    explicit CDialog(LPCTSTR lpszTemplateName, CWnd* pParentWnd = nullptr);
    explicit CDialog(UINT nIDTemplate, CWnd* pParentWnd = nullptr);
    CDialog();

    virtual INT_PTR DoModal();
    virtual BOOL OnInitDialog();
    void EndDialog(int nResult);

protected:
    static const AFX_MSGMAP* PASCAL GetThisMessageMap();
    const AFX_MSGMAP* GetMessageMap() const override;
    virtual void OnOK();
    virtual void OnCancel();
};

class CWinThread : public CCmdTarget {
public:
    virtual BOOL InitInstance();

    CWnd* m_pMainWnd;
};

class CWinApp : public CWinThread {
public:
    explicit CWinApp(LPCTSTR lpszAppName = nullptr);

    BOOL InitInstance() override;
    HICON LoadIcon(LPCTSTR lpszResourceName) const;
    HICON LoadIcon(UINT nIDResource) const;

    LPCTSTR m_pszRegistryKey;

protected:
    void SetRegistryKey(LPCTSTR lpszRegistryKey);
    void SetRegistryKey(UINT nIDRegistryKey);
};

CWinApp* AfxGetApp();
