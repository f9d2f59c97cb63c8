// Names that the library has itself: a query that uses one needs no text of its own for it.
#pragma once

#include "OrvUQL/OrvString.h"

#include <string_view>

namespace OrvUQL::detail {

/// The name as a text: a literal if it is spelt like a method or function of the library, or like what an array
/// method's expression reads, such as "$item"; else a copy. May throw std::bad_alloc.
OrvStringT NameText(std::wstring_view name);

} // namespace OrvUQL::detail
