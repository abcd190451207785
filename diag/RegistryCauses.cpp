// Asks after a value, its type, and the other view of the registry.
#include "diag/RegistryCauses.h"

#include <windows.h>

#include <cwchar>

#include "registry/CRegistryKey.h"

namespace {

constexpr std::wstring_view Machine = L"HKEY_LOCAL_MACHINE\\";
constexpr std::wstring_view Software = L"HKEY_LOCAL_MACHINE\\Software\\";

// The name of the same key as 32-bit programs see it.
CKORString InOtherView(const CKORString& keyName) {
    return keyName.Left(static_cast<std::int64_t>(Software.size())) + L"Wow6432Node\\" +
           keyName.Mid(static_cast<std::int64_t>(Software.size()));
}

CKORString NameOf(const CKORString& keyName, const wchar_t* value) {
    return CKORString::Format(L"the value \"%s\" of %s", value, keyName.Text());
}

Cause ToBeWritten(Code code, const CKORString& found, const CKORString& keyName,
                  const wchar_t* value) {
    return {code,
            found,
            CKORString(L"Repair the installation, which writes it; or write it yourself, as an "
                       L"administrator, with the right text in place of TEXT: ") +
                CommandLineOf(SetCommand(keyName, value, L"TEXT")).c_str(),
            {}};
}

std::optional<Cause> CauseOfMissing(const CKORString& keyName, const wchar_t* value) {
    const CKORString found = NameOf(keyName, value) + L" does not exist";
    const CKORString otherName = InOtherView(keyName);
    CRegistryKey other(otherName, false);
    CKORString text;
    if (!other.ReadString(value, text)) {
        return ToBeWritten(Code::ValueMissing, found, keyName, value);
    }
    return Cause{Code::ValueInOtherView,
                 found + L", but the 32-bit view of the registry has it: \"" + text + L"\" in " +
                     otherName,
                 L"Write it where the Control Center looks, as an administrator:",
                 SetCommand(keyName, value, text)};
}

} // namespace

std::optional<Cause> CauseOfValue(const CKORString& keyName, const wchar_t* value) {
    CRegistryKey key(keyName, false);
    if (!key.IsOpen() && IsDenied(keyName)) {
        return UnreadableKey(keyName);
    }
    if (!key.ValueExists(value)) {
        return CauseOfMissing(keyName, value);
    }
    CKORString text;
    if (!key.ReadString(value, text)) {
        return ToBeWritten(Code::ValueOfWrongType, NameOf(keyName, value) + L" is not a text",
                           keyName, value);
    }
    return std::nullopt;
}

std::optional<Cause> CauseOfFolderValue(const CKORString& keyName, const wchar_t* value) {
    std::optional<Cause> cause = CauseOfValue(keyName, value);
    CKORString text;
    if (!cause && CRegistryKey(keyName, false).ReadString(value, text) && text.Length() == 0) {
        cause =
            ToBeWritten(Code::ValueEmpty, NameOf(keyName, value) + L" is empty", keyName, value);
    }
    return cause;
}

bool IsDenied(const CKORString& keyName) {
    HKEY key = nullptr;
    const LSTATUS result =
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, keyName.Text() + Machine.size(), 0, KEY_READ, &key);
    if (result == ERROR_SUCCESS) {
        RegCloseKey(key);
    }
    return result == ERROR_ACCESS_DENIED;
}

Cause UnreadableKey(const CKORString& keyName) {
    return {Code::ValueUnreadable,
            CKORString(L"the key ") + keyName + L" cannot be read: access is denied",
            CKORString(L"Give the user the right to read the key, in the registry editor under "
                       L"Permissions: ") +
                keyName,
            {}};
}

std::vector<std::wstring> SetCommand(const CKORString& keyName, const wchar_t* value,
                                     const CKORString& text) {
    return {L"kordiag", L"registry", L"set",      keyName.Text(), value,
            L"string",  text.Text(), L"--create", L"--anywhere"};
}
