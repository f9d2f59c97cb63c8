// Memory for one input: a query may ask for gigabytes, and a fuzzer has none to give. Replaces operator new for the
// whole process, and counts what it hands out.
#pragma once

#include <cstddef>

namespace OrvUQL::Tests {

/// While it lives, the thread's allocations come to a limited number of bytes, each and all together; those beyond
/// fail, as they do where memory ends.
class BoundedMemory {
public:
    BoundedMemory() noexcept;
    BoundedMemory(const BoundedMemory&) = delete;
    BoundedMemory& operator=(const BoundedMemory&) = delete;
    ~BoundedMemory();

    /// Whether an allocation has failed; to be asked while it lives.
    bool HasEnded() const noexcept;
};

/// How many blocks the thread holds that it has got, or got from others, and not given back.
std::ptrdiff_t LiveBlocks() noexcept;

} // namespace OrvUQL::Tests
