// Reads the version resource of a system file.
#include "diag/FileVersion.h"

#include <vector>

#include "base/SystemLibraries.h"

namespace {

FileVersion Failure(DWORD error) {
    return {L"", error};
}

template <typename Function>
Function* FunctionOf(HMODULE library, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

FileVersion InText(const VS_FIXEDFILEINFO& info) {
    const DWORD halves[] = {info.dwFileVersionMS, info.dwFileVersionLS};
    std::wstring text;
    for (const DWORD half : halves) {
        text += (text.empty() ? L"" : L".") + std::to_wstring(HIWORD(half)) + L"." +
                std::to_wstring(LOWORD(half));
    }
    return {text, ERROR_SUCCESS};
}

} // namespace

// version.dll is none of the libraries that Windows takes from its own folder alone when a program
// is linked with them, so it is loaded from there.
FileVersion VersionOfSystemFile(const wchar_t* name) {
    const HMODULE library = LoadSystemLibrary(L"version.dll");
    if (library == nullptr) {
        return Failure(GetLastError());
    }
    auto* const sizeOf =
        FunctionOf<decltype(GetFileVersionInfoSizeW)>(library, "GetFileVersionInfoSizeW");
    auto* const read = FunctionOf<decltype(GetFileVersionInfoW)>(library, "GetFileVersionInfoW");
    auto* const find = FunctionOf<decltype(VerQueryValueW)>(library, "VerQueryValueW");
    if (sizeOf == nullptr || read == nullptr || find == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    wchar_t path[MAX_PATH];
    if (!FindSystemFile(name, path)) {
        return Failure(ERROR_PATH_NOT_FOUND);
    }
    const DWORD size = sizeOf(path, nullptr);
    std::vector<unsigned char> data(size);
    if (size == 0 || read(path, 0, size, data.data()) == FALSE) {
        return Failure(GetLastError());
    }
    void* info = nullptr;
    UINT infoSize = 0;
    if (find(data.data(), L"\\", &info, &infoSize) == FALSE ||
        infoSize < sizeof(VS_FIXEDFILEINFO)) {
        return Failure(ERROR_INVALID_DATA);
    }
    return InText(*static_cast<const VS_FIXEDFILEINFO*>(info));
}
