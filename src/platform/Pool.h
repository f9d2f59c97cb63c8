#pragma once

#include "platform/Thread.h"

#include <cstddef>
#include <new>

/// Memory for small, short-lived things: values, elements, texts.
///
/// Each thread keeps lists of free blocks, one for every 16 bytes of size up to 136, each at most 1,024 blocks long,
/// over ::operator new. Blocks belong to no thread: one may be given back on any thread, also on one whose lists were
/// already torn down, where it goes straight to ::operator delete. The lists are given back when their thread ends.
///
/// Sanitizers must see each allocation, so with them (and with ORVUQL_NO_POOL) there are no lists.
#if defined(ORVUQL_NO_POOL) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORVUQL_POOL 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define ORVUQL_POOL 0
#endif
#endif
#if !defined(ORVUQL_POOL)
#define ORVUQL_POOL 1
#endif

namespace OrvUQL::platform {

/// The greatest block that the lists keep.
inline constexpr std::size_t poolLimit = PoolBlockSize(poolClasses - 1);

/// How many free blocks of one size a thread keeps.
inline constexpr int poolRoom = 1024;

#if ORVUQL_POOL

void* PoolAllocateSlowly(std::size_t size);
void PoolFreeSlowly(void* block, std::size_t size) noexcept;

/// A free block of the list, or null.
inline void* PopBlock(PoolList& list) noexcept {
    PoolList::Block* const block = list.head;
    if (block != nullptr) {
        list.head = block->next;
        ++list.room;
    }
    return block;
}

/// False where the list is full.
inline bool PushBlock(PoolList& list, void* block) noexcept {
    if (list.room <= 0) {
        return false;
    }
    list.head = ::new (block) PoolList::Block{list.head};
    --list.room;
    return true;
}

/// At least `size` bytes (1 or more), aligned for every ordinary type. Throws std::bad_alloc.
inline void* PoolAllocate(std::size_t size) {
    const std::size_t list = PoolClass(size);
    if (list < poolClasses) {
        if (void* const block = PopBlock(CurrentThread().pool[list])) {
            return block;
        }
    }
    return PoolAllocateSlowly(size);
}

/// Gives back what PoolAllocate returned for the same `size`.
inline void PoolFree(void* block, std::size_t size) noexcept {
    const std::size_t list = PoolClass(size);
    if (list < poolClasses && PushBlock(CurrentThread().pool[list], block)) {
        return;
    }
    PoolFreeSlowly(block, size);
}

#else

void* PoolAllocate(std::size_t size);
void PoolFree(void* block, std::size_t size) noexcept;

#endif

// For a meter, which counts what is allocated and freed, and so has the lists' work done by the slow functions above.

/// Moves the calling thread's lists to `kept`, and leaves it lists that neither hold nor take a block.
void DivertPool(PoolList* kept) noexcept;

/// Moves them back.
void RestorePool(const PoolList* kept) noexcept;

/// A block from the lists, or from the heap. Throws std::bad_alloc.
void* TakeBlock(PoolList* lists, std::size_t size);
void GiveBlock(PoolList* lists, void* block, std::size_t size) noexcept;

/// Gives the calling thread's free blocks back; from then on its blocks go straight to the heap.
void ClosePool() noexcept;

} // namespace OrvUQL::platform
