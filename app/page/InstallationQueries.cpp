#include "app/page/InstallationQueries.h"

#include <cwchar>

#include "registry/CRegistryKey.h"

namespace {

constexpr wchar_t InstallKey[] = L"M_KOR_HKEY_LOCAL_MACHINE_RUNTIME\\install";
constexpr wchar_t FlowForgeKey[] =
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Install";
constexpr wchar_t LibraryKey[] = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Imaging Library";

struct Answer {
    bool Exists = false; // the value is there
    bool IsText = false; // and could be read
    CKORString Text;
};

// Reads the value of a key that was pointed at its path, and closes the key.
Answer ReadAndClose(CRegistryKey& key, const wchar_t* valueName) {
    Answer answer;
    if (key.IsOpen() && key.ValueExists(valueName)) {
        answer.Exists = true;
        answer.IsText = key.ReadString(valueName, answer.Text);
    }
    key.CloseIfOpen();
    return answer;
}

Answer AskPath(const CKORString& path, const wchar_t* valueName) {
    CRegistryKey key(path, false);
    return ReadAndClose(key, valueName);
}

Answer AskByOpening(const wchar_t* path, const wchar_t* valueName) {
    CRegistryKey key;
    key.Open(path, false);
    return ReadAndClose(key, valueName);
}

} // namespace

CKORString QueryInstallFolder() {
    return AskPath(InstallKey, L"installdir").Text;
}

CKORString QueryFlowForgeInstallFolder() {
    Answer answer = AskByOpening(FlowForgeKey, L"InstallationPath");
    if (answer.Exists) {
        // Also behind a backslash that is there already, and alone when the value is no text:
        // intended.
        answer.Text += L"\\";
    }
    return answer.Text;
}

CKORString QueryExamplesRoot(const CKORString& product) {
    return AskPath(CKORString(InstallKey) + L"\\" + product, L"ExamplesRootPath").Text;
}

bool IsDevelopmentInstallation() {
    const Answer answer = AskByOpening(LibraryKey, L"KORType");
    return _wcsicmp(answer.Text.Text(), L"Development") == 0;
}

bool IsValidInstallation() {
    return AskByOpening(LibraryKey, L"KorVersion").IsText;
}
