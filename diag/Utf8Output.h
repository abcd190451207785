// Text to one of the program's standard streams: UTF-8 into files and pipes, without any
// translation of line ends, and the text itself into a console window.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "base/CKORString.h"

// Collects what is written and passes it on in large pieces, the last ones when it is destroyed. A
// failure is kept, not reported: what is written after it is dropped.
class Utf8Output {
public:
    // The handle is not owned. A null or invalid one is a failure.
    explicit Utf8Output(HANDLE handle);
    // Keeps in mind what is written, until it is taken.
    Utf8Output() : Utf8Output(nullptr) { m_keeps = true; }
    Utf8Output(const Utf8Output&) = delete;
    Utf8Output& operator=(const Utf8Output&) = delete;
    ~Utf8Output();

    template <typename... Pieces>
    void Write(const Pieces&... pieces) {
        (Put(pieces), ...);
    }

    void Flush();
    std::wstring Take();

    // The thread's error that ended the output, if it is not open.
    DWORD Error() const { return m_error; }

    // Whether what is written still arrives somewhere.
    bool IsOpen() const { return m_error == ERROR_SUCCESS; }
    // Whether it does not because the reader of the pipe had enough, which is no error.
    bool ReaderIsGone() const;

private:
    void Put(std::wstring_view text);
    void Put(const wchar_t* text) { Put(std::wstring_view(text)); }
    void Put(const std::wstring& text) { Put(std::wstring_view(text)); }
    void Put(const CKORString& text);
    void Put(std::int64_t number);
    void Put(int number) { Put(std::int64_t{number}); }
    void Pass(std::wstring_view text);
    void PassToConsole(std::wstring_view text);
    void PassBytes(const char* bytes, std::size_t count);

    HANDLE m_handle;
    bool m_isConsole;
    bool m_keeps = false;
    std::wstring m_kept;
    DWORD m_error = ERROR_SUCCESS;
    std::wstring m_pending;
};
