// Tells the end-to-end test how many GDI objects the process of the window with the given title
// has. GetGuiResources answers 0 under Wine; there the process's own handle table is counted, which
// the process environment block points to.
#include <windows.h>
#include <winternl.h>

#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

struct HandleEntry {
    std::uint64_t object;
    std::uint32_t owner;
    std::uint16_t unique;
    std::uint8_t type; // 0: the entry is free
    std::uint8_t flags;
    std::uint64_t userPointer;
};
constexpr std::size_t TableLength = 16384;
constexpr std::size_t TableInBlock = 0xF8; // of a 64-bit process

bool Read(HANDLE process, std::uintptr_t from, void* to, std::size_t size) {
    SIZE_T read = 0;
    return ReadProcessMemory(process, reinterpret_cast<const void*>(from), to, size, &read) &&
           read == size;
}

long CountTable(HANDLE process) {
    PROCESS_BASIC_INFORMATION basic = {};
    std::uintptr_t table = 0;
    std::vector<HandleEntry> entries(TableLength);
    if (NtQueryInformationProcess(process, ProcessBasicInformation, &basic, sizeof(basic),
                                  nullptr) != 0 ||
        !Read(process, reinterpret_cast<std::uintptr_t>(basic.PebBaseAddress) + TableInBlock,
              &table, sizeof(table)) ||
        !Read(process, table, entries.data(), entries.size() * sizeof(HandleEntry))) {
        return -1;
    }
    long count = 0;
    for (const HandleEntry& entry : entries) {
        count += entry.type != 0 ? 1 : 0;
    }
    return count;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    HWND window = argc == 2 ? FindWindowW(nullptr, argv[1]) : nullptr;
    DWORD id = 0;
    GetWindowThreadProcessId(window, &id);
    HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id);
    long count = static_cast<long>(GetGuiResources(process, GR_GDIOBJECTS));
    if (count == 0) {
        count = CountTable(process);
    }
    std::printf("%ld\n", count);
    CloseHandle(process);
    return count > 0 ? 0 : 1;
}
