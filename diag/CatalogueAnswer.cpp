// Asks once what the page shows and why it does not show the rest.
#include "diag/CatalogueAnswer.h"

#include "diag/PathCauses.h"
#include "diag/QueryAnswers.h"
#include "diag/RegistryCauses.h"

namespace {

constexpr wchar_t CameBack[] = L"it was not there when the page was composed, but is now";

void AppendReason(CKORString& reasons, const CKORString& reason) {
    reasons += reasons.Length() > 0 ? L"; " : L"";
    reasons += reason;
}

CKORString WordsOf(const std::vector<Cause>& causes) {
    CKORString words;
    for (const Cause& cause : causes) {
        AppendReason(words, cause.Found);
    }
    return words;
}

CatalogueAnswer::NotBuilt Explain(const Omission& note, const Installation& installation) {
    std::vector<Cause> causes;
    CKORString detail(note.Path);
    if (note.Where == Looked::AtInstallationType) {
        detail = WhyNotDevelopment();
    } else if (note.Where != Looked::AtRegistryKey) {
        causes = CausesOfPath(note.Path, note.Base, note.Where == Looked::AtFolder, installation);
        if (note.VersionKey.Length() > 0) {
            if (const auto cause = CauseOfFolderValue(note.VersionKey, L"InstallationPath")) {
                causes = {*cause};
            }
        }
        detail = causes.empty() ? note.Path : WordsOf(causes);
    }
    return {&note, causes, CKORString(note.Reason) + L": " + detail};
}

} // namespace

CatalogueAnswer::CatalogueAnswer(const PageState& state) {
    const ControlCenterPage& page = state.Page;
    const CKORString invalid =
        page.IsValid ? CKORString() : L"this is not a valid installation: " + WhyNotValid();
    for (const ControlCenterSection* const section : page.Sections) {
        Sections.push_back({section, {}});
        for (const ControlCenterItem* const item : *section) {
            // A page that is one message composed no item.
            const bool isThere = page.IsValid ? item->WasShown : item->IsShown();
            std::vector<Cause> causes;
            CKORString why(invalid);
            if (!isThere) {
                causes = CausesOfPath(item->Path, item->Base, item->Type == ItemFolder, page);
                AppendReason(why, causes.empty() ? CKORString(CameBack) : WordsOf(causes));
            }
            Sections.back().Items.push_back({item, isThere, isThere && page.IsValid, causes, why});
        }
    }
    for (const Omission& note : page.Sections.Omissions) {
        Omitted.push_back(Explain(note, page));
    }
}
