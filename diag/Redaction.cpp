// Finds the names and the folders of the user, and puts words in their place.
#include "diag/Redaction.h"

#include <windows.h>

#include "registry/StringUtilities.h"

namespace {

// Shorter names are parts of too many other words; they are replaced as whole words.
constexpr std::size_t ShortestPart = 4;

bool IsSame(wchar_t a, wchar_t b) {
    return CompareStringOrdinal(&a, 1, &b, 1, TRUE) == CSTR_EQUAL;
}

// How much of the text's beginning is the name; 0 when it does not begin with it.
std::size_t LengthOf(std::wstring_view name, std::wstring_view text) {
    std::size_t at = 0;
    for (const wchar_t c : name) {
        if (at == text.size()) {
            return 0;
        }
        if (kor::IsPathSeparator(c)) {
            if (!kor::IsPathSeparator(text[at])) {
                return 0;
            }
            while (at < text.size() && kor::IsPathSeparator(text[at])) {
                ++at;
            }
        } else if (!IsSame(c, text[at++])) {
            return 0;
        }
    }
    return at;
}

bool IsWordPart(std::wstring_view text, std::size_t at) {
    return at < text.size() && IsCharAlphaNumericW(text[at]) != FALSE;
}

// Whether the name, found in the text from start to end, belongs to another word there.
bool IsPartOfAnother(std::wstring_view name, std::wstring_view text, std::size_t start,
                     std::size_t end) {
    const bool isShort = name.size() < ShortestPart;
    // C:\Users\Anna is not where Annabel's folder begins.
    const bool isFolder = name.find(L'\\') != name.npos;
    return (isShort && start > 0 && IsWordPart(text, start - 1)) ||
           ((isShort || isFolder) && IsWordPart(text, end));
}

// The whole text, however long, of a function that tells how much room it needs, and the length of
// what it wrote; empty when there is none.
template <typename Fill>
std::wstring TextOf(Fill fill) {
    std::wstring text(MAX_PATH, L'\0');
    DWORD length = fill(text.data(), MAX_PATH);
    while (length > text.size()) {
        text.resize(length);
        length = fill(text.data(), length);
    }
    text.resize(length);
    return text;
}

std::wstring Variable(const wchar_t* name) {
    return TextOf(
        [=](wchar_t* text, DWORD room) { return GetEnvironmentVariableW(name, text, room); });
}

std::wstring ComputerName(COMPUTER_NAME_FORMAT format) {
    wchar_t name[MAX_PATH] = L"";
    DWORD length = MAX_PATH;
    return GetComputerNameExW(format, name, &length) != FALSE ? name : L"";
}

std::wstring UserName() {
    wchar_t name[MAX_PATH] = L"";
    DWORD length = MAX_PATH;
    return GetUserNameW(name, &length) != FALSE ? name : L"";
}

std::wstring Spelled(DWORD(WINAPI* spell)(LPCWSTR, LPWSTR, DWORD), const std::wstring& path) {
    return TextOf([&](wchar_t* text, DWORD room) { return spell(path.c_str(), text, room); });
}

std::wstring LastPart(const std::wstring& path) {
    return path.substr(path.find_last_of(L"\\/") + 1);
}

} // namespace

Redaction Redaction::OfThisUser() {
    Redaction redaction;
    const std::wstring profile = Variable(L"USERPROFILE");
    const std::wstring folders[] = {profile, Spelled(GetLongPathNameW, profile),
                                    Spelled(GetShortPathNameW, profile)};
    for (const std::wstring& folder : folders) {
        redaction.Add(folder, L"%USERPROFILE%");
    }
    for (const auto format :
         {ComputerNameDnsFullyQualified, ComputerNameDnsHostname, ComputerNameNetBIOS}) {
        redaction.Add(ComputerName(format), L"<computer>");
    }
    redaction.Add(ComputerName(ComputerNameDnsDomain), L"<domain>");
    redaction.Add(Variable(L"USERDNSDOMAIN"), L"<domain>");
    redaction.Add(Variable(L"USERDOMAIN"), L"<domain>");
    redaction.Add(UserName(), L"<user>");
    redaction.Add(Variable(L"USERNAME"), L"<user>");
    for (const std::wstring& folder : folders) {
        redaction.Add(LastPart(folder), L"<user>");
    }
    return redaction;
}

std::wstring Redaction::Apply(std::wstring_view text) const {
    std::wstring redacted;
    for (std::size_t at = 0; at < text.size();) {
        const wchar_t* word = nullptr;
        std::size_t length = 0;
        for (const Name& name : m_names) {
            length = LengthOf(name.Text, text.substr(at));
            if (length > 0 && !IsPartOfAnother(name.Text, text, at, at + length)) {
                word = name.Word;
                break;
            }
        }
        if (word != nullptr) {
            redacted += word;
            at += length;
        } else {
            redacted += text[at++];
        }
    }
    return redacted;
}

void Redaction::Add(std::wstring_view name, const wchar_t* word) {
    while (!name.empty() && kor::IsPathSeparator(name.back())) {
        name.remove_suffix(1);
    }
    if (!name.empty()) {
        m_names.push_back({std::wstring(name), word});
    }
}
