// Every method of a server that the library calls, failing in each way: with any code, with nothing stored, with null
// or something that is no pointer left where the result goes, and with nothing although it says to have succeeded. What
// comes of it is a value or the error for it, never a crash or a leak.

#include "support/Host.h"
#include "windows/Automation.h"
#include "windows/Servers.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace OrvUQL::Tests {
namespace {

/// The methods, in the order in which they are called.
enum Step {
    TypeInfo,
    ContainingLibrary,
    Documentation,
    TypeComp,
    Bind,
    Property,
    NewEnum,
    EnumeratorInterface,
    Next,
    stepCount,
};

/// What a method leaves where its result goes.
enum Leaving { Untouched, Null, Rubbish };

/// What the servers of a test do at one of their steps; at the others they do what they should.
struct Plan {
    Step step;
    HRESULT result;
    Leaving leaving;

    /// Whether this is the step. `place` then has what is left there.
    template <class T> bool Spoils(Step asked, T** place) const {
        if (asked != step) {
            return false;
        }
        if (leaving != Untouched) {
            *place = leaving == Null ? nullptr : reinterpret_cast<T*>(std::intptr_t{0x10});
        }
        return true;
    }
};

class Names final : public ComObject<ITypeComp> {
public:
    Names(ITypeInfo* owner, const Plan& servers) : type(owner), plan(servers) {
        type->AddRef();
        function.memid = 5;
        function.invkind = INVOKE_PROPERTYGET;
    }

    STDMETHODIMP Bind(LPOLESTR, ULONG, WORD, ITypeInfo** info, DESCKIND* kind, BINDPTR* target) override {
        if (plan.Spoils(Step::Bind, info)) {
            *kind = kindThen;
            static_cast<void>(plan.Spoils(Step::Bind, &target->lpfuncdesc));
            return plan.result;
        }
        type->AddRef();
        *info = type;
        *kind = DESCKIND_FUNCDESC;
        target->lpfuncdesc = &function;
        return S_OK;
    }
    STDMETHODIMP BindType(LPOLESTR, ULONG, ITypeInfo**, ITypeComp**) override { return E_NOTIMPL; }

    /// What a spoilt Bind says to have found.
    static inline DESCKIND kindThen = DESCKIND_FUNCDESC;

private:
    ~Names() override { type->Release(); }

    ITypeInfo* type;
    const Plan& plan;
    FUNCDESC function{};
};

class Library final : public ComObject<ITypeLib> {
public:
    explicit Library(const Plan& servers) : plan(servers) {}

