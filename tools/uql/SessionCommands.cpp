#include "SessionCommands.h"

#include "ErrorReport.h"
#include "Explanation.h"
#include "JsonReader.h"
#include "NameLists.h"
#include "NearestName.h"
#include "PathNames.h"
#include "RecordInput.h"
#include "TextFile.h"
#include "TreePrinter.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <system_error>

namespace OrvUQL::Tool {

namespace {

constexpr std::string_view blanks = " \t\r\n";

void CutBlanks(std::string& text) {
    text.erase(0, std::min(text.find_first_not_of(blanks), text.size()));
    text.erase(text.find_last_not_of(blanks) + 1);
}

/// The first word of the text, which is left with the rest.
std::string TakeWord(std::string& text) {
    const std::string word = text.substr(0, text.find_first_of(blanks));
    text.erase(0, word.size());
    CutBlanks(text);
    return word;
}

bool ReadNumber(const std::string& text, int& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool EqualsNoCase(const OrvStringT& a, const OrvStringT& b) { return a.CompareNoCase(b) == 0; }

std::string FormatNumber(double number) { return OrvUtils::String::ToStringW(number).ToUtf8(); }
std::string FormatNumber(std::uint64_t number) { return std::to_string(number); }

/// "12.3 µs", with a unit that suits.
std::string FormatSeconds(double seconds) {
    const char* unit = "s";
    for (const char* const smaller : {"ms", "µs", "ns"}) {
        if (seconds >= 1.0) {
            break;
        }
        seconds *= 1000.0;
        unit = smaller;
    }
    char text[64];
    std::snprintf(text, sizeof text, "%.3g %s", seconds, unit);
    return text;
}

} // namespace

const std::vector<SessionCommands::Command>& SessionCommands::GetCommands() {
    static const std::vector<Command> commands = {
        {"complete", Query, "TEXT", "What Tab offers behind TEXT.", &SessionCommands::CompleteText},
        {"explain", Query, "QUERY", "What came of each element of the query.", &SessionCommands::Explain},
        {"help", Names, "[TYPE|METHOD]", "This list; the methods of a type; what has a method of that name.",
         &SessionCommands::Help},
        {"limits", Nothing, "[WHAT N|off]",
         "Shows or sets what an evaluation may take: steps, memory (bytes; k, M, G), time\n(seconds).",
         &SessionCommands::Limits},
        {"load", File, "FILE [N]", "Reads a record of JSON, the first or the Nth, for names with @.",
         &SessionCommands::Load},
        {"precision", Nothing, "[N]", "Decimal places to which values with a unit count as equal.",
         &SessionCommands::Precision},
        {"props", Nothing, "[JSON|off]", "Shows or sets the property source, which names with @ read.",
         &SessionCommands::Props},
        {"quit", Nothing, "", "Ends the session, as Ctrl-D does.", &SessionCommands::Quit},
        {"time", Query, "QUERY", "How long the query takes to parse and to evaluate.", &SessionCommands::Time},
        {"tree", Query, "QUERY", "The elements of the query.", &SessionCommands::Tree},
        {"units", Nothing, "", "The units that there are, with their sizes.", &SessionCommands::Units},
        {"var", Nothing, "[JSON|off]",
         "Shows or sets the current variable, which names with $ read. Off, it has\n"
         "$last, the value before.",
         &SessionCommands::Var},
    };
    return commands;
}

void SessionCommands::Run(const std::string& entry, SessionReply& reply) {
    std::string argument = entry.substr(1);
    CutBlanks(argument);
    const std::string name = TakeWord(argument);
    std::vector<OrvStringT> names;
    for (const Command& command : GetCommands()) {
        if (name == command.name) {
            if (command.takes == Query && argument.empty()) {
                session.ShowError(std::string(":") + command.name + " " + command.usage, reply);
            } else {
                (this->*command.handler)(argument, reply);
            }
            return;
        }
        names.push_back(OrvStringT::FromUtf8(command.name));
    }
    session.ShowError("there is no command ':" + name + "'; see :help", reply);
    if (const OrvStringT* const nearest = FindNearestName(OrvStringT::FromUtf8(name), names)) {
        reply.err += FormatSuggestion(OrvStringT(L":") + *nearest);
    }
}

Completion SessionCommands::Complete(std::string_view entry, std::size_t cursor) {
    cursor = std::min(cursor, entry.size());
    const std::size_t nameBegin = entry.find(':') + 1;
    const std::size_t nameEnd = std::min(entry.find_first_of(blanks, nameBegin), entry.size());
    if (cursor <= nameEnd) {
        std::vector<std::string> names;
        for (const Command& command : GetCommands()) {
            names.push_back(command.name);
        }
        return cursor < nameBegin ? Completion{cursor, {}} : SelectNames(entry, nameBegin, cursor, names);
    }
    const std::string_view name = entry.substr(nameBegin, nameEnd - nameBegin);
    const std::size_t begin = std::min(entry.find_first_not_of(blanks, nameEnd), cursor);
    for (const Command& command : GetCommands()) {
        if (name != command.name) {
            continue;
        }
        switch (command.takes) {
        case Nothing:
            break;
        case Names:
            return SelectNames(entry, begin, cursor, GetHelpNames());
        case File:
            return {begin, FindPaths(std::string(entry.substr(begin, cursor - begin)))};
        case Query: {
            Completion completion = CompleteQuery(session.engine, entry.substr(nameEnd), cursor - nameEnd);
            completion.begin += nameEnd;
            return completion;
        }
        }
    }
    return {cursor, {}};
}

std::vector<std::string> SessionCommands::GetHelpNames() {
    std::vector<std::string> names;
    for (const Ref<IObject>& sample : MakeSamples()) {
        names.push_back(sample->GetTypeName().ToUtf8());
    }
    for (const Ref<IObject>& sample : MakeSamples()) {
        for (const MethodName& method : ReadMethods(*sample)) {
            const bool isNamed = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
                return EqualsNoCase(OrvStringT::FromUtf8(name), method.name);
            });
            if (!isNamed) {
                names.push_back(method.name.ToUtf8());
            }
        }
    }
    return names;
}

