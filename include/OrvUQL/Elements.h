// The nodes of a parsed query but for the operators: values, names, groups and arrays.
#pragma once

#include "OrvUQL/ObjectBase.h"
#include "OrvUQL/QueryElement.h"

#include <typeinfo>

namespace OrvUQL {

/// A literal: evaluates to its own value with one more reference.
class ORVUQL_API ElementObject : public QueryElementBase {
public:
    /// Takes a reference to `value` if `addRef` is true, else takes the caller's over.
    ElementObject(IObject* value, int position, bool addRef);
    ElementObject(bool value, int position);
    ElementObject(int value, int position);
    ElementObject(double value, int position);
    ElementObject(const wchar_t* value, int position);
    ~ElementObject() override;

    EType GetType() const override { return Object; }
    int GetStringPosition() const override { return position; }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override;

    /// The value, borrowed. Null where memory ends before a number's or a bool's object is made.
    IObject* GetValue() const noexcept { return value != nullptr ? value : MakeValue(); }

private:
    friend struct detail::ElementAccess;
    void Decode();
    IObject* MakeValue() const noexcept;
    bool IsUnmade() const noexcept;

    mutable IObject* value; // of a number or a bool not made before somebody asks for it
    int position;
    std::uint8_t valueKind; // what the value is, if exactly one of the library's scalars or texts ...
    union {                 // ... and a scalar itself
        bool boolean;
        int integer;
        double number;
    } scalar;
};

namespace detail {

/// On whose value a name is invoked: its parent's, or the object that the engine has for it.
enum class CallTarget : std::uint8_t { Parent, Global, PropertySource, GroupParent, Variable };

/// The text's methods that take a text without an object around it.
enum class TextMethod : std::uint8_t { None, Length, Empty, ToUpper, ToLower, Trim, LTrim, RTrim, SubStr };

/// What a call site knows, and what it remembers of its last look-up. Which tables a class has depends on the class
/// alone, so the row found for one object of a class is that of all.
struct CallSite {
    OrvStringT name; ///< as the call passes it, without "@" or "$"
    CallTarget target = CallTarget::Parent;
    std::uint16_t slot = 0; ///< where in an engine the object is that the target means, in bytes
    // Of the row. Whether a call has arguments is asked every time: a host may pass it on with others than the site's.
    mutable bool isRead = false;  ///< it takes none
    mutable bool isPlain = false; ///< and the class looks names up in its table: it does not override Invoke()
    mutable TextMethod textMethod = TextMethod::None;     ///< of a text's row
    mutable const std::type_info* type = nullptr;         ///< the class of the last look-up
    mutable const ObjectBase::MethodMap* entry = nullptr; ///< the row found
    /// What the row's method without arguments computes, without the object around the result, or none where that has
    /// to be asked for in the ordinary way. Never null: that a row has no such form it says itself, each time.
    mutable DirectMethod direct;

    CallSite() noexcept;
};

} // namespace detail

/// A name: a call of a method, a read of a property, or a global function.
///
/// With a parent the name is invoked on the parent's value. Without, "@name" goes to the engine's property source,
/// "$name" to its variable, a name with the member flag (".name") to its group parent, and any other to its global
/// object; if that is not set, evaluation fails with "Invalid use of '%1' in the current context at position %2"
/// (0-based, unlike the positions of parse errors).
class ORVUQL_API ElementMethod : public QueryElementBase {
public:
    /// Takes over the parent's reference (null: no parent) and the arguments, whose list is left empty. Argument
    /// entries may be null.
    ElementMethod(IQueryElement* parent, const wchar_t* name, QueryElementList& args, bool member, int position);
    ElementMethod(IQueryElement* parent, OrvStringT name, QueryElementList& args, bool member, int position);
    ~ElementMethod() override;

    /// Releases the old parent, if any, and takes over the new one's reference.
    void SetParentObject(IQueryElement* newParent);

    EType GetType() const override { return Method; }
    int GetStringPosition() const override { return position; }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override;

    /// The element on whose value the name is invoked, borrowed; null if there is none.
    IQueryElement* GetParent() const noexcept { return parent; }
    /// The name as written, "@" or "$" included.
    const OrvStringT& GetName() const noexcept { return name; }
    /// Whether the name stands behind a ".".
    bool IsMember() const noexcept { return member; }
    /// The arguments, borrowed.
    const QueryElementList& GetArguments() const noexcept { return arguments; }

private:
    friend struct detail::ElementAccess;
    detail::Value EvaluateValue(QueryEngine* engine, IError** err) const;
    detail::Value EvaluateCalls(QueryEngine* engine, IError** err) const;
    detail::Value EvaluateFirst(QueryEngine* engine, IError** err) const;
    bool TakesText() const noexcept;
    detail::Value CallOn(detail::Value target, QueryEngine* engine, IError** err) const;
    IObject* FindTarget(QueryEngine* engine, IError** err) const;
    IObject* Call(IObject* target, QueryEngine* engine, IError** err) const;

    IQueryElement* parent;
    OrvStringT name;
    int position;
    bool member;
    QueryElementList arguments;
    detail::CallSite site;
};

/// `source[inner]`: evaluates `inner` with the source's value as the group parent, which names with a leading "."
/// address.
class ORVUQL_API ElementGroup : public QueryElementBase {
public:
    /// Takes over both references.
    ElementGroup(IQueryElement* source, IQueryElement* inner, int position);
    ~ElementGroup() override;

    EType GetType() const override { return Group; }
    int GetStringPosition() const override { return position; }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override;

    /// Borrowed.
    IQueryElement* GetSource() const noexcept { return source; }
    /// Borrowed.
    IQueryElement* GetInner() const noexcept { return inner; }

private:
    friend struct detail::ElementAccess;

    IQueryElement* source;
    IQueryElement* inner;
    int position;
};

/// A list of elements: evaluates to an array of their values, a null entry to a null value. The query language has no
/// text for it; hosts build it.
class ORVUQL_API ElementArray : public QueryElementBase {
public:
    /// Copies the list and takes a reference to each non-null item.
    ElementArray(const QueryElementList& items, int position);
    ~ElementArray() override;

    EType GetType() const override { return Array; }
    int GetStringPosition() const override { return position; }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override;

    /// The items, borrowed.
    const QueryElementList& GetItems() const noexcept { return items; }

private:
    friend struct detail::ElementAccess;

    QueryElementList items;
    int position;
};

} // namespace OrvUQL
