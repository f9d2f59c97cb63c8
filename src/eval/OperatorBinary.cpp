#include "OrvUQL/Operators.h"

#include "core/CountAccess.h"
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

namespace {

/// A literal holds nothing but its value, which it releases with care itself.
void ReleaseChild(IQueryElement* child, detail::ElementKind kind) noexcept {
    if (kind == detail::ElementKind::Object) {
        child->Release();
    } else {
        ReleaseNested(child);
    }
}

} // namespace

/// A chain of operators nests to the left as deep as it is long. Its nodes go here one after the other, from the
/// innermost out, and on the way down each is left a link to the one above it in place of its left operand.
OperatorBinary::~OperatorBinary() {
    detail::Program::Destroy(program);
    OperatorBinary* node = this;
    OperatorBinary* above = nullptr;
    while (node->kinds[0] == detail::ElementKind::Binary) {
        OperatorBinary* const below = static_cast<OperatorBinary*>(node->left);
        if (detail::CountAccess::Count(below) != 1) {
            break; // somebody else holds it, too
        }
        node->left = above;
        above = node;
        node = below;
    }
    for (;;) {
        ReleaseChild(node->left, node->kinds[0]);
        ReleaseChild(node->right, node->kinds[1]);
        if (node == this) {
            return;
        }
        OperatorBinary* const next = above;
        above = static_cast<OperatorBinary*>(next->left);
        // Nothing is left for their own destructors to release.
        next->left = nullptr;
        next->kinds[0] = detail::ElementKind::Other;
        node->left = node->right = nullptr;
        node->kinds[0] = node->kinds[1] = detail::ElementKind::Other;
        node->Release();
        node = next;
    }
}

EOperType OperatorBinary::GetCompareType() const { return detail::DecodeComparison(op); }

IObject* OperatorBinary::Evaluate(QueryEngine* engine, IError** err) const {
    return ElementAccess::EvaluateOperator(this, engine, err);
}

} // namespace OrvUQL
