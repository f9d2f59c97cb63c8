// How much a test that could go on for ever does.
#pragma once

#include <cstdio>

#if !defined(ORVUQL_TEST_EFFORT)
#define ORVUQL_TEST_EFFORT 100
#endif

namespace OrvUQL::Tests {

/// What a build does of it, without a word: for the size of what many tests of a file make.
constexpr int PartOf(int all) { return static_cast<int>(static_cast<long long>(all) * ORVUQL_TEST_EFFORT / 100); }

/// A number of rounds, or a size, as this build can bear it: all of it in an optimised build, a part where programs run
/// many times slower (ORVUQL_TEST_EFFORT of CMake, in percent). A test that does less says so.
inline int Effort(int all) {
    const int part = PartOf(all);
    if (part != all) {
        std::printf("%d of %d: the rest is left to builds in which it takes less time\n", part, all);
    }
    return part;
}

} // namespace OrvUQL::Tests
