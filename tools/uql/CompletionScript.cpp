#include "CompletionScript.h"

#include "NameLists.h"
#include "Options.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

namespace {

struct OptionText {
    std::vector<std::string> names; ///< "-h", "--help"
    std::string argument;           ///< "FORMAT"; empty: it takes none
    std::string description;        ///< the first line of it
};

struct CommandText {
    std::string name; ///< empty: that of `uql QUERY`
    std::string description;
    std::vector<OptionText> options;
};

struct Choices {
    const char* option;
    const char* words; ///< what it takes, separated by blanks; empty: any file
};

/// What is not in the help in a form that could be read there.
constexpr Choices choices[] = {
    {"-o", "text typed json"},          {"--format", "text json dot"},
    {"--on-error", "fail skip null"},   {"--json-reader", "nlohmann simdjson"},
    {"--completions", "bash fish zsh"}, {"-f", ""},
};

constexpr const char* listed = "methods functions units";

const Choices* FindChoices(const OptionText& option) {
    for (const Choices& entry : choices) {
        if (std::find(option.names.begin(), option.names.end(), entry.option) != option.names.end()) {
            return &entry;
        }
    }
    return nullptr;
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

/// "  -h,--help       Print this text and end." The description of a long option stands in the next line.
OptionText ReadOption(const std::string& line, const std::string& next) {
    OptionText option;
    std::string rest = line.substr(2);
    const std::size_t blank = std::min(rest.find(' '), rest.size());
    option.names = Split(rest.substr(0, blank), ',');
    rest.erase(0, blank);
    while (rest.size() > 1 && rest[0] == ' ' && rest[1] >= 'A' && rest[1] <= 'Z') {
        const std::size_t end = std::min(rest.find(' ', 1), rest.size());
        const std::string word = rest.substr(1, end - 1);
        const bool isArgument = std::all_of(word.begin(), word.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
        if (!isArgument) {
            break;
        }
        option.argument += (option.argument.empty() ? "" : " ") + word;
        rest.erase(0, end);
    }
    if (rest.find_first_not_of(' ') == std::string::npos) {
        rest = next;
    }
    option.description = rest.substr(std::min(rest.find_first_not_of(' '), rest.size()));
    return option;
}

CommandText ReadCommand(const std::string& name, const std::string& description) {
    CommandText command{name, description, {}};
    std::vector<std::string> arguments;
    if (!name.empty()) {
        arguments.push_back(name);
    }
    arguments.push_back("--help");
    const std::vector<std::string> lines = Split(ParseOptions(std::move(arguments)).text, '\n');
    for (std::size_t line = 0; line < lines.size(); ++line) {
        if (lines[line].compare(0, 3, "  -") == 0) {
            command.options.push_back(ReadOption(lines[line], line + 1 < lines.size() ? lines[line + 1] : ""));
        }
    }
    return command;
}

std::vector<CommandText> ReadCommands() {
    std::vector<CommandText> commands;
    commands.push_back(ReadCommand("", "Evaluate a query."));
    commands.push_back(ReadCommand("explain", "Show what came of each element of a query."));
    commands.push_back(ReadCommand("repl", "Start a session."));
    commands.push_back(ReadCommand("test", "Run conformance files."));
    commands.push_back(ReadCommand("tree", "Show the elements of a query."));
    commands.push_back(ReadCommand("--list", "Tell what names there are."));
    commands.push_back(ReadCommand("--completions", "Print a script for a shell."));
    return commands;
}

std::string JoinNames(const CommandText& command) {
    std::string names;
    for (const OptionText& option : command.options) {
        for (const std::string& name : option.names) {
            names += (names.empty() ? "" : " ") + name;
        }
    }
    return names;
}

std::string JoinCommands(const std::vector<CommandText>& commands) {
    std::string names;
    for (const CommandText& command : commands) {
        if (!command.name.empty()) {
            names += (names.empty() ? "" : " ") + command.name;
        }
    }
    return names;
}

std::string JoinTypes() {
    std::string names;
    for (const Ref<IObject>& sample : MakeSamples()) {
        names += (names.empty() ? "" : " ") + sample->GetTypeName().ToUtf8();
    }
    return names;
}

std::string MakeBashScript(const std::vector<CommandText>& commands) {
    std::string script = "# Completion of uql's arguments for bash, made by `uql --completions bash`.\n"
                         "_uql() {\n"
                         "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} options\n"
                         "    COMPREPLY=()\n";
    script += "    case ${COMP_WORDS[1]} in\n";
    for (const CommandText& command : commands) {
        if (!command.name.empty()) {
            script += "        " + command.name + ") options='" + JoinNames(command) + "' ;;\n";
        }
    }
    script += "        *) options='" + JoinNames(commands[0]) + "' ;;\n    esac\n";
    script += "    case $previous in\n";
    for (const Choices& entry : choices) {
        if (*entry.words != '\0') {
            script += std::string("        ") + entry.option + ") COMPREPLY=($(compgen -W '" + entry.words +
                      "' -- \"$current\")); return ;;\n";
        }
    }
    script += std::string("        --list) COMPREPLY=($(compgen -W '") + listed +
              "' -- \"$current\")); return ;;\n"
              "        methods) if [[ ${COMP_WORDS[1]} == --list ]]; then\n"
              "            COMPREPLY=($(compgen -W '" +
              JoinTypes() +
              "' -- \"$current\")); return\n"
              "        fi ;;\n"
              "    esac\n"
              "    if ((COMP_CWORD == 1)); then\n"
              "        options+=' " +
              JoinCommands(commands) +
              "'\n"
              "    elif [[ $current != -* ]]; then\n"
              "        return\n" // a file, by the default
              "    fi\n"
              "    COMPREPLY=($(compgen -W \"$options\" -- \"$current\"))\n"
              "}\n"
              "complete -o default -F _uql uql\n";
    return script;
}

/// In single quotes of a shell.
std::string Quote(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

/// The description of an option for _arguments, in which some signs have a meaning.
std::string EscapeForZsh(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') {
            escaped += '\\';
        }
        escaped += c;
    }
    return escaped;
}

std::string MakeZshArguments(const CommandText& command) {
    std::string lines;
    for (const OptionText& option : command.options) {
        std::string argument;
        const Choices* const known = FindChoices(option);
        for (const std::string& word : Split(option.argument, ' ')) {
            argument += ":" + word + ":";
            if (known != nullptr) {
                argument += *known->words == '\0' ? "_files" : "(" + std::string(known->words) + ")";
            }
        }
        for (const std::string& name : option.names) {
            lines += "        " + Quote(name + "[" + EscapeForZsh(option.description) + "]" + argument) + " \\\n";
        }
    }
    return lines;
}

std::string MakeZshScript(const std::vector<CommandText>& commands) {
    std::string script = "#compdef uql\n"
                         "# Completion of uql's arguments for zsh, made by `uql --completions zsh`.\n"
                         "_uql() {\n"
                         "    local -a commands\n"
                         "    commands=(\n";
    for (const CommandText& command : commands) {
        if (!command.name.empty()) {
            script += "        " + Quote(command.name + ":" + command.description) + "\n";
        }
    }
    script += "    )\n"
              "    if ((CURRENT == 2)); then\n"
              "        _describe command commands\n"
              "    fi\n"
              "    case $words[2] in\n";
    for (const CommandText& command : commands) {
        if (command.name.empty()) {
            continue;
        }
        script += "    " + command.name + ")\n        shift words\n        ((CURRENT--))\n        _arguments \\\n" +
                  MakeZshArguments(command);
        if (command.name == "--list") {
            script += std::string("        '1:kind:(") + listed + ")' '2:type:(" + JoinTypes() + ")' ;;\n";
        } else if (command.name == "--completions") {
            script += "        '1:shell:(bash fish zsh)' ;;\n";
        } else {
            script += "        '*:file:_files' ;;\n";
        }
    }
    script += "    *)\n        _arguments \\\n" + MakeZshArguments(commands[0]) +
              "        '*:file:_files' ;;\n"
              "    esac\n"
              "}\n"
              "_uql \"$@\"\n";
    return script;
}

std::string MakeFishOptions(const CommandText& command, const std::string& condition) {
    std::string lines;
    for (const OptionText& option : command.options) {
        lines += "complete -c uql -n " + Quote(condition);
        for (const std::string& name : option.names) {
            lines += name.compare(0, 2, "--") == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
        }
        const Choices* const known = FindChoices(option);
        if (!option.argument.empty()) {
            lines += known != nullptr && *known->words == '\0' ? " -r -F" : " -x";
            lines += known != nullptr && *known->words != '\0' ? " -a " + Quote(known->words) : "";
        }
        lines += " -d " + Quote(option.description) + "\n";
    }
    return lines;
}

std::string MakeFishScript(const std::vector<CommandText>& commands) {
    std::string script = "# Completion of uql's arguments for fish, made by `uql --completions fish`.\n";
    for (const CommandText& command : commands) {
        const std::string condition = command.name.empty()
                                          ? "not contains -- (commandline -opc)[2] " + JoinCommands(commands)
                                          : "contains -- (commandline -opc)[2] " + command.name;
        if (!command.name.empty()) {
            script += "complete -c uql -n 'test (count (commandline -opc)) -eq 1' -a " + Quote(command.name) + " -d " +
                      Quote(command.description) + "\n";
        }
        script += MakeFishOptions(command, condition);
    }
    script += std::string("complete -c uql -n 'contains -- (commandline -opc)[-1] --list' -f -a ") + Quote(listed) +
              "\n"
              "complete -c uql -n 'contains -- (commandline -opc)[-1] --completions' -f -a 'bash fish zsh'\n"
              "complete -c uql -n 'string match -q -- \"--list methods\" (string join \" \" -- "
              "(commandline -opc)[-2..-1])' -f -a " +
              Quote(JoinTypes()) + "\n";
    return script;
}

} // namespace

std::string MakeCompletionScript(const std::string& shell) {
    if (shell == "bash") {
        return MakeBashScript(ReadCommands());
    }
    if (shell == "zsh") {
        return MakeZshScript(ReadCommands());
    }
    return shell == "fish" ? MakeFishScript(ReadCommands()) : std::string();
}

} // namespace OrvUQL::Tool
