// The interfaces have hundreds of methods, of which the dialog calls a few: the fakes fill tables
// of functions instead of deriving from the interfaces.
#define CINTERFACE
#include "tests/app/ComFakes.h"

#include <gtest/gtest.h>
#include <mshtml.h>

#include <exdisp.h>
#include <ocidl.h>
#include <oleidl.h>

namespace test {

namespace {

HRESULT STDMETHODCALLTYPE QueryInterfaceOf(Face* self, const IID* iid, void** object) {
    return self->Owner->Query(*iid, object);
}

ULONG STDMETHODCALLTYPE AddRefOf(Face* self) {
    if (self->Owner->OnAddRef) {
        self->Owner->OnAddRef();
    }
    ++self->Owner->AddRefs;
    return static_cast<ULONG>(++self->Owner->References);
}

ULONG STDMETHODCALLTYPE ReleaseOf(Face* self) {
    if (self->Owner->OnRelease) {
        self->Owner->OnRelease();
    }
    return static_cast<ULONG>(--self->Owner->References);
}

HRESULT STDMETHODCALLTYPE NotImplemented() {
    return E_NOTIMPL;
}

template <typename Function>
void* Pointer(Function* function) {
    return reinterpret_cast<void*>(function);
}

HRESULT GiveText(const std::optional<std::wstring>& text, BSTR* out) {
    *out = text ? SysAllocString(text->c_str()) : nullptr;
    return S_OK;
}

// Not SysAllocString, which tests let fail.
HRESULT GiveOwnText(const std::wstring& text, BSTR* out) {
    *out = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.size()));
    return S_OK;
}

template <typename Fake>
Fake& Self(Face* face) {
    return static_cast<Fake&>(*face->Owner);
}

void Call(const std::function<void()>& what) {
    if (what) {
        what();
    }
}

template <typename Interface>
HRESULT Give(FakeObject* object, REFIID iid, Interface** out) {
    *out = nullptr;
    return object != nullptr ? object->Query(iid, reinterpret_cast<void**>(out)) : S_OK;
}

constexpr std::size_t LargestTable = 400;

} // namespace

FakeObject::~FakeObject() {
    EXPECT_EQ(References, 0) << "references were not given back";
}

void FakeObject::Note(const std::string& what) const {
    if (Log != nullptr) {
        Log->push_back(what);
    }
}

void FakeObject::Implement(REFIID iid, const std::vector<Method>& methods) {
    std::vector<void*> table(LargestTable, Pointer(&NotImplemented));
    table[0] = Pointer(&QueryInterfaceOf);
    table[1] = Pointer(&AddRefOf);
    table[2] = Pointer(&ReleaseOf);
    for (const Method& method : methods) {
        table[method.Offset / sizeof(void*)] = method.Function;
    }
    m_implementations.push_back({iid, std::move(table), {nullptr, this}});
    m_implementations.back().Object.Vtable = m_implementations.back().Vtable.data();
}

Face* FakeObject::Find(REFIID iid) {
    for (Implementation& implementation : m_implementations) {
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(implementation.Iid, iid)) {
            return &implementation.Object;
        }
    }
    return nullptr;
}

HRESULT FakeObject::Query(REFIID iid, void** object) {
    *object = Find(iid);
    if (*object == nullptr) {
        return E_NOINTERFACE;
    }
    ++References;
    return S_OK;
}

