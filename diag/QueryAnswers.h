// The questions that the launcher asks the registry about the installation, what it answers, and
// on what a no rests.
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

// The question whose answer is the text, and that of a yes or no.
const AskedQuery& QueryOf(PathBase text);
const AskedQuery& QueryOf(const InstallationQuery& question);

// The registry value on which a no rests, in words.
CKORString WhyNotDevelopment();
CKORString WhyNotValid();
