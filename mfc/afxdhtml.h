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
    // One reference goes to the caller. *pphtmlElement is null when there is no such element.
    // Throws _com_error when there is no memory for the name.
    HRESULT GetElement(LPCTSTR szElementId, IHTMLElement** pphtmlElement);

    BOOL OnInitDialog() override;
    BOOL PreTranslateMessage(MSG* pMsg) override;
    // The page has loaded; called for the top frame only.
    virtual void OnDocumentComplete(LPDISPATCH pDisp, LPCTSTR szUrl);

    // What the page's host is asked. TranslateAccelerator: S_OK when the key was used up.
    virtual HRESULT STDMETHODCALLTYPE GetHostInfo(DOCHOSTUIINFO* pInfo);
    virtual HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG lpMsg, const GUID* pguidCmdGroup,
                                                           DWORD nCmdID);

protected:
    DECLARE_MESSAGE_MAP()
    afx_msg void OnSize(UINT nType, int cx, int cy);
    afx_msg void OnDestroy();

private:
    bool CreateBrowser();
    void CloseBrowser();
    void LoadFromResource();
    void OnBrowserEvent(DISPID event, const DISPPARAMS& parameters);
    bool IsBrowser(IDispatch* source) const;
    void OnPageEvent(DISPID event, const DISPPARAMS& parameters);

    OleSession m_ole;
    UINT m_nHtmlResID;
    DWORD m_hostFlags = 0;
    std::unique_ptr<BrowserSite, ComRelease> m_site;
    std::unique_ptr<EventSink, ComRelease> m_browserEvents;
    std::unique_ptr<EventSink, ComRelease> m_pageEvents;
    CComPtr<IWebBrowser2> m_pBrowserApp;
    CComPtr<IHTMLDocument2> m_spHtmlDoc; // null until the page has loaded
};
