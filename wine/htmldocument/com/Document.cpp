// Identity, loading and changes of the document.
#include "wine/htmldocument/com/Document.h"

#include <mshtmdid.h>

#include <algorithm>
#include <functional>

namespace html {
namespace {

constexpr size_t MaxUrlLength = 2084;
constexpr DWORD LateMilliseconds = 300; // what the last part of a page is late by
constexpr LONG ResourceNotFound = static_cast<LONG>(0x800C0005);
// As the engine's own page it has a heading and something to click.
constexpr std::wstring_view ErrorPage =
    L"<h2>This page cannot be displayed</h2><span class=item id=KOR_0>Refresh the page</span>";

// The first element of the class in document order; null where there is none.
Node* FindByClass(Node& node, std::wstring_view name) {
    if (node.HasClass(name)) {
        return &node;
    }
    for (const NodePtr& child : node.Children()) {
        if (Node* const found = FindByClass(*child, name)) {
            return found;
        }
    }
    return nullptr;
}

// Pages without a mark are 8-bit text of the system's code page.
std::wstring DecodePage(std::string_view bytes) {
    constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
    UINT codePage = CP_ACP;
    if (bytes.substr(0, Utf8Mark.size()) == Utf8Mark) {
        bytes.remove_prefix(Utf8Mark.size());
        codePage = CP_UTF8;
    }
    const int size = static_cast<int>(bytes.size());
    std::wstring text(
        static_cast<size_t>(MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0)),
        L'\0');
    MultiByteToWideChar(codePage, 0, bytes.data(), size, text.data(),
                        static_cast<int>(text.size()));
    return text;
}

} // namespace

Document::Document()
    : m_view(*this), m_connections(*this), m_document2(*this), m_document3(*this),
      m_persistMoniker(*this), m_oleObject(*this), m_oleDocument(*this), m_commandTarget(*this),
      m_documentView(*this), m_inPlaceObject(*this), m_activeObject(*this) {}

Document::~Document() = default;

HRESULT Document::Create(REFIID iid, void** object) {
    auto* const document = new Document;
    const HRESULT result = document->QueryInterface(iid, object);
    document->Release();
    return result;
}

