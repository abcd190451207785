// Opening, reopening and closing the handle of a key object.
#include "registry/CRegistryKey.h"
#include "registry/KeyHandles.h"
#include "registry/StringUtilities.h"

namespace {

bool RtxModeOfProcess = false;

} // namespace

CRegistryKey::CRegistryKey() : m_rtxLayout(RtxModeOfProcess) {}

CRegistryKey::CRegistryKey(const CKORString& path, bool create) : CRegistryKey() {
    m_constructedWithPath = true;
    m_isConstructing = true;
    static_cast<void>(Open(path, create)); // IsOpen tells
    m_isConstructing = false;
}

CRegistryKey::~CRegistryKey() {
    StampCompanion.reset();
    if (m_isFlushDue) {
        FlushCreated();
    }
    if (m_handle != nullptr) {
        Close();
    }
    if (m_ownsRoot) {
        kor::CloseKeyHandle(m_root);
    }
    if (VolatileMutex != nullptr) {
        ReleaseVolatileMutex();
    }
}

void CRegistryKey::TakeViewOf(const CRegistryKey& other) {
    m_rtxLayout = other.m_rtxLayout;
    m_extraAccess = other.m_extraAccess;
}

void CRegistryKey::SetRtxMode(bool rtxMode) {
    RtxModeOfProcess = rtxMode;
}

bool CRegistryKey::RtxMode() {
    return RtxModeOfProcess;
}

bool CRegistryKey::OpenResolved(bool create, bool write, bool keepOnFailure) {
    if (!keepOnFailure && m_handle != nullptr) {
        return false;
    }
    m_handle = OpenAtSystem(create, write);
    if (m_handle == nullptr && !keepOnFailure) {
        Reset();
    }
    return m_handle != nullptr;
}

HKEY CRegistryKey::OpenAtSystem(bool create, bool write) {
    kor::RemoveTrailingBackslashes(m_subKey);
    TakePerUserRoot();
    HKEY handle = nullptr;
    LSTATUS result = ERROR_SUCCESS;
    if (create) {
        const DWORD options = VolatileClass != 0 ? REG_OPTION_VOLATILE : REG_OPTION_NON_VOLATILE;
        DWORD disposition = 0;
        // For reading only: docs/quirks.md.
        result = RegCreateKeyExW(m_root, m_subKey.Text(), 0, nullptr, options,
                                 m_extraAccess | KEY_READ, nullptr, &handle, &disposition);
        m_isFlushDue = m_isFlushDue || result == ERROR_SUCCESS;
    } else {
        const REGSAM access = write ? KEY_ALL_ACCESS : KEY_READ;
        result = RegOpenKeyExW(m_root, m_subKey.Text(), 0, m_extraAccess | access, &handle);
    }
    if (result != ERROR_SUCCESS) {
        GiveUpPerUserRoot();
        return nullptr;
    }
    return handle;
}

// The predefined current user is that of the process; this is the one of the calling thread.
void CRegistryKey::TakePerUserRoot() {
    if (m_root != HKEY_CURRENT_USER) {
        return;
    }
    HKEY root = nullptr;
    if (RegOpenCurrentUser(KEY_ALL_ACCESS, &root) == ERROR_SUCCESS && root != nullptr) {
        m_root = root;
        m_ownsRoot = true;
    }
}

// The predefined root takes its place again, so that the key can still be named and reopened.
void CRegistryKey::GiveUpPerUserRoot() {
    if (m_ownsRoot) {
        kor::CloseKeyHandle(m_root);
        m_root = HKEY_CURRENT_USER;
        m_ownsRoot = false;
    }
}

bool CRegistryKey::ReopenForWrite(bool write) {
    if (!kor::CloseKeyHandle(m_handle)) {
        return false;
    }
    m_handle = OpenAtSystem(false, write);
    if (m_handle != nullptr || !write) {
        return m_handle != nullptr;
    }
    // The caller learns that it may not write, while reads keep working.
    m_handle = OpenAtSystem(false, false);
    if (m_handle == nullptr) {
        Reset();
    }
    return false;
}

bool CRegistryKey::Close(bool handleOnly) {
    bool closed = kor::CloseKeyHandle(m_handle);
    if (handleOnly) {
        return closed;
    }
    if (m_ownsRoot) {
        closed = kor::CloseKeyHandle(m_root) && closed;
    }
    Reset();
    return closed;
}

bool CRegistryKey::CloseIfOpen() {
    return m_handle != nullptr && Close();
}

void CRegistryKey::Reset() {
    m_root = nullptr;
    m_handle = nullptr;
    m_isFlushDue = false;
    m_ownsRoot = false;
    m_subKey = L"";
    VolatileClass = 0;
    m_constructedWithPath = m_constructedWithPath && m_isConstructing;
}

bool CRegistryKey::Flush() {
    return kor::FlushKeyHandle(m_handle);
}

bool CRegistryKey::FlushCreated() {
    m_isFlushDue = false;
    return m_handle != nullptr && Flush();
}
