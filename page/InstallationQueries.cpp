// Reads the registry's answers to the questions.
#include "page/InstallationQueries.h"

#include "registry/CRegistryKey.h"
#include "registry/StringUtilities.h"

namespace {

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

Answer AskByOpening(const InstallationQuery& query) {
    CRegistryKey key;
    static_cast<void>(key.Open(query.Key, false)); // the next line asks IsOpen
    return ReadAndClose(key, query.Value);
}

} // namespace

CKORString ExamplesRootKey(const CKORString& product) {
    return CKORString(ExamplesRootQuery.Key) + L"\\" + product;
}

CKORString QueryInstallFolder() {
    return AskPath(InstallFolderQuery.Key, InstallFolderQuery.Value).Text;
}

CKORString QueryFlowForgeInstallFolder() {
    Answer answer = AskByOpening(FlowForgeInstallFolderQuery);
    if (answer.Exists) {
        // Also behind one that is there, and alone when the value is no text: docs/quirks.md.
        answer.Text += L"\\";
    }
    return answer.Text;
}

CKORString QueryExamplesRoot(const CKORString& product) {
    return AskPath(ExamplesRootKey(product), ExamplesRootQuery.Value).Text;
}

bool IsDevelopmentInstallation() {
    const Answer answer = AskByOpening(DevelopmentQuery);
    return kor::EqualIgnoringCase(answer.Text.Text(), L"Development");
}

bool IsValidInstallation() {
    return AskByOpening(ValidInstallationQuery).IsText;
}
