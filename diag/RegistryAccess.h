// What the registry commands share: opening the key that they work on, and values in words.
#pragma once

#include "diag/Commands.h"
#include "registry/CRegistryKey.h"

// Selects the layout that the arguments ask for, for all key objects from now on, and whether
// values may be written anywhere.
void SelectLayoutAndRule(const Arguments& arguments);

// Opens the key of the first operand, and creates it with --create. Otherwise says why not.
bool OpenKey(const Arguments& arguments, Streams& streams, CRegistryKey& key);

// Whether the layer refuses the path because it names "volatile" where no volatile location is.
bool IsRefusedAsVolatile(const CKORString& path, bool create);

// Writes one line to the errors: the command's failure in words.
void Complain(Streams& streams, const CKORString& words);

// The value's data: a number, a text as the library reads it, or bytes as hexadecimal digits. Null
// and an empty text when it cannot be read.
void WriteData(JsonWriter& json, CRegistryKey& key, const CKORString& name, RegValueType type);
// As it is; false when it cannot be read.
bool ReadData(CRegistryKey& key, const CKORString& name, RegValueType type, CKORString& text);
