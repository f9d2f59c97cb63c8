// Trees as queries: the way back from what the parser makes.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <optional>

namespace OrvUQL::Tests {

/// A query that parses to this tree, positions apart, with parentheses only where the grammar asks for them. Nothing if
/// no query does: the tree was made by hand. Recurses as deep as the tree is.
std::optional<OrvStringT> PrintQuery(const IQueryElement& tree);

} // namespace OrvUQL::Tests
