#include "Options.h"

#include "ComObject.h"
#include "ErrorReport.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>
#include <memory>

namespace OrvUQL::Tool {

namespace {

constexpr const char* queryUsage = "Usage: uql [OPTIONS] QUERY [INPUT...]\n"
                                   "       uql [OPTIONS] -e QUERY [INPUT...]\n"
                                   "       uql [OPTIONS] -f FILE [INPUT...]\n"
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
    "uql test runs conformance files: see `uql test --help`.\n"
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

class HelpFormatter : public CLI::Formatter {
public:
    explicit HelpFormatter(const char* usageLines) : usage(usageLines) { column_width(18); }
    std::string make_usage(const CLI::App*, std::string) const override { return usage; }
    std::string make_description(const CLI::App* app) const override { return app->get_description(); }
    std::string make_positionals(const CLI::App*) const override { return std::string(); }
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
        return make_usage(app, name) + "\n" + make_description(app) + make_groups(app, mode) + "\n" + make_footer(app);
    }

private:
    const char* usage;
};

Options Misuse(const std::string& message) {
    Options options;
    options.command = Options::ShowMisuse;
    options.text = FormatMessage(message) + "Try `uql --help`.\n";
    return options;
}

Options Show(std::string text) {
    Options options;
    options.command = Options::ShowText;
    options.text = std::move(text);
    return options;
}

void AddHelp(CLI::App& app, const char* usage, const char* notes) {
    app.formatter(std::make_shared<HelpFormatter>(usage));
    app.set_help_flag("-h,--help", "Print this text and end.");
    app.set_version_flag("--version", "uql " ORVUQL_VERSION, "Print the version and end.");
    app.footer(notes);
    app.allow_windows_style_options(false); // a path or a query may begin with a slash
}

/// Lets the parser read the arguments. What it has to say is in `outcome` if it returns false.
bool Parse(CLI::App& app, std::vector<std::string> arguments, Options& outcome) {
    std::reverse(arguments.begin(), arguments.end()); // it takes them from the back
    try {
        app.parse(std::move(arguments));
        return true;
    } catch (const CLI::CallForHelp&) {
        outcome = Show(app.help());
    } catch (const CLI::CallForVersion& version) {
        outcome = Show(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        outcome = Misuse(error.what());
    }
    return false;
}

/// The option that an argument names, or null. `hasValue` says whether the argument holds the option's value as well.
const CLI::Option* FindOption(const CLI::App& app, const std::string& argument, bool& hasValue) {
    hasValue = false;
    if (argument.size() < 2 || argument[0] != '-') {
        return nullptr;
    }
    if (argument[1] == '-') {
        const std::size_t sign = argument.find('=');
        hasValue = sign != std::string::npos;
        return app.get_option_no_throw(argument.substr(0, sign));
    }
    // A short option and its value are two arguments, so that `-floor(@x)` is a query; only -j4 can be nothing else.
    if (argument.compare(0, 2, "-j") == 0 && argument.size() > 2 &&
        argument.find_first_not_of("0123456789", 2) == std::string::npos) {
        hasValue = true;
        return app.get_option_no_throw("-j");
    }
    return app.get_option_no_throw(argument);
}

/// The place of the query among the arguments; their number if there is none.
std::size_t FindQuery(const CLI::App& app, const std::vector<std::string>& arguments) {
    std::size_t query = arguments.size();
    for (std::size_t place = 0; place < arguments.size(); ++place) {
        if (arguments[place] == "--") {
            return std::min(query, place + 1);
        }
        bool hasValue = false;
        const CLI::Option* const option = FindOption(app, arguments[place], hasValue);
        if (option == nullptr) {
            query = std::min(query, place);
        } else if (option->check_name("-e") || option->check_name("-f")) {
            return arguments.size();
        } else if (option->get_items_expected_max() > 0 && !hasValue) {
            ++place;
        }
    }
    return query;
}

/// An automation object instead of what another option gives. Where there are none the options are known, so that what
/// is wrong can be said, but not told of.
void AddComOption(CLI::App& app, const char* name, std::optional<std::string>& programId, const char* description) {
    CLI::Option* const option = app.add_option(name, programId, description);
    option->type_name("PROGID")->option_text("PROGID");
    if (!HasComObjects()) {
        option->group("");
    }
}

/// What is wrong with the use of --props, --var and their like; empty: nothing.
std::string FindConflict(const QueryOptions& options) {
    const EngineSettings& settings = options.settings;
    if (!HasComObjects()) {
        if (settings.propertySourceClass) {
            return "--com needs Windows";
        }
        if (settings.variableClass) {
            return "--com-var needs Windows";
        }
    }
    if (settings.propertySource && settings.propertySourceClass) {
        return "--com and --props exclude each other";
    }
    if (settings.variable && settings.variableClass) {
        return "--com-var and --var exclude each other";
    }
    if (!options.inputs.empty() && settings.propertySource) {
        return "--props and INPUT exclude each other";
    }
    if (!options.inputs.empty() && settings.propertySourceClass) {
        return "--com and INPUT exclude each other";
    }
    return std::string();
}

bool ReadsStandardInputTwice(const QueryOptions& options) {
    auto count = std::count(options.inputs.begin(), options.inputs.end(), "-");
    count += options.queryFile == "-" ? 1 : 0;
    count += options.settings.propertySource == "@-" ? 1 : 0;
    count += options.settings.variable == "@-" ? 1 : 0;
    return count > 1;
}

Options ParseQueryOptions(std::vector<std::string> arguments) {
    CLI::App app(queryDescription);
    AddHelp(app, queryUsage, queryNotes);
    Options options;
    options.query.settings.resolution = 0;
    std::string format = "text";
    bool noUnits = false;
    app.add_option("INPUT", options.query.inputs);
    CLI::Option* const query = app.add_option("-e", options.query.query, "Evaluate QUERY.");
    query->type_name("QUERY")->option_text("QUERY");
    CLI::Option* const file =
        app.add_option("-f", options.query.queryFile, "Evaluate the query in FILE (\"-\": standard input).");
    file->type_name("FILE")->option_text("FILE");
    app.add_option("--props", options.query.settings.propertySource,
                   "The property source (@name) of a query without INPUT;\n@FILE: the JSON in FILE.")
        ->type_name("JSON")
        ->option_text("JSON");
    app.add_option("--var", options.query.settings.variable, "The current variable ($name); @FILE: the JSON in FILE.")
        ->type_name("JSON")
        ->option_text("JSON");
    AddComOption(app, "--com", options.query.settings.propertySourceClass,
                 "The property source is a new automation object of that class;\nonly properties can be read.");
    AddComOption(app, "--com-var", options.query.settings.variableClass,
                 "The current variable is a new automation object; each thread of -j\nhas one of its own.");
    app.add_option("--resolution", options.query.settings.resolution,
                   "Pixels in a kilometre, for the unit px. 0, the default, stands\nfor 300 pixels an inch.")
        ->type_name("N")
        ->option_text("N")
        ->check(CLI::NonNegativeNumber);
    app.add_flag("--no-units", noUnits, "Know no units of measure. Without this, lengths are known.");
    app.add_option("--precision", options.query.settings.precision,
                   "Decimal places to which values with a unit count as equal;\n0, the default: one whole unit.")
        ->type_name("N")
        ->option_text("N");
    app.add_option("-o", format,
                   "Print results as text (the value's text), typed (its type, a tab,\n"
                   "its text) or json (what JSON has no form for is null; a unit is\n"
                   "{\"value\":2.54,\"unit\":\"cm\",\"power\":1}). The default is text. In text\n"
                   "and typed, line breaks in a value are printed as they are.")
        ->type_name("FORMAT")
        ->option_text("FORMAT")
        ->check(CLI::IsMember({"text", "typed", "json"}));
    app.add_option("-j", options.query.jobs, "Evaluate on N threads. Results stay in order. The default is 1.")
        ->type_name("N")
        ->option_text("N")
        ->check(CLI::Range(1, 1024));
    app.add_flag("--keep-going", options.query.keepGoing,
                 "Go on after a record that fails, and with the next INPUT after one\nthat cannot be read to its end.");

    const std::size_t place = FindQuery(app, arguments);
    const bool isQueryGiven = place < arguments.size();
    if (isQueryGiven) {
        options.query.query = arguments[place];
        arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(place));
    }
    Options outcome;
    if (!Parse(app, std::move(arguments), outcome)) {
        return outcome;
    }
    if (query->count() != 0 && file->count() != 0) {
        return Misuse("-e and -f exclude each other");
    }
    if (!isQueryGiven && query->count() == 0 && file->count() == 0) {
        return Misuse("a query is missing");
    }
    if (const std::string conflict = FindConflict(options.query); !conflict.empty()) {
        return Misuse(conflict);
    }
    if (ReadsStandardInputTwice(options.query)) {
        return Misuse("standard input can be read only once");
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
    if (arguments.empty()) {
        Options options;
        options.command = Options::ShowMisuse;
        options.text = std::string(queryUsage) + "Try `uql --help`.\n";
        return options;
    }
    if (arguments[0] == "test") {
        arguments.erase(arguments.begin());
        return ParseTestOptions(std::move(arguments));
    }
    return ParseQueryOptions(std::move(arguments));
}

} // namespace OrvUQL::Tool
