// How a program uses the registry layer: settings of the current user, a walk, and volatile data
// that several programs share. It removes its settings at the end; its volatile data goes with the
// next restart of the system.
#include <cstdio>

#include "registry/CRegistryKey.h"

namespace {

constexpr wchar_t Settings[] = L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\Settings\\Example";

bool SaveSettings() {
    CRegistryKey key(Settings, true);
    return key.IsOpen() && key.WriteString(L"Camera", L"left") && key.WriteDword(L"Gain", 12) &&
           key.CreateSubKey(L"Left") && key.CreateSubKey(L"Right");
}

bool ShowSettings() {
    CRegistryKey key(Settings);
    CKORString camera;
    std::uint32_t gain = 0;
    if (!key.ReadString(L"Camera", camera) || !key.ReadDword(L"Gain", gain)) {
        return false;
    }
    std::printf("camera %ls, gain %u\n", camera.Text(), static_cast<unsigned>(gain));
    return true;
}

bool ShowSubKeys() {
    CRegistryKey key(Settings);
    CTable1D<CKORString> names;
    if (!key.EnumSubKeyNames(names)) {
        return false;
    }
    for (const CKORString& name : names) {
        std::printf("  %ls\n", name.Text());
    }
    return true;
}

bool CountThisRun(std::uint32_t& runs) {
    CRegistryKey key(L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\volatile\\Example", true);
    if (!key.LockVolatile()) {
        static_cast<void>(key.UnlockVolatile()); // an abandoned mutex is held after a failed lock
        return false;
    }
    runs = 0;
    key.ReadDword(L"Runs", runs);
    ++runs;
    const bool written = key.WriteDword(L"Runs", runs);
    return key.UnlockVolatile() && written;
}

bool RemoveSettings() {
    CRegistryKey key(L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\Settings");
    return key.DeleteSubKey(L"Example");
}

} // namespace

int main() {
    std::uint32_t runs = 0;
    const bool worked = SaveSettings() && ShowSettings() && ShowSubKeys() && CountThisRun(runs) &&
                        CountThisRun(runs) && RemoveSettings();
    std::printf("%u runs since the system started: %s\n", static_cast<unsigned>(runs),
                worked ? "done" : "failed");
    return worked ? 0 : 1;
}
