// Replaces operator new for the whole test program. With KOR_GUARDS each block ends at a page
// without access and its pages are given back on delete, so that an overrun by one element and a
// use after free are access violations.
#include "tests/support/GuardedMemory.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::int64_t> liveBlocks{0};
std::atomic<std::int64_t> untilFailure{0};

bool FailsNow() {
    return untilFailure.load() > 0 && untilFailure.fetch_sub(1) == 1;
}

#ifdef KOR_GUARDS

constexpr std::size_t PageSize = 4096;
// operator new's alignment; blocks of other sizes end as close to the guard as it allows.
constexpr std::size_t Alignment = 2;

void* TakeBlock(std::size_t size) {
    // Blocks that hold objects need full alignment, texts only that of their characters.
    const std::size_t alignment = size % 8 == 0 ? (size % 16 == 0 ? 16 : 8) : Alignment;
    if (size > SIZE_MAX / 4) {
        return nullptr;
    }
    const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
    const std::size_t pages = (rounded + PageSize - 1) / PageSize;
    const std::size_t usable = (pages == 0 ? 1 : pages) * PageSize;
    auto* const reserved =
        static_cast<char*>(VirtualAlloc(nullptr, usable + PageSize, MEM_RESERVE, PAGE_NOACCESS));
    if (reserved == nullptr) {
        return nullptr;
    }
    if (VirtualAlloc(reserved, usable, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
        VirtualFree(reserved, 0, MEM_RELEASE);
        return nullptr;
    }
    return reserved + usable - rounded;
}

void GiveBack(void* block) {
    MEMORY_BASIC_INFORMATION information = {};
    VirtualQuery(block, &information, sizeof information);
    VirtualFree(information.AllocationBase, 0, MEM_RELEASE);
}

#else

void* TakeBlock(std::size_t size) {
    return std::malloc(size == 0 ? 1 : size);
}

void GiveBack(void* block) {
    std::free(block);
}

#endif

void* Allocate(std::size_t size) noexcept {
    void* const block = FailsNow() ? nullptr : TakeBlock(size);
    if (block != nullptr) {
        ++liveBlocks;
    }
    return block;
}

void Free(void* block) noexcept {
    if (block != nullptr) {
        --liveBlocks;
        GiveBack(block);
    }
}

} // namespace

void* operator new(std::size_t size) {
    void* const block = Allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}

void operator delete(void* block) noexcept {
    Free(block);
}

void operator delete[](void* block) noexcept {
    Free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    Free(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    Free(block);
}

void operator delete(void* block, const std::nothrow_t&) noexcept {
    Free(block);
}

void operator delete[](void* block, const std::nothrow_t&) noexcept {
    Free(block);
}

namespace test {

std::int64_t LiveBlocks() {
    return liveBlocks;
}

AllocationFailure::AllocationFailure(std::int64_t n) {
    untilFailure = n;
}

AllocationFailure::~AllocationFailure() {
    untilFailure = 0;
}

bool AllocationFailure::Happened() const {
    return untilFailure <= 0;
}

} // namespace test
