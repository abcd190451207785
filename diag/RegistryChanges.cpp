// kordiag registry set, delete-value, create-key, delete-key, delete-tree, copy-values, copy-tree,
// clear-volatile: each is one operation of the registry layer.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cwchar>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "diag/RegistryAccess.h"
#include "diag/ValueTypes.h"
#include "registry/StringUtilities.h"

namespace {

ExitCode Outcome(Streams& streams, bool succeeded, const CKORString& complaint) {
    if (!succeeded) {
        Complain(streams, complaint);
    }
    return succeeded ? ExitCode::Answered : ExitCode::No;
}

CKORString WritableRootRule(const CRegistryKey& key) {
    return CKORString(L"the writable-root rule: values are written only below ") +
           (CRegistryKey::RtxMode() ? L"HKEY_LOCAL_MACHINE in the RTX layout"
                                    : L"HKEY_CURRENT_USER") +
           L" unless --anywhere is given; this is " + key.GetFullName();
}

// Why a value was not written to the open key.
CKORString WhyRefused(const CRegistryKey& key, const CKORString& keyName) {
    if (key.IsOpen() && !key.IsWritableRoot()) {
        return CKORString(L"refused by ") + WritableRootRule(key);
    }
    return CKORString(L"refused by the system: no full access to ") + keyName;
}

// What the text of the command line says, in the form in which it is stored.
struct NewValue {
    RegValueType Type;
    std::uint64_t Number;
    std::vector<unsigned char> Bytes;
    CKORString Text;
};

// Decimal, with a sign if need be, or hexadecimal behind "0x". Negative numbers are stored as their
// two's complement.
std::optional<std::uint64_t> ParseNumber(const std::wstring& text, unsigned bits) {
    const bool isNegative = !text.empty() && text[0] == L'-';
    const std::wstring digits = text.substr(isNegative ? 1 : 0);
    const bool isHex = digits.compare(0, 2, L"0x") == 0 || digits.compare(0, 2, L"0X") == 0;
    const wchar_t* const allowed = isHex ? L"0123456789abcdefABCDEF" : L"0123456789";
    const std::wstring bare = digits.substr(isHex ? 2 : 0);
    if (bare.empty() || bare.find_first_not_of(allowed) != std::wstring::npos) {
        return std::nullopt;
    }
    errno = 0;
    const std::uint64_t number = std::wcstoull(bare.c_str(), nullptr, isHex ? 16 : 10);
    const std::uint64_t smallest = std::uint64_t{1} << (bits - 1);
    const std::uint64_t largest = smallest - 1 + smallest;
    if (errno == ERANGE || number > (isNegative ? smallest : largest)) {
        return std::nullopt;
    }
    return (isNegative ? std::uint64_t{0} - number : number) & largest;
}

int HexDigit(wchar_t c) {
    const wchar_t* const digits = L"0123456789abcdef";
    const wchar_t lower = c >= L'A' && c <= L'F' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
    const wchar_t* const found = c != L'\0' ? std::wcschr(digits, lower) : nullptr;
    return found != nullptr ? static_cast<int>(found - digits) : -1;
}

// Two digits a byte, blanks and commas between the bytes.
std::optional<std::vector<unsigned char>> ParseBytes(const std::wstring& text) {
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == L' ' || text[i] == L',') {
            ++i;
            continue;
        }
        const int high = HexDigit(text[i]);
        const int low = i + 1 < text.size() ? HexDigit(text[i + 1]) : -1;
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<unsigned char>(high * 16 + low));
        i += 2;
    }
    return bytes;
}

