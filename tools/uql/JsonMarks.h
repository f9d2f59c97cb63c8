// The bytes of JSON that decide where a document ends, found many at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace OrvUQL::Tool {

constexpr std::size_t jsonBlock = 64;

/// A bit for each byte of a block, the first one's lowest, that is one of a kind.
struct JsonMarks {
    std::uint64_t quotes = 0;
    std::uint64_t backslashes = 0;
    std::uint64_t openings = 0; ///< brackets and braces
    std::uint64_t closings = 0;
    std::uint64_t lineFeeds = 0;
};

#if defined(__SSE2__)

constexpr bool findsJsonMarks = true;

inline JsonMarks FindJsonMarks(const char* block) {
    JsonMarks marks;
    for (std::size_t part = 0; part < jsonBlock; part += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + part));
        const __m128i folded = _mm_or_si128(bytes, _mm_set1_epi8(0x20)); // makes braces of brackets
        const auto find = [part](__m128i where, char what) {
            const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(where, _mm_set1_epi8(what)));
            return static_cast<std::uint64_t>(static_cast<unsigned>(found)) << part;
        };
        marks.quotes |= find(bytes, '"');
        marks.backslashes |= find(bytes, '\\');
        marks.openings |= find(folded, '{');
        marks.closings |= find(folded, '}');
        marks.lineFeeds |= find(bytes, '\n');
    }
    return marks;
}

#else

constexpr bool findsJsonMarks = false;

inline JsonMarks FindJsonMarks(const char*) { return JsonMarks(); }

#endif

/// A bit for each byte that has an odd number of quotes before it or is the odd one itself.
inline std::uint64_t FindInsides(std::uint64_t quotes) {
    for (int distance = 1; distance < 64; distance *= 2) {
        quotes ^= quotes << distance;
    }
    return quotes;
}

} // namespace OrvUQL::Tool
