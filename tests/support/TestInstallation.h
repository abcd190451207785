// A library installation in the test prefix: registry values and files, wiped before and after.
#pragma once

#include <windows.h>

#include <string>

namespace test {

// Keys of the library and of Flow Forge, as the operations here take them.
inline const std::wstring LibraryKey = L"Vantrel\\Vantrel Imaging Library";
inline const std::wstring InstallKey = LibraryKey + L"\\Runtime\\install";
inline const std::wstring FlowForgeKey = L"Vantrel\\Vantrel Flow Forge\\Install";
inline const std::wstring VersionsKey = L"Vantrel\\Vantrel Flow Forge\\Installed Versions";

// Everything lies under HKEY_LOCAL_MACHINE\Software\Vantrel (in both views),
// HKEY_CURRENT_USER\Software\Vantrel and the folder C:\KorTest.
class TestInstallation {
public:
    TestInstallation() { Wipe(); }
    TestInstallation(const TestInstallation&) = delete;
    TestInstallation& operator=(const TestInstallation&) = delete;
    ~TestInstallation() { Wipe(); }

    // Keys are below HKEY_LOCAL_MACHINE\Software, say "Vantrel\\Imaging Board".
    void SetText(const std::wstring& key, const wchar_t* value, const std::wstring& text,
                 DWORD type = REG_SZ) const;
    void SetBytes(const std::wstring& key, const wchar_t* value, DWORD type, const void* data,
                  DWORD size) const;
    // What a development installation in this folder has in the registry.
    void MakeDevelopment(const std::wstring& folder) const;
    void MakeKey(const std::wstring& key) const;
    void DeleteKey(const std::wstring& key) const;
    void DeleteValue(const std::wstring& key, const wchar_t* value) const;

    // Makes the folders on the way too; slashes of both kinds may be mixed and doubled.
    void MakeFile(const std::wstring& path) const;
    void MakeFolder(const std::wstring& path) const;
    void DeleteFileOf(const std::wstring& path) const;

private:
    static void Wipe();
};

} // namespace test
