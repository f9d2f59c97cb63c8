// The command lines of the commands that show queries and what can be in them.
#pragma once

#include "Options.h"

#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// The arguments behind `uql tree`.
Options ParseTreeOptions(std::vector<std::string> arguments);
/// The arguments behind `uql explain`.
Options ParseExplainOptions(std::vector<std::string> arguments);
/// The arguments behind `uql --list`.
Options ParseListOptions(std::vector<std::string> arguments);
/// The arguments behind `uql --completions`.
Options ParseCompletionsOptions(std::vector<std::string> arguments);
/// The arguments behind `uql repl`; of `uql` at a terminal there are none.
Options ParseSessionOptions(std::vector<std::string> arguments);

} // namespace OrvUQL::Tool
