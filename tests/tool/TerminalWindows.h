// What only a terminal of Windows is asked for.
#pragma once

#include "tool/RunUql.h"

#include <string>
#include <vector>

namespace OrvUQL::Tests {

/// As RunUqlAtTerminal, but nothing is typed: what Ctrl-C does happens as soon as the terminal shows `text`.
UqlRun InterruptUqlAtTerminal(const std::vector<std::string>& arguments, const std::string& text);

} // namespace OrvUQL::Tests
