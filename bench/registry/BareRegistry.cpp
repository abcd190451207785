// What the layer does, with the system's calls alone.
#include "bench/registry/BareRegistry.h"

#include <array>
#include <utility>
#include <vector>

namespace bare {

long Calls = 0;

namespace {

// The read buffer of the layer grows once and is kept, so this one does too.
std::vector<BYTE> Buffer(1024);

LSTATUS Counted(LSTATUS result) {
    ++Calls;
    return result;
}

HKEY OpenBelow(HKEY root, const std::wstring& subKey, REGSAM access) {
    HKEY key = nullptr;
    Counted(RegOpenKeyExW(root, subKey.c_str(), 0, access, &key));
    return key;
}

void Reopen(OpenKey& open, const std::wstring& subKey, REGSAM access) {
    Counted(RegCloseKey(open.key));
    open.key = OpenBelow(open.root, subKey, access);
}

DWORD Query(HKEY key, const wchar_t* name) {
    DWORD size = 0;
    if (Counted(RegQueryValueExW(key, name, nullptr, nullptr, nullptr, &size)) != ERROR_SUCCESS) {
        return 0;
    }
    DWORD type = 0;
    size = static_cast<DWORD>(Buffer.size());
    if (Counted(RegQueryValueExW(key, name, nullptr, &type, Buffer.data(), &size)) ==
        ERROR_MORE_DATA) {
        Buffer.resize(size);
        Counted(RegQueryValueExW(key, name, nullptr, &type, Buffer.data(), &size));
    }
    return size;
}

template <typename Enumerate>
std::vector<std::wstring> Names(HKEY key, Enumerate enumerate) {
    std::vector<std::wstring> names;
    std::array<wchar_t, 1024> name;
    for (DWORD index = 0;; ++index) {
        DWORD length = 1024;
        if (Counted(enumerate(key, index, name.data(), &length, nullptr, nullptr, nullptr,
                              nullptr)) != ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name.data(), length);
    }
}

std::wstring Joined(const std::wstring& path, const std::wstring& name) {
    std::wstring joined(path);
    joined += L'\\';
    joined += name;
    return joined;
}

void CopyValues(HKEY source, const std::wstring& destination) {
    OpenKey target = Open(destination);
    if (target.key == nullptr) {
        Counted(RegCloseKey(target.root));
        Counted(RegOpenCurrentUser(KEY_ALL_ACCESS, &target.root));
        DWORD disposition = 0;
        Counted(RegCreateKeyExW(target.root, destination.c_str(), 0, nullptr, 0, KEY_READ, nullptr,
                                &target.key, &disposition));
    }
    for (const std::wstring& name : Names(source, RegEnumValueW)) {
        DWORD type = 0;
        Counted(RegQueryValueExW(source, name.c_str(), nullptr, &type, nullptr, nullptr));
        DWORD number = 0;
        ReadNumber(source, name.c_str(), number);
        WriteNumber(target, destination, name.c_str(), number);
    }
    Close(target);
}

} // namespace

OpenKey Open(const std::wstring& subKey) {
    OpenKey open = {};
    Counted(RegOpenCurrentUser(KEY_ALL_ACCESS, &open.root));
    open.key = OpenBelow(open.root, subKey, KEY_READ);
    return open;
}

void Close(const OpenKey& open) {
    Counted(RegCloseKey(open.key));
    Counted(RegCloseKey(open.root));
}

void OpenAndCloseMachine(const std::wstring& subKey) {
    Counted(RegCloseKey(OpenBelow(HKEY_LOCAL_MACHINE, subKey, KEY_READ)));
}

bool ReadText(HKEY key, const wchar_t* name, std::wstring& text) {
    DWORD type = 0;
    if (Counted(RegQueryValueExW(key, name, nullptr, &type, nullptr, nullptr)) != ERROR_SUCCESS) {
        return false;
    }
    const DWORD size = Query(key, name);
    text.assign(reinterpret_cast<const wchar_t*>(Buffer.data()), size / sizeof(wchar_t));
    return true;
}

bool ReadNumber(HKEY key, const wchar_t* name, DWORD& number) {
    if (Query(key, name) != sizeof number) {
        return false;
    }
    memcpy(&number, Buffer.data(), sizeof number);
    return true;
}

bool WriteNumber(OpenKey& open, const std::wstring& subKey, const wchar_t* name, DWORD number) {
    Reopen(open, subKey, KEY_ALL_ACCESS);
    const LSTATUS result = Counted(RegSetValueExW(
        open.key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number));
    Reopen(open, subKey, KEY_READ);
    return result == ERROR_SUCCESS;
}

long CountSubKeyNames(HKEY key) {
    return static_cast<long>(Names(key, RegEnumKeyExW).size());
}

void CopyTree(OpenKey& open, const std::wstring& subKey, const std::wstring& destination) {
    CopyValues(open.key, destination);
    for (const std::wstring& name : Names(open.key, RegEnumKeyExW)) {
        const std::wstring child = Joined(subKey, name);
        Reopen(open, child, KEY_READ);
        CopyTree(open, child, Joined(destination, name));
        Reopen(open, subKey, KEY_READ);
    }
}

void Empty(OpenKey& open, const std::wstring& subKey) {
    for (const std::wstring& name : Names(open.key, RegEnumValueW)) {
        Reopen(open, subKey, KEY_ALL_ACCESS);
        Counted(RegDeleteValueW(open.key, name.c_str()));
        Reopen(open, subKey, KEY_READ);
    }
    for (const std::wstring& name : Names(open.key, RegEnumKeyExW)) {
        const std::wstring child = Joined(subKey, name);
        Reopen(open, child, KEY_READ);
        Empty(open, child);
        Reopen(open, subKey, KEY_READ);
        Counted(RegDeleteKeyExW(open.key, name.c_str(), 0, 0));
    }
}

void DeleteTree(OpenKey& open, const std::wstring& subKey, const std::wstring& name) {
    const std::wstring child = Joined(subKey, name);
    Reopen(open, child, KEY_READ);
    Empty(open, child);
    Reopen(open, subKey, KEY_READ);
}

} // namespace bare
