// What the program takes from memory.
#pragma once

#include <cstddef>
#include <optional>

namespace OrvUQL::bench {

/// Calls of operator new so far, those inside of the library included.
std::size_t CallsOfNew();

/// Bytes of the program that are in memory, in whole pages; nothing where the system does not tell. Before it looks,
/// freed memory is given back to the system where the C library can do so: what is taken from it later is growth.
std::optional<std::size_t> ResidentBytes();

} // namespace OrvUQL::bench
