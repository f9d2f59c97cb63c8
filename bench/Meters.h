// What is read before and after a measurement: the clock and the memory that the program takes.
#pragma once

#include <cstddef>
#include <optional>

namespace OrvUQL::bench {

/// Seconds from some point in time. Where the system counts it finely enough the processor's time of this program,
/// which has nothing in it of what others do on the machine.
double Seconds();

/// Calls of operator new so far, those inside of the library included; nothing where a library has one of its own.
std::optional<std::size_t> CallsOfNew();

/// Bytes of the program that are in memory, in whole pages; nothing where the system does not tell. Before it looks,
/// freed memory is given back to the system where the C library can do so: what is taken from it later is growth.
std::optional<std::size_t> ResidentBytes();

/// Bytes of the heap that are in use, what malloc spends on each block included; nothing where the C library does not
/// count them. The same calls give the same figure in each run.
std::optional<std::size_t> HeapBytes();

} // namespace OrvUQL::bench
