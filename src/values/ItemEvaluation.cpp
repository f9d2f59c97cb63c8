#include "values/ItemEvaluation.h"

#include "OrvUQL/Scalars.h"

#include "core/CountAccess.h"
#include "core/EngineAccess.h"

#include <utility>

namespace OrvUQL::detail {

namespace {

Reference<IObject> ShareOrNull(IObject* object) {
    if (object == nullptr) {
        return Reference<IObject>(new ObjectNull());
    }
    object->AddRef();
    return Reference<IObject>(object);
}

void ReleaseField(IObject*& field) {
    if (IObject* const object = std::exchange(field, nullptr)) {
        object->Release();
    }
}

} // namespace

ItemEvaluation::ItemEvaluation(QueryEngine* queryEngine, const IQueryElement* element, IObject* userData)
    : engine(queryEngine), expression(element), data(ShareOrNull(userData)) {}

ItemEvaluation::~ItemEvaluation() = default;

IObject* ItemEvaluation::Evaluate(IObject* lasteval, IObject* item, int position, IError** err) {
    Reference<IObject> heldLast(lasteval);
    Reference<IObject> heldItem(item);
    if (!iterator) {
        iterator.Reset(new ObjectIterator(nullptr, nullptr, nullptr, data.Get()));
    }
    iterator->lasteval = heldLast.Detach();
    iterator->item = heldItem.Detach();
    iterator->position = position;
    if (!engine->PushVariable(iterator.Get())) {
        throw std::bad_alloc();
    }
    struct Pop { // before anything else can ask for the variable: the array, or the value's conversion
        QueryEngine* engine;
        Reference<ObjectIterator>& iterator;
        ~Pop() {
            engine->PopVariable();
            if (CountAccess::Count(iterator.Get()) != 1) {
                iterator.Reset(nullptr); // somebody kept it, and it stays as it is
                return;
            }
            ReleaseField(iterator->lasteval);
            ReleaseField(iterator->item);
            ReleaseField(iterator->index);
        }
    } pop{engine, iterator};
    return EvaluateArgument(expression, engine, err);
}

} // namespace OrvUQL::detail
