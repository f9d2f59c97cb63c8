#include "eval/ElementAccess.h"

#include "eval/Program.h"

#include <typeinfo>

namespace OrvUQL::detail {

ElementKind ElementAccess::KindOf(const IQueryElement* element) noexcept {
    if (element == nullptr) {
        return ElementKind::Other;
    }
    const std::type_info* const type = &typeid(*element);
    if (type == &typeid(ElementObject)) {
        return ElementKind::Object;
    }
    if (type == &typeid(ElementMethod)) {
        return ElementKind::Method;
    }
    if (type == &typeid(OperatorBinary)) {
        return ElementKind::Binary;
    }
    if (type == &typeid(OperatorUnary)) {
        return ElementKind::Unary;
    }
    if (type == &typeid(OperatorTernary)) {
        return ElementKind::Ternary;
    }
    if (type == &typeid(ElementGroup)) {
        return ElementKind::Group;
    }
    if (type == &typeid(ElementArray)) {
        return ElementKind::Array;
    }
    return ElementKind::Other;
}

IObject* ElementAccess::EvaluateObject(const IQueryElement* element, ElementKind kind, QueryEngine* engine,
                                       IError** err) {
    // A library element that fails tells its position itself.
    return kind == ElementKind::Other ? EvaluateArgument(element, engine, err) : element->Evaluate(engine, err);
}

namespace {

constexpr ElementKind KindOfNode(const OperatorUnary*) { return ElementKind::Unary; }
constexpr ElementKind KindOfNode(const OperatorBinary*) { return ElementKind::Binary; }
constexpr ElementKind KindOfNode(const OperatorTernary*) { return ElementKind::Ternary; }

template <class Node> Value RunOperator(const Node* node, QueryEngine* engine, IError** err) {
    return CheckStack(node, engine, err) ? ElementAccess::ProgramOf(node)->Run(engine, err) : Value::None();
}

} // namespace

template <class Node> const Program* ElementAccess::MakeProgram(const Node* node) {
    node->program = Program::Compile(node, KindOfNode(node));
    return node->program;
}

template <class Node> IObject* ElementAccess::EvaluateOperator(const Node* node, QueryEngine* engine, IError** err) {
    try {
        return Box(RunOperator(node, engine, err));
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {}
    return FailForMemory(node, engine, err);
}

template IObject* ElementAccess::EvaluateOperator(const OperatorUnary*, QueryEngine*, IError**);
template IObject* ElementAccess::EvaluateOperator(const OperatorBinary*, QueryEngine*, IError**);
template IObject* ElementAccess::EvaluateOperator(const OperatorTernary*, QueryEngine*, IError**);

ElementKind KindOfElement(const IQueryElement* element) noexcept { return ElementAccess::KindOf(element); }

Value EvaluateArgumentValue(const IQueryElement* element, ElementKind kind, QueryEngine* engine, IError** err) {
    EngineAccess::ClearErrorPosition(engine);
    try {
        Value value = Value::None();
        switch (kind) {
        case ElementKind::Binary:
            value = RunOperator(static_cast<const OperatorBinary*>(element), engine, err);
            break;
        case ElementKind::Unary:
            value = RunOperator(static_cast<const OperatorUnary*>(element), engine, err);
            break;
        case ElementKind::Ternary:
            value = RunOperator(static_cast<const OperatorTernary*>(element), engine, err);
            break;
        default:
            value = Value::Object(ElementAccess::EvaluateObject(element, kind, engine, err));
        }
        if (value.Failed()) {
            EngineAccess::SetErrorPositionIfNone(engine, element->GetStringPosition());
        }
        return value;
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {}
    FailForMemory(element, engine, err);
    return Value::None();
}

} // namespace OrvUQL::detail
