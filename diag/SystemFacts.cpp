// One function for each fact; what cannot be found out says why.
#include "diag/SystemFacts.h"

#include <windows.h>

#include <cwchar>
#include <iterator>

#include "diag/FileVersion.h"

namespace {

enum class Kind { Unknown, Text, Number, YesOrNo, Area };

struct Fact {
    Kind Type = Kind::Unknown;
    std::wstring Text;
    std::int64_t Number = 0; // an error of the system's, or 0, when the fact is unknown
    RECT Area = {};
};

Fact Unknown(std::int64_t error) {
    return {Kind::Unknown, L"", error, {}};
}

Fact UnknownByLastError() {
    return Unknown(GetLastError());
}

Fact TextFact(const wchar_t* text) {
    return {Kind::Text, text, 0, {}};
}

Fact NumberFact(std::int64_t number) {
    return {Kind::Number, L"", number, {}};
}

Fact YesOrNo(bool isYes) {
    return {Kind::YesOrNo, L"", isYes ? 1 : 0, {}};
}

// Windows tells programs an older version than its own, depending on their manifest and on the
// compatibility mode in which the user runs them. The registry says the same to all.
constexpr wchar_t SystemKey[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";

Fact RegistryText(const wchar_t* value) {
    wchar_t text[256] = L"";
    DWORD size = sizeof text;
    const LSTATUS result =
        RegGetValueW(HKEY_LOCAL_MACHINE, SystemKey, value, RRF_RT_REG_SZ, nullptr, text, &size);
    return result == ERROR_SUCCESS ? TextFact(text) : Unknown(result);
}

Fact RegistryNumber(const wchar_t* key, const wchar_t* value) {
    DWORD number = 0;
    DWORD size = sizeof number;
    const LSTATUS result =
        RegGetValueW(HKEY_LOCAL_MACHINE, key, value, RRF_RT_REG_DWORD, nullptr, &number, &size);
    return result == ERROR_SUCCESS ? NumberFact(number) : Unknown(result);
}

Fact Build() {
    Fact text = RegistryText(L"CurrentBuild");
    if (text.Type == Kind::Unknown) {
        return text;
    }
    wchar_t* end = nullptr;
    const unsigned long build = std::wcstoul(text.Text.c_str(), &end, 10);
    return build != 0 && *end == L'\0' ? NumberFact(build) : Unknown(ERROR_INVALID_DATA);
}

// Windows 11 still calls itself "Windows 10" here; servers have other names.
Fact WindowsName() {
    constexpr std::int64_t FirstBuildOfEleven = 22000;
    constexpr std::wstring_view Ten = L"Windows 10";
    Fact name = RegistryText(L"ProductName");
    const std::size_t at = name.Text.find(Ten);
    if (at != std::wstring::npos && Build().Number >= FirstBuildOfEleven) {
        name.Text.replace(at, Ten.size(), L"Windows 11");
    }
    return name;
}

// Where it is kept was changed with Windows 10 and again with its version 20H2.
Fact DisplayVersion() {
    for (const wchar_t* const value : {L"DisplayVersion", L"ReleaseId"}) {
        const Fact version = RegistryText(value);
        if (!version.Text.empty()) {
            return version;
        }
    }
    return RegistryText(L"CSDVersion");
}

Fact Elevated() {
    HANDLE token = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == FALSE) {
        return UnknownByLastError();
    }
    TOKEN_ELEVATION elevation = {};
    DWORD size = 0;
    const Fact fact =
        GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size) != FALSE
            ? YesOrNo(elevation.TokenIsElevated != 0)
            : UnknownByLastError();
    CloseHandle(token);
    return fact;
}

Fact Session() {
    DWORD session = 0;
    return ProcessIdToSessionId(GetCurrentProcessId(), &session) != FALSE ? NumberFact(session)
                                                                          : UnknownByLastError();
}

// A remote session that uses the graphics card does not call itself remote; then it is one that is
// not the console's. Services, in session 0, are not remote.
Fact RemoteDesktop() {
    if (GetSystemMetrics(SM_REMOTESESSION) != 0) {
        return YesOrNo(true);
    }
    const Fact console =
        RegistryNumber(L"SYSTEM\\CurrentControlSet\\Control\\Terminal Server", L"GlassSessionId");
    if (console.Type == Kind::Unknown) {
        return console.Number == ERROR_FILE_NOT_FOUND ? YesOrNo(false) : console;
    }
    const Fact session = Session();
    return session.Type == Kind::Unknown
               ? session
               : YesOrNo(session.Number != 0 && session.Number != console.Number);
}

Fact LanguageOfUserInterface() {
    wchar_t names[256] = L"";
    ULONG count = 0;
    ULONG size = std::size(names);
    return GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &count, names, &size) != FALSE
               ? TextFact(names) // the first one
               : UnknownByLastError();
}

Fact WorkArea() {
    RECT area = {};
    if (SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0) == FALSE) {
        return UnknownByLastError();
    }
    return {Kind::Area, L"", 0, area};
}

