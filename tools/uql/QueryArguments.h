// What arguments of the command line name but do not hold.
#pragma once

#include "Options.h"

#include <string>

namespace OrvUQL::Tool {

/// Reads everything but the inputs that the options name: the query of -f, and JSON given as @FILE. False with the
/// reason in `error`.
bool LoadArguments(QueryOptions& options, std::string& error);

} // namespace OrvUQL::Tool
