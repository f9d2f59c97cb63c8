// The collection value.
#pragma once

#include "OrvUQL/ObjectBase.h"

namespace OrvUQL {

/// Base of arrays: type "array". A host may derive from it to offer a collection of its own as an array.
class ORVUQL_API ObjectArrayBase : public ObjectBase {
public:
    /// Number of items.
    virtual int GetCount() const = 0;
    /// The item at a 0-based position with a new reference, null for an empty slot. The position is not checked:
    /// callers ask for 0 to GetCount() - 1 only.
    virtual IObject* GetItem(int index) const = 0;

    const MethodMap* GetMethodMap() const override;
    /// The items' texts in parentheses with bare commas between them: "(1,2,3)". An empty slot is empty, an item
    /// without a text shows its type name in angle brackets.
    OrvStringT ToString() const override;
    EType GetType() const override { return TypeArray; }
    OrvStringT GetTypeName() const override;
    using ObjectBase::ToString;

    const MethodMap* _GetMethodMap() const;

protected:
    ObjectArrayBase() noexcept = default;
    ObjectArrayBase(const ObjectArrayBase&) noexcept = default;
    ObjectArrayBase& operator=(const ObjectArrayBase&) noexcept = default;
    ~ObjectArrayBase() override;

private:
    IObject* Method_Count(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Empty(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Add(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Item(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Join(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_ForEach(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_FilterConvert(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_FindIndexOf(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_First(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Last(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_AddArray(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Unique(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Contains(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    /// Whether a kept entry equals `object` by the rule of Unique: null equals null; else the type names are equal
    /// and so are the values, strictly. A comparison that fails counts as unequal.
    bool FindObject(QueryEngine* engine, const ObjectList& list, IObject* object) const;
    /// The item at a 0-based position, or a null value for an empty slot or a position outside.
    IObject* GetItemOrNull(int index) const;
};

/// The array of the language: an immutable list of values.
class ORVUQL_API ObjectArray : public ObjectArrayBase {
public:
    /// Copies the pointers and takes a reference to each non-null one; the caller keeps its own.
    explicit ObjectArray(const ObjectList& list);
    /// Takes the list's references over and leaves it empty.
    explicit ObjectArray(ObjectList&& list);
    /// Member-wise, no references taken: see ObjectList.
    ObjectArray(const ObjectArray&) = default;
    ObjectArray& operator=(const ObjectArray&) = default;
    /// Releases the items, front to back.
    ~ObjectArray() override;

    int GetCount() const override;
    IObject* GetItem(int index) const override;
    /// The items, borrowed.
    const ObjectList& GetObjectList() const { return items; }

private:
    ObjectList items;
};

} // namespace OrvUQL
