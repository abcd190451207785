// What is installed and where: five questions to the registry. A missing key or value is no error;
// it gives an empty text or false. Nothing is ever written or created.
#pragma once

#include "base/CKORString.h"

// As stored: no separator is added.
CKORString QueryInstallFolder();

// With one backslash added whenever the value exists; a value that is no text gives the backslash
// alone.
CKORString QueryFlowForgeInstallFolder();

// As stored. Products are "KOR" and "ActiveKor".
CKORString QueryExamplesRoot(const CKORString& product);

// Whether the installation's type is "Development", in any case.
bool IsDevelopmentInstallation();

// Whether the registry names a library version, as text.
bool IsValidInstallation();