    STDMETHODIMP_(UINT) GetTypeInfoCount() override { return 0; }
    STDMETHODIMP GetTypeInfo(UINT, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfoType(UINT, TYPEKIND*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfoOfGuid(REFGUID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetLibAttr(TLIBATTR**) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeComp(ITypeComp**) override { return E_NOTIMPL; }
    STDMETHODIMP GetDocumentation(INT, BSTR* name, BSTR*, DWORD*, BSTR*) override {
        if (plan.Spoils(Documentation, name)) {
            return plan.result;
        }
        *name = SysAllocString(L"Faulty");
        return S_OK;
    }
    STDMETHODIMP IsName(LPOLESTR, ULONG, WINBOOL*) override { return E_NOTIMPL; }
    STDMETHODIMP FindName(LPOLESTR, ULONG, ITypeInfo**, MEMBERID*, USHORT*) override { return E_NOTIMPL; }
    STDMETHODIMP_(void) ReleaseTLibAttr(TLIBATTR*) override {}

private:
    const Plan& plan;
};

class Type final : public TypeStub {
public:
    explicit Type(const Plan& servers) : plan(servers) {}

    STDMETHODIMP GetTypeComp(ITypeComp** names) override {
        if (plan.Spoils(TypeComp, names)) {
            return plan.result;
        }
        *names = new Names(this, plan);
        return S_OK;
    }
    STDMETHODIMP GetContainingTypeLib(ITypeLib** library, UINT* index) override {
        if (plan.Spoils(ContainingLibrary, library)) {
            return plan.result;
        }
        *library = new Library(plan);
        *index = 0;
        return S_OK;
    }
    STDMETHODIMP_(void) ReleaseFuncDesc(FUNCDESC* description) override { EXPECT_NE(description, nullptr); }
    STDMETHODIMP_(void) ReleaseVarDesc(VARDESC*) override { ADD_FAILURE() << "there was none"; }

private:
    const Plan& plan;
};

/// One text, then the end.
class Items final : public ComObject<IEnumVARIANT> {
public:
    explicit Items(const Plan& servers) : plan(servers) {}

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (!IsEqualIID(id, IID_IUnknown) && plan.Spoils(EnumeratorInterface, object)) {
            return plan.result;
        }
        return ComObject::QueryInterface(id, object);
    }
    STDMETHODIMP Next(ULONG, VARIANT* out, ULONG*) override {
        if (asked++ != 0) {
            return S_FALSE;
        }
        // Also where it fails, if something is to be left.
        if (plan.step != Step::Next || plan.leaving == Rubbish) {
            *out = Text(L"item").Detach();
        }
        return plan.step == Step::Next ? plan.result : S_OK;
    }
    STDMETHODIMP Skip(ULONG) override { return E_NOTIMPL; }
    STDMETHODIMP Reset() override { return E_NOTIMPL; }
    STDMETHODIMP Clone(IEnumVARIANT**) override { return E_NOTIMPL; }

private:
    const Plan& plan;
    int asked = 0;
};

class Collection final : public ComObject<IDispatch> {
public:
    explicit Collection(const Plan& servers) : plan(servers) {}

    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
        if (plan.Spoils(TypeInfo, info)) {
            return plan.result;
        }
        *info = new Type(plan);
        return S_OK;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*) override {
        const bool spoilt = plan.step == (id == DISPID_NEWENUM ? NewEnum : Property);
        if (spoilt) {
            if (plan.leaving == Rubbish) {
                *result = Text(L"left over").Detach(); // a VARIANT is the caller's in any case
            }
            return plan.result;
        }
        if (id == DISPID_NEWENUM) {
            result->punkVal = new Items(plan);
            result->vt = VT_UNKNOWN;
        } else {
            *result = Text(L"value").Detach();
        }
        return S_OK;
    }

private:
    const Plan& plan;
};

constexpr HRESULT failures[] = {E_FAIL,
                                E_OUTOFMEMORY,
                                E_NOTIMPL,
                                E_POINTER,
                                E_UNEXPECTED,
                                DISP_E_EXCEPTION,
                                DISP_E_OVERFLOW,
                                DISP_E_MEMBERNOTFOUND,
                                DISP_E_BADINDEX,
                                TYPE_E_ELEMENTNOTFOUND,
                                static_cast<HRESULT>(0x80000000)};

class FaultyServers : public AutomationTest {
protected:
    /// What comes of `@Count` and of `@ToArray`.
    void Expect(const Plan& plan, const std::string& count, const std::string& array) {
        SCOPED_TRACE("step " + std::to_string(plan.step) + ", result " + Hex(plan.result) + ", leaving " +
                     std::to_string(plan.leaving));
        const ComMemory memory;
        {
            Collection* const server = new Collection(plan);
            const Ref<ObjectCom> object = Make<ObjectCom>(server);
            server->Release();
            EXPECT_EQ(Call(*object, L"Count"), count);
            EXPECT_EQ(Call(*object, L"ToArray"), array);
        }
        EXPECT_EQ(liveServers, 0);
        EXPECT_EQ(memory.Growth(), 0);
    }

    static std::string Hex(HRESULT result) {
        OrvStringT text;
        text.Format(L"%08X", static_cast<unsigned>(result));
        return text.ToUtf8();
    }
    static std::string NotAProperty(const char* type) {
        return std::string("! 'Count' is not a property of object '") + type + "'";
    }
    static std::string InvokeFailed(HRESULT result) {
        return "! Failed to invoke the method 'Count' of object 'COM:Faulty'. COM method returned error code " +
               Hex(result);
    }
    static std::string EnumerationFailed(HRESULT result) {
        return "! Failed to invoke the _NewEnum method of the object 'COM:Faulty'. COM method returned error code " +
               Hex(result);
    }

