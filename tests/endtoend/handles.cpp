// handles.exe TITLE: what the process of the window with that title holds of the system, as
// "NAME VALUE" lines: its handles; and where the next user object of this session comes to lie.
// Wine does not count user objects, but gives the lowest free place to a new one, so that a
// thousand which are never destroyed move it by a thousand.
#include <windows.h>
#include <winternl.h>

#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

constexpr auto SystemHandles = static_cast<SYSTEM_INFORMATION_CLASS>(16);
constexpr auto LengthMismatch = static_cast<NTSTATUS>(0xC0000004);

struct HandleEntry {
    ULONG process;
    BYTE type;
    BYTE flags;
    USHORT value;
    void* object;
    ULONG access;
};
struct HandleTable {
    ULONG count;
    HandleEntry entries[1];
};

// -1 when the system does not tell.
long CountHandles(DWORD process) {
    std::vector<std::uintptr_t> buffer(1 << 16);
    ULONG length = 0;
    NTSTATUS status = LengthMismatch;
    while (status == LengthMismatch && buffer.size() < (1 << 24)) {
        buffer.resize(2 * buffer.size());
        status = NtQuerySystemInformation(
            SystemHandles, buffer.data(),
            static_cast<ULONG>(buffer.size() * sizeof(std::uintptr_t)), &length);
    }
    if (status != 0) {
        return -1;
    }
    const auto* const table = reinterpret_cast<const HandleTable*>(buffer.data());
    long count = 0;
    for (ULONG i = 0; i < table->count; ++i) {
        count += table->entries[i].process == process ? 1 : 0;
    }
    return count;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    const HWND window = argc == 2 ? FindWindowW(nullptr, argv[1]) : nullptr;
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    const long handles = CountHandles(process);
    const HWND next =
        CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    std::printf("handles %ld\n", handles);
    std::printf("next-user-object %u\n", LOWORD(reinterpret_cast<std::uintptr_t>(next)));
    return process != 0 && handles > 0 && next != nullptr ? 0 : 1;
}
