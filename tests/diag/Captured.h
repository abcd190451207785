// What is written to an output, as bytes.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "diag/Commands.h"
#include "diag/Utf8Output.h"

namespace test {

// A file of its own that is deleted when it is closed.
class Captured {
public:
    Captured() : m_file(Open()) { EXPECT_NE(m_file, INVALID_HANDLE_VALUE); }
    Captured(const Captured&) = delete;
    Captured& operator=(const Captured&) = delete;
    ~Captured() { CloseHandle(m_file); }

    HANDLE Handle() const { return m_file; }

    std::string Bytes() const {
        std::string bytes(GetFileSize(m_file, nullptr), '\0');
        SetFilePointer(m_file, 0, nullptr, FILE_BEGIN);
        DWORD count = 0;
        EXPECT_TRUE(
            ReadFile(m_file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr));
        EXPECT_EQ(count, bytes.size());
        return bytes;
    }

private:
    static HANDLE Open() {
        wchar_t folder[MAX_PATH] = L"";
        wchar_t name[MAX_PATH] = L"";
        GetTempPathW(MAX_PATH, folder);
        GetTempFileNameW(folder, L"kor", 0, name);
        return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                           FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    }

    HANDLE m_file;
};

// The bytes that the function writes to the output it is given.
template <typename Function>
std::string Capture(Function function) {
    const Captured captured;
    {
        Utf8Output output(captured.Handle());
        function(output);
    }
    return captured.Bytes();
}

// What kordiag answers to the words; its messages are dropped.
inline std::string OutputOf(const std::vector<std::wstring>& words) {
    const Captured dropped;
    return Capture([&](Utf8Output& out) {
        Utf8Output errors(dropped.Handle());
        Streams streams = {out, errors};
        RunCommandLine(words, streams);
    });
}

} // namespace test
