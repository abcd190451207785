// Compares a path with the places of volatile keys.
#include "registry/VolatileClassification.h"

#include <cwchar>
#include <cwctype>
#include <string_view>

#include "registry/RootTables.h"
#include "registry/StringUtilities.h"

namespace kor {
namespace {

constexpr std::wstring_view VolatileWord = L"volatile";

// The order in which a real path is compared with the volatile locations below its root.
constexpr SymbolicRootId LocalMachineCandidates[] = {
    SymbolicRootId::LocalMachineRuntime,      SymbolicRootId::LocalMachineDevelopment,
    SymbolicRootId::LocalMachineImagingBoard, SymbolicRootId::LocalMachineRoot,
    SymbolicRootId::CommonToolsFolder,
};
constexpr SymbolicRootId CurrentUserCandidates[] = {
    SymbolicRootId::CurrentUserRuntime,
    SymbolicRootId::CurrentUserDevelopment,
};

void LowerCase(CKORString& text) {
    for (wchar_t& c : text) {
        c = static_cast<wchar_t>(std::towlower(c));
    }
}

void RemoveOuterBackslashes(CKORString& text) {
    RemoveTrailingBackslashes(text);
    RemoveLeadingBackslashes(text);
}

bool BeginsWith(const CKORString& text, std::wstring_view start) {
    return std::wcsncmp(text.Text(), start.data(), start.size()) == 0;
}

// The key "volatile" below the root, in the form that paths are compared in.
CKORString VolatileLocationOf(SymbolicRootId id, bool rtxLayout) {
    CKORString location(FindSymbolicRoot(id)->In(rtxLayout).Prefix);
    AppendPathPiece(location, VolatileWord.data());
    LowerCase(location);
    RemoveOuterBackslashes(location);
    return location;
}

bool LiesIn(const CKORString& path, const CKORString& location) {
    if (EqualIgnoringCase(path.Text(), location.Text())) {
        return true;
    }
    const std::wstring_view start(location.Text(), static_cast<std::size_t>(location.Length()));
    return BeginsWith(path, start) && IsPathSeparator(path[location.Length()]);
}

template <std::size_t Size>
SymbolicRootId FindLocation(const CKORString& path, const SymbolicRootId (&candidates)[Size],
                            bool rtxLayout) {
    for (const SymbolicRootId candidate : candidates) {
        if (LiesIn(path, VolatileLocationOf(candidate, rtxLayout))) {
            return candidate;
        }
    }
    return SymbolicRootId::None;
}

SymbolicRootId FindLocationBelow(const wchar_t* rootName, const CKORString& path, bool rtxLayout) {
    if (EqualIgnoringCase(rootName, L"HKEY_LOCAL_MACHINE")) {
        return FindLocation(path, LocalMachineCandidates, rtxLayout);
    }
    // In the real-time layout, too: docs/quirks.md.
    if (EqualIgnoringCase(rootName, L"HKEY_CURRENT_USER")) {
        return FindLocation(path, CurrentUserCandidates, rtxLayout);
    }
    return SymbolicRootId::None;
}

// Only the first component of a symbolic path may be "volatile". The separator is looked for in the
// path as it was passed, so a leading backslash makes the test miss: docs/quirks.md.
bool IsVolatileBelowSymbolicRoot(const CKORString& subPath, const CKORString& stripped) {
    if (EqualIgnoringCase(stripped.Text(), VolatileWord.data())) {
        return true;
    }
    const auto end = static_cast<std::int64_t>(VolatileWord.size());
    return BeginsWith(stripped, VolatileWord) && IsPathSeparator(subPath[end]);
}

} // namespace

VolatileKind ClassifyVolatile(const CKORString& subPath, const wchar_t* rootName,
                              SymbolicRootId& id, bool create, bool rtxLayout) {
    CKORString path(subPath);
    LowerCase(path);
    if (!ContainsText(path, VolatileWord.data())) {
        return VolatileKind::Ordinary;
    }
    RemoveOuterBackslashes(path);

    if (id != SymbolicRootId::None) {
        return IsVolatileBelowSymbolicRoot(subPath, path) ? VolatileKind::Volatile
                                                          : VolatileKind::Refused;
    }
    if (BeginsWith(path, VolatileWord)) {
        return VolatileKind::Refused;
    }
    const SymbolicRootId found = FindLocationBelow(rootName, path, rtxLayout);
    if (found != SymbolicRootId::None) {
        id = found;
        return VolatileKind::Volatile;
    }
    return create ? VolatileKind::Refused : VolatileKind::OrdinaryReadOnly;
}

} // namespace kor
