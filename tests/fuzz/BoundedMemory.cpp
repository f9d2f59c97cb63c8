#include "fuzz/BoundedMemory.h"

#include <cstdlib>
#include <new>

namespace OrvUQL::Tests {

namespace {

constexpr std::size_t greatestBlock = std::size_t{8} << 20;
constexpr std::size_t greatestSum = std::size_t{96} << 20;

struct State {
    bool active = false;
    bool ended = false;
    std::size_t sum = 0;
};

constinit thread_local State state;
constinit thread_local std::ptrdiff_t blocks = 0;

void* Allocate(std::size_t size) noexcept {
    if (state.active) {
        // Small ones succeed as long as they can, so that what failed can be told.
        if (size > greatestBlock || (size > 256 && state.sum + size > greatestSum)) {
            state.ended = true;
            return nullptr;
        }
        state.sum += size;
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    blocks += block != nullptr ? 1 : 0;
    return block;
}

void Free(void* block) noexcept {
    blocks -= block != nullptr ? 1 : 0;
    std::free(block);
}

} // namespace

BoundedMemory::BoundedMemory() noexcept { state = {true, false, 0}; }
BoundedMemory::~BoundedMemory() { state = {}; }
bool BoundedMemory::HasEnded() const noexcept { return state.ended; }

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

/// Leaks are looked for by the count of blocks, input by input; what is kept on purpose would be found at the end.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "detect_leaks=0"; }
