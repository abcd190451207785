// The keys in which the launcher looks for the installation, and when they were last written to.
#pragma once

#include <windows.h>

#include <string>

#include "diag/JsonWriter.h"
#include "diag/Utf8Output.h"

// As the documents of the program write a time: ISO 8601, UTC.
std::wstring InIso8601(const SYSTEMTIME& utc);

void WriteInstallKeys(JsonWriter& json);
void WriteInstallKeys(Utf8Output& output);
