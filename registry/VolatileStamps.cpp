// Volatile locations tell who made them: the key "volatile" of a root gets the time, the program
// and the path when it is created, and the name of the first value that is then written.
#include <array>
#include <ctime>
#include <cwchar>
#include <new>
#include <utility>

#include "registry/CRegistryKey.h"
#include "registry/RootTables.h"

namespace {

constexpr wchar_t VolatileKey[] = L"volatile";
constexpr wchar_t CreationTimeValue[] = L"Creation Time";
constexpr wchar_t ProcessNameValue[] = L"Process Name";
constexpr wchar_t PathCreatorValue[] = L"PathCreator";
constexpr wchar_t ValueCreatorValue[] = L"ValueCreator";

// The file name of the running program; empty when its path holds no backslash.
CKORString ProcessName() {
    std::array<wchar_t, 260> path{};
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    path.back() = L'\0';
    const wchar_t* const separator = std::wcsrchr(path.data(), L'\\');
    return CKORString(separator != nullptr ? separator + 1 : L"");
}

} // namespace

CRegistryKey::StampResult CRegistryKey::StampVolatileRoot(const CKORString& creatorPath,
                                                          SymbolicRootId id, bool create) {
    if (!OpenSymbolic(id, CKORString(), create)) {
        return StampResult::Refused;
    }
    const bool exists = SubKeyExists(VolatileKey);
    CloseIfOpen();
    if (exists) {
        return StampResult::Ready;
    }
    if (create) {
        StampCompanion.reset();
        StampCompanion.reset(new (std::nothrow) CRegistryKey());
        if (StampCompanion != nullptr) {
            // It takes the view, but not the layout: docs/quirks.md.
            StampCompanion->m_extraAccess = m_extraAccess;
            // Below, IsOpen tells.
            static_cast<void>(
                StampCompanion->OpenSymbolic(kor::VolatileKeyRootOf(id), VolatileKey, true));
        }
    }
    // Without creation, a companion that an earlier stamping left open gets the stamps.
    if (StampCompanion == nullptr || !StampCompanion->IsOpen()) {
        return StampResult::Refused;
    }
    const auto now = static_cast<std::uint64_t>(_time64(nullptr));
    const CKORString processName = ProcessName();
    // Failed stamps are ignored.
    StampCompanion->WriteDword(CreationTimeValue, now);
    StampCompanion->WriteString(ProcessNameValue, processName);
    StampCompanion->WriteString(PathCreatorValue, creatorPath);
    PendingStampClass = static_cast<std::uint32_t>(kor::VolatileClassOf(id));
    return StampResult::Ready;
}

void CRegistryKey::StampValueCreator(const CKORString& valueName) {
    const std::uint32_t pending = std::exchange(PendingStampClass, 0U);
    const bool isDue = pending != 0 && static_cast<std::uint32_t>(VolatileClass) == pending;
    if (!isDue || StampCompanion == nullptr || !StampCompanion->IsOpen()) {
        return;
    }
    StampCompanion->WriteString(ValueCreatorValue, valueName);
    StampCompanion->Close();
    StampCompanion.reset();
}
