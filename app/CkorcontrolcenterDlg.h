// The main dialog: one HTML page that shows the catalogue, in a window that is as tall as its rows.
#pragma once

// The framework's headers come before those of the system, which it includes in its own way.
#include <afxwin.h>

#include <afxdhtml.h>

#include <cstdint>

#include "page/ControlCenterPage.h"

// Is the framework's dialog and the page in one, since its window, its page and the catalogue's
// folders, sizes and sections are members of one object to all who know it. The constructor starts
// the page; the window comes with DoModal.
class CkorcontrolcenterDlg : public CDHtmlDialog, public ControlCenterPage {
public:
    explicit CkorcontrolcenterDlg(CWnd* pParent = nullptr);

    BOOL OnInitDialog() override;
    void OnDocumentComplete(LPDISPATCH pDisp, LPCTSTR szUrl) override;
    // The page's keys: F5 fills the page again from the folders of the start, Alt+F4 quits. Every
    // other key is taken from the page, which is to be clicked only.
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG lpMsg, const GUID* pguidCmdGroup,
                                                   DWORD nCmdID) override;

    // Builds and composes everything from scratch, writes it into the page and resizes the window.
    // Nothing happens without the page's element "Sections". Throws _com_error (E_OUTOFMEMORY)
    // when the text cannot be handed over.
    void FillSectionsElement();

    HRESULT OnItemMouseOver(IHTMLElement* element);
    HRESULT OnItemMouseOut(IHTMLElement* element);
    HRESULT OnItemClick(IHTMLElement* element);

    // Failures of the shell are not reported; an unknown type is.
    void LaunchItem(const CKORString& path, const CKORString& arguments, int type);
    // With elevate set, elevation is asked for unless the user has it. True when it was started.
    bool ShellExecuteElevated(const CKORString& path, const CKORString& arguments, bool elevate);

protected:
    DECLARE_MESSAGE_MAP()
    DECLARE_DHTML_EVENT_MAP()

    afx_msg void OnPaint();
    afx_msg void OnGetMinMaxInfo(MINMAXINFO* lpMMI);

private:
    CComPtr<IHTMLElement> m_hoveredElement; // the item under the mouse
    HICON m_icon;
    std::int64_t m_workAreaWidth;
    std::int64_t m_workAreaHeight;
    std::int64_t m_titleLength; // never read: docs/quirks.md
};
