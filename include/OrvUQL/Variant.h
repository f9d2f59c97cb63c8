// The seam to OLE Automation: what a value's VARIANT is, and what stands in for it where there is none.
//
// The seam is one operation of every value, IObject::ToVariant, which has its slot on every platform. On Windows the
// library implements it, and the way back, over the system's VARIANT and SAFEARRAY. Elsewhere it answers E_NOTIMPL, and
// nothing else of the library asks for it.
#pragma once

#include "OrvUQL/Export.h"

#include <cstdint>

#if defined(_WIN32)

// Declared, not included: windows.h and its macros are the host's decision.
struct tagVARIANT;
struct tagSAFEARRAY;
using VARIANT = tagVARIANT;

namespace OrvUQL {
/// An HRESULT.
using VariantResult = long;
} // namespace OrvUQL

namespace OrvUtils::VariantUtils {

/// Copies the element at `*index` of a one-dimensional array of elements of the given type into `element`, which need
/// not be initialised and then belongs to the caller (VariantClear). `type` is a VARTYPE without flags; for VT_VARIANT
/// `element` becomes a copy of the element, which has a type of its own.
///
/// Returns S_OK, or a failing HRESULT with an empty `element`: the array has another number of dimensions, or does not
/// hold elements of that type; the index lies outside the bounds (DISP_E_BADINDEX); memory ends. Records cannot be
/// fetched.
ORVUQL_API long SafeArrayGetElementAsVariant(tagSAFEARRAY* array, const long* index, unsigned short type,
                                             VARIANT* element) noexcept;

} // namespace OrvUtils::VariantUtils

#else

namespace OrvUQL {
/// Has no definition on this platform.
struct VARIANT;
/// An HRESULT's 32 bits.
using VariantResult = std::int32_t;
} // namespace OrvUQL

#endif
