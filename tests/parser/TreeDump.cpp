#include "parser/TreeDump.h"

namespace OrvUQL::Tests {

namespace {

class Dumper {
public:
    explicit Dumper(DumpPositions wanted) : positions(wanted) {}

    std::string Write(const IQueryElement* node) const {
        if (node == nullptr) {
            return "_";
        }
        if (const auto* const literal = dynamic_cast<const ElementObject*>(node)) {
            return Literal(literal->GetValue()) + At(*node);
        }
        if (const auto* const method = dynamic_cast<const ElementMethod*>(node)) {
            return Method(*method);
        }
        if (const auto* const group = dynamic_cast<const ElementGroup*>(node)) {
            return Write(group->GetSource()) + "[" + At(*node) + Write(group->GetInner()) + "]";
        }
        if (const auto* const array = dynamic_cast<const ElementArray*>(node)) {
            return "<" + List(array->GetItems()) + ">" + At(*node);
        }
        if (const auto* const unary = dynamic_cast<const OperatorUnary*>(node)) {
            return "(" + Utf8(unary->GetOperator()) + At(*node) + " " + Write(unary->GetOperand()) + ")";
        }
        if (const auto* const binary = dynamic_cast<const OperatorBinary*>(node)) {
            return "(" + Utf8(binary->GetOperator()) + At(*node) + " " + Write(binary->GetLeft()) + " " +
                   Write(binary->GetRight()) + ")";
        }
        if (const auto* const ternary = dynamic_cast<const OperatorTernary*>(node)) {
            return "(" + Utf8(ternary->GetOperator()) + At(*node) + " " + Write(ternary->GetCondition()) + " " +
                   Write(ternary->GetFirst()) + " " + Write(ternary->GetSecond()) + ")";
        }
        return "~" + std::to_string(node->GetType()) + At(*node);
    }

private:
    std::string At(const IQueryElement& node) const {
        return positions == DumpPositions::Yes ? "@" + std::to_string(node.GetStringPosition()) : std::string();
    }

    static std::string Literal(const IObject* value) {
        if (value == nullptr) {
            return "<nothing>";
        }
        OrvStringT text;
        value->ToString(text, nullptr);
        switch (value->GetType()) {
        case IObject::TypeNull:
        case IObject::TypeBool:
        case IObject::TypeInt:
            return Utf8(text);
        case IObject::TypeDouble:
            return Utf8(text) + "d";
        case IObject::TypeString:
            return "'" + Utf8(text) + "'";
        case IObject::TypeUnit:
            return "{" + Utf8(text) + "}";
        default:
            return "<" + Utf8(value->GetTypeName()) + ">";
        }
    }

    std::string Method(const ElementMethod& method) const {
        std::string text;
        if (method.GetParent() != nullptr) {
            text = Write(method.GetParent()) + (method.IsMember() ? "." : "->");
        } else if (method.IsMember()) {
            text = ".";
        }
        text += Utf8(method.GetName()) + At(method);
        return method.GetArguments().empty() ? text : text + "(" + List(method.GetArguments()) + ")";
    }

    std::string List(const QueryElementList& list) const {
        std::string text;
        const char* separator = "";
        for (const IQueryElement* entry : list) {
            text += separator + Write(entry);
            separator = ",";
        }
        return text;
    }

    DumpPositions positions;
};

} // namespace

std::string Dump(const IQueryElement* tree, DumpPositions positions) { return Dumper(positions).Write(tree); }

} // namespace OrvUQL::Tests
