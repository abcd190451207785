// Looks at the pieces of a path, and at the value that it begins with.
#include "diag/PathCauses.h"

#include <algorithm>
#include <iterator>

#include "diag/MissingPath.h"
#include "diag/QueryAnswers.h"
#include "diag/RegistryCauses.h"
#include "registry/StringUtilities.h"

namespace {

Cause MissingManager() {
    return {Code::ManagerMissing,
            L"no installed version has the file Tools/FlowForgeRuntimeManager.exe",
            L"Repair the installation of one version of Flow Forge, which puts the file there.",
            {}};
}

Cause MissingTarget(const CKORString& found) {
    return {Code::TargetMissing,
            found,
            L"Repair the installation, which puts it back. If the product was moved, write its new "
            L"folder to the registry: kordiag queries shows the values.",
            {}};
}

// The path goes on right behind the text, which should have ended in a separator.
bool IsTornOff(const CKORString& path, const CKORString& text) {
    return !kor::IsPathSeparator(text[text.Length() - 1]) && path.Length() > text.Length() &&
           !kor::IsPathSeparator(path[text.Length()]);
}

Cause WithoutBackslash(const AskedQuery& query, const CKORString& text) {
    const CKORString key = KeyName(query);
    return {Code::BaseWithoutBackslash,
            CKORString::Format(L"the %s does not end in a backslash: the value \"%s\" of %s is "
                               L"\"%s\"",
                               query.Name, query.Query->Value, key.Text(), text.Text()),
            L"Write it with its backslash, as an administrator:",
            SetCommand(key, query.Query->Value, text + L"\\")};
}

} // namespace

std::vector<Cause> CausesOfPath(const CKORString& path, PathBase base, bool isFolder,
                                const Installation& installation) {
    // Only the path of the runtime manager is empty without a base.
    if (base == nullptr && path.Length() == 0) {
        return {MissingManager()};
    }
    std::vector<Cause> causes;
    const CKORString missing = WhatIsMissingOf(path, isFolder);
    if (missing.Length() > 0) {
        causes.push_back(MissingTarget(missing));
    }
    if (base == nullptr) {
        return causes;
    }
    const CKORString& text = installation.*base;
    const AskedQuery& query = QueryOf(base);
    // The launcher puts a backslash behind this one even when there is no text.
    const std::int64_t emptyLength = base == &Installation::FlowForgeInstallDir ? 1 : 0;
    if (text.Length() <= emptyLength) {
        if (auto cause = CauseOfFolderValue(KeyName(query), query.Query->Value)) {
            cause->Found =
                CKORString::Format(L"the %s is empty: %s", query.Name, cause->Found.Text());
            // The rest of a path without its beginning says nothing.
            causes = {*cause};
        }
    } else if (IsTornOff(path, text)) {
        causes.push_back(WithoutBackslash(query, text));
    }
    return causes;
}
