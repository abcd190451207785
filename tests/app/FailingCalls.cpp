// An object's table of functions is exchanged for one of small pieces of code, one a method, which
// ask first whether the call is to fail. Only so can methods of any signature be watched.
#define CINTERFACE
#include "tests/app/FailingCalls.h"

#include <exdisp.h>
#include <ocidl.h>
#include <oleidl.h>

#include <cstring>
#include <deque>
#include <vector>

namespace test {

namespace {

FailingCalls* g_current = nullptr;

struct Known;

struct Method {
    const Known* Interface;
    std::size_t Slot;
    void* Original;
};

// What the host asks the control for, and how many methods that has.
struct Known {
    const char* Name;
    const IID& Iid;
    std::size_t Methods;
};
#define KNOWN(Interface) {#Interface, IID_##Interface, sizeof(Interface##Vtbl) / sizeof(void*)}
const Known KnownInterfaces[] = {
    KNOWN(IUnknown),
    KNOWN(IWebBrowser2),
    KNOWN(IOleObject),
    KNOWN(IConnectionPointContainer),
    KNOWN(IConnectionPoint),
    KNOWN(IOleInPlaceObject),
    KNOWN(IOleInPlaceActiveObject),
};
#undef KNOWN

enum : std::size_t { QueryInterfaceSlot = 0, AddRefSlot = 1, ReleaseSlot = 2 };
constexpr std::size_t FindConnectionPointSlot =
    offsetof(IConnectionPointContainerVtbl, FindConnectionPoint) / sizeof(void*);

constexpr LONG_PTR GoOn = -1; // no result has the upper half set

// One copy for each table; both last as long as the program, since objects may.
struct Table {
    void* const* Original;
    std::vector<Method> Methods;
    std::vector<void*> Watched;
};
std::deque<Table> g_tables;

void Watch(REFIID iid, void* object);

bool IsOwnCode(void* address) {
    HMODULE module = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                  GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                              static_cast<LPCWSTR>(address), &module) &&
           module == GetModuleHandleW(nullptr);
}

template <typename Function>
Function As(void* address) {
    return reinterpret_cast<Function>(address);
}

// The call's result when it is made, or fails, in here. arguments: the first four.
LONG_PTR Decide(const Method* method, void* caller, void** arguments) {
    if (g_current == nullptr || method->Slot == AddRefSlot || !IsOwnCode(caller)) {
        return GoOn;
    }
    if (method->Slot == ReleaseSlot) {
        const ULONG left = As<ULONG(WINAPI*)(void*)>(method->Original)(arguments[0]);
        g_current->NoteReferences(left);
        return static_cast<LONG_PTR>(left);
    }
    const bool gives = method->Slot == QueryInterfaceSlot ||
                       (method->Interface->Iid == IID_IConnectionPointContainer &&
                        method->Slot == FindConnectionPointSlot);
    if (g_current->NextFails(method->Interface->Name, method->Slot)) {
        if (gives) {
            *static_cast<void**>(arguments[2]) = nullptr;
        }
        return static_cast<LONG_PTR>(static_cast<ULONG>(E_FAIL));
    }
    if (!gives) {
        return GoOn;
    }
    const HRESULT result = As<HRESULT(WINAPI*)(void*, void*, void*)>(method->Original)(
        arguments[0], arguments[1], arguments[2]);
    if (SUCCEEDED(result)) {
        const bool isQuery = method->Slot == QueryInterfaceSlot;
        Watch(isQuery ? *static_cast<const IID*>(arguments[1]) : IID_IConnectionPoint,
              *static_cast<void**>(arguments[2]));
    }
    return static_cast<LONG_PTR>(static_cast<ULONG>(result));
}

// The four registers of the arguments are kept while Decide is asked.
#pragma pack(push, 1)
struct Code {
    BYTE KeepArguments[24] = {
        0x48, 0x83, 0xEC, 0x48,       // sub rsp, 48h
        0x48, 0x89, 0x4C, 0x24, 0x20, // mov [rsp+20h], rcx
        0x48, 0x89, 0x54, 0x24, 0x28, // mov [rsp+28h], rdx
        0x4C, 0x89, 0x44, 0x24, 0x30, // mov [rsp+30h], r8
        0x4C, 0x89, 0x4C, 0x24, 0x38, // mov [rsp+38h], r9
    };
    BYTE LoadMethod[2] = {0x48, 0xB9}; // mov rcx, Which
    const Method* Which;
    BYTE LoadCaller[12] = {
        0x48, 0x8B, 0x54, 0x24, 0x48, // mov rdx, [rsp+48h]
        0x4C, 0x8D, 0x44, 0x24, 0x20, // lea r8, [rsp+20h]
        0x48, 0xB8,                   // mov rax, Asked
    };
    LONG_PTR (*Asked)(const Method*, void*, void**) = &Decide;
    BYTE AskAndReturn[35] = {
        0xFF, 0xD0,                   // call rax
        0x48, 0x8B, 0x4C, 0x24, 0x20, // mov rcx, [rsp+20h]
        0x48, 0x8B, 0x54, 0x24, 0x28, // mov rdx, [rsp+28h]
        0x4C, 0x8B, 0x44, 0x24, 0x30, // mov r8, [rsp+30h]
        0x4C, 0x8B, 0x4C, 0x24, 0x38, // mov r9, [rsp+38h]
        0x48, 0x83, 0xC4, 0x48,       // add rsp, 48h
        0x48, 0x83, 0xF8, 0xFF,       // cmp rax, GoOn
        0x74, 0x01, 0xC3,             // unless equal, return
        0x48, 0xB8,                   // mov rax, Original
    };
    void* Original;
    BYTE GoToOriginal[2] = {0xFF, 0xE0}; // jmp rax
};
#pragma pack(pop)

void* const* WatchedTable(const Known& known, void* const* original) {
    for (const Table& table : g_tables) {
        if (table.Original == original || table.Watched.data() == original) {
            return table.Watched.data();
        }
    }
    g_tables.push_back({original, std::vector<Method>(known.Methods), {}});
    Table& table = g_tables.back();
    auto* const code = static_cast<Code*>(
        VirtualAlloc(nullptr, known.Methods * sizeof(Code), MEM_COMMIT, PAGE_EXECUTE_READWRITE));
    for (std::size_t slot = 0; slot < known.Methods; ++slot) {
        table.Methods[slot] = {&known, slot, original[slot]};
        Code one;
        one.Which = &table.Methods[slot];
        one.Original = original[slot];
        std::memcpy(code + slot, &one, sizeof(one));
        table.Watched.push_back(code + slot);
    }
    return table.Watched.data();
}

void Watch(REFIID iid, void* object) {
    for (const Known& known : KnownInterfaces) {
        if (known.Iid == iid) {
            auto** const table = static_cast<void* const**>(object);
            *table = WatchedTable(known, *table);
        }
    }
}

} // namespace

FailingCalls::FailingCalls(int failing) : m_failing(failing) {
    g_current = this;
}

FailingCalls::~FailingCalls() {
    g_current = nullptr;
}

HRESULT FailingCalls::Make(const std::function<HRESULT()>& make, REFIID iid, void** object) {
    if (NextFails("CoCreateInstance", 0)) {
        *object = nullptr;
        return E_FAIL;
    }
    const HRESULT result = make();
    if (SUCCEEDED(result)) {
        Watch(iid, *object);
    }
    return result;
}

} // namespace test
