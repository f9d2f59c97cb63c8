// Units of measure: definitions, the catalogues that offer them, and a value's face as a unit.
//
// A catalogue belongs to one category ("Linear Dimensions") and gives each unit's factor: the size of one unit in the
// category's base unit. Values keep their magnitude in base units, so every conversion inside a category is a
// multiplication or division by factors.
#pragma once

#include "OrvUQL/OrvString.h"
#include "OrvUQL/RefCount.h"

#pragma push_macro("GetObject")
#undef GetObject

namespace OrvUQL {

class IUnitFactory;

/// A unit: immutable, made by a catalogue.
class ORVUQL_SHARED_TYPE IUnitDefinition : public IRefCountObject {
public:
    /// Unique within the catalogue.
    virtual int GetId() const = 0;
    /// As written in queries.
    virtual OrvStringT GetName() const = 0;
    /// Size of one unit in base units of the category.
    virtual double GetFactor() const = 0;
    /// The catalogue that made the definition, borrowed.
    virtual IUnitFactory* GetFactory() const = 0;
    virtual OrvStringT GetCategory() const = 0;
};

/// A catalogue of units of one category.
class ORVUQL_SHARED_TYPE IUnitFactory : public IRefCountObject {
public:
    /// The definition for a name or an id, with a new reference; null if there is none.
    ORV_OVERLOADS2(virtual IUnitDefinition* FindUnit(const wchar_t* name) = 0;
                   , virtual IUnitDefinition* FindUnit(int id) = 0;)
    virtual OrvStringT GetUnitCategory() const = 0;
};

/// A value's face as a unit. It has no count of its own: an IUnit* handed out with a reference is released through
/// `GetObject()->Release()`. (In a host that includes windows.h, `GetObject` is a macro; the forwarders below make
/// such calls work, and a class that overrides it undefines the macro.)
class ORVUQL_SHARED_TYPE IUnit {
public:
    /// Magnitude in base units of the category, raised to the power.
    virtual double GetValue() const = 0;
    /// Magnitude in the value's own unit: GetValue() / GetFactorValue().
    virtual double GetDisplayValue() const = 0;
    /// The definition's factor.
    virtual double GetFactor() const = 0;
    /// The factor raised to the power.
    virtual double GetFactorValue() const = 0;
    /// The definition's name, such as "cm".
    virtual OrvStringT GetName() const = 0;
    /// The name with a mark for the power: "cm", "cm²", "cm³", else "cm^0", "cm^-1", "cm^4".
    virtual OrvStringT GetDisplayName() const = 0;
    /// The display value and the display name; of power 0 the bare number.
    virtual OrvStringT GetDisplayString() const = 0;
    virtual OrvStringT GetCategory() const = 0;
    /// 1 a length, 2 an area, 0 a plain number.
    virtual int GetPower() const = 0;
    /// Borrowed.
    virtual IUnitDefinition* GetUnitDefinition() const = 0;
    /// The value itself, borrowed.
    ORV_OVERLOADS2(virtual IObject* GetObject() = 0;, virtual const IObject* GetObject() const = 0;)

    IObject* GetObjectA() { return GetObject(); }
    const IObject* GetObjectA() const { return GetObject(); }
    IObject* GetObjectW() { return GetObject(); }
    const IObject* GetObjectW() const { return GetObject(); }

protected:
    ~IUnit() = default;
};

/// One row of a catalogue's table; a row whose name is null ends the table.
struct UnitData {
    int id;
    const wchar_t* name;
    double factor;
};

/// The library's definition class.
class ORVUQL_API UnitDefinition : public RefCountImpl<IUnitDefinition> {
public:
    /// Copies the name and takes a reference to `factory`, which may be null.
    UnitDefinition(int id, const wchar_t* name, double factor, IUnitFactory* factory);
    UnitDefinition(const UnitDefinition&) = delete;
    UnitDefinition& operator=(const UnitDefinition&) = delete;
    ~UnitDefinition() override;

    int GetId() const override { return id; }
    OrvStringT GetName() const override { return name; }
    double GetFactor() const override { return factor; }
    IUnitFactory* GetFactory() const override { return factory; }
    OrvStringT GetCategory() const override;

private:
    int id;
    OrvStringT name;
    double factor;
    IUnitFactory* factory;
};

/// Base of catalogues that are a table of rows. A host derives from it to offer units of its own:
///
///     class Weights : public OrvUQL::UnitFactoryBase {
///     public:
///         OrvStringT GetUnitCategory() const override { return ORV_TEXT(L"Weights"); }
///     protected:
///         const OrvUQL::UnitData* GetDataList() override {
///             static const OrvUQL::UnitData rows[] = {{1, L"g", 1.0}, {2, L"kg", 1000.0}, {0, nullptr, 0.0}};
///             return rows;
///         }
///     };
class ORVUQL_API UnitFactoryBase : public RefCountImpl<IUnitFactory> {
public:
    /// By name the first row that matches without regard to case decides, and its id is looked up; every call makes a
    /// new definition, which holds a reference to this catalogue. Null also where memory ends.
    ORV_OVERLOADS2(IUnitDefinition* FindUnit(const wchar_t* name) override;
                   , IUnitDefinition* FindUnit(int id) override;)

protected:
    UnitFactoryBase() noexcept = default;
    ~UnitFactoryBase() override;

    /// The table, borrowed; it must outlive every use of the catalogue.
    virtual const UnitData* GetDataList() = 0;

private:
    IUnitDefinition* CreateUnitDefinition(const UnitData* row);
};

/// The built-in catalogue of lengths, category "Linear Dimensions". Base unit is "un", a tenth of a micrometre.
class ORVUQL_API LinearDimensionUnits : public UnitFactoryBase {
public:
    /// `resolution` is the number of pixels in a kilometre (10^10 base units) and sets the size of "px"; 0 stands for
    /// 300 pixels an inch. It is not checked.
    explicit LinearDimensionUnits(double resolution);
    /// Copies would share a table that each frees.
    LinearDimensionUnits(const LinearDimensionUnits&) = delete;
    LinearDimensionUnits& operator=(const LinearDimensionUnits&) = delete;
    ~LinearDimensionUnits() override;

    OrvStringT GetUnitCategory() const override;

protected:
    const UnitData* GetDataList() override { return units; }

private:
    UnitData* units;
};

} // namespace OrvUQL

#pragma pop_macro("GetObject")
