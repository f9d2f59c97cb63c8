// What a SAFEARRAY's elements are.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace OrvUQL::com {

/// Whether the array is one-dimensional and holds elements that can be read as `type` (a VARTYPE without flags). The
/// type stands in the VARIANT, the array knows only sizes and who frees the elements; the two come from outside and may
/// disagree.
bool HoldsElements(const SAFEARRAY& array, VARTYPE type) noexcept;

} // namespace OrvUQL::com
