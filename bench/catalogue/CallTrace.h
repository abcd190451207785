// The registry and file-system calls of a piece of work: recorded once, then made again without the
// work around them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

class CallTrace {
public:
    // Makes the work's calls, and keeps them. Every key that is opened is closed in the end.
    static CallTrace Of(const std::function<void()>& work);

    long Count() const { return static_cast<long>(m_calls.size()); }

    // Makes the calls in their order, with their arguments and buffers of their sizes. False when
    // one had another result than it had in the work: then they are not the same calls any more.
    bool Replay();

private:
    enum class Function { Open, Close, Query, EnumerateKeys, Attributes, Exists, IsEmpty };

    struct Call {
        Function What;
        std::wstring Text; // the path or the name
        LONG Result;
        std::size_t Key = 0; // the slot of the handle
        DWORD Number = 0;    // the access, the index, or the size of the buffer
        bool TakesType = false;
        bool TakesData = false;
    };

    std::size_t SlotOf(HKEY key);
    bool Make(const Call& call);
    LONG ResultOf(const Call& call);

    std::vector<Call> m_calls;
    std::vector<HKEY> m_keys = {HKEY_LOCAL_MACHINE}; // by slot
    std::map<HKEY, std::size_t> m_slots = {{HKEY_LOCAL_MACHINE, 0}};
    std::vector<BYTE> m_data;
    std::vector<wchar_t> m_name;
};
