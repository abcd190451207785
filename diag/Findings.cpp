// Asks after each fault, and gathers what has the same cause.
#include "diag/Findings.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <cwchar>
#include <map>
#include <optional>
#include <string>

#include "diag/QueryAnswers.h"
#include "diag/RegistryCauses.h"
#include "diag/SystemCauses.h"
#include "env/PathTests.h"
#include "registry/CRegistryKey.h"
#include "registry/StringUtilities.h"

namespace {

class Findings {
public:
    // One cause is one finding, however many items suffer from it.
    void Add(Severity severity, const Cause& cause, const CKORString& subject) {
        const auto known = std::find_if(All.begin(), All.end(), [&](const Finding& finding) {
            return finding.What.Kind == cause.Kind &&
                   std::wcscmp(finding.What.Found.Text(), cause.Found.Text()) == 0;
        });
        if (known == All.end()) {
            All.push_back({severity, cause, {subject}});
            return;
        }
        known->How = std::max(known->How, severity);
        known->Subjects.push_back(subject);
    }

    void Add(Severity severity, const std::optional<Cause>& cause, const CKORString& subject) {
        if (cause) {
            Add(severity, *cause, subject);
        }
    }

    std::vector<Finding> All;
};

std::optional<Cause> CauseOf(const AskedQuery& query) {
    return CauseOfValue(KeyName(query), query.Query->Value);
}

bool IsMissing(const std::optional<Cause>& cause) {
    return cause && cause->Kind == Code::ValueMissing;
}

bool IsNothingInstalled(const ControlCenterPage& page) {
    return !page.IsValid && page.InstallDir.Length() == 0 &&
           IsMissing(CauseOf(QueryOf(ValidInstallationQuery))) &&
           IsMissing(CauseOf(QueryOf(&Installation::InstallDir)));
}

Cause NothingInstalled() {
    return {Code::NothingInstalled,
            L"the registry has neither a library version nor an install folder",
            L"Install the library.",
            {}};
}

// Whether the engine and the program can show a page at all.
void FindFaultsOfWindow(Findings& findings) {
    findings.Add(Severity::Error, CauseOfNoEngine(), L"window");
    findings.Add(Severity::Error, CauseOfNoPage(), L"window");
}

// The two questions of yes and no.
void FindFaultsOfQueries(Findings& findings, const ControlCenterPage& page) {
    const AskedQuery& valid = QueryOf(ValidInstallationQuery);
    if (!page.IsValid) {
        findings.Add(Severity::Error, CauseOf(valid), valid.Name);
    }
    const AskedQuery& development = QueryOf(DevelopmentQuery);
    const std::optional<Cause> cause = CauseOf(development);
    // Without a type it is simply no development installation.
    if (!IsMissing(cause)) {
        findings.Add(Severity::Warning, cause, development.Name);
    }
}

// The programs that show documents, each asked for once.
class Viewers {
public:
    const std::optional<Cause>& CauseOfNone(const ControlCenterItem& item) {
        const CKORString extension(PathFindExtensionW(item.Path.Text()));
        const std::wstring asked(item.Type == ItemHelpTopic ? L"" : extension.Text());
        const auto [answer, isNew] = m_answers.try_emplace(asked);
        if (isNew) {
            answer->second = asked.empty() ? CauseOfNoHelpViewer() : CauseOfNoProgram(extension);
        }
        return answer->second;
    }

private:
    std::map<std::wstring, std::optional<Cause>> m_answers;
};

// What a click on an item that is there would meet.
void FindFaultsOfTarget(Findings& findings, Viewers& viewers, const ControlCenterItem& item) {
    const wchar_t* const extension = PathFindExtensionW(item.Path.Text());
    if (item.Type == ItemHelpTopic || item.Type == ItemDocument) {
        findings.Add(Severity::Warning, viewers.CauseOfNone(item), item.Id);
    }
    if (kor::EqualIgnoringCase(extension, L".chm")) {
        findings.Add(Severity::Warning, CauseOfBlockedHelp(item.Path), item.Id);
    }
}

void FindFaultsOfItems(Findings& findings, const CatalogueAnswer& catalogue) {
    Viewers viewers;
    for (const auto& section : catalogue.Sections) {
        for (const CatalogueAnswer::Item& answer : section.Items) {
            if (answer.IsThere) {
                FindFaultsOfTarget(findings, viewers, *answer.Item);
            } else if (!answer.Causes.empty()) {
                // The deepest one: mending it may mend the others.
                findings.Add(Severity::Error, answer.Causes.back(), answer.Item->Id);
            }
        }
    }
}

// Of an item with a condition; its path is there all the same, or its causes say why not.
Cause UselessFolder(const CKORString& path) {
    if (!IsExistingDirectory(path.Text())) {
        return {Code::TargetMissing,
                L"this is a file, not a folder: " + path,
                L"Put the folder in its place.",
                {}};
    }
    return {Code::FolderEmpty,
            L"the folder is empty: " + path,
            L"Nothing needs to be done, unless there should be files in it.",
            {}};
}

void FindFaultsOfKey(Findings& findings, const Omission& note) {
    if (IsDenied(note.Path)) {
        findings.Add(Severity::Error, UnreadableKey(note.Path), note.Title);
        return;
    }
    // A product that is not installed has no key. A version that is listed has one.
    if (CRegistryKey(note.Path, false).IsOpen()) {
        findings.Add(Severity::Error, CauseOfFolderValue(note.Path, L"InstallationPath"),
                     note.Title);
    }
}

// A section's file was not found. That is a fault when its product is registered, and when what
// registers it can not be used.
void FindFaultsOfSection(Findings& findings, const Omission& note, const Cause& cause,
                         const Installation& installation) {
    const PathBase registration =
        note.Base == &Installation::InstallDir ? &Installation::ActiveKorExamplesRoot : note.Base;
    const bool isRegistered = registration == nullptr || (installation.*registration).Length() > 0;
    const bool isOfNoUse = cause.Kind != Code::ValueMissing && cause.Kind != Code::TargetMissing;
    if (isRegistered || isOfNoUse) {
        findings.Add(isRegistered ? Severity::Error : Severity::Warning, cause, note.Title);
    }
}

void FindFaultsOfOmissions(Findings& findings, const CatalogueAnswer& catalogue,
                           const Installation& installation) {
    for (const auto& [note, causes, why] : catalogue.Omitted) {
        if (note->Where == Looked::AtRegistryKey) {
            FindFaultsOfKey(findings, *note);
        } else if (note->Where == Looked::AtFolder) {
            const Cause cause = causes.empty() ? UselessFolder(note->Path) : causes.back();
            findings.Add(Severity::Warning, cause, note->Title + L": " + note->Label);
        } else if (note->Where == Looked::AtFile && !causes.empty()) {
            FindFaultsOfSection(findings, *note, causes.back(), installation);
        }
    }
}

} // namespace

std::vector<Finding> FindFaults(const PageState& state, const CatalogueAnswer& catalogue) {
    Findings findings;
    if (IsNothingInstalled(state.Page)) {
        findings.Add(Severity::Error, NothingInstalled(), L"library");
        return findings.All;
    }
    FindFaultsOfWindow(findings);
    FindFaultsOfQueries(findings, state.Page);
    FindFaultsOfItems(findings, catalogue);
    FindFaultsOfOmissions(findings, catalogue, state.Page);
    return findings.All;
}
