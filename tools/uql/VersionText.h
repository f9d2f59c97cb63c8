// What `uql --version` prints.
#pragma once

#include <string>

namespace OrvUQL::Tool {

/// The version, then what this uql was built with, a fact a line; the last line is not ended.
std::string GetVersionText();

} // namespace OrvUQL::Tool
