// The interface of every run-time value.
#pragma once

#include "OrvUQL/Error.h"
#include "OrvUQL/OrvString.h"
#include "OrvUQL/RefCount.h"
#include "OrvUQL/Variant.h"

// windows.h turns the names GetObject and GetMessage into others by macro; the interfaces keep theirs.
#pragma push_macro("GetObject")
#undef GetObject

namespace OrvUQL {

class IUnit;
class IUnitDefinition;
class QueryEngine;

/// What a comparison asks. OperEqual and OperNotEqual are the lenient pair (letter case of texts is ignored, lengths
/// have a tolerance), OperStrictEqual is exact; there is deliberately no strict inequality.
enum EOperType : std::int32_t {
    OperNone = 0,
    OperGreater = 1,
    OperGreaterEqual = 2,
    OperLess = 3,
    OperLessEqual = 4,
    OperEqual = 5,
    OperStrictEqual = 6,
    OperNotEqual = 7,
};

/// A run-time value. Values never change after construction. The order of the virtual operations is fixed: hosts
/// compile against it. Every `err` may be null.
class ORVUQL_SHARED_TYPE IObject : public IRefCountObject {
public:
    enum EType : std::int32_t {
        TypeNull = 0,
        TypeBool = 1,
        TypeInt = 2,
        TypeDouble = 3,
        TypeString = 4,
        TypeArray = 5,
        TypeUnit = 6,
        TypeCom = 7,
        /// The global object, the iterator, and objects of a host: tell them apart by class, not by this code.
        TypeGlobal = 8,
        TypeExpression = 9,
    };

    /// The type code by which operators choose their rule.
    virtual EType GetType() const = 0;
    /// The name the user sees, as in messages and in `x.TypeName()`.
    virtual OrvStringT GetTypeName() const = 0;
    /// True for a type object such as the global function `int` gives: only static methods can be called on it.
    virtual bool IsStaticInstance() const = 0;
    /// True only for the null value.
    virtual bool IsNull() const = 0;
    /// True only for a value with a unit.
    virtual bool IsUnit() const = 0;
    /// The value's face as a unit, borrowed; null for all but unit values.
    ORV_OVERLOADS2(virtual IUnit* GetUnitInterface() = 0;, virtual const IUnit* GetUnitInterface() const = 0;)
    /// The conversions return false on failure, with an error in `*err`; `out` is then unspecified.
    virtual bool ToBool(bool& out, IError** err) const = 0;
    virtual bool ToInt(int& out, IError** err) const = 0;
    virtual bool ToDouble(double& out, IError** err) const = 0;
    virtual bool ToString(OrvStringT& out, IError** err) const = 0;
    /// Fills an OLE Automation VARIANT, which need not be initialised and then belongs to the caller (VariantClear).
    /// Returns an HRESULT, and on failure leaves an error only where it says so; where there is no OLE Automation
    /// always E_NOTIMPL (0x80004001), `out` untouched.
    virtual VariantResult ToVariant(VARIANT& out, IError** err) const = 0;
    /// A new int or double, whichever suits the value, or null.
    virtual IObject* ToNumeric(IError** err) = 0;
    /// The value as a unit comparable with `unit` (borrowed), or null. The result holds one reference, which is
    /// released through `GetObject()->Release()`.
    virtual IUnit* ToUnit(IUnitDefinition* unit, IError** err) = 0;
    /// A new value of the given scalar type (TypeBool to TypeString), or null; null without an error for other types.
    virtual IObject* ChangeType(EType type, IError** err) = 0;
    /// Compares this value with `other` (borrowed). With `reversed` false this value is the left operand, else the
    /// right one. Returns true with the verdict in `result`, or false on failure.
    virtual bool CompareTo(EOperType op, IObject* other, bool reversed, bool& result, IError** err) const = 0;
    /// Calls the method `name` (any letter case, NUL-terminated) with unevaluated arguments (borrowed; a null entry
    /// is an omitted argument). Returns the result with a reference, or null on failure.
    virtual IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) = 0;
};

} // namespace OrvUQL

#pragma pop_macro("GetObject")
