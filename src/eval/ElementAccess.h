// Evaluating the children of a node: library elements directly and without objects for scalars, any other by
// Evaluate().
#pragma once

#include "OrvUQL/Elements.h"
#include "OrvUQL/Operators.h"

#include "core/EngineAccess.h"
#include "core/Failure.h"
#include "eval/Value.h"
#include "platform/Thread.h"

namespace OrvUQL::detail {

struct ElementAccess {
    /// What a child is. Asked once, when its parent is made: a child is complete by then, so a subclass shows as
    /// itself.
    static ElementKind KindOf(const IQueryElement* element) noexcept;

    /// The child's value with a reference, or null.
    static IObject* EvaluateObject(const IQueryElement* element, ElementKind kind, QueryEngine* engine, IError** err);

    /// The child's value for a parent that only computes with it.
    static Value EvaluateValue(const IQueryElement* element, ElementKind kind, QueryEngine* engine, IError** err) {
        if (kind == ElementKind::Object) {
            const Value value = LiteralScalar(element);
            if (!value.Failed()) {
                return value;
            }
        }
        return EvaluateOtherValue(element, kind, engine, err);
    }

    /// The value of a literal, which `element` must be, if it is a number or a bool; else none.
    static Value LiteralScalar(const IQueryElement* element) noexcept {
        const ElementObject* const literal = static_cast<const ElementObject*>(element);
        switch (static_cast<ValueKind>(literal->valueKind)) {
        case ValueKind::Int:
            return Value::Int(literal->scalar.integer);
        case ValueKind::Double:
            return Value::Double(literal->scalar.number);
        case ValueKind::Bool:
            return Value::Bool(literal->scalar.boolean);
        default:
            return Value::None();
        }
    }

private:
    static Value EvaluateOtherValue(const IQueryElement* element, ElementKind kind, QueryEngine* engine, IError** err);
};

/// A failure of the element's own, not of a child's.
inline std::nullptr_t FailAt(QueryEngine* engine, int position) noexcept {
    EngineAccess::SetErrorPosition(engine, position);
    return nullptr;
}

/// The check that stands before every recursion of evaluation.
inline bool CheckStack(const IQueryElement* element, QueryEngine* engine, IError** err) noexcept {
    if (platform::HasStack()) [[likely]] {
        return true;
    }
    FailAt(engine, element->GetStringPosition());
    return Fail(err, message::internalError);
}

/// Runs the element's own work. An exception that leaves it, as where memory ends, has the element's position.
template <class Work> auto WorkAt(QueryEngine* engine, int position, Work&& work) {
    try {
        return work();
    } catch (...) {
        EngineAccess::SetErrorPositionIfNone(engine, position);
        throw;
    }
}

/// Guarded(), with the position of the failing element.
template <class Body>
IObject* EvaluateGuarded(const IQueryElement* element, QueryEngine* engine, IError** err, Body&& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {}
    EngineAccess::SetErrorPositionIfNone(engine, element->GetStringPosition());
    return FailNull(err, message::internalError);
}

} // namespace OrvUQL::detail
