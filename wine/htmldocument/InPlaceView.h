// The document's place in its host: activation, the window, and the host's own handler.
#pragma once

#include <windows.h>

#include <docobj.h>
#include <mshtmhst.h>
#include <ole2.h>

#include "wine/htmldocument/ComObjects.h"
#include "wine/htmldocument/ViewWindow.h"

namespace html {

class Document;

class InPlaceView {
public:
    explicit InPlaceView(Document& document);
    InPlaceView(const InPlaceView&) = delete;
    InPlaceView& operator=(const InPlaceView&) = delete;

    // The client site, which may know an IDocHostUIHandler; null lets go of both.
    void SetHost(IOleClientSite* site);
    // A new site deactivates the view in the old one.
    void SetSite(IOleInPlaceSite* site);
    IOleInPlaceSite* Site() const { return m_site.Get(); }

    // Activates the view in its site and shows its window.
    HRESULT Show();
    void Hide();
    HRESULT UIActivate(bool activate);
    void Deactivate();
    void SetArea(const RECT& area);
    RECT Area() const { return m_area; }
    void Close();

    // Offers a key message to the host and then to the view. S_OK: somebody took it.
    HRESULT TranslateKey(MSG& message);
    ViewWindow& Window() { return m_window; }

private:
    Document& m_document;
    ViewWindow m_window;
    ComPtr<IDocHostUIHandler> m_handler;
    ComPtr<IOleInPlaceSite> m_site;
    ComPtr<IOleInPlaceFrame> m_frame;
    RECT m_area = {};
    bool m_uiActive = false;
};

} // namespace html
