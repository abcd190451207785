// Interception of Windows' functions at the import table of the test program: the product is
// linked into it and needs no seam of its own.
#pragma once

#include <windows.h>

#include <functional>
#include <utility>

namespace test {

// Replaces every import of the function by the replacement and returns the address that was there.
// A function that the program does not import ends the test program with a message.
void* ReplaceImport(const char* function, void* replacement);

// Whether the program imports the function at all.
bool HasImport(const char* function);

// The replacement is in force while the object lives. Tag makes one static slot a function, so
// two hooks on one function nest, and the inner one's Original is the outer one. Keep the scope
// short: the test framework's own calls go through the same table.
template <typename Tag, typename Function>
class ImportHook;

template <typename Tag, typename Result, typename... Arguments>
class ImportHook<Tag, Result(WINAPI*)(Arguments...)> {
public:
    using Pointer = Result(WINAPI*)(Arguments...);
    using Replacement = std::function<Result(Arguments...)>;

    ImportHook(const char* name, Replacement replacement)
        : m_name(name), m_replacement(std::move(replacement)), m_previous(s_current) {
        s_current = this;
        if (m_previous == nullptr) {
            s_original = reinterpret_cast<Pointer>(
                ReplaceImport(name, reinterpret_cast<void*>(&ImportHook::Thunk)));
        }
    }
    ImportHook(const ImportHook&) = delete;
    ImportHook& operator=(const ImportHook&) = delete;
    ~ImportHook() {
        s_current = m_previous;
        if (m_previous == nullptr) {
            ReplaceImport(m_name, reinterpret_cast<void*>(s_original));
        }
    }

    // The function as it was before this hook.
    Result Original(Arguments... arguments) const {
        return m_previous != nullptr ? m_previous->m_replacement(arguments...)
                                     : s_original(arguments...);
    }

private:
    static Result WINAPI Thunk(Arguments... arguments) {
        return s_current->m_replacement(arguments...);
    }

    inline static ImportHook* s_current = nullptr;
    inline static Pointer s_original = nullptr;

    const char* m_name;
    Replacement m_replacement;
    ImportHook* m_previous;
};

// Replacements for whatever function: a call of the registry that is refused, and a call that fails
// with an error.
inline constexpr auto Refused = [](auto...) -> LSTATUS { return ERROR_ACCESS_DENIED; };

template <typename Result>
auto FailsWith(DWORD error) {
    return [error](auto...) {
        SetLastError(error);
        return Result{};
    };
}

} // namespace test

// HOOK_IMPORT(hook, RegCloseKey, [&](HKEY key) -> LSTATUS { ... hook.Original(key) ... });
// Arguments that do not matter need no names: [&](HKEY key, auto... rest), [](auto...).
#define HOOK_IMPORT(variable, function, ...)                                                       \
    test::ImportHook<struct function##_HookTag, decltype(&function)> variable(#function,           \
                                                                              __VA_ARGS__)
