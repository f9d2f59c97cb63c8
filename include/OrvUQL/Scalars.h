// The null value, booleans, 32-bit integers and doubles.
#pragma once

#include "OrvUQL/ObjectBase.h"

namespace OrvUQL {

/// The null value: type "null", text "null", false as a bool, and no number. Any method that not every value has
/// answers null again, its arguments unevaluated, so that a chain of calls over missing data ends in null and not in
/// an error.
class ORVUQL_API ObjectNull : public ObjectBaseStaticImpl {
public:
    ObjectNull() noexcept : ObjectBaseStaticImpl(false) {}
    ~ObjectNull() override = default;

    const MethodMap* GetMethodMap() const override;
    OrvStringT ToString() const override;
    EType GetType() const override { return TypeNull; }
    OrvStringT GetTypeName() const override;
    bool IsNull() const override { return true; }
    bool ToBool(bool& out, IError** err) const override;
    /// Fails: "Cannot convert the object 'null' to type 'Int'".
    bool ToInt(int& out, IError** err) const override;
    /// Fails: "Cannot convert the object 'null' to type 'Double'".
    bool ToDouble(double& out, IError** err) const override;
    using ObjectBase::ToString;
    /// Fails: "Cannot convert the object 'null' to a numeric type".
    IObject* ToNumeric(IError** err) override;

    const MethodMap* _GetMethodMap() const;

private:
    IObject* Method_CatchAll(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
};

/// True or false: type "bool", text "true" or "false", 1 or 0 as a number. It has the methods that every value has.
class ORVUQL_API ObjectBool : public ObjectBaseStaticImpl {
public:
    /// The type object: false, and only static methods can be called on it.
    ObjectBool() noexcept : ObjectBaseStaticImpl(true), value(false) {}
    explicit ObjectBool(bool truth) noexcept : ObjectBaseStaticImpl(false), value(truth) {}
    ~ObjectBool() override = default;

    bool GetValue() const noexcept { return value; }

    OrvStringT ToString() const override;
    EType GetType() const override { return TypeBool; }
    OrvStringT GetTypeName() const override;
    bool ToBool(bool& out, IError** err) const override;
    bool ToInt(int& out, IError** err) const override;
    bool ToDouble(double& out, IError** err) const override;
    using ObjectBase::ToString;
    IObject* ToNumeric(IError** err) override;

private:
    bool value;
};

/// What ints and doubles have in common.
class ORVUQL_API ObjectNumeric : public ObjectBaseStaticImpl {
public:
    const MethodMap* GetMethodMap() const override;
    /// A new unit value of `unit`'s definition with power 0 and the number itself as its base value: a plain number
    /// beside a unit is a dimensionless factor, not a quantity in that unit.
    IUnit* ToUnit(IUnitDefinition* unit, IError** err) override;

    const MethodMap* _GetMethodMap() const;

protected:
    explicit ObjectNumeric(bool staticInstance) noexcept : ObjectBaseStaticImpl(staticInstance) {}
    ObjectNumeric(const ObjectNumeric&) noexcept = default;
    ObjectNumeric& operator=(const ObjectNumeric&) noexcept = default;
    ~ObjectNumeric() override = default;

private:
    IObject* Method_ToRadians(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_ToDegrees(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Radix(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
};

/// A signed 32-bit integer: type "int".
class ORVUQL_API ObjectInt : public ObjectNumeric {
public:
    /// The type object: 0, and only static methods can be called on it.
    ObjectInt() noexcept : ObjectNumeric(true), value(0) {}
    explicit ObjectInt(int number) noexcept : ObjectNumeric(false), value(number) {}
    ~ObjectInt() override = default;

    int GetValue() const noexcept { return value; }

    const MethodMap* GetMethodMap() const override;
    OrvStringT ToString() const override;
    EType GetType() const override { return TypeInt; }
    OrvStringT GetTypeName() const override;
    bool ToBool(bool& out, IError** err) const override;
    bool ToInt(int& out, IError** err) const override;
    bool ToDouble(double& out, IError** err) const override;
    using ObjectBase::ToString;
    IObject* ToNumeric(IError** err) override;

    const MethodMap* _GetMethodMap() const;

private:
    IObject* Method_Abs(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    int value;
};

/// A double: type "double".
class ORVUQL_API ObjectDouble : public ObjectNumeric {
public:
    /// The type object: 0, and only static methods can be called on it.
    ObjectDouble() noexcept : ObjectNumeric(true), value(0.0) {}
    explicit ObjectDouble(double number) noexcept : ObjectNumeric(false), value(number) {}
    ~ObjectDouble() override = default;

    double GetValue() const noexcept { return value; }

    const MethodMap* GetMethodMap() const override;
    OrvStringT ToString() const override;
    EType GetType() const override { return TypeDouble; }
    OrvStringT GetTypeName() const override;
    /// True for every value but 0; a NaN is true.
    bool ToBool(bool& out, IError** err) const override;
    /// Rounds half away from zero. The bounds are tested before the rounding, so that 2147483647.4 fails with "Data
    /// overflow occured while converting a floating point number %1 to integer"; a NaN gives -2147483648.
    bool ToInt(int& out, IError** err) const override;
    bool ToDouble(double& out, IError** err) const override;
    using ObjectBase::ToString;
    IObject* ToNumeric(IError** err) override;

    const MethodMap* _GetMethodMap() const;

private:
    IObject* Method_Abs(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Round(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    double value;
};

} // namespace OrvUQL
