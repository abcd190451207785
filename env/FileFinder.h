// A search through a directory that gives the full path of each entry.
#pragma once

#include <windows.h>

#include <cstdint>

// Owns the search handle; it is closed with the object at the latest. Operations that fail give
// false and leave the cause in the thread's last error, which closing a search does not change. An
// entry whose full path does not fit its field fails with ERROR_FILENAME_EXCED_RANGE.
// Everything about the current entry is meaningful only after a search call that gave true.
class FileFinder {
public:
    FileFinder() = default;
    FileFinder(const FileFinder&) = delete;
    FileFinder& operator=(const FileFinder&) = delete;
    ~FileFinder() { Close(); }

    // Starts a new search and stands on its first entry. Backslashes at the pattern's end are not
    // part of what is searched for, but they stay in the directory prefix. The pattern may be one
    // of this object's own texts.
    [[nodiscard]] bool FindFirst(const wchar_t* pattern);

    // Goes to the next entry. ERROR_NO_MORE_FILES is the regular end.
    [[nodiscard]] bool FindNext();

    // Ends the search, if there is one.
    void Close();

    // Empty when no search stands on an entry.
    const wchar_t* FullPath() const { return m_fullPath; }
    const wchar_t* Name() const { return m_data.cFileName; }
    // Drive and directory of the pattern, with the separator that it had at their end.
    const wchar_t* DirectoryPrefix() const { return m_directoryPrefix; }
    // Bytes.
    std::uint64_t Size() const;

    bool IsDirectory() const { return HasAttribute(FILE_ATTRIBUTE_DIRECTORY); }
    bool IsReadOnly() const { return HasAttribute(FILE_ATTRIBUTE_READONLY); }
    bool IsHidden() const { return HasAttribute(FILE_ATTRIBUTE_HIDDEN); }
    bool IsReparsePoint() const { return HasAttribute(FILE_ATTRIBUTE_REPARSE_POINT); }
    // Whether the entry is a directory that stands for another one: a junction or a symbolic link.
    // Directories with a reparse point of another kind, such as those kept in a cloud, are not.
    bool IsDirectoryLink() const;

    // Seconds since 1970-01-01 UTC, negative before.
    std::int64_t CreationTime() const;
    std::int64_t LastAccessTime() const;
    std::int64_t LastWriteTime() const;

    // Whether the entry is to be skipped: ".", and each name that holds "..", "\." or ".\", even
    // in its middle.
    bool IsDots() const;

    // Takes the read-only attribute from the file of the entry's bare name in the process's current
    // directory. True when the entry does not have the attribute.
    [[nodiscard]] bool ClearReadOnly() const;

private:
    static constexpr int FieldSize = 1024;

    bool HasAttribute(DWORD attribute) const { return (m_data.dwFileAttributes & attribute) != 0; }
    [[nodiscard]] bool KeepDirectoryPrefix(const wchar_t* pattern);
    [[nodiscard]] bool BuildFullPath();

    HANDLE m_search = nullptr;
    wchar_t m_directoryPrefix[FieldSize] = L"";
    wchar_t m_fullPath[FieldSize] = L"";
    WIN32_FIND_DATAW m_data = {};
};
