// The escapes of conformance files.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Decodes UTF-8 with the escapes \\ \n \r \t \uXXXX. False, with the reason, for any other backslash.
bool DecodeEscapes(std::string_view written, OrvStringT& text, std::string& error);

/// The reverse: control characters and unpaired surrogates are escaped, everything else is UTF-8.
std::string EncodeEscapes(const OrvStringT& text);

} // namespace OrvUQL::Tool
