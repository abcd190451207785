// The part of the Microsoft Foundation Classes' documented interface that the dialog is written
// against: windows, message maps, dialogs and the application object. A free tool chain has no
// MFC; with this folder the dialog is ordinary MFC source.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>

class CWnd;

// What the message map macros build: handlers of a class, then those of its base.
struct AFX_MSGMAP_ENTRY {
    UINT nMessage;
    LRESULT (*pfnHandler)(CWnd& window, WPARAM wParam, LPARAM lParam);
};
struct AFX_MSGMAP {
    const AFX_MSGMAP* pBaseMap;
    const AFX_MSGMAP_ENTRY* lpEntries; // ended by an entry without a handler
};

#define afx_msg

#define DECLARE_MESSAGE_MAP()                                                                      \
protected:                                                                                         \
    static const AFX_MSGMAP* GetThisMessageMap();                                                  \
    const AFX_MSGMAP* GetMessageMap() const override;

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are class names
#define BEGIN_MESSAGE_MAP(theClass, baseClass)                                                     \
    const AFX_MSGMAP* theClass::GetMessageMap() const {                                            \
        return GetThisMessageMap();                                                                \
    }                                                                                              \
    const AFX_MSGMAP* theClass::GetThisMessageMap() {                                              \
        using ThisClass = theClass;                                                                \
        using BaseClass = baseClass;                                                               \
        static const AFX_MSGMAP_ENTRY entries[] = {
// NOLINTEND(bugprone-macro-parentheses)

#define ON_WM_PAINT()                                                                              \
    {WM_PAINT, [](CWnd& window, WPARAM, LPARAM) -> LRESULT {                                       \
         static_cast<ThisClass&>(window).OnPaint();                                                \
         return 0;                                                                                 \
     }},
#define ON_WM_GETMINMAXINFO()                                                                      \
    {WM_GETMINMAXINFO, [](CWnd& window, WPARAM, LPARAM lParam) -> LRESULT {                        \
         static_cast<ThisClass&>(window).OnGetMinMaxInfo(reinterpret_cast<MINMAXINFO*>(lParam));   \
         return 0;                                                                                 \
     }},
// Windows of others have no objects: the other window is null.
#define ON_WM_ACTIVATE()                                                                           \
    {WM_ACTIVATE, [](CWnd& window, WPARAM wParam, LPARAM) -> LRESULT {                             \
         static_cast<ThisClass&>(window).OnActivate(LOWORD(wParam), nullptr, HIWORD(wParam) != 0); \
         return 0;                                                                                 \
     }},
#define ON_WM_SETFOCUS()                                                                           \
    {WM_SETFOCUS, [](CWnd& window, WPARAM, LPARAM) -> LRESULT {                                    \
         static_cast<ThisClass&>(window).OnSetFocus(nullptr);                                      \
         return 0;                                                                                 \
     }},
#define ON_WM_SIZE()                                                                               \
    {WM_SIZE, [](CWnd& window, WPARAM wParam, LPARAM lParam) -> LRESULT {                          \
         static_cast<ThisClass&>(window).OnSize(static_cast<UINT>(wParam), LOWORD(lParam),         \
                                                HIWORD(lParam));                                   \
         return 0;                                                                                 \
     }},
#define ON_WM_SHOWWINDOW()                                                                         \
    {WM_SHOWWINDOW, [](CWnd& window, WPARAM wParam, LPARAM lParam) -> LRESULT {                    \
         static_cast<ThisClass&>(window).OnShowWindow(wParam != 0, static_cast<UINT>(lParam));     \
         return 0;                                                                                 \
     }},
#define ON_WM_DESTROY()                                                                            \
    {WM_DESTROY, [](CWnd& window, WPARAM, LPARAM) -> LRESULT {                                     \
         static_cast<ThisClass&>(window).OnDestroy();                                              \
         return 0;                                                                                 \
     }},

#define END_MESSAGE_MAP()                                                                          \
    {                                                                                              \
        0, nullptr                                                                                 \
    }                                                                                              \
    }                                                                                              \
    ;                                                                                              \
    static const AFX_MSGMAP map = {BaseClass::GetThisMessageMap(), entries};                       \
    return &map;                                                                                   \
    }