#define METHOD(Interface, name, ...)                                                               \
    Method {                                                                                       \
        offsetof(Interface##Vtbl, name), Pointer(+__VA_ARGS__)                                     \
    }

FakeStyle::FakeStyle() {
    Implement(IID_IHTMLStyle,
              {METHOD(IHTMLStyle, put_color,
                      [](Face* self, VARIANT color) -> HRESULT {
                          Self<FakeStyle>(self).Note("color");
                          Self<FakeStyle>(self).Colors.push_back(color);
                          Call(Self<FakeStyle>(self).OnColor);
                          return S_OK;
                      }),
               METHOD(IHTMLStyle, put_cursor, [](Face* self, BSTR cursor) -> HRESULT {
                   Self<FakeStyle>(self).Note("cursor");
                   Self<FakeStyle>(self).Cursors.emplace_back(cursor);
                   return S_OK;
               })});
}

FakeElement::FakeElement() {
    Implement(
        IID_IHTMLElement,
        {METHOD(IHTMLElement, get_className,
                [](Face* self, BSTR* out) {
                    return GiveText(Self<FakeElement>(self).ClassName, out);
                }),
         METHOD(IHTMLElement, get_id,
                [](Face* self, BSTR* out) { return GiveText(Self<FakeElement>(self).Id, out); }),
         METHOD(IHTMLElement, get_innerText,
                [](Face* self, BSTR* out) { return GiveText(Self<FakeElement>(self).Text, out); }),
         METHOD(IHTMLElement, put_innerHTML,
                [](Face* self, BSTR html) -> HRESULT {
                    Self<FakeElement>(self).Note("innerHTML");
                    Self<FakeElement>(self).InnerHtml.emplace_back(html);
                    Call(Self<FakeElement>(self).OnInnerHtml);
                    return S_OK;
                }),
         METHOD(IHTMLElement, get_style, [](Face* self, IHTMLStyle** out) {
             return Give(Self<FakeElement>(self).Style, IID_IHTMLStyle, out);
         })});
}

IHTMLElement* FakeElement::Element() {
    return As<IHTMLElement>(IID_IHTMLElement);
}

FakeSource::FakeSource() {
    Implement(IID_IConnectionPointContainer,
              {METHOD(IConnectionPointContainer, FindConnectionPoint,
                      [](Face* self, const IID* iid, IConnectionPoint** out) {
                          Self<FakeSource>(self).ConnectedTo = *iid;
                          return self->Owner->Query(IID_IConnectionPoint,
                                                    reinterpret_cast<void**>(out));
                      })});
    Implement(IID_IConnectionPoint,
              {METHOD(IConnectionPoint, Advise,
                      [](Face* self, IUnknown* sink, DWORD* cookie) -> HRESULT {
                          auto& source = Self<FakeSource>(self);
                          source.Note(source.Name + " advise");
                          *cookie = 77;
                          return sink->lpVtbl->QueryInterface(
                              sink, IID_IDispatch, reinterpret_cast<void**>(&source.Sink));
                      }),
               METHOD(IConnectionPoint, Unadvise, [](Face* self, DWORD cookie) -> HRESULT {
                   auto& source = Self<FakeSource>(self);
                   EXPECT_EQ(cookie, 77U);
                   source.Note(source.Name + " unadvise");
                   Call(source.OnUnadvise);
                   source.Sink->lpVtbl->Release(source.Sink);
                   source.Sink = nullptr;
                   return S_OK;
               })});
}

HRESULT FakeSource::Fire(DISPID event, std::vector<VARIANT> arguments) const {
    return FireAt(Sink, event, std::move(arguments));
}

HRESULT FireAt(IDispatch* sink, DISPID event, std::vector<VARIANT> arguments) {
    DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    return sink->lpVtbl->Invoke(sink, event, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr,
                                nullptr, nullptr);
}

FakeCollection::FakeCollection() {
    Implement(IID_IDispatch, {});
    Implement(IID_IHTMLElementCollection,
              {METHOD(IHTMLElementCollection, item,
                      [](Face* self, VARIANT name, VARIANT, IDispatch** out) -> HRESULT {
                          auto& all = Self<FakeCollection>(self);
                          all.Asked.emplace_back(name.bstrVal);
                          return Give(all.HasSeveral ? &all : nullptr, IID_IDispatch, out);
                      })});
}

FakeDocument::FakeDocument() {
    Name = "document";
    Implement(IID_IDispatch, {});
    Implement(IID_IHTMLDocument2,
              {METHOD(IHTMLDocument2, get_body,
                      [](Face* self, IHTMLElement** out) {
                          return Give(Self<FakeDocument>(self).Body, IID_IHTMLElement, out);
                      }),
               METHOD(IHTMLDocument2, get_all,
                      [](Face* self, IHTMLElementCollection** out) {
                          return Give(Self<FakeDocument>(self).All, IID_IHTMLElementCollection,
                                      out);
                      }),
               METHOD(IHTMLDocument2, get_readyState,
                      [](Face* self, BSTR* out) {
                          return GiveOwnText(Self<FakeDocument>(self).State, out);
                      }),
               METHOD(IHTMLDocument2, get_URL, [](Face* self, BSTR* out) {
                   return GiveOwnText(Self<FakeDocument>(self).Url, out);
               })});
    Implement(IID_IOleWindow, {METHOD(IOleWindow, GetWindow, [](Face* self, HWND* out) -> HRESULT {
                  *out = Self<FakeDocument>(self).Window;
                  return *out != nullptr ? S_OK : E_FAIL;
              })});
    Implement(IID_IHTMLDocument3, {METHOD(IHTMLDocument3, getElementById,
                                          [](Face* self, BSTR id, IHTMLElement** out) -> HRESULT {
                                              auto& document = Self<FakeDocument>(self);
                                              document.Asked.emplace_back(id);
                                              return Give(document.Sections, IID_IHTMLElement, out);
                                          })});
}

FakeEvent::FakeEvent() {
    Implement(IID_IDispatch, {});
    Implement(IID_IHTMLEventObj,
              {METHOD(IHTMLEventObj, get_srcElement, [](Face* self, IHTMLElement** out) {
                  return Give(Self<FakeEvent>(self).Source, IID_IHTMLElement, out);
              })});
}

FakeBrowser::FakeBrowser() {
    Name = "browser";
    Implement(IID_IDispatch, {});
    Implement(IID_IWebBrowser2,
              {METHOD(IWebBrowser2, Navigate,
                      [](Face* self, BSTR url, VARIANT*, VARIANT*, VARIANT*, VARIANT*) -> HRESULT {
                          auto& browser = Self<FakeBrowser>(self);
                          browser.Note("navigate");
                          browser.Navigated.emplace_back(url);
                          Call(browser.OnNavigate);
                          return S_OK;
                      }),
               METHOD(IWebBrowser2, put_RegisterAsDropTarget,
                      [](Face* self, VARIANT_BOOL takes) -> HRESULT {
                          Self<FakeBrowser>(self).TakesDrops = takes;
                          return S_OK;
                      }),
               METHOD(IWebBrowser2, get_Document, [](Face* self, IDispatch** out) {
                   return Give(Self<FakeBrowser>(self).Document, IID_IDispatch, out);
               })});
    Implement(IID_IOleObject, {METHOD(IOleObject, SetClientSite,
                                      [](Face* self, IOleClientSite* site) -> HRESULT {
                                          auto& browser = Self<FakeBrowser>(self);
                                          browser.Note(site != nullptr ? "site" : "no site");
                                          if (site != nullptr) {
                                              site->lpVtbl->AddRef(site);
                                          }
                                          if (browser.Site != nullptr) {
                                              browser.Site->lpVtbl->Release(browser.Site);
                                          }
                                          browser.Site = site;
                                          return S_OK;
                                      }),
                               METHOD(IOleObject, DoVerb,
                                      [](Face* self, LONG verb, MSG*, IOleClientSite*, LONG, HWND,
                                         const RECT* position) -> HRESULT {
                                          auto& browser = Self<FakeBrowser>(self);
                                          browser.Note("verb " + std::to_string(verb));
                                          browser.Rectangles.push_back(*position);
                                          return S_OK;
                                      }),
                               METHOD(IOleObject, Close, [](Face* self, DWORD save) -> HRESULT {
                                   EXPECT_EQ(save, static_cast<DWORD>(OLECLOSE_NOSAVE));
                                   Self<FakeBrowser>(self).Note("close");
                                   return S_OK;
                               })});
    Implement(IID_IOleInPlaceObject,
              {METHOD(IOleInPlaceObject, SetObjectRects,
                      [](Face* self, const RECT* position, const RECT* clip) -> HRESULT {
                          EXPECT_TRUE(EqualRect(position, clip));
                          Self<FakeBrowser>(self).Rectangles.push_back(*position);
                          return S_OK;
                      })});
    Implement(IID_IOleInPlaceActiveObject,
              {METHOD(IOleInPlaceActiveObject, OnFrameWindowActivate,
                      [](Face* self, BOOL active) -> HRESULT {
                          Self<FakeBrowser>(self).FrameActivations.push_back(active);
                          return S_OK;
                      }),
               METHOD(IOleInPlaceActiveObject, TranslateAccelerator,
                      [](Face* self, MSG* message) -> HRESULT {
                          auto& browser = Self<FakeBrowser>(self);
                          browser.Keys.push_back(message->message);
                          return browser.OnKey ? browser.OnKey(message) : S_FALSE;
                      })});
}

} // namespace test
