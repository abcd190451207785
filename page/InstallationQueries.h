// What is installed and where: five questions to the registry. A missing key or value is no error;
// it gives an empty text or false. Nothing is ever written or created.
#pragma once

#include <cstddef>

#include "base/CKORString.h"
#include "catalogue/Installation.h"

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

// A question as it is put to this installation: its answer is one of the texts that paths begin
// with, or a yes or no.
struct AskedQuery {
    const wchar_t* Name; // in words
    const InstallationQuery* Query;
    const wchar_t* Product; // whose examples root it is; null for the other questions
    PathBase Text;          // where the text is kept; null for a yes or no
    CKORString (*AskText)();
    bool (*IsYes)();
};

// In the order in which the program asks. The texts are asked for when it starts.
inline constexpr AskedQuery AskedQueries[] = {
    {L"install folder", &InstallFolderQuery, nullptr, &Installation::InstallDir, QueryInstallFolder,
     nullptr},
    {L"ActiveKor examples root", &ExamplesRootQuery, L"ActiveKor",
     &Installation::ActiveKorExamplesRoot, [] { return QueryExamplesRoot(L"ActiveKor"); }, nullptr},
    {L"KOR examples root", &ExamplesRootQuery, L"KOR", &Installation::KorExamplesRoot,
     [] { return QueryExamplesRoot(L"KOR"); }, nullptr},
    {L"Flow Forge install folder", &FlowForgeInstallFolderQuery, nullptr,
     &Installation::FlowForgeInstallDir, QueryFlowForgeInstallFolder, nullptr},
    {L"development installation", &DevelopmentQuery, nullptr, nullptr, nullptr,
     IsDevelopmentInstallation},
    {L"valid installation", &ValidInstallationQuery, nullptr, nullptr, nullptr,
     IsValidInstallation},
};

constexpr std::size_t CountAskedTexts() {
    std::size_t count = 0;
    for (const AskedQuery& query : AskedQueries) {
        count += query.Text != nullptr ? 1 : 0;
    }
    return count;
}
static_assert(sizeof(Installation) == CountAskedTexts() * sizeof(CKORString),
              "each text of the installation has its question");
