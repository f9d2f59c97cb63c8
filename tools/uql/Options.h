// The command line.
#pragma once

#include "DocumentReader.h"
#include "EngineSettings.h"
#include "ListCommand.h"
#include "Printer.h"
#include "TreePrinter.h"

#include <optional>
#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// What a record of an input is.
enum class RecordFormat {
    Json,  ///< a document
    Csv,   ///< a row behind the header, its fields separated by commas
    Tsv,   ///< likewise, by tabs
    Lines, ///< a line
};

/// What becomes of the run when a record fails.
enum class OnError {
    Fail, ///< it ends
    Skip, ///< it goes on
    Null, ///< it goes on; the record's result is null
};

/// What `uql [OPTIONS] QUERY [INPUT...]` asks for.
struct QueryOptions {
    std::string query;                    ///< UTF-8
    std::optional<std::string> queryFile; ///< instead of the query
    std::vector<std::string> inputs;      ///< files of JSON; none: the query is evaluated once
    EngineSettings settings;              ///< of --props and --var the arguments as given: JSON or @FILE
    OutputFormat format = OutputFormat::Text;
    int jobs = 1;
    RecordFormat recordFormat = RecordFormat::Json;
    OnError onError = OnError::Fail;
    bool isFilter = false;     ///< the records for which the query is true are printed, as they stand
    bool isUnbuffered = false; ///< each result is written at once
    JsonLibrary jsonLibrary = GetFastestJsonLibrary();
};

/// What the command line asks for.
struct Options {
    enum ECommand {
        Query,      ///< evaluate
        Test,       ///< `uql test FILE...`
        Tree,       ///< `uql tree QUERY`
        Explain,    ///< `uql explain QUERY [INPUT...]`
        List,       ///< `uql --list ...`
        Session,    ///< `uql repl`, or `uql` at a terminal
        ShowText,   ///< print `text` to standard output: help or version
        ShowMisuse, ///< print `text` to standard error and end with status 2
    };

    ECommand command = Query;
    QueryOptions query;
    TreeFormat treeFormat = TreeFormat::Text;
    ListOptions list;
    std::vector<std::string> testFiles;
    std::string text;
};

/// Reads the arguments, without the program's name. The first one that is no known option is the query, also if it
/// begins with a minus sign.
Options ParseOptions(std::vector<std::string> arguments);

} // namespace OrvUQL::Tool
