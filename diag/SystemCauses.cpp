// Looks for what a click or the page needs of this system.
#include "diag/SystemCauses.h"

#include <windows.h>

#include <exdisp.h>
#include <objbase.h>
#include <shlwapi.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "env/PathTests.h"
#include "res/resource.h"

namespace {

constexpr GUID HtmlDocument = {
    0x25336920, 0x03F9, 0x11CF, {0x8F, 0xD0, 0x00, 0xAA, 0x00, 0x68, 0x6F, 0x13}};
constexpr wchar_t LauncherName[] = L"korcontrolcenter.exe";
// Values of ASSOCSTR that not all headers have: an association by a class, and that of an app.
constexpr auto AssocDelegateExecute = static_cast<ASSOCSTR>(18);
constexpr auto AssocAppId = static_cast<ASSOCSTR>(21);

// Whether the file's mark says that it came from the internet or from an untrusted place.
bool HasMarkOfTheWeb(const CKORString& file) {
    constexpr int FirstUntrustedZone = 3;
    const HANDLE mark = CreateFileW((file + L":Zone.Identifier").Text(), GENERIC_READ,
                                    FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (mark == INVALID_HANDLE_VALUE) {
        return false;
    }
    char text[512] = "";
    DWORD count = 0;
    const bool isRead = ReadFile(mark, text, sizeof text - 1, &count, nullptr) != FALSE;
    CloseHandle(mark);
    const char* const zone = isRead ? std::strstr(text, "ZoneId=") : nullptr;
    return zone != nullptr && std::atoi(zone + std::strlen("ZoneId=")) >= FirstUntrustedZone;
}

bool IsOnNetwork(const CKORString& file) {
    if (PathIsUNCW(file.Text()) != FALSE) {
        return true;
    }
    const wchar_t root[] = {file.Length() > 0 ? file[0] : L'\0', L':', L'\\', L'\0'};
    return file.Length() > 1 && file[1] == L':' && GetDriveTypeW(root) == DRIVE_REMOTE;
}

bool HasAssociation(const CKORString& extension, ASSOCSTR kind) {
    wchar_t text[MAX_PATH] = L"";
    DWORD count = MAX_PATH;
    const HRESULT result =
        AssocQueryStringW(ASSOCF_INIT_IGNOREUNKNOWN, kind, extension.Text(), nullptr, text, &count);
    // A text that is too long for the room is one, too.
    return result == S_OK || result == E_POINTER;
}

// As a text of PowerShell's. A quote in it, of which PowerShell takes curved ones, too, is doubled.
std::wstring InPowerShellQuotes(const CKORString& text) {
    constexpr std::wstring_view Quotes = L"'\x2018\x2019\x201A\x201B";
    std::wstring quoted = L"'";
    for (const wchar_t c : std::wstring_view(text.Text())) {
        quoted.append(Quotes.find(c) != Quotes.npos ? 2 : 1, c);
    }
    return quoted + L"'";
}

HRESULT Create(REFCLSID type) {
    IUnknown* object = nullptr;
    const HRESULT result = CoCreateInstance(type, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                            reinterpret_cast<void**>(&object));
    if (SUCCEEDED(result)) {
        object->Release();
    }
    return result;
}

bool HoldsPage(const wchar_t* program) {
    const HMODULE module = LoadLibraryExW(program, nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (module == nullptr) {
        return false;
    }
    const bool holdsPage = FindResourceW(module, MAKEINTRESOURCEW(IDR_HTML_KORCONTROLCENTER_DIALOG),
                                         RT_HTML) != nullptr &&
                           FindResourceW(module, L"CONTROLCENTER.JPG", L"IMAGE") != nullptr;
    FreeLibrary(module);
    return holdsPage;
}

} // namespace

std::optional<Cause> CauseOfBlockedHelp(const CKORString& file) {
    if (IsOnNetwork(file)) {
        return Cause{
            Code::HelpFileBlocked,
            L"the help file lies on a network drive, so the viewer shows no pages of it: " + file,
            L"Install the library, or copy the file, to a drive of this computer.",
            {}};
    }
    if (HasMarkOfTheWeb(file)) {
        return Cause{Code::HelpFileBlocked,
                     L"the help file is marked as coming from the internet, so the viewer shows no "
                     L"pages of it: " +
                         file,
                     L"Remove the mark:",
                     {L"powershell", L"Unblock-File", L"-LiteralPath", InPowerShellQuotes(file)}};
    }
    return std::nullopt;
}

std::optional<Cause> CauseOfNoHelpViewer() {
    wchar_t path[MAX_PATH] = L"";
    if (SearchPathW(nullptr, L"hh.exe", nullptr, MAX_PATH, path, nullptr) != 0) {
        return std::nullopt;
    }
    return Cause{Code::HelpViewerMissing,
                 L"hh.exe, which shows help topics, is not in the Windows folder",
                 L"Let Windows put it back, as an administrator:",
                 {L"sfc", L"/scannow"}};
}

std::optional<Cause> CauseOfNoProgram(const CKORString& extension) {
    for (const ASSOCSTR kind : {ASSOCSTR_COMMAND, AssocDelegateExecute, AssocAppId}) {
        if (HasAssociation(extension, kind)) {
            return std::nullopt;
        }
    }
    return Cause{Code::NoProgramForType,
                 L"no program is registered for documents of type " + extension,
                 L"Install a program that opens them, or choose one in the settings of Windows "
                 L"under Default apps: " +
                     extension,
                 {}};
}

std::optional<Cause> CauseOfNoEngine() {
    const HRESULT started = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    HRESULT result = Create(CLSID_WebBrowser);
    if (SUCCEEDED(result)) {
        result = Create(HtmlDocument);
    }
    if (SUCCEEDED(started)) {
        CoUninitialize();
    }
    if (SUCCEEDED(result)) {
        return std::nullopt;
    }
    return Cause{Code::NoHtmlEngine,
                 CKORString::Format(L"the HTML engine cannot be created (error 0x%08lX), so the "
                                    L"window stays empty",
                                    static_cast<unsigned long>(result)),
                 L"Let Windows put its HTML engine back, as an administrator:",
                 {L"sfc", L"/scannow"}};
}

std::optional<Cause> CauseOfNoPage() {
    wchar_t path[MAX_PATH] = L"";
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH || PathRemoveFileSpecW(path) == FALSE ||
        PathAppendW(path, LauncherName) == FALSE || !kor::PathExists(path) || HoldsPage(path)) {
        return std::nullopt;
    }
    return Cause{Code::PageNotLoadable,
                 CKORString(L"the page cannot be loaded from the program, so the window stays "
                            L"empty: ") +
                     path,
                 L"Copy the program there anew.",
                 {}};
}
