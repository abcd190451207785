// What the registry layer costs beside the system calls that it cannot do without: both times,
// their ratio, and the number of calls of each. Run it on one processor, which the Wine server then
// shares: taskset -c 0 wine/in-prefix.py bench_registry.exe. It works in keys named KORBench below
// HKEY_CURRENT_USER\Software, HKEY_LOCAL_MACHINE\Software and the current user's runtime root. An
// argument limits the trees: the largest number of keys.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "bench/Measured.h"
#include "bench/registry/BareRegistry.h"
#include "registry/CRegistryKey.h"
#include "tests/support/ImportHook.h"

namespace {

constexpr wchar_t Base[] = L"Software\\KORBench";
const CKORString FullBase = CKORString(L"HKEY_CURRENT_USER\\") + Base;

// Counts the layer's calls; too slow to be in force while time is taken.
class CallCount {
public:
    long Calls() const { return m_calls; }

private:
    template <typename Tag, typename Function>
    class Counted;
    template <typename Tag, typename... Arguments>
    class Counted<Tag, LSTATUS(WINAPI*)(Arguments...)> {
    public:
        Counted(const char* name, long& calls)
            : m_hook(name, [this, &calls](Arguments... arguments) -> LSTATUS {
                  ++calls;
                  return m_hook.Original(arguments...);
              }) {}

    private:
        test::ImportHook<Tag, LSTATUS(WINAPI*)(Arguments...)> m_hook;
    };

