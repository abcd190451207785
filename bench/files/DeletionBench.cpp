// What the deletion of a directory costs for each entry, beside the system calls that it cannot do
// without. Run it on one processor, as the registry's; it works in a folder of its own below the
// temporary one.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "env/DeleteDirectory.h"

namespace {

constexpr int FilesInEachFolder = 10;

struct TreeSize {
    int folders;
    int rounds;
};
constexpr TreeSize TreeSizes[] = {{20, 41}, {200, 11}, {2000, 7}};

std::wstring WorkFolder() {
    wchar_t folder[MAX_PATH] = L"";
    GetTempPathW(MAX_PATH, folder);
    return folder + (L"korbench" + std::to_wstring(GetCurrentProcessId()));
}

void MakeTree(const std::wstring& top, int folders) {
    CreateDirectoryW(top.c_str(), nullptr);
    for (int folder = 0; folder < folders; ++folder) {
        const std::wstring path = top + L"\\folder" + std::to_wstring(folder);
        CreateDirectoryW(path.c_str(), nullptr);
        for (int file = 0; file < FilesInEachFolder; ++file) {
            const std::wstring name = path + L"\\file" + std::to_wstring(file) + L".txt";
            CloseHandle(
                CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        }
    }
}

// The same system calls in the same order, and nothing else.
bool DeleteBare(const std::wstring& path) {
    WIN32_FIND_DATAW data;
    const HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &data);
    while (FindNextFileW(search, &data)) {
        if (std::wcscmp(data.cFileName, L"..") == 0) {
            continue;
        }
        const std::wstring entry = path + L"\\" + data.cFileName;
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            DeleteBare(entry);
            RemoveDirectoryW(entry.c_str());
        } else {
            DeleteFileW(entry.c_str());
        }
    }
    FindClose(search);
    return RemoveDirectoryW(path.c_str()) != FALSE;
}

template <typename Delete>
double Microseconds(const std::wstring& top, int folders, const Delete& deleteTree) {
    MakeTree(top, folders);
    LARGE_INTEGER frequency;
    LARGE_INTEGER start;
    LARGE_INTEGER end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    const bool isDeleted = deleteTree(top);
    QueryPerformanceCounter(&end);
    if (!isDeleted) {
        std::fprintf(stderr, "The tree was not deleted: error %lu.\n", GetLastError());
        ExitProcess(1);
    }
    return static_cast<double>(end.QuadPart - start.QuadPart) * 1e6 /
           static_cast<double>(frequency.QuadPart);
}

// The round that other work on the machine disturbed least.
double Best(const std::vector<double>& values) {
    return *std::min_element(values.begin(), values.end());
}

} // namespace

int main() {
    const std::wstring top = WorkFolder();
    std::printf("  files folders   ours us/entry   bare us/entry   ratio (goal 1.10)\n");
    for (const TreeSize& size : TreeSizes) {
        std::vector<double> ours;
        std::vector<double> bare;
        // In turns, and each one first in every second round, so that other work on the machine and
        // what the file system still has to write meet both.
        const auto measureOurs = [&] {
            ours.push_back(Microseconds(top, size.folders, [](const std::wstring& path) {
                return DeleteDirectory(path.c_str());
            }));
        };
        for (int round = 0; round < size.rounds; ++round) {
            if (round % 2 == 0) {
                measureOurs();
            }
            bare.push_back(Microseconds(top, size.folders, DeleteBare));
            if (round % 2 != 0) {
                measureOurs();
            }
        }
        const int files = size.folders * FilesInEachFolder;
        const int entries = files + size.folders;
        const double oursEach = Best(ours) / entries;
        const double bareEach = Best(bare) / entries;
        std::printf("%7d %7d %15.2f %15.2f %7.2f\n", files, size.folders, oursEach, bareEach,
                    oursEach / bareEach);
        std::fflush(stdout);
    }
    return 0;
}
