// The document's place in its host: activation, the window, and the host's own handler.
#pragma once

#include <windows.h>

#include <docobj.h>
#include <mshtmhst.h>
#include <ole2.h>

#include "wine/htmldocument/com/ComObjects.h"
#include "wine/htmldocument/com/DropTarget.h"
#include "wine/htmldocument/com/ViewWindow.h"

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
    // Loads the page again, if keys of the engine's own do that; false otherwise.
    bool RefreshByKey();
    // The mouse was pressed in the view.
    void NoteClick() { m_clicked = true; }
    // Asks the host for a menu at the point of the screen and shows one of the engine's own if the
    // host has none.
    void ShowContextMenu(POINT at);
    ViewWindow& Window() { return m_window; }

    // To be called while there still is a window.
    void RefuseDrops();

private:
    void TakeDrops();

    Document& m_document;
    ViewWindow m_window;
    ComPtr<DropTarget> m_dropTarget;
    ComPtr<IDocHostUIHandler> m_handler;
    ComPtr<IOleInPlaceSite> m_site;
    ComPtr<IOleInPlaceFrame> m_frame;
    RECT m_area = {};
    bool m_uiActive = false;
    bool m_clicked = false;
};

} // namespace html
