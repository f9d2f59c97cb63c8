// The command line.
#pragma once

#include "EngineSettings.h"
#include "Printer.h"

#include <optional>
#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// What `uql [OPTIONS] QUERY [INPUT...]` asks for.
struct QueryOptions {
    std::string query;                    ///< UTF-8
    std::optional<std::string> queryFile; ///< instead of the query
    std::vector<std::string> inputs;      ///< files of JSON; none: the query is evaluated once
    EngineSettings settings;              ///< of --props and --var the arguments as given: JSON or @FILE
    OutputFormat format = OutputFormat::Text;
    int jobs = 1;
    bool keepGoing = false;
};

/// What the command line asks for.
struct Options {
    enum ECommand {
        Query,      ///< evaluate
        Test,       ///< `uql test FILE...`
        ShowText,   ///< print `text` to standard output: help or version
        ShowMisuse, ///< print `text` to standard error and end with status 2
    };

    ECommand command = Query;
    QueryOptions query;
    std::vector<std::string> testFiles;
    std::string text;
};

/// Reads the arguments, without the program's name. The first one that is no known option is the query, also if it
/// begins with a minus sign.
Options ParseOptions(std::vector<std::string> arguments);

} // namespace OrvUQL::Tool
