// The document as scripts and hosts see it: the page's root, its body, elements by id, the state.
#pragma once

#include "Stubs.h"
#include "wine/htmldocument/com/ComObjects.h"
#include "wine/htmldocument/com/LateBound.h"

namespace html {

class Document;

class Document2 final : public LateBound<Face<IHTMLDocument2Stub>, IHTMLDocument2> {
public:
    explicit Document2(Document& document);
    ~Document2() override = default;

    // The loading state must come as a number for the browser control.
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* answer, EXCEPINFO* exception,
                                     UINT* badArgument) override;
    HRESULT STDMETHODCALLTYPE get_body(IHTMLElement** p) override;
    HRESULT STDMETHODCALLTYPE get_title(BSTR* p) override;
    HRESULT STDMETHODCALLTYPE get_readyState(BSTR* p) override;
    HRESULT STDMETHODCALLTYPE get_URL(BSTR* p) override;
    HRESULT STDMETHODCALLTYPE elementFromPoint(LONG x, LONG y, IHTMLElement** element) override;

private:
    Document& m_document;
};

class Document3 final : public LateBound<Face<IHTMLDocument3Stub>, IHTMLDocument3> {
public:
    explicit Document3(Document& document);
    ~Document3() override = default;

    HRESULT STDMETHODCALLTYPE get_documentElement(IHTMLElement** p) override;
    // S_OK and null where there is none.
    HRESULT STDMETHODCALLTYPE getElementById(BSTR id, IHTMLElement** element) override;

private:
    Document& m_document;
};

} // namespace html
