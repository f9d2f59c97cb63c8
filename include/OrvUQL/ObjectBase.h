// The common base of value classes: method tables, calls by name, argument checking, and the conversions that go
// through a value's text.
#pragma once

#include "OrvUQL/Object.h"
#include "OrvUQL/PropertyValue.h"

#include <string_view>

namespace OrvUQL {

namespace detail {
struct CallSite;
template <auto getter> struct Property;
} // namespace detail

/// Base of every value class but ObjectExpression. A class of a host derives from it, gives its type and text, and
/// lists its methods in a table:
///
///     class Part : public OrvUQL::ObjectBase {
///     public:
///         IObject::EType GetType() const override { return TypeGlobal; }
///         OrvStringT GetTypeName() const override { return ORV_TEXT(L"part"); }
///         const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }
///         OrvStringT ToString() const override { return name; }
///     private:
///         const MethodMap* _GetMethodMap() const {
///             static const MethodMap table[] = {
///                 MethodMap::Method(L"Price", L"", &Part::Method_Price),
///                 MethodMap::Chain(&Part::ObjectBaseMethods),   // the methods that every value has
///                 MethodMap::End(),
///             };
///             return table;
///         }
///         ...
///     };
///
/// The new virtual operations are declared before the overrides: Microsoft's compiler orders a class's operations of
/// one name by the place of the first of them.
class ORVUQL_API ObjectBase : public RefCountImpl<IObject> {
public:
    struct MethodMap;

    /// A method's body. `name` is the name as written in the call; `params` holds the checked arguments, borrowed:
    /// one entry for each letter of the signature that does not repeat (null where an optional argument was left
    /// out), then one for each argument of a repeated letter. Returns the result with a reference, or null on
    /// failure.
    using Handler = IObject* (ObjectBase::*)(QueryEngine* engine, const OrvStringT& name, const ObjectList& params,
                                             IError** err);
    using MapGetter = const MethodMap* (ObjectBase::*)() const;

    /// One row of a method table. A table is an array in search order that ends with End(). Once a getter has
    /// returned a table it never changes or dies, and which table a getter returns depends on the class alone: call
    /// sites remember what they found.
    ///
    /// Signature: one letter for each parameter, upper case required, lower case optional, `*` after a letter repeats
    /// it: B bool, I int, D double, S string, N int or double, O any value, E the argument unevaluated.
    struct MethodMap {
        MapGetter base = nullptr;      ///< non-null in a chain row: the row stands for the table that this returns
        int baseAdjust = 0;            ///< added to the object's address for that call; of a property's row, a mark
        const wchar_t* name = nullptr; ///< compared without regard to case; empty: matches every name
        const wchar_t* signature = nullptr;
        Handler handler = nullptr;
        int handlerAdjust = 0; ///< added to the object's address for the call
        bool isStatic = false; ///< may be called on a static instance

        /// The rows of another table, normally of the base class.
        template <class T> static constexpr MethodMap Chain(const MethodMap* (T::*getter)() const) {
            MethodMap row;
            row.base = static_cast<MapGetter>(getter);
            return row;
        }
        template <class T>
        static constexpr MethodMap Method(const wchar_t* name, const wchar_t* signature,
                                          IObject* (T::*handler)(QueryEngine*, const OrvStringT&, const ObjectList&,
                                                                 IError**)) {
            MethodMap row;
            row.name = name;
            row.signature = signature;
            row.handler = static_cast<Handler>(handler);
            return row;
        }
        template <class T>
        static constexpr MethodMap StaticMethod(const wchar_t* name, const wchar_t* signature,
                                                IObject* (T::*handler)(QueryEngine*, const OrvStringT&,
                                                                       const ObjectList&, IError**)) {
            MethodMap row = Method(name, signature, handler);
            row.isStatic = true;
            return row;
        }
        /// A property: `getter` points to a const member function without arguments, or to a data member.
        ///
        ///     MethodMap::Property<&Part::GetPrice>(L"Price"),   // double Part::GetPrice() const
        ///     MethodMap::Property<&Part::name>(L"Name"),        // OrvStringT name
        ///
        /// It gives a bool, an int (or a shorter integer), a double or float, an OrvStringT, a pointer to an object
        /// with a reference that is handed over (null: the null value), a PropertyValue, or a std::optional of one of
        /// these (empty: the null value). Evaluation reads it without making a value object, so this is the fastest way
        /// to offer a property; but for that the row is like one of Method() with an empty signature. The getter may
        /// throw, cannot fail otherwise, and must not release the object that it reads, as by giving the engine another
        /// property source.
        template <auto getter> static constexpr MethodMap Property(const wchar_t* name);
        /// Matches every name not found in an earlier row; hides the rows after it.
        template <class T>
        static constexpr MethodMap CatchAll(const wchar_t* signature,
                                            IObject* (T::*handler)(QueryEngine*, const OrvStringT&, const ObjectList&,
                                                                   IError**)) {
            return Method(L"", signature, handler);
        }
        static constexpr MethodMap End() { return MethodMap(); }
    };

