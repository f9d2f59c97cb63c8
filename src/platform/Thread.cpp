#include "platform/Thread.h"

#include <algorithm>
#include <cstdlib>

namespace OrvUQL::platform {

namespace {

// Own bounds are looked up on the thread's first question, which may come from far down the stack or from a switched
// one.
void LearnStackBounds(ThreadState& thread, std::uintptr_t frame) noexcept {
    thread.stackKnown = true;
    const StackBounds bounds = GetStackBounds();
    // A stack of unknown size has no frames: all are then on a switched one, which is the careful assumption.
    thread.stackEnd = bounds.low;
    thread.stackLow = bounds.low;
    if (bounds.isUnlimited && bounds.size > unlimitedStackSize) {
        const std::uintptr_t top = frame - bounds.low < bounds.size ? frame : bounds.low + bounds.size;
        thread.stackLow = std::max(bounds.low, top - unlimitedStackSize);
    }
    thread.stackSize = bounds.low + bounds.size - thread.stackLow;
}

} // namespace

bool HasStackElsewhere(std::uintptr_t frame, std::size_t reserve) noexcept {
    ThreadState& thread = CurrentThread();
    if (!thread.stackKnown) {
        LearnStackBounds(thread, frame);
        const std::uintptr_t left = frame - thread.stackLow;
        if (left < thread.stackSize) {
            return left > reserve;
        }
    }
    if (frame - thread.stackEnd < thread.stackLow - thread.stackEnd) {
        return false; // in the part of an unlimited stack that is not used
    }
    // Questions come at short intervals, so a recursion meets the reserve before it could leave the range below; a
    // frame outside it is on yet another stack.
    if (frame < thread.foreignLow || frame > thread.foreignTop) {
        thread.foreignTop = frame;
        thread.foreignLow = frame > foreignStackSize ? frame - foreignStackSize : 0;
    }
    return frame - thread.foreignLow > std::min(reserve, foreignStackReserve);
}

bool PendingReleases::Push(void* object) noexcept {
    if (count == capacity && !Grow()) {
        return false;
    }
    ring[(first + count) & (capacity - 1)] = object;
    ++count;
    return true;
}

void* PendingReleases::Pop() noexcept {
    if (count == 0) {
        return nullptr;
    }
    void* const object = ring[first];
    first = (first + 1) & (capacity - 1);
    if (--count == 0) {
        std::free(ring);
        ring = nullptr;
        capacity = 0;
        first = 0;
    }
    return object;
}

bool PendingReleases::Grow() noexcept {
    constexpr std::size_t smallest = 64;
    const std::size_t wider = capacity == 0 ? smallest : capacity * 2;
    auto* const memory = static_cast<void**>(std::malloc(wider * sizeof(void*)));
    if (memory == nullptr) {
        return false;
    }
    const std::size_t tail = capacity - first; // the older part stands at the end of the ring
    std::copy_n(ring + first, tail, memory);
    std::copy_n(ring, first, memory + tail);
    std::free(ring);
    ring = memory;
    capacity = wider;
    first = 0;
    return true;
}

} // namespace OrvUQL::platform
