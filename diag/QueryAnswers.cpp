#include "diag/QueryAnswers.h"

#include <algorithm>
#include <iterator>

#include "registry/CRegistryKey.h"

const AskedQuery AskedQueries[AskedQueryCount] = {
    {L"install folder", &InstallFolderQuery, nullptr, PathBase::InstallDir},
    {L"ActiveKor examples root", &ExamplesRootQuery, L"ActiveKor", PathBase::ActiveKorExamplesRoot},
    {L"KOR examples root", &ExamplesRootQuery, L"KOR", PathBase::KorExamplesRoot},
    {L"Flow Forge install folder", &FlowForgeInstallFolderQuery, nullptr,
     PathBase::FlowForgeInstallDir},
    {L"development installation", &DevelopmentQuery, nullptr, PathBase::None},
    {L"valid installation", &ValidInstallationQuery, nullptr, PathBase::None},
};

namespace {

constexpr const wchar_t* TypeNames[] = {L"unknown", L"dword",  L"string", L"binary",
                                        L"qword",   L"expand", L"multi"};

bool IsSeparator(wchar_t c) {
    return c == L'\\' || c == L'/';
}

const CKORString* TextOf(PathBase base, const Installation& installation) {
    switch (base) {
    case PathBase::InstallDir:
        return &installation.InstallDir;
    case PathBase::ActiveKorExamplesRoot:
        return &installation.ActiveKorExamplesRoot;
    case PathBase::KorExamplesRoot:
        return &installation.KorExamplesRoot;
    case PathBase::FlowForgeInstallDir:
        return &installation.FlowForgeInstallDir;
    default:
        return nullptr;
    }
}

CKORString ValueName(const AskedQuery& query) {
    return CKORString(L"the value \"") + query.Query->Value + L"\" of " + query.KeyName();
}

// The value on which an answer rests, with what it holds.
CKORString WhatIsThere(const AskedQuery& query) {
    CRegistryKey key(query.Key(), false);
    const CKORString name = ValueName(query);
    if (!key.ValueExists(query.Query->Value)) {
        return name + L" does not exist";
    }
    CKORString text;
    if (!key.ReadString(query.Query->Value, text)) {
        return name + L" is no text";
    }
    return text.Length() == 0 ? name + L" is an empty text" : name + L" is \"" + text + L"\"";
}

const AskedQuery& QueryOf(const InstallationQuery& question) {
    return *std::find_if(std::begin(AskedQueries), std::end(AskedQueries),
                         [&](const AskedQuery& row) { return row.Query == &question; });
}

} // namespace

const wchar_t* TypeName(RegValueType type) {
    return TypeNames[static_cast<std::size_t>(type)];
}

CKORString AskedQuery::Key() const {
    return Product != nullptr ? ExamplesRootKey(Product) : CKORString(Query->Key);
}

CKORString AskedQuery::KeyName() const {
    return ResolvedName(Key(), CRegistryKey::RtxMode());
}

QueryAnswer Ask(const AskedQuery& query) {
    QueryAnswer answer = {false, L"", false, CKORString()};
    const CRegistryKey key(query.Key(), false);
    answer.IsFound = key.ValueExists(query.Query->Value);
    if (answer.IsFound) {
        RegValueType type = RegValueType::Unknown;
        key.GetValueType(query.Query->Value, type);
        answer.Type = TypeName(type);
    }
    switch (query.Base) {
    case PathBase::InstallDir:
        answer.Text = QueryInstallFolder();
        break;
    case PathBase::FlowForgeInstallDir:
        answer.Text = QueryFlowForgeInstallFolder();
        break;
    case PathBase::None:
        answer.IsYes =
            query.Query == &DevelopmentQuery ? IsDevelopmentInstallation() : IsValidInstallation();
        break;
    default:
        answer.Text = QueryExamplesRoot(query.Product);
    }
    return answer;
}

BaseFault FaultOf(const CKORString& path, PathBase base, const Installation& installation) {
    const CKORString* const text = TextOf(base, installation);
    if (text == nullptr) {
        return {false, L""};
    }
    const AskedQuery& query =
        *std::find_if(std::begin(AskedQueries), std::end(AskedQueries),
                      [base](const AskedQuery& row) { return row.Base == base; });
    // The launcher puts a backslash behind this one even when there is no text.
    const std::int64_t emptyLength = base == PathBase::FlowForgeInstallDir ? 1 : 0;
    if (text->Length() <= emptyLength) {
        return {true, CKORString(L"the ") + query.Name + L" is empty: " + WhatIsThere(query)};
    }
    const bool isTornOff = !IsSeparator((*text)[text->Length() - 1]) &&
                           path.Length() > text->Length() && !IsSeparator(path[text->Length()]);
    if (isTornOff) {
        return {false, CKORString(L"the ") + query.Name + L" does not end in a backslash: " +
                           WhatIsThere(query)};
    }
    return {false, L""};
}

CKORString WhyNotDevelopment() {
    return WhatIsThere(QueryOf(DevelopmentQuery));
}

CKORString WhyNotValid() {
    return WhatIsThere(QueryOf(ValidInstallationQuery));
}
