// `uql QUERY`.
#pragma once

#include "Options.h"
#include "Output.h"

namespace OrvUQL::Tool {

/// Evaluates the query, once or for each record of the inputs. Returns the exit status: 0 if everything was evaluated,
/// else 1.
int RunQuery(QueryOptions options, Output& output);

} // namespace OrvUQL::Tool
