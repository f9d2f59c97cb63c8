#include "platform/Pool.h"

#include "platform/Meter.h"

#include <algorithm>
#include <utility>

namespace OrvUQL::platform {

#if ORVUQL_POOL

namespace {

// A block goes to the list of its own size class on whichever thread frees it, so it is made as large as its class.
std::size_t BlockSize(std::size_t size) noexcept { return size > poolLimit ? size : PoolBlockSize(PoolClass(size)); }

bool OpenPool(ThreadState& thread) noexcept {
    if (thread.poolClosed || thread.poolOpen || !CallAtThreadExit()) {
        return false;
    }
    thread.poolOpen = true;
    for (PoolList& list : thread.pool) {
        list.room = poolRoom;
    }
    return true;
}

} // namespace

void* PoolAllocateSlowly(std::size_t size) {
    if (Meter* const meter = CurrentThread().meter) [[unlikely]] {
        return meter->Allocate(size);
    }
    return ::operator new(BlockSize(size));
}

void PoolFreeSlowly(void* block, std::size_t size) noexcept {
    ThreadState& thread = CurrentThread();
    if (thread.meter != nullptr) [[unlikely]] {
        thread.meter->Free(block, size);
        return;
    }
    if (size <= poolLimit && OpenPool(thread)) {
        PoolFree(block, size);
        return;
    }
    ::operator delete(block);
}

void DivertPool(PoolList* kept) noexcept {
    ThreadState& thread = CurrentThread();
    OpenPool(thread); // what is given back meanwhile shall be kept
    for (PoolList& list : thread.pool) {
        *kept++ = std::exchange(list, PoolList());
    }
}

void RestorePool(const PoolList* kept) noexcept { std::copy_n(kept, poolClasses, CurrentThread().pool); }

void* TakeBlock(PoolList* lists, std::size_t size) {
    void* const block = size <= poolLimit ? PopBlock(lists[PoolClass(size)]) : nullptr;
    return block != nullptr ? block : ::operator new(BlockSize(size));
}

void GiveBlock(PoolList* lists, void* block, std::size_t size) noexcept {
    if (size > poolLimit || !PushBlock(lists[PoolClass(size)], block)) {
        ::operator delete(block);
    }
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

void* PoolAllocate(std::size_t size) {
    if (Meter* const meter = CurrentThread().meter) {
        return meter->Allocate(size);
    }
    return ::operator new(size);
}

void PoolFree(void* block, std::size_t size) noexcept {
    if (Meter* const meter = CurrentThread().meter) {
        meter->Free(block, size);
        return;
    }
    ::operator delete(block);
}

void DivertPool(PoolList*) noexcept {}
void RestorePool(const PoolList*) noexcept {}
void* TakeBlock(PoolList*, std::size_t size) { return ::operator new(size); }
void GiveBlock(PoolList*, void* block, std::size_t) noexcept { ::operator delete(block); }

void ClosePool() noexcept {}

#endif

} // namespace OrvUQL::platform