    /// The table in which calls on this value are looked up.
    virtual const MethodMap* GetMethodMap() const;

protected:
    /// Appends the help lines of `map` to `out`, separated by single carriage returns. May throw std::bad_alloc.
    virtual void GetMethodList(const MethodMap* map, OrvStringT& out);

public:
    /// The display text. The base class's is empty. May throw std::bad_alloc.
    virtual OrvStringT ToString() const;

    bool IsStaticInstance() const override;
    bool IsNull() const override;
    bool IsUnit() const override;
    ORV_OVERLOADS2(IUnit* GetUnitInterface() override;, const IUnit* GetUnitInterface() const override;)

    /// The display text "true" or "false" in any case, or a number that is not 0. Otherwise "Cannot convert string
    /// '%1' to %2" with "Boolean".
    bool ToBool(bool& out, IError** err) const override;
    /// The display text as a number, rounded half away from zero. Errors: "Cannot convert string '%1' to %2" with
    /// "Integer"; "Data overflow occured while converting a floating point number %1 to integer".
    bool ToInt(int& out, IError** err) const override;
    /// The display text as a number, else "Cannot convert string '%1' to %2" with "Double".
    bool ToDouble(double& out, IError** err) const override;
    /// The display text. Fails only with "Internal error", where memory ends.
    bool ToString(OrvStringT& out, IError** err) const override;
    /// By type code: null VT_NULL, bool VT_BOOL, int VT_I4, double VT_R8, string VT_BSTR, an array VT_ARRAY |
    /// VT_VARIANT from index 0 (arrays in it are VARIANTs holding arrays), a unit of power 0 VT_R8 with its base value,
    /// any other unit VT_BSTR with its text. Objects and iterators of TypeGlobal fail with DISP_E_TYPEMISMATCH and
    /// "Unable to convert object '%1' to 'VARIANT' data type".
    ///
    /// What else fails gives E_FAIL: other types, a conversion (with its error), an empty slot of an array. An item of
    /// an array that fails gives its own HRESULT. More than 1000 arrays inside each other, or as many as the stack does
    /// not take: E_FAIL and "Internal error". Where memory ends: E_OUTOFMEMORY. On failure `out` is empty.
    VariantResult ToVariant(VARIANT& out, IError** err) const override;
    /// The trimmed display text as an int or a double (1e3 is an int, 1.0 a double, 0x1F an int of 32 bits), else
    /// "Cannot convert string '%1' to a number".
    IObject* ToNumeric(IError** err) override;
    /// Fails with "Cannot convert value '%1' of type '%2' to type 'Unit'".
    IUnit* ToUnit(IUnitDefinition* unit, IError** err) override;
    IObject* ChangeType(EType type, IError** err) override;
    /// Fails with "Cannot compare object '%1' to object '%2'. Incompatible types for this operation" and the two type
    /// names, the left operand's first.
    bool CompareTo(EOperType op, IObject* other, bool reversed, bool& result, IError** err) const override;
    /// Looks `name` up in the method table, checks and evaluates the arguments and calls the handler. The name "help"
    /// gives the listing of the methods, its arguments neither checked nor evaluated.
    IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) override;

    /// The query element that an expression value holds, borrowed; null for any other object, null included.
    static IQueryElement* GetQueryElement(IObject* obj);
    /// True if the texts are equal, exactly or but for letter case.
    static bool CompareStrings(const OrvStringT& a, const OrvStringT& b, bool caseSensitive);
#if defined(_WIN32)
    /// A new value made from a VARIANT, which stays the caller's and unchanged. VT_EMPTY, VT_NULL and null pointers
    /// give null, VT_I1, VT_UI1, VT_I2, VT_I4, VT_INT, and VT_UI4, VT_UINT and VT_UI8 of up to 2147483647 an int, VT_R4
    /// and VT_R8 a double, VT_BOOL a bool, VT_BSTR a string, VT_DISPATCH an ObjectCom, one-dimensional arrays of these
    /// or of VARIANTs an array. References (VT_BYREF) to them are followed.
    ///
    /// Everything else is refused with "Unable to convert unsupported VARIANT data type: %1" and the VARTYPE, flags
    /// included, in decimal: VT_UI2 and VT_I8 too, deliberately, though their neighbours are taken. More than 1000
    /// arrays inside each other, or as many as the stack does not take: "Internal error".
    static IObject* VariantToObject(const VARIANT& in, IError** err);
#endif

