// Dialogs whose user interface is an HTML page of the program's resources: the part of MFC's
// documented CDHtmlDialog that the dialog uses.
#pragma once

#include "mfc/afxwin.h"
#include "mfc/atlcomcli.h"

#include <exdisp.h>
#include <mshtmdid.h>
#include <mshtmhst.h>
#include <mshtml.h>

#include <memory>
#include <optional>

class BrowserSite;
class CDHtmlEventSink;
class EventSink;

// What the DHTML event map macros build: events of the elements of a class, served at the level of
// the document.
struct DHtmlEventMapEntry {
    DISPID dispId;
    LPCTSTR szName; // of the class; null ends the map
    HRESULT (*pfnHandler)(CDHtmlEventSink& sink, IHTMLElement* pElement);
};

// What receives the events of a page's elements.
class CDHtmlEventSink {
public:
    CDHtmlEventSink() = default;
    CDHtmlEventSink(const CDHtmlEventSink&) = delete;
    CDHtmlEventSink& operator=(const CDHtmlEventSink&) = delete;
    virtual ~CDHtmlEventSink() = default;

protected:
    virtual const DHtmlEventMapEntry* GetDHtmlEventMap() = 0;
};

#define DECLARE_DHTML_EVENT_MAP()                                                                  \
protected:                                                                                         \
    const DHtmlEventMapEntry* GetDHtmlEventMap() override;

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are names
#define BEGIN_DHTML_EVENT_MAP(className)                                                           \
    const DHtmlEventMapEntry* className::GetDHtmlEventMap() {                                      \
        using ThisClass = className;                                                               \
        static const DHtmlEventMapEntry entries[] = {
#define DHTML_EVENT_CLASS(dispid, elemName, memberFxn)                                             \
    {static_cast<DISPID>(dispid), elemName,                                                        \
     [](CDHtmlEventSink& sink, IHTMLElement* element) -> HRESULT {                                 \
         return static_cast<ThisClass&>(sink).memberFxn(element);                                  \
     }},
#define END_DHTML_EVENT_MAP()                                                                      \
    {                                                                                              \
        0, nullptr, nullptr                                                                        \
    }                                                                                              \
    }                                                                                              \
    ;                                                                                              \
    return entries;                                                                                \
    }
// NOLINTEND(bugprone-macro-parentheses)

// The thread's OLE. It stands before every interface pointer of the dialog, so it ends after them.
class OleSession {
public:
    OleSession() : m_result(OleInitialize(nullptr)) {}
    OleSession(const OleSession&) = delete;
    OleSession& operator=(const OleSession&) = delete;
    ~OleSession() {
        if (SUCCEEDED(m_result)) {
            OleUninitialize();
        }
    }

private:
    HRESULT m_result;
};

// Gives up the reference with which an object was made.
struct ComRelease {
    template <typename Object>
    void operator()(Object* object) const {
        object->Release();
    }
};

// A dialog that shows the HTML page of a resource in its whole client area. Without the browser
// control, or without the page, the dialog stays empty.
class CDHtmlDialog : public CDialog, public CDHtmlEventSink {
public:
    CDHtmlDialog(UINT nIDTemplate, UINT nHtmlResID, CWnd* pParentWnd = nullptr);
    ~CDHtmlDialog() override;

    // To be called before OnInitDialog: DOCHOSTUIFLAG_...
    void SetHostFlags(DWORD dwFlags) { m_hostFlags = dwFlags; }
    // One reference goes to the caller. *pphtmlElement is null when there is no such element, and
    // when the call fails, as it does where several elements have the id.
    // Throws _com_error when there is no memory for the name.
    HRESULT GetElement(LPCTSTR szElementId, IHTMLElement** pphtmlElement);

    BOOL OnInitDialog() override;
    BOOL PreTranslateMessage(MSG* pMsg) override;
    // Called for the top frame only. Once the page is there, navigations that begin are cancelled
    // and only reported. OnDocumentComplete: the page has loaded, or was loaded again.
    virtual void OnBeforeNavigate(LPDISPATCH pDisp, LPCTSTR szUrl);
    virtual void OnNavigateComplete(LPDISPATCH pDisp, LPCTSTR szUrl);
    virtual void OnDocumentComplete(LPDISPATCH pDisp, LPCTSTR szUrl);

    // What the page's host is asked. TranslateAccelerator: S_OK when the key was used up.
    // ShowContextMenu may show a menu; whatever it answers, the engine's own is not shown.
    // GetDropTarget may supply a drop target; without one, nothing can be dropped on the page.
    virtual HRESULT STDMETHODCALLTYPE ShowContextMenu(DWORD dwID, POINT* ppt,
                                                      IUnknown* pcmdtReserved,
                                                      IDispatch* pdispReserved);
    virtual HRESULT STDMETHODCALLTYPE GetHostInfo(DOCHOSTUIINFO* pInfo);
    virtual HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG lpMsg, const GUID* pguidCmdGroup,
                                                           DWORD nCmdID);
    virtual HRESULT STDMETHODCALLTYPE GetDropTarget(IDropTarget* pDropTarget,
                                                    IDropTarget** ppDropTarget);

protected:
    DECLARE_MESSAGE_MAP()
    afx_msg void OnActivate(UINT nState, CWnd* pWndOther, BOOL bMinimized);
    afx_msg void OnSetFocus(CWnd* pOldWnd);
    afx_msg void OnSize(UINT nType, int cx, int cy);
    afx_msg void OnShowWindow(BOOL bShow, UINT nStatus);
    afx_msg void OnDestroy();

private:
    friend class BrowserSite;

    bool CreateBrowser();
    void CloseBrowser();
    void LoadFromResource();
    bool IsThereTwice(BSTR id) const;
    bool TranslateKey(MSG* message);
    HRESULT AnswerKey(MSG* message, const GUID* commandGroup, DWORD command);

    void OnBrowserEvent(DISPID event, const DISPPARAMS& parameters);
    void OnNavigation(DISPID event, const DISPPARAMS& parameters);
    void OnDownloadComplete();
    void OnPageEvent(DISPID event, const DISPPARAMS& parameters);
    bool IsBrowser(IDispatch* source) const;
    bool FindDocument(IHTMLDocument2** document) const;
    bool IsReloaded() const;
    bool IsOwnPage() const;
    bool TakeDocument();
    bool FocusPage();

    OleSession m_ole;
    UINT m_nHtmlResID;
    DWORD m_hostFlags = 0;
    std::unique_ptr<BrowserSite, ComRelease> m_site;
    std::unique_ptr<EventSink, ComRelease> m_browserEvents;
    std::unique_ptr<EventSink, ComRelease> m_pageEvents;
    CComPtr<IWebBrowser2> m_pBrowserApp;
    CComPtr<IOleObject> m_control;       // the same, as an embedded object
    CComPtr<IHTMLDocument2> m_spHtmlDoc; // null until the page has loaded
    CComPtr<IHTMLElement> m_body;        // another one when the page was loaded again
    // The key message that the loop got last, and the host's answer once it was asked.
    UINT m_keyMessage = WM_NULL;
    WPARAM m_key = 0;
    std::optional<HRESULT> m_keyAnswer;
};
