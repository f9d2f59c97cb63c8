#include "OrvUQL/Scalars.h"

#include "core/Failure.h"

namespace OrvUQL {

const ObjectBase::MethodMap* ObjectNull::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Chain(&ObjectBase::_GetMethodMap),
        MethodMap::CatchAll(L"e*", &ObjectNull::Method_CatchAll),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectNull::GetMethodMap() const { return _GetMethodMap(); }
OrvStringT ObjectNull::GetTypeName() const { return ORV_TEXT(L"null"); }
OrvStringT ObjectNull::ToString() const { return ORV_TEXT(L"null"); }

bool ObjectNull::ToBool(bool& out, IError**) const {
    out = false;
    return true;
}

bool ObjectNull::ToInt(int&, IError** err) const { return Fail(err, message::nullToInt); }
bool ObjectNull::ToDouble(double&, IError** err) const { return Fail(err, message::nullToDouble); }
IObject* ObjectNull::ToNumeric(IError** err) { return FailNull(err, message::nullToNumeric); }

IObject* ObjectNull::Method_CatchAll(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    AddRef();
    return this;
}

} // namespace OrvUQL
