// Writes one JSON document, piece by piece and in the order of the calls.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/CKORString.h"
#include "diag/Redaction.h"
#include "diag/Utf8Output.h"

// Of the documents that name it as their "schema": raised when a member changes its meaning or
// goes.
inline constexpr std::int64_t SchemaVersion = 1;

// The text as a JSON string with its quotes. Control characters and surrogates that are no pair are
// written as \uXXXX, so that any text that Windows may hold comes out as valid UTF-8.
std::wstring Quoted(std::wstring_view text);
std::wstring Quoted(const CKORString& text);

// The text for people: the same characters are written as \uXXXX, so that a line stays a line; all
// others as they are.
std::wstring Printable(const CKORString& text);
std::wstring PrintableText(std::wstring_view text);

// The caller's calls must make a document: a key before each member of an object.
class JsonWriter {
public:
    // redaction, if there is one, is applied to the texts of the document.
    explicit JsonWriter(Utf8Output& output, const Redaction* redaction = nullptr)
        : m_output(output), m_redaction(redaction) {}
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    void BeginObject() { Begin(L"{"); }
    void EndObject() { End(L"}"); }
    void BeginArray() { Begin(L"["); }
    void EndArray() { End(L"]"); }

    // A member of an object begins; its value follows.
    JsonWriter& Key(const wchar_t* name) { return Key(std::wstring_view(name)); }
    JsonWriter& Key(std::wstring_view name);

    void Text(std::wstring_view text);
    void Text(const CKORString& text);
    void Number(std::int64_t number) { Value(std::to_wstring(number)); }
    void Number(std::uint64_t number) { Value(std::to_wstring(number)); }
    // As it is written already.
    void Number(std::wstring_view digits) { Value(digits); }
    void Boolean(bool value) { Value(value ? L"true" : L"false"); }
    void Null() { Value(L"null"); }

    // False when nobody reads on.
    bool IsOpen() const { return m_output.IsOpen(); }

private:
    void Separate();
    void Begin(const wchar_t* bracket);
    void End(const wchar_t* bracket);
    void Value(std::wstring_view text);

    Utf8Output& m_output;
    const Redaction* m_redaction;
    bool m_needsComma = false;
};
