// Where the lines of a session come from.
#pragma once

#include "Completion.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

class LineEditor {
public:
    enum EResult {
        Line,        ///< `line` has been read; it has no line feed
        Interrupted, ///< Ctrl-C: what was typed is to be forgotten
        End,         ///< the end of input, such as Ctrl-D
    };

    /// What can stand at the cursor, a place in the entry in bytes.
    using Completer = std::function<Completion(std::string_view entry, std::size_t cursor)>;

    virtual ~LineEditor() = default;

    /// `earlier` are the lines of the same entry so far, each ended: what a name stands for may depend on them.
    virtual EResult ReadLine(const std::string& prompt, const std::string& earlier, std::string& line) = 0;
    /// Remembers an entry, here and in the file.
    virtual void AddToHistory(const std::string& entry) = 0;

    /// The editor for a terminal: with history in that file (empty: none is kept) and with Tab, where this build has a
    /// library for it. Null if the terminal cannot do what that needs.
    static std::unique_ptr<LineEditor> MakeForTerminal(const Completer& completer, const std::string& historyFile);
    /// Lines as they come from standard input. The prompt is shown if `showsPrompt`.
    static std::unique_ptr<LineEditor> MakePlain(bool showsPrompt);

    /// The library that MakeForTerminal uses.
    static std::string GetName();
};

} // namespace OrvUQL::Tool
