#include "OrvUQL/Operators.h"

#include "eval/ElementAccess.h"
#include "eval/OperatorCode.h"
#include "eval/Program.h"

namespace OrvUQL {

using detail::ElementAccess;

OperatorBinary::OperatorBinary(const OrvStringT& text, IQueryElement* leftElement, IQueryElement* rightElement,
                               int textPosition)
    : left(leftElement), right(rightElement), op(text), position(textPosition) {
    kinds[0] = ElementAccess::KindOf(left);
    kinds[1] = ElementAccess::KindOf(right);
    code = detail::DecodeBinary(op);
}

OperatorBinary::~OperatorBinary() {
    detail::Program::Destroy(program);
    ReleaseNested(left);
    ReleaseNested(right);
}

EOperType OperatorBinary::GetCompareType() const { return detail::DecodeComparison(op); }

IObject* OperatorBinary::Evaluate(QueryEngine* engine, IError** err) const {
    return ElementAccess::EvaluateOperator(this, engine, err);
}

} // namespace OrvUQL
