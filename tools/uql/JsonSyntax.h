// What the parts that read JSON agree on.
#pragma once

#include <cstddef>

namespace OrvUQL::Tool {

/// Arrays and objects inside each other, the outermost counted. Deeper documents are refused, by every reader alike: no
/// data is nested like that, and a file of opening brackets must not fill the memory.
constexpr std::size_t deepestJson = 10'000;

inline bool IsJsonBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

/// What ends a number or a word.
inline bool EndsJsonScalar(char c) {
    return IsJsonBlank(c) || c == '{' || c == '}' || c == '[' || c == ']' || c == '"' || c == ',' || c == ':';
}

} // namespace OrvUQL::Tool
