// Loading, elements, and the way down again, through Wine's own browser control.
#include "tests/htmldocument/HostTest.h"

#include <array>

#include "tests/htmldocument/PageText.h"

namespace test {
namespace {

using LoadTest = HostTest;

std::wstring Markup(IHTMLElement& element) {
    return TextOf(element, &IHTMLElement::get_innerHTML);
}

TEST_F(LoadTest, CompletesAfterNavigate) {
    host = std::make_unique<BrowserHost>();
    ASSERT_TRUE(host->Open());
    EXPECT_FALSE(host->CompletedInsideNavigate());
    EXPECT_NE(nullptr, host->DocumentWindow());
    EXPECT_EQ(L"complete", TextOf(*host->Document().Get(), &IHTMLDocument2::get_readyState));
    EXPECT_EQ(L"Test page", TextOf(*host->Document().Get(), &IHTMLDocument2::get_title));
}

TEST_F(LoadTest, CompletesInsideNavigateWhenToldTo) {
    SetEnvironmentVariableW(L"KOR_HTML_MODES", L"at-once");
    host = std::make_unique<BrowserHost>();
    ASSERT_TRUE(host->Open());
    EXPECT_TRUE(host->CompletedInsideNavigate());
    host->Write(L"Sections", GridMarkup(2, 3));
    ASSERT_TRUE(BrowserHost::PumpUntil([&] { return host->DocumentWindow() != nullptr; }));
    EXPECT_NE(nullptr, FindBox(Trace(), L"S1_2"));
}

// Straight at the class: the control itself gives up before it asks for a document.
TEST_F(LoadTest, APageThatIsMissingCompletesEmpty) {
    OleInitialize(nullptr);
    {
        ComPtr<IPersistMoniker> persist;
        ComPtr<IHTMLDocument2> document;
        ComPtr<IMoniker> moniker;
        ASSERT_EQ(S_OK, CoCreateInstance(__uuidof(HTMLDocument), nullptr, CLSCTX_INPROC_SERVER,
                                         IID_IPersistMoniker,
                                         reinterpret_cast<void**>(persist.GetAddressOf())));
        ASSERT_EQ(S_OK, persist.As(&document));
        ASSERT_EQ(S_OK, CreateURLMoniker(nullptr, L"res://nobody.exe/1", moniker.GetAddressOf()));
        EXPECT_EQ(E_INVALIDARG, persist->Load(FALSE, nullptr, nullptr, 0));
        ASSERT_EQ(S_OK, persist->Load(FALSE, moniker.Get(), nullptr, 0));
        EXPECT_EQ(L"loading", TextOf(*document.Get(), &IHTMLDocument2::get_readyState));
        EXPECT_TRUE(BrowserHost::PumpUntil([&] {
            return TextOf(*document.Get(), &IHTMLDocument2::get_readyState) == L"complete";
        }));
        ComPtr<IHTMLElement> body;
        EXPECT_EQ(S_OK, document->get_body(body.GetAddressOf()));
        ASSERT_NE(nullptr, body);
        EXPECT_EQ(L"", Markup(*body.Get()));
    }
    OleUninitialize();
}

TEST_F(LoadTest, ADocumentThatIsDroppedWhileItLoadsIsGone) {
    OleInitialize(nullptr);
    for (const wchar_t* mode : {L"", L"at-once"}) {
        SetEnvironmentVariableW(L"KOR_HTML_MODES", mode);
        ComPtr<IPersistMoniker> persist;
        ComPtr<IMoniker> moniker;
        ASSERT_EQ(S_OK, CoCreateInstance(__uuidof(HTMLDocument), nullptr, CLSCTX_INPROC_SERVER,
                                         IID_IPersistMoniker,
                                         reinterpret_cast<void**>(persist.GetAddressOf())));
        ASSERT_EQ(S_OK, CreateURLMoniker(nullptr, L"res://nobody.exe/1", moniker.GetAddressOf()));
        ASSERT_EQ(S_OK, persist->Load(FALSE, moniker.Get(), nullptr, 0));
        persist.Reset();
        moniker.Reset();
        BrowserHost::PumpPending();
        EXPECT_TRUE(LibraryIsIdle());
    }
    OleUninitialize();
}

TEST_F(LoadTest, FindsElementsById) {
    Show(GridMarkup(1, 1));
    EXPECT_NE(nullptr, host->Element(L"wholedocument"));
    EXPECT_NE(nullptr, host->Element(L"S0_0"));
    EXPECT_EQ(nullptr, host->Element(L"sections")) << "ids have a case";
    EXPECT_EQ(nullptr, host->Element(L""));
    EXPECT_EQ(nullptr, host->Element(L"nobody"));
}

TEST_F(LoadTest, TellsAboutAnElement) {
    Show(GridMarkup(1, 1));
    const ComPtr<IHTMLElement> item = host->Element(L"S0_0");
    ASSERT_NE(nullptr, item);
    EXPECT_EQ(L"S0_0", TextOf(*item.Get(), &IHTMLElement::get_id));
    EXPECT_EQ(L"item", TextOf(*item.Get(), &IHTMLElement::get_className));
    EXPECT_EQ(L"SPAN", TextOf(*item.Get(), &IHTMLElement::get_tagName));
    EXPECT_EQ(L"Item 0 of section 0", TextOf(*item.Get(), &IHTMLElement::get_innerText));
    ComPtr<IHTMLElement> parent;
    ASSERT_EQ(S_OK, item->get_parentElement(parent.GetAddressOf()));
    EXPECT_EQ(L"LI", TextOf(*parent.Get(), &IHTMLElement::get_tagName));
    EXPECT_EQ(L"before Item 0 of section 0 after",
              TextOf(*parent.Get(), &IHTMLElement::get_innerText));
    BSTR id = SysAllocString(L"x");
    EXPECT_EQ(S_OK, parent->get_id(&id));
    EXPECT_EQ(nullptr, id) << "an element without an id";
}

TEST_F(LoadTest, WritesAndReadsMarkup) {
    Show(L"<b>one</b> &amp; <i>two</i>");
    EXPECT_EQ(L"<b>one</b> &amp; <i>two</i>", Markup(*host->Element(L"Sections").Get()));
    EXPECT_EQ(L"one & two",
              TextOf(*host->Element(L"Sections").Get(), &IHTMLElement::get_innerText));
    host->Write(L"Sections", L"");
    EXPECT_EQ(L"", Markup(*host->Element(L"Sections").Get()));
    EXPECT_EQ(S_OK, host->Element(L"Sections")->put_innerHTML(nullptr));
}

TEST_F(LoadTest, RefusesMarkupInsideAnImage) {
    Show(L"<img id=picture>");
    BSTR text = SysAllocString(L"x");
    EXPECT_TRUE(FAILED(host->Element(L"picture")->put_innerHTML(text)));
    SysFreeString(text);
}

TEST_F(LoadTest, OneNodeIsOneObject) {
    Show(GridMarkup(1, 2));
    const ComPtr<IHTMLElement> first = host->Element(L"S0_1");
    const ComPtr<IHTMLElement> again = host->Element(L"S0_1");
    ComPtr<IUnknown> one;
    ComPtr<IUnknown> two;
    ASSERT_EQ(S_OK, first.As(&one));
    ASSERT_EQ(S_OK, again.As(&two));
    EXPECT_EQ(one.Get(), two.Get());
    ComPtr<IUnknown> other;
    ASSERT_EQ(S_OK, host->Element(L"S0_0").As(&other));
    EXPECT_NE(one.Get(), other.Get());
}

TEST_F(LoadTest, AnElementOutlivesItsPage) {
    Show(GridMarkup(1, 2));
    const ComPtr<IHTMLElement> item = host->Element(L"S0_1");
    host->Write(L"Sections", L"gone");
    EXPECT_EQ(nullptr, host->Element(L"S0_1"));
    EXPECT_EQ(L"S0_1", TextOf(*item.Get(), &IHTMLElement::get_id));
    EXPECT_EQ(L"Item 1 of section 0", TextOf(*item.Get(), &IHTMLElement::get_innerText));
    ComPtr<IHTMLElement> parent;
    EXPECT_EQ(S_OK, item->get_parentElement(parent.GetAddressOf()));
    EXPECT_EQ(nullptr, parent) << "its parent was let go";
    ComPtr<IHTMLStyle> style;
    ASSERT_EQ(S_OK, item->get_style(style.GetAddressOf()));
    BSTR cursor = SysAllocString(L"hand");
    EXPECT_EQ(S_OK, style->put_cursor(cursor));
    SysFreeString(cursor);
}

TEST_F(LoadTest, AnswersLateBoundCalls) {
    Show(GridMarkup(1, 1));
    const ComPtr<IHTMLElement> item = host->Element(L"S0_0");
    wchar_t name[] = L"className";
    LPOLESTR names = name;
    DISPID id = 0;
    ASSERT_EQ(S_OK, item->GetIDsOfNames(IID_NULL, &names, 1, 0, &id));
    VARIANT answer;
    VariantInit(&answer);
    DISPPARAMS none = {};
    ASSERT_EQ(S_OK, item->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &answer, nullptr,
                                 nullptr));
    ASSERT_EQ(VT_BSTR, V_VT(&answer));
    EXPECT_STREQ(L"item", V_BSTR(&answer));
    VariantClear(&answer);
}

TEST_F(LoadTest, DeclinesWhatIsNotNeeded) {
    Show(L"");
    ComPtr<IHTMLElementCollection> all;
    EXPECT_EQ(E_NOTIMPL, host->Document()->get_all(all.GetAddressOf()));
    ComPtr<IHTMLElement2> element2;
    EXPECT_EQ(E_NOINTERFACE, host->Element(L"Sections").As(&element2));
}

TEST_F(LoadTest, RefreshLoadsThePageAgain) {
    Show(GridMarkup(1, 1));
    const ComPtr<IHTMLElement> old = host->Element(L"Sections");
    ASSERT_EQ(S_OK, host->Browser().Refresh());
    ASSERT_TRUE(BrowserHost::PumpUntil([&] {
        const ComPtr<IHTMLElement> now = host->Element(L"Sections");
        return now != nullptr && now.Get() != old.Get() &&
               TextOf(*host->Document().Get(), &IHTMLDocument2::get_readyState) == L"complete";
    }));
    EXPECT_EQ(nullptr, host->Element(L"S0_0"));
}

TEST_F(LoadTest, TwoHundredWritesLeaveNothingBehind) {
    SetEnvironmentVariableW(L"KOR_HTML_TRACE", nullptr);
    Show(L"");
    const std::wstring markup = GridMarkup(8, 12);
    // The library allocates from the C runtime's heap, texts come from the process's.
    const auto used = [] {
        std::array<HANDLE, 64> heaps{};
        const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
        SIZE_T bytes = 0;
        for (DWORD i = 0; i < count && i < heaps.size(); ++i) {
            PROCESS_HEAP_ENTRY entry = {};
            while (HeapWalk(heaps[i], &entry)) {
                bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
            }
        }
        return bytes;
    };
    for (int i = 0; i < 20; ++i) {
        host->Write(L"Sections", markup);
    }
    const SIZE_T before = used();
    for (int i = 0; i < 200; ++i) {
        host->Write(L"Sections", markup);
        const ComPtr<IHTMLElement> item = host->Element(L"S3_3");
        ASSERT_NE(nullptr, item);
    }
    const SIZE_T after = used();
    // One page that is kept for each write would be many megabytes.
    EXPECT_LT(0U, before);
    EXPECT_LT(after, before + 1000000) << "before: " << before;
}

} // namespace
} // namespace test
