// The fixture of the tests with a browser control.
#include "tests/htmldocument/HostTest.h"

#include "tests/support/BesideProgram.h"
#include "tests/support/RawRegistry.h"

namespace test {
namespace {

constexpr wchar_t ServerKey[] =
    L"Software\\Classes\\CLSID\\{25336920-03F9-11CF-8FD0-00AA00686F13}\\InprocServer32";

} // namespace

void HostTest::SetUpTestSuite() {
    SetRaw(HKEY_LOCAL_MACHINE, ServerKey, L"", Text(REG_SZ, BesideProgram(L"htmldocument.dll")));
}

void HostTest::SetUp() {
    DeleteFileW(TracePath().c_str());
    SetEnvironmentVariableW(L"KOR_HTML_TRACE", TracePath().c_str());
    SetEnvironmentVariableW(L"KOR_HTML_MODES", nullptr);
}

void HostTest::TearDown() {
    if (host != nullptr) {
        EXPECT_EQ(0U, host->Close()) << "references to the host that nobody released";
        host.reset();
    }
    EXPECT_TRUE(LibraryIsIdle());
}

void HostTest::Show(const std::wstring& markup, SIZE client) {
    host = std::make_unique<BrowserHost>(client);
    ASSERT_TRUE(host->Open());
    ASSERT_NE(nullptr, host->Element(L"Sections"));
    host->Write(L"Sections", markup);
    ASSERT_NE(nullptr, host->DocumentWindow());
}

Json HostTest::Trace() const {
    Json trace;
    EXPECT_TRUE(ReadTrace(trace)) << "no trace";
    return trace;
}

POINT HostTest::MiddleOf(const std::wstring& id) const {
    const Json trace = Trace();
    const Json* const box = FindBox(trace, id);
    EXPECT_NE(nullptr, box) << "nothing shown of that id";
    if (box == nullptr) {
        return {-1, -1};
    }
    return {(*box)[L"x"].Int() + (*box)[L"width"].Int() / 2,
            (*box)[L"y"].Int() + (*box)[L"height"].Int() / 2};
}

void HostTest::MoveTo(POINT client) const {
    SendMessageW(host->DocumentWindow(), WM_MOUSEMOVE, 0, MAKELPARAM(client.x, client.y));
}

void HostTest::ClickAt(POINT client) const {
    const LPARAM at = MAKELPARAM(client.x, client.y);
    SendMessageW(host->DocumentWindow(), WM_LBUTTONDOWN, MK_LBUTTON, at);
    SendMessageW(host->DocumentWindow(), WM_LBUTTONUP, 0, at);
}

bool LibraryIsIdle() {
    const HMODULE library = GetModuleHandleW(L"htmldocument.dll");
    if (library == nullptr) {
        return true;
    }
    const auto canUnload = reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(library, "DllCanUnloadNow")));
    return canUnload != nullptr && canUnload() == S_OK;
}

} // namespace test
