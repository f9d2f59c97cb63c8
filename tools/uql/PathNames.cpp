#include "PathNames.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace OrvUQL::Tool {

std::vector<std::string> FindPaths(const std::string& path) {
    namespace fs = std::filesystem;
    const std::size_t slash = path.find_last_of(fs::path::preferred_separator == '/' ? "/" : "/\\");
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    std::vector<std::string> names;
    std::error_code error;
    const std::string place = folder.empty() ? "." : folder;
    for (fs::directory_iterator entry(fs::path(std::u8string(place.begin(), place.end())), error), end;
         !error && entry != end; entry.increment(error)) {
        const std::u8string file = entry->path().filename().u8string();
        const std::string name = folder + std::string(file.begin(), file.end());
        std::error_code ignored;
        if (name.compare(0, path.size(), path) == 0) {
            names.push_back(name + (entry->is_directory(ignored) ? "/" : ""));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace OrvUQL::Tool
