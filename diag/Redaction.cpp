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

std::wstring Variable(const wchar_t* name) {
    wchar_t text[MAX_PATH] = L"";
    const DWORD length = GetEnvironmentVariableW(name, text, MAX_PATH);
    return length < MAX_PATH ? std::wstring(text, length) : std::wstring();
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
    wchar_t spelled[MAX_PATH] = L"";
    const DWORD length = spell(path.c_str(), spelled, MAX_PATH);
    return length < MAX_PATH ? std::wstring(spelled, length) : std::wstring();
}

std::wstring LastPart(const std::wstring& path) {
    return path.substr(path.find_last_of(L"\\/") + 1);
}

} // namespace

Redaction Redaction::OfThisUser() {
    Redaction redaction;
    const std::wstring profile = Variable(L"USERPROFILE");
    const std::wstring shortProfile = Spelled(GetShortPathNameW, profile);
    for (const std::wstring& folder : {profile, Spelled(GetLongPathNameW, profile), shortProfile}) {
        redaction.Add(folder, L"%USERPROFILE%");
    }
    for (const auto format :
         {ComputerNameDnsFullyQualified, ComputerNameDnsHostname, ComputerNameNetBIOS}) {
        redaction.Add(ComputerName(format), L"<computer>");
    }
    redaction.Add(ComputerName(ComputerNameDnsDomain), L"<domain>");
    redaction.Add(Variable(L"USERDNSDOMAIN"), L"<domain>");
    redaction.Add(Variable(L"USERDOMAIN"), L"<domain>");
    for (const std::wstring& name :
         {UserName(), Variable(L"USERNAME"), LastPart(profile), LastPart(shortProfile)}) {
        redaction.Add(name, L"<user>");
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
            const bool isPart =
                name.Text.size() < ShortestPart &&
                ((at > 0 && IsWordPart(text, at - 1)) || IsWordPart(text, at + length));
            if (length > 0 && !isPart) {
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