void SessionCommands::ListCommands(SessionReply& reply) {
    std::size_t width = 0;
    for (const Command& command : GetCommands()) {
        width = std::max(width, std::string(command.name).size() + 2 + std::string(command.usage).size());
    }
    for (const Command& command : GetCommands()) {
        std::string line = std::string(":") + command.name;
        line += *command.usage == '\0' ? "" : std::string(" ") + command.usage;
        line.append(width + 2 - line.size(), ' ');
        for (const char c : std::string(command.description)) {
            line += c;
            if (c == '\n') {
                line.append(width + 2, ' ');
            }
        }
        reply.out += line + "\n";
    }
    reply.out += "Everything else is a query. 'x'.help() lists the methods of a value.\n";
}

void SessionCommands::Help(const std::string& argument, SessionReply& reply) {
    if (argument.empty()) {
        ListCommands(reply);
        return;
    }
    const OrvStringT wanted = OrvStringT::FromUtf8(argument);
    std::string methods;
    std::string owners;
    for (const Ref<IObject>& sample : MakeSamples()) {
        const bool isType = EqualsNoCase(sample->GetTypeName(), wanted);
        for (const MethodName& method : ReadMethods(*sample)) {
            if (isType) {
                methods += method.line.ToUtf8() + "\n";
            } else if (EqualsNoCase(method.name, wanted)) {
                owners += method.line.ToUtf8() + "\n";
            }
        }
    }
    if (!methods.empty() || !owners.empty()) {
        reply.out += methods.empty() ? owners : methods; // some types have the name of the function that gives them
        return;
    }
    session.ShowError("there is no type and no method '" + argument + "'", reply);
    std::vector<OrvStringT> names;
    for (const std::string& name : GetHelpNames()) {
        names.push_back(OrvStringT::FromUtf8(name));
    }
    if (const OrvStringT* const nearest = FindNearestName(wanted, names)) {
        reply.err += FormatSuggestion(*nearest);
    }
}

