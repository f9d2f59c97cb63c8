// The global functions of the language.
#pragma once

#include "OrvUQL/ObjectBase.h"

namespace OrvUQL {

/// The object of bare names: `pi`, `sqrt(2)`, `max(a, b)`, `iif(c, a, b)`, `int.TypeName()`. A host makes one and
/// hands it to QueryEngine::SetGlobal(). Type "global". It has no state and no conversions, and its table does not
/// chain to the methods that every value has. A host offers functions of its own beside them by deriving from it and
/// chaining to its table.
class ORVUQL_API ObjectGlobal : public ObjectBase {
public:
    ObjectGlobal() noexcept = default;
    ~ObjectGlobal() override;

    const MethodMap* GetMethodMap() const override;
    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override;

    const MethodMap* _GetMethodMap() const;

private:
    IObject* Method_Bool(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Int(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Double(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_String(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Const(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_MinMax(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Math1(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_IIf(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Array(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Chr(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Rnd(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Radix(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Round(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
};

} // namespace OrvUQL
