// A host object with named members, as JSON has them.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Type "object". Its members are its methods: `@order.total`. The methods that every value has come first, and two of
/// its own, `Get('name')` and `Keys()`, by which members are reached whose names no query can spell or that those
/// methods hide. A name is looked for as it is written, then without regard to case; a member that is not there is the
/// null value. Where the members are kept is the derived class's affair.
class JsonObject : public ObjectBase {
public:
    /// Appends the object as compact JSON, the members in input order. Takes a stack that does not depend on its depth.
    virtual void AppendJson(std::string& out) const = 0;

    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }
    /// Compact JSON.
    OrvStringT ToString() const override;
    using ObjectBase::ToString;
    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"object"); }

    const MethodMap* _GetMethodMap() const;

protected:
    /// The member of that name with a new reference, or null if there is none.
    virtual IObject* Find(std::wstring_view name) const = 0;
    /// Appends a string for each name, in input order.
    virtual void AppendKeys(ObjectList& names) const = 0;

private:
    IObject* Method_Get(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Keys(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Member(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    IObject* Read(std::wstring_view name) const;
};

} // namespace OrvUQL::Tool
