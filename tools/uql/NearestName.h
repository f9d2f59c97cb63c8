// The name that somebody may have meant who wrote another.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

/// How many letters have to be changed, added, left out or exchanged with their neighbour to make `b` of `a`.
std::size_t GetEditDistance(std::wstring_view a, std::wstring_view b);

/// The one of the names that is nearest to what was written, letter case ignored; the first of several. Null if even
/// that is no likely slip (more than a letter in three) or is what was written.
const OrvStringT* FindNearestName(const OrvStringT& written, const std::vector<OrvStringT>& names);

} // namespace OrvUQL::Tool
