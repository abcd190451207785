// Real files and folders for the tests, below the prefix's temporary folder. They are left where
// they are: the prefix is thrown away.
#pragma once

#include <windows.h>

#include <string>

namespace test {

// A fresh empty folder. Everything is created through the form of path without a length limit.
class TempFolder {
public:
    TempFolder();

    const std::wstring& Path() const { return m_path; }
    // Of a name, or of names with backslashes between them.
    std::wstring PathOf(const std::wstring& name) const { return m_path + L"\\" + name; }

    // Both return the path. The folders before the last name must be there.
    std::wstring MakeFolder(const std::wstring& name) const;
    std::wstring MakeFile(const std::wstring& name, DWORD attributes = FILE_ATTRIBUTE_NORMAL) const;

    // Nested folders, made as they are needed, whose path has exactly so many characters.
    std::wstring MakeFolderOfLength(std::size_t length) const;

private:
    std::wstring m_path;
};

// Asked with the form of path without a length limit.
bool Exists(const std::wstring& path);

} // namespace test
