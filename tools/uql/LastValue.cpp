#include "LastValue.h"

namespace OrvUQL::Tool {

LastValue::~LastValue() = default;

void LastValue::Set(IObject* newValue) {
    newValue->AddRef();
    value = Ref<IObject>(newValue);
}

const ObjectBase::MethodMap* LastValue::_GetMethodMap() const {
    // Without the methods that every value has: This() would let a value hold the session, and the session hold itself.
    static const MethodMap table[] = {
        MethodMap::Method(L"last", L"", &LastValue::Method_Last),
        MethodMap::End(),
    };
    return table;
}

IObject* LastValue::Method_Last(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    if (!value) {
        return new ObjectNull();
    }
    value->AddRef();
    return value.Get();
}

} // namespace OrvUQL::Tool
