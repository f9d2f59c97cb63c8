// A JSON object as a value of the language.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "JsonKeys.h"
#include "Ref.h"

namespace OrvUQL::Tool {

/// Type "object". Its members are its methods: `@order.total`. The methods that every value has come first, and two of
/// its own, `Get('name')` and `Keys()`, by which members are reached whose names no query can spell or that those
/// methods hide. A name is looked for as it is written, then without regard to case; a member that is not there is the
/// null value.
class JsonObject : public ObjectBase {
public:
    /// Takes over a reference to the names, and the values' references: one non-null value for each name, in their
    /// order.
    JsonObject(Ref<JsonKeys> keys, ObjectList&& values);
    ~JsonObject() override;

    const JsonKeys& GetKeys() const { return *keys; }
    /// The values, borrowed.
    const ObjectList& GetValues() const { return values; }

    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }
    /// Compact JSON, the members in input order.
    OrvStringT ToString() const override;
    using ObjectBase::ToString;
    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"object"); }

    const MethodMap* _GetMethodMap() const;

private:
    IObject* Method_Get(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Keys(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Member(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    IObject* Read(std::wstring_view name) const;

    Ref<JsonKeys> keys;
    ObjectList values;
};

} // namespace OrvUQL::Tool
