// What the text's methods that give a part of it have in common with their direct forms.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace OrvUQL::detail {

/// What Trim() and its kin remove unless they are told otherwise.
inline constexpr std::wstring_view blanks = L" \t";

struct TextRange {
    int start;
    int count;
};

/// The part that SubStr() and Delete() mean, in a text of `length` units. A negative start counts from the end. A count
/// of 0 or less counts back from the end; so 0 means to the end, deliberately.
inline TextRange FindRange(std::int64_t length, std::int64_t start, std::int64_t count) noexcept {
    if (start < 0) {
        start = std::max<std::int64_t>(start + length, 0);
    }
    start = std::min(start, length);
    const std::int64_t end = std::clamp(count > 0 ? start + count : length + count, start, length);
    return {static_cast<int>(start), static_cast<int>(end - start)};
}

} // namespace OrvUQL::detail
