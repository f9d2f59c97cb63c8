#pragma once

#include "platform/NumberText.h"

/// The library's own reading of number texts: what ParseDouble and ParseNumber are where the system has no OLE
/// Automation, and what they fall back on, for the same answer, where it has.
namespace OrvUQL::platform {

/// See ParseDouble.
bool ReadDouble(std::wstring_view text, double& value) noexcept;

/// See ParseNumber.
NumberKind ReadNumber(std::wstring_view text, int& intValue, double& doubleValue) noexcept;

} // namespace OrvUQL::platform
