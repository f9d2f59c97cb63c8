// `uql test`.
#pragma once

#include "Output.h"

#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// Runs conformance files. Prints each failure and, last, the line "N passed, N failed". Returns the exit status: 0 if
/// every file could be read, something ran and nothing failed, else 1.
int RunConformanceFiles(const std::vector<std::string>& paths, Output& output);

} // namespace OrvUQL::Tool
