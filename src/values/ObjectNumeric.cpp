// What ints and doubles have in common.

#include "OrvUQL/ObjectUnit.h"
#include "OrvUQL/Scalars.h"

#include "core/Failure.h"
#include "core/NumberConversion.h"

namespace OrvUQL {

namespace {

constexpr double degreesInRadian = 57.29577951308232;

} // namespace

const ObjectBase::MethodMap* ObjectNumeric::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Method(L"ToRadians", L"", &ObjectNumeric::Method_ToRadians),
        MethodMap::Method(L"ToDegrees", L"", &ObjectNumeric::Method_ToDegrees),
        MethodMap::Method(L"Radix", L"Ii", &ObjectNumeric::Method_Radix),
        MethodMap::Chain(&ObjectBase::_GetMethodMap),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectNumeric::GetMethodMap() const { return _GetMethodMap(); }

IUnit* ObjectNumeric::ToUnit(IUnitDefinition* unit, IError** err) {
    return Guarded(err, [&]() -> IUnit* {
        double number = 0;
        if (!ToDouble(number, err)) {
            return nullptr;
        }
        return new ObjectUnit(unit, number, 0, false);
    });
}

IObject* ObjectNumeric::Method_ToRadians(QueryEngine*, const OrvStringT&, const ObjectList&, IError** err) {
    double number = 0;
    return ToDouble(number, err) ? new ObjectDouble(number / degreesInRadian) : nullptr;
}

IObject* ObjectNumeric::Method_ToDegrees(QueryEngine*, const OrvStringT&, const ObjectList&, IError** err) {
    double number = 0;
    return ToDouble(number, err) ? new ObjectDouble(number * degreesInRadian) : nullptr;
}

IObject* ObjectNumeric::Method_Radix(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    int number = 0;
    int radix = 0;
    int width = 0;
    if (!ToInt(number, err) || !params[0]->ToInt(radix, err) ||
        (params[1] != nullptr && !params[1]->ToInt(width, err))) {
        return nullptr;
    }
    return MakeRadixText(number, radix, width, err);
}

} // namespace OrvUQL
