#include "Session.h"

#include "ParsedQuery.h"
#include "QueryScan.h"
#include "SessionCommands.h"

namespace OrvUQL::Tool {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string Trim(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) {
        return std::string();
    }
    return std::string(text.substr(begin, text.find_last_not_of(blanks) + 1 - begin));
}

/// A carriage return alone, as between the lines of a help listing, would let a terminal write over the line.
void EndLines(std::string& text) {
    for (std::size_t place = text.find('\r'); place != std::string::npos; place = text.find('\r', place + 1)) {
        if (place + 1 == text.size() || text[place + 1] != '\n') {
            text[place] = '\n';
        }
    }
}

} // namespace

bool Session::Prepare(const EngineSettings& settings, std::string& error) {
    if (!PrepareEngine(engine, settings, apartment, error)) {
        return false;
    }
    resolution = settings.resolution.value_or(0.0);
    limits = settings.limits;
    lastValue = Ref<LastValue>(new LastValue());
    if (engine.GetVariable() == nullptr) {
        engine.SetVariable(lastValue.Get());
    }
    return true;
}

SessionReply Session::Enter(const std::string& entry) {
    const std::string text = Trim(entry);
    SessionReply reply;
    if (text.empty()) {
        return reply;
    }
    if (text[0] == ':') {
        SessionCommands(*this).Run(text, reply);
    } else {
        Evaluate(text, reply);
    }
    return reply;
}

bool Session::NeedsMore(std::string_view entry) {
    const std::string text = Trim(entry);
    const bool isCommand = !text.empty() && text[0] == ':';
    return !isCommand && QueryScan(entry).IsOpen();
}

Completion Session::Complete(std::string_view entry, std::size_t cursor) {
    const std::size_t first = entry.find_first_not_of(blanks);
    if (first != std::string_view::npos && entry[first] == ':') {
        return SessionCommands(*this).Complete(entry, cursor);
    }
    return CompleteQuery(engine, entry, cursor);
}

bool Session::Parse(const std::string& text, Query& query, SessionReply& reply) {
    query.text = OrvStringT::FromUtf8(text);
    if (query.text.View().find(L'\0') != std::wstring_view::npos) {
        ShowError("the query holds a NUL character", reply);
        return false;
    }
    Ref<IError> error;
    query.tree = Ref<IQueryElement>(engine.ParseQuery(query.text.GetString(), error.Receive()));
    if (!query.tree) {
        ShowFailure(query, error.Get(), reply);
    }
    return static_cast<bool>(query.tree);
}

void Session::SetLimits(const std::atomic<bool>* flag) {
    if (limits.HasAny() || flag != nullptr) {
        EvaluationLimits all = limits.MakeLimits();
        all.cancel = flag;
        engine.SetLimits(all);
    } else {
        engine.ClearLimits();
    }
}

void Session::Evaluate(const std::string& text, SessionReply& reply) {
    Query query;
    if (!Parse(text, query, reply)) {
        return;
    }
    Ref<IError> error;
    const CancelScope scope(*this);
    const Ref<IObject> value(engine.Evaluate(query.tree.Get(), error.Receive()));
    usage = engine.GetUsage();
    if (!value) {
        ShowFailure(query, error.Get(), reply);
        return;
    }
    ShowValue(*value, reply);
    lastValue->Set(value.Get());
}

void Session::ShowValue(const IObject& value, SessionReply& reply) const {
    reply.out += Colour("36", value.GetTypeName().ToUtf8());
    OrvStringT text;
    if (!value.IsNull() && value.ToString(text, nullptr) && !text.IsEmpty()) {
        std::string utf8 = text.ToUtf8();
        EndLines(utf8);
        reply.out += utf8.find('\n') == std::string::npos ? " " : "\n"; // its lines stand below each other
        reply.out += utf8;
    }
    reply.out += '\n';
}

void Session::ShowFailure(const Query& query, IError* error, SessionReply& reply) {
    const QueryFailure failure = DescribeFailure(engine, query.text, query.tree.Get(), error);
    ShowError(failure.message, reply);
    reply.err += failure.caret;
}

void Session::ShowError(const std::string& message, SessionReply& reply) const {
    reply.err += Colour("31", message) + "\n";
}

std::string Session::Colour(const char* code, const std::string& text) const {
    return isColoured ? std::string("\x1b[") + code + "m" + text + "\x1b[0m" : text;
}

} // namespace OrvUQL::Tool
