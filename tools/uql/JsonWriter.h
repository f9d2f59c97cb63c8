// Values as JSON text.
#pragma once

#include <OrvUQL/OrvUQL.h>

namespace OrvUQL::Tool {

/// Appends the value as compact JSON: null, true, 1, 1.5, "s", arrays, JSON objects with their members in input order,
/// a unit as {"value":2.54,"unit":"cm","power":1}. What JSON has no form for (nan, inf, other objects) is null.
/// Characters beyond ASCII are written as they are, as is "/". Nesting takes no stack. May throw std::bad_alloc.
void AppendJson(OrvStringT& out, const IObject& value);

} // namespace OrvUQL::Tool
