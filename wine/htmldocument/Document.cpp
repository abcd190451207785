// Identity, loading and changes of the document.
#include "wine/htmldocument/Document.h"

#include <algorithm>

namespace html {
namespace {

constexpr size_t MaxUrlLength = 2084;
constexpr wchar_t LoadVariable[] = L"KOR_HTML_LOAD";
constexpr std::wstring_view LoadAtOnce = L"at-once";

// A host has to cope with a document that is complete as soon as it is asked to load, as a cached
// page is. This switch makes every page such a page.
bool LoadsAtOnce() {
    wchar_t value[16] = {};
    const DWORD length = GetEnvironmentVariableW(LoadVariable, value, ARRAYSIZE(value));
    return std::wstring_view(value, std::min<size_t>(length, ARRAYSIZE(value) - 1)) == LoadAtOnce;
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
    } faces[] = {
        {IID_IUnknown, this},
        {IID_IDispatch, &m_document2},
        {IID_IHTMLDocument, &m_document2},
        {IID_IHTMLDocument2, &m_document2},
        {IID_IHTMLDocument3, &m_document3},
        {IID_IPersist, &m_persistMoniker},
        {IID_IPersistMoniker, &m_persistMoniker},
        {IID_IOleObject, &m_oleObject},
        {IID_IOleDocument, &m_oleDocument},
        {IID_IOleCommandTarget, &m_commandTarget},
        {IID_IOleDocumentView, &m_documentView},
        {IID_IOleWindow, &m_inPlaceObject},
        {IID_IOleInPlaceObject, &m_inPlaceObject},
        {IID_IOleInPlaceActiveObject, &m_activeObject},
        {IID_IConnectionPointContainer, &m_connections},
    };
    for (const auto& known : faces) {
        if (iid == known.iid) {
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

void Document::Load(IMoniker* moniker) {
    m_moniker = moniker;
    Reload();
}

// Whoever navigates gets the chance to listen before the document says that it is complete.
void Document::Reload() {
    EnterState(READYSTATE_LOADING);
    if (LoadsAtOnce()) {
        BeginLoading();
    } else {
        m_posted.Post([this] { BeginLoading(); });
    }
}

void Document::BeginLoading() {
    const ComPtr<Document> self = this;
    const ComPtr<IMoniker> moniker = m_moniker;
    for (const ComPtr<ResourceLoad>& load : m_loads) {
        load->Forget();
    }
    m_loads.clear();
    m_imagesUnderWay = 0;
    const ComPtr<ResourceLoad> load = Adopt(new ResourceLoad(
        [this](HRESULT result, const std::string& bytes) { PageArrived(result, bytes); }));
    m_loads.push_back(load);
    load->Start(moniker.Get());
}

void Document::PageArrived(HRESULT result, const std::string& bytes) {
    const ComPtr<Document> self = this;
    m_page.Load(SUCCEEDED(result) ? DecodePage(bytes) : std::wstring());
    EnterState(READYSTATE_INTERACTIVE);
    LoadImages();
    PageChanged();
    CompleteIfReady();
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
    if (m_readyState == READYSTATE_INTERACTIVE && m_imagesUnderWay == 0) {
        EnterState(READYSTATE_COMPLETE);
        TraceState();
    }
}

void Document::EnterState(READYSTATE state) {
    m_readyState = state;
    m_connections.NotifyChanged(DISPID_READYSTATE);
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

void Document::TraceState() {
    m_trace.Write(m_page, m_view.Window(), m_readyState == READYSTATE_COMPLETE);
}

void Document::Close() {
    for (const ComPtr<ResourceLoad>& load : m_loads) {
        load->Forget();
    }
    m_loads.clear();
    m_posted.Cancel();
    m_view.Close();
    m_moniker.Reset();
}

} // namespace html
