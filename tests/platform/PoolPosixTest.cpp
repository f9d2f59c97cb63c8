#include "platform/Pool.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <thread>

using namespace OrvUQL::platform;

namespace {

/// What a key of the thread library gives back runs after the thread's own objects were destroyed.
struct Late {
    void* block = nullptr;
    bool closed = false;
    bool done = false;
};

void FreeLate(void* value) {
    auto& late = *static_cast<Late*>(value);
    late.closed = CurrentThread().poolClosed;
    PoolFree(late.block, 48);
    PoolFree(PoolAllocate(48), 48);
    const PoolList& list = CurrentThread().pool[PoolClass(48)];
    late.done = list.head == nullptr && list.room == 0;
}

} // namespace

TEST(Pool, BlocksMayBeFreedAfterTheListsAreGone) {
    pthread_key_t key{};
    ASSERT_EQ(pthread_key_create(&key, FreeLate), 0);
    Late late;
    std::thread([key, &late] {
        PoolFree(PoolAllocate(48), 48); // opens the lists
        late.block = PoolAllocate(48);
        pthread_setspecific(key, &late);
    }).join();
    pthread_key_delete(key);
#if ORVUQL_POOL
    EXPECT_TRUE(late.closed);
#endif
    EXPECT_TRUE(late.done);
}
