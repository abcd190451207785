// kordiag report into a file, and without the names of the user and the computer.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "diag/NewFile.h"
#include "diag/Redaction.h"
#include "diag/Utf8Output.h"
#include "tests/diag/Captured.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestInstallation.h"

namespace {

struct RedactionCase {
    const wchar_t* text;
    const wchar_t* redacted;
};

TEST(Redaction, ReplacesNamesInAllSpellings) {
    Redaction redaction;
    redaction.Add(L"C:\\Users\\Jörg Ä\\", L"%USERPROFILE%");
    redaction.Add(L"C:\\Users\\JRGA~1", L"%USERPROFILE%");
    redaction.Add(L"WORKSTATION", L"<computer>");
    redaction.Add(L"Jörg Ä", L"<user>");
    redaction.Add(L"ab", L"<user>");
    redaction.Add(L"", L"<domain>");
    const RedactionCase cases[] = {
        {L"C:\\Users\\Jörg Ä\\x y", L"%USERPROFILE%\\x y"},
        {L"c:/users//JÖRG ä/x", L"%USERPROFILE%/x"},
        {L"C:\\\\Users\\\\Jörg Ä\\\\x", L"%USERPROFILE%\\\\x"},
        {L"C:\\Users\\JRGA~1\\Temp", L"%USERPROFILE%\\Temp"},
        {L"D:\\jörg ä and C:\\Users", L"D:\\<user> and C:\\Users"},
        {L"myworkstation2", L"my<computer>2"},
        {L"ab tab ab! about", L"<user> tab <user>! about"},
        {L"Übung 視覚  \u00a0", L"Übung 視覚  \u00a0"},
        {L"C:\\Users\\Jörg ", L"C:\\Users\\Jörg "},
        {L"", L""},
    };
    for (const RedactionCase& c : cases) {
        EXPECT_EQ(redaction.Apply(c.text), c.redacted);
    }
}

TEST(Redaction, OfNobodyChangesNothing) {
    EXPECT_EQ(Redaction().Apply(L"C:\\Users\\x"), L"C:\\Users\\x");
}

class NewFiles : public testing::Test {
protected:
    NewFiles() { m_files.MakeFolder(L"C:\\KorTest\\out"); }

    static std::string Write(const std::string& words) {
        std::ofstream("C:\\KorTest\\out\\f") << words;
        return words;
    }
    static std::string Read() {
        std::ifstream file("C:\\KorTest\\out\\f", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static std::ptrdiff_t Count() {
        const std::filesystem::directory_iterator files("C:\\KorTest\\out");
        return std::distance(begin(files), end(files));
    }
    static ExitCode Report(const std::vector<std::wstring>& options, std::string& errors) {
        std::vector<std::wstring> words = {L"report", L"--output", L"C:\\KorTest\\out\\f"};
        words.insert(words.end(), options.begin(), options.end());
        const test::Captured out;
        const test::Captured err;
        ExitCode code = ExitCode::Answered;
        {
            Utf8Output outStream(out.Handle());
            Utf8Output errStream(err.Handle());
            Streams streams = {outStream, errStream};
            code = RunCommandLine(words, streams);
        }
        EXPECT_EQ(out.Bytes(), "");
        errors = err.Bytes();
        return code;
    }

    test::TestInstallation m_files;
};

TEST_F(NewFiles, AReportIsUtf8AndReplacesNothingUnlessForced) {
    std::string errors;
    EXPECT_EQ(Report({L"--json"}, errors), ExitCode::Answered) << errors;
    const std::string document = Read();
    EXPECT_EQ(document.rfind("{\"schema\":1,\"version\":", 0), 0U);
    EXPECT_EQ(document.substr(document.size() - 2), "}\n");
    EXPECT_EQ(Count(), 1);

    Write("mine");
    EXPECT_EQ(Report({}, errors), ExitCode::No);
    EXPECT_EQ(errors, "kordiag report: C:\\KorTest\\out\\f exists; --force replaces it\n");
    EXPECT_EQ(Read(), "mine");
    EXPECT_EQ(Report({L"--force"}, errors), ExitCode::Answered);
    EXPECT_EQ(Read().rfind("kordiag ", 0), 0U);
    EXPECT_EQ(Count(), 1);
}

TEST_F(NewFiles, AFileThatAppearsMeanwhileIsNotReplaced) {
    NewFile file(L"C:\\KorTest\\out\\f");
    ASSERT_NE(file.Handle(), INVALID_HANDLE_VALUE);
    Write("mine");
    EXPECT_FALSE(file.Finish(false));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(Read(), "mine");
    EXPECT_EQ(Count(), 1);
}

// The disk is full at the second piece, and when the system writes what it held back.
TEST_F(NewFiles, AFullDiskLeavesNoFile) {
    std::string errors;
    {
        int pieces = 0;
        HOOK_IMPORT(write, WriteFile,
                    [&](HANDLE file, LPCVOID data, DWORD size, LPDWORD written,
                        LPOVERLAPPED overlapped) -> BOOL {
                        if (++pieces == 2) {
                            SetLastError(ERROR_DISK_FULL);
                            return FALSE;
                        }
                        return write.Original(file, data, size, written, overlapped);
                    });
        Write("");
        EXPECT_EQ(Report({L"--force"}, errors), ExitCode::No);
        EXPECT_EQ(pieces, 3) << "and the message";
    }
    EXPECT_EQ(errors, "kordiag report: C:\\KorTest\\out\\f cannot be written (error 112)\n");
    EXPECT_EQ(Read(), "") << "what was there stays";
    EXPECT_EQ(Count(), 1);
    {
        HOOK_IMPORT(flush, FlushFileBuffers, [](HANDLE) -> BOOL {
            SetLastError(ERROR_DISK_FULL);
            return FALSE;
        });
        EXPECT_EQ(Report({L"--force"}, errors), ExitCode::No);
    }
    EXPECT_EQ(errors, "kordiag report: C:\\KorTest\\out\\f cannot be written (error 112)\n");
    EXPECT_EQ(Count(), 1);
}

TEST_F(NewFiles, AFolderThatDoesNotExistIsToldOf) {
    std::filesystem::remove_all("C:\\KorTest\\out");
    std::string errors;
    EXPECT_EQ(Report({}, errors), ExitCode::No);
    EXPECT_EQ(errors, "kordiag report: C:\\KorTest\\out\\f cannot be created (error 3)\n");
}

} // namespace
