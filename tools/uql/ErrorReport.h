// How a query's failure is told: the message, and a caret under the place in the query.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// "uql: MESSAGE\n".
std::string FormatMessage(std::string_view message);

/// The line of the query that holds a position, and a line with a caret under it, both indented by two and ended. Empty
/// if the position is negative. Tabs stand in both lines, so that the caret stands right whatever their width.
std::string FormatCaret(const OrvStringT& query, int position);

/// "  did you mean 'NAME'?\n"; empty for no name.
std::string FormatSuggestion(const OrvStringT& name);

/// The message of a failed parse or evaluation. A failure may come without one: "the query has no value".
std::string GetFailureMessage(IError* error);

} // namespace OrvUQL::Tool
