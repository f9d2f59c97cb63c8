// The context in which an expression argument sees the item that it is evaluated for.
#pragma once

#include "OrvUQL/ObjectBase.h"

namespace OrvUQL {

namespace detail {
struct IteratorAccess;
}

/// The engine's current variable while an array method evaluates its expression: `$item`, `$index` (from 1),
/// `$lasteval` and `$data`. Type "iterator"; it has the type code of the global object but is none. Its text is
/// empty.
class ORVUQL_API ObjectIterator : public ObjectBase {
public:
    /// Takes a reference to each non-null argument.
    ObjectIterator(IObject* lasteval, IObject* item, IObject* index, IObject* data);
    /// Member-wise, no references taken.
    ObjectIterator(const ObjectIterator&) noexcept = default;
    ObjectIterator& operator=(const ObjectIterator&) noexcept = default;
    ~ObjectIterator() override;

    const MethodMap* GetMethodMap() const override;
    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override;

    const MethodMap* _GetMethodMap() const;

private:
    friend struct detail::IteratorAccess;
    IObject* Method_LastEval(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Item(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Index(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_Data(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    IObject* lasteval;
    IObject* item;
    IObject* index;
    IObject* data;
    // While an array method evaluates, the index, else 0: the objects of an index and of a `lasteval` that is null or a
    // number are made when the expression asks for them.
    int position = 0;
    std::int32_t lastKind = 0; // of a `lasteval` without an object: null, an int or a double
    union {
        int integer;
        double number;
    } last = {};
};

} // namespace OrvUQL