Fact HighContrast() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) != FALSE
               ? YesOrNo((contrast.dwFlags & HCF_HIGHCONTRASTON) != 0)
               : UnknownByLastError();
}

Fact ScreenReader() {
    BOOL isThere = FALSE;
    return SystemParametersInfoW(SPI_GETSCREENREADER, 0, &isThere, 0) != FALSE
               ? YesOrNo(isThere != FALSE)
               : UnknownByLastError();
}

// Systems without the value cannot do it.
Fact LongPaths() {
    Fact enabled =
        RegistryNumber(L"SYSTEM\\CurrentControlSet\\Control\\FileSystem", L"LongPathsEnabled");
    if (enabled.Type == Kind::Unknown && enabled.Number != ERROR_FILE_NOT_FOUND) {
        return enabled;
    }
    return YesOrNo(enabled.Type == Kind::Number && enabled.Number != 0);
}

Fact VersionOf(const wchar_t* library) {
    const FileVersion version = VersionOfSystemFile(library);
    return version.Error == ERROR_SUCCESS ? TextFact(version.Text.c_str()) : Unknown(version.Error);
}

struct FactRow {
    const wchar_t* Name;  // in JSON
    const wchar_t* Words; // for people
    Fact (*Find)();
};

constexpr FactRow Facts[] = {
    {L"windows", L"name", WindowsName},
    {L"displayVersion", L"version", DisplayVersion},
    {L"build", L"build", Build},
    {L"revision", L"update revision", [] { return RegistryNumber(SystemKey, L"UBR"); }},
    {L"installationType", L"kind", [] { return RegistryText(L"InstallationType"); }},
    {L"elevated", L"elevated", Elevated},
    {L"session", L"session", Session},
    {L"remoteDesktop", L"remote desktop", RemoteDesktop},
    {L"ansiCodePage", L"ANSI code page", [] { return NumberFact(GetACP()); }},
    {L"oemCodePage", L"OEM code page", [] { return NumberFact(GetOEMCP()); }},
    {L"uiLanguage", L"language of the user interface", LanguageOfUserInterface},
    {L"workArea", L"work area", WorkArea},
    {L"highContrast", L"high contrast", HighContrast},
    {L"screenReader", L"screen reader", ScreenReader},
    {L"longPaths", L"long paths", LongPaths},
    {L"mshtml", L"mshtml.dll", [] { return VersionOf(L"mshtml.dll"); }},
    {L"ieframe", L"ieframe.dll", [] { return VersionOf(L"ieframe.dll"); }},
};

void Write(JsonWriter& json, const RECT& area) {
    json.BeginObject();
    json.Key(L"left").Number(std::int64_t{area.left});
    json.Key(L"top").Number(std::int64_t{area.top});
    json.Key(L"width").Number(std::int64_t{area.right} - area.left);
    json.Key(L"height").Number(std::int64_t{area.bottom} - area.top);
    json.EndObject();
}

void Write(JsonWriter& json, const Fact& fact) {
    switch (fact.Type) {
    case Kind::Unknown:
        json.Null();
        break;
    case Kind::Text:
        json.Text(std::wstring_view(fact.Text));
        break;
    case Kind::Number:
        json.Number(fact.Number);
        break;
    case Kind::YesOrNo:
        json.Boolean(fact.Number != 0);
        break;
    case Kind::Area:
        Write(json, fact.Area);
        break;
    }
}

std::wstring InWords(const Fact& fact) {
    std::wstring number = std::to_wstring(fact.Number);
    switch (fact.Type) {
    case Kind::Text:
        return Printable(fact.Text.c_str());
    case Kind::Number:
        return number;
    case Kind::YesOrNo:
        return fact.Number != 0 ? L"yes" : L"no";
    case Kind::Area: {
        const RECT& area = fact.Area;
        return std::to_wstring(area.right - area.left) + L" x " +
               std::to_wstring(area.bottom - area.top) + L" at " + std::to_wstring(area.left) +
               L", " + std::to_wstring(area.top);
    }
    default:
        return fact.Number == ERROR_FILE_NOT_FOUND ? L"not there"
                                                   : L"unknown (error " + number + L")";
    }
}

} // namespace

std::wstring SystemName() {
    const Fact name = WindowsName();
    const Fact version = DisplayVersion();
    const Fact build = Build();
    const Fact revision = RegistryNumber(SystemKey, L"UBR");
    std::wstring system = name.Type == Kind::Text ? InWords(name) : L"unknown";
    if (!version.Text.empty()) {
        system += L", " + InWords(version);
    }
    if (build.Type == Kind::Number) {
        system += L", build " + InWords(build);
        if (revision.Type == Kind::Number) {
            system += L"." + InWords(revision);
        }
    }
    return system;
}

void WriteFacts(JsonWriter& json) {
    json.BeginObject();
    for (const FactRow& row : Facts) {
        json.Key(row.Name);
        Write(json, row.Find());
    }
    json.EndObject();
}

void WriteFacts(Utf8Output& output) {
    for (const FactRow& row : Facts) {
        output.Write(row.Words, L": ", InWords(row.Find()), L"\n");
    }
}
