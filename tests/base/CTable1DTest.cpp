// The table: its sizes, its elements' lives, what happens without memory.
#include "base/CTable1D.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <thread>

#include "base/CKORString.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Printing.h"

namespace {

// Opens the growth fields to the tests.
struct Table : CTable1D<std::int64_t> {
    using CTable1D::GrowBy;
    using CTable1D::GrowthFactor;
    using CTable1D::InitialGrowBy;
};

TEST(CTable1D, ANewTableIsEmptyAndGrowsByOne) {
    const Table table;
    EXPECT_EQ(table.Data(), nullptr);
    EXPECT_EQ(table.Count(), 0);
    EXPECT_EQ(table.Capacity(), 0);
    EXPECT_EQ(table.GrowBy, 1);
    EXPECT_EQ(table.InitialGrowBy, 1);
    EXPECT_EQ(table.GrowthFactor, 1);
}

TEST(CTable1D, EachAppendGrowsTheCapacityByOne) {
    Table table;
    for (std::int64_t i = 0; i < 5; ++i) {
        table.Add(i * 10);
        EXPECT_EQ(table.Count(), i + 1);
        EXPECT_EQ(table.Capacity(), i + 1);
    }
    for (std::int64_t i = 0; i < 5; ++i) {
        EXPECT_EQ(table[i], i * 10);
    }
}

TEST(CTable1D, CapacityIsRoundedUpToTheGrowthStep) {
    Table table;
    table.GrowBy = 8;
    table.Add(1);
    EXPECT_EQ(table.Capacity(), 8);
    for (int i = 0; i < 8; ++i) {
        table.Add(2);
    }
    EXPECT_EQ(table.Count(), 9);
    EXPECT_EQ(table.Capacity(), 16);
    EXPECT_EQ(table.GrowBy, 8) << "a factor of 1 keeps the step";
}

TEST(CTable1D, AnAppendThatJustFitsDoesNotGrow) {
    Table table;
    table.SetSize(3, true);
    table.RemoveLast();
    table.GrowBy = 8;
    table.GrowthFactor = 2;
    const std::int64_t* const storage = table.Data();
    table.Add(7);
    EXPECT_EQ(table.Count(), 3);
    EXPECT_EQ(table.Capacity(), 3);
    EXPECT_EQ(table.Data(), storage);
    EXPECT_EQ(table.GrowBy, 8);
    table.Add(8);
    EXPECT_EQ(table.Capacity(), 8);
}

// The library's other parts may be compiled apart and take such objects as they lie in memory.
TEST(CTable1D, FieldsAndVirtualFunctionsHaveTheirOrder) {
    Table table;
    table.SetSize(3, true);
    table.RemoveLast();
    table.GrowBy = 4;
    table.InitialGrowBy = 5;
    table.GrowthFactor = 6;
    std::int64_t words[7];
    static_assert(sizeof table == sizeof words);
    std::memcpy(words, reinterpret_cast<const char*>(&table), sizeof words);
    const std::int64_t* data = nullptr;
    std::memcpy(&data, &words[1], sizeof(void*));
    EXPECT_EQ(data, table.Data());
    EXPECT_EQ(words[2], 2) << "the count";
    EXPECT_EQ(words[3], 3) << "the capacity";
    EXPECT_EQ(words[4], 4) << "the step";
    EXPECT_EQ(words[5], 5) << "the initial step";
    EXPECT_EQ(words[6], 6) << "the factor";

    // A pointer to a virtual function holds 1 plus the distance of its slot from the first one;
    // the destructor takes two slots.
    void (CTable1D<std::int64_t>::* const setSize)(std::int64_t, bool) =
        &CTable1D<std::int64_t>::SetSize;
    std::size_t distance = 0;
    std::memcpy(&distance, &setSize, sizeof distance);
    EXPECT_EQ(distance, 1 + 2 * sizeof(void*));
}

TEST(CTable1D, TheFactorMultipliesTheStepAfterAGrowthPastIt) {
    Table table;
    table.GrowBy = 4;
    table.GrowthFactor = 3;
    table.Add(0);
    EXPECT_EQ(table.Capacity(), 4);
    EXPECT_EQ(table.GrowBy, 4) << "a capacity of exactly the step does not raise it";
    for (int i = 0; i < 4; ++i) {
        table.Add(0);
    }
    EXPECT_EQ(table.Capacity(), 8);
    EXPECT_EQ(table.GrowBy, 12);
    for (int i = 0; i < 4; ++i) {
        table.Add(0);
    }
    EXPECT_EQ(table.Capacity(), 12);
    EXPECT_EQ(table.GrowBy, 12);
}

TEST(CTable1D, SetSizeToTheCapacityOnlyChangesTheCount) {
    Table table;
    table.SetSize(3, true);
    table[0] = 5;
    table[1] = 6;
    table[2] = 7;
    table.RemoveLast();
    table.RemoveLast();
    const std::int64_t* const storage = table.Data();
    table.SetSize(3, false);
    EXPECT_EQ(table.Data(), storage);
    EXPECT_EQ(table.Count(), 3);
    EXPECT_EQ(table[1], 6) << "the elements keep what they held";
    EXPECT_EQ(table[2], 7);
}

TEST(CTable1D, SetSizeBelowOneFreesTheStorageAndResetsTheStep) {
    for (const std::int64_t n : {std::int64_t{0}, std::int64_t{-1}}) {
        Table table;
        table.SetSize(3, true);
        table.GrowBy = 9;
        table.InitialGrowBy = 2;
        table.SetSize(n, true);
        EXPECT_EQ(table.Data(), nullptr);
        EXPECT_EQ(table.Count(), 0);
        EXPECT_EQ(table.Capacity(), 0);
        EXPECT_EQ(table.GrowBy, 2);
    }
}

TEST(CTable1D, SetSizeBelowOneOfAnEmptyTableLeavesItEmpty) {
    Table table;
    table.SetSize(-5, true);
    EXPECT_EQ(table.Data(), nullptr);
    EXPECT_EQ(table.Count(), 0);
    EXPECT_EQ(table.Capacity(), 0);
}

TEST(CTable1D, SetSizeKeepsTheFirstElementsOnRequest) {
    CTable1D<CKORString> table;
    table.Add(CKORString(L"a"));
    table.Add(CKORString(L"b"));
    table.SetSize(3, true);
    EXPECT_EQ(table[0], L"a");
    EXPECT_EQ(table[1], L"b");
    EXPECT_EQ(table[2], L"") << "new elements are constructed empty";
    table.SetSize(1, true);
    EXPECT_EQ(table.Count(), 1);
    EXPECT_EQ(table[0], L"a");
    table.SetSize(2, false);
    EXPECT_EQ(table[0], L"");
    EXPECT_EQ(table[1], L"");
}

TEST(CTable1D, ARemovedElementIsNotKept) {
    CTable1D<CKORString> table;
    table.Add(CKORString(L"a"));
    table.Add(CKORString(L"b"));
    table.RemoveLast();
    table.SetSize(3, true);
    EXPECT_EQ(table[0], L"a");
    EXPECT_EQ(table[1], L"");
}

TEST(CTable1D, ReserveKeepsElementsAndCount) {
    Table table;
    table.Add(4);
    table.Reserve(10);
    EXPECT_EQ(table.Count(), 1);
    EXPECT_EQ(table.Capacity(), 10);
    EXPECT_EQ(table[0], 4);
}

TEST(CTable1D, RemovingKeepsTheStorage) {
    Table table;
    table.Add(1);
    table.Add(2);
    table.RemoveLast();
    table.RemoveLast();
    EXPECT_EQ(table.Count(), 0);
    EXPECT_EQ(table.Capacity(), 2);
}

TEST(CTable1D, AnElementOfTheTableCanBeAppendedToIt) {
    CTable1D<CKORString> table;
    table.Add(CKORString(L"first"));
    for (int i = 0; i < 5; ++i) {
        table.Add(table[0]);
    }
    EXPECT_EQ(table[5], L"first");
}

// Knows how many copies lie between it and the first one.
struct Copied {
    Copied() = default;
    Copied(const Copied& other) : Copies(other.Copies + 1) {}
    Copied& operator=(const Copied&) = default;

