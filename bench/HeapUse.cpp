#include "HeapUse.h"

#include <cstdlib>
#include <new>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

std::size_t callsOfNew = 0; // the measurements run on one thread

} // namespace

// A program's own operator new serves the shared libraries too.
void* operator new(std::size_t size) {
    ++callsOfNew;
    if (void* const block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace OrvUQL::bench {

std::size_t CallsOfNew() { return callsOfNew; }

std::optional<std::size_t> BytesInUse() {
#if defined(__GLIBC__)
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
#else
    return std::nullopt;
#endif
}

} // namespace OrvUQL::bench
