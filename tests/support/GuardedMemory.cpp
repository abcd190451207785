// Replaces operator new for the whole test program. With KOR_GUARDS each block ends at a page
// without access and its pages are given back on delete, so that an overrun by one element and a
// use after free are access violations.
#include "tests/support/GuardedMemory.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::int64_t> liveBlocks{0};
std::atomic<std::int64_t> untilFailure{0};

std::atomic<std::size_t> failingSize{0}; // 0: any

bool FailsNow(std::size_t size) {
    const bool counts = failingSize == 0 || failingSize == size;
    return counts && untilFailure.load() > 0 && untilFailure.fetch_sub(1) == 1;
}

std::atomic<int> plainScopes{0};

#ifdef KOR_GUARDS

constexpr std::size_t PageSize = 4096;
// That of texts, which so end just in front of the guard.
constexpr std::size_t Alignment = 2;
// Address space: only what is in use takes memory. No address is used twice, so a use after
// deletion is found however late it comes.
constexpr std::size_t RegionSize = std::size_t{1} << 36;

char* Region() {
    static char* const region =
        static_cast<char*>(VirtualAlloc(nullptr, RegionSize, MEM_RESERVE, PAGE_NOACCESS));
    return region;
}

// The block ends where a page without access begins.
void* TakeGuarded(std::size_t size) {
    static std::atomic<std::size_t> taken{0};
    // Blocks that hold objects need full alignment, texts only that of their characters.
    const std::size_t alignment = size % 8 == 0 ? (size % 16 == 0 ? 16 : 8) : Alignment;
    if (size > RegionSize / 4) {
        return nullptr;
    }
    const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
    const std::size_t usable = (rounded / PageSize + 1) * PageSize;
    const std::size_t start = taken.fetch_add(usable + PageSize);
    if (Region() == nullptr || start + usable + PageSize > RegionSize) {
        std::fputs("No address space is left for guarded memory.\n", stderr);
        std::abort();
    }
    char* const pages = Region() + start;
    return VirtualAlloc(pages, usable, MEM_COMMIT, PAGE_READWRITE) != nullptr
               ? pages + usable - rounded
               : nullptr;
}

bool IsGuarded(const void* block) {
    const auto* const address = static_cast<const char*>(block);
    return address >= Region() && address < Region() + RegionSize;
}

void GiveBackGuarded(void* block) {
    // There is at least one byte in front of each block, also of one without any.
    char* const inFront = static_cast<char*>(block) - 1;
    MEMORY_BASIC_INFORMATION information = {};
    VirtualQuery(inFront, &information, sizeof information);
    VirtualFree(information.BaseAddress, information.RegionSize, MEM_DECOMMIT);
}

#else

void* TakeGuarded(std::size_t size) {
    return std::malloc(size == 0 ? 1 : size);
}

bool IsGuarded(const void* /*block*/) {
    return false;
}

void GiveBackGuarded(void* /*block*/) {}

#endif

void* TakeBlock(std::size_t size) {
    return plainScopes > 0 ? std::malloc(size == 0 ? 1 : size) : TakeGuarded(size);
}

void GiveBack(void* block) {
    if (IsGuarded(block)) {
        GiveBackGuarded(block);
    } else {
        std::free(block);
    }
}

void* Allocate(std::size_t size) noexcept {
    void* const block = FailsNow(size) ? nullptr : TakeBlock(size);
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

AllocationFailure::AllocationFailure(std::int64_t n, std::size_t size) {
    failingSize = size;
    untilFailure = n;
}

AllocationFailure::~AllocationFailure() {
    untilFailure = 0;
}

bool AllocationFailure::Happened() const {
    return untilFailure <= 0;
}

PlainMemory::PlainMemory() {
    ++plainScopes;
}

PlainMemory::~PlainMemory() {
    --plainScopes;
}

} // namespace test
