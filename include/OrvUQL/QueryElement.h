// The interface of the nodes of a parsed query.
#pragma once

#include "OrvUQL/Error.h"
#include "OrvUQL/RefCount.h"

namespace OrvUQL {

class IObject;
class QueryEngine;

/// A node of a parsed query. It is immutable but for ElementMethod::SetParentObject(), and can be evaluated any
/// number of times. A host may implement nodes of its own and use them anywhere in a tree.
class ORVUQL_SHARED_TYPE IQueryElement : public IRefCountObject {
public:
    enum EType : std::int32_t {
        Object = 0,
        Method = 1,
        Operator = 2,
        Group = 3,
        Array = 4,
    };

    virtual EType GetType() const = 0;
    /// 0-based position in the query text, in code units.
    virtual int GetStringPosition() const = 0;
    /// The value with a new reference, or null on failure, normally with an error in `*err`.
    virtual IObject* Evaluate(QueryEngine* engine, IError** err) const = 0;
};

namespace detail {

/// What an element knows of a child: whether it is exactly one of the library's classes. Such children are evaluated
/// without a value object for each intermediate result; everything else, subclasses included, through Evaluate().
enum class ElementKind : std::uint8_t { Other, Object, Method, Group, Array, Unary, Binary, Ternary };

enum class OperatorCode : std::uint8_t;
struct Value;
struct ElementAccess;

} // namespace detail

/// Base of the library's elements: their memory comes from the thread's pool, and what is decoded once, when a node
/// is made, stands where the count leaves room.
class ORVUQL_API QueryElementBase : public RefCountImpl<IQueryElement> {
public:
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block, std::size_t size) noexcept;
    static void operator delete(void*, void*) noexcept {}

protected:
    QueryElementBase() noexcept : kinds(), code() {}
    QueryElementBase(const QueryElementBase&) = delete;
    QueryElementBase& operator=(const QueryElementBase&) = delete;
    ~QueryElementBase() override;

    detail::ElementKind kinds[3]; ///< of the children, in order
    detail::OperatorCode code;    ///< of an operator's text
};

} // namespace OrvUQL
