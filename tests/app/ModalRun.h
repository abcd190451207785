// Runs a modal dialog whose browser control is a fake and whose messages come from the test.
#pragma once

#include <windows.h>

#include <exdisp.h>
#include <objbase.h>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mfc/afxwin.h"
#include "tests/app/ComFakes.h"
#include "tests/support/ImportHook.h"

namespace test {

inline VARIANT VariantOf(FakeObject& object) {
    VARIANT value = {};
    value.vt = VT_DISPATCH;
    value.pdispVal = object.As<IDispatch>(__uuidof(IDispatch));
    return value;
}

// A page with the element "Sections" in a control.
struct FakePage {
    FakePage() {
        Browser.Document = &Document;
        Browser.Log = &Log;
        Document.Sections = &Sections;
        Document.Body = &Body;
        Document.Log = &Log;
        Sections.Log = &Log;
    }

    HRESULT Complete() { return Complete(Browser); }
    HRESULT Complete(FakeObject& frame) {
        VARIANT url = {};
        url.vt = VT_BSTR;
        url.bstrVal = SysAllocString(Document.Url.c_str());
        VARIANT reference = {};
        reference.vt = VT_BYREF | VT_VARIANT;
        reference.pvarVal = &url;
        const HRESULT result = Browser.Fire(259, {reference, VariantOf(frame)});
        VariantClear(&url);
        return result;
    }

    int Quits = 0; // messages posted
    std::vector<std::string> Log;
    FakeElement Sections;
    FakeElement Body;
    FakeDocument Document;
    FakeBrowser Browser;
};

// What happens at one turn of the message loop: the message that it gets.
using Turn = std::function<MSG()>;

// Of something that returns no message, an empty one.
template <typename Action>
Turn Do(Action action) {
    if constexpr (std::is_void_v<decltype(action())>) {
        return [action = std::move(action)] {
            action();
            return MSG{};
        };
    } else {
        return action;
    }
}

// The quit message comes after the last turn.
inline INT_PTR RunModal(FakePage& page, const std::vector<Turn>& turns,
                        const std::function<INT_PTR()>& run) {
    HOOK_IMPORT(create, CoCreateInstance,
                [&](REFCLSID id, IUnknown* outer, DWORD context, REFIID iid, void** object) {
                    if (id != CLSID_WebBrowser) {
                        return create.Original(id, outer, context, iid, object);
                    }
                    page.Log.emplace_back("create");
                    return page.Browser.Query(iid, object);
                });
    std::size_t turn = 0;
    HOOK_IMPORT(get, GetMessageW, [&](MSG* message, auto...) -> BOOL {
        if (turn < turns.size()) {
            *message = turns[turn++]();
            return TRUE;
        }
        *message = MSG{};
        message->message = WM_QUIT;
        return FALSE;
    });
    // Nobody is there to take the quit message that is posted for outer loops.
    HOOK_IMPORT(quit, PostQuitMessage, [&](int) { ++page.Quits; });
    return run();
}

inline INT_PTR RunModal(CDialog& dialog, FakePage& page, const std::vector<Turn>& turns) {
    return RunModal(page, turns, [&] { return dialog.DoModal(); });
}

} // namespace test
