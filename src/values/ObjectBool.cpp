#include "OrvUQL/Scalars.h"

#include "core/Failure.h"

namespace OrvUQL {

OrvStringT ObjectBool::GetTypeName() const { return ORV_TEXT(L"bool"); }
OrvStringT ObjectBool::ToString() const { return OrvUtils::String::ToStringW(value); }

bool ObjectBool::ToBool(bool& out, IError**) const {
    out = value;
    return true;
}

bool ObjectBool::ToInt(int& out, IError**) const {
    out = value ? 1 : 0;
    return true;
}

bool ObjectBool::ToDouble(double& out, IError**) const {
    out = value ? 1.0 : 0.0;
    return true;
}

IObject* ObjectBool::ToNumeric(IError** err) {
    return Guarded(err, [&]() -> IObject* { return new ObjectInt(value ? 1 : 0); });
}

} // namespace OrvUQL
