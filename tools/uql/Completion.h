// The names that can stand where somebody is typing a query.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

struct Completion {
    std::size_t begin = 0;          ///< of the part that a name replaces, in bytes; it ends at the cursor
    std::vector<std::string> names; ///< that begin like it, letter case ignored; UTF-8
};

/// Completes the name that ends at `cursor`: behind a dot with the methods and members of the value that stands before
/// it, behind "@" and "$" with those of the property source and of the variable, inside braces with units, elsewhere
/// with the global functions. What stands before a dot is evaluated, unless it might take long (Repeat and ForEach can
/// make a text of any size) or asks a foreign program (automation objects).
Completion CompleteQuery(QueryEngine& engine, std::string_view text, std::size_t cursor);

/// The names that begin like what stands between `begin` and the cursor, each once.
Completion SelectNames(std::string_view text, std::size_t begin, std::size_t cursor,
                       const std::vector<std::string>& names);

/// What all of the names begin with, letter case ignored; as the first has it.
std::string GetCommonBeginning(const std::vector<std::string>& names);

} // namespace OrvUQL::Tool
