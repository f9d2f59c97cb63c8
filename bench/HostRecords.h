// A host's record as a value of the language, in the two ways in which a host can offer one.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "Record.h"

namespace OrvUQL::bench {

/// Answers names from a method table, as most hosts do.
class TableRecord : public ObjectBase {
public:
    explicit TableRecord(const Record& record);

    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"record"); }
    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }

private:
    const MethodMap* _GetMethodMap() const;

    IObject* Method_A(QueryEngine*, const OrvStringT&, const ObjectList&, IError**);
    IObject* Method_B(QueryEngine*, const OrvStringT&, const ObjectList&, IError**);
    IObject* Method_C(QueryEngine*, const OrvStringT&, const ObjectList&, IError**);
    IObject* Method_Name(QueryEngine*, const OrvStringT&, const ObjectList&, IError**);
    IObject* Method_Price(QueryEngine*, const OrvStringT&, const ObjectList&, IError**);
    IObject* Method_Quantity(QueryEngine*, const OrvStringT&, const ObjectList&, IError**);
    IObject* Method_Weight(QueryEngine*, const OrvStringT&, const ObjectList&, IError**);

    const Record& record;
    OrvStringT b; // texts are converted once, so that reading one takes a share of it
    OrvStringT name;
};

/// Answers names itself: the way of a host whose names are data, such as the columns of a table.
class InvokeRecord : public ObjectBase {
public:
    explicit InvokeRecord(const Record& record);

    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"record"); }
    IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) override;

private:
    const Record& record;
    OrvStringT b;
    OrvStringT name;
};

} // namespace OrvUQL::bench
