// The questions about a path or a text.
#include "env/PathTests.h"

#include <gtest/gtest.h>

#include "tests/env/TempFolder.h"
#include "tests/support/ImportHook.h"

namespace {

TEST(PathTests, TellDirectoriesFromFiles) {
    const test::TempFolder folder;
    const std::wstring directory = folder.MakeFolder(L"directory");
    const std::wstring file = folder.MakeFile(L"file.txt");
    const std::wstring missing = folder.PathOf(L"missing");
    struct {
        std::wstring path;
        bool isDirectory;
        bool isFile;
    } const cases[] = {
        {directory, true, false},
        {directory + L"\\", true, false},
        {file, false, true},
        {missing, false, false},
        {missing + L"\\file.txt", false, false},
        {file + L"\\below", false, false},
        {L"C:\\", true, false},
        {L".", true, false},
        {L"<>|?*", false, false},
        {std::wstring(40000, L'x'), false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsExistingDirectory(c.path.c_str()), c.isDirectory) << c.path.substr(0, 300);
        EXPECT_EQ(IsExistingFile(c.path.c_str()), c.isFile) << c.path.substr(0, 300);
    }
}

TEST(PathTests, AttributesOtherThanDirectoryDoNotMatter) {
    const test::TempFolder folder;
    const std::wstring file =
        folder.MakeFile(L"file", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(IsExistingFile(file.c_str()));
    EXPECT_FALSE(IsExistingDirectory(file.c_str()));
}

TEST(PathTests, NullAndEmptyAreFalseWithoutTouchingTheFileSystem) {
    int calls = 0;
    HOOK_IMPORT(attributes, GetFileAttributesW, [&](LPCWSTR) -> DWORD {
        ++calls;
        return FILE_ATTRIBUTE_DIRECTORY;
    });
    for (const wchar_t* const path : {static_cast<const wchar_t*>(nullptr), L""}) {
        EXPECT_FALSE(IsExistingDirectory(path));
        EXPECT_FALSE(IsExistingFile(path));
    }
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(IsExistingDirectory(L"x"));
    EXPECT_EQ(calls, 1);
}

TEST(IsUrl, KnowsFourPrefixesInLowerCase) {
    struct {
        const wchar_t* text;
        bool isUrl;
    } const cases[] = {
        {L"ftp://host", true},
        {L"ftps://host", true},
        {L"http://host", true},
        {L"https://host/page?query#part", true},
        {L"ftp://", true},
        {L"ftps://", true},
        {L"http://", true},
        {L"https://", true},
        {L"https:// anything at all", true},
        {nullptr, false},
        {L"", false},
        {L"h", false},
        {L"http", false},
        {L"http:", false},
        {L"http:/", false},
        {L"https:/", false},
        {L"ftps:/x", false},
        {L"http:\\\\host", false},
        {L" http://host", false},
        {L"FTP://host", false},
        {L"FTPS://host", false},
        {L"HTTP://host", false},
        {L"HTTPS://host", false},
        {L"Https://host", false},
        {L"httpS://host", false},
        {L"file://host", false},
        {L"file:///C:/x", false},
        {L"mailto:someone", false},
        {L"sftp://host", false},
        {L"C:\\http://host", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsUrl(c.text), c.isUrl) << (c.text != nullptr ? c.text : L"(null)");
    }
}

} // namespace
