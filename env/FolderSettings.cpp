// Asks the sources of a setting in their order.
#include "env/FolderSettings.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <iterator>

#include "env/PathTests.h"
#include "registry/CRegistryKey.h"
#include "registry/StringUtilities.h"

namespace {

constexpr wchar_t DebugSettingsKey[] = L"Settings\\Debug";

struct DebugRoot {
    SymbolicRootId Id;
    SettingSource Source;
};

// The current user's setting overrides the machine's.
constexpr DebugRoot RootsInOrder[] = {
    {SymbolicRootId::CurrentUserRuntime, SettingSource::DebugUser},
    {SymbolicRootId::LocalMachineRuntime, SettingSource::DebugMachine}};

// What is asked before and after the environment variable of the name; null where there is nothing.
struct SourceChain {
    const wchar_t* Name;
    const wchar_t* FolderSetting;
    const wchar_t* PreferredVariable;
    const wchar_t* LastResort;
};

constexpr SourceChain Chains[] = {
    {L"TEMP", L"TempFolder", nullptr, nullptr},
    {L"TRACEFOLDER", L"TraceFolder", nullptr, L"TEMP"},
    {L"KOR_PATH", nullptr, L"KOR_PATH64", nullptr},
};
constexpr SourceChain VariableAlone = {nullptr, nullptr, nullptr, nullptr};

const SourceChain& ChainOf(const wchar_t* name) {
    const auto* const found =
        std::find_if(std::begin(Chains), std::end(Chains), [&](const SourceChain& chain) {
            return kor::EqualIgnoringCase(chain.Name, name);
        });
    return found != std::end(Chains) ? *found : VariableAlone;
}

// The variable may change between the two calls. One that became shorter is taken as it now is,
// one that vanished is not set. One that outgrew the buffer is looked up again with the size that
// it now has: half a path or none would send the caller to another folder. One that still grows
// after some rounds counts as not set.
bool ReadVariable(const wchar_t* name, CKORString& result) {
    constexpr int MaxRounds = 8;
    DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    for (int round = 0; round < MaxRounds && size != 0; ++round) {
        CKORString value;
        value.SetSize(size, false);
        // A variable of no characters gives a length of 0 without an error.
        SetLastError(ERROR_SUCCESS);
        const DWORD length = GetEnvironmentVariableW(name, value.Data(), size);
        if (length == 0 && GetLastError() != ERROR_SUCCESS) {
            return false;
        }
        if (length < size) {
            value[length] = L'\0';
            result = value;
            return true;
        }
        size = length;
    }
    return false;
}

bool ReadValue(CRegistryKey& key, const CKORString& name, CKORString& result, bool asNumber) {
    if (!asNumber) {
        return key.ReadString(name, result);
    }
    // 32 bits are what a debug setting is made with by hand; the text form keeps one type of
    // result.
    std::uint32_t number = 0;
    if (!key.ReadDword(name, number)) {
        return false;
    }
    result = CKORString::Format(L"%u", number);
    return true;
}

// Looks for a setting, and records the sources that it asks if somebody wants to know them.
class SettingSearch {
public:
    explicit SettingSearch(CTable1D<SettingStep>* steps) : m_steps(steps) {}

    // Goes through the sources of the chain.
    bool FindSetting(const wchar_t* name, CKORString& result) {
        const SourceChain& chain = ChainOf(name);
        return (chain.FolderSetting != nullptr && FindFolder(chain.FolderSetting, result)) ||
               (chain.PreferredVariable != nullptr &&
                FindSetting(chain.PreferredVariable, result)) ||
               FindVariable(name, result) ||
               (chain.LastResort != nullptr && FindSetting(chain.LastResort, result));
    }

    bool FindDebugSetting(const wchar_t* name, CKORString& result, bool asNumber) {
        CKORString keyPath(DebugSettingsKey);
        const wchar_t* valueName = name;
        if (const wchar_t* const separator = std::wcsrchr(name, L'\\'); separator != nullptr) {
            valueName = separator + 1;
            if (separator != name) {
                AppendPathPiece(keyPath, CKORString(name).Left(separator - name));
            }
        }
        return std::any_of(std::begin(RootsInOrder), std::end(RootsInOrder),
                           [&](const DebugRoot& root) {
                               CRegistryKey key;
                               const bool isRead = key.OpenSymbolic(root.Id, keyPath, false) &&
                                                   key.ValueExists(valueName) &&
                                                   ReadValue(key, valueName, result, asNumber);
                               return Note(root.Source, name, isRead, result);
                           });
    }

private:
    bool FindFolder(const wchar_t* setting, CKORString& result) {
        CKORString folder;
        if (!FindDebugSetting(setting, folder, false)) {
            return false;
        }
        if (!IsExistingDirectory(folder.Text())) {
            if (m_steps != nullptr) {
                (*m_steps)[m_steps->Count() - 1].IsAnswer = false;
            }
            return false;
        }
        result = folder;
        return true;
    }

    bool FindVariable(const wchar_t* name, CKORString& result) {
        return Note(SettingSource::Environment, name, ReadVariable(name, result), result);
    }

    // Gives back whether the source had an answer.
    bool Note(SettingSource source, const wchar_t* name, bool isFound, const CKORString& value) {
        if (m_steps != nullptr) {
            m_steps->Add({source, name, isFound, isFound ? value : CKORString(), isFound});
        }
        return isFound;
    }

    CTable1D<SettingStep>* m_steps;
};

} // namespace

bool QueryEnvironmentSetting(const wchar_t* name, CKORString& result,
                             CTable1D<SettingStep>* steps) {
    return SettingSearch(steps).FindSetting(name, result);
}

bool QueryEnvironmentSetting(const wchar_t* name, CKORString& result) {
    return QueryEnvironmentSetting(name, result, nullptr);
}

bool ReadDebugSetting(const wchar_t* name, CKORString& result, bool asNumber) {
    return SettingSearch(nullptr).FindDebugSetting(name, result, asNumber);
}
