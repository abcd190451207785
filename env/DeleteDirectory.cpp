// Walks through a folder and deletes what is in it.
#include "env/DeleteDirectory.h"

#include <windows.h>

#include "env/FileFinder.h"
#include "env/JoinTexts.h"

namespace {

constexpr int PathSize = 260;
constexpr int ClearAttributesMode = 1;

// Goes to the next entry that is not a dot entry.
bool Advance(FileFinder& finder) {
    while (finder.FindNext()) {
        if (!finder.IsDots()) {
            return true;
        }
    }
    return false;
}

bool DeleteEntry(const FileFinder& finder, const wchar_t* path, bool clearAttributes) {
    if (finder.IsDirectoryLink()) {
        return RemoveDirectoryW(path) != FALSE;
    }
    if (finder.IsDirectory()) {
        // There, read-only files stay, whatever the mode: docs/quirks.md.
        const bool isDeleted = DeleteDirectory(path);
        if (isDeleted) {
            // Usually it is gone already: docs/quirks.md.
            RemoveDirectoryW(path);
        }
        return isDeleted;
    }
    if (clearAttributes) {
        SetFileAttributesW(path, FILE_ATTRIBUTE_NORMAL);
    }
    return DeleteFileW(path) != FALSE;
}

// Each level of the recursion makes the path longer by two characters or more.
bool DeleteTree(const wchar_t* path, bool clearAttributes) {
    if (path == nullptr || *path == L'\0') {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return false;
    }
    wchar_t pattern[PathSize];
    wchar_t prefix[PathSize];
    FileFinder finder;
    // The first entry is passed over without a look: docs/quirks.md.
    if (!JoinTexts(prefix, path, L"\\") || !JoinTexts(pattern, path, L"\\*") ||
        !finder.FindFirst(pattern)) {
        return false;
    }
    while (Advance(finder)) {
        wchar_t entry[PathSize];
        if (!JoinTexts(entry, prefix, finder.Name()) ||
            !DeleteEntry(finder, entry, clearAttributes)) {
            return false;
        }
    }
    if (GetLastError() != ERROR_NO_MORE_FILES) {
        return false;
    }
    // A directory that is still being searched cannot be removed everywhere.
    finder.Close();
    return RemoveDirectoryW(path) != FALSE;
}

} // namespace

bool DeleteDirectory(const wchar_t* path) {
    return DeleteTree(path, false);
}

bool DeleteDirectoryForced(const wchar_t* path, int mode) {
    return DeleteTree(path, mode == ClearAttributesMode);
}
