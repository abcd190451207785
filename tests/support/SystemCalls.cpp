// Records the page's system calls as text.
#include "tests/support/SystemCalls.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <shlwapi.h>

#include "tests/support/ImportHook.h"

namespace test {

std::string Narrow(const wchar_t* text) {
    const std::wstring wide = text != nullptr ? text : L"(null)";
    return std::string(wide.begin(), wide.end());
}

Calls CallsOf(const std::function<void()>& work) {
    Calls calls;
    HOOK_IMPORT(open, RegOpenKeyExW,
                [&](HKEY root, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
                    EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
                    EXPECT_EQ(options, 0U);
                    EXPECT_EQ(access, static_cast<REGSAM>(KEY_READ));
                    calls.push_back("open " + Narrow(subKey));
                    return open.Original(root, subKey, options, access, result);
                });
    HOOK_IMPORT(create, RegCreateKeyExW, [&](auto...) -> LSTATUS {
        calls.emplace_back("create");
        return ERROR_ACCESS_DENIED;
    });
    HOOK_IMPORT(user, RegOpenCurrentUser, [&](auto...) -> LSTATUS {
        calls.emplace_back("user");
        return ERROR_ACCESS_DENIED;
    });
    HOOK_IMPORT(
        query, RegQueryValueExW,
        [&](HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
            const char* const kind = data != nullptr   ? "read "
                                     : type != nullptr ? "type "
                                                       : "probe ";
            calls.push_back(kind + Narrow(name));
            return query.Original(key, name, reserved, type, data, size);
        });
    HOOK_IMPORT(enumerate, RegEnumKeyExW, [&](HKEY key, DWORD index, auto... rest) {
        calls.push_back("enumerate " + std::to_string(index));
        return enumerate.Original(key, index, rest...);
    });
    HOOK_IMPORT(close, RegCloseKey, [&](HKEY key) {
        calls.emplace_back("close");
        return close.Original(key);
    });
    HOOK_IMPORT(attributes, GetFileAttributesW, [&](LPCWSTR path) {
        calls.push_back("attributes " + Narrow(path));
        return attributes.Original(path);
    });
    HOOK_IMPORT(exists, PathFileExistsW, [&](LPCWSTR path) {
        calls.push_back("exists " + Narrow(path));
        return exists.Original(path);
    });
    HOOK_IMPORT(empty, PathIsDirectoryEmptyW, [&](LPCWSTR path) {
        calls.push_back("empty? " + Narrow(path));
        return empty.Original(path);
    });
    work();
    return calls;
}

} // namespace test