    int Copies = 0;
};

TEST(CTable1D, OnlyAnElementOfTheTableIsCopiedBeforeItIsAppended) {
    CTable1D<Copied> table;
    table.Reserve(2);
    table.Add(Copied());
    EXPECT_EQ(table[0].Copies, 0) << "only assigned";
    table.Add(table[0]);
    EXPECT_EQ(table[1].Copies, 1);
}

TEST(CTable1D, MovingHandsTheStorageOver) {
    Table from;
    from.Add(1);
    const std::int64_t* const storage = from.Data();
    Table to(std::move(from));
    EXPECT_EQ(to.Data(), storage);
    EXPECT_EQ(to.Count(), 1);
    EXPECT_EQ(from.Data(), nullptr); // NOLINT(bugprone-use-after-move): its state is promised
    Table other;
    other.Add(2);
    other = std::move(to);
    EXPECT_EQ(other.Data(), storage);
}

TEST(CTable1D, AMovedFromTableStartsAnew) {
    Table from;
    from.GrowBy = 9;
    from.InitialGrowBy = 2;
    from.GrowthFactor = 3;
    from.Add(1);
    Table to(std::move(from));
    EXPECT_EQ(to.GrowBy, 9);
    EXPECT_EQ(to.InitialGrowBy, 2);
    EXPECT_EQ(to.GrowthFactor, 3);
    EXPECT_EQ(from.Count(), 0); // NOLINT(bugprone-use-after-move): its state is promised
    EXPECT_EQ(from.GrowBy, 2) << "as after it was emptied";
    from.Add(5);
    EXPECT_EQ(from.Capacity(), 2);
    EXPECT_EQ(from[0], 5);
    Table& alias = to;
    to = std::move(alias);
    EXPECT_EQ(to.Count(), 1) << "moving a table to itself changes nothing";
    EXPECT_EQ(to[0], 1);
}

// Says when it is deleted.
struct Noted {
    Noted(std::string& deleted, char name) : m_deleted(deleted), m_name(name) {}
    Noted(const Noted&) = delete;
    Noted& operator=(const Noted&) = delete;
    ~Noted() { m_deleted += m_name; }

private:
    std::string& m_deleted;
    char m_name;
};

TEST(CTable1D, PointedToObjectsAreTheOwnersToDelete) {
    std::string deleted;
    {
        CTable1D<Noted*> table;
        for (const char name : {'a', 'b', 'c'}) {
            table.Add(new Noted(deleted, name));
        }
        const CTable1D<Noted*> moved(std::move(table));
        CTable1D<Noted*> owner;
        for (Noted* const object : moved) {
            owner.Add(object);
        }
        owner.SetSize(4, true);
        owner[3] = new Noted(deleted, 'd');
        EXPECT_EQ(deleted, "") << "no table deletes what its pointers point to";
        DeleteAll(owner);
        EXPECT_EQ(deleted, "dcba") << "the last one first";
        EXPECT_EQ(owner.Count(), 0);
    }
    EXPECT_EQ(deleted, "dcba");
}

TEST(CTable1D, ReleasesEveryElement) {
    const std::int64_t before = test::LiveBlocks();
    {
        CTable1D<CKORString> table;
        for (int i = 0; i < 20; ++i) {
            table.Add(CKORString(L"text"));
        }
        table.SetSize(5, true);
        table.RemoveLast();
        EXPECT_EQ(table.Capacity(), 5) << "the place behind the count is released too";
    }
    EXPECT_EQ(test::LiveBlocks(), before);
}

// The fatal report, seen through MessageBoxW: its text goes to standard error, where the death
// test looks for it.
template <typename Action>
void ExpectFatalReport(Action action) {
    const auto print = [](HWND, LPCWSTR text, LPCWSTR caption, UINT style) {
        std::fprintf(stderr, "[%ls|%ls|%u]", text, caption, style);
        return IDOK;
    };
    const auto run = [&] {
        HOOK_IMPORT(box, MessageBoxW, print);
        action();
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(1),
                "\\[Not enough heap memory to process\\.\\|Fatal memory error\\.\\|0\\]");
}

TEST(CTable1DDeathTest, ASizeThatOverflowsEndsTheProcess) {
    ExpectFatalReport([] {
        Table table;
        // Eight times this wraps round to 8 bytes.
        table.SetSize((std::int64_t{1} << 61) + 1, true);
    });
}

TEST(CTable1DDeathTest, ARefusedAllocationEndsTheProcess) {
    ExpectFatalReport([] {
        Table table;
        table.Add(1);
        const test::AllocationFailure failure(1);
        table.Add(2);
    });
}

TEST(CTable1DDeathTest, NothingIsCleanedUpAtThatEnd) {
    ExpectFatalReport([] {
        std::atexit([] { std::_Exit(77); });
        Table table;
        const test::AllocationFailure failure(1);
        table.Add(1);
    });
}

TEST(CTable1DDeathTest, AnotherThreadsTableEndsTheProcessToo) {
    ExpectFatalReport([] {
        std::thread([] {
            Table table;
            table.SetSize(std::numeric_limits<std::int64_t>::max(), true);
        }).join();
    });
}

TEST(CTable1DDeathTest, AnAllocationRefusedToAStringEndsTheProcess) {
    ExpectFatalReport([] {
        const test::AllocationFailure failure(1);
        const CKORString text;
    });
}

} // namespace
