// A tree with a host's element around each of its nodes, which the library can only evaluate the ordinary way.
#pragma once

#include <OrvUQL/OrvUQL.h>

namespace OrvUQL::Tests {

/// A copy with a reference for the caller; literals share their values. Null for null, and for elements that are not
/// the parser's.
IQueryElement* Decorate(const IQueryElement* tree);

} // namespace OrvUQL::Tests
