// What the test programs know of the memory that they use: live blocks, and an allocation that
// fails on purpose.
#pragma once

#include <cstddef>
#include <cstdint>

namespace test {

// Blocks of operator new that were not deleted yet.
std::int64_t LiveBlocks();

// While it lives, the n-th allocation (from 1) by operator new from its construction on, and no
// other, fails: the nothrow forms return null, the others throw. With a size, only allocations of
// that many bytes count.
class AllocationFailure {
public:
    explicit AllocationFailure(std::int64_t n, std::size_t size = 0);
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;
    ~AllocationFailure();

    // Whether the failing allocation was reached.
    bool Happened() const;
};

// While it lives, new blocks have no guards: for what a test itself computes with, and for tests
// that keep more than some ten thousand blocks at a time, since each guarded block takes two of the
// 65,530 mappings that a Linux process may have.
class PlainMemory {
public:
    PlainMemory();
    PlainMemory(const PlainMemory&) = delete;
    PlainMemory& operator=(const PlainMemory&) = delete;
    ~PlainMemory();
};

} // namespace test
