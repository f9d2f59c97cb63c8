#include "OrvUQL/ObjectCom.h"

#include "OrvUQL/ObjectArray.h"

#include "com/Automation.h"
#include "core/Failure.h"
#include "platform/Meter.h"

namespace OrvUQL {

namespace {

/// How messages show an HRESULT.
OrvStringT HexText(HRESULT result) {
    OrvStringT text;
    text.Format(L"%08X", static_cast<unsigned>(result));
    return text;
}

} // namespace

ObjectCom::ObjectCom(IDispatch* wrapped) : dispatch(wrapped), typeInfo(nullptr) {
    if (dispatch == nullptr) {
        return;
    }
    if (FAILED(dispatch->GetTypeInfo(0, LOCALE_SYSTEM_DEFAULT, &typeInfo))) {
        typeInfo = nullptr;
    }
    dispatch->AddRef();
}

ObjectCom::~ObjectCom() {
    if (typeInfo != nullptr) {
        typeInfo->Release();
    }
    if (dispatch != nullptr) {
        dispatch->Release();
    }
}

const ObjectBase::MethodMap* ObjectCom::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Chain(&ObjectBase::_GetMethodMap),
        MethodMap::Method(L"ToArray", L"", &ObjectCom::Method_ToArray),
        MethodMap::CatchAll(L"o*", &ObjectCom::Method_CatchAll),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectCom::GetMethodMap() const { return _GetMethodMap(); }

OrvStringT ObjectCom::GetTypeName() const {
    com::ComPointer<ITypeLib> library;
    UINT index = 0;
    com::OwnedText name;
    if (typeInfo == nullptr || !library.HasReceived(typeInfo->GetContainingTypeLib(library.Receive(), &index)) ||
        !name.HasReceived(
            library->GetDocumentation(static_cast<INT>(index), name.Receive(), nullptr, nullptr, nullptr))) {
        return ORV_TEXT(L"COM");
    }
    return name.View().empty() ? OrvStringT(ORV_TEXT(L"COM")) : OrvStringT(ORV_TEXT(L"COM:")) + name.View();
}

VariantResult ObjectCom::ToVariant(VARIANT& out, IError**) const {
    VariantInit(&out);
    if (dispatch != nullptr) {
        dispatch->AddRef();
    }
    out.pdispVal = dispatch;
    out.vt = VT_DISPATCH;
    return S_OK;
}

VariantResult ObjectCom::InvokeIDispatch(long dispid, VARIANT* args, int count, unsigned short flags,
                                         VARIANT* result) const {
    if (result != nullptr) {
        VariantInit(result);
    }
    if (dispatch == nullptr) {
        return E_POINTER;
    }
    DISPID newValue = DISPID_PROPERTYPUT;
    DISPPARAMS arguments = {args, nullptr, static_cast<UINT>(count), 0};
    if (flags == DISPATCH_PROPERTYPUT || flags == DISPATCH_PROPERTYPUTREF) {
        arguments.rgdispidNamedArgs = &newValue;
        arguments.cNamedArgs = 1;
    }
    return dispatch->Invoke(dispid, IID_NULL, LOCALE_SYSTEM_DEFAULT, flags, &arguments, result, nullptr, nullptr);
}

// ---- properties ----

namespace {

/// What a name stands for in a type's information.
class Binding {
public:
    Binding() noexcept { target.lptcomp = nullptr; }
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;
    ~Binding() {
        switch (kind) {
        case DESCKIND_FUNCDESC:
            info->ReleaseFuncDesc(target.lpfuncdesc);
            break;
        case DESCKIND_VARDESC:
        case DESCKIND_IMPLICITAPPOBJ:
            info->ReleaseVarDesc(target.lpvardesc);
            break;
        case DESCKIND_TYPECOMP:
            target.lptcomp->Release();
            break;
        default:
            break;
        }
    }

