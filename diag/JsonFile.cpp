// Reads a file whole and takes its bytes for UTF-8.
#include "diag/JsonFile.h"

#include <windows.h>

#include <string_view>

#include "diag/JsonReader.h"

namespace {

constexpr DWORD PieceBytes = 64 * 1024;

bool Fail(std::wstring& error, const wchar_t* why, DWORD code) {
    error = why + (L" (error " + std::to_wstring(code) + L")");
    return false;
}

// The bytes may come from anything that can be read, so their number is not asked for.
bool ReadAll(HANDLE file, std::string& bytes, std::wstring& error) {
    DWORD count = 0;
    do {
        const std::size_t before = bytes.size();
        bytes.resize(before + PieceBytes);
        if (ReadFile(file, &bytes[before], PieceBytes, &count, nullptr) == FALSE) {
            return Fail(error, L"cannot be read", GetLastError());
        }
        bytes.resize(before + count);
        if (bytes.size() > MostJsonFileBytes) {
            error = L"has more than 64 MB";
            return false;
        }
    } while (count > 0);
    return true;
}

bool ReadBytes(const std::wstring& path, std::string& bytes, std::wstring& error) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return Fail(error, L"cannot be opened", GetLastError());
    }
    const bool isRead = ReadAll(file, bytes, error);
    CloseHandle(file);
    return isRead;
}

bool BeginsWith(std::string_view bytes, std::string_view beginning) {
    return bytes.substr(0, beginning.size()) == beginning;
}

bool Decode(std::string_view bytes, std::wstring& text, std::wstring& error) {
    if (BeginsWith(bytes, "\xFF\xFE") || BeginsWith(bytes, "\xFE\xFF")) {
        error =
            L"is UTF-16, as PowerShell writes what it redirects; kordiag report --json --output FILE "
            L"writes UTF-8";
        return false;
    }
    constexpr std::string_view Mark = "\xEF\xBB\xBF";
    bytes.remove_prefix(BeginsWith(bytes, Mark) ? Mark.size() : 0);
    const int size = static_cast<int>(bytes.size());
    text.resize(bytes.size()); // it has no more characters than bytes
    const int length = size > 0 ? MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(),
                                                      size, text.data(), size)
                                : 0;
    if (length == 0 && size > 0) {
        error = L"is not UTF-8";
        return false;
    }
    text.resize(static_cast<std::size_t>(length));
    return true;
}

} // namespace

bool ReadJsonFile(const std::wstring& path, JsonValue& document, std::wstring& error) {
    std::string bytes;
    std::wstring text;
    if (!ReadBytes(path, bytes, error) || !Decode(bytes, text, error)) {
        return false;
    }
    if (!ReadJson(text, document, error)) {
        error = L"is no JSON document: " + error;
        return false;
    }
    return true;
}
