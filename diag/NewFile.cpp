// Writes under another name beside the file, and renames.
#include "diag/NewFile.h"

#include <utility>

NewFile::NewFile(const std::wstring& path)
    : m_path(path), m_unfinished(path + L"." + std::to_wstring(GetCurrentProcessId()) + L".new"),
      m_file(CreateFileW(m_unfinished.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                         FILE_ATTRIBUTE_NORMAL, nullptr)) {}

NewFile::~NewFile() {
    if (m_file != INVALID_HANDLE_VALUE) {
        Close();
        DeleteFileW(m_unfinished.c_str());
    }
}

bool NewFile::Finish(bool replaces) {
    // What the system still holds back may find no room.
    if (FlushFileBuffers(m_file) == FALSE) {
        return false;
    }
    Close();
    if (MoveFileExW(m_unfinished.c_str(), m_path.c_str(),
                    replaces ? MOVEFILE_REPLACE_EXISTING : 0) == FALSE) {
        const DWORD error = GetLastError();
        DeleteFileW(m_unfinished.c_str());
        SetLastError(error);
        return false;
    }
    return true;
}

void NewFile::Close() {
    CloseHandle(std::exchange(m_file, INVALID_HANDLE_VALUE));
}
