#include "fuzz/DecoratedTree.h"

namespace OrvUQL::Tests {

namespace {

/// Passes evaluation on: its value comes as an object, whatever the element inside could do.
class Decoration : public RefCountImpl<IQueryElement> {
public:
    /// Takes the reference over.
    explicit Decoration(IQueryElement* decorated) : inner(decorated) {}
    Decoration(const Decoration&) = delete;
    Decoration& operator=(const Decoration&) = delete;
    ~Decoration() override { ReleaseNested(inner); }

    EType GetType() const override { return inner->GetType(); }
    int GetStringPosition() const override { return inner->GetStringPosition(); }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override { return inner->Evaluate(engine, err); }

private:
    IQueryElement* inner;
};

IQueryElement* CopyNode(const IQueryElement& node) {
    const int position = node.GetStringPosition();
    if (const auto* const literal = dynamic_cast<const ElementObject*>(&node)) {
        return new ElementObject(literal->GetValue(), position, true);
    }
    if (const auto* const method = dynamic_cast<const ElementMethod*>(&node)) {
        IQueryElement* const parent = Decorate(method->GetParent());
        QueryElementList arguments;
        for (const IQueryElement* const argument : method->GetArguments()) {
            arguments.push_back(Decorate(argument));
        }
        return new ElementMethod(parent, method->GetName(), arguments, method->IsMember(), position);
    }
    if (const auto* const group = dynamic_cast<const ElementGroup*>(&node)) {
        IQueryElement* const source = Decorate(group->GetSource());
        return new ElementGroup(source, Decorate(group->GetInner()), position);
    }
    if (const auto* const unary = dynamic_cast<const OperatorUnary*>(&node)) {
        return new OperatorUnary(unary->GetOperator(), Decorate(unary->GetOperand()), position);
    }
    if (const auto* const binary = dynamic_cast<const OperatorBinary*>(&node)) {
        IQueryElement* const left = Decorate(binary->GetLeft());
        return new OperatorBinary(binary->GetOperator(), left, Decorate(binary->GetRight()), position);
    }
    if (const auto* const ternary = dynamic_cast<const OperatorTernary*>(&node)) {
        IQueryElement* const condition = Decorate(ternary->GetCondition());
        IQueryElement* const first = Decorate(ternary->GetFirst());
        return new OperatorTernary(ternary->GetOperator(), condition, first, Decorate(ternary->GetSecond()), position);
    }
    return nullptr;
}

} // namespace

IQueryElement* Decorate(const IQueryElement* tree) {
    IQueryElement* const copy = tree == nullptr ? nullptr : CopyNode(*tree);
    return copy == nullptr ? nullptr : new Decoration(copy);
}

} // namespace OrvUQL::Tests
