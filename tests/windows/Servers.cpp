#include "windows/Servers.h"

#include <cstring>

namespace OrvUQL::Tests {

// ---- objects ----

Server::Server(ITypeInfo* serverType, Answer serverAnswer) : type(serverType), answer(std::move(serverAnswer)) {
    if (type != nullptr) {
        type->AddRef();
    }
}

Server::~Server() {
    if (type != nullptr) {
        type->Release();
    }
}

HRESULT Server::GetTypeInfoCount(UINT* count) {
    *count = type == nullptr ? 0 : 1;
    return S_OK;
}

HRESULT Server::GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) {
    ++typeQueries;
    typeLocale = locale;
    if (index != 0 || type == nullptr) {
        // A failure need not leave null behind.
        *info = reinterpret_cast<ITypeInfo*>(std::intptr_t{0x10});
        return DISP_E_BADINDEX;
    }
    type->AddRef();
    *info = type;
    return S_OK;
}

HRESULT Server::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
    ADD_FAILURE() << "names are looked up in the type";
    return E_NOTIMPL;
}

HRESULT Server::Invoke(DISPID id, REFIID interfaceId, LCID locale, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                       EXCEPINFO* exception, UINT* argument) {
    ServerCall call{id,
                    flags,
                    locale,
                    {},
                    {},
                    exception != nullptr || argument != nullptr,
                    static_cast<bool>(IsEqualIID(interfaceId, IID_NULL))};
    for (UINT index = 0; index < parameters->cArgs; ++index) {
        call.arguments.push_back(Describe(parameters->rgvarg[index]));
    }
    call.named.assign(parameters->rgdispidNamedArgs, parameters->rgdispidNamedArgs + parameters->cNamedArgs);
    calls.push_back(call);
    return answer ? answer(call, result) : DISP_E_MEMBERNOTFOUND;
}

HRESULT Enumerator::Next(ULONG count, VARIANT* out, ULONG* fetched) {
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(fetched, nullptr);
    EXPECT_EQ(out->vt, VT_EMPTY);
    if (next == items.size()) {
        return end;
    }
    *out = items[next++].Detach();
    return S_OK;
}

// ---- described types ----

namespace {

void AddFunction(ICreateTypeInfo& type, UINT index, const Member& member) {
    std::vector<ELEMDESC> parameters(static_cast<std::size_t>(member.parameters));
    for (ELEMDESC& parameter : parameters) {
        parameter = ELEMDESC{};
        parameter.tdesc.vt = VT_VARIANT;
        parameter.paramdesc.wParamFlags = PARAMFLAG_FIN | PARAMFLAG_FOPT;
    }
    FUNCDESC description{};
    description.memid = member.id;
    description.funckind = FUNC_DISPATCH;
    description.invkind = member.kind;
    description.callconv = CC_STDCALL;
    description.cParams = static_cast<SHORT>(parameters.size());
    description.lprgelemdescParam = parameters.data();
    description.elemdescFunc.tdesc.vt = member.kind == INVOKE_PROPERTYPUT ? VT_VOID : VT_VARIANT;
    EXPECT_EQ(type.AddFuncDesc(index, &description), S_OK);
    LPOLESTR name = const_cast<LPOLESTR>(member.name);
    EXPECT_EQ(type.SetFuncAndParamNames(index, &name, 1), S_OK);
}

void AddField(ICreateTypeInfo& type, UINT index, const Member& member) {
    VARDESC description{};
    description.memid = member.id;
    description.varkind = VAR_DISPATCH;
    description.elemdescVar.tdesc.vt = VT_I4;
    EXPECT_EQ(type.AddVarDesc(index, &description), S_OK);
    EXPECT_EQ(type.SetVarName(index, const_cast<LPOLESTR>(member.name)), S_OK);
}

} // namespace

ComRef<ITypeInfo> MakeType(const wchar_t* name, std::initializer_list<Member> functions,
                           std::initializer_list<Member> fields) {
    ComRef<ICreateTypeLib2> library;
    // The file would be written by SaveAllChanges.
    EXPECT_EQ(CreateTypeLib2(SYS_WIN64, L"orvuql-test.tlb", library.Receive()), S_OK);
    ComRef<ICreateTypeInfo> type;
    EXPECT_EQ(library->CreateTypeInfo(const_cast<LPOLESTR>(name), TKIND_DISPATCH, type.Receive()), S_OK);
    UINT index = 0;
    for (const Member& member : functions) {
        AddFunction(*type, index++, member);
    }
    index = 0;
    for (const Member& member : fields) {
        AddField(*type, index++, member);
    }
    EXPECT_EQ(type->LayOut(), S_OK);
    ComRef<ITypeInfo> description;
    EXPECT_EQ(type->QueryInterface(IID_ITypeInfo, description.ReceiveAny()), S_OK);
    return description;
}