// A window. The object does not own the window; it learns of the window's end.
class CWnd {
public:
    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;
    virtual ~CWnd();

    BOOL IsIconic() const { return ::IsIconic(m_hWnd); }
    void GetClientRect(LPRECT lpRect) const { ::GetClientRect(m_hWnd, lpRect); }
    HICON SetIcon(HICON hIcon, BOOL bBigIcon);
    void SetWindowText(LPCTSTR lpszString) { ::SetWindowText(m_hWnd, lpszString); }
    BOOL SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags);
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    int MessageBox(LPCTSTR lpszText, LPCTSTR lpszCaption = nullptr, UINT nType = MB_OK);

    // Puts the message map before the window's own procedure.
    BOOL SubclassWindow(HWND hWnd);

    HWND m_hWnd = nullptr;

protected:
    static const AFX_MSGMAP* GetThisMessageMap() { return nullptr; }
    virtual const AFX_MSGMAP* GetMessageMap() const { return nullptr; }
    // Takes the message through the message map.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // Has the window's own procedure treat the message that is being handled.
    LRESULT Default();

    afx_msg void OnPaint() { Default(); }
    afx_msg void OnActivate(UINT nState, CWnd* pWndOther, BOOL bMinimized);
    afx_msg void OnSetFocus(CWnd* pOldWnd);
    afx_msg void OnSize(UINT nType, int cx, int cy);
    afx_msg void OnShowWindow(BOOL bShow, UINT nStatus);
    afx_msg void OnDestroy() { Default(); }

private:
    static LRESULT CALLBACK WindowProcedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);

    WNDPROC m_superProcedure = nullptr;
    MSG m_currentMessage{};
};

// The device context of one WM_PAINT.
class CPaintDC {
public:
    explicit CPaintDC(CWnd* pWnd);
    CPaintDC(const CPaintDC&) = delete;
    CPaintDC& operator=(const CPaintDC&) = delete;
    ~CPaintDC();

    HDC GetSafeHdc() const { return m_ps.hdc; }
    BOOL DrawIcon(int x, int y, HICON hIcon) { return ::DrawIcon(m_ps.hdc, x, y, hIcon); }

    PAINTSTRUCT m_ps{};

private:
    HWND m_window;
};

// A dialog made from a template of the program's resources. Its message map gets the messages of
// the window's creation too. The window begins no larger than the work area.
class CDialog : public CWnd {
public:
    explicit CDialog(UINT nIDTemplate, CWnd* pParentWnd = nullptr);

    // Runs until EndDialog, the quit message or the end of the window. -1 when the window could not
    // be made, IDABORT when it did not end by EndDialog. The quit message is posted again for outer
    // loops.
    virtual INT_PTR DoModal();
    void EndDialog(int nResult);

    virtual BOOL OnInitDialog() { return TRUE; }
    // TRUE when the message was used up and must not be dispatched.
    virtual BOOL PreTranslateMessage(MSG* pMsg);

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    virtual void OnOK() { EndDialog(IDOK); }
    virtual void OnCancel() { EndDialog(IDCANCEL); }

private:
    static INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam,
                                            LPARAM lParam);
    static LRESULT CALLBACK CreationHook(int code, WPARAM wParam, LPARAM lParam);
    bool CreateWindowOf(HWND parent);
    // The exit code when the quit message ended it.
    std::optional<int> RunModalLoop();

    UINT m_templateId;
    CWnd* m_pParentWnd;
    int m_modalResult = IDABORT;
    bool m_running = false;
    bool m_creating = false;
};

// The application. There is exactly one, and it lives as long as the program.
class CWinApp {
public:
    CWinApp();
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;
    virtual ~CWinApp();

    // The program ends when it returns; what is to be shown is shown in here.
    virtual BOOL InitInstance();
    HICON LoadIcon(UINT nIDResource) const;
    // The name under which the application keeps its settings; the text is copied.
    void SetRegistryKey(LPCTSTR lpszRegistryKey);

    CWnd* m_pMainWnd = nullptr;
    LPCTSTR m_pszRegistryKey = nullptr;

private:
    std::unique_ptr<wchar_t[]> m_registryKey;
};

CWinApp* AfxGetApp();
