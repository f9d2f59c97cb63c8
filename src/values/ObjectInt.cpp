#include "OrvUQL/Scalars.h"

#include "core/Failure.h"

namespace OrvUQL {

const ObjectBase::MethodMap* ObjectInt::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Method(L"Abs", L"", &ObjectInt::Method_Abs),
        MethodMap::Chain(&ObjectNumeric::_GetMethodMap),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectInt::GetMethodMap() const { return _GetMethodMap(); }
OrvStringT ObjectInt::GetTypeName() const { return ORV_TEXT(L"int"); }
OrvStringT ObjectInt::ToString() const { return OrvUtils::String::ToStringW(value); }

bool ObjectInt::ToBool(bool& out, IError**) const {
    out = value != 0;
    return true;
}

bool ObjectInt::ToInt(int& out, IError**) const {
    out = value;
    return true;
}

bool ObjectInt::ToDouble(double& out, IError**) const {
    out = value;
    return true;
}

IObject* ObjectInt::ToNumeric(IError** err) {
    return Guarded(err, [&]() -> IObject* { return new ObjectInt(value); });
}

IObject* ObjectInt::Method_Abs(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    // -2147483648 has no positive counterpart and stays what it is; deliberately no error.
    const unsigned bits = static_cast<unsigned>(value);
    return new ObjectInt(static_cast<int>(value < 0 ? 0u - bits : bits));
}

} // namespace OrvUQL
