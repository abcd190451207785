// Writing and deleting values. Each write goes through one protocol: the root must be writable, the
// key is reopened with full access for just the one call, and it is left open for reading.
#include "registry/CRegistryKey.h"
#include "registry/RegistryTypes.h"

namespace {

bool WritesAreAllowedAnywhere = false;

std::uint64_t BytesWithTerminator(const CKORString& text) {
    return (static_cast<std::uint64_t>(text.Length()) + 1) * sizeof(wchar_t);
}

} // namespace

bool CRegistryKey::AllowWritesAnywhere() {
    return WritesAreAllowedAnywhere;
}

void CRegistryKey::SetAllowWritesAnywhere() {
    WritesAreAllowedAnywhere = true;
}

void CRegistryKey::ClearAllowWritesAnywhere() {
    WritesAreAllowedAnywhere = false;
}

bool CRegistryKey::IsWritableRoot() const {
    const HKEY writableRoot = m_rtxLayout ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
    return m_root == writableRoot || m_ownsRoot || WritesAreAllowedAnywhere;
}

bool CRegistryKey::WriteDword(const CKORString& name, std::uint32_t value) {
    return WriteValue(name, RegValueType::Dword, &value, sizeof value);
}

bool CRegistryKey::WriteDword(const CKORString& name, std::int32_t value) {
    return WriteDword(name, static_cast<std::uint32_t>(value));
}

// The 64-bit forms keep the low 32 bits: docs/quirks.md.
bool CRegistryKey::WriteDword(const CKORString& name, std::uint64_t value) {
    return WriteDword(name, static_cast<std::uint32_t>(value));
}

bool CRegistryKey::WriteDword(const CKORString& name, std::int64_t value) {
    return WriteDword(name, static_cast<std::uint32_t>(value));
}

bool CRegistryKey::WriteDword(const CKORString& name, DWORD value) {
    return WriteDword(name, std::uint32_t{value});
}

bool CRegistryKey::WriteDword(const CKORString& name, LONG value) {
    return WriteDword(name, std::int32_t{value});
}

bool CRegistryKey::WriteQword(const CKORString& name, std::uint64_t value) {
    return WriteValue(name, RegValueType::Qword, &value, sizeof value);
}

bool CRegistryKey::WriteQword(const CKORString& name, std::int64_t value) {
    return WriteQword(name, static_cast<std::uint64_t>(value));
}

bool CRegistryKey::WriteString(const CKORString& name, const CKORString& value) {
    return WriteValue(name, RegValueType::String, value.Text(), BytesWithTerminator(value));
}

bool CRegistryKey::WriteExpandString(const CKORString& name, const CKORString& value) {
    return WriteValue(name, RegValueType::ExpandString, value.Text(), BytesWithTerminator(value));
}

bool CRegistryKey::WriteBinary(const CKORString& name, const void* data, std::uint64_t size) {
    return WriteValue(name, RegValueType::Binary, data, size);
}

bool CRegistryKey::WriteValue(const CKORString& name, RegValueType type, const void* data,
                              std::uint64_t size) {
    DWORD registryType = REG_NONE;
    const bool isPossible = kor::ToWritableRegistryType(type, registryType) && size <= MAXDWORD;
    if (!isPossible || m_handle == nullptr || !IsWritableRoot() || !ReopenForWrite(true)) {
        return false;
    }
    const bool written =
        RegSetValueExW(m_handle, name.Text(), 0, registryType, static_cast<const BYTE*>(data),
                       static_cast<DWORD>(size)) == ERROR_SUCCESS;
    m_isFlushDue = m_isFlushDue || written;
    if (!ReopenForWrite(false) || !written) {
        return false;
    }
    StampValueCreator(name);
    return true;
}

// The writable-root rule is for writes only: docs/quirks.md.
bool CRegistryKey::DeleteValue(const CKORString& name) {
    if (m_handle == nullptr || !ReopenForWrite(true)) {
        return false;
    }
    const bool deleted = RegDeleteValueW(m_handle, name.Text()) == ERROR_SUCCESS;
    m_isFlushDue = m_isFlushDue || deleted;
    return ReopenForWrite(false) && deleted;
}
