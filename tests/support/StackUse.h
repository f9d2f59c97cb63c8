// Using a stack up, for tests of what the library says is left of it.
#pragma once

#include "platform/Thread.h"

#include <cstddef>
#include <cstdint>

namespace OrvUQL::Tests {

/// Uses that much stack, and returns how many frames that were.
__attribute__((noinline)) inline int Descend(std::size_t bytes) {
    volatile char frame[1024];
    frame[0] = 1;
    return bytes <= sizeof frame ? frame[0] : Descend(bytes - sizeof frame) + frame[0];
}

/// Touches the stack down to an address, with a margin for the size of its own frame.
__attribute__((noinline)) inline void UseStackDownTo(std::uintptr_t lowest) {
    volatile char block[512];
    for (std::size_t i = 0; i < sizeof block; i += 64) {
        block[i] = 1;
    }
    if (ORVUQL_FRAME_ADDRESS() > lowest + 4096) {
        UseStackDownTo(lowest);
    }
    block[0] = 2;
}

} // namespace OrvUQL::Tests
