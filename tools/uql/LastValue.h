// What `$` stands for in a session that nothing else has been set in.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "Ref.h"

namespace OrvUQL::Tool {

/// Type "session": has a method `last`, the value of the query before. Unlike other values it changes, from one query
/// to the next, never while one is evaluated.
class LastValue : public ObjectBase {
public:
    LastValue() = default;
    ~LastValue() override;

    /// Takes a reference.
    void Set(IObject* newValue);

    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }
    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"session"); }

    const MethodMap* _GetMethodMap() const;

private:
    IObject* Method_Last(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    Ref<IObject> value;
};

} // namespace OrvUQL::Tool
