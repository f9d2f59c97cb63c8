// `uql repl`, and `uql` at a terminal.
#pragma once

#include "Options.h"
#include "Output.h"

namespace OrvUQL::Tool {

/// Reads queries and commands from standard input and shows what comes of them, until its end. Returns the exit status:
/// 0, or 1 if something failed and it was no terminal.
int RunSession(QueryOptions options, Output& output);

} // namespace OrvUQL::Tool
