#include "eval/ElementAccess.h"

#include "OrvUQL/ObjectString.h"

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

Value ElementAccess::EvaluateOtherValue(const IQueryElement* element, ElementKind kind, QueryEngine* engine,
                                        IError** err) {
    switch (kind) {
    case ElementKind::Object: {
        const ElementObject* const literal = static_cast<const ElementObject*>(element);
        switch (static_cast<ValueKind>(literal->valueKind)) {
        case ValueKind::Null:
            return Value::Null();
        case ValueKind::Text:
            return Value::Text(static_cast<const ObjectString*>(literal->value)->GetValue());
        default:
            return Value::Object(literal->Evaluate(engine, err));
        }
    }
    case ElementKind::Method:
        return Unbox(static_cast<const ElementMethod*>(element)->EvaluateCalls(engine, err));
    case ElementKind::Binary:
        return static_cast<const OperatorBinary*>(element)->EvaluateValue(engine, err);
    case ElementKind::Unary:
        return static_cast<const OperatorUnary*>(element)->EvaluateValue(engine, err);
    case ElementKind::Ternary:
        return static_cast<const OperatorTernary*>(element)->EvaluateValue(engine, err);
    default:
        return Unbox(EvaluateObject(element, kind, engine, err));
    }
}

} // namespace OrvUQL::detail
