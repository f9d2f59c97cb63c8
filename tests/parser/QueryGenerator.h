// Random queries together with the trees that they must become.
#pragma once

#include <cstdint>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace OrvUQL::Tests {

/// Writes random trees by the grammar's rules. The same number gives the same queries on every platform.
class QueryGenerator {
public:
    explicit QueryGenerator(std::uint32_t number) : random(number) {}

    /// A query and the dump, with positions, of the tree that it must become.
    struct Query {
        std::string text;
        std::string tree;
    };

    Query Make() {
        text.clear();
        Space();
        const std::string tree = Write(MakeNode(static_cast<int>(Below(maximumDepth))), ConditionLevel);
        Space();
        return {text, tree};
    }

private:
    static constexpr std::uint32_t maximumDepth = 8;

    /// What a part of a query is to its surroundings: each place takes everything from its own level on, and the rest
    /// in parentheses.
    enum Level {
        ConditionLevel,
        LogicLevel,
        NegationLevel, ///< a negated comparison: an operand of "and", but not of "="
        ComparisonLevel,
        SumLevel,
        SignLevel, ///< a signed term: an operand of "+", but not of "*"
        TermLevel,
        PowerLevel,
        PrimaryLevel,
    };

    /// How far a primary's chain of groups and members has gone.
    enum Chain {
        AcceptsAll,     ///< a value: a group, members, a group
        AcceptsMembers, ///< has had its first group: members, a group
        AcceptsGroup,   ///< has members: more of them, a group
        AcceptsNothing, ///< has had its last group
    };

    struct Node {
        Level level = PrimaryLevel;
        Chain chain = AcceptsAll;
        enum { Value, Name, Member, Group, Unary, Binary, Ternary } kind = Value;
        std::string text;  ///< as written
        std::string shown; ///< as dumped
        std::vector<std::unique_ptr<Node>> children;
        bool omitted = false; ///< a call whose first argument is left out
    };
    using NodePointer = std::unique_ptr<Node>;

