#include "OrvUQL/Operators.h"

#include "eval/ElementAccess.h"
#include "eval/OperatorCode.h"
#include "eval/Program.h"

namespace OrvUQL {

using detail::ElementAccess;

OperatorTernary::OperatorTernary(const OrvStringT& text, IQueryElement* conditionElement, IQueryElement* firstElement,
                                 IQueryElement* secondElement, int textPosition)
    : condition(conditionElement), first(firstElement), second(secondElement), op(text), position(textPosition) {
    kinds[0] = ElementAccess::KindOf(condition);
    kinds[1] = ElementAccess::KindOf(first);
    kinds[2] = ElementAccess::KindOf(second);
    code = detail::DecodeTernary(op);
}

OperatorTernary::~OperatorTernary() {
    detail::Program::Destroy(program);
    ReleaseNested(condition);
    ReleaseNested(first);
    ReleaseNested(second);
}

IObject* OperatorTernary::Evaluate(QueryEngine* engine, IError** err) const {
    return ElementAccess::EvaluateOperator(this, engine, err);
}

} // namespace OrvUQL
