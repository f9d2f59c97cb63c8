#include "eval/ElementAccess.h"

#include <typeinfo>

namespace OrvUQL::detail {

ElementKind ElementAccess::KindOf(const IQueryElement* element) noexcept {
    if (element == nullptr) {
        return ElementKind::Other;
    }
    const std::type_info* const type = &typeid(*element);
    if (type == &typeid(OperatorBinary)) {
        return ElementKind::Binary;
    }
    if (type == &typeid(ElementMethod)) {
        return ElementKind::Method;
    }
    if (type == &typeid(ElementObject)) {
        return ElementKind::Object;
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

template <class Node>
ORVUQL_ALWAYS_INLINE Value RunUnmetered(const Node* node, QueryEngine* engine, bool wantsObject, IError** err) {
    return CheckStack(node, engine, err) ? ElementAccess::ProgramOf(node)->RunUnmetered(engine, wantsObject, err)
                                         : Value::None();
}

template <class Node>
ORVUQL_ALWAYS_INLINE Value RunOperator(const Node* node, QueryEngine* engine, bool wantsObject, IError** err) {
    return CheckStack(node, engine, err) ? ElementAccess::ProgramOf(node)->Run(engine, wantsObject, err)
                                         : Value::None();
}

} // namespace

template <class Node> const Program* ElementAccess::MakeProgram(const Node* node) {
    node->program = Program::Compile(node, KindOfNode(node));
    return node->program;
}

template <class Node> IObject* ElementAccess::EvaluateOperator(const Node* node, QueryEngine* engine, IError** err) {
    try {
        return Box(RunOperator(node, engine, true, err));
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {}
    return FailForMemory(node, engine, err);
}

template IObject* ElementAccess::EvaluateOperator(const OperatorUnary*, QueryEngine*, IError**);
template IObject* ElementAccess::EvaluateOperator(const OperatorBinary*, QueryEngine*, IError**);
template IObject* ElementAccess::EvaluateOperator(const OperatorTernary*, QueryEngine*, IError**);

Value EvaluateOtherRoot(const IQueryElement* element, QueryEngine* engine, IError** err) {
    switch (ElementAccess::KindOf(element)) {
    case ElementKind::Binary:
        return RunUnmetered(static_cast<const OperatorBinary*>(element), engine, false, err);
    case ElementKind::Ternary:
        return RunUnmetered(static_cast<const OperatorTernary*>(element), engine, false, err);
    case ElementKind::Unary:
        return RunUnmetered(static_cast<const OperatorUnary*>(element), engine, false, err);
    case ElementKind::Method:
        return ElementAccess::CallValue(element, engine, err);
    default:
        return Unbox(element->Evaluate(engine, err));
    }
}

RepeatedArgument::RepeatedArgument(const IQueryElement* argument, QueryEngine* queryEngine, IError** err) noexcept
    : element(argument), engine(queryEngine), kind(ElementAccess::KindOf(argument)), frame(true, err) {}

/// Whatever the element is. An operator's program runs by itself from then on.
Value RepeatedArgument::EvaluateElement() {
    try {
        Value value = Value::None();
        switch (kind) {
        case ElementKind::Binary:
            code = ElementAccess::ProgramOf(static_cast<const OperatorBinary*>(element))->PlainCode(engine);
            value = RunOperator(static_cast<const OperatorBinary*>(element), engine, true, frame.err);
            break;
        case ElementKind::Unary:
            code = ElementAccess::ProgramOf(static_cast<const OperatorUnary*>(element))->PlainCode(engine);
            value = RunOperator(static_cast<const OperatorUnary*>(element), engine, true, frame.err);
            break;
        case ElementKind::Ternary:
            code = ElementAccess::ProgramOf(static_cast<const OperatorTernary*>(element))->PlainCode(engine);
            value = RunOperator(static_cast<const OperatorTernary*>(element), engine, true, frame.err);
            break;
        default:
            value = Value::Object(ElementAccess::EvaluateObject(element, kind, engine, frame.err));
            break;
        }
        if (value.Failed()) {
            EngineAccess::SetErrorPositionIfNone(engine, element->GetStringPosition());
        }
        return value;
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {}
    return FailForMemory();
}

Value RepeatedArgument::FailForMemory() const {
    detail::FailForMemory(element, engine, frame.err);
    return Value::None();
}

} // namespace OrvUQL::detail
