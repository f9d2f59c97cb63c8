// Names of files, for somebody who is typing one.
#pragma once

#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// The files and folders whose paths begin like that one, sorted. Those of folders end with a slash. UTF-8.
std::vector<std::string> FindPaths(const std::string& path);

} // namespace OrvUQL::Tool
