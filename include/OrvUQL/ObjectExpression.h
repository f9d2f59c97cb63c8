// An argument that a method receives unevaluated.
#pragma once

#include "OrvUQL/Object.h"

namespace OrvUQL {

/// Wraps a query element for a parameter whose signature letter is E: type "expression". It has no methods, converts to
/// nothing, and says nothing about it: every conversion returns false or null and leaves `*err` as it was.
class ORVUQL_API ObjectExpression : public RefCountImpl<IObject> {
public:
    /// Takes a reference to `element`, which may be null.
    explicit ObjectExpression(IQueryElement* element);
    ObjectExpression(const ObjectExpression&) = default;
    ObjectExpression& operator=(const ObjectExpression&) = default;
    ~ObjectExpression() override;

    /// The wrapped element, borrowed.
    IQueryElement* GetQueryElement() const { return element; }

    EType GetType() const override { return TypeExpression; }
    OrvStringT GetTypeName() const override;
    bool IsStaticInstance() const override { return false; }
    bool IsNull() const override { return false; }
    bool IsUnit() const override { return false; }
    ORV_OVERLOADS2(
        IUnit* GetUnitInterface() override { return nullptr; },
        const IUnit* GetUnitInterface() const override { return nullptr; })
    bool ToBool(bool& out, IError** err) const override;
    bool ToInt(int& out, IError** err) const override;
    bool ToDouble(double& out, IError** err) const override;
    bool ToString(OrvStringT& out, IError** err) const override;
    /// Returns E_NOTIMPL (0x80004001).
    VariantResult ToVariant(VARIANT& out, IError** err) const override;
    IObject* ToNumeric(IError** err) override;
    IUnit* ToUnit(IUnitDefinition* unit, IError** err) override;
    IObject* ChangeType(EType type, IError** err) override;
    bool CompareTo(EOperType op, IObject* other, bool reversed, bool& result, IError** err) const override;
    IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) override;

    static void* operator new(std::size_t size);
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block, std::size_t size) noexcept;
    static void operator delete(void*, void*) noexcept {}

private:
    IQueryElement* element;
};

} // namespace OrvUQL
