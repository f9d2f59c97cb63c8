#include "values/ItemEvaluation.h"

#include "OrvUQL/Scalars.h"

#include "core/CountAccess.h"
#include "core/EngineAccess.h"
#include "values/IteratorAccess.h"

namespace OrvUQL::detail {

namespace {

Reference<IObject> ShareOrNull(IObject* object) {
    if (object == nullptr) {
        return Reference<IObject>(new ObjectNull());
    }
    object->AddRef();
    return Reference<IObject>(object);
}

} // namespace

ItemEvaluation::ItemEvaluation(QueryEngine* queryEngine, const IQueryElement* element, IObject* userData)
    : engine(queryEngine), expression(element), kind(KindOfElement(element)), data(ShareOrNull(userData)) {}

ItemEvaluation::~ItemEvaluation() = default;

Value ItemEvaluation::Evaluate(Value lasteval, IObject* item, int position, IError** err) {
    ValueHolder heldLast(lasteval);
    Reference<IObject> heldItem(item);
    if (!iterator) {
        iterator.Reset(new ObjectIterator(nullptr, nullptr, nullptr, data.Get()));
    }
    IteratorAccess::Fill(iterator.Get(), heldLast.Detach(), heldItem.Detach(), position);
    // What PushVariable() and PopVariable() do, without the stack: the variable that is put aside waits here.
    ++CountAccess::Count(iterator.Get());
    struct Pop { // before anything else can ask for the variable: the array, or the value's conversion
        QueryEngine* engine;
        IObject* outer;
        Reference<ObjectIterator>& iterator;
        ~Pop() {
            IObject* const inner = EngineAccess::ExchangeVariable(engine, outer);
            if (inner == iterator.Get()) {
                --CountAccess::Count(iterator.Get());
            } else if (inner != nullptr) {
                inner->Release(); // a host set another one
            }
            if (CountAccess::Count(iterator.Get()) != 1) {
                iterator.Reset(nullptr); // somebody kept it, and it stays as it is
                return;
            }
            IteratorAccess::Empty(iterator.Get());
        }
    } pop{engine, EngineAccess::ExchangeVariable(engine, iterator.Get()), iterator};
    return EvaluateArgumentValue(expression, kind, engine, err);
}

} // namespace OrvUQL::detail
