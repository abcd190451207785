// Copying a key's values, alone or with everything below the key.
#include <cwchar>

#include "registry/CRegistryKey.h"
#include "registry/StringUtilities.h"
#include "registry/TreeWalk.h"

bool CRegistryKey::CopyValues(const CKORString& destination) {
    if (m_handle == nullptr) {
        return false;
    }
    CRegistryKey target;
    target.TakeViewOf(*this);
    if (!target.Open(destination, false) && !target.Open(destination, true)) {
        return false;
    }
    CTable1D<CKORString> names;
    const bool isListed = EnumValueNames(names);
    if (isListed) {
        std::int64_t number = 0;
        for (const CKORString& name : names) {
            CopyValueTo(target, name, number);
        }
    }
    // Closed before its end, so that a copied tree is not flushed key by key.
    target.CloseIfOpen();
    return isListed;
}

// 64-bit numbers and expandable strings become others: docs/quirks.md.
void CRegistryKey::CopyValueTo(CRegistryKey& target, const CKORString& name, std::int64_t& number) {
    RegValueType type = RegValueType::Unknown;
    if (!GetValueType(m_handle, name, type)) {
        return;
    }
    switch (type) {
    case RegValueType::Dword: {
        std::uint32_t value = 0;
        if (ReadDword(name, value)) {
            target.WriteDword(name, value);
        }
        break;
    }
    case RegValueType::Qword: {
        std::int32_t value = 0;
        if (ReadExactly(name, RegValueType::Qword, &value, sizeof value)) {
            number = value;
        }
        target.WriteDword(name, number);
        break;
    }
    case RegValueType::String:
    case RegValueType::ExpandString: {
        CKORString value;
        if (ReadString(name, value)) {
            target.WriteString(name, value);
        }
        break;
    }
    case RegValueType::Binary:
        if (QueryValue(name, RegValueType::Binary)) {
            target.WriteBinary(name, m_readBuffer.get(), m_lastDataSize);
        }
        break;
    default:
        break;
    }
}

bool CRegistryKey::CopyTree(const CKORString& destination, const CKORString& exclusion) {
    if (m_handle == nullptr) {
        return false;
    }
    if (IsExcluded(exclusion)) {
        return true;
    }
    if (!CopyValues(destination)) {
        return false;
    }

    TreeWalk walk;
    CKORString target(destination);
    EnumSubKeyNames(walk.Push().Names);
    walk.Top().TargetLength = target.Length();
    while (true) {
        if (!walk.Top().IsDone()) {
            const CKORString& name = walk.Top().Names[walk.Top().Next++];
            if (!EnterSubKey(name)) {
                // Without the key, the copy goes on with what was listed.
                static_cast<void>(OpenResolved(false, false, true));
                continue;
            }
            AppendPathPiece(target, name);
            if (!IsExcluded(exclusion) && CopyValues(target)) {
                EnumSubKeyNames(walk.Push().Names);
                walk.Top().TargetLength = target.Length();
                continue;
            }
        } else {
            walk.Pop();
            if (walk.IsEmpty()) {
                return true;
            }
        }
        // A failed way back leaves fewer keys to copy: the operation promises what can be copied.
        static_cast<void>(LeaveSubKey());
        kor::ChangeLength(target, walk.Top().TargetLength, L' ');
    }
}

bool CRegistryKey::IsExcluded(const CKORString& exclusion) const {
    const auto length = static_cast<std::size_t>(exclusion.Length());
    return std::wcsncmp(GetFullName().Text(), exclusion.Text(), length) == 0;
}