    std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); }

    template <std::size_t N> const char* Pick(const char* const (&choices)[N]) { return choices[Below(N)]; }

    NodePointer MakeLeaf() {
        struct Leaf {
            const char* text;
            const char* shown;
        };
        static constexpr Leaf leaves[] = {
            {"0", "0"},
            {"12", "12"},
            {"1.5", "1.5d"},
            {"1e3", "1000"},
            {"0x1F", "31"},
            {"'abc'", "'abc'"},
            {"'it''s'", "'it's'"},
            {"''", "''"},
            {"true", "true"},
            {"FALSE", "false"},
            {"Null", "null"},
            {"{1 cm}", "{1 cm}"},
            {"{2mm2}", nullptr},
            {"{ 3 in ^ -1 }", "{3 in^-1}"},
        };
        NodePointer node = std::make_unique<Node>();
        const Leaf& leaf = leaves[Below(std::size(leaves))];
        node->text = leaf.text;
        node->shown = leaf.shown == nullptr ? "{2 mm\xc2\xb2}" : leaf.shown;
        return node;
    }

    NodePointer MakeNode(int depth) {
        NodePointer node = std::make_unique<Node>();
        switch (depth <= 0 ? Below(2) : Below(14)) {
        case 0:
            return MakeLeaf();
        case 1:
        case 2:
            node->kind = Node::Name;
            node->text = Pick({"a", "B1", "_", "notx", "@p", "$v", "@", "#"});
            MakeArguments(*node, depth);
            return node;
        case 3:
        case 4: {
            node->kind = Node::Member;
            node->text = Pick({"m", "and", "Not", "null", "x_1", "e5"});
            node->chain = AcceptsGroup;
            if (Below(5) == 0) {
                node->children.push_back(nullptr); // without a parent
            } else {
                node->children.push_back(MakeNode(depth - 1));
            }
            MakeArguments(*node, depth);
            return node;
        }
        case 5:
        case 6:
            node->kind = Node::Group;
            node->children.push_back(MakeNode(depth - 1));
            node->children.push_back(MakeNode(depth - 1));
            return node;
        case 7:
            node->kind = Node::Unary;
            node->text = Pick({"not", "!", "NOT"});
            node->level = NegationLevel;
            node->children.push_back(MakeNode(depth - 1));
            return node;
        case 8:
            node->kind = Node::Unary;
            node->text = Pick({"-", "+"});
            node->level = SignLevel;
            node->children.push_back(MakeNode(depth - 1));
            return node;
        case 9:
            node->kind = Node::Ternary;
            node->level = ConditionLevel;
            for (int child = 0; child < 3; ++child) {
                node->children.push_back(MakeNode(depth - 1));
            }
            return node;
        default:
            node->kind = Node::Binary;
            switch (Below(5)) {
            case 0:
                node->level = LogicLevel;
                node->text = Pick({"and", "or", "&", "|", "And", "OR"});
                break;
            case 1:
                node->level = ComparisonLevel;
                node->text = Pick({"<", ">", "=", "<=", ">=", "==", "!=", "=<", "=>", "<>", "><", "<<", ">>"});
                break;
            case 2:
                node->level = SumLevel;
                node->text = Pick({"+", "-"});
                break;
            case 3:
                node->level = TermLevel;
                node->text = Pick({"*", "/", "\\"});
                break;
            default:
                node->level = PowerLevel;
                node->text = "^";
            }
            node->children.push_back(MakeNode(depth - 1));
            node->children.push_back(MakeNode(depth - 1));
            return node;
        }
    }

    void MakeArguments(Node& node, int depth) {
        if (depth <= 0 || Below(2) == 0) {
            return;
        }
        for (std::uint32_t count = Below(3) + 1; count > 0; --count) {
            node.children.push_back(MakeNode(depth - 2));
        }
        node.omitted = Below(6) == 0;
    }

    // ---- writing ----

    void Space() {
        switch (Below(6)) {
        case 0:
            text += "  ";
            break;
        case 1:
            text += " \t\r\n";
            break;
        case 2:
        case 3:
            text += ' ';
            break;
        default:
            break;
        }
    }

    static bool IsWordUnit(char unit) {
        return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') || (unit >= '0' && unit <= '9') ||
               unit == '_' || unit == '@' || unit == '$';
    }

    /// Writes a token, apart from a word or number before it, and tells its position.
    std::string Put(const std::string& token) {
        Space();
        const bool apart = !text.empty() && ((IsWordUnit(text.back()) && IsWordUnit(token[0])) ||
                                             (text.back() == '\'' && token[0] == '\''));
        if (apart) {
            text += ' ';
        }
        const std::string position = "@" + std::to_string(text.size());
        text += token;
        return position;
    }

    std::string Write(const NodePointer& node, Level place) {
        if (node->level >= place && Below(8) != 0) {
            return WriteBare(*node);
        }
        return WriteInParentheses(*node);
    }

    std::string WriteInParentheses(Node& node) {
        Put("(");
        std::string tree = WriteBare(node);
        Put(")");
        return tree;
    }

    std::string WriteBare(Node& node) {
        switch (node.kind) {
        case Node::Value:
            return node.shown + Put(node.text);
        case Node::Name: {
            const std::string position = Put(node.text);
            return node.text + position + WriteArguments(node, 0);
        }
        case Node::Member:
            return WriteMember(node);
        case Node::Group:
            return WriteGroup(node);
        case Node::Unary: {
            const std::string position = Put(node.text);
            const Level operand = node.level == NegationLevel ? ComparisonLevel : TermLevel;
            return "(" + node.text + position + " " + Write(node.children[0], operand) + ")";
        }
        case Node::Ternary: {
            const std::string condition = Write(node.children[0], LogicLevel);
            const std::string position = Put("?");
            const std::string first = Write(node.children[1], ConditionLevel);
            Put(":");
            const std::string second = Write(node.children[2], ConditionLevel);
            return "(?" + position + " " + condition + " " + first + " " + second + ")";
        }
        case Node::Binary:
            break;
        }
        const std::string left = Write(node.children[0], node.level);
        const std::string position = Put(node.text);
        const std::string right = Write(node.children[1], RightOf(node.level));
        return "(" + node.text + position + " " + left + " " + right + ")";
    }

    /// What may stand on the right of an operator without parentheses.
    static Level RightOf(Level level) {
        switch (level) {
        case LogicLevel:
            return NegationLevel;
        case ComparisonLevel:
            return SumLevel;
        case SumLevel:
            return SignLevel;
        case TermLevel:
            return PowerLevel;
        default:
            return PrimaryLevel;
        }
    }

    std::string WriteMember(Node& node) {
        std::string tree;
        if (node.children[0] != nullptr) {
            tree = WriteSource(*node.children[0], AcceptsGroup);
        }
        Put(".");
        const std::string position = "@" + std::to_string(text.size());
        text += node.text;
        return tree + "." + node.text + position + WriteArguments(node, 1);
    }

    std::string WriteGroup(Node& node) {
        Node& source = *node.children[0];
        const std::string tree = WriteSource(source, AcceptsGroup);
        // The first group after a value may be followed by members; any other is the last.
        node.chain = bareSource && source.chain != AcceptsAll ? AcceptsNothing : AcceptsMembers;
        const std::string position = Put("[");
        const std::string inner = Write(node.children[1], ConditionLevel);
        Put("]");
        return tree + "[" + position + inner + "]";
    }

    /// Writes what stands before a member or a group, in parentheses if its own chain has ended.
    std::string WriteSource(Node& source, Chain atMost) {
        const std::size_t begin = text.size();
        std::string tree = source.level == PrimaryLevel && Below(8) != 0 ? WriteBare(source) : std::string();
        // Whether a chain has ended is known only when it is written.
        if (tree.empty() || source.chain > atMost) {
            text.resize(begin);
            tree = WriteInParentheses(source);
            bareSource = false;
        } else {
            bareSource = true;
        }
        return tree;
    }

    std::string WriteArguments(Node& node, std::size_t first) {
        if (node.children.size() == first) {
            if (Below(4) == 0) {
                Put("(");
                Put(")");
            }
            return std::string();
        }
        Put("(");
        std::string trees;
        if (node.omitted) {
            Put(",");
            trees = "_,";
        }
        for (std::size_t index = first; index < node.children.size(); ++index) {
            if (index > first) {
                Put(",");
                trees += ",";
            }
            trees += Write(node.children[index], ConditionLevel);
        }
        Put(")");
        return "(" + trees + ")";
    }

    std::mt19937 random;
    std::string text;
    bool bareSource = false;
};

} // namespace OrvUQL::Tests
