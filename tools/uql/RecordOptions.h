// The options that say how records are read and what becomes of their results.
#pragma once

#include "Options.h"

#include <CLI/CLI.hpp>

#include <string>

namespace OrvUQL::Tool {

/// --csv and its like. Has to live until the parser has read the arguments.
class FormatOptions {
public:
    /// Adds the options to the parser. `queryOptions` is borrowed.
    FormatOptions(CLI::App& app, QueryOptions& queryOptions);

    /// To be called behind the parser: fills the options. What is wrong with them; empty: nothing.
    std::string Finish();

private:
    QueryOptions& options;
    bool isCsv = false;
    bool isTsv = false;
    bool isLines = false;
};

/// All of them, likewise.
class RecordOptions {
public:
    /// Adds the options to the parser. `queryOptions` is borrowed.
    RecordOptions(CLI::App& app, QueryOptions& queryOptions);

    /// To be called behind the parser: fills the options. What is wrong with them; empty: nothing.
    std::string Finish();

private:
    CLI::App& app;
    QueryOptions& options;
    std::string onError = "fail";
    std::string jsonReader;
    bool keepsGoing = false;
    FormatOptions format;
};

} // namespace OrvUQL::Tool
