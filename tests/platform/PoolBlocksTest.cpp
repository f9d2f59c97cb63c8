// How large the blocks are that the pool asks for.
//
// A program of its own, since it replaces operator new.

#include "platform/Pool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <thread>

namespace {

thread_local std::size_t asked = 0;

} // namespace

void* operator new(std::size_t size) {
    asked = size;
    if (void* const block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace OrvUQL::platform {
namespace {

// The next one to get a block may need all that its class has, though the first asked for less. It shows nowhere else:
// an allocator's blocks may have room to spare, and there is no pool where a sanitizer would see what is written
// behind.
TEST(PoolBlocks, AreAsLargeAsTheirClass) {
    std::thread([] { // whose lists are empty
        for (std::size_t size = 1; size <= 2 * poolLimit; ++size) {
            asked = 0;
            void* const block = PoolAllocate(size);
            EXPECT_GE(asked, size);
#if ORVUQL_POOL
            EXPECT_EQ(asked, size <= poolLimit ? PoolBlockSize(PoolClass(size)) : size);
#endif
            ::operator delete(block);
        }
    })
        .join();
}

} // namespace
} // namespace OrvUQL::platform