    /// Values come from a pool of the thread; a value may be released on another thread than the one that made it.
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block, std::size_t size) noexcept;
    static void operator delete(void*, void*) noexcept {}

protected:
    ObjectBase() noexcept = default;
    ObjectBase(const ObjectBase&) noexcept = default;
    ObjectBase& operator=(const ObjectBase&) noexcept = default;
    ~ObjectBase() override = default;

    /// The row for `name` in `map` and the tables chained to it, or null. The first match in table order wins.
    const MethodMap* FindMethodEntry(const MethodMap* map, const OrvStringT& name) const;
    /// Evaluates and converts `args` as `signature` says and appends them to `params`, which then owns them, also
    /// when the call fails halfway. A surplus argument fails the call but the later ones are still counted,
    /// deliberately: the surviving message names the expected number plus the number of surplus arguments minus one.
    bool ValidateParameters(QueryEngine* engine, const wchar_t* methodName, const OrvStringT& signature,
                            const QueryElementList& args, ObjectList& params, IError** err) const;
    /// A new string listing the methods, one a line, the lines separated by carriage returns.
    IObject* GetHelp();
    /// Parses `text` as a number, else "Cannot convert string '%1' to %2" with `typeName`.
    static bool StringToDouble(OrvStringT& text, double& out, const wchar_t* typeName, IError** err);
    /// The table of the methods that every value has, for Chain rows.
    const MethodMap* ObjectBaseMethods() const { return _GetMethodMap(); }

    IObject* Method_ToBool(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_ToInt(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_ToDouble(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_ToString(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_TypeName(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_This(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_IsNumeric(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    IObject* Method_IsNull(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

public:
    /// The class's own table. Each class has one of this name; GetMethodMap() returns the most derived class's.
    const MethodMap* _GetMethodMap() const;

private:
    template <auto getter>
    IObject* Method_Property(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    static IObject* MakeObject(detail::Value value);
    bool IsPlain();
    IObject* InvokeNamed(QueryEngine* engine, const detail::CallSite* site, const wchar_t* name,
                         const QueryElementList& args, IError** err);
    IObject* CallMethod(QueryEngine* engine, const MethodMap& entry, const wchar_t* name, const OrvStringT& callName,
                        const QueryElementList& args, IError** err);
};

namespace detail {

/// Whether an object of exactly this class looks names up in its table: that it does not override what does so. A class
/// whose overriding functions are not public, or have overloads, is none.
template <class T, class = void> inline constexpr bool looksNamesUp = false;
template <class T>
inline constexpr bool looksNamesUp<T, std::void_t<decltype(&T::Invoke), decltype(&T::IsStaticInstance)>> =
    std::conjunction_v<std::is_same<decltype(&T::Invoke), decltype(&ObjectBase::Invoke)>,
                       std::is_same<decltype(&T::IsStaticInstance), decltype(&ObjectBase::IsStaticInstance)>>;

template <auto getter> struct Property {
    using Object = typename MemberOf<decltype(getter)>::Object;

    ORVUQL_FLATTEN static Value Read(IObject* target) {
        return ValueOf(ReadMember<getter>(static_cast<const Object&>(static_cast<const ObjectBase&>(*target))));
    }
    static constexpr const std::type_info* GetPlainType() noexcept {
        if constexpr (looksNamesUp<Object>) {
            return &typeid(Object);
        } else {
            return nullptr;
        }
    }
    static constexpr PropertySignature signature = {L"", &Property::Read, GetPlainType()};
};

} // namespace detail

template <auto getter> constexpr ObjectBase::MethodMap ObjectBase::MethodMap::Property(const wchar_t* name) {
    MethodMap row;
    row.baseAdjust = detail::propertyMark;
    row.name = name;
    row.signature = detail::Property<getter>::signature.text;
    row.handler = &ObjectBase::Method_Property<getter>;
    return row;
}

template <auto getter>
IObject* ObjectBase::Method_Property(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return MakeObject(detail::Property<getter>::Read(this));
}

/// Base of the values that also serve as type objects: null, bool, int, double and string.
class ORVUQL_API ObjectBaseStaticImpl : public ObjectBase {
public:
    bool IsStaticInstance() const override { return isStatic; }

protected:
    explicit ObjectBaseStaticImpl(bool staticInstance) noexcept : isStatic(staticInstance) {}
    ObjectBaseStaticImpl(const ObjectBaseStaticImpl&) noexcept = default;
    ObjectBaseStaticImpl& operator=(const ObjectBaseStaticImpl&) noexcept = default;
    ~ObjectBaseStaticImpl() override = default;

private:
    bool isStatic;
};

} // namespace OrvUQL
