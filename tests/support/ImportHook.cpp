// Finds a function in the program's import table and puts another in its place.
#include "tests/support/ImportHook.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace test {

namespace {

template <typename T>
T* AtOffset(BYTE* base, ULONG_PTR offset) {
    return reinterpret_cast<T*>(base + offset);
}

// The slots of all import tables that hold the named function; a function may come from more than
// one DLL name. Imports by ordinal have no name and are passed over.
template <typename Visitor>
void VisitSlots(const char* function, const Visitor& visit) {
    BYTE* const base = reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr));
    const auto* const dos = AtOffset<IMAGE_DOS_HEADER>(base, 0);
    const auto* const nt = AtOffset<IMAGE_NT_HEADERS>(base, static_cast<ULONG_PTR>(dos->e_lfanew));
    const DWORD table =
        nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* dll = AtOffset<IMAGE_IMPORT_DESCRIPTOR>(base, table); dll->Name != 0; ++dll) {
        auto* name = AtOffset<IMAGE_THUNK_DATA>(base, dll->OriginalFirstThunk);
        auto* slot = AtOffset<IMAGE_THUNK_DATA>(base, dll->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                continue;
            }
            const auto* const entry = AtOffset<IMAGE_IMPORT_BY_NAME>(base, name->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(entry->Name), function) == 0) {
                visit(&slot->u1.Function);
            }
        }
    }
}

} // namespace

bool HasImport(const char* function) {
    bool found = false;
    VisitSlots(function, [&](ULONGLONG*) { found = true; });
    return found;
}

void* ReplaceImport(const char* function, void* replacement) {
    void* previous = nullptr;
    VisitSlots(function, [&](ULONGLONG* slot) {
        DWORD protection = 0;
        VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
        previous = reinterpret_cast<void*>(*slot);
        *slot = reinterpret_cast<ULONGLONG>(replacement);
        VirtualProtect(slot, sizeof *slot, protection, &protection);
    });
    if (previous == nullptr) {
        std::fprintf(stderr, "The test program does not import %s.\n", function);
        std::abort();
    }
    return previous;
}

} // namespace test
