// A small strict JSON reader, and the way to the trace file.
#include "tests/htmldocument/TraceReader.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace test {
namespace {

class Reader {
public:
    explicit Reader(std::wstring text) : m_text(std::move(text)) {}
    bool ReadAll(Json& value) {
        const bool good = ReadValue(value);
        SkipSpaces();
        return good && m_at == m_text.size();
    }

private:
    wchar_t Peek() const { return m_at < m_text.size() ? m_text[m_at] : L'\0'; }
    void SkipSpaces() {
        while (Peek() == L' ' || Peek() == L'\n' || Peek() == L'\r' || Peek() == L'\t') {
            ++m_at;
        }
    }
    bool Take(wchar_t c) {
        SkipSpaces();
        if (Peek() != c) {
            return false;
        }
        ++m_at;
        return true;
    }
    bool TakeWord(std::wstring_view word) {
        if (m_text.compare(m_at, word.size(), word) != 0) {
            return false;
        }
        m_at += word.size();
        return true;
    }
    bool ReadValue(Json& value) {
        SkipSpaces();
        switch (Peek()) {
        case L'{':
            return ReadObject(value);
        case L'[':
            return ReadArray(value);
        case L'"':
            value.kind = Json::Kind::Text;
            return ReadText(value.text);
        case L't':
            value.number = 1;
            value.kind = Json::Kind::Bool;
            return TakeWord(L"true");
        case L'f':
            value.kind = Json::Kind::Bool;
            return TakeWord(L"false");
        default:
            return ReadNumber(value);
        }
    }
    bool ReadNumber(Json& value) {
        wchar_t* end = nullptr;
        value.kind = Json::Kind::Number;
        value.number = std::wcstod(m_text.c_str() + m_at, &end);
        const auto length = static_cast<size_t>(end - (m_text.c_str() + m_at));
        m_at += length;
        return length != 0;
    }
    bool ReadText(std::wstring& text) {
        ++m_at;
        while (Peek() != L'"') {
            if (m_at >= m_text.size() || Peek() < 0x20) {
                return false;
            }
            if (Peek() != L'\\') {
                text += m_text[m_at++];
                continue;
            }
            ++m_at;
            const wchar_t kind = Peek();
            ++m_at;
            if (kind == L'u') {
                text +=
                    static_cast<wchar_t>(std::wcstoul(m_text.substr(m_at, 4).c_str(), nullptr, 16));
                m_at += 4;
            } else if (kind == L'"' || kind == L'\\') {
                text += kind;
            } else {
                return false;
            }
        }
        ++m_at;
        return true;
    }
    bool ReadArray(Json& value) {
        value.kind = Json::Kind::Array;
        ++m_at;
        if (Take(L']')) {
            return true;
        }
        do {
            value.items.emplace_back();
            if (!ReadValue(value.items.back())) {
                return false;
            }
        } while (Take(L','));
        return Take(L']');
    }
    bool ReadObject(Json& value) {
        value.kind = Json::Kind::Object;
        ++m_at;
        if (Take(L'}')) {
            return true;
        }
        do {
            std::wstring name;
            SkipSpaces();
            if (Peek() != L'"' || !ReadText(name) || !Take(L':') ||
                !ReadValue(value.members[name])) {
                return false;
            }
        } while (Take(L','));
        return Take(L'}');
    }

    std::wstring m_text;
    size_t m_at = 0;
};

} // namespace

const Json& Json::operator[](const std::wstring& name) const {
    static const Json nothing;
    const auto found = members.find(name);
    return found != members.end() ? found->second : nothing;
}

bool ParseJson(std::string_view bytes, Json& value) {
    const int size = static_cast<int>(bytes.size());
    const int length =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, nullptr, 0);
    std::wstring text(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, text.data(), length);
    return length != 0 && Reader(text).ReadAll(value);
}

std::wstring TracePath() {
    wchar_t folder[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + L"trace.json";
}

bool ReadTrace(Json& trace) {
    const HANDLE file =
        CreateFileW(TracePath().c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    std::string bytes(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    const bool complete =
        ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr) &&
        read == bytes.size();
    CloseHandle(file);
    trace = Json();
    EXPECT_TRUE(complete && ParseJson(bytes, trace)) << bytes;
    return trace.kind == Json::Kind::Object;
}

const Json* FindBox(const Json& trace, const std::wstring& id) {
    for (const Json& box : trace[L"boxes"].items) {
        if (box[L"id"].text == id) {
            return &box;
        }
    }
    return nullptr;
}

} // namespace test
