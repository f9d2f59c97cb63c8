// The command, however the system calls it.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// Does what the arguments ask for and returns the exit status. `getArguments` is called once; it gives the arguments
/// in UTF-8, without the program's name, and may throw std::bad_alloc, which is reported like any other lack of memory.
int RunCommand(const std::function<std::vector<std::string>()>& getArguments);

} // namespace OrvUQL::Tool
