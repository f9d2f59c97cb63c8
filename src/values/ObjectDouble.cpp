#include "OrvUQL/Scalars.h"

#include "core/Failure.h"
#include "core/NumberConversion.h"

#include <cmath>

namespace OrvUQL {

const ObjectBase::MethodMap* ObjectDouble::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Method(L"Abs", L"", &ObjectDouble::Method_Abs),
        MethodMap::Method(L"Round", L"i", &ObjectDouble::Method_Round),
        MethodMap::Chain(&ObjectNumeric::_GetMethodMap),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectDouble::GetMethodMap() const { return _GetMethodMap(); }
OrvStringT ObjectDouble::GetTypeName() const { return ORV_TEXT(L"double"); }
OrvStringT ObjectDouble::ToString() const { return OrvUtils::String::ToStringW(value); }

bool ObjectDouble::ToBool(bool& out, IError**) const {
    out = value != 0.0;
    return true;
}

bool ObjectDouble::ToInt(int& out, IError** err) const {
    return DoubleToInt(value, out) ||
           Guarded(err, [&] { return Fail(err, message::intOverflow, OrvUtils::String::ToStringW(value)); });
}

bool ObjectDouble::ToDouble(double& out, IError**) const {
    out = value;
    return true;
}

IObject* ObjectDouble::ToNumeric(IError** err) {
    return Guarded(err, [&]() -> IObject* { return new ObjectDouble(value); });
}

IObject* ObjectDouble::Method_Abs(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectDouble(std::fabs(value));
}

IObject* ObjectDouble::Method_Round(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    int decimals = 0;
    if (!ReadRoundingPrecision(params[0], decimals, err)) {
        return nullptr;
    }
    return new ObjectDouble(RoundToDecimals(value, decimals));
}

} // namespace OrvUQL
