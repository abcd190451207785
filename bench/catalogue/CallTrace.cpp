// Records the system calls of a page, and repeats them bare.
#include "bench/catalogue/CallTrace.h"

#include <shlwapi.h>

#include <algorithm>

#include "tests/support/ImportHook.h"

CallTrace CallTrace::Of(const std::function<void()>& work) {
    CallTrace trace;
    std::vector<Call>& calls = trace.m_calls;
    HOOK_IMPORT(open, RegOpenKeyExW,
                [&](HKEY root, LPCWSTR path, DWORD options, REGSAM access, PHKEY key) -> LSTATUS {
                    const LSTATUS result = open.Original(root, path, options, access, key);
                    calls.push_back(
                        {Function::Open, path, result, trace.SlotOf(root), access, false, false});
                    if (result == ERROR_SUCCESS) {
                        trace.m_slots[*key] = trace.m_keys.size();
                        trace.m_keys.push_back(*key);
                    }
                    return result;
                });
    HOOK_IMPORT(close, RegCloseKey, [&](HKEY key) -> LSTATUS {
        const LSTATUS result = close.Original(key);
        calls.push_back({Function::Close, L"", result, trace.SlotOf(key)});
        trace.m_slots.erase(key);
        return result;
    });
    HOOK_IMPORT(query, RegQueryValueExW,
                [&](HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                    LPDWORD size) -> LSTATUS {
                    const DWORD capacity = data != nullptr ? *size : 0;
                    const LSTATUS result = query.Original(key, name, reserved, type, data, size);
                    calls.push_back({Function::Query, name, result, trace.SlotOf(key), capacity,
                                     type != nullptr, data != nullptr});
                    trace.m_data.resize(std::max<std::size_t>(trace.m_data.size(), capacity));
                    return result;
                });
    HOOK_IMPORT(enumerate, RegEnumKeyExW,
                [&](HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved,
                    LPWSTR className, LPDWORD classLength, PFILETIME time) -> LSTATUS {
                    trace.m_name.resize(std::max<std::size_t>(trace.m_name.size(), *length));
                    const LSTATUS result = enumerate.Original(key, index, name, length, reserved,
                                                              className, classLength, time);
                    calls.push_back(
                        {Function::EnumerateKeys, L"", result, trace.SlotOf(key), index});
                    return result;
                });
    HOOK_IMPORT(attributes, GetFileAttributesW, [&](LPCWSTR path) -> DWORD {
        const DWORD result = attributes.Original(path);
        calls.push_back({Function::Attributes, path, static_cast<LONG>(result)});
        return result;
    });
    HOOK_IMPORT(exists, PathFileExistsW, [&](LPCWSTR path) -> BOOL {
        const BOOL result = exists.Original(path);
        calls.push_back({Function::Exists, path, result});
        return result;
    });
    HOOK_IMPORT(isEmpty, PathIsDirectoryEmptyW, [&](LPCWSTR path) -> BOOL {
        const BOOL result = isEmpty.Original(path);
        calls.push_back({Function::IsEmpty, path, result});
        return result;
    });
    work();
    return trace;
}

std::size_t CallTrace::SlotOf(HKEY key) {
    return m_slots.at(key);
}

LONG CallTrace::ResultOf(const Call& call) {
    HKEY& key = m_keys[call.Key];
    DWORD type = 0;
    DWORD size = call.Number;
    switch (call.What) {
    case Function::Open:
        m_keys.push_back(nullptr);
        return RegOpenKeyExW(m_keys[call.Key], call.Text.c_str(), 0, call.Number, &m_keys.back());
    case Function::Close:
        return RegCloseKey(key);
    case Function::Query:
        return RegQueryValueExW(key, call.Text.c_str(), nullptr, call.TakesType ? &type : nullptr,
                                call.TakesData ? m_data.data() : nullptr, &size);
    case Function::EnumerateKeys:
        size = static_cast<DWORD>(m_name.size());
        return RegEnumKeyExW(key, call.Number, m_name.data(), &size, nullptr, nullptr, nullptr,
                             nullptr);
    case Function::Attributes:
        return static_cast<LONG>(GetFileAttributesW(call.Text.c_str()));
    case Function::Exists:
        return PathFileExistsW(call.Text.c_str());
    default:
        return PathIsDirectoryEmptyW(call.Text.c_str());
    }
}

bool CallTrace::Make(const Call& call) {
    const LONG result = ResultOf(call);
    if (call.What == Function::Open && result != ERROR_SUCCESS) {
        m_keys.pop_back();
    }
    return result == call.Result;
}

bool CallTrace::Replay() {
    m_keys.resize(1);
    bool same = true;
    for (const Call& call : m_calls) {
        same = Make(call) && same;
    }
    return same;
}
