// The text value.
#pragma once

#include "OrvUQL/ObjectBase.h"

namespace OrvUQL {

/// A text of UTF-16 code units: type "string". Lengths and positions count code units, positions from 0.
class ORVUQL_API ObjectString : public ObjectBaseStaticImpl {
public:
    /// The type object: empty, and only static methods can be called on it.
    ObjectString() noexcept : ObjectBaseStaticImpl(true) {}
    /// A value holding a copy of the NUL-terminated text; null reads as empty.
    explicit ObjectString(const wchar_t* text) : ObjectBaseStaticImpl(false), value(text) {}
    /// A value sharing the text, which may hold U+0000.
    explicit ObjectString(const OrvStringT& text) noexcept : ObjectBaseStaticImpl(false), value(text) {}
    explicit ObjectString(OrvStringT&& text) noexcept : ObjectBaseStaticImpl(false), value(std::move(text)) {}
    ~ObjectString() override;

    const OrvStringT& GetValue() const noexcept { return value; }

    const MethodMap* GetMethodMap() const override;
    OrvStringT ToString() const override;
    EType GetType() const override { return TypeString; }
    OrvStringT GetTypeName() const override;
    using ObjectBase::ToString;

    const MethodMap* _GetMethodMap() const;

private:
    IObject* Method_Length(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Empty(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_ToUpper(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_ToLower(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_ToTitle(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_CharCode(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_SubStrDelete(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Trim(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Repeat(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_StartsEndsContains(QueryEngine* engine, const OrvStringT& name, const ObjectList& params,
                                       IError** err);
    IObject* Method_Replace(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Split(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_CharOrCodeAt(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_IndexOf(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_ToCharArray(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_ParseInt(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_RegMatchContains(QueryEngine* engine, const OrvStringT& name, const ObjectList& params,
                                     IError** err);
    IObject* Method_RegMatchContainsEx(QueryEngine* engine, const OrvStringT& name, const ObjectList& params,
                                       IError** err);
    IObject* Method_RegReplace(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_RegReplaceEx(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_RegSplit(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_RegFind(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    OrvStringT value;
};

} // namespace OrvUQL
