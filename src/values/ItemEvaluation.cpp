#include "values/ItemEvaluation.h"

#include "OrvUQL/Scalars.h"

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
    : engine(queryEngine), expression(element), data(ShareOrNull(userData)), null(new ObjectNull()) {}

ItemEvaluation::~ItemEvaluation() { Drop(); }

IObject* ItemEvaluation::Evaluate(IObject* lasteval, IObject* item, int position, IError** err) {
    Reference<IObject> heldLast(lasteval);
    Reference<IObject> heldItem(item);
    if (iterator == nullptr) {
        Reference<ObjectIterator> fresh(new ObjectIterator(nullptr, nullptr, nullptr, data.Get()));
        if (!engine->PushVariable(fresh.Get())) {
            throw std::bad_alloc();
        }
        iterator = fresh.Detach();
    }
    if (!heldLast) {
        null->AddRef();
        heldLast.Reset(null.Get());
    }
    iterator->lasteval = heldLast.Detach();
    iterator->item = heldItem.Detach();
    iterator->position = position;
    IObject* const result = EvaluateArgument(expression, engine, err);
    // Its own reference and the engine's: nobody else looks at it, and it can be filled again.
    constexpr int own = 2;
    if (iterator->refCount == own && engine->GetVariable() == iterator) {
        ReleaseField(iterator->lasteval);
        ReleaseField(iterator->item);
        ReleaseField(iterator->index);
    } else {
        Drop();
    }
    return result;
}

void ItemEvaluation::Drop() noexcept {
    if (iterator != nullptr) {
        engine->PopVariable();
        iterator->Release();
        iterator = nullptr;
    }
}

} // namespace OrvUQL::detail
