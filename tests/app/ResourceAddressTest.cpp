// The address of the program's page, from whatever folder the program was started.
#include "mfc/ResourceAddress.h"

#include <gtest/gtest.h>

#include <cwchar>

#include "tests/support/ImportHook.h"

namespace {

// As Windows gives a module's path: cut off, with or without a terminator, when it does not fit.
std::wstring AddressOf(const std::wstring& path, bool terminates = true) {
    HOOK_IMPORT(name, GetModuleFileNameW, [&](HMODULE, LPWSTR out, DWORD size) -> DWORD {
        if (path.size() < size) {
            std::wmemcpy(out, path.c_str(), path.size() + 1);
            return static_cast<DWORD>(path.size());
        }
        std::wmemcpy(out, path.c_str(), size);
        if (terminates) {
            out[size - 1] = L'\0';
        }
        SetLastError(terminates ? ERROR_INSUFFICIENT_BUFFER : ERROR_SUCCESS);
        return size;
    });
    const _bstr_t address = ResourceAddress(129);
    return address.length() != 0 ? std::wstring(address) : std::wstring();
}

TEST(ResourceAddress, EncodesPercentAndHashAndNothingElse) {
    const struct {
        const wchar_t* path;
        const wchar_t* address;
    } cases[] = {
        {L"C:\\a.exe", L"res://C:\\a.exe/129"},
        {L"C:\\a%41b\\a.exe", L"res://C:\\a%2541b\\a.exe/129"},
        {L"C:\\C#\\100%\\a.exe", L"res://C:\\C%23\\100%25\\a.exe/129"},
        {L"C:\\a b;c&d+e[f]{g}'h'~\\\x00FC\x4E2D.exe",
         L"res://C:\\a b;c&d+e[f]{g}'h'~\\\x00FC\x4E2D.exe/129"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(AddressOf(c.path), c.address);
    }
}

TEST(ResourceAddress, DropsTheFormForLongPaths) {
    EXPECT_EQ(AddressOf(L"\\\\?\\C:\\a.exe"), L"res://C:\\a.exe/129");
    EXPECT_EQ(AddressOf(L"\\\\?\\UNC\\server\\share\\a.exe"),
              L"res://\\\\server\\share\\a.exe/129");
    EXPECT_EQ(AddressOf(L"\\\\server\\share\\a.exe"), L"res://\\\\server\\share\\a.exe/129");
}

TEST(ResourceAddress, TakesAPathOfAnyLength) {
    for (const std::size_t length : {258U, 259U, 260U, 261U, 519U, 520U, 521U, 32766U}) {
        for (const bool terminates : {true, false}) {
            SCOPED_TRACE(length);
            const std::wstring path = L"C:\\" + std::wstring(length - 3, L'x');
            EXPECT_EQ(AddressOf(path, terminates), L"res://" + path + L"/129");
        }
    }
}

TEST(ResourceAddress, IsEmptyWithoutAPath) {
    EXPECT_EQ(AddressOf(L""), L"");
    EXPECT_EQ(AddressOf(std::wstring(0x20000, L'x')), L"") << "and asking ends";
}

} // namespace