HRESULT Document::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    const struct {
        const IID& iid;
        IUnknown* face;
        bool optional;
    } faces[] = {
        {IID_IUnknown, this, false},
        {IID_IDispatch, &m_document2, false},
        {IID_IHTMLDocument, &m_document2, false},
        {IID_IHTMLDocument2, &m_document2, false},
        {IID_IHTMLDocument3, &m_document3, true},
        {IID_IPersist, &m_persistMoniker, false},
        {IID_IPersistMoniker, &m_persistMoniker, false},
        {IID_IOleObject, &m_oleObject, false},
        {IID_IOleDocument, &m_oleDocument, false},
        {IID_IOleCommandTarget, &m_commandTarget, true},
        {IID_IOleDocumentView, &m_documentView, false},
        {IID_IOleWindow, &m_inPlaceObject, false},
        {IID_IOleInPlaceObject, &m_inPlaceObject, false},
        {IID_IOleInPlaceActiveObject, &m_activeObject, true},
        {IID_IConnectionPointContainer, &m_connections, false},
    };
    // Identity must hold at all times; everything else may be refused.
    const bool refused = iid != IID_IUnknown && Modes::CallFails();
    for (const auto& known : faces) {
        if (iid == known.iid && !refused && !(known.optional && Has(Mode::RefusesOptional))) {
            *object = known.face;
            known.face->AddRef();
            return S_OK;
        }
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

ULONG Document::AddRef() {
    return ++m_references;
}

ULONG Document::Release() {
    const ULONG left = --m_references;
    if (left == 0) {
        delete this;
    }
    return left;
}

std::wstring Document::Url() const {
    LPOLESTR name = nullptr;
    if (m_moniker == nullptr || FAILED(m_moniker->GetDisplayName(nullptr, nullptr, &name))) {
        return L"about:blank";
    }
    std::wstring url = name;
    CoTaskMemFree(name);
    return url;
}

void Document::SetClientSite(IOleClientSite* site) {
    m_control.Attach(site);
    m_view.SetHost(site);
}

void Document::Load(IMoniker* moniker) {
    m_moniker = moniker;
    StartLoading(false);
}

void Document::Reload() {
    StartLoading(Has(Mode::SilentRefresh));
}

// Whoever navigates gets the chance to listen before the document says that it is complete.
void Document::StartLoading(bool silently) {
    m_silently = silently;
    EnterState(READYSTATE_LOADING);
    if (Has(Mode::AtOnce)) {
        BeginLoading();
    } else {
        m_posted.Post([this] { BeginLoading(); });
    }
}

void Document::BeginLoading() {
    const ComPtr<Document> self = this;
    const ComPtr<IMoniker> moniker = m_moniker;
    TellDownload(true);
    for (const ComPtr<ResourceLoad>& load : m_loads) {
        load->Forget();
    }
    m_loads.clear();
    m_imagesUnderWay = 0;
    if (Has(Mode::NavigationFails)) {
        FailNavigation();
        return;
    }
    const ComPtr<ResourceLoad> load = Adopt(new ResourceLoad(
        [this](HRESULT result, const std::string& bytes) { PageArrived(result, bytes); }));
    m_loads.push_back(load);
    load->Start(moniker.Get());
}

void Document::PageArrived(HRESULT result, const std::string& bytes) {
    ShowPage(SUCCEEDED(result) ? DecodePage(bytes) : std::wstring());
}

// The download of the page is over when its pictures are still to come: that is another one.
void Document::ShowPage(std::wstring_view markup) {
    const ComPtr<Document> self = this;
    m_page.Load(markup);
    EnterState(READYSTATE_INTERACTIVE);
    TellDownload(false);
    TellDownload(true);
    LoadImages();
    PageChanged();
    CompleteIfReady();
}

void Document::FailNavigation() {
    if (m_control.FireNavigateError(Url(), ResourceNotFound)) {
        TellDownload(false);
    } else {
        ShowPage(ErrorPage);
    }
}

void Document::TellDownload(bool begins) const {
    if (m_silently || Has(Mode::DownloadEvents)) {
        m_control.FireDownload(begins);
    }
}

void Document::LoadImages() {
    const std::wstring base = Url();
    for (const std::wstring& source : m_page.TakeMissingImages()) {
        wchar_t url[MaxUrlLength] = {};
        DWORD length = 0;
        ComPtr<IMoniker> moniker;
        if (FAILED(CoInternetCombineUrl(base.c_str(), source.c_str(), 0, url, ARRAYSIZE(url),
                                        &length, 0)) ||
            FAILED(CreateURLMoniker(nullptr, url, moniker.GetAddressOf()))) {
            continue;
        }
        ++m_imagesUnderWay;
        const ComPtr<ResourceLoad> load = Adopt(new ResourceLoad(
            [this, source](HRESULT, const std::string& bytes) { ImageArrived(source, bytes); }));
        m_loads.push_back(load);
        load->Start(moniker.Get());
    }
}

void Document::ImageArrived(const std::wstring& source, const std::string& bytes) {
    const ComPtr<Document> self = this;
    m_page.SetImage(source, bytes);
    --m_imagesUnderWay;
    PageChanged();
    CompleteIfReady();
}

void Document::CompleteIfReady() {
    if (m_readyState != READYSTATE_INTERACTIVE || m_imagesUnderWay != 0) {
        return;
    }
    if (Has(Mode::LateComplete)) {
        m_posted.Post([this] { Complete(); }, LateMilliseconds);
    } else {
        Complete();
    }
}

// Whoever hears of the download's end finds a complete document.
void Document::Complete() {
    const ComPtr<Document> self = this;
    m_readyState = READYSTATE_COMPLETE;
    TellDownload(false);
    EnterState(READYSTATE_COMPLETE);
    TraceState();
    if (!m_silently && Has(Mode::DownloadEvents) && m_moniker != nullptr) {
        m_posted.Post([this] { DownloadLate(); }, LateMilliseconds);
    }
}

// Pages load parts of theirs when they are complete already.
void Document::DownloadLate() {
    const ComPtr<Document> self = this;
    TellDownload(true);
    TellDownload(false);
}

void Document::EnterState(READYSTATE state) {
    m_readyState = state;
    if (!m_silently) {
        m_connections.NotifyChanged(DISPID_READYSTATE);
    }
}

void Document::PageChanged() {
    m_view.Window().PageChanged();
    TraceState();
}

void Document::WriteInnerHtml(Node& element, std::wstring_view markup) {
    m_page.WriteInnerHtml(element, markup);
    m_trace.NoteWrite(element.AttributeOr(L"id", L""), markup);
    LoadImages();
    PageChanged();
}

void Document::SetInlineStyle(Node& element, std::wstring_view property, std::wstring value) {
    m_page.SetInlineStyle(element, property, std::move(value));
    PageChanged();
}

void Document::SetAttribute(Node& element, std::wstring_view name, std::wstring value) {
    m_page.SetAttribute(element, name, std::move(value));
    PageChanged();
}

void Document::Fire(const MouseEvent& event) {
    // A node that left the page in the meantime has no document to tell.
    if (event.source == nullptr || !m_page.IsOnPage(*event.source)) {
        return;
    }
    const ComPtr<EventObject> object = Adopt(new EventObject(*this, event));
    m_connections.FireEvent(event.id, *object.Get());
}

void Document::FollowLink(const Node& element) {
    const Node* link = &element;
    while (link != nullptr && (link->Tag() != L"a" || link->FindAttribute(L"href") == nullptr)) {
        link = link->Parent();
    }
    if (link == nullptr) {
        return;
    }
    const ComPtr<Document> self = this;
    const std::wstring url = link->AttributeOr(L"href", L"");
    ComPtr<IMoniker> moniker;
    if (link->AttributeOr(L"target", L"") == L"_blank") {
        if (!m_control.FireNewWindow()) {
            ++m_trace.newWindows;
            TraceState();
        }
    } else if (!Has(Mode::UnaskedNavigation)) {
        m_control.Navigate(url);
    } else if (SUCCEEDED(CreateURLMoniker(nullptr, url.c_str(), moniker.GetAddressOf()))) {
        Load(moniker.Get());
    }
}

void Document::CountMenu() {
    ++m_trace.menus;
    TraceState();
}

void Document::TraceState() {
    if (!m_trace.IsWanted()) {
        return;
    }
    m_trace.url = Url();
    m_trace.downloadControl = m_control.DownloadControl();
    m_trace.oddities = Has(Mode::AsksEverything) ? m_control.AskForEverything() : std::string();
    m_trace.Write(m_page, m_view.Window(), m_readyState == READYSTATE_COMPLETE);
}

// As if the pointer had been on a link when the host let go of the document.
void Document::FireStaleClick() {
    Node* const item = FindByClass(m_page.Root(), L"item");
    if (item == nullptr || !m_connections.HasStale()) {
        return;
    }
    const NodePtr element = item->shared_from_this();
    constexpr DISPID Events[] = {static_cast<DISPID>(DISPID_HTMLDOCUMENTEVENTS2_ONMOUSEOVER),
                                 static_cast<DISPID>(DISPID_HTMLDOCUMENTEVENTS2_ONCLICK),
                                 static_cast<DISPID>(DISPID_HTMLDOCUMENTEVENTS2_ONMOUSEOUT)};
    for (const DISPID id : Events) {
        Fire({id, L"", element, element, element, {}, 0});
    }
    m_connections.ForgetStale();
}

void Document::Close() {
    FireStaleClick();
    for (const ComPtr<ResourceLoad>& load : m_loads) {
        load->Forget();
    }
    m_loads.clear();
    m_posted.Cancel();
    m_view.Close();
    m_control.Attach(nullptr);
    m_moniker.Reset();
}

} // namespace html
