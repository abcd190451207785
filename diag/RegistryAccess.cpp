// Opens the key that an operand names and says why it could not.
#include "diag/RegistryAccess.h"

#include <cwchar>
#include <vector>

#include "registry/RootTables.h"
#include "registry/VolatileClassification.h"

namespace {

// Why a key could not be opened.
CKORString WhyNotOpened(const CKORString& path, bool create) {
    const CKORString name = kor::ResolvedName(path, CRegistryKey::RtxMode());
    if (name.Length() == 0) {
        return CKORString(L"the path does not begin with a known root: ") + path;
    }
    if (IsRefusedAsVolatile(path, create)) {
        return CKORString(
                   L"refused: the path contains \"volatile\" outside the volatile locations: ") +
               name;
    }
    return create ? CKORString(L"the key could not be created: ") + name
                  : CKORString(L"the key does not exist or cannot be read: ") + name;
}

CKORString HexDigits(const std::vector<unsigned char>& bytes) {
    constexpr wchar_t Digits[] = L"0123456789abcdef";
    CKORString text;
    text.SetSize(static_cast<std::int64_t>(bytes.size()) * 2 + 1, false);
    wchar_t* digit = text.Data();
    for (const unsigned char byte : bytes) {
        *digit++ = Digits[byte >> 4U];
        *digit++ = Digits[byte & 0xFU];
    }
    *digit = L'\0';
    return text;
}

bool ReadNumber(CRegistryKey& key, const CKORString& name, RegValueType type,
                std::uint64_t& number) {
    return (type == RegValueType::Dword && key.ReadDwordAsUInt64(name, number)) ||
           (type == RegValueType::Qword && key.ReadQword(name, number));
}

bool ReadBytes(CRegistryKey& key, const CKORString& name, CKORString& text) {
    // With no room, the read fails and tells the size.
    std::uint64_t size = 0;
    unsigned char none = 0;
    if (key.ReadBinary(name, &none, size)) {
        text = L"";
        return true;
    }
    std::vector<unsigned char> bytes(size);
    if (!key.ReadBinary(name, bytes.data(), size)) {
        return false;
    }
    bytes.resize(size);
    text = HexDigits(bytes);
    return true;
}

} // namespace

void SelectLayoutAndRule(const Arguments& arguments) {
    CRegistryKey::SetRtxMode(arguments.Has(OptionRtx));
    if (arguments.Has(OptionAnywhere)) {
        CRegistryKey::SetAllowWritesAnywhere();
    }
}

bool OpenKey(const Arguments& arguments, Streams& streams, CRegistryKey& key) {
    const CKORString path = arguments.Operand(0);
    const bool create = arguments.Has(OptionCreate);
    if (key.Open(path, create)) {
        return true;
    }
    Complain(streams, WhyNotOpened(path, create));
    return false;
}

bool IsRefusedAsVolatile(const CKORString& path, bool create) {
    const wchar_t* const separator = std::wcschr(path.Text(), L'\\');
    const CKORString rootName =
        separator != nullptr ? path.Left(separator - path.Text()) : CKORString(path);
    const kor::SymbolicRoot* const root = kor::FindSymbolicRoot(rootName.Text());
    SymbolicRootId id = root != nullptr ? root->Id : SymbolicRootId::None;
    const CKORString rest(separator != nullptr ? separator + 1 : L"");
    return kor::ClassifyVolatile(rest, rootName.Text(), id, create, CRegistryKey::RtxMode()) ==
           kor::VolatileKind::Refused;
}

void Complain(Streams& streams, const CKORString& words) {
    streams.Err.Write(L"kordiag: ", Printable(words), L"\n");
}

void WriteData(JsonWriter& json, CRegistryKey& key, const CKORString& name, RegValueType type) {
    std::uint64_t number = 0;
    CKORString text;
    if (ReadNumber(key, name, type, number)) {
        json.Number(number);
    } else if (ReadData(key, name, type, text)) {
        json.Text(text);
    } else {
        json.Null();
    }
}

bool ReadData(CRegistryKey& key, const CKORString& name, RegValueType type, CKORString& text) {
    std::uint64_t number = 0;
    if (ReadNumber(key, name, type, number)) {
        text = std::to_wstring(number).c_str();
        return true;
    }
    return type == RegValueType::Binary ? ReadBytes(key, name, text) : key.ReadString(name, text);
}
