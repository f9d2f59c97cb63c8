// Texts that are read as a whole: queries, JSON given by option, conformance files.
#pragma once

#include <string>

namespace OrvUQL::Tool {

/// Reads the file ("-": standard input) into `text`, without a byte-order mark at its head. False with the reason in
/// `error`.
bool ReadTextFile(const std::string& path, std::string& text, std::string& error);

} // namespace OrvUQL::Tool
