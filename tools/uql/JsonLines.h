// Documents of one line each, of which some are cut off at their lines' ends and take the next ones along.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace OrvUQL::Tool {

/// `text` is what began as one document and goes on over the end of its line, up to where it cannot go on: at the byte
/// `next`, or, if that is nothing, because the input ends.
///
/// Returns the length of the lines, from the first one on, that look like a document each, cut off at the line's end,
/// so that the next document begins behind them; 0 if the text looks like a single document, written on several lines.
/// Lines are told from parts of a document by where they begin, at the line's first byte, and by that they are complete
/// and the place where nothing fits comes right behind them.
std::size_t FindCutOffLines(std::string_view text, std::optional<char> next);

} // namespace OrvUQL::Tool
