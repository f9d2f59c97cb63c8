#include "SessionCommand.h"

#include "ErrorReport.h"
#include "File.h"
#include "Interrupt.h"
#include "LineEditor.h"
#include "QueryArguments.h"
#include "Session.h"

#include <cstdlib>
#include <optional>
#include <string_view>

namespace OrvUQL::Tool {

namespace {

const char* GetEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

/// As https://no-color.org and the terminal have it.
bool WantsColours() {
    const std::string_view terminal = GetEnvironment("TERM");
    return IsStandardOutputTerminal() && *GetEnvironment("NO_COLOR") == '\0' && terminal != "dumb" && !terminal.empty();
}

/// Where the XDG base directories have it. Empty where no folder is known.
std::string GetHistoryFile() {
    const std::string state = GetEnvironment("XDG_STATE_HOME");
    if (!state.empty() && state[0] == '/') { // others are to be ignored
        return state + "/uql/history";
    }
    const std::string home = GetEnvironment("HOME");
    return home.empty() ? std::string() : home + "/.local/state/uql/history";
}

/// The lines of an entry as one, so that it can be called back and edited: the breaks between them are blanks, but for
/// those inside of a string.
std::string JoinLines(const std::string& entry) {
    std::string joined;
    bool isString = false;
    for (const char c : entry) {
        isString = isString != (c == '\'');
        joined += c == '\n' && !isString ? ' ' : c;
    }
    return joined;
}

class Loop {
public:
    /// With `isInteractive` Ctrl-C ends a query and not the process.
    Loop(Session& owner, LineEditor& lineEditor, Output& results, bool isInteractive)
        : session(owner), editor(lineEditor), output(results), isWatching(isInteractive) {
        if (isWatching) {
            session.SetCancelFlag(InterruptWatch::GetFlag());
        }
    }

    /// False if something failed.
    bool Run() {
        bool isGood = true;
        std::string entry;
        std::string line;
        for (bool isEnd = false; !isEnd;) {
            switch (editor.ReadLine(entry.empty() ? "uql> " : "...> ", entry, line)) {
            case LineEditor::Interrupted:
                entry.clear();
                continue;
            case LineEditor::End:
                isEnd = true;
                break;
            case LineEditor::Line:
                entry += line + "\n";
                break;
            }
            if (!isEnd && Session::NeedsMore(entry)) {
                continue;
            }
            if (entry.find_first_not_of(" \t\r\n") != std::string::npos) {
                entry.pop_back();
                editor.AddToHistory(JoinLines(entry));
                const SessionReply reply = Enter(entry);
                output.Write(reply.out);
                output.Flush();
                WriteToStandardError(reply.err);
                isGood = isGood && reply.err.empty();
                isEnd = isEnd || reply.isEnd;
            }
            entry.clear();
        }
        return isGood;
    }

private:
    SessionReply Enter(const std::string& entry) {
        std::optional<InterruptWatch> watch;
        if (isWatching) {
            watch.emplace();
        }
        SessionReply reply = session.Enter(entry);
        if (isWatching && InterruptWatch::IsInterrupted()) {
            reply.out.insert(0, "\n"); // the terminal has shown ^C
        }
        return reply;
    }

    Session& session;
    LineEditor& editor;
    Output& output;
    bool isWatching;
};

} // namespace

int RunSession(QueryOptions options, Output& output) {
    std::string error;
    const bool isTerminal = IsStandardInputTerminal() && IsStandardOutputTerminal();
    Session session(WantsColours());
    if (!LoadArguments(options, error) || !session.Prepare(options.settings, error)) {
        output.WriteError(FormatMessage(error));
        return 1;
    }
    std::unique_ptr<LineEditor> editor;
    if (isTerminal) {
        const auto complete = [&](std::string_view entry, std::size_t cursor) {
            return session.Complete(entry, cursor);
        };
        editor = LineEditor::MakeForTerminal(complete, GetHistoryFile());
        output.Write("uql " ORVUQL_VERSION ". A query, or :help; Ctrl-D ends.\n");
        output.Flush();
    }
    if (!editor) {
        editor = LineEditor::MakePlain(isTerminal);
    }
    const bool isGood = Loop(session, *editor, output, isTerminal).Run();
    output.Flush();
    return isGood || isTerminal ? 0 : 1;
}

} // namespace OrvUQL::Tool
