// The document as an embedded object: what the browser control asks to load, place and refresh it.
#pragma once

#include "Stubs.h"
#include "wine/htmldocument/com/ComObjects.h"

namespace html {

class Document;

class PersistMoniker final : public Face<IPersistMonikerStub> {
public:
    explicit PersistMoniker(Document& document);
    ~PersistMoniker() override = default;
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* id) override;
    HRESULT STDMETHODCALLTYPE IsDirty() override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE Load(BOOL fullyAvailable, IMoniker* moniker, LPBC context,
                                   DWORD mode) override;
    HRESULT STDMETHODCALLTYPE GetCurMoniker(IMoniker** moniker) override;

private:
    Document& m_document;
};

class OleObject final : public Face<IOleObjectStub> {
public:
    explicit OleObject(Document& document);
    ~OleObject() override = default;
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) override;
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) override;
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Close(DWORD saveOption) override;
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* id) override;
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG message, IOleClientSite* site, LONG index,
                                     HWND parent, LPCRECT area) override;
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) override;

private:
    HRESULT Activate(IOleClientSite* site);

    Document& m_document;
    ComPtr<IOleClientSite> m_site;
};

class OleDocument final : public Face<IOleDocumentStub> {
public:
    explicit OleDocument(Document& document);
    ~OleDocument() override = default;
    // There is one view, which is the document itself.
    HRESULT STDMETHODCALLTYPE CreateView(IOleInPlaceSite* site, IStream* state, DWORD reserved,
                                         IOleDocumentView** view) override;
    HRESULT STDMETHODCALLTYPE GetDocMiscStatus(DWORD* status) override;

private:
    Document& m_document;
};

class CommandTarget final : public Face<IOleCommandTargetStub> {
public:
    explicit CommandTarget(Document& document);
    ~CommandTarget() override = default;
    HRESULT STDMETHODCALLTYPE QueryStatus(const GUID* group, ULONG count, OLECMD* commands,
                                          OLECMDTEXT* text) override;
    HRESULT STDMETHODCALLTYPE Exec(const GUID* group, DWORD id, DWORD option, VARIANT* input,
                                   VARIANT* output) override;

private:
    Document& m_document;
};

} // namespace html
