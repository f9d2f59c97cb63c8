// What the library and this program were compiled with.
#pragma once

#include <string>

namespace OrvUQL::bench {

/// Lines of a name, a tab and a text: all that decides how many instructions the same sources become. Two builds for
/// which they are the same can be compared by counting.
std::string MadeWith();

} // namespace OrvUQL::bench
