// Wine's own browser control, with the HTML stand-in as its document: each call that the dialog
// makes to it, from its making to its end, fails once.
#include <gtest/gtest.h>
#include <windows.h>

#include <exdisp.h>

#include <string>

#include "app/CkorcontrolcenterDlg.h"
#include "tests/app/FailingCalls.h"
#include "tests/support/BesideProgram.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RawRegistry.h"
#include "tests/support/TestInstallation.h"

namespace {

constexpr wchar_t DocumentServer[] =
    L"Software\\Classes\\CLSID\\{25336920-03F9-11CF-8FD0-00AA00686F13}\\InprocServer32";
// A page that has not come by then does not come.
constexpr ULONGLONG Patience = 60'000;
constexpr ULONGLONG LittlePatience = 1'000;

class ObservedDialog : public CkorcontrolcenterDlg {
public:
    void OnDocumentComplete(LPDISPATCH pDisp, LPCTSTR szUrl) override {
        CkorcontrolcenterDlg::OnDocumentComplete(pDisp, szUrl);
        Filled = true;
    }

    bool Filled = false;
};

struct Outcome {
    bool Shown = false;
    bool Filled = false;
    INT_PTR Result = 0;
};

// From the dialog's making until its page is filled, or time is over, and Alt+F4.
Outcome RunDialog(test::FailingCalls& calls, ULONGLONG patience) {
    ObservedDialog dialog;
    Outcome run;
    HOOK_IMPORT(create, CoCreateInstance,
                [&](REFCLSID id, IUnknown* outer, DWORD context, REFIID iid, void** object) {
                    const auto make = [&] {
                        return create.Original(id, outer, context, iid, object);
                    };
                    return id == CLSID_WebBrowser ? calls.Make(make, iid, object) : make();
                });
    const ULONGLONG end = GetTickCount64() + patience;
    HOOK_IMPORT(get, GetMessageW, [&](MSG* message, auto...) -> BOOL {
        run.Shown = IsWindowVisible(dialog.m_hWnd) != FALSE;
        while (!dialog.Filled && GetTickCount64() < end) {
            if (PeekMessageW(message, nullptr, 0, 0, PM_REMOVE)) {
                return TRUE;
            }
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        }
        *message = {};
        message->message = WM_QUIT;
        return FALSE;
    });
    HOOK_IMPORT(quit, PostQuitMessage, [](int) {});
    run.Result = dialog.DoModal();
    run.Filled = dialog.Filled;
    return run;
}

TEST(ControlFailures, EachCallToWinesOwnControlFailsOnceAndNothingIsLeft) {
    test::SetRaw(HKEY_LOCAL_MACHINE, DocumentServer, L"",
                 test::Text(REG_SZ, test::BesideProgram(L"htmldocument.dll")));
    test::TestInstallation installed;
    installed.SetText(test::LibraryKey, L"KorVersion", L"1");
    int calls = 0;
    int filled = 0;
    for (int failing = 0; failing <= calls; ++failing) {
        SCOPED_TRACE("call " + std::to_string(failing));
        const std::int64_t before = test::LiveBlocks();
        test::FailingCalls failure(failing);
        const Outcome run = RunDialog(failure, failing == 0 ? Patience : LittlePatience);
        const std::int64_t after = test::LiveBlocks();
        SCOPED_TRACE(failure.Failed());
        EXPECT_TRUE(run.Shown);
        EXPECT_EQ(run.Result, IDABORT) << "ended by the quit message";
        EXPECT_EQ(failure.References(), 0U) << "the control is still there";
        filled += run.Filled ? 1 : 0;
        if (failing == 0) {
            ASSERT_TRUE(run.Filled);
            calls = failure.Calls();
        } else {
            // What watches the calls is made with the first run.
            EXPECT_EQ(after, before) << "the host left something behind";
            EXPECT_GE(failure.Calls(), failing);
        }
    }
    RecordProperty("calls", calls);
    RecordProperty("filled", filled);
    EXPECT_GT(calls, 20);
}

} // namespace
