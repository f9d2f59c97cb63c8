#include "File.h"
#include "HistoryFile.h"
#include "LineEditor.h"

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <histedit.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace OrvUQL::Tool {

namespace {

volatile std::sig_atomic_t isInterrupted = 0;
volatile std::sig_atomic_t isResized = 0;

/// For the time that a line is read, Ctrl-C is for the line and not for the process. While a query is evaluated it ends
/// the process as ever.
class SignalScope {
public:
    SignalScope() {
        isInterrupted = 0;
        struct sigaction action = {};
        sigemptyset(&action.sa_mask); // and no SA_RESTART: reading ends
        action.sa_handler = [](int) { isInterrupted = 1; };
        ::sigaction(SIGINT, &action, &oldInterrupt);
        action.sa_handler = [](int) { isResized = 1; };
        ::sigaction(SIGWINCH, &action, &oldResize);
    }
    SignalScope(const SignalScope&) = delete;
    SignalScope& operator=(const SignalScope&) = delete;
    ~SignalScope() {
        ::sigaction(SIGINT, &oldInterrupt, nullptr);
        ::sigaction(SIGWINCH, &oldResize, nullptr);
    }

private:
    struct sigaction oldInterrupt = {};
    struct sigaction oldResize = {};
};

void Show(std::string_view text) {
    std::string ignored;
    WriteToStandardOutput(text, ignored);
}

/// The names below the line, in as many columns as there is room for.
void ShowNames(const std::vector<std::string>& names) {
    constexpr std::size_t most = 200;
    std::size_t width = 0;
    for (const std::string& name : names) {
        width = std::max(width, name.size() + 2);
    }
    winsize size = {};
    const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    const std::size_t columns = std::max<std::size_t>(1, (isKnown ? size.ws_col : 80) / width);
    std::string text = "\n";
    const std::size_t count = std::min(names.size(), most);
    for (std::size_t index = 0; index < count; ++index) {
        text += names[index];
        const bool isLast = (index + 1) % columns == 0 || index + 1 == count;
        text += isLast ? "\n" : std::string(width - names[index].size(), ' ');
    }
    if (count < names.size()) {
        text += "... and " + std::to_string(names.size() - count) + " more\n";
    }
    Show(text);
}

class LibeditEditor : public LineEditor {
public:
    LibeditEditor(const Completer& completerOfNames, const std::string& file)
        : completer(completerOfNames), historyFile(file) {
        // What is typed is UTF-8. (Nothing of the library's asks the locale.)
        if (std::setlocale(LC_CTYPE, "") == nullptr || MB_CUR_MAX == 1) {
            std::setlocale(LC_CTYPE, "C.UTF-8");
        }
        editor = ::el_init("uql", stdin, stdout, stderr);
        entries = ::history_init();
        HistEvent event;
        ::history(entries, &event, H_SETSIZE, HistoryFile::mostEntries);
        ::history(entries, &event, H_SETUNIQUE, 1);
        historyFile.Load(entries);
        if (editor == nullptr) {
            return;
        }
        ::el_set(editor, EL_CLIENTDATA, this);
        ::el_set(editor, EL_EDITOR, "emacs");
        ::el_set(editor, EL_HIST, ::history, entries);
        ::el_set(editor, EL_PROMPT, &LibeditEditor::GetPrompt);
        ::el_set(editor, EL_GETCFN, &LibeditEditor::ReadCharacter);
        // (The function without the w copies the names and forgets the copies.)
        ::el_wset(editor, EL_ADDFN, L"uql-complete", L"Complete the name", &LibeditEditor::Complete);
        ::el_set(editor, EL_BIND, "^I", "uql-complete", nullptr);
        ::el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
        ::el_source(editor, nullptr); // the user's own ~/.editrc
    }
    LibeditEditor(const LibeditEditor&) = delete;
    LibeditEditor& operator=(const LibeditEditor&) = delete;
    ~LibeditEditor() override {
        if (editor != nullptr) {
            ::el_end(editor);
        }
        ::history_end(entries);
    }

    bool IsUsable() const { return editor != nullptr; }

    EResult ReadLine(const std::string& text, const std::string& earlierLines, std::string& line) override {
        prompt = text;
        earlier = earlierLines;
        const SignalScope signals;
        // At once, and not only behind the prompt as the library does it: what is typed between the two, Ctrl-D above
        // all, would have another meaning.
        ::el_set(editor, EL_PREP_TERM, 1);
        int count = 0;
        const char* const read = ::el_gets(editor, &count);
        if (isInterrupted) {
            Show("^C\n");
            return Interrupted;
        }
        if (read == nullptr || count <= 0) {
            Show("\n");
            return End;
        }
        line.assign(read, static_cast<std::size_t>(count));
        if (line.back() == '\n') {
            line.pop_back();
        }
        return Line;
    }

    void AddToHistory(const std::string& entry) override {
        HistEvent event;
        const bool isAgain = ::history(entries, &event, H_FIRST) == 0 && entry == event.str; // which adds nothing
        ::history(entries, &event, H_ENTER, entry.c_str());
        if (!isAgain) { // at once: a query may end the process
            historyFile.Append(entry);
        }
    }

private:
    static LibeditEditor& Get(EditLine* editor) {
        void* self = nullptr;
        ::el_get(editor, EL_CLIENTDATA, &self);
        return *static_cast<LibeditEditor*>(self);
    }

    static char* GetPrompt(EditLine* editor) { return Get(editor).prompt.data(); }

    /// As the library's own, but that a signal can end it.
    static int ReadCharacter(EditLine* editor, wchar_t* character) {
        char bytes[8];
        std::size_t count = 0;
        for (;;) {
            const ssize_t got = isInterrupted ? (errno = EINTR, -1) : ::read(STDIN_FILENO, bytes + count, 1);
            if (got == 0) {
                return 0;
            }
            if (got < 0) {
                if (errno != EINTR || isInterrupted) {
                    return -1;
                }
                if (isResized) {
                    isResized = 0;
                    ::el_resize(editor);
                }
                continue;
            }
            ++count;
            std::mbstate_t state = {};
            const std::size_t used = std::mbrtowc(character, bytes, count, &state);
            if (used == static_cast<std::size_t>(-2) && count < sizeof bytes) {
                continue; // there is more of it to come
            }
            if (used <= sizeof bytes) {
                return 1;
            }
            count = 0; // no character
        }
    }

    static unsigned char Complete(EditLine* editor, int) {
        const LineInfo* const info = ::el_line(editor);
        const std::string line(info->buffer, info->lastchar);
        const std::size_t cursor = static_cast<std::size_t>(info->cursor - info->buffer);
        LibeditEditor& self = Get(editor);
        const Completion completion = self.completer(self.earlier + line, self.earlier.size() + cursor);
        if (completion.names.empty()) {
            return CC_REFRESH_BEEP;
        }
        const std::size_t begin = completion.begin - self.earlier.size();
        const std::string common = GetCommonBeginning(completion.names);
        const bool isLonger = common.size() > cursor - begin;
        if (completion.names.size() > 1 && !isLonger) {
            ShowNames(completion.names);
            return CC_REDISPLAY;
        }
        const std::string typed = line.substr(begin, cursor - begin);
        const auto isFirstByte = [](char byte) { return (byte & 0xC0) != 0x80; };
        ::el_deletestr(editor, static_cast<int>(std::count_if(typed.begin(), typed.end(), isFirstByte)));
        ::el_insertstr(editor, common.c_str());
        return CC_REFRESH;
    }

    Completer completer;
    HistoryFile historyFile;
    std::string prompt;
    std::string earlier; // of the entry that the line belongs to
    EditLine* editor = nullptr;
    History* entries = nullptr;
};

} // namespace

std::unique_ptr<LineEditor> LineEditor::MakeForTerminal(const Completer& completer, const std::string& historyFile) {
    auto editor = std::make_unique<LibeditEditor>(completer, historyFile);
    return editor->IsUsable() ? std::move(editor) : nullptr;
}

std::string LineEditor::GetName() { return "libedit"; }

} // namespace OrvUQL::Tool
