#include "OrvUQL/Operators.h"
#include "OrvUQL/QueryEngine.h"

#include "eval/Arithmetic.h"
#include "eval/Comparison.h"
#include "eval/ElementAccess.h"
#include "eval/OperatorCode.h"
#include "eval/Spine.h"

namespace OrvUQL {

using detail::ElementAccess;
using detail::ElementKind;
using detail::OperatorCode;
using detail::Value;
using detail::ValueHolder;
using detail::ValueKind;

namespace {

/// The rule of an operator that needs both operands.
Value Compute(OperatorCode code, ValueHolder& left, ValueHolder& right, const QueryEngine* engine, IError** err) {
    switch (code) {
    case OperatorCode::Plus:
        return detail::EvaluatePlus(left, right, err);
    case OperatorCode::Minus:
        return detail::EvaluateMinus(left, right, err);
    case OperatorCode::Multiply:
        return detail::EvaluateMultiply(left, right, err);
    case OperatorCode::Divide:
        return detail::EvaluateDivide(left, right, err);
    case OperatorCode::IntDivide:
        return detail::EvaluateIntDivide(left, right, err);
    case OperatorCode::Power:
        return detail::EvaluatePower(left, right, err);
    case OperatorCode::Unknown:
        return Value::None();
    default: {
        const int precision = engine == nullptr ? 0 : engine->GetUnitPrecision();
        bool verdict = false;
        const bool reached =
            detail::CompareValues(static_cast<EOperType>(code), left.Get(), right.Get(), precision, verdict, err);
        return reached ? Value::Bool(verdict) : Value::None();
    }
    }
}

/// The same rules for two ints, without asking for their types. False where there is no short way.
inline bool ComputeInts(OperatorCode code, int left, int right, Value& result, IError** err) {
    switch (code) {
    case OperatorCode::Plus:
        result = detail::AddInts(left, right, err);
        return true;
    case OperatorCode::Minus:
        result = detail::SubtractInts(left, right, err);
        return true;
    case OperatorCode::Multiply:
        result = detail::MultiplyInts(left, right);
        return true;
    case OperatorCode::Divide:
        result = detail::DivideDoubles(left, right, err);
        return true;
    default:
        if (code > OperatorCode::NotEqual) {
            return false;
        }
        result = Value::Bool(detail::CompareInts(static_cast<EOperType>(code), left, right));
        return true;
    }
}

/// And for two numbers of which one is a double.
inline bool ComputeDoubles(OperatorCode code, double left, double right, Value& result, IError** err) {
    switch (code) {
    case OperatorCode::Plus:
        result = Value::Double(left + right);
        return true;
    case OperatorCode::Minus:
        result = Value::Double(left - right);
        return true;
    case OperatorCode::Multiply:
        result = Value::Double(left * right);
        return true;
    case OperatorCode::Divide:
        result = detail::DivideDoubles(left, right, err);
        return true;
    default:
        if (code > OperatorCode::NotEqual) {
            return false;
        }
        result = Value::Bool(detail::CompareDoubles(static_cast<EOperType>(code), left, right, 0.0));
        return true;
    }
}

inline bool ComputeNumbers(OperatorCode code, const Value& left, const Value& right, Value& result, IError** err) {
    if (left.kind == ValueKind::Int) {
        if (right.kind == ValueKind::Int) {
            return ComputeInts(code, left.integer, right.integer, result, err);
        }
        return right.kind == ValueKind::Double && ComputeDoubles(code, left.integer, right.number, result, err);
    }
    if (left.kind == ValueKind::Double) {
        if (right.kind == ValueKind::Double) {
            return ComputeDoubles(code, left.number, right.number, result, err);
        }
        return right.kind == ValueKind::Int && ComputeDoubles(code, left.number, right.integer, result, err);
    }
    return false;
}

} // namespace

OperatorBinary::OperatorBinary(const OrvStringT& text, IQueryElement* leftElement, IQueryElement* rightElement,
                               int textPosition)
    : left(leftElement), right(rightElement), op(text), position(textPosition) {
    kinds[0] = ElementAccess::KindOf(left);
    kinds[1] = ElementAccess::KindOf(right);
    code = detail::DecodeBinary(op);
}

OperatorBinary::~OperatorBinary() {
    ReleaseNested(left);
    ReleaseNested(right);
}

EOperType OperatorBinary::GetCompareType() const { return detail::DecodeComparison(op); }

IObject* OperatorBinary::Evaluate(QueryEngine* engine, IError** err) const {
    return detail::EvaluateGuarded(this, engine, err,
                                   [&]() -> IObject* { return detail::Box(EvaluateValue(engine, err)); });
}

Value OperatorBinary::EvaluateValue(QueryEngine* engine, IError** err) const {
    if (!detail::CheckStack(this, engine, err)) {
        return Value::None();
    }
    if (kinds[0] != ElementKind::Binary) {
        const Value value = ElementAccess::EvaluateValue(left, kinds[0], engine, err);
        return value.Failed() ? value : Apply(value, engine, err);
    }
    detail::Spine spine(engine);
    const OperatorBinary* node = this;
    for (; node->kinds[0] == ElementKind::Binary; node = static_cast<const OperatorBinary*>(node->left)) {
        spine.Push(node);
    }
    Value value = ElementAccess::EvaluateValue(node->left, node->kinds[0], engine, err);
    if (!value.Failed()) {
        value = node->Apply(value, engine, err);
    }
    while (!value.Failed() && !spine.IsEmpty()) {
        value = static_cast<const OperatorBinary*>(spine.Pop())->Apply(value, engine, err);
    }
    return value;
}

/// Computes this node's value from its left operand's, which it disposes of.
Value OperatorBinary::Apply(Value leftValue, QueryEngine* engine, IError** err) const {
    if (kinds[1] == ElementKind::Object && leftValue.kind <= ValueKind::Double) {
        // A number beside a literal, the most frequent case by far, needs no owner for either.
        const Value literal = ElementAccess::LiteralScalar(right);
        Value result = Value::None();
        if (ComputeNumbers(code, leftValue, literal, result, err)) {
            if (result.Failed()) {
                detail::FailAt(engine, position);
            }
            return result;
        }
    }
    ValueHolder leftHolder(leftValue);
    if (code == OperatorCode::And || code == OperatorCode::Or) {
        return EvaluateAndOr(engine, leftHolder.Get(), err);
    }
    ValueHolder rightHolder(ElementAccess::EvaluateValue(right, kinds[1], engine, err));
    if (rightHolder.Failed()) {
        return Value::None();
    }
    Value result = Value::None();
    if (!ComputeNumbers(code, leftHolder.Get(), rightHolder.Get(), result, err)) {
        result = detail::WorkAt(engine, position, [&] { return Compute(code, leftHolder, rightHolder, engine, err); });
    }
    if (result.Failed()) {
        detail::FailAt(engine, position);
    }
    return result;
}

/// The right operand is evaluated only where it decides: after a true "and", after a false "or".
Value OperatorBinary::EvaluateAndOr(QueryEngine* engine, const Value& leftValue, IError** err) const {
    bool truth = false;
    const auto decide = [&](const Value& value) {
        return detail::WorkAt(engine, position, [&] { return detail::ToBool(value, truth, err); });
    };
    if (!decide(leftValue)) {
        detail::FailAt(engine, position);
        return Value::None();
    }
    if (truth == (code == OperatorCode::And)) {
        const ValueHolder rightHolder(ElementAccess::EvaluateValue(right, kinds[1], engine, err));
        if (rightHolder.Failed()) {
            return Value::None();
        }
        if (!decide(rightHolder.Get())) {
            detail::FailAt(engine, position);
            return Value::None();
        }
    }
    return Value::Bool(truth);
}

} // namespace OrvUQL
