// The WebBrowser control around the document, and the host around that: what MSHTML and the control
// do together, and this document has to do alone with a control that is Wine's.
#pragma once

#include <windows.h>

#include <exdisp.h>
#include <mshtmhst.h>
#include <ole2.h>

#include <string>

#include "wine/htmldocument/com/ComObjects.h"

namespace html {

class Control {
public:
    // Finds the control by way of the document's client site; null lets go of it. A document that
    // is loaded without a control has none, and all of this does nothing.
    void Attach(IOleClientSite* site);

    // The host's own handler; null where it has none. The control's, which the document gets from
    // its client site, does not pass everything on under Wine.
    ComPtr<IDocHostUIHandler> HostHandler() const;
    // Goes to the address as a link does: the host is asked (BeforeNavigate2).
    void Navigate(const std::wstring& url) const;

    // Events of the control, fired to whoever listens to it.
    void FireDownload(bool begins) const;
    // Both return whether a sink cancelled.
    bool FireNavigateError(const std::wstring& url, LONG status) const;
    bool FireNewWindow() const;

    // Asks the host's site for everything that MSHTML is documented to ask for. Returns what was
    // answered against COM's rules, empty where all was well.
    std::string AskForEverything() const;
    // DISPID_AMBIENT_DLCONTROL of the host's site; -1 where it has none.
    LONG DownloadControl() const;

private:
    // The control's own site, which belongs to the host.
    ComPtr<IOleClientSite> HostSite() const;
    void Fire(DISPID id, DISPPARAMS& parameters) const;

    ComPtr<IWebBrowser2> m_browser;
};

} // namespace html
