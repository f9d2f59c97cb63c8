#pragma once

#include "platform/RegexSyntax.h"

#include <string_view>

namespace OrvUQL::platform {

class RegexProgram;

/// The compiled expression, with a reference for the caller: one that the calling thread used lately, or a new one.
/// Throws std::regex_error. Whether a pattern compiles depends on the pattern alone, so nobody can tell which it was.
const RegexProgram* GetCachedRegex(std::wstring_view pattern, RegexOptions options);

} // namespace OrvUQL::platform
