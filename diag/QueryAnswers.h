// The questions that the launcher asks the registry about the installation, with what an answer
// tells about the texts that the items' paths begin with.
#pragma once

#include "base/CKORString.h"
#include "page/InstallationQueries.h"

// In its real form.
CKORString KeyName(const AskedQuery& query);

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
