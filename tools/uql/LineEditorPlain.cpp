#include "File.h"
#include "LineEditor.h"

#include <vector>

namespace OrvUQL::Tool {

namespace {

class PlainEditor : public LineEditor {
public:
    explicit PlainEditor(bool promptShown) : input("-"), showsPrompt(promptShown) {
        std::string ignored;
        isOpen = input.Open(ignored);
    }

    EResult ReadLine(const std::string& prompt, const std::string&, std::string& line) override {
        std::string ignored;
        if (showsPrompt) {
            WriteToStandardOutput(prompt, ignored);
        }
        for (std::size_t searched = 0;;) {
            const std::size_t lineFeed = pending.find('\n', searched);
            if (lineFeed != std::string::npos) {
                line = pending.substr(0, lineFeed);
                pending.erase(0, lineFeed + 1);
                return Line;
            }
            searched = pending.size();
            char block[4096];
            const std::ptrdiff_t count = isOpen ? input.Read(block, sizeof block, ignored) : 0;
            if (count <= 0) {
                isOpen = false;
                line = std::move(pending);
                pending.clear();
                return line.empty() ? End : Line;
            }
            pending.append(block, static_cast<std::size_t>(count));
        }
    }

    void AddToHistory(const std::string&) override {}

private:
    InputFile input;
    std::string pending; // read and not handed out
    bool isOpen = false;
    bool showsPrompt;
};

} // namespace

std::unique_ptr<LineEditor> LineEditor::MakePlain(bool showsPrompt) {
    return std::make_unique<PlainEditor>(showsPrompt);
}

} // namespace OrvUQL::Tool
