#include "OrvUQL/ObjectIterator.h"

#include "OrvUQL/Scalars.h"

#include "values/IteratorAccess.h"

namespace OrvUQL {

namespace {

void AddRefIfAny(IObject* object) {
    if (object != nullptr) {
        object->AddRef();
    }
}

/// A field that holds nothing answers nothing, without an error.
IObject* Share(IObject* object) {
    AddRefIfAny(object);
    return object;
}

} // namespace

ObjectIterator::ObjectIterator(IObject* lastEvaluation, IObject* currentItem, IObject* currentIndex, IObject* userData)
    : lasteval(lastEvaluation), item(currentItem), index(currentIndex), data(userData) {
    AddRefIfAny(lasteval);
    AddRefIfAny(item);
    AddRefIfAny(index);
    AddRefIfAny(data);
}

ObjectIterator::~ObjectIterator() {
    ReleaseNested(lasteval);
    ReleaseNested(item);
    ReleaseNested(index);
    ReleaseNested(data);
}

const ObjectBase::MethodMap* ObjectIterator::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Method(L"lasteval", L"", &ObjectIterator::Method_LastEval),
        MethodMap::Method(L"item", L"", &ObjectIterator::Method_Item),
        MethodMap::Method(L"index", L"", &ObjectIterator::Method_Index),
        MethodMap::Method(L"data", L"", &ObjectIterator::Method_Data),
        MethodMap::Chain(&ObjectBase::_GetMethodMap),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectIterator::GetMethodMap() const { return _GetMethodMap(); }
OrvStringT ObjectIterator::GetTypeName() const { return ORV_TEXT(L"iterator"); }

IObject* ObjectIterator::Method_LastEval(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    if (lasteval == nullptr && position > 0) {
        lasteval = detail::Box(detail::IteratorAccess::LastScalar(this));
    }
    return Share(lasteval);
}

IObject* ObjectIterator::Method_Item(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return Share(item);
}

IObject* ObjectIterator::Method_Index(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    if (index == nullptr && position > 0) {
        index = new ObjectInt(position);
    }
    return Share(index);
}

IObject* ObjectIterator::Method_Data(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return Share(data);
}

} // namespace OrvUQL
