// What app/ uses of MFC's HTML dialogs, declared as the public reference declares it.
#pragma once

#include <afxwin.h>

#include <atlcomcli.h>
#include <exdisp.h>
#include <mshtmdid.h>
#include <mshtmhst.h>
#include <mshtml.h>

struct DHtmlEventMapEntry;

class CDHtmlEventSink {
public:
    virtual ~CDHtmlEventSink();

protected:
    virtual const DHtmlEventMapEntry* GetDHtmlEventMap();
};

#define DECLARE_DHTML_EVENT_MAP()                                                                  \
protected:                                                                                         \
    const DHtmlEventMapEntry* GetDHtmlEventMap() override;

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are names
#define BEGIN_DHTML_EVENT_MAP(className)                                                           \
    const DHtmlEventMapEntry* className::GetDHtmlEventMap() {                                      \
        using ThisClass = className;
#define DHTML_EVENT_CLASS(dispid, className, memberFxn)                                            \
    static_cast<void>(static_cast<DISPID>(dispid));                                                \
    static_cast<void>(static_cast<LPCTSTR>(className));                                            \
    static_cast<void>(static_cast<HRESULT (ThisClass::*)(IHTMLElement*)>(&ThisClass::memberFxn));
#define END_DHTML_EVENT_MAP()                                                                      \
    return nullptr;                                                                                \
    }
// NOLINTEND(bugprone-macro-parentheses)

class CDHtmlDialog : public CDialog, public CDHtmlEventSink {
public:
    CDHtmlDialog();
    explicit CDHtmlDialog(LPCTSTR lpszTemplateName, LPCTSTR szHtmlResID = nullptr,
                          CWnd* pParentWnd = nullptr);
    explicit CDHtmlDialog(UINT nIDTemplate, UINT nHtmlResID = 0, CWnd* pParentWnd = nullptr);

    HRESULT GetElement(LPCTSTR szElementId, IDispatch** ppdisp, BOOL* pbCollection = nullptr);
    HRESULT GetElement(LPCTSTR szElementId, IHTMLElement** pphtmlElement);
    void SetHostFlags(DWORD dwFlags);

    BOOL OnInitDialog() override;
    virtual void OnBeforeNavigate(LPDISPATCH pDisp, LPCTSTR szUrl);
    virtual void OnNavigateComplete(LPDISPATCH pDisp, LPCTSTR szUrl);
    virtual void OnDocumentComplete(LPDISPATCH pDisp, LPCTSTR szUrl);

    STDMETHOD(ShowContextMenu)(DWORD dwID, POINT* ppt, IUnknown* pcmdtReserved,
                               IDispatch* pdispReserved);
    STDMETHOD(GetHostInfo)(DOCHOSTUIINFO* pInfo);
    STDMETHOD(TranslateAccelerator)(LPMSG lpMsg, const GUID* pguidCmdGroup, DWORD nCmdID);
    STDMETHOD(GetDropTarget)(IDropTarget* pDropTarget, IDropTarget** ppDropTarget);

protected:
    static const AFX_MSGMAP* PASCAL GetThisMessageMap();
    const AFX_MSGMAP* GetMessageMap() const override;
};
