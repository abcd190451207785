// The page as a document of its own, for browsers.
#pragma once

#include <string>

#include "base/CKORString.h"

// The template with the sections and the picture in it, which the launcher's window adds. False
// when the program's resources are damaged.
bool MakeDocument(const CKORString& sections, std::wstring& document);
