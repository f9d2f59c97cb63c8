#include "OptionParser.h"

#include "ComObject.h"
#include "ErrorReport.h"
#include "VersionText.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvUQL::Tool {

namespace {

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

/// An automation object instead of what another option gives. Where there are none the options are known, so that what
/// is wrong can be said, but not told of.
void AddComOption(CLI::App& app, const char* name, std::optional<std::string>& programId, const char* description) {
    CLI::Option* const option = app.add_option(name, programId, description);
    option->type_name("PROGID")->option_text("PROGID");
    if (!HasComObjects()) {
        option->group("");
    }
}

/// An option of two values, a name and what it stands for, that may be given several times.
void AddArgumentOption(CLI::App& app, const char* name, const char* valueName, bool isJson,
                       std::vector<NamedArgument>& arguments, const char* description) {
    const auto take = [&arguments, isJson](const std::vector<std::pair<std::string, std::string>>& given) {
        for (const auto& [argument, value] : given) {
            arguments.push_back({argument, value, isJson});
        }
    };
    app.add_option_function<std::vector<std::pair<std::string, std::string>>>(name, take, description)
        ->allow_extra_args(false)
        ->type_name(std::string("NAME ") + valueName)
        ->option_text(std::string("NAME ") + valueName);
}

/// A bound for evaluations.
void AddLimitOption(CLI::App& app, const char* name, const char* valueName, LimitSettings& limits,
                    std::string (LimitSettings::*read)(std::string_view), const char* description) {
    const auto take = [&limits, read, name](const std::string& text) {
        if (const std::string mistake = (limits.*read)(text); !mistake.empty()) {
            throw CLI::ValidationError(name, mistake);
        }
    };
    app.add_option_function<std::string>(name, take, description)->type_name(valueName)->option_text(valueName);
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
        } else if (option->get_items_expected_max() > 0) {
            place += static_cast<std::size_t>(option->get_type_size_max()) - (hasValue ? 1 : 0);
        }
    }
    return query;
}

bool ReadsStandardInputTwice(const QueryOptions& options) {
    auto count = std::count(options.inputs.begin(), options.inputs.end(), "-");
    count += options.queryFile == "-" ? 1 : 0;
    count += options.settings.propertySource == "@-" ? 1 : 0;
    count += options.settings.variable == "@-" ? 1 : 0;
    return count > 1;
}

} // namespace

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
    if (!settings.arguments.empty() && (settings.variable || settings.variableClass)) {
        return "--arg and --argjson exclude --var and --com-var";
    }
    for (std::size_t place = 0; place < settings.arguments.size(); ++place) {
        const std::string& name = settings.arguments[place].name;
        const auto first = std::find_if(settings.arguments.begin(), settings.arguments.end(),
                                        [&](const NamedArgument& argument) { return argument.name == name; });
        if (first != settings.arguments.begin() + static_cast<std::ptrdiff_t>(place)) {
            return "the argument '" + name + "' is given twice";
        }
    }
    if (!options.inputs.empty() && settings.propertySource) {
        return "--props and INPUT exclude each other";
    }
    if (!options.inputs.empty() && settings.propertySourceClass) {
        return "--com and INPUT exclude each other";
    }
    return std::string();
}

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
    app.set_version_flag("--version", GetVersionText(), "Print the version and what this was built with, and end.");
    app.footer(notes);
    app.allow_windows_style_options(false); // a path or a query may begin with a slash
}

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

void AddQueryOptions(CLI::App& app, QueryOptions& query) {
    app.add_option("INPUT", query.inputs);
    app.add_option("-e", query.query, "Evaluate QUERY.")->type_name("QUERY")->option_text("QUERY");
    app.add_option("-f", query.queryFile, "Evaluate the query in FILE (\"-\": standard input).")
        ->type_name("FILE")
        ->option_text("FILE");
}

bool ParseWithQuery(CLI::App& app, std::vector<std::string> arguments, QueryOptions& query, Options& outcome) {
    const std::size_t place = FindQuery(app, arguments);
    const bool isQueryGiven = place < arguments.size();
    if (isQueryGiven) {
        query.query = arguments[place];
        arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(place));
    }
    if (!Parse(app, std::move(arguments), outcome)) {
        return false;
    }
    const bool isText = app.count("-e") != 0;
    const bool isFile = app.count("-f") != 0;
    std::string mistake;
    if (isText && isFile) {
        mistake = "-e and -f exclude each other";
    } else if (!isQueryGiven && !isText && !isFile) {
        mistake = "a query is missing";
    } else {
        mistake = FindConflict(query);
        if (mistake.empty() && ReadsStandardInputTwice(query)) {
            mistake = "standard input can be read only once";
        }
    }
    if (!mistake.empty()) {
        outcome = Misuse(mistake);
    }
    return mistake.empty();
}

CLI::Option* AddResolutionOption(CLI::App& app, std::optional<double>& resolution) {
    return app
        .add_option("--resolution", resolution,
                    "Pixels in a kilometre, for the unit px. 0, the default, stands\nfor 300 pixels an inch.")
        ->type_name("N")
        ->option_text("N")
        ->check(CLI::NonNegativeNumber);
}

void AddEngineOptions(CLI::App& app, EngineSettings& settings, bool& noUnits) {
    settings.resolution = 0;
    app.add_option("--props", settings.propertySource,
                   "The property source (@name) of a query without INPUT;\n@FILE: the JSON in FILE.")
        ->type_name("JSON")
        ->option_text("JSON");
    app.add_option("--var", settings.variable, "The current variable ($name); @FILE: the JSON in FILE.")
        ->type_name("JSON")
        ->option_text("JSON");
    AddArgumentOption(app, "--arg", "VALUE", false, settings.arguments,
                      "A member of the current variable, a string: $NAME. The option may be\n"
                      "given for several names.");
    AddArgumentOption(app, "--argjson", "JSON", true, settings.arguments, "Likewise, of any type.");
    AddComOption(app, "--com", settings.propertySourceClass,
                 "The property source is a new automation object of that class;\nonly properties can be read.");
    AddComOption(app, "--com-var", settings.variableClass,
                 "The current variable is a new automation object; each thread of -j\nhas one of its own.");
    AddResolutionOption(app, settings.resolution);
    app.add_flag("--no-units", noUnits, "Know no units of measure. Without this, lengths are known.");
    app.add_option("--precision", settings.precision,
                   "Decimal places to which values with a unit count as equal;\n0, the default: one whole unit.")
        ->type_name("N")
        ->option_text("N");
    AddLimitOption(
        app, "--max-steps", "N", settings.limits, &LimitSettings::ReadSteps,
        "End an evaluation that takes more steps (operators, calls, items and\nthe like); each record has as many.");
    AddLimitOption(app, "--max-memory", "BYTES", settings.limits, &LimitSettings::ReadMemory,
                   "End an evaluation whose values take more memory; k, M or G may follow\nthe number.");
    AddLimitOption(app, "--timeout", "SECONDS", settings.limits, &LimitSettings::ReadSeconds,
                   "End an evaluation that takes longer. Fractions are allowed.");
}

} // namespace OrvUQL::Tool
