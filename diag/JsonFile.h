// JSON documents in files.
#pragma once

#include <string>

#include "diag/JsonValue.h"

// A report of a thousand installed versions has a twentieth of that.
inline constexpr std::size_t MostJsonFileBytes = std::size_t{64} * 1024 * 1024;

// False with what is wrong with the file, in words that go on after its name. The file is UTF-8,
// with or without a mark at its beginning.
bool ReadJsonFile(const std::wstring& path, JsonValue& document, std::wstring& error);
