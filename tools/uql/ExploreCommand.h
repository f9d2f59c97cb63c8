// `uql tree` and `uql explain`.
#pragma once

#include "Options.h"
#include "Output.h"

namespace OrvUQL::Tool {

/// Prints the elements of the query. Returns the exit status: 0, or 1 if it cannot be parsed.
int RunTree(QueryOptions options, TreeFormat format, Output& output);

/// Evaluates the query, once or for each record of the inputs, and prints what came of each element. Returns the exit
/// status: 0 if everything was evaluated, else 1.
int RunExplain(QueryOptions options, TreeFormat format, Output& output);

} // namespace OrvUQL::Tool
