// Trees as short texts, for tables of what a query parses to.
#pragma once

#include "support/Print.h"

#include <string>

namespace OrvUQL::Tests {

enum class DumpPositions { No, Yes };

/// Writes a tree in one line:
///
///     1  1.5d  true  null  'it's'  {2.54 cm}      literals; of other values <type>
///     name  name(a,_)  .name  @name               names, "_" for an omitted argument; without arguments no parentheses
///     x.name(a)                                   a member of x; `x->name`, should it not have the member flag
///     x[a]                                        a group
///     (- a)  (+ a b)  (? a b c)                   operators
///     <a,_>                                       an array element; "_" for an empty item
///     ~2                                          any other element, with its type code
///
/// With positions each node has its own behind "@": "(+@2 1@0 2@4)", "x@0.y@2", "x@0[@1a@2]".
std::string Dump(const IQueryElement* tree, DumpPositions positions = DumpPositions::No);

} // namespace OrvUQL::Tests
