#include "diag/QueryAnswers.h"

#include <algorithm>
#include <iterator>

#include "diag/ValueTypes.h"
#include "registry/CRegistryKey.h"
#include "registry/StringUtilities.h"

namespace {

CKORString KeyPath(const AskedQuery& query) {
    return query.Product != nullptr ? ExamplesRootKey(query.Product) : CKORString(query.Query->Key);
}

CKORString ValueName(const AskedQuery& query) {
    return CKORString(L"the value \"") + query.Query->Value + L"\" of " + KeyName(query);
}

// The value on which an answer rests, with what it holds.
CKORString WhatIsThere(const AskedQuery& query) {
    CRegistryKey key(KeyPath(query), false);
    const CKORString name = ValueName(query);
    if (!key.ValueExists(query.Query->Value)) {
        return name + L" does not exist";
    }
    CKORString text;
    if (!key.ReadString(query.Query->Value, text)) {
        return name + L" is not a text";
    }
    return text.Length() == 0 ? name + L" is empty" : name + L" is \"" + text + L"\"";
}

const AskedQuery& QueryOf(const InstallationQuery& question) {
    return *std::find_if(std::begin(AskedQueries), std::end(AskedQueries),
                         [&](const AskedQuery& row) { return row.Query == &question; });
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

BaseFault FaultOf(const CKORString& path, PathBase base, const Installation& installation) {
    if (base == nullptr) {
        return {false, L""};
    }
    const CKORString& text = installation.*base;
    const AskedQuery& query =
        *std::find_if(std::begin(AskedQueries), std::end(AskedQueries),
                      [base](const AskedQuery& row) { return row.Text == base; });
    // The launcher puts a backslash behind this one even when there is no text.
    const std::int64_t emptyLength = base == &Installation::FlowForgeInstallDir ? 1 : 0;
    if (text.Length() <= emptyLength) {
        return {true, CKORString(L"the ") + query.Name + L" is empty: " + WhatIsThere(query)};
    }
    const bool isTornOff = !kor::IsPathSeparator(text[text.Length() - 1]) &&
                           path.Length() > text.Length() &&
                           !kor::IsPathSeparator(path[text.Length()]);
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
