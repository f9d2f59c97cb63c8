// The system's words for what failed.
#pragma once

#include <string>

namespace OrvUQL::Tool {

/// For a code of GetLastError: one line in UTF-8, in the user's language, without the full stop that the system puts
/// behind it. A code that the system has no words for is described by its number.
std::string GetSystemMessage(unsigned long code);

/// For an HRESULT, likewise, and always with its number, by which it can be looked up: "Invalid class string
/// (0x800401F3)".
std::string GetResultMessage(long result);

} // namespace OrvUQL::Tool
