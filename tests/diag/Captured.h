// What is written to an output, as bytes.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "diag/Commands.h"
#include "diag/JsonWriter.h"
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

// The document that the function writes.
inline std::string JsonOf(void (*write)(JsonWriter&)) {
    return Capture([&](Utf8Output& output) {
        JsonWriter json(output);
        write(json);
    });
}

inline std::string Utf8(const std::wstring& text) {
    std::string bytes(3 * text.size(), '\0');
    bytes.resize(static_cast<std::size_t>(
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

struct Outcome {
    ExitCode Code;
    std::string Out;
    std::string Err;
};

// What kordiag answers to the words, without a file in between.
inline Outcome Kordiag(const std::vector<std::wstring>& words) {
    Utf8Output out;
    Utf8Output err;
    Streams streams = {out, err};
    const ExitCode code = RunCommandLine(words, streams);
    return {code, Utf8(out.Take()), Utf8(err.Take())};
}

// The same; its messages are dropped.
inline std::string OutputOf(const std::vector<std::wstring>& words) {
    return Kordiag(words).Out;
}

} // namespace test
