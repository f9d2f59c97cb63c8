// What the program takes from the heap.
#pragma once

#include <cstddef>
#include <optional>

namespace OrvUQL::bench {

/// Calls of operator new so far, those inside of the library included.
std::size_t CallsOfNew();

/// Bytes in use, the allocator's own share of each block included; nothing where the C library does not tell.
std::optional<std::size_t> BytesInUse();

} // namespace OrvUQL::bench
