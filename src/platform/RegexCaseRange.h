#pragma once

#include <cstddef>
#include <string>

namespace OrvUQL::platform {

/// Ranges without regard to case are matched by the upper-case mappings of units. Appends the ranges of units that are
/// their own mappings and that some unit from `first` to `last` has, in the notation of a pattern's bracket:
/// \u0041-\u005a for a to z. Returns how many there are.
std::size_t AppendUpperRanges(std::wstring& pattern, wchar_t first, wchar_t last);

} // namespace OrvUQL::platform
