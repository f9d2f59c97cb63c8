#include "TreePrinter.h"

#include "ElementView.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace OrvUQL::Tool {

namespace {

/// Elements in the order in which they are printed, each with the path that leads to it.
class TreeWalk {
public:
    struct Step {
        ElementChild child;
        ElementView view; ///< of the element; empty if it was left out
        std::size_t nextChild = 0;
        std::size_t number = 0; ///< of the step, from 0
    };

    explicit TreeWalk(const IQueryElement& tree) { Enter({{}, &tree}); }

    bool IsAtEnd() const { return path.empty(); }
    /// The element that has just been entered, or is to be left.
    const Step& Top() const { return path.back(); }
    std::size_t GetDepth() const { return path.size() - 1; }
    const Step* GetParent() const { return path.size() < 2 ? nullptr : &path[path.size() - 2]; }
    /// Enters the next child. False if there is none: then Leave is due.
    bool Descend() {
        Step& top = path.back();
        if (top.nextChild == top.view.children.size()) {
            return false;
        }
        const ElementChild child = top.view.children[top.nextChild++];
        Enter(child);
        return true;
    }
    void Leave() { path.pop_back(); }

private:
    void Enter(const ElementChild& child) {
        Step step;
        step.child = child;
        step.number = count++;
        if (child.element != nullptr) {
            step.view = ViewElement(*child.element);
        }
        path.push_back(std::move(step));
    }

    std::vector<Step> path;
    std::size_t count = 0;
};

/// Calls `enter` for every element; then the ones below it follow, then `leave`.
template <class Enter, class Leave> void Walk(const IQueryElement& tree, Enter&& enter, Leave&& leave) {
    TreeWalk walk(tree);
    enter(walk);
    while (!walk.IsAtEnd()) {
        if (walk.Descend()) {
            enter(walk);
        } else {
            leave(walk);
            walk.Leave();
        }
    }
}

std::string GetRoleText(const ElementRole& role) {
    if (role.name == nullptr) {
        return std::string();
    }
    return role.number == 0 ? role.name : role.name + std::string(" ") + std::to_string(role.number);
}

std::size_t CountCharacters(const std::string& utf8) {
    return static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

class TextTree {
public:
    void Add(const TreeWalk& walk, const TreeNotes* notes) {
        const TreeWalk::Step& step = walk.Top();
        const IQueryElement* const element = step.child.element;
        Line line;
        const std::size_t depth = walk.GetDepth();
        line.label = std::string(2 * std::min(depth, deepest), ' ');
        if (depth > deepest) { // else a chain of a million operators would be a triangle of blanks
            line.label.append("[").append(std::to_string(depth)).append("] ");
        }
        if (step.child.role.name != nullptr) {
            line.label += GetRoleText(step.child.role) + ": ";
        }
        line.label += element == nullptr ? "(left out)" : step.view.label;
        if (element != nullptr) {
            line.position = std::to_string(element->GetStringPosition());
            line.note = notes == nullptr ? std::string() : notes->GetText(*element);
        }
        lines.push_back(std::move(line));
    }

    void Append(std::string& out) const {
        std::size_t positionWidth = 0;
        std::size_t labelWidth = 0;
        for (const Line& line : lines) {
            positionWidth = std::max(positionWidth, line.position.size());
            labelWidth = std::max(labelWidth, std::min(CountCharacters(line.label), widest));
        }
        for (const Line& line : lines) {
            out.append(positionWidth - line.position.size(), ' ');
            out += line.position + "  " + line.label;
            if (!line.note.empty()) {
                const std::size_t width = CountCharacters(line.label);
                out.append(width < labelWidth ? labelWidth - width + 2 : 2, ' ');
                out += line.note;
            }
            out += '\n';
        }
    }

private:
    static constexpr std::size_t deepest = 40; // indentations
    static constexpr std::size_t widest = 60;  // label behind which notes stand in a column

    struct Line {
        std::string position;
        std::string label;
        std::string note;
    };

    std::vector<Line> lines;
};

void AppendText(std::string& out, const IQueryElement& tree, const TreeNotes* notes) {
    TextTree text;
    Walk(
        tree, [&](const TreeWalk& walk) { text.Add(walk, notes); }, [](const TreeWalk&) {});
    text.Append(out);
}

/// Children of a list are a JSON array, which begins with the first and ends behind the last of them.
void AppendJsonRole(std::string& out, const TreeWalk& walk) {
    const ElementRole& role = walk.Top().child.role;
    if (role.name == nullptr) {
        return;
    }
    out += ',';
    if (role.number <= 1) {
        out += std::string("\"") + role.name + (role.number == 1 ? "s\":[" : "\":");
    }
}

void AppendJsonTree(std::string& out, const IQueryElement& tree, const TreeNotes* notes) {
    Walk(
        tree,
        [&](const TreeWalk& walk) {
            AppendJsonRole(out, walk);
            const TreeWalk::Step& step = walk.Top();
            if (step.child.element == nullptr) {
                out += "null";
                return;
            }
            out += std::string("{\"kind\":\"") + step.view.kind +
                   "\",\"position\":" + std::to_string(step.child.element->GetStringPosition()) + step.view.json;
            if (notes != nullptr) {
                out += notes->GetJson(*step.child.element);
            }
        },
        [&](const TreeWalk& walk) {
            const TreeWalk::Step& step = walk.Top();
            if (step.child.element != nullptr) {
                out += '}';
            }
            const TreeWalk::Step* const parent = walk.GetParent();
            if (step.child.role.number != 0 && parent->nextChild == parent->view.children.size()) {
                out += ']';
            }
        });
    out += '\n';
}

std::string QuoteDot(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + '"';
}

std::string GetDotName(const TreeWalk::Step& step) { return std::string("n").append(std::to_string(step.number)); }

void AppendDot(std::string& out, const IQueryElement& tree, const TreeNotes* notes) {
    out += "digraph query {\n  node [shape=box];\n";
    Walk(
        tree,
        [&](const TreeWalk& walk) {
            const TreeWalk::Step& step = walk.Top();
            const std::string name = GetDotName(step);
            std::string label = "(left out)";
            std::string note;
            std::string tip;
            if (step.child.element != nullptr) {
                label = step.view.label;
                note = notes == nullptr ? std::string() : notes->GetText(*step.child.element);
                tip = "position " + std::to_string(step.child.element->GetStringPosition());
            }
            std::string text = QuoteDot(label);
            if (!note.empty()) { // on a line of its own
                text.pop_back();
                text += "\\n" + QuoteDot(note).substr(1);
            }
            out += "  " + name + " [label=" + text + ", tooltip=" + QuoteDot(tip) + "];\n";
            if (const TreeWalk::Step* const parent = walk.GetParent()) {
                out += "  " + GetDotName(*parent) + " -> " + name +
                       " [label=" + QuoteDot(GetRoleText(step.child.role)) + "];\n";
            }
        },
        [](const TreeWalk&) {});
    out += "}\n";
}

} // namespace

void AppendTree(std::string& out, const IQueryElement& tree, TreeFormat format, const TreeNotes* notes) {
    switch (format) {
    case TreeFormat::Text:
        AppendText(out, tree, notes);
        break;
    case TreeFormat::Json:
        AppendJsonTree(out, tree, notes);
        break;
    case TreeFormat::Dot:
        AppendDot(out, tree, notes);
        break;
    }
}

} // namespace OrvUQL::Tool
