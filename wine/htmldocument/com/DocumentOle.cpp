// IPersistMoniker, IOleObject, IOleDocument and IOleCommandTarget.
#include "wine/htmldocument/com/DocumentOle.h"

#include "wine/htmldocument/com/Document.h"

namespace html {

PersistMoniker::PersistMoniker(Document& document) : Face(document), m_document(document) {}

HRESULT PersistMoniker::GetClassID(CLSID* id) {
    if (id == nullptr) {
        return E_POINTER;
    }
    *id = __uuidof(HTMLDocument);
    return S_OK;
}

HRESULT PersistMoniker::Load(BOOL, IMoniker* moniker, LPBC, DWORD) {
    if (moniker == nullptr) {
        return E_INVALIDARG;
    }
    if (Modes::CallFails()) {
        return E_FAIL;
    }
    m_document.Load(moniker);
    return S_OK;
}

HRESULT PersistMoniker::GetCurMoniker(IMoniker** moniker) {
    if (moniker == nullptr) {
        return E_POINTER;
    }
    *moniker = m_document.Moniker();
    if (*moniker == nullptr) {
        return E_UNEXPECTED;
    }
    (*moniker)->AddRef();
    return S_OK;
}

OleObject::OleObject(Document& document) : Face(document), m_document(document) {}

HRESULT OleObject::SetClientSite(IOleClientSite* site) {
    if (site != nullptr && Modes::CallFails()) {
        return E_FAIL;
    }
    m_site = site;
    m_document.SetClientSite(site);
    return S_OK;
}

HRESULT OleObject::GetClientSite(IOleClientSite** site) {
    if (site == nullptr) {
        return E_POINTER;
    }
    return m_site.CopyTo(site);
}

HRESULT OleObject::Close(DWORD) {
    m_document.Close();
    return S_OK;
}

HRESULT OleObject::GetUserClassID(CLSID* id) {
    if (id == nullptr) {
        return E_POINTER;
    }
    *id = __uuidof(HTMLDocument);
    return S_OK;
}

// A host for documents sets the view up itself once it is asked to.
HRESULT OleObject::Activate(IOleClientSite* site) {
    ComPtr<IOleDocumentSite> documentSite;
    if (site != nullptr &&
        SUCCEEDED(site->QueryInterface(IID_IOleDocumentSite,
                                       reinterpret_cast<void**>(documentSite.GetAddressOf())))) {
        return documentSite->ActivateMe(nullptr);
    }
    return m_document.View().Show();
}

HRESULT OleObject::DoVerb(LONG verb, LPMSG, IOleClientSite* site, LONG, HWND, LPCRECT) {
    const ComPtr<IOleClientSite> activeSite = site != nullptr ? site : m_site.Get();
    switch (verb) {
    case OLEIVERB_PRIMARY:
    case OLEIVERB_SHOW:
    case OLEIVERB_INPLACEACTIVATE:
        return Activate(activeSite.Get());
    case OLEIVERB_UIACTIVATE: {
        const HRESULT result = Activate(activeSite.Get());
        return FAILED(result) ? result : m_document.View().UIActivate(true);
    }
    case OLEIVERB_HIDE:
        m_document.View().Hide();
        return S_OK;
    default:
        return E_NOTIMPL;
    }
}

HRESULT OleObject::GetMiscStatus(DWORD, DWORD* status) {
    if (status == nullptr) {
        return E_POINTER;
    }
    *status = OLEMISC_RECOMPOSEONRESIZE | OLEMISC_INSIDEOUT | OLEMISC_ACTIVATEWHENVISIBLE;
    return S_OK;
}

OleDocument::OleDocument(Document& document) : Face(document), m_document(document) {}

HRESULT OleDocument::CreateView(IOleInPlaceSite* site, IStream* state, DWORD,
                                IOleDocumentView** view) {
    if (view == nullptr) {
        return E_POINTER;
    }
    *view = nullptr;
    if (state != nullptr || Modes::CallFails()) {
        return E_NOTIMPL;
    }
    if (site != nullptr) {
        m_document.View().SetSite(site);
    }
    return m_document.QueryInterface(IID_IOleDocumentView, reinterpret_cast<void**>(view));
}

HRESULT OleDocument::GetDocMiscStatus(DWORD* status) {
    if (status == nullptr) {
        return E_POINTER;
    }
    *status = DOCMISC_CANTOPENEDIT | DOCMISC_NOFILESUPPORT;
    return S_OK;
}

CommandTarget::CommandTarget(Document& document) : Face(document), m_document(document) {}

HRESULT CommandTarget::QueryStatus(const GUID* group, ULONG count, OLECMD* commands, OLECMDTEXT*) {
    if (group != nullptr) {
        return OLECMDERR_E_UNKNOWNGROUP;
    }
    if (commands == nullptr) {
        return E_POINTER;
    }
    for (ULONG i = 0; i < count; ++i) {
        commands[i].cmdf = commands[i].cmdID == OLECMDID_REFRESH
                               ? static_cast<DWORD>(OLECMDF_SUPPORTED) | OLECMDF_ENABLED
                               : 0;
    }
    return S_OK;
}

HRESULT CommandTarget::Exec(const GUID* group, DWORD id, DWORD, VARIANT*, VARIANT*) {
    if (group != nullptr) {
        return OLECMDERR_E_UNKNOWNGROUP;
    }
    if (id != OLECMDID_REFRESH) {
        return OLECMDERR_E_NOTSUPPORTED;
    }
    if (m_document.Moniker() == nullptr) {
        return E_UNEXPECTED;
    }
    m_document.Reload();
    return S_OK;
}

} // namespace html