    /// False if the name is not that of a property that can be read; `id` is then unspecified.
    bool FindProperty(ITypeInfo& type, const OrvStringT& name, MEMBERID& id) {
        if (!names.HasReceived(type.GetTypeComp(names.Receive()))) {
            return false;
        }
        OLECHAR* const text = const_cast<OLECHAR*>(name.GetString()); // read only, whatever the declaration says
        const ULONG hash = LHashValOfNameSys(SYS_WIN32, LOCALE_SYSTEM_DEFAULT, text);
        const HRESULT bound = names->Bind(text, hash, INVOKE_PROPERTYGET, info.Receive(), &kind, &target);
        // A description without the type that would take it back, and a type that is null, are none.
        const bool hasInfo = info.HasReceived(bound);
        if (FAILED(bound) || target.lptcomp == nullptr || (kind != DESCKIND_TYPECOMP && !hasInfo)) {
            kind = DESCKIND_NONE;
            return false;
        }
        // A dispinterface may also declare a property as a variable. Those have always been refused and still are.
        if (kind != DESCKIND_FUNCDESC || target.lpfuncdesc->invkind != INVOKE_PROPERTYGET) {
            return false;
        }
        id = target.lpfuncdesc->memid;
        return true;
    }

private:
    com::ComPointer<ITypeComp> names;
    com::ComPointer<ITypeInfo> info;
    DESCKIND kind = DESCKIND_NONE;
    BINDPTR target;
};

/// Fills `out` with the arguments of a call. Where an argument does not convert, returns false with its error, if it
/// has one, in `error`.
bool FillArguments(const ObjectList& params, com::VariantRow& out, IError** error) {
    for (std::size_t index = 0; index < params.size(); ++index) {
        if (params[index] == nullptr) {
            // How automation marks an optional argument that was left out.
            out[index].vt = VT_ERROR;
            out[index].scode = DISP_E_PARAMNOTFOUND;
        } else if (FAILED(params[index]->ToVariant(out[index], error))) {
            return false;
        }
    }
    return true;
}

} // namespace

IObject* ObjectCom::Method_CatchAll(QueryEngine*, const OrvStringT& name, const ObjectList& params, IError** err) {
    const auto fail = [&]() -> IObject* {
        return err == nullptr ? nullptr : FailNull(err, message::notAProperty, name, GetTypeName());
    };
    Binding property;
    MEMBERID id = MEMBERID_NIL;
    if (typeInfo == nullptr || !property.FindProperty(*typeInfo, name, id)) {
        return fail();
    }
    // In the order in which they are written, although IDispatch::Invoke counts its arguments from the last: a server
    // sees two of them in reverse. Hosts have adapted to that, so it stays.
    com::VariantRow arguments(params.size());
    IError* conversionError = nullptr;
    const bool converted = FillArguments(params, arguments, err == nullptr ? nullptr : &conversionError);
    Reference<IError> error(conversionError);
    if (!converted) {
        if (!error) {
            return fail();
        }
        *err = error.Detach();
        return nullptr;
    }
    com::OwnedVariant value;
    const HRESULT result = InvokeIDispatch(id, arguments.Data(), arguments.Count(), DISPATCH_PROPERTYGET, value.Get());
    if (SUCCEEDED(result)) {
        return VariantToObject(*value.Get(), err);
    }
    return err == nullptr ? nullptr : FailNull(err, message::propertyFailed, name, GetTypeName(), HexText(result));
}

// ---- collections ----

namespace {

/// What a call of _NewEnum gave, borrowed from `result`; null if that is no object.
IUnknown* EnumerationOf(const VARIANT& result) noexcept {
    switch (result.vt) {
    case VT_UNKNOWN:
        return result.punkVal;
    case VT_UNKNOWN | VT_BYREF:
        return result.ppunkVal == nullptr ? nullptr : *result.ppunkVal;
    default:
        return nullptr;
    }
}

/// Asks for a collection's enumerator, which there is if this succeeds.
HRESULT NewEnumerator(const ObjectCom& collection, com::ComPointer<IEnumVARIANT>& enumerator) {
    com::OwnedVariant result;
    const HRESULT called =
        collection.InvokeIDispatch(DISPID_NEWENUM, nullptr, 0, DISPATCH_METHOD | DISPATCH_PROPERTYGET, result.Get());
    if (FAILED(called)) {
        return called;
    }
    IUnknown* const enumeration = EnumerationOf(*result.Get());
    if (enumeration == nullptr) {
        return E_FAIL;
    }
    const HRESULT asked = enumeration->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(enumerator.Receive()));
    return enumerator.HasReceived(asked) || FAILED(asked) ? asked : E_FAIL;
}

} // namespace

IObject* ObjectCom::Method_ToArray(QueryEngine*, const OrvStringT&, const ObjectList&, IError** err) {
    com::ComPointer<IEnumVARIANT> enumerator;
    HRESULT result = NewEnumerator(*this, enumerator);
    ObjectList items;
    while (SUCCEEDED(result)) {
        com::OwnedVariant item;
        result = enumerator->Next(1, item.Get(), nullptr);
        if (result != S_OK) {
            break;
        }
        Reference<IObject> value(VariantToObject(*item.Get(), err));
        if (!value) {
            return nullptr;
        }
        platform::Charge(1);
        items.push_back(value.Get());
        value.Detach();
    }
    if (SUCCEEDED(result)) {
        return new ObjectArray(std::move(items)); // any success but S_OK is the end
    }
    return err == nullptr ? nullptr : FailNull(err, message::enumerationFailed, GetTypeName(), HexText(result));
}

} // namespace OrvUQL
