#include "OrvUQL/Operators.h"

#include "eval/Arithmetic.h"
#include "eval/ElementAccess.h"
#include "eval/OperatorCode.h"

namespace OrvUQL {

using detail::OperatorCode;
using detail::Value;

OperatorUnary::OperatorUnary(const OrvStringT& text, IQueryElement* operandElement, int textPosition)
    : operand(operandElement), op(text), position(textPosition) {
    kinds[0] = detail::ElementAccess::KindOf(operand);
    code = detail::DecodeUnary(op);
}

OperatorUnary::~OperatorUnary() { ReleaseNested(operand); }

IObject* OperatorUnary::Evaluate(QueryEngine* engine, IError** err) const {
    return detail::EvaluateGuarded(this, engine, err,
                                   [&]() -> IObject* { return detail::Box(EvaluateValue(engine, err)); });
}

Value OperatorUnary::EvaluateValue(QueryEngine* engine, IError** err) const {
    if (!detail::CheckStack(this, engine, err)) {
        return Value::None();
    }
    detail::ValueHolder value(detail::ElementAccess::EvaluateValue(operand, kinds[0], engine, err));
    if (value.Failed()) {
        return Value::None();
    }
    const Value result = detail::WorkAt(engine, position, [&] {
        if (code == OperatorCode::Not) {
            bool truth = false;
            return detail::ToBool(value.Get(), truth, err) ? Value::Bool(!truth) : Value::None();
        }
        return code == OperatorCode::Unknown ? Value::None()
                                             : detail::EvaluateSign(code == OperatorCode::Minus, value, err);
    });
    if (result.Failed()) {
        detail::FailAt(engine, position);
    }
    return result;
}

} // namespace OrvUQL
