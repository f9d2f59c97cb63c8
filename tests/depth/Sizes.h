// How large, and on which stacks.
#pragma once

#include <cstddef>

namespace OrvUQL::Tests {

/// Those of the tests. The table, which takes longer, has one more.
#if defined(ORVUQL_ADDRESS_SANITIZER)
// Everything is several times as slow there, and frames are many times as large.
inline constexpr int testSizes[] = {10, 1000, 20000};
#else
inline constexpr int testSizes[] = {10, 1000, 100000};
#endif
inline constexpr int tableSizes[] = {10, 1000, 100000, 1000000};

struct Stack {
    std::size_t bytes;
    const char* name;
};

inline constexpr Stack stacks[] = {{256 * 1024, "256 KiB"}, {1024 * 1024, "1 MiB"}, {8 * 1024 * 1024, "8 MiB"}};

} // namespace OrvUQL::Tests