    const std::string value = "string value";
    const std::string items = "array (item)";
};

TEST_F(FaultyServers, DoWhatTheyShould) { Expect({stepCount, S_OK, Untouched}, value, items); }

TEST_F(FaultyServers, FailWithAnyCodeAndLeaveAnything) {
    for (const HRESULT failure : failures) {
        for (const Leaving leaving : {Untouched, Null, Rubbish}) {
            Expect({TypeInfo, failure, leaving}, NotAProperty("COM"), items);
            Expect({ContainingLibrary, failure, leaving}, value, items);
            Expect({Documentation, failure, leaving}, value, items);
            Expect({TypeComp, failure, leaving}, NotAProperty("COM:Faulty"), items);
            for (const DESCKIND kind : {DESCKIND_FUNCDESC, DESCKIND_VARDESC, DESCKIND_TYPECOMP}) {
                Names::kindThen = kind;
                Expect({Step::Bind, failure, leaving}, NotAProperty("COM:Faulty"), items);
            }
            Expect({Property, failure, leaving}, InvokeFailed(failure), items);
            Expect({NewEnum, failure, leaving}, value, EnumerationFailed(failure));
            Expect({EnumeratorInterface, failure, leaving}, value, EnumerationFailed(failure));
            Expect({Step::Next, failure, leaving}, value, EnumerationFailed(failure));
        }
    }
}

TEST_F(FaultyServers, SayToHaveSucceededAndGiveNothing) {
    for (const HRESULT success : {S_OK, S_FALSE}) {
        for (const Leaving leaving : {Untouched, Null}) {
            Expect({TypeInfo, success, leaving}, NotAProperty("COM"), items);
            Expect({ContainingLibrary, success, leaving}, value, items);
            Expect({Documentation, success, leaving}, value, items);
            Expect({TypeComp, success, leaving}, NotAProperty("COM:Faulty"), items);
            for (const DESCKIND kind :
                 {DESCKIND_NONE, DESCKIND_FUNCDESC, DESCKIND_VARDESC, DESCKIND_TYPECOMP, DESCKIND_IMPLICITAPPOBJ}) {
                Names::kindThen = kind;
                Expect({Step::Bind, success, leaving}, NotAProperty("COM:Faulty"), items);
            }
            Expect({Property, success, leaving}, "null null", items);
            Expect({NewEnum, success, leaving}, value, EnumerationFailed(E_FAIL));
            Expect({EnumeratorInterface, success, leaving}, value, EnumerationFailed(E_FAIL));
            Expect({Step::Next, success, leaving}, value, success == S_OK ? "array (null)" : "array ()");
        }
    }
}

TEST_F(FaultyServers, NamelessWhereTheNameIsAskedFor) {
    for (const Step step : {ContainingLibrary, Documentation}) {
        for (const Leaving leaving : {Untouched, Null, Rubbish}) {
            const Plan plan{step, E_FAIL, leaving};
            Collection* const server = new Collection(plan);
            const Ref<ObjectCom> object = Make<ObjectCom>(server);
            server->Release();
            EXPECT_EQ(object->GetTypeName(), L"COM");
        }
    }
}

// ---- arrays ----

std::string Unsupported(int type) {
    return "! Unable to convert unsupported VARIANT data type: " + std::to_string(type);
}

TEST_F(FaultyServers, ArraysThatAreOnlyDescribed) {
    for (const VARTYPE type : {VT_I4, VT_BSTR, VT_DISPATCH, VT_VARIANT}) {
        SAFEARRAY* const array = NewArray(type, 2);
        const Variant described = Array(type, array);
        void* const data = std::exchange(array->pvData, nullptr);
        EXPECT_EQ(FromVariant(described), Unsupported(VT_ARRAY | type));
        const long first = 0;
        Variant element;
        EXPECT_EQ(OrvUtils::VariantUtils::SafeArrayGetElementAsVariant(array, &first, type, element.Get()),
                  E_UNEXPECTED);
        EXPECT_EQ(array->cLocks, 0u);
        array->rgsabound[0].cElements = 0;
        EXPECT_EQ(FromVariant(described), "array ()");
        array->rgsabound[0].cElements = 2;
        array->pvData = data;
    }
}

TEST_F(FaultyServers, ArraysThatAreLockedAsOftenAsCanBe) {
    const Variant numbers = Array(VT_I4, NewArray(VT_I4, 2));
    // One lock for the time that it takes, and one for each element.
    for (const ULONG locks : {0u, 1u, 0xFFFDu}) {
        (*numbers).parray->cLocks = locks;
        EXPECT_EQ(FromVariant(numbers), "array (0,0)") << locks;
        EXPECT_EQ((*numbers).parray->cLocks, locks);
    }
    for (const ULONG locks : {0xFFFEu, 0xFFFFu}) {
        (*numbers).parray->cLocks = locks;
        EXPECT_EQ(FromVariant(numbers), Unsupported(8195));
        EXPECT_EQ((*numbers).parray->cLocks, locks);
    }
    (*numbers).parray->cLocks = 0;
}

TEST_F(FaultyServers, ArraysWhoseLastIndexIsNoNumber) {
    // The system's own sum wraps round: there is no index from the first to the last.
    const Variant numbers = Array(VT_I4, NewArray(VT_I4, 2));
    (*numbers).parray->rgsabound[0].lLbound = 0x7FFFFFFF;
    EXPECT_EQ(FromVariant(numbers), "array ()");
    (*numbers).parray->rgsabound[0].lLbound = 0;
}

} // namespace
} // namespace OrvUQL::Tests
