#include "platform/Pool.h"

#include <OrvUQL/OrvString.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <thread>
#include <vector>

using namespace OrvUQL::platform;

TEST(Pool, BlocksAreAlignedApartAndUsable) {
    std::set<std::uintptr_t> addresses;
    std::vector<std::pair<void*, std::size_t>> blocks;
    for (std::size_t size = 1; size <= 300; ++size) {
        void* const block = PoolAllocate(size);
        const auto address = reinterpret_cast<std::uintptr_t>(block);
        EXPECT_EQ(address % alignof(std::max_align_t), 0u);
        EXPECT_TRUE(addresses.insert(address).second);
        std::memset(block, static_cast<int>(size & 0xFF), size);
        blocks.emplace_back(block, size);
    }
    for (const auto& [block, size] : blocks) {
        EXPECT_EQ(static_cast<unsigned char*>(block)[0], size & 0xFF);
        EXPECT_EQ(static_cast<unsigned char*>(block)[size - 1], size & 0xFF);
        PoolFree(block, size);
    }
}

#if ORVUQL_POOL

TEST(Pool, ABlockIsUsedAgainForTheSameSizeClass) {
    void* const block = PoolAllocate(56);
    PoolFree(block, 56);
    void* const again = PoolAllocate(41);
    EXPECT_EQ(again, block);
    void* const other = PoolAllocate(40);
    EXPECT_NE(other, block);
    PoolFree(again, 41);
    PoolFree(other, 40);
}

TEST(Pool, ListsAreBounded) {
    std::thread([] {
        std::vector<void*> blocks;
        for (int i = 0; i < 3 * poolRoom; ++i) {
            blocks.push_back(PoolAllocate(64));
        }
        for (void* const block : blocks) {
            PoolFree(block, 64);
        }
        const PoolList& list = CurrentThread().pool[PoolClass(64)];
        EXPECT_EQ(list.room, 0);
        int length = 0;
        for (const PoolList::Block* block = list.head; block != nullptr; block = block->next) {
            ++length;
        }
        EXPECT_EQ(length, poolRoom);
        for (int i = 0; i < poolRoom; ++i) {
            blocks[static_cast<std::size_t>(i)] = PoolAllocate(64);
        }
        EXPECT_EQ(list.room, poolRoom);
        EXPECT_EQ(list.head, nullptr);
        for (int i = 0; i < poolRoom; ++i) {
            PoolFree(blocks[static_cast<std::size_t>(i)], 64);
        }
    }).join();
}

#endif

TEST(Pool, BlocksMayBeFreedOnAnotherThread) {
    constexpr int count = 2000;
    std::vector<void*> blocks;
    for (int i = 0; i < count; ++i) {
        blocks.push_back(PoolAllocate(32));
    }
    std::thread([&blocks] {
        for (void*& block : blocks) {
            PoolFree(block, 32);
            block = PoolAllocate(80);
            std::memset(block, 0x5A, 80);
        }
    }).join();
    for (void* const block : blocks) { // their thread has ended
        EXPECT_EQ(static_cast<unsigned char*>(block)[79], 0x5A);
        PoolFree(block, 80);
    }
}

TEST(Pool, TextsMayGoToAnotherThread) {
    OrvStringT text(L"short");
    OrvStringT back;
    std::thread([moved = std::move(text), &back]() mutable {
        moved += L" and longer";
        back = std::move(moved);
    }).join();
    EXPECT_EQ(back, L"short and longer");
}
