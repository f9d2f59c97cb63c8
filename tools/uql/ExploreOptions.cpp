#include "ExploreOptions.h"

#include "CompletionScript.h"
#include "OptionParser.h"
#include "RecordOptions.h"

#include <map>

namespace OrvUQL::Tool {

namespace {

constexpr const char* treeUsage = "Usage: uql tree [OPTIONS] QUERY\n";

constexpr const char* treeDescription = "Prints the elements of a query, each with its position in the text, which is\n"
                                        "counted from 0. Nothing is evaluated.\n";

constexpr const char* treeNotes = "Examples:\n"
                                  "  uql tree \"1 + 2 * 3\"\n"
                                  "  uql tree --format dot \"1 + 2 * 3\" | dot -Tsvg > tree.svg";

constexpr const char* explainUsage = "Usage: uql explain [OPTIONS] QUERY [INPUT...]\n";

constexpr const char* explainDescription =
    "Evaluates a query and prints its elements as `uql tree` does, with what came of each: type and value,\n"
    "the error, how many times it was evaluated (with the first three values), or that it was not. With\n"
    "INPUT, once for each of its records, as far as the first that fails.\n";

constexpr const char* explainNotes =
    "An element that fails because one below it does is shown as failed, the one where it began with its\n"
    "error. Exit status: 0 if everything was evaluated, 1 if not, 2 if the command line is wrong.\n"
    "\n"
    "Examples:\n"
    "  uql explain \"iif(1 < 2, 'yes', 1 / 0)\"\n"
    "  uql explain \"@price * 1.2\" orders.json";

constexpr const char* listUsage = "Usage: uql --list methods [TYPE]\n"
                                  "       uql --list functions\n"
                                  "       uql --list units [--resolution N]\n";

constexpr const char* listDescription =
    "Prints the names that there are, one a line: the methods of all types, or of one, as help() gives them;\n"
    "the global functions; the units of length with their sizes in metres. In parentheses stand the types\n"
    "of the arguments, in brackets those that may be left out.\n";

constexpr const char* completionsUsage = "Usage: uql --completions bash|fish|zsh\n";

constexpr const char* completionsDescription =
    "Prints a script that teaches a shell to complete uql's arguments. It is installed with uql; without that,\n"
    "`source <(uql --completions bash)` does it for one session.\n";

constexpr const char* sessionUsage = "Usage: uql\n"
                                     "       uql repl [OPTIONS]\n";

constexpr const char* sessionDescription =
    "Reads queries and shows the type and the text of their values, until the end of input (Ctrl-D). A query\n"
    "may take several lines: it goes on while a bracket or a quote is open. At a terminal lines can be edited,\n"
    "Tab completes names, and history is kept. Lines that begin with a colon are commands: see `:help`.\n";

constexpr const char* sessionNotes =
    "History is kept in $XDG_STATE_HOME/uql/history, or in ~/.local/state/uql/history. There are no colours if\n"
    "the environment variable NO_COLOR is set, or TERM is dumb.";

/// --format; `name` is what it gives.
void AddFormatOption(CLI::App& app, std::string& name) {
    app.add_option("--format", name,
                   "Print the tree as text (a line an element, indented), json (one\n"
                   "object) or dot (for Graphviz). The default is text.")
        ->type_name("FORMAT")
        ->option_text("FORMAT")
        ->check(CLI::IsMember({"text", "json", "dot"}));
}

TreeFormat GetFormat(const std::string& name) {
    static const std::map<std::string, TreeFormat> formats = {
        {"text", TreeFormat::Text}, {"json", TreeFormat::Json}, {"dot", TreeFormat::Dot}};
    return formats.at(name);
}

/// Fills the options. False with something else to do in `outcome`.
bool ParseShown(CLI::App& app, std::vector<std::string> arguments, Options& options, Options& outcome) {
    std::string format = "text";
    bool noUnits = false;
    AddQueryOptions(app, options.query);
    AddFormatOption(app, format);
    AddEngineOptions(app, options.query.settings, noUnits);
    if (!ParseWithQuery(app, std::move(arguments), options.query, outcome)) {
        return false;
    }
    if (noUnits) {
        options.query.settings.resolution.reset();
    }
    options.treeFormat = GetFormat(format);
    return true;
}

} // namespace

Options ParseTreeOptions(std::vector<std::string> arguments) {
    CLI::App app(treeDescription);
    AddHelp(app, treeUsage, treeNotes);
    Options options;
    options.command = Options::Tree;
    Options outcome;
    if (!ParseShown(app, std::move(arguments), options, outcome)) {
        return outcome;
    }
    return options.query.inputs.empty() ? options : Misuse("tree takes no INPUT");
}

Options ParseExplainOptions(std::vector<std::string> arguments) {
    CLI::App app(explainDescription);
    AddHelp(app, explainUsage, explainNotes);
    Options options;
    options.command = Options::Explain;
    FormatOptions format(app, options.query);
    Options outcome;
    if (!ParseShown(app, std::move(arguments), options, outcome)) {
        return outcome;
    }
    const std::string mistake = format.Finish();
    return mistake.empty() ? options : Misuse(mistake);
}

Options ParseListOptions(std::vector<std::string> arguments) {
    CLI::App app(listDescription);
    AddHelp(app, listUsage, "");
    Options options;
    options.command = Options::List;
    std::vector<std::string> words;
    app.add_option("WORD", words);
    CLI::Option* const resolution = AddResolutionOption(app, options.list.resolution);
    Options outcome;
    if (!Parse(app, std::move(arguments), outcome)) {
        return outcome;
    }
    static const std::map<std::string, ListOptions::EKind> kinds = {
        {"methods", ListOptions::Methods}, {"functions", ListOptions::Functions}, {"units", ListOptions::Units}};
    const auto kind = kinds.find(words.empty() ? std::string() : words[0]);
    if (kind == kinds.end()) {
        return Misuse("--list needs one of methods, functions and units");
    }
    options.list.kind = kind->second;
    const std::size_t most = options.list.kind == ListOptions::Methods ? 2 : 1;
    if (words.size() > most || (options.list.kind != ListOptions::Units && resolution->count() != 0)) {
        return Misuse("--list " + words[0] + ": too many arguments");
    }
    if (words.size() == 2) {
        options.list.typeName = words[1];
    }
    return options;
}

Options ParseCompletionsOptions(std::vector<std::string> arguments) {
    CLI::App app(completionsDescription);
    AddHelp(app, completionsUsage, "");
    std::vector<std::string> shells;
    app.add_option("SHELL", shells);
    Options outcome;
    if (!Parse(app, std::move(arguments), outcome)) {
        return outcome;
    }
    const std::string script = shells.size() == 1 ? MakeCompletionScript(shells[0]) : std::string();
    return script.empty() ? Misuse("--completions needs one of bash, fish and zsh") : Show(script);
}

Options ParseSessionOptions(std::vector<std::string> arguments) {
    CLI::App app(sessionDescription);
    AddHelp(app, sessionUsage, sessionNotes);
    Options options;
    options.command = Options::Session;
    bool noUnits = false;
    AddEngineOptions(app, options.query.settings, noUnits);
    Options outcome;
    if (!Parse(app, std::move(arguments), outcome)) {
        return outcome;
    }
    if (const std::string conflict = FindConflict(options.query); !conflict.empty()) {
        return Misuse(conflict);
    }
    if (noUnits) {
        options.query.settings.resolution.reset();
    }
    return options;
}

} // namespace OrvUQL::Tool
