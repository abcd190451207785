// What is installed and where: five questions to the registry. A missing key or value is no error;
// it gives an empty text or false. Nothing is ever written or created.
#pragma once

#include "base/CKORString.h"

// The key, as a registry path, and the value that a question reads.
struct InstallationQuery {
    const wchar_t* Key;
    const wchar_t* Value;
};

inline constexpr InstallationQuery InstallFolderQuery = {
    L"M_KOR_HKEY_LOCAL_MACHINE_RUNTIME\\install", L"installdir"};
inline constexpr InstallationQuery FlowForgeInstallFolderQuery = {
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Install", L"InstallationPath"};
// The value is in the product's subkey of the key: see ExamplesRootKey.
inline constexpr InstallationQuery ExamplesRootQuery = {InstallFolderQuery.Key,
                                                        L"ExamplesRootPath"};
inline constexpr InstallationQuery DevelopmentQuery = {
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Imaging Library", L"KORType"};
inline constexpr InstallationQuery ValidInstallationQuery = {DevelopmentQuery.Key, L"KorVersion"};

// Products are "KOR" and "ActiveKor".
CKORString ExamplesRootKey(const CKORString& product);

// As stored: no separator is added.
CKORString QueryInstallFolder();

// With one backslash added whenever the value exists; a value that is no text gives the backslash
// alone.
CKORString QueryFlowForgeInstallFolder();

// As stored.
CKORString QueryExamplesRoot(const CKORString& product);

// Whether the installation's type is "Development", in any case.
bool IsDevelopmentInstallation();

// Whether the registry names a library version, as text.
bool IsValidInstallation();
