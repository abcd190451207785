// To which session a fatal message goes, and how.
#include "base/ReportFatalError.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/ImportHook.h"

namespace {

using Send =
    std::function<BOOL(HANDLE, DWORD, LPWSTR, DWORD, LPWSTR, DWORD, DWORD, DWORD, DWORD*, BOOL)>;
Send* g_send = nullptr;

BOOL WINAPI CallSend(HANDLE server, DWORD session, LPWSTR caption, DWORD captionBytes,
                     LPWSTR message, DWORD messageBytes, DWORD style, DWORD timeout, DWORD* answer,
                     BOOL wait) {
    return (*g_send)(server, session, caption, captionBytes, message, messageBytes, style, timeout,
                     answer, wait);
}

// Reports while the terminal services' function, which the product asks its library for by name, is
// the test's.
int ReportWith(Send send, unsigned int style = 0) {
    g_send = &send;
    HOOK_IMPORT(find, GetProcAddress, [&](HMODULE module, LPCSTR name) {
        const bool isIt = !IS_INTRESOURCE(name) && std::string(name) == "WTSSendMessageW";
        if (isIt) {
            EXPECT_EQ(module, GetModuleHandleW(L"wtsapi32.dll"));
            EXPECT_NE(find.Original(module, name), nullptr) << "the real one is there";
        }
        return isIt ? reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&CallSend))
                    : find.Original(module, name);
    });
    return ReportFatalError(L"The message", L"Caption", style);
}

struct Case {
    const char* what;
    BOOL sessionFound;
    DWORD session;
    DWORD console;
    bool toConsole;
};

constexpr Case Cases[] = {
    {"an ordinary process", TRUE, 1, 1, false},
    {"a user who is not at the console", TRUE, 2, 1, false},
    {"a user, no console attached", TRUE, 1, 0xFFFFFFFF, false},
    {"a user, console in session 0", TRUE, 1, 0, false},
    {"a service, user at the console", TRUE, 0, 1, true},
    {"a service, no console attached", TRUE, 0, 0xFFFFFFFF, true},
    {"a service, console in session 0", TRUE, 0, 0, false},
    {"the session cannot be found", FALSE, 5, 1, true},
    {"the session cannot be found, console 0", FALSE, 5, 0, false},
};

class FatalReport : public testing::TestWithParam<Case> {};

TEST_P(FatalReport, TakesTheRouteThatTheSessionsAskFor) {
    const Case& c = GetParam();
    std::vector<std::string> calls;
    HOOK_IMPORT(session, ProcessIdToSessionId, [&](DWORD process, DWORD* id) -> BOOL {
        EXPECT_EQ(process, GetCurrentProcessId());
        if (c.sessionFound != FALSE) {
            *id = c.session;
        }
        return c.sessionFound;
    });
    HOOK_IMPORT(console, WTSGetActiveConsoleSessionId, [&] { return c.console; });
    const Send send = [&](HANDLE server, DWORD id, LPWSTR caption, DWORD captionBytes,
                          LPWSTR message, DWORD messageBytes, DWORD style, DWORD timeout,
                          DWORD* answer, BOOL wait) -> BOOL {
        calls.emplace_back("send");
        EXPECT_EQ(server, nullptr);
        EXPECT_EQ(id, c.console);
        EXPECT_EQ(std::wstring(caption), L"Caption");
        EXPECT_EQ(captionBytes, 16U);
        EXPECT_EQ(std::wstring(message), L"The message");
        EXPECT_EQ(messageBytes, 24U);
        EXPECT_EQ(style, 0x31U);
        EXPECT_EQ(timeout, 0U);
        EXPECT_EQ(*answer, static_cast<DWORD>(IDOK));
        EXPECT_EQ(wait, TRUE);
        *answer = IDCANCEL;
        return TRUE;
    };
    HOOK_IMPORT(box, MessageBoxW, [&](HWND owner, LPCWSTR message, LPCWSTR caption, UINT style) {
        calls.emplace_back("box");
        EXPECT_EQ(owner, nullptr);
        EXPECT_EQ(std::wstring(message), L"The message");
        EXPECT_EQ(std::wstring(caption), L"Caption");
        EXPECT_EQ(style, 0x31U);
        return IDRETRY;
    });

    const int answer = ReportWith(send, 0x31);

    EXPECT_EQ(calls, std::vector<std::string>{c.toConsole ? "send" : "box"}) << c.what;
    EXPECT_EQ(answer, c.toConsole ? IDCANCEL : IDRETRY) << c.what;
}

