#include "OrvUQL/Operators.h"

#include "eval/ElementAccess.h"
#include "eval/OperatorCode.h"
#include "eval/Program.h"

namespace OrvUQL {

using detail::ElementAccess;

OperatorUnary::OperatorUnary(const OrvStringT& text, IQueryElement* operandElement, int textPosition)
    : operand(operandElement), op(text), position(textPosition) {
    kinds[0] = ElementAccess::KindOf(operand);
    code = detail::DecodeUnary(op);
}

OperatorUnary::~OperatorUnary() {
    detail::Program::Destroy(program);
    ReleaseNested(operand);
}

IObject* OperatorUnary::Evaluate(QueryEngine* engine, IError** err) const {
    return ElementAccess::EvaluateOperator(this, engine, err);
}

} // namespace OrvUQL
