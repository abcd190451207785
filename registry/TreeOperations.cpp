// Creating and deleting subkeys, alone and with everything in them.
#include <algorithm>
#include <cwchar>

#include "registry/CRegistryKey.h"
#include "registry/KeyHandles.h"
#include "registry/StringUtilities.h"
#include "registry/TreeWalk.h"

bool CRegistryKey::CreateSubKey(const CKORString& name) {
    if (m_handle == nullptr) {
        return false;
    }
    CKORString subKeyName(name);
    kor::RemoveTrailingBackslashes(subKeyName);
    if (!ReopenForWrite(true)) {
        return false;
    }
    const DWORD options = VolatileClass != 0 ? REG_OPTION_VOLATILE : REG_OPTION_NON_VOLATILE;
    HKEY subKey = nullptr;
    const bool created =
        RegCreateKeyExW(m_handle, subKeyName.Text(), 0, nullptr, options, m_extraAccess | KEY_READ,
                        nullptr, &subKey, nullptr) == ERROR_SUCCESS;
    if (created) {
        m_isFlushDue = true;
        kor::CloseKeyHandle(subKey);
    }
    return ReopenForWrite(false) && created;
}

bool CRegistryKey::DeleteSubKey(const CKORString& path) {
    if (m_handle == nullptr) {
        return false;
    }
    const wchar_t* const separator = std::wcsrchr(path.Text(), L'\\');
    if (separator != nullptr && separator != path.Text()) {
        CKORString parentPath = GetFullName();
        AppendPathPiece(parentPath, path.Left(separator - path.Text()));
        CRegistryKey parent;
        parent.TakeViewOf(*this);
        // A closed parent refuses the deletion.
        static_cast<void>(parent.Open(parentPath, false));
        return parent.DeleteSubKey(separator + 1);
    }
    if (!ReopenForWrite(true)) {
        return false;
    }
    const bool deleted = DeleteTree(path) && DeleteEmptySubKey(path);
    return ReopenForWrite(false) && deleted;
}

bool CRegistryKey::DeleteTree(const CKORString& path) {
    if (m_handle == nullptr) {
        return false;
    }
    const CKORString start(m_subKey);
    const HKEY root = m_ownsRoot ? HKEY_CURRENT_USER : m_root;
    const std::int32_t volatileClass = VolatileClass;
    const bool emptied = OpenRelative(path) && EmptyOpenKey();
    // A key that could not be reopened at all, for one that somebody else deleted meanwhile, has
    // reset the object. Whether something was changed before is forgotten, so it is flushed.
    if (m_root == nullptr) {
        m_root = root;
        VolatileClass = volatileClass;
        m_isFlushDue = true;
    }
    // A refused way back leaves the object closed, but the subkey is empty.
    static_cast<void>(ReturnTo(start));
    return emptied;
}

// Depth first: each subkey is emptied, left and deleted before the next one is entered.
bool CRegistryKey::EmptyOpenKey() {
    TreeWalk walk;
    if (!DeleteAllValues() || !EnumSubKeyNames(walk.Push().Names)) {
        return false;
    }
    while (true) {
        if (!walk.Top().IsDone()) {
            const bool isEntered = EnterSubKey(walk.Top().Names[walk.Top().Next]);
            if (!isEntered || !DeleteAllValues() || !EnumSubKeyNames(walk.Push().Names)) {
                return false;
            }
            continue;
        }
        walk.Pop();
        if (walk.IsEmpty()) {
            return true;
        }
        if (!LeaveSubKey() || !DeleteEmptySubKey(walk.Top().Names[walk.Top().Next])) {
            return false;
        }
        ++walk.Top().Next;
    }
}

bool CRegistryKey::DeleteAllValues() {
    CTable1D<CKORString> names;
    if (!EnumValueNames(names)) {
        return false;
    }
    return std::all_of(names.begin(), names.end(),
                       [this](const CKORString& name) { return DeleteValue(name); });
}

bool CRegistryKey::DeleteEmptySubKey(const CKORString& name) {
    const bool deleted = RegDeleteKeyExW(m_handle, name.Text(), m_extraAccess, 0) == ERROR_SUCCESS;
    m_isFlushDue = m_isFlushDue || deleted;
    return deleted;
}

// Here the name begins with a capital V: docs/quirks.md.
bool CRegistryKey::ClearCurrentUserVolatile() {
    if (!OpenCurrentUserRuntime(L"", false)) {
        return true;
    }
    const bool cleared = DeleteTree(L"Volatile");
    CloseIfOpen();
    Reset();
    return cleared;
}
