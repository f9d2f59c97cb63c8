// Automation objects as values. On Windows only: elsewhere this header is empty.
#pragma once

#if defined(_WIN32)

#include "OrvUQL/ObjectBase.h"

struct IDispatch;
struct ITypeInfo;

namespace OrvUQL {

/// Lets queries read the properties of an automation object:
///
///     QueryEngine engine;
///     ObjectCom* const files = new ObjectCom(dispatch);   // takes a reference of its own
///     engine.SetPropertySource(files);
///     files->Release();
///     engine.ParseQuery(L"@Drives.ToArray().Convert($item.DriveLetter)", &error);
///
/// Any name that not every value has is a property, looked up without regard to case in the object's own type
/// information, and read with the arguments of the call. Properties are only read: methods, and properties that can
/// only be set, are "not a property". `ToArray()` lists a collection. The methods that every value has, `ToString`,
/// `TypeName`, `IsNull` and so on, hide properties of the same names.
///
/// The text is empty, and so are its conversions. All calls are made on the calling thread with LOCALE_SYSTEM_DEFAULT;
/// initialising COM on the thread, and its rules of apartments, are the host's business.
class ORVUQL_API ObjectCom : public ObjectBase {
public:
    /// Takes a reference to `dispatch`, and asks it once for its type information, without which it has no properties.
    /// Null is an object without anything.
    explicit ObjectCom(IDispatch* dispatch);
    ObjectCom(const ObjectCom&) = delete;
    ObjectCom& operator=(const ObjectCom&) = delete;
    /// Releases the type information, then the object.
    ~ObjectCom() override;

    /// The wrapped object, borrowed.
    IDispatch* GetDispatch() const noexcept { return dispatch; }

    /// Calls IDispatch::Invoke with LOCALE_SYSTEM_DEFAULT and no place for an EXCEPINFO. `args` are `count` arguments,
    /// borrowed, in the order in which the server is to find them: last first. A property that is set (`flags`
    /// DISPATCH_PROPERTYPUT or DISPATCH_PROPERTYPUTREF) gets the first of them as its new value. `result` may be null;
    /// otherwise it is initialised, and what is in it afterwards belongs to the caller. Returns the HRESULT; E_POINTER
    /// where there is no object.
    VariantResult InvokeIDispatch(long dispid, VARIANT* args, int count, unsigned short flags, VARIANT* result) const;

    const MethodMap* GetMethodMap() const override;
    EType GetType() const override { return TypeCom; }
    /// "COM", or "COM:" and the name of the object's type as its type library has it, such as "COM:IDictionary".
    OrvStringT GetTypeName() const override;
    /// VT_DISPATCH and the object, with a reference for the caller. Always S_OK.
    VariantResult ToVariant(VARIANT& out, IError** err) const override;

    const MethodMap* _GetMethodMap() const;

private:
    /// The items of a collection, in the order of its _NewEnum enumerator.
    IObject* Method_ToArray(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);
    /// Reads the property `name`.
    IObject* Method_CatchAll(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    IDispatch* dispatch;
    ITypeInfo* typeInfo;
};

} // namespace OrvUQL

#endif
