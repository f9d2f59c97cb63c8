#include "OrvUQL/Operators.h"

#include "eval/ElementAccess.h"
#include "eval/OperatorCode.h"

namespace OrvUQL {

using detail::ElementAccess;
using detail::ElementKind;
using detail::OperatorCode;

OperatorTernary::OperatorTernary(const OrvStringT& text, IQueryElement* conditionElement, IQueryElement* firstElement,
                                 IQueryElement* secondElement, int textPosition)
    : condition(conditionElement), first(firstElement), second(secondElement), op(text), position(textPosition) {
    kinds[0] = ElementAccess::KindOf(condition);
    kinds[1] = ElementAccess::KindOf(first);
    kinds[2] = ElementAccess::KindOf(second);
    code = detail::DecodeTernary(op);
}

OperatorTernary::~OperatorTernary() {
    ReleaseNested(condition);
    ReleaseNested(first);
    ReleaseNested(second);
}

IObject* OperatorTernary::Evaluate(QueryEngine* engine, IError** err) const {
    return detail::EvaluateGuarded(this, engine, err, [&]() -> IObject* {
        ElementKind kind = ElementKind::Other;
        const IQueryElement* const branch = EvaluateIIf(engine, kind, err);
        return branch == nullptr ? nullptr : ElementAccess::EvaluateObject(branch, kind, engine, err);
    });
}

detail::Value OperatorTernary::EvaluateValue(QueryEngine* engine, IError** err) const {
    ElementKind kind = ElementKind::Other;
    const IQueryElement* const branch = EvaluateIIf(engine, kind, err);
    return branch == nullptr ? detail::Value::None() : ElementAccess::EvaluateValue(branch, kind, engine, err);
}

/// The branch that the conditions choose, borrowed, null on failure. A branch that is a conditional itself is decided
/// here too, so that chains of them take no recursion.
const IQueryElement* OperatorTernary::EvaluateIIf(QueryEngine* engine, ElementKind& kind, IError** err) const {
    if (!detail::CheckStack(this, engine, err)) {
        return nullptr;
    }
    for (const OperatorTernary* node = this;;) {
        const detail::ValueHolder value(ElementAccess::EvaluateValue(node->condition, node->kinds[0], engine, err));
        if (value.Failed()) {
            return nullptr;
        }
        bool truth = false;
        const bool decided = node->code == OperatorCode::Conditional && detail::WorkAt(engine, node->position, [&] {
                                 return detail::ToBool(value.Get(), truth, err);
                             });
        if (!decided) {
            return detail::FailAt(engine, node->position);
        }
        const IQueryElement* const branch = truth ? node->first : node->second;
        kind = node->kinds[truth ? 1 : 2];
        if (kind != ElementKind::Ternary) {
            return branch;
        }
        node = static_cast<const OperatorTernary*>(branch);
    }
}

} // namespace OrvUQL
