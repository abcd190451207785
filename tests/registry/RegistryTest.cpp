// Empties the library's keys around each test.
#include "tests/registry/RegistryTest.h"

#include <algorithm>

namespace test {

namespace {

void DeleteLibraryKeys() {
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        DeleteKey(root, Vantrel);
        DeleteKey(root, L"Software\\Wow6432Node\\Vantrel");
        DeleteKey(root, TestSubKey);
    }
}

} // namespace

std::vector<std::wstring> Sorted(const CTable1D<CKORString>& names) {
    std::vector<std::wstring> sorted;
    for (const CKORString& name : names) {
        sorted.emplace_back(name.Text());
    }
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

void RegistryTest::SetUp() {
    SCOPED_TRACE("starts the thread that GoogleTest keeps, before anything is hooked");
    DeleteLibraryKeys();
    CRegistryKey::SetRtxMode(false);
    CRegistryKey::ClearAllowWritesAnywhere();
}

void MachineKeyTest::SetUp() {
    RegistryTest::SetUp();
    MakeKey(HKEY_LOCAL_MACHINE, TestSubKey);
}

void WritableTest::SetUp() {
    RegistryTest::SetUp();
    CRegistryKey::SetAllowWritesAnywhere();
}

testing::AssertionResult IsReset(const CRegistryKey& key) {
    const CKORString name = key.GetFullName();
    if (!key.IsOpen() && name == L"") {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << (key.IsOpen() ? "open, at " : "closed, at ") << testing::PrintToString(name);
}

void RegistryTest::TearDown() {
    CRegistryKey::SetRtxMode(false);
    CRegistryKey::ClearAllowWritesAnywhere();
    DeleteLibraryKeys();
}

} // namespace test