void SessionCommands::ShowLimits(SessionReply& reply) const {
    const auto tell = [](const auto& limit, const char* unit) {
        return limit ? FormatNumber(*limit) + unit : std::string("off");
    };
    const LimitSettings& limits = session.limits;
    reply.out += "steps   " + tell(limits.steps, "") + "\n";
    reply.out += "memory  " + tell(limits.memory, " bytes") + "\n";
    reply.out += "time    " + tell(limits.seconds, " s") + "\n";
    if (session.usage.steps != 0) {
        reply.out += "The last query took " + std::to_string(session.usage.steps) + " steps and at most " +
                     std::to_string(session.usage.peakMemory) + " bytes.\n";
    }
}

void SessionCommands::Limits(const std::string& argument, SessionReply& reply) {
    LimitSettings& limits = session.limits;
    std::string value = argument;
    const std::string name = TakeWord(value);
    const bool isOff = value == "off";
    std::string mistake;
    if (argument.empty()) {
        ShowLimits(reply);
    } else if (argument == "off") {
        limits = LimitSettings();
    } else if (name == "steps") {
        isOff ? limits.steps.reset() : void(mistake = limits.ReadSteps(value));
    } else if (name == "memory") {
        isOff ? limits.memory.reset() : void(mistake = limits.ReadMemory(value));
    } else if (name == "time") {
        isOff ? limits.seconds.reset() : void(mistake = limits.ReadSeconds(value));
    } else {
        mistake = ":limits [steps|memory|time N|off]";
    }
    if (!mistake.empty()) {
        session.ShowError(mistake, reply);
    }
    session.SetLimits(nullptr);
}

void SessionCommands::Load(const std::string& argument, SessionReply& reply) {
    std::string path = argument;
    int wanted = 1;
    const std::size_t blank = argument.find_last_of(blanks);
    if (blank != std::string::npos && ReadNumber(argument.substr(blank + 1), wanted)) {
        path = argument.substr(0, blank);
        CutBlanks(path);
    }
    if (path.empty() || wanted < 1) {
        session.ShowError(":load FILE [N]", reply);
        return;
    }
    std::string error;
    const std::unique_ptr<RecordSource> source = MakeOpener(RecordFormat::Json)(path, error);
    SourceRecord record;
    for (int number = 0; error.empty() && number < wanted; ++number) {
        switch (source->Next(record, true, error)) {
        case RecordSource::Record:
        case RecordSource::WouldWait:
            break;
        case RecordSource::End:
            error = "there is no record " + std::to_string(wanted);
            break;
        case RecordSource::Failed:
            break;
        }
        if (session.IsCancelled()) {
            error = "interrupted";
        }
    }
    Ref<IObject> value;
    if (error.empty()) {
        JsonError jsonError;
        value = JsonReader().Read(record.text, jsonError);
        if (!value) {
            const JsonPlace place = FindJsonError(jsonError, record.text, {record.line, record.column});
            error = "line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ": " +
                    jsonError.message;
        }
    }
    if (!value) {
        session.ShowError(path + ": " + error, reply);
        return;
    }
    session.engine.SetPropertySource(value.Get());
    session.ShowValue(*value, reply);
}

/// "off" or JSON. False if it is neither, which has then been told.
bool SessionCommands::ReadJson(const std::string& argument, Ref<IObject>& value, SessionReply& reply) {
    if (argument == "off") {
        return true;
    }
    std::string text = argument;
    std::string error;
    if (argument[0] == '@' && !ReadTextFile(argument.substr(1), text, error)) {
        session.ShowError(argument.substr(1) + ": " + error, reply);
        return false;
    }
    JsonError jsonError;
    value = JsonReader().Read(text, jsonError);
    if (!value) {
        session.ShowError(DescribeJsonError(jsonError, text), reply);
    }
    return static_cast<bool>(value);
}

void SessionCommands::Props(const std::string& argument, SessionReply& reply) {
    Ref<IObject> value;
    if (!argument.empty()) {
        if (ReadJson(argument, value, reply)) {
            session.engine.SetPropertySource(value.Get());
        }
    } else if (const IObject* const source = session.engine.GetPropertySource()) {
        session.ShowValue(*source, reply);
    } else {
        reply.out += "off\n";
    }
}

