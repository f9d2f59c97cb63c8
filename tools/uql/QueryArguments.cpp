#include "QueryArguments.h"

#include "TextFile.h"

#include <optional>

namespace OrvUQL::Tool {

namespace {

/// Replaces "@FILE" by what the file holds.
bool LoadJsonArgument(std::optional<std::string>& argument, std::string& error) {
    if (!argument || argument->empty() || argument->front() != '@') {
        return true;
    }
    const std::string path = argument->substr(1);
    std::string reason;
    if (!ReadTextFile(path, *argument, reason)) {
        error = path + ": " + reason;
        return false;
    }
    return true;
}

} // namespace

bool LoadArguments(QueryOptions& options, std::string& error) {
    if (options.queryFile) {
        std::string reason;
        if (!ReadTextFile(*options.queryFile, options.query, reason)) {
            error = *options.queryFile + ": " + reason;
            return false;
        }
    }
    return LoadJsonArgument(options.settings.propertySource, error) &&
           LoadJsonArgument(options.settings.variable, error);
}

} // namespace OrvUQL::Tool
