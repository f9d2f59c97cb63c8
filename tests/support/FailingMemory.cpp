#include "support/FailingMemory.h"

#include <cstdlib>
#include <new>

namespace OrvUQL::Tests {

namespace {

struct State {
    bool active = false;
    bool forGood = false;
    int left = 0;
    bool failed = false;
};

constinit thread_local State state;
constinit thread_local std::ptrdiff_t blocks = 0;

/// Whether the allocation that is asked for now is one that fails.
bool FailsNow() noexcept {
    if (!state.active) {
        return false;
    }
    if (state.left > 0) {
        --state.left;
        return false;
    }
    if (state.failed && !state.forGood) {
        return false;
    }
    state.failed = true;
    return true;
}

void* Allocate(std::size_t size) noexcept {
    void* const block = FailsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
    blocks += block != nullptr ? 1 : 0;
    return block;
}

void Free(void* block) noexcept {
    blocks -= block != nullptr ? 1 : 0;
    std::free(block);
}

} // namespace

FailingMemory::FailingMemory(int allowed, MemoryEnds how) noexcept {
    state = {true, how == MemoryEnds::ForGood, allowed, false};
}

FailingMemory::~FailingMemory() { state = {}; }

bool FailingMemory::HasFailed() const noexcept { return state.failed; }

std::ptrdiff_t LiveBlocks() noexcept { return blocks; }

} // namespace OrvUQL::Tests

void* operator new(std::size_t size) {
    if (void* const block = OrvUQL::Tests::Allocate(size)) {
        return block;
    }
    throw std::bad_alloc();
}

void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return OrvUQL::Tests::Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return OrvUQL::Tests::Allocate(size); }
void operator delete(void* block) noexcept { OrvUQL::Tests::Free(block); }
void operator delete[](void* block) noexcept { OrvUQL::Tests::Free(block); }
void operator delete(void* block, std::size_t) noexcept { OrvUQL::Tests::Free(block); }
void operator delete[](void* block, std::size_t) noexcept { OrvUQL::Tests::Free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { OrvUQL::Tests::Free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { OrvUQL::Tests::Free(block); }
