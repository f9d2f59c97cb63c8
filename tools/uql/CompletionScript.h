// Scripts that teach a shell to complete uql's arguments.
#pragma once

#include <string>

namespace OrvUQL::Tool {

/// The script for "bash", "zsh" or "fish"; empty for any other name. It is made from the help of the commands: what is
/// listed there is what is completed.
std::string MakeCompletionScript(const std::string& shell);

} // namespace OrvUQL::Tool
