#include "platform/Pool.h"

namespace OrvUQL::platform {

#if ORVUQL_POOL

namespace {

// A block goes to the list of its own size class on whichever thread frees it, so it is made as large as its class.
std::size_t BlockSize(std::size_t size) noexcept { return size > poolLimit ? size : PoolBlockSize(PoolClass(size)); }

bool OpenPool(ThreadState& thread) noexcept {
    if (thread.poolClosed || thread.poolOpen) {
        return false;
    }
    thread.poolOpen = true;
    for (PoolList& list : thread.pool) {
        list.room = poolRoom;
    }
    CallAtThreadExit();
    return true;
}

} // namespace

void* PoolAllocateSlowly(std::size_t size) { return ::operator new(BlockSize(size)); }

void PoolFreeSlowly(void* block, std::size_t size) noexcept {
    if (size <= poolLimit && OpenPool(CurrentThread())) {
        PoolFree(block, size);
        return;
    }
    ::operator delete(block);
}

void ClosePool() noexcept {
    ThreadState& thread = CurrentThread();
    thread.poolClosed = true;
    for (PoolList& list : thread.pool) {
        list.room = 0;
        while (PoolList::Block* const block = list.head) {
            list.head = block->next;
            ::operator delete(block);
        }
    }
}

#else

void ClosePool() noexcept {}

#endif

} // namespace OrvUQL::platform