INSTANTIATE_TEST_SUITE_P(Sessions, FatalReport, testing::ValuesIn(Cases));

// As a service sees the sessions while the action runs.
void AsService(const std::function<void()>& action) {
    HOOK_IMPORT(session, ProcessIdToSessionId, [](DWORD, DWORD* id) -> BOOL {
        *id = 0;
        return TRUE;
    });
    HOOK_IMPORT(console, WTSGetActiveConsoleSessionId, [] { return DWORD{2}; });
    action();
}

TEST(FatalReport, AMessageThatCouldNotBeSentCountsAsAnsweredWithOk) {
    AsService([] { EXPECT_EQ(ReportWith([](auto...) -> BOOL { return FALSE; }), IDOK); });
}

TEST(FatalReport, WithoutTheTerminalServicesAMessageCountsAsAnsweredWithOk) {
    AsService([] {
        HOOK_IMPORT(load, LoadLibraryExW, [](auto...) -> HMODULE { return nullptr; });
        EXPECT_EQ(ReportFatalError(L"m", L"c", 0), IDOK);
    });
    AsService([] {
        HOOK_IMPORT(find, GetProcAddress, [](auto...) -> FARPROC { return nullptr; });
        EXPECT_EQ(ReportFatalError(L"m", L"c", 0), IDOK);
    });
}

TEST(FatalReport, AnyThreadMayReport) {
    std::vector<DWORD> threads;
    HOOK_IMPORT(session, ProcessIdToSessionId, [](DWORD, DWORD* id) -> BOOL {
        *id = 1;
        return TRUE;
    });
    HOOK_IMPORT(box, MessageBoxW, [&](HWND owner, LPCWSTR message, LPCWSTR caption, UINT style) {
        threads.push_back(GetCurrentThreadId());
        EXPECT_EQ(owner, nullptr);
        EXPECT_EQ(std::wstring(message) + caption, L"mc");
        EXPECT_EQ(style, DWORD{MB_RETRYCANCEL});
        return IDRETRY;
    });
    int answer = 0;
    DWORD reporter = 0;
    std::thread([&] {
        reporter = GetCurrentThreadId();
        answer = ReportFatalError(L"m", L"c", MB_RETRYCANCEL);
    }).join();
    EXPECT_EQ(threads, std::vector<DWORD>{reporter}) << "in the thread that reports";
    EXPECT_EQ(answer, IDRETRY);
    EXPECT_EQ(ReportFatalError(L"m", L"c", MB_RETRYCANCEL), IDRETRY);
}

// A real box, closed by a helper thread that presses its button.
TEST(FatalReport, ShowsARealMessageBox) {
    struct Seen {
        std::wstring text;
    } seen;
    const HANDLE thread = CreateThread(
        nullptr, 0,
        [](void* argument) -> DWORD {
            auto* const result = static_cast<Seen*>(argument);
            // Without a limit: nobody else closes the box.
            while (true) {
                const HWND box = FindWindowW(L"#32770", L"Fatal test");
                if (box != nullptr && IsWindowVisible(box) != FALSE) {
                    wchar_t text[100] = {};
                    GetDlgItemTextW(box, 0xFFFF, text, 100);
                    result->text = text;
                    PostMessageW(box, WM_COMMAND, IDOK, 0);
                    return 1;
                }
                Sleep(5);
            }
        },
        &seen, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(ReportFatalError(L"Seen by the user", L"Fatal test", MB_OK), IDOK);
    EXPECT_EQ(WaitForSingleObject(thread, 10000), WAIT_OBJECT_0);
    CloseHandle(thread);
    EXPECT_EQ(seen.text, L"Seen by the user");
}

} // namespace
