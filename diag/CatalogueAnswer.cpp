#include "diag/CatalogueAnswer.h"

#include "diag/MissingPath.h"
#include "diag/QueryAnswers.h"

namespace {

void AppendReason(CKORString& reasons, const CKORString& reason) {
    if (reason.Length() > 0) {
        reasons += reasons.Length() > 0 ? L"; " : L"";
        reasons += reason;
    }
}

// What is wrong with a path that begins with the base.
CKORString WhyMissing(const CKORString& path, PathBase base, bool isFolder,
                      const Installation& installation) {
    // Only the path of the runtime manager is empty without a base.
    if (base == nullptr && path.Length() == 0) {
        return L"no installed version has the file Tools/FlowForgeRuntimeManager.exe";
    }
    const BaseFault fault = FaultOf(path, base, installation);
    CKORString reasons;
    // The rest of a path without its beginning says nothing.
    if (!fault.IsEmpty) {
        AppendReason(reasons, WhatIsMissingOf(path, isFolder));
    }
    AppendReason(reasons, fault.Words);
    return reasons;
}

CKORString WhyOmitted(const Omission& note, const Installation& installation) {
    CKORString detail;
    if (note.Where == Looked::AtInstallationType) {
        detail = WhyNotDevelopment();
    } else if (note.Where != Looked::AtRegistryKey) {
        detail = WhyMissing(note.Path, note.Base, note.Where == Looked::AtFolder, installation);
    }
    return CKORString(note.Reason) + L": " + (detail.Length() > 0 ? detail : note.Path);
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
            CKORString why(invalid);
            if (!isThere) {
                AppendReason(why,
                             WhyMissing(item->Path, item->Base, item->Type == ItemFolder, page));
            }
            Sections.back().Items.push_back({item, page.IsValid && isThere, why});
        }
    }
    for (const Omission& note : page.Sections.Omissions) {
        Omitted.push_back({&note, WhyOmitted(note, page)});
    }
}
