// What each query does with its key object, beyond what the system calls show: the linker leads the
// operations named in CMakeLists.txt through the functions here.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include "page/InstallationQueries.h"
#include "registry/CRegistryKey.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TestInstallation.h"

namespace {

using Steps = std::vector<std::string>;

Steps* g_steps = nullptr; // null: nothing is recorded

void Record(const std::string& step) {
    if (g_steps != nullptr) {
        g_steps->push_back(step);
    }
}

} // namespace

void RealConstruct(CRegistryKey* key) asm("__real__ZN12CRegistryKeyC1Ev");
void RealConstructWithPath(CRegistryKey* key, const CKORString& path,
                           bool create) asm("__real__ZN12CRegistryKeyC1ERK10CKORStringb");
void RealDestroy(CRegistryKey* key) asm("__real__ZN12CRegistryKeyD1Ev");
bool RealOpen(CRegistryKey* key, const CKORString& path,
              bool create) asm("__real__ZN12CRegistryKey4OpenERK10CKORStringb");
bool RealCloseIfOpen(CRegistryKey* key) asm("__real__ZN12CRegistryKey11CloseIfOpenEv");

void Construct(CRegistryKey* key) asm("__wrap__ZN12CRegistryKeyC1Ev");
void Construct(CRegistryKey* key) {
    Record("construct");
    RealConstruct(key);
}

void ConstructWithPath(CRegistryKey* key, const CKORString& path,
                       bool create) asm("__wrap__ZN12CRegistryKeyC1ERK10CKORStringb");
void ConstructWithPath(CRegistryKey* key, const CKORString& path, bool create) {
    Record("construct at " + test::Narrow(path.Text()) + (create ? " creating" : ""));
    // How the constructor opens the key is its own affair.
    Steps* const steps = std::exchange(g_steps, nullptr);
    RealConstructWithPath(key, path, create);
    g_steps = steps;
}

void Destroy(CRegistryKey* key) asm("__wrap__ZN12CRegistryKeyD1Ev");
void Destroy(CRegistryKey* key) {
    Record(key->IsOpen() ? "destroy an open key" : "destroy");
    RealDestroy(key);
}

bool Open(CRegistryKey* key, const CKORString& path,
          bool create) asm("__wrap__ZN12CRegistryKey4OpenERK10CKORStringb");
bool Open(CRegistryKey* key, const CKORString& path, bool create) {
    Record("open " + test::Narrow(path.Text()) + (create ? " creating" : ""));
    return RealOpen(key, path, create);
}

bool CloseIfOpen(CRegistryKey* key) asm("__wrap__ZN12CRegistryKey11CloseIfOpenEv");
bool CloseIfOpen(CRegistryKey* key) {
    // Each opening closes what was open before it.
    if (key->IsOpen()) {
        Record("close");
    }
    return RealCloseIfOpen(key);
}

namespace {

template <typename Query>
Steps StepsOf(const Query& query) {
    Steps steps;
    g_steps = &steps;
    query();
    g_steps = nullptr;
    return steps;
}

constexpr char InstallPath[] = "M_KOR_HKEY_LOCAL_MACHINE_RUNTIME\\install";
constexpr char LibraryPath[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Imaging Library";
constexpr char FlowForgePath[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Install";

// A key that the constructor points at its path.
Steps ByPath(const std::string& path) {
    return {"construct at " + path, "close", "destroy"};
}

Steps ByOpening(const std::string& path) {
    return {"construct", "open " + path, "close", "destroy"};
}

void ExpectTheSteps() {
    const std::string install(InstallPath);
    EXPECT_EQ(StepsOf([] { QueryInstallFolder(); }), ByPath(install));
    EXPECT_EQ(StepsOf([] { QueryExamplesRoot(L"KOR"); }), ByPath(install + "\\KOR"));
    EXPECT_EQ(StepsOf([] { QueryFlowForgeInstallFolder(); }), ByOpening(FlowForgePath));
    EXPECT_EQ(StepsOf([] { IsDevelopmentInstallation(); }), ByOpening(LibraryPath));
    EXPECT_EQ(StepsOf([] { IsValidInstallation(); }), ByOpening(LibraryPath));
}

TEST(QuerySteps, EachPointsItsKeyAtItsPathInItsWayAndClosesIt) {
    const test::TestInstallation installed;
    installed.MakeDevelopment(L"C:\\Lib\\");
    installed.SetText(test::InstallKey + L"\\KOR", L"ExamplesRootPath", L"C:\\Ex");
    installed.SetText(test::FlowForgeKey, L"InstallationPath", L"C:\\FF");
    ExpectTheSteps();
}

TEST(QuerySteps, WithoutItsValueTheKeyIsClosedToo) {
    const test::TestInstallation installed;
    installed.MakeKey(test::InstallKey + L"\\KOR");
    installed.MakeKey(test::FlowForgeKey);
    ExpectTheSteps();
}

} // namespace
