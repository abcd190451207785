// What the test programs know of the memory that they use: live blocks, and an allocation that
// fails on purpose.
#pragma once

#include <cstdint>

namespace test {

// Blocks of operator new that were not deleted yet.
std::int64_t LiveBlocks();

// While it lives, the n-th allocation (from 1) by operator new from its construction on, and no
// other, fails: the nothrow forms return null, the others throw.
class AllocationFailure {
public:
    explicit AllocationFailure(std::int64_t n);
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;
    ~AllocationFailure();

    // Whether the failing allocation was reached.
    bool Happened() const;
};

} // namespace test
