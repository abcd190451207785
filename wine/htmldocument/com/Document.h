// The HTML document: one COM object with many faces. This class holds what they share: the page,
// its loading, its changes and who is told of them.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "Stubs.h"
#include "wine/htmldocument/com/ComObjects.h"
#include "wine/htmldocument/com/ConnectionPoints.h"
#include "wine/htmldocument/com/Control.h"
#include "wine/htmldocument/com/DocumentDom.h"
#include "wine/htmldocument/com/DocumentOle.h"
#include "wine/htmldocument/com/EventObject.h"
#include "wine/htmldocument/com/InPlaceView.h"
#include "wine/htmldocument/com/Modes.h"
#include "wine/htmldocument/com/PostedCall.h"
#include "wine/htmldocument/com/ResourceLoad.h"
#include "wine/htmldocument/com/Trace.h"
#include "wine/htmldocument/com/ViewFaces.h"
#include "wine/htmldocument/engine/Page.h"

namespace html {

class Document final : public UnknownStub {
public:
    static HRESULT Create(REFIID iid, void** object);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    // Loading. The state is that of READYSTATE; whoever listens is told of each step.
    void Load(IMoniker* moniker);
    void Reload();
    IMoniker* Moniker() const { return m_moniker.Get(); }
    std::wstring Url() const;
    READYSTATE ReadyState() const { return m_readyState; }
    // The client site leads to the control and to the host; null lets go of both.
    void SetClientSite(IOleClientSite* site);
    // Ends loading and the view, and lets go of the host.
    void Close();

    // Changes of the page, each shown and traced at once.
    void WriteInnerHtml(Node& element, std::wstring_view markup);
    void SetInlineStyle(Node& element, std::wstring_view property, std::wstring value);
    void SetAttribute(Node& element, std::wstring_view name, std::wstring value);

    bool Has(Mode mode) const { return m_modes.Has(mode); }
    Page& GetPage() { return m_page; }
    const Control& GetControl() const { return m_control; }
    InPlaceView& View() { return m_view; }
    ConnectionPoints& Connections() { return m_connections; }
    IOleInPlaceActiveObject& ActiveObject() { return m_activeObject; }
    void Fire(const MouseEvent& event);
    // What a click does by itself: it goes where the link around the element leads.
    void FollowLink(const Node& element);
    // Notes that the engine showed a menu of its own.
    void CountMenu();
    // Writes down what the page looks like now, if anybody wants to know.
    void TraceState();

private:
    Document();
    ~Document() override;
    void StartLoading(bool silently);
    void BeginLoading();
    void PageArrived(HRESULT result, const std::string& bytes);
    void ShowPage(std::wstring_view markup);
    void FailNavigation();
    void TellDownload(bool begins) const;
    void DownloadLate();
    void FireStaleClick();
    void LoadImages();
    void ImageArrived(const std::wstring& source, const std::string& bytes);
    void EnterState(READYSTATE state);
    void CompleteIfReady();
    void Complete();
    void PageChanged();

    ModuleLock m_lock;
    std::atomic<ULONG> m_references = 1;
    const Modes m_modes = Modes::FromEnvironment();
    Control m_control;
    Page m_page;
    ComPtr<IMoniker> m_moniker;
    READYSTATE m_readyState = READYSTATE_UNINITIALIZED;
    bool m_silently = false; // the control is not told of this load
    std::vector<ComPtr<ResourceLoad>> m_loads;
    size_t m_imagesUnderWay = 0;
    PostedCall m_posted;
    Trace m_trace;

    InPlaceView m_view;
    ConnectionPoints m_connections;
    Document2 m_document2;
    Document3 m_document3;
    PersistMoniker m_persistMoniker;
    OleObject m_oleObject;
    OleDocument m_oleDocument;
    CommandTarget m_commandTarget;
    DocumentView m_documentView;
    InPlaceObject m_inPlaceObject;
    InPlaceActiveObject m_activeObject;
};

} // namespace html
