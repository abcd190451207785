// What is said about a path that does not exist.
#include "diag/MissingPath.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/support/TestInstallation.h"

namespace {

struct MissingCase {
    const wchar_t* path;
    bool isFolder;
    const wchar_t* words;
};

TEST(MissingPath, IsTheFirstPartThatDoesNotExist) {
    const test::TestInstallation files;
    files.MakeFile(L"C:\\KorTest\\a\\file");
    files.MakeFolder(L"C:\\KorTest\\a\\b");
    const MissingCase cases[] = {
        {L"C:\\KorTest\\a\\file", false, L""},
        {L"C:\\KorTest\\a\\b", true, L""},
        {L"C:\\KorTest\\a\\x.exe", false, L"the file C:\\KorTest\\a\\x.exe does not exist"},
        {L"C:\\KorTest\\a\\x", true, L"the folder C:\\KorTest\\a\\x does not exist"},
        {L"C:\\KorTest\\a\\x\\", false, L"the file C:\\KorTest\\a\\x does not exist"},
        {L"C:\\KorTest\\x\\y\\z.exe", false, L"the folder C:\\KorTest\\x does not exist"},
        {L"C:\\KorTest/a\\/x//y", false, L"the folder C:\\KorTest/a\\/x does not exist"},
        {L"C:\\KorTest\\a\\file\\x", false, L"this is a file, not a folder: C:\\KorTest\\a\\file"},
        {L"Q:\\a\\b", false, L"the drive Q:\\ does not exist"},
        {L"Q:", true, L"the drive Q: does not exist"},
        {L"\\NoSuchFolder\\x", false, L"the folder \\NoSuchFolder does not exist"},
        {L"NoSuchFolder/x", false, L"the folder NoSuchFolder does not exist"},
        {L"NoSuchFile", false, L"the file NoSuchFile does not exist"},
    };
    for (const MissingCase& c : cases) {
        EXPECT_STREQ(WhatIsMissingOf(c.path, c.isFolder).Text(), c.words);
    }
}

TEST(MissingPath, TakesAServersShareAsAWhole) {
    const CKORString words = WhatIsMissingOf(L"\\\\no-such-server\\share\\a\\b", false);
    EXPECT_STREQ(words.Text(), L"the drive \\\\no-such-server\\share\\ does not exist");
}

TEST(MissingPath, SaysSoWhenThePathIsTooLong) {
    const test::TestInstallation files;
    files.MakeFolder(L"C:\\KorTest\\a");
    const std::wstring path = L"C:\\KorTest\\a\\" + std::wstring(300, L'x');
    EXPECT_EQ(std::wstring(WhatIsMissingOf(path.c_str(), false).Text()),
              L"the path is too long: 313 characters up to here: " + path);
}

} // namespace
