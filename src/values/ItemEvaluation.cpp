#include "values/ItemEvaluation.h"

#include "OrvUQL/Scalars.h"

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

ItemEvaluation::ItemEvaluation(QueryEngine* queryEngine, const IQueryElement* element, IObject* userData, IError** err)
    : engine(queryEngine), expression(element, queryEngine, err), data(ShareOrNull(userData)) {}

ItemEvaluation::~ItemEvaluation() { DropIterator(); }

/// Where memory ends, the values for it are disposed of.
void ItemEvaluation::MakeIterator(const Value& lasteval, IObject* item) {
    ValueHolder heldLast(lasteval);
    Reference<IObject> heldItem(item);
    iterator = new ObjectIterator(nullptr, nullptr, nullptr, data.Get());
    iterator->AddRef();
    heldLast.Detach();
    heldItem.Detach();
}

/// After an expression that kept the iterator, or in which a host set another variable, which is `inner`.
void ItemEvaluation::TakeBack(IObject* inner) noexcept {
    if (inner != iterator) {
        iterator->AddRef(); // the engine has released the one that was lent
        if (inner != nullptr) {
            inner->Release();
        }
    }
    if (CountAccess::Count(iterator) == ownReferences) {
        IteratorAccess::Empty(iterator);
    } else {
        DropIterator(); // whoever kept it finds it as it is
    }
}

void ItemEvaluation::DropIterator() noexcept {
    if (ObjectIterator* const dropped = std::exchange(iterator, nullptr)) {
        --CountAccess::Count(dropped);
        dropped->Release();
    }
}

} // namespace OrvUQL::detail
