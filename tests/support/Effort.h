// How much a test that could go on for ever does.
#pragma once

#include <cstdio>

#if !defined(ORVUQL_TEST_EFFORT)
#define ORVUQL_TEST_EFFORT 100
#endif

namespace OrvUQL::Tests {

/// A number of rounds, or a size, as this build can bear it: all of it in an optimised build, a part where programs run
/// many times slower (ORVUQL_TEST_EFFORT of CMake, in percent). A test that does less says so.
inline int Effort(int all) {
    constexpr int percent = ORVUQL_TEST_EFFORT;
    const int part = static_cast<int>(static_cast<long long>(all) * percent / 100);
    if (percent != 100) {
        std::printf("%d of %d: the rest is left to builds in which it takes less time\n", part, all);
    }
    return part;
}

} // namespace OrvUQL::Tests
