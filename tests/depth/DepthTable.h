// The outcomes of all constructs as a table in Markdown.
#pragma once

namespace OrvUQL::Tests {

/// Prints it, which takes some minutes. False if one of them came to what it may not come to: the table says so, too.
bool PrintDepthTable();

} // namespace OrvUQL::Tests
