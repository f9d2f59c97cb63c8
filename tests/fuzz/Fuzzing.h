// What the fuzz targets share: failing, choosing by the fuzzer's bytes, and looking for leaks.
#pragma once

#include "fuzz/BoundedMemory.h"
#include "support/Print.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace OrvUQL::Tests {

/// Ends the process if something does not hold, which the fuzzer takes for a finding.
inline void Expect(bool holds, std::string_view what, std::string_view detail = {}) {
    if (!holds) {
        const std::string text = "EXPECTATION FAILED: " + std::string(what) + "\n" + std::string(detail) + "\n";
        std::fwrite(text.data(), 1, text.size(), stderr);
        std::abort();
    }
}

/// Fails unless the texts are equal, and shows them.
inline void ExpectSame(const std::string& first, const std::string& second, std::string_view what,
                       std::string_view detail = {}) {
    if (first != second) {
        Expect(false, what, std::string(detail) + "\nfirst:  " + first + "\nsecond: " + second);
    }
}

/// Choices made by the bytes of an input, in order; when they are used up every choice is the first.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : next(data), end(data + size) {}

    bool IsAtEnd() const { return next == end; }

    /// 0 to `limit` - 1, of at most 256.
    std::size_t Below(std::size_t limit) { return next == end ? 0 : *next++ % limit; }

    bool OneIn(std::size_t chances) { return Below(chances) == chances - 1; }

    template <class T, std::size_t N> const T& Pick(const T (&choices)[N]) { return choices[Below(N)]; }

    /// What is left.
    std::string_view Rest() const {
        return {reinterpret_cast<const char*>(next), static_cast<std::size_t>(end - next)};
    }

private:
    const std::uint8_t* next;
    const std::uint8_t* end;
};

/// Runs `body` and fails if it keeps memory. Caches may fill the first times; a leak takes more every time.
template <class Body> void ExpectNoLeak(Body&& body, std::string_view detail) {
    std::ptrdiff_t before = LiveBlocks();
    body();
    for (int round = 0; LiveBlocks() > before; ++round) {
        Expect(round < 4, "memory is kept", detail);
        before = LiveBlocks();
        body();
    }
}

} // namespace OrvUQL::Tests
