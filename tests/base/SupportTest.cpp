// The test support itself: without these, a hook that hooks nothing would let other tests pass.
#include <gtest/gtest.h>
#include <windows.h>

#include <memory>

#include "tests/support/GuardedMemory.h"
#include "tests/support/ImportHook.h"

namespace {

TEST(ImportHook, ReplacesNestsAndRestores) {
    const DWORD own = GetCurrentProcessId();
    {
        HOOK_IMPORT(outer, GetCurrentProcessId, [] { return DWORD{7}; });
        EXPECT_EQ(GetCurrentProcessId(), 7U);
        EXPECT_EQ(outer.Original(), own);
        {
            HOOK_IMPORT(inner, GetCurrentProcessId, [&] { return inner.Original() + 1; });
            EXPECT_EQ(GetCurrentProcessId(), 8U);
        }
        EXPECT_EQ(GetCurrentProcessId(), 7U);
    }
    EXPECT_EQ(GetCurrentProcessId(), own);
    EXPECT_FALSE(test::HasImport("NoSuchFunction"));
}

TEST(GuardedMemory, CountsLiveBlocks) {
    const std::int64_t before = test::LiveBlocks();
    {
        const auto block = std::make_unique<int[]>(10);
        EXPECT_EQ(test::LiveBlocks(), before + 1);
    }
    EXPECT_EQ(test::LiveBlocks(), before);
}

TEST(GuardedMemory, FailsTheNthAllocation) {
    const test::AllocationFailure failure(2);
    const std::unique_ptr<int> first(new (std::nothrow) int(1));
    EXPECT_NE(first, nullptr);
    EXPECT_FALSE(failure.Happened());
    const std::unique_ptr<int> second(new (std::nothrow) int(2));
    EXPECT_EQ(second, nullptr);
    EXPECT_TRUE(failure.Happened());
    const std::unique_ptr<int> third(new (std::nothrow) int(3));
    EXPECT_NE(third, nullptr);
}

#ifdef KOR_GUARDS
TEST(GuardedMemoryDeathTest, EndsTheProcessOnAnOverrunByOneCharacter) {
    EXPECT_EXIT(
        {
            wchar_t* volatile block = new wchar_t[5];
            block[5] = L'x';
            delete[] block;
        },
        testing::ExitedWithCode(static_cast<int>(EXCEPTION_ACCESS_VIOLATION)), "");
}
#endif

} // namespace
