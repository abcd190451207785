// Moving a key object from one key to another below the same root.
#include <cwchar>

#include "registry/CRegistryKey.h"
#include "registry/KeyHandles.h"
#include "registry/StringUtilities.h"

namespace {

bool BeginsWithParent(const wchar_t* path) {
    return path[0] == L'.' && path[1] == L'.' && (path[2] == L'\\' || path[2] == L'\0');
}

CKORString ParentOf(const CKORString& subKey) {
    const wchar_t* const separator = std::wcsrchr(subKey.Text(), L'\\');
    return separator != nullptr ? subKey.Left(separator - subKey.Text()) : CKORString();
}

void AppendComponent(CKORString& subKey, const wchar_t* component) {
    if (subKey.Length() > 0) {
        subKey += L"\\";
    }
    subKey += component;
}

// Moves subKey along the path; false when the path leads nowhere.
bool MoveText(CKORString& subKey, const wchar_t* path) {
    if (*path == L'\0') {
        return false;
    }
    while (*path == L'\\' || BeginsWithParent(path)) {
        if (*path == L'\\') {
            subKey = L"";
            path += 1;
        } else {
            if (subKey.Length() == 0) {
                return false;
            }
            subKey = ParentOf(subKey);
            path += path[2] == L'\\' ? 3 : 2;
        }
        if (*path == L'\0') {
            return true;
        }
    }
    // A ".." further on is not interpreted: docs/quirks.md.
    AppendComponent(subKey, path);
    return true;
}

} // namespace

bool CRegistryKey::OpenRelative(const CKORString& path) {
    CKORString subKey(m_subKey);
    if (!MoveText(subKey, path.Text())) {
        LeaveClosed();
        return false;
    }
    return MoveTo(subKey);
}

bool CRegistryKey::MoveTo(const CKORString& subKey) {
    const CKORString start(m_subKey);
    m_subKey = subKey;
    const bool isOpen =
        m_handle != nullptr ? ReopenForWrite(false) : OpenResolved(false, false, true);
    if (!isOpen) {
        m_subKey = start;
        LeaveClosed();
    }
    return isOpen;
}

// The object still knows where it is, so it can be moved on from there.
void CRegistryKey::LeaveClosed() {
    if (m_handle != nullptr) {
        kor::CloseKeyHandle(m_handle);
        m_handle = nullptr;
    }
    GiveUpPerUserRoot();
}

bool CRegistryKey::EnterSubKey(const CKORString& name) {
    // It would lead to the same key again, and the walk would not end.
    if (name.Length() == 0) {
        LeaveClosed();
        return false;
    }
    CKORString subKey(m_subKey);
    AppendComponent(subKey, name.Text());
    return MoveTo(subKey);
}

bool CRegistryKey::LeaveSubKey() {
    return ReturnTo(ParentOf(m_subKey));
}

bool CRegistryKey::ReturnTo(const CKORString& start) {
    if (MoveTo(start)) {
        return true;
    }
    // Once more, so that one refused call does not leave the object closed.
    m_subKey = start;
    static_cast<void>(OpenResolved(false, false, true));
    return false;
}
