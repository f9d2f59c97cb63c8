// UTF-8 at the borders of the program: text as the library has it written as bytes, and bytes that are none.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Appends a text of UTF-16 code units. An unpaired surrogate becomes U+FFFD.
void AppendUtf8(std::string& out, std::wstring_view text);

/// Makes each maximal part of a malformed sequence U+FFFD and returns their number. If that is 0, `repaired` is not
/// touched.
std::size_t RepairUtf8(std::string_view bytes, std::string& repaired);

/// Where a place in a text that RepairUtf8 made was in the text that it was made from.
std::size_t FindUnrepairedPlace(std::string_view bytes, std::size_t repairedPlace);

} // namespace OrvUQL::Tool
