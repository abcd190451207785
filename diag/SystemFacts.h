// What the report says about the system and the session in which the program runs.
#pragma once

#include <string>

#include "diag/JsonWriter.h"
#include "diag/Utf8Output.h"

// Name, version and build in one line, as far as they are known.
std::wstring SystemName();

// What cannot be found out is null in JSON, and the text says why it is not known.
void WriteFacts(JsonWriter& json);
void WriteFacts(Utf8Output& output);
