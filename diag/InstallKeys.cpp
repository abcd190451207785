// Lists the keys of the launcher's questions, each once.
#include "diag/InstallKeys.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <string>
#include <vector>

#include "diag/QueryAnswers.h"

namespace {

struct LastWrite {
    LSTATUS Error;
    std::wstring Time; // when there is no error
};

LSTATUS ReadTime(const CKORString& keyName, FILETIME& time) {
    // All of them are keys of the machine.
    const wchar_t* const subKey = std::wcschr(keyName.Text(), L'\\') + 1;
    HKEY key = nullptr;
    LSTATUS result = RegOpenKeyExW(HKEY_LOCAL_MACHINE, subKey, 0, KEY_QUERY_VALUE, &key);
    if (result == ERROR_SUCCESS) {
        result = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                  nullptr, nullptr, nullptr, nullptr, &time);
        RegCloseKey(key);
    }
    return result;
}

LastWrite LastWriteOf(const CKORString& keyName) {
    FILETIME time = {};
    SYSTEMTIME utc = {};
    const LSTATUS error = ReadTime(keyName, time);
    if (error == ERROR_SUCCESS && FileTimeToSystemTime(&time, &utc) == FALSE) {
        return {ERROR_INVALID_DATA, L""};
    }
    return {error, error == ERROR_SUCCESS ? InIso8601(utc) : L""};
}

// Calls the function with the name of each key, once, and its time.
template <typename Function>
void ForEachKey(Function function) {
    std::vector<std::wstring> done;
    for (const AskedQuery& query : AskedQueries) {
        const CKORString name = KeyName(query);
        if (std::find(done.begin(), done.end(), name.Text()) == done.end()) {
            done.emplace_back(name.Text());
            function(name, LastWriteOf(name));
        }
    }
}

} // namespace

std::wstring InIso8601(const SYSTEMTIME& utc) {
    return CKORString::Format(L"%04u-%02u-%02uT%02u:%02u:%02uZ", utc.wYear, utc.wMonth, utc.wDay,
                              utc.wHour, utc.wMinute, utc.wSecond)
        .Text();
}

void WriteInstallKeys(JsonWriter& json) {
    json.BeginArray();
    ForEachKey([&](const CKORString& name, const LastWrite& lastWrite) {
        json.BeginObject();
        json.Key(L"key").Text(name);
        json.Key(L"exists").Boolean(lastWrite.Error != ERROR_FILE_NOT_FOUND);
        json.Key(L"written");
        if (lastWrite.Error == ERROR_SUCCESS) {
            json.Text(std::wstring_view(lastWrite.Time));
        } else {
            json.Null();
        }
        json.EndObject();
    });
    json.EndArray();
}

void WriteInstallKeys(Utf8Output& output) {
    ForEachKey([&](const CKORString& name, const LastWrite& lastWrite) {
        output.Write(name, L"\n  ");
        if (lastWrite.Error == ERROR_SUCCESS) {
            output.Write(L"last written ", lastWrite.Time, L"\n");
        } else if (lastWrite.Error == ERROR_FILE_NOT_FOUND) {
            output.Write(L"does not exist\n");
        } else {
            output.Write(L"last written: unknown (error ", std::int64_t{lastWrite.Error}, L")\n");
        }
    });
}
