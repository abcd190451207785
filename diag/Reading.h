// The answers of the reading commands in their two forms. The report is made of them.
#pragma once

#include <string>

#include "diag/CatalogueAnswer.h"
#include "diag/JsonWriter.h"
#include "diag/Utf8Output.h"

void WriteSizes(JsonWriter& json, const PageState& state);
void WriteSizes(Utf8Output& output, const PageState& state);

void WriteCatalogue(JsonWriter& json, const CatalogueAnswer& catalogue);
void WriteCatalogue(Utf8Output& output, const CatalogueAnswer& catalogue);

void WriteQueries(JsonWriter& json);
void WriteQueries(Utf8Output& output);

void WriteRoots(JsonWriter& json, bool rtxLayout);
void WriteRoots(Utf8Output& output, bool rtxLayout);

// Whether there is an answer.
bool WriteSetting(JsonWriter& json, const CKORString& name);
// With the sources that were asked.
bool WriteSetting(Utf8Output& output, const CKORString& name);

// The document of kordiag report, without the names of the user and the computer if they are to be
// left out.
std::wstring ReportDocument(bool redacts);
