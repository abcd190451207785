// The questions that the launcher asks the registry about the installation, with what an answer
// tells about the texts that the items' paths begin with.
#pragma once

#include "app/page/InstallationQueries.h"
#include "base/CKORString.h"
#include "catalogue/Installation.h"
#include "registry/RegValueType.h"

// As users of the registry editor know the types; "unknown" for one that the library does not read.
const wchar_t* TypeName(RegValueType type);

struct AskedQuery {
    const wchar_t* Name;
    const InstallationQuery* Query;
    const wchar_t* Product; // whose examples root it is; null for the other questions
    PathBase Base;          // the text that the answer is; None for a yes or no

    CKORString Key() const;     // as a registry path
    CKORString KeyName() const; // in its real form
};

// In the order in which the launcher asks.
constexpr int AskedQueryCount = 6;
extern const AskedQuery AskedQueries[AskedQueryCount];

struct QueryAnswer {
    bool IsFound;        // the value exists
    const wchar_t* Type; // empty when it does not
    bool IsYes;          // of a yes or no
    CKORString Text;     // of the others
};

QueryAnswer Ask(const AskedQuery& query);

// Why a text is of no use as the beginning of the path.
struct BaseFault {
    bool IsEmpty;     // there is no text
    CKORString Words; // with the registry value that the text comes from; empty without a fault
};

BaseFault FaultOf(const CKORString& path, PathBase base, const Installation& installation);

// The registry value on which a no rests, in words.
CKORString WhyNotDevelopment();
CKORString WhyNotValid();
