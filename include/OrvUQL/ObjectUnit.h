// A quantity with a unit of measure.
#pragma once

#include "OrvUQL/ObjectBase.h"
#include "OrvUQL/Unit.h"

#pragma push_macro("GetObject")
#undef GetObject

namespace OrvUQL {

/// A magnitude in base units, the definition in which it is shown, and a power (1 a length, 2 an area, 0 a plain
/// number): type "unit".
class ORVUQL_API ObjectUnit : public ObjectBase, public IUnit {
public:
    /// Takes a reference to `definition`; null makes a value with factor 1 and empty name and category. With `scale`
    /// the value is in the definition's unit and is multiplied by its factor raised to the power; without, in base
    /// units.
    ObjectUnit(IUnitDefinition* definition, double value, int power, bool scale);
    ObjectUnit(const ObjectUnit&) = delete;
    ObjectUnit& operator=(const ObjectUnit&) = delete;
    ~ObjectUnit() override;

    const MethodMap* GetMethodMap() const override;
    /// GetDisplayString().
    OrvStringT ToString() const override;

    EType GetType() const override { return TypeUnit; }
    OrvStringT GetTypeName() const override;
    bool IsUnit() const override { return true; }
    ORV_OVERLOADS2(
        IUnit* GetUnitInterface() override { return this; },
        const IUnit* GetUnitInterface() const override { return this; })
    using ObjectBase::ToString;
    /// This value itself with one more reference if `unit` is of the same category (it keeps its own definition), else
    /// "Cannot convert unit '%1' of category '%2' to category '%3'".
    IUnit* ToUnit(IUnitDefinition* unit, IError** err) override;

    double GetValue() const override { return value; }
    double GetDisplayValue() const override;
    double GetFactor() const override;
    double GetFactorValue() const override;
    OrvStringT GetName() const override;
    OrvStringT GetDisplayName() const override;
    OrvStringT GetDisplayString() const override;
    OrvStringT GetCategory() const override;
    int GetPower() const override { return power; }
    IUnitDefinition* GetUnitDefinition() const override { return definition; }
    ORV_OVERLOADS2(
        IObject* GetObject() override { return this; }, const IObject* GetObject() const override { return this; })

    const MethodMap* _GetMethodMap() const;

private:
    IObject* Method_Category(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Power(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Unit(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_DisplayUnit(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Value(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_BaseValue(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Convert(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Round(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    double value;
    IUnitDefinition* definition;
    int power;
};

} // namespace OrvUQL

#pragma pop_macro("GetObject")
