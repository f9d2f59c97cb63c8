#include "Options.h"

#include "ComObject.h"
#include "ExploreOptions.h"
#include "File.h"
#include "OptionParser.h"
#include "RecordOptions.h"

#include <algorithm>
#include <map>

namespace OrvUQL::Tool {

namespace {

constexpr const char* queryUsage = "Usage: uql [OPTIONS] QUERY [INPUT...]\n"
                                   "       uql [OPTIONS] -e QUERY [INPUT...]\n"
                                   "       uql [OPTIONS] -f FILE [INPUT...]\n"
                                   "       uql tree [OPTIONS] QUERY\n"
                                   "       uql explain [OPTIONS] QUERY [INPUT...]\n"
                                   "       uql repl [OPTIONS]\n"
                                   "       uql --list methods|functions|units [TYPE]\n"
                                   "       uql test FILE...\n";

constexpr const char* queryDescription =
    "Evaluates a query and prints its value. With INPUT, evaluates it once for each JSON value of the\n"
    "input, which the query reads as @name, and prints one result a line, in input order.\n";

constexpr const char* queryNotes =
    "QUERY is the first argument that is no option, also if it begins with a minus sign. A query that\n"
    "could be taken for a command (`test`) or an option is given with -e. After \"--\" nothing is an option.\n"
    "\n"
    "INPUT is a file of JSON (\"-\": standard input) that holds one document or many, one a line or\n"
    "concatenated. null, true, false, strings and arrays become the language's own values. A number that\n"
    "is written as an integer and fits 32 bits is an int, any other a double; integers beyond 2^53 lose\n"
    "digits. An object has its members as methods: @order.total. A name is looked for as it is written,\n"
    "then without regard to case; a member that is not there is null. Members that the methods of every\n"
    "value hide, or whose names no query can spell, are read with Get('name'); Keys() gives the names.\n"
    "Of members with the same name the last one counts.\n"
    "\n"
    "A byte-order mark at the head of a query file or of JSON is skipped.\n"
    "\n"
    "uql tree shows the elements of a query, uql explain also what came of each. uql repl is a session, as is\n"
    "uql without arguments at a terminal. uql --list tells what methods, functions and units there are. uql\n"
    "test runs conformance files. uql --completions prints a script that teaches a shell to complete all this.\n"
    "Each has a help of its own: `uql test --help`.\n"
    "\n"
    "Exit status: 0 if everything was evaluated, 1 if the query failed to parse or to evaluate or an input\n"
    "could not be read, 2 if the command line is wrong.\n"
    "\n"
    "Examples:\n"
    "  uql \"'abc'.Length() + 2 * 3\"\n"
    "  uql \"-(1) * 2\"\n"
    "  uql \"{1 in} + {1 cm}\"\n"
    "  uql \"@name + ': ' + @price * 1.2\" orders.json";

constexpr const char* testUsage = "Usage: uql test FILE...\n";

constexpr const char* testDescription =
    "Runs conformance files (\"-\": standard input): queries, each followed by what it is expected to give.\n"
    "Prints each failure with file, line, query, what was expected and what came, and last a line\n"
    "`N passed, N failed`.\n";

constexpr const char* testNotes =
    "A conformance file is UTF-8 text, read line by line:\n"
    "  # comment; blank lines are ignored\n"
    "  set units 0                 know lengths, with that resolution; `set units off`: none (default)\n"
    "  set precision 3             decimal places to which values with a unit count as equal (default 0)\n"
    "  set props {\"a\": 1}          the property source, as JSON; `set props off`: none (default)\n"
    "  set var {\"b\": 2}            the current variable, likewise\n"
    "  set global off              no global functions; `set global on` (default)\n"
    "  ? 'abc'.Length()            a query, to the end of the line\n"
    "  = int 3                     expected: the value's type, a blank, its text\n"
    "  ?e 'a\\nb'.Length()          a query with the escapes \\\\ \\n \\r \\t \\uXXXX\n"
    "  = int 3\n"
    "  ? sin(1)\n"
    "  ~ double 0.8414709848078965 expected: the type, and a value within 1e-12 relative\n"
    "                              (`~ double V TOL`: within TOL relative)\n"
    "  ? 1 / 0\n"
    "  ! Division By Zero          expected: no value, and this message; a lone ! no message either\n"
    "A setting holds until it is changed or the file ends. Texts and messages have the escapes of ?e. Each\n"
    "query has one expectation; it is evaluated on a fresh engine, and then twice more on another. A file\n"
    "that is not like this is an error, and none of its queries are evaluated.\n"
    "\n"
    "Exit status: 0 if every file could be read, something ran and nothing failed, 2 if the command line\n"
    "is wrong, else 1.";

Options ParseQueryOptions(std::vector<std::string> arguments) {
    CLI::App app(queryDescription);
    AddHelp(app, queryUsage, queryNotes);
    Options options;
    std::string format = "text";
    bool noUnits = false;
    AddQueryOptions(app, options.query);
    AddEngineOptions(app, options.query.settings, noUnits);
    app.add_option("-o", format,
                   "Print results as text (the value's text), typed (its type, a tab,\n"
                   "its text) or json (what JSON has no form for is null; a unit is\n"
                   "{\"value\":2.54,\"unit\":\"cm\",\"power\":1}). The default is text. In text\n"
                   "and typed, line breaks in a value are printed as they are.")
        ->type_name("FORMAT")
        ->option_text("FORMAT")
        ->check(CLI::IsMember({"text", "typed", "json"}));
    RecordOptions records(app, options.query);

    Options outcome;
    if (!ParseWithQuery(app, std::move(arguments), options.query, outcome)) {
        return outcome;
    }
    if (const std::string mistake = records.Finish(); !mistake.empty()) {
        return Misuse(mistake);
    }
    if (noUnits) {
        options.query.settings.resolution.reset();
    }
    static const std::map<std::string, OutputFormat> formats = {
        {"text", OutputFormat::Text}, {"typed", OutputFormat::Typed}, {"json", OutputFormat::Json}};
    options.query.format = formats.at(format);
    return options;
}

Options ParseTestOptions(std::vector<std::string> arguments) {
    CLI::App app(testDescription);
    AddHelp(app, testUsage, testNotes);
    Options options;
    options.command = Options::Test;
    app.add_option("FILE", options.testFiles);
    Options outcome;
    if (!Parse(app, std::move(arguments), outcome)) {
        return outcome;
    }
    if (options.testFiles.empty()) {
        return Misuse("test: a file is missing");
    }
    return options;
}

} // namespace

Options ParseOptions(std::vector<std::string> arguments) {
    if (arguments.empty() && IsStandardInputTerminal() && IsStandardOutputTerminal()) {
        return ParseSessionOptions({});
    }
    if (arguments.empty()) {
        Options options;
        options.command = Options::ShowMisuse;
        options.text = std::string(queryUsage) + "Try `uql --help`.\n";
        return options;
    }
    using Parser = Options (*)(std::vector<std::string>);
    static const std::map<std::string, Parser> commands = {{"--completions", ParseCompletionsOptions},
                                                           {"--list", ParseListOptions},
                                                           {"explain", ParseExplainOptions},
                                                           {"repl", ParseSessionOptions},
                                                           {"test", ParseTestOptions},
                                                           {"tree", ParseTreeOptions}};
    const auto command = commands.find(arguments[0]);
    if (command == commands.end()) {
        return ParseQueryOptions(std::move(arguments));
    }
    arguments.erase(arguments.begin());
    return command->second(std::move(arguments));
}

} // namespace OrvUQL::Tool
