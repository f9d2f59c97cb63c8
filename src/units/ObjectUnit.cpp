#include "OrvUQL/ObjectUnit.h"

#include "OrvUQL/ObjectString.h"
#include "OrvUQL/Scalars.h"

#include "core/Failure.h"
#include "core/NumberConversion.h"
#include "platform/NumberText.h"
#include "platform/Power.h"

namespace OrvUQL {

ObjectUnit::ObjectUnit(IUnitDefinition* unit, double magnitude, int unitPower, bool scale)
    : value(magnitude), definition(unit), power(unitPower) {
    if (scale) {
        value *= GetFactorValue();
    }
    if (definition != nullptr) {
        definition->AddRef();
    }
}

ObjectUnit::~ObjectUnit() {
    if (definition != nullptr) {
        definition->Release();
    }
}

const ObjectBase::MethodMap* ObjectUnit::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Method(L"Category", L"", &ObjectUnit::Method_Category),
        MethodMap::Method(L"Power", L"", &ObjectUnit::Method_Power),
        MethodMap::Method(L"Unit", L"", &ObjectUnit::Method_Unit),
        MethodMap::Method(L"DisplayUnit", L"", &ObjectUnit::Method_DisplayUnit),
        MethodMap::Method(L"Value", L"", &ObjectUnit::Method_Value),
        MethodMap::Method(L"BaseValue", L"", &ObjectUnit::Method_BaseValue),
        MethodMap::Method(L"Convert", L"S", &ObjectUnit::Method_Convert),
        MethodMap::Method(L"Round", L"i", &ObjectUnit::Method_Round),
        MethodMap::Chain(&ObjectBase::_GetMethodMap),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectUnit::GetMethodMap() const { return _GetMethodMap(); }
OrvStringT ObjectUnit::GetTypeName() const { return ORV_TEXT(L"unit"); }
OrvStringT ObjectUnit::ToString() const { return GetDisplayString(); }

IUnit* ObjectUnit::ToUnit(IUnitDefinition* unit, IError** err) {
    return Guarded(err, [&]() -> IUnit* {
        const OrvStringT mine = GetCategory();
        const OrvStringT wanted = unit == nullptr ? OrvStringT() : unit->GetCategory();
        if (mine != wanted) {
            return FailNull(err, message::unitToCategory, GetDisplayName(), mine, wanted);
        }
        AddRef();
        return this;
    });
}

double ObjectUnit::GetFactor() const { return definition == nullptr ? 1.0 : definition->GetFactor(); }

double ObjectUnit::GetFactorValue() const {
    const double factor = GetFactor();
    return power == 1 ? factor : platform::Power(factor, power);
}

double ObjectUnit::GetDisplayValue() const { return value / GetFactorValue(); }
OrvStringT ObjectUnit::GetName() const { return definition == nullptr ? OrvStringT() : definition->GetName(); }
OrvStringT ObjectUnit::GetCategory() const { return definition == nullptr ? OrvStringT() : definition->GetCategory(); }

OrvStringT ObjectUnit::GetDisplayName() const {
    OrvStringT text = GetName();
    switch (power) {
    case 1:
        break;
    case 2:
        text += L'\u00b2';
        break;
    case 3:
        text += L'\u00b3';
        break;
    default:
        text += L'^';
        platform::AppendTo(text, power);
    }
    return text;
}

OrvStringT ObjectUnit::GetDisplayString() const {
    OrvStringT text = OrvUtils::String::ToStringW(GetDisplayValue());
    if (power != 0) {
        text += L' ';
        text += GetDisplayName();
    }
    return text;
}

IObject* ObjectUnit::Method_Category(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectString(GetCategory());
}

IObject* ObjectUnit::Method_Power(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectInt(power);
}

IObject* ObjectUnit::Method_Unit(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectString(GetName());
}

IObject* ObjectUnit::Method_DisplayUnit(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectString(GetDisplayName());
}

IObject* ObjectUnit::Method_Value(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectDouble(GetDisplayValue());
}

IObject* ObjectUnit::Method_BaseValue(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectDouble(value);
}

IObject* ObjectUnit::Method_Convert(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    OrvStringT unitName;
    if (!params[0]->ToString(unitName, err)) {
        return nullptr;
    }
    // The value's own catalogue is asked, not the engine: only there have factors the same base unit.
    IUnitFactory* const catalogue = definition == nullptr ? nullptr : definition->GetFactory();
    const Reference<IUnitDefinition> target(catalogue == nullptr ? nullptr : catalogue->FindUnit(unitName.GetString()));
    if (!target) {
        return FailNull(err, message::invalidUnitName, unitName);
    }
    return new ObjectUnit(target.Get(), value, power, false);
}

IObject* ObjectUnit::Method_Round(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    int decimals = 0;
    if (!ReadRoundingPrecision(params[0], decimals, err)) {
        return nullptr;
    }
    return new ObjectUnit(definition, RoundToDecimals(GetDisplayValue(), decimals), power, true);
}

} // namespace OrvUQL
