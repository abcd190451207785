// Asks the launcher's questions again and tells where the answers come from.
#include "diag/QueryAnswers.h"

#include <algorithm>
#include <iterator>

#include "diag/RegistryCauses.h"
#include "diag/ValueTypes.h"
#include "registry/CRegistryKey.h"

namespace {

CKORString KeyPath(const AskedQuery& query) {
    return query.Product != nullptr ? ExamplesRootKey(query.Product) : CKORString(query.Query->Key);
}

// The value on which an answer rests, with what it holds or why it holds nothing.
CKORString WhatIsThere(const AskedQuery& query) {
    const CKORString keyName = KeyName(query);
    if (const auto cause = CauseOfValue(keyName, query.Query->Value)) {
        return cause->Found;
    }
    CKORString text;
    CRegistryKey(keyName, false).ReadString(query.Query->Value, text);
    return CKORString::Format(L"the value \"%s\" of %s is \"%s\"", query.Query->Value,
                              keyName.Text(), text.Text());
}

} // namespace

CKORString KeyName(const AskedQuery& query) {
    return kor::ResolvedName(KeyPath(query), CRegistryKey::RtxMode());
}

QueryAnswer Ask(const AskedQuery& query) {
    QueryAnswer answer = {false, L"", false, CKORString()};
    const CRegistryKey key(KeyPath(query), false);
    answer.IsFound = key.ValueExists(query.Query->Value);
    if (answer.IsFound) {
        RegValueType type = RegValueType::Unknown;
        key.GetValueType(query.Query->Value, type);
        answer.Type = TypeName(type);
    }
    if (query.Text != nullptr) {
        answer.Text = query.AskText();
    } else {
        answer.IsYes = query.IsYes();
    }
    return answer;
}

const AskedQuery& QueryOf(PathBase text) {
    return *std::find_if(std::begin(AskedQueries), std::end(AskedQueries),
                         [text](const AskedQuery& row) { return row.Text == text; });
}

const AskedQuery& QueryOf(const InstallationQuery& question) {
    return *std::find_if(std::begin(AskedQueries), std::end(AskedQueries),
                         [&](const AskedQuery& row) { return row.Query == &question; });
}

CKORString WhyNotDevelopment() {
    return WhatIsThere(QueryOf(DevelopmentQuery));
}

CKORString WhyNotValid() {
    return WhatIsThere(QueryOf(ValidInstallationQuery));
}