std::optional<NewValue> ParseValue(const std::wstring& type, const std::wstring& data) {
    NewValue value = {TypeNamed(type), 0, {}, data.c_str()};
    switch (value.Type) {
    case RegValueType::String:
    case RegValueType::ExpandString:
        return value;
    case RegValueType::Dword:
    case RegValueType::Qword: {
        const auto number = ParseNumber(data, value.Type == RegValueType::Dword ? 32 : 64);
        value.Number = number.value_or(0);
        return number ? std::optional(value) : std::nullopt;
    }
    case RegValueType::Binary: {
        const auto bytes = ParseBytes(data);
        value.Bytes = bytes.value_or(value.Bytes);
        return bytes ? std::optional(value) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

bool Write(CRegistryKey& key, const CKORString& name, const NewValue& value) {
    switch (value.Type) {
    case RegValueType::Dword:
        return key.WriteDword(name, value.Number);
    case RegValueType::Qword:
        return key.WriteQword(name, value.Number);
    case RegValueType::Binary:
        return key.WriteBinary(name, value.Bytes.data(), value.Bytes.size());
    case RegValueType::ExpandString:
        return key.WriteExpandString(name, value.Text);
    default:
        return key.WriteString(name, value.Text);
    }
}

// Runs an operation that takes the key of the first operand and the text of the second one.
ExitCode Change(const Arguments& arguments, Streams& streams,
                bool (CRegistryKey::*operation)(const CKORString&), const wchar_t* failed) {
    SelectLayoutAndRule(arguments);
    CRegistryKey key;
    if (!OpenKey(arguments, streams, key)) {
        return ExitCode::No;
    }
    const CKORString keyName = key.GetFullName();
    return Outcome(streams, (key.*operation)(arguments.Operand(1)),
                   CKORString(failed) + L" \"" + arguments.Operand(1) + L"\" of " + keyName +
                       L": it does not exist, or the system refused");
}

// The layer follows such paths upwards, or to the root, and would empty what they lead to.
bool LeadsOut(const std::wstring& subKey) {
    const std::wstring components = L"\\" + subKey + L"\\";
    return subKey.empty() || subKey[0] == L'\\' || components.find(L"\\..\\") != std::wstring::npos;
}

ExitCode Delete(const Arguments& arguments, Streams& streams,
                bool (CRegistryKey::*operation)(const CKORString&), const wchar_t* failed) {
    if (LeadsOut(arguments.Operands[1])) {
        Complain(streams, L"SUBKEY must be a name, or a path, below the key");
        return ExitCode::WrongUsage;
    }
    return Change(arguments, streams, operation, failed);
}

// The values of a copy are written one by one, and one that is refused is skipped without a word.
void WarnOfRefusedCopies(const Arguments& arguments, Streams& streams) {
    const CRegistryKey destination(arguments.Operand(1), false);
    if (destination.IsOpen() && !destination.IsWritableRoot()) {
        Complain(streams,
                 CKORString(L"no value was copied because of ") + WritableRootRule(destination));
    }
}

// The name of a subkey as the registry writes it; the given one when there is none.
std::wstring StoredName(const CRegistryKey& key, const std::wstring& name) {
    std::wstring stored(name);
    key.VisitSubKeyNames([&](const wchar_t* subKey) {
        const bool isIt = kor::EqualIgnoringCase(subKey, name.c_str());
        if (isIt) {
            stored = subKey;
        }
        return !isIt;
    });
    return stored;
}

// What a copy of the key's tree must leave out: the destination's name when it lies inside the
// source, in the letters that the walk through the source will meet; otherwise a text with which no
// name begins.
CKORString ExclusionOf(const CRegistryKey& source, const CKORString& destination) {
    const std::wstring from(source.GetFullName().Text());
    const std::wstring to(kor::ResolvedName(destination, CRegistryKey::RtxMode()).Text());
    const bool isInside = to.size() > from.size() && to[from.size()] == L'\\' &&
                          _wcsnicmp(to.c_str(), from.c_str(), from.size()) == 0;
    if (!isInside) {
        return kor::EqualIgnoringCase(to.c_str(), from.c_str()) ? CKORString(from.c_str())
                                                                : CKORString(L"\\");
    }
    std::wstring exclusion(from);
    for (std::size_t start = from.size() + 1; start <= to.size();) {
        const std::size_t end = std::min(to.find(L'\\', start), to.size());
        const CRegistryKey parent(exclusion.c_str(), false);
        exclusion += L"\\" + StoredName(parent, to.substr(start, end - start));
        start = end + 1;
    }
    return exclusion.c_str();
}

// A branch whose path in the copy names "volatile" is left out without a word.
void WarnOfBranchesLeftOut(const CRegistryKey& source, const CKORString& destination,
                           const CKORString& exclusion, Streams& streams) {
    CKORString to(destination);
    kor::RemoveTrailingBackslashes(to);
    const std::wstring excluded(exclusion.Text());
    // Level by level, since keys may be nested deeper than the program's stack reaches.
    std::deque<std::wstring> pending = {L""};
    for (; !pending.empty(); pending.pop_front()) {
        const std::wstring branch = pending.front();
        const CRegistryKey key(source.GetFullName() + branch.c_str());
        key.VisitSubKeyNames([&](const wchar_t* name) {
            const std::wstring below = branch + L"\\" + name;
            const CKORString from = source.GetFullName() + below.c_str();
            const CKORString copy = to + below.c_str();
            if (std::wstring(from.Text()).compare(0, excluded.size(), excluded) == 0) {
                return true;
            }
            if (IsRefusedAsVolatile(copy, true) && !CRegistryKey(copy).IsOpen()) {
                Complain(
                    streams,
                    CKORString(L"left out: the copy's path would contain \"volatile\" outside the "
                               L"volatile locations: ") +
                        from);
            } else {
                pending.push_back(below);
            }
            return true;
        });
    }
}

// Runs a copy of the first operand's key to the second operand.
ExitCode Copy(const Arguments& arguments, Streams& streams,
              bool (*copy)(CRegistryKey& key, const CKORString& destination, Streams& streams),
              const wchar_t* failed) {
    SelectLayoutAndRule(arguments);
    CRegistryKey key;
    if (!OpenKey(arguments, streams, key)) {
        return ExitCode::No;
    }
    const bool copied = copy(key, arguments.Operand(1), streams);
    WarnOfRefusedCopies(arguments, streams);
    return Outcome(streams, copied, failed);
}

} // namespace

ExitCode RunRegistrySet(const Arguments& arguments, Streams& streams) {
    const std::optional<NewValue> value = ParseValue(arguments.Operands[2], arguments.Operands[3]);
    if (!value) {
        Complain(streams, L"unknown type, or the data does not fit the type");
        return ExitCode::WrongUsage;
    }
    SelectLayoutAndRule(arguments);
    CRegistryKey key;
    if (!OpenKey(arguments, streams, key)) {
        return ExitCode::No;
    }
    const CKORString keyName = key.GetFullName();
    const bool written = Write(key, arguments.Operand(1), *value);
    return Outcome(streams, written, written ? CKORString() : WhyRefused(key, keyName));
}

ExitCode RunRegistryDeleteValue(const Arguments& arguments, Streams& streams) {
    return Change(arguments, streams, &CRegistryKey::DeleteValue, L"could not delete the value");
}

ExitCode RunRegistryCreateKey(const Arguments& arguments, Streams& streams) {
    return Change(arguments, streams, &CRegistryKey::CreateSubKey, L"could not create the subkey");
}

ExitCode RunRegistryDeleteKey(const Arguments& arguments, Streams& streams) {
    return Delete(arguments, streams, &CRegistryKey::DeleteSubKey, L"could not delete the subkey");
}

ExitCode RunRegistryDeleteTree(const Arguments& arguments, Streams& streams) {
    return Delete(arguments, streams, &CRegistryKey::DeleteTree, L"could not empty the subkey");
}

ExitCode RunRegistryCopyValues(const Arguments& arguments, Streams& streams) {
    return Copy(
        arguments, streams,
        [](CRegistryKey& key, const CKORString& destination, Streams&) {
            return key.CopyValues(destination);
        },
        L"the values could not be copied");
}

ExitCode RunRegistryCopyTree(const Arguments& arguments, Streams& streams) {
    return Copy(
        arguments, streams,
        [](CRegistryKey& key, const CKORString& destination, Streams& errors) {
            const CKORString exclusion = ExclusionOf(key, destination);
            const bool copied = key.CopyTree(destination, exclusion);
            if (copied) {
                WarnOfBranchesLeftOut(key, destination, exclusion, errors);
            }
            return copied;
        },
        L"the tree could not be copied");
}

ExitCode RunRegistryClearVolatile(const Arguments& arguments, Streams& streams) {
    SelectLayoutAndRule(arguments);
    CRegistryKey key;
    return Outcome(
        streams, key.ClearCurrentUserVolatile(),
        L"the key \"Volatile\" of the current user does not exist, or not all of it could "
        L"be deleted");
}
