// Memory that ends at a chosen allocation. For programs that link FailingMemory.cpp, which replaces operator new for
// the whole process, the shared library included.
#pragma once

#include <cstddef>

namespace OrvUQL::Tests {

enum class MemoryEnds {
    Once,    ///< one allocation fails, those after it succeed
    ForGood, ///< that one and all after it fail
};

/// While it lives, allocations of the thread fail: the one after `allowed` others, and by `how` those behind it.
class FailingMemory {
public:
    FailingMemory(int allowed, MemoryEnds how) noexcept;
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;
    ~FailingMemory();

    /// Whether it has come to that; to be asked while it lives.
    bool HasFailed() const noexcept;
};

/// How many blocks the thread has got and not given back.
std::ptrdiff_t LiveBlocks() noexcept;

} // namespace OrvUQL::Tests