// ---- a type that is told what to say ----

namespace {

/// Names of a FakeType.
class FakeNames final : public ComObject<ITypeComp> {
public:
    explicit FakeNames(FakeType* owner) : type(owner) { type->AddRef(); }

    STDMETHODIMP Bind(LPOLESTR name, ULONG hash, WORD flags, ITypeInfo** info, DESCKIND* kind,
                      BINDPTR* target) override {
        type->boundName = name;
        type->boundHash = hash;
        type->boundFlags = flags;
        if (FAILED(type->bindResult)) {
            // Whoever looks into these in spite of the failure crashes.
            *kind = DESCKIND_TYPECOMP;
            target->lptcomp = reinterpret_cast<ITypeComp*>(std::intptr_t{0x10});
            return type->bindResult;
        }
        *kind = type->found;
        *info = nullptr;
        switch (type->found) {
        case DESCKIND_FUNCDESC:
            type->function.invkind = type->invokeKind;
            target->lpfuncdesc = &type->function;
            break;
        case DESCKIND_VARDESC:
        case DESCKIND_IMPLICITAPPOBJ:
            target->lpvardesc = &type->variable;
            break;
        case DESCKIND_TYPECOMP:
            AddRef();
            target->lptcomp = this;
            return S_OK;
        default:
            return S_OK;
        }
        ++type->descriptionsOut;
        type->AddRef();
        *info = type;
        return S_OK;
    }
    STDMETHODIMP BindType(LPOLESTR, ULONG, ITypeInfo**, ITypeComp**) override { return E_NOTIMPL; }

private:
    ~FakeNames() override { type->Release(); }

    FakeType* type;
};

/// The library of a FakeType, of which it knows nothing but the name.
class FakeLibrary final : public ComObject<ITypeLib> {
public:
    explicit FakeLibrary(FakeType* owner) : type(owner) { type->AddRef(); }

    STDMETHODIMP_(UINT) GetTypeInfoCount() override { return 0; }
    STDMETHODIMP GetTypeInfo(UINT, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfoType(UINT, TYPEKIND*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfoOfGuid(REFGUID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetLibAttr(TLIBATTR**) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeComp(ITypeComp**) override { return E_NOTIMPL; }
    STDMETHODIMP GetDocumentation(INT index, BSTR* name, BSTR* text, DWORD* help, BSTR* helpFile) override {
        EXPECT_EQ(index, static_cast<INT>(type->indexInLibrary));
        EXPECT_EQ(text, nullptr);
        EXPECT_EQ(help, nullptr);
        EXPECT_EQ(helpFile, nullptr);
        if (FAILED(type->nameResult)) {
            return type->nameResult;
        }
        *name = type->typeName == nullptr ? nullptr : SysAllocString(type->typeName);
        return S_OK;
    }
    STDMETHODIMP IsName(LPOLESTR, ULONG, WINBOOL*) override { return E_NOTIMPL; }
    STDMETHODIMP FindName(LPOLESTR, ULONG, ITypeInfo**, MEMBERID*, USHORT*) override { return E_NOTIMPL; }
    STDMETHODIMP_(void) ReleaseTLibAttr(TLIBATTR*) override {}

private:
    ~FakeLibrary() override { type->Release(); }

    FakeType* type;
};

} // namespace

HRESULT FakeType::GetTypeComp(ITypeComp** names) {
    if (SUCCEEDED(typeCompResult)) {
        *names = new FakeNames(this);
    }
    return typeCompResult;
}

HRESULT FakeType::GetContainingTypeLib(ITypeLib** library, UINT* index) {
    if (SUCCEEDED(libraryResult)) {
        *library = new FakeLibrary(this);
        *index = indexInLibrary;
    }
    return libraryResult;
}

void FakeType::ReleaseFuncDesc(FUNCDESC* description) {
    EXPECT_EQ(description, &function);
    --descriptionsOut;
}

void FakeType::ReleaseVarDesc(VARDESC* description) {
    EXPECT_EQ(description, &variable);
    --descriptionsOut;
}

} // namespace OrvUQL::Tests
