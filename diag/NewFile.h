// A file that appears as a whole or not at all.
#pragma once

#include <windows.h>

#include <string>

// Its data goes to a file beside it, which takes its name in the end; without that it is deleted.
class NewFile {
public:
    explicit NewFile(const std::wstring& path);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    // INVALID_HANDLE_VALUE when the file could not be made; the thread's last error says why.
    HANDLE Handle() const { return m_file; }

    // Gives the file its name. False, with the thread's last error, when the system refuses, and
    // when there is one of that name unless it is to be replaced.
    bool Finish(bool replaces);

private:
    void Close();

    std::wstring m_path;
    std::wstring m_unfinished;
    HANDLE m_file;
};
