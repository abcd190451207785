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
    SymbolicRootId id;
    SettingSource source;
};

// The current user's setting overrides the machine's.
constexpr DebugRoot RootsInOrder[] = {
    {SymbolicRootId::CurrentUserRuntime, SettingSource::DebugUser},
    {SymbolicRootId::LocalMachineRuntime, SettingSource::DebugMachine}};

using Steps = CTable1D<SettingStep>;

void Note(Steps* steps, const SettingStep& step) {
    if (steps != nullptr) {
        steps->Add(step);
    }
}

// What is asked before and after the environment variable of the name; null where there is nothing.
struct SourceChain {
    const wchar_t* name;
    const wchar_t* folderSetting;
    const wchar_t* preferredVariable;
    const wchar_t* lastResort;
};

constexpr SourceChain Chains[] = {
    {L"TEMP", L"TempFolder", nullptr, nullptr},
    {L"TRACEFOLDER", L"TraceFolder", nullptr, L"TEMP"},
    {L"KOR_PATH", nullptr, L"KOR_PATH64", nullptr},
};
constexpr SourceChain VariableAlone = {nullptr, nullptr, nullptr, nullptr};

const SourceChain& ChainOf(const wchar_t* name) {
    const auto* const found =
        std::find_if(std::begin(Chains), std::end(Chains),
                     [&](const SourceChain& chain) { return _wcsicmp(chain.name, name) == 0; });
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

bool ReadDebugSetting(const wchar_t* name, CKORString& result, bool asNumber, Steps* steps) {
    CKORString keyPath(DebugSettingsKey);
    const wchar_t* valueName = name;
    if (const wchar_t* const separator = std::wcsrchr(name, L'\\'); separator != nullptr) {
        valueName = separator + 1;
        if (separator != name) {
            AppendPathPiece(keyPath, CKORString(name).Left(separator - name));
        }
    }
    return std::any_of(
        std::begin(RootsInOrder), std::end(RootsInOrder), [&](const DebugRoot& root) {
            CRegistryKey key;
            const bool isRead = key.OpenSymbolic(root.id, keyPath, false) &&
                                key.ValueExists(valueName) &&
                                ReadValue(key, valueName, result, asNumber);
            Note(steps, {root.source, name, isRead, isRead ? result : CKORString(), isRead});
            return isRead;
        });
}

bool ReadFolderSetting(const wchar_t* setting, CKORString& result, Steps* steps) {
    CKORString folder;
    if (!ReadDebugSetting(setting, folder, false, steps)) {
        return false;
    }
    if (!IsExistingDirectory(folder.Text())) {
        if (steps != nullptr) {
            (*steps)[steps->Count() - 1].IsAnswer = false;
        }
        return false;
    }
    result = folder;
    return true;
}

bool ReadVariable(const wchar_t* name, CKORString& result, Steps* steps) {
    const bool isSet = ReadVariable(name, result);
    Note(steps, {SettingSource::Environment, name, isSet, isSet ? result : CKORString(), isSet});
    return isSet;
}

} // namespace

bool QueryEnvironmentSetting(const wchar_t* name, CKORString& result,
                             CTable1D<SettingStep>* steps) {
    const SourceChain& chain = ChainOf(name);
    return (chain.folderSetting != nullptr &&
            ReadFolderSetting(chain.folderSetting, result, steps)) ||
           (chain.preferredVariable != nullptr &&
            QueryEnvironmentSetting(chain.preferredVariable, result, steps)) ||
           ReadVariable(name, result, steps) ||
           (chain.lastResort != nullptr &&
            QueryEnvironmentSetting(chain.lastResort, result, steps));
}

bool QueryEnvironmentSetting(const wchar_t* name, CKORString& result) {
    return QueryEnvironmentSetting(name, result, nullptr);
}

bool ReadDebugSetting(const wchar_t* name, CKORString& result, bool asNumber) {
    return ReadDebugSetting(name, result, asNumber, nullptr);
}
