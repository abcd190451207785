// How the path that a key object is given becomes a root handle and a subkey.
#include <cwchar>

#include "registry/CRegistryKey.h"
#include "registry/RootTables.h"
#include "registry/StringUtilities.h"
#include "registry/VolatileClassification.h"

namespace {

// Set while no stamping is under way: the openings that a stamping makes are not stamped
// themselves.
bool VolatileStampGuard = true;

class StampingUnderWay {
public:
    StampingUnderWay() { VolatileStampGuard = false; }
    StampingUnderWay(const StampingUnderWay&) = delete;
    StampingUnderWay& operator=(const StampingUnderWay&) = delete;
    ~StampingUnderWay() { VolatileStampGuard = true; }
};

struct SplitPath {
    CKORString RootName;
    CKORString Rest;
};

SplitPath SplitAtFirstBackslash(const CKORString& path) {
    const wchar_t* const separator = std::wcschr(path.Text(), L'\\');
    if (separator == nullptr) {
        return {path, CKORString()};
    }
    return {path.Left(separator - path.Text()), CKORString(separator + 1)};
}

} // namespace

CKORString kor::ResolvedName(const CKORString& path, bool rtxLayout) {
    const SplitPath split = SplitAtFirstBackslash(path);
    const wchar_t* const rootName = split.RootName.Text();
    CKORString name;
    if (const kor::SymbolicRoot* const symbolic = kor::FindSymbolicRoot(rootName)) {
        const kor::RootLocation& location = symbolic->In(rtxLayout);
        name = kor::FindRealRoot(kor::HandleOf(location.Hive))->Name;
        name += L"\\";
        name += location.Prefix;
    } else if (const kor::RealRoot* const root = kor::FindRealRoot(rootName)) {
        name = root->Name;
        name += L"\\";
    } else {
        return name;
    }
    name += split.Rest;
    kor::RemoveTrailingBackslashes(name);
    return name;
}

bool CRegistryKey::Open(const CKORString& path, bool create) {
    const SplitPath split = SplitAtFirstBackslash(path);
    const wchar_t* const rootName = split.RootName.Text();
    if (const kor::SymbolicRoot* const root = kor::FindSymbolicRoot(rootName)) {
        return OpenSymbolic(root->Id, split.Rest, create);
    }

    CloseIfOpen();
    Reset();
    const kor::RealRoot* const root = kor::FindRealRoot(rootName);
    if (!PrepareVolatile(split.Rest, rootName, SymbolicRootId::None, create) || root == nullptr) {
        return false;
    }
    m_root = kor::HandleOf(root->Hive);
    m_subKey = split.Rest;
    return OpenResolved(create, false, false);
}

bool CRegistryKey::OpenSymbolic(SymbolicRootId id, const CKORString& subPath, bool create) {
    CloseIfOpen();
    Reset();
    if (!PrepareVolatile(subPath, L"", id, create)) {
        return false;
    }
    // Without a root the opening below fails.
    if (const kor::SymbolicRoot* const root = kor::FindSymbolicRoot(id)) {
        const kor::RootLocation& location = root->In(m_rtxLayout);
        m_root = kor::HandleOf(location.Hive);
        m_subKey = location.Prefix;
    }
    m_subKey += subPath.Text();
    return OpenResolved(create, false, false);
}

bool CRegistryKey::OpenLocalMachineRuntime(const CKORString& subPath, bool create) {
    return OpenSymbolic(SymbolicRootId::LocalMachineRuntime, subPath, create);
}

bool CRegistryKey::OpenCurrentUserRuntime(const CKORString& subPath, bool create) {
    return OpenSymbolic(SymbolicRootId::CurrentUserRuntime, subPath, create);
}

// Sets VolatileClass; false when the path may not be opened. The object is reset before, and is so
// again after a refusal.
bool CRegistryKey::PrepareVolatile(const CKORString& subPath, const wchar_t* rootName,
                                   SymbolicRootId id, bool create) {
    const kor::VolatileKind kind =
        kor::ClassifyVolatile(subPath, rootName, id, create, m_rtxLayout);
    if (kind != kor::VolatileKind::Volatile) {
        return kind != kor::VolatileKind::Refused;
    }
    if (VolatileStampGuard) {
        const StampingUnderWay underWay;
        if (StampVolatileRoot(subPath, id, create) == StampResult::Refused) {
            return false;
        }
    }
    VolatileClass = kor::VolatileClassOf(id);
    return true;
}

CKORString CRegistryKey::GetFullName() const {
    const kor::RealRoot* const root = kor::FindRealRoot(m_ownsRoot ? HKEY_CURRENT_USER : m_root);
    CKORString name(root != nullptr ? root->Name : L"");
    if (m_subKey.Length() > 0) {
        if (name.Length() > 0) {
            name += L"\\";
        }
        name += m_subKey.Text();
    }
    return name;
}