    long m_calls = 0;
#define COUNT(function)                                                                            \
    Counted<struct function##_Counted, decltype(&(function))> m_##function { #function, m_calls }
    COUNT(RegOpenCurrentUser);
    COUNT(RegCreateKeyExW);
    COUNT(RegOpenKeyExW);
    COUNT(RegCloseKey);
    COUNT(RegFlushKey);
    COUNT(RegQueryValueExW);
    COUNT(RegEnumKeyExW);
    COUNT(RegEnumValueW);
    COUNT(RegSetValueExW);
    COUNT(RegDeleteValueW);
    COUNT(RegDeleteKeyExW);
#undef COUNT
};

using bench::Measured;
using bench::Work;

// Ours and the bare calls in turn, the best round of each.
void Compare(const char* name, int rounds, int repeats, const Work& prepare, const Work& ours,
             const Work& bareCalls) {
    prepare();
    long ourCalls = 0;
    {
        const CallCount count;
        ours();
        ourCalls = count.Calls();
    }
    prepare();
    bare::Calls = 0;
    bareCalls();
    const long theirCalls = bare::Calls;
    Measured our;
    Measured their;
    for (int i = 0; i < rounds; ++i) {
        our.Take(prepare, ours, repeats);
        their.Take(prepare, bareCalls, repeats);
    }
    std::printf("%-28s %12.1f us %12.1f us %7.3f %9ld %9ld\n", name, our.best, their.best,
                our.best / their.best, ourCalls, theirCalls);
}

void SetRaw(const wchar_t* name, DWORD type, const std::wstring& text) {
    RegSetKeyValueW(HKEY_CURRENT_USER, Base, name, type, text.c_str(),
                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

void MakeTree(const std::wstring& path, int& keys) {
    HKEY key = nullptr;
    const DWORD number = 7;
    RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                    nullptr);
    RegSetValueExW(key, L"number", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                   sizeof number);
    RegCloseKey(key);
    --keys;
}

// Ten subkeys a key, one value each, filled level by level.
void MakeTrees(const std::wstring& top, int keys) {
    std::vector<std::wstring> level = {top};
    MakeTree(top, keys);
    while (keys > 0) {
        std::vector<std::wstring> next;
        for (const std::wstring& parent : level) {
            for (int i = 0; i < 10 && keys > 0; ++i) {
                next.push_back(parent + L"\\key" + std::to_wstring(i));
                MakeTree(next.back(), keys);
            }
        }
        level = std::move(next);
    }
}

void CompareOpenings() {
    const std::wstring runtime = L"Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\KORBench";
    const std::pair<HKEY, std::wstring> keys[] = {
        {HKEY_LOCAL_MACHINE, Base}, {HKEY_CURRENT_USER, Base}, {HKEY_CURRENT_USER, runtime}};
    for (const auto& [root, path] : keys) {
        HKEY key = nullptr;
        RegCreateKeyW(root, path.c_str(), &key);
        RegCloseKey(key);
    }

    const CKORString machinePath = CKORString(L"HKEY_LOCAL_MACHINE\\") + Base;
    const CKORString symbolicPath = L"M_KOR_HKEY_CURRENT_USER_RUNTIME\\KORBench";
    const std::wstring bareBase = Base;
    const auto prepare = [] {};
    Compare(
        "open, close: local machine", 300, 20, prepare,
        [&] { const CRegistryKey key(machinePath); }, [&] { bare::OpenAndCloseMachine(bareBase); });
    Compare(
        "open, close: current user", 300, 20, prepare, [&] { const CRegistryKey key(FullBase); },
        [&] { bare::Close(bare::Open(bareBase)); });
    Compare(
        "open, close: symbolic root", 300, 20, prepare,
        [&] { const CRegistryKey key(symbolicPath); }, [&] { bare::Close(bare::Open(runtime)); });

    RegDeleteTreeW(HKEY_LOCAL_MACHINE, Base);
    RegDeleteTreeW(HKEY_CURRENT_USER, runtime.c_str());
}

void CompareValues() {
    SetRaw(L"short", REG_SZ, L"a short string");
    SetRaw(L"long", REG_SZ, std::wstring(1499, L'l'));
    SetRaw(L"multi", REG_MULTI_SZ, std::wstring(L"one\0two\0three\0", 14));
    const DWORD number = 5;
    RegSetKeyValueW(HKEY_CURRENT_USER, Base, L"number", REG_DWORD, &number, sizeof number);
    for (int i = 0; i < 1000; ++i) {
        HKEY key = nullptr;
        const std::wstring path = Base + (L"\\names\\key" + std::to_wstring(i));
        RegCreateKeyW(HKEY_CURRENT_USER, path.c_str(), &key);
        RegCloseKey(key);
    }

    CRegistryKey key(FullBase);
    bare::OpenKey open = bare::Open(Base);
    CKORString text;
    std::wstring bareText;
    const auto prepare = [] {};
    for (const wchar_t* name : {L"short", L"long", L"multi"}) {
        const CKORString valueName(name);
        char title[40];
        std::snprintf(title, sizeof title, "read %ls string", name);
        Compare(
            title, 300, 20, prepare, [&] { key.ReadString(valueName, text); },
            [&] { bare::ReadText(open.key, name, bareText); });
    }
    const CKORString numberName(L"number");
    std::uint32_t read = 0;
    DWORD bareRead = 0;
    Compare(
        "read number", 300, 20, prepare, [&] { key.ReadDword(numberName, read); },
        [&] { bare::ReadNumber(open.key, L"number", bareRead); });
    Compare(
        "write number", 300, 10, prepare, [&] { key.WriteDword(numberName, 6U); },
        [&] { bare::WriteNumber(open, Base, L"number", 6); });
    bare::Close(open);

    const std::wstring namesKey = Base + std::wstring(L"\\names");
    CRegistryKey names(CKORString(L"HKEY_CURRENT_USER\\") + namesKey.c_str());
    CTable1D<CKORString> list;
    open = bare::Open(namesKey);
    Compare(
        "enumerate 1000 names", 100, 1, prepare, [&] { names.EnumSubKeyNames(list); },
        [&] { bare::CountSubKeyNames(open.key); });
    bare::Close(open);
}

void CompareTrees(int keys, int rounds) {
    const std::wstring source = Base + std::wstring(L"\\source");
    const std::wstring copy = Base + std::wstring(L"\\copy");
    const CKORString fullCopy = FullBase + L"\\copy";
    MakeTrees(source, keys);
    char title[40];

    std::snprintf(title, sizeof title, "CopyTree, %d keys", keys);
    Compare(
        title, rounds, 1, [&] { RegDeleteTreeW(HKEY_CURRENT_USER, copy.c_str()); },
        [&] {
            CRegistryKey key(FullBase + L"\\source");
            key.CopyTree(fullCopy, fullCopy);
        },
        [&] {
            bare::OpenKey open = bare::Open(source);
            bare::CopyTree(open, source, copy);
            bare::Close(open);
        });
    RegDeleteTreeW(HKEY_CURRENT_USER, source.c_str());

    std::snprintf(title, sizeof title, "DeleteTree, %d keys", keys);
    CRegistryKey key(FullBase);
    bare::OpenKey open = bare::Open(Base);
    Compare(
        title, rounds, 1, [&] { MakeTrees(copy, keys); },
        [&] { static_cast<void>(key.DeleteTree(L"copy")); },
        [&] { bare::DeleteTree(open, Base, L"copy"); });
    bare::Close(open);
    RegDeleteTreeW(HKEY_CURRENT_USER, copy.c_str());
}

} // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    const int largest = argc > 1 ? std::atoi(argv[1]) : 100000;
    std::printf("%-28s %15s %15s %7s %9s %9s\n", "", "ours", "bare calls", "ratio", "calls",
                "bare");
    CompareOpenings();
    CompareValues();
    for (const auto& [keys, rounds] :
         {std::pair(1000, 9), std::pair(10000, 3), std::pair(100000, 1)}) {
        if (keys <= largest) {
            CompareTrees(keys, rounds);
        }
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, Base);
    return 0;
}