void SessionCommands::Var(const std::string& argument, SessionReply& reply) {
    IObject* const last = session.lastValue.Get();
    Ref<IObject> value;
    if (!argument.empty()) {
        if (ReadJson(argument, value, reply)) {
            session.engine.SetVariable(value ? value.Get() : last);
        }
    } else if (session.engine.GetVariable() == last) {
        reply.out += "off: $last is the value before\n";
    } else {
        session.ShowValue(*session.engine.GetVariable(), reply);
    }
}

void SessionCommands::Units(const std::string&, SessionReply& reply) {
    for (const UnitName& unit : ReadUnits(session.resolution)) {
        const Ref<IUnitDefinition> known(session.engine.FindUnit(unit.name.GetString()));
        if (known) {
            const std::string name = unit.name.ToUtf8();
            reply.out += name + std::string(name.size() < 4 ? 4 - name.size() : 1, ' ');
            reply.out += DescribeSize(unit) + "\n";
        }
    }
}

void SessionCommands::Precision(const std::string& argument, SessionReply& reply) {
    int precision = 0;
    if (argument.empty()) {
        reply.out += std::to_string(session.engine.GetUnitPrecision()) + "\n";
    } else if (ReadNumber(argument, precision)) {
        session.engine.SetUnitPrecision(precision);
    } else {
        session.ShowError(":precision [N]", reply);
    }
}

void SessionCommands::Tree(const std::string& argument, SessionReply& reply) {
    Session::Query query;
    if (session.Parse(argument, query, reply)) {
        AppendTree(reply.out, *query.tree, TreeFormat::Text);
    }
}

void SessionCommands::Explain(const std::string& argument, SessionReply& reply) {
    Session::Query query;
    if (!session.Parse(argument, query, reply)) {
        return;
    }
    Explanation explanation(query.tree.Get());
    Ref<IError> error;
    const Session::CancelScope scope(session);
    const Ref<IObject> value(explanation.Evaluate(session.engine, error.Receive()));
    if (!value) {
        session.ShowFailure(query, error.Get(), reply);
    }
    AppendTree(reply.out, *query.tree, TreeFormat::Text, &explanation);
}

/// Parsing is timed once. Evaluation is repeated for a while, or once where that takes longer. It is not told to look
/// at the flag, which would make it slower: that is done in between.
void SessionCommands::Time(const std::string& argument, SessionReply& reply) {
    using Clock = std::chrono::steady_clock;
    const auto secondsSince = [](Clock::time_point begin) {
        return std::chrono::duration<double>(Clock::now() - begin).count();
    };
    constexpr double enough = 0.2;
    Session::Query query;
    const Clock::time_point parseBegin = Clock::now();
    if (!session.Parse(argument, query, reply)) {
        return;
    }
    const double parsing = secondsSince(parseBegin);
    const Clock::time_point begin = Clock::now();
    int count = 0;
    double evaluation = 0.0;
    while (evaluation < enough) {
        if (session.IsCancelled()) {
            session.ShowError("interrupted", reply);
            return;
        }
        Ref<IError> error;
        const Ref<IObject> value(session.engine.Evaluate(query.tree.Get(), error.Receive()));
        if (!value) {
            session.ShowFailure(query, error.Get(), reply);
            return;
        }
        ++count;
        evaluation = secondsSince(begin);
    }
    reply.out += "parsed in " + FormatSeconds(parsing) + ", evaluated in " + FormatSeconds(evaluation / count) +
                 (count == 1 ? " (once)" : " (mean of " + std::to_string(count) + ")") + "\n";
}

void SessionCommands::CompleteText(const std::string& argument, SessionReply& reply) {
    for (const std::string& name : session.Complete(argument, argument.size()).names) {
        reply.out += name + "\n";
    }
}

void SessionCommands::Quit(const std::string&, SessionReply& reply) { reply.isEnd = true; }

} // namespace OrvUQL::Tool
