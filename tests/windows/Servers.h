// Automation servers of the tests' own: objects, enumerators and type descriptions that count themselves and do as they
// are told.
#pragma once

#include "windows/Automation.h"

#include <functional>
#include <string>
#include <vector>

#include <windows.h>

#include <oleauto.h>

namespace OrvUQL::Tests {

/// How many of the objects below are alive.
inline int liveServers = 0;

/// One reference to an interface of COM.
template <class T> class ComRef {
public:
    ComRef() noexcept = default;
    /// Takes the reference over.
    explicit ComRef(T* taken) noexcept : pointer(taken) {}
    ComRef(ComRef&& other) noexcept : pointer(std::exchange(other.pointer, nullptr)) {}
    ComRef& operator=(ComRef&& other) noexcept {
        std::swap(pointer, other.pointer);
        return *this;
    }
    ~ComRef() {
        if (pointer != nullptr) {
            pointer->Release();
        }
    }

    T* Get() const noexcept { return pointer; }
    T* operator->() const noexcept { return pointer; }
    T& operator*() const noexcept { return *pointer; }
    explicit operator bool() const noexcept { return pointer != nullptr; }
    /// A place for a function to store a reference in.
    T** Receive() noexcept {
        *this = ComRef();
        return &pointer;
    }
    void** ReceiveAny() noexcept { return reinterpret_cast<void**>(Receive()); }

private:
    T* pointer = nullptr;
};

/// Counting for a class that implements the interface T and no other.
template <class T> class ComObject : public T {
public:
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, __uuidof(T))) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        AddRef();
        *object = static_cast<T*>(this);
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

    ULONG References() const noexcept { return references; }

protected:
    ComObject() { ++liveServers; }
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;
    virtual ~ComObject() { --liveServers; }

private:
    ULONG references = 1;
};

/// What a server is asked: a call of Invoke, written down.
struct ServerCall {
    DISPID id;
    WORD flags;
    LCID locale;
    std::vector<std::string> arguments; ///< as the server counts them: the last of a call first
    std::vector<DISPID> named;          ///< the ids of the named arguments
    bool hasPlaces;                     ///< whether there was a place for an EXCEPINFO or for an argument's number
    bool isAnonymous;                   ///< whether the interface id was IID_NULL
};

/// An automation object. Its type is what it is given (null: none); what it answers is a function, which stores an
/// owned VARIANT.
class Server final : public ComObject<IDispatch> {
public:
    using Answer = std::function<HRESULT(const ServerCall& call, VARIANT* result)>;

    /// Takes a reference to `serverType`.
    explicit Server(ITypeInfo* serverType = nullptr, Answer serverAnswer = nullptr);

    std::vector<ServerCall> calls;
    int typeQueries = 0;
    LCID typeLocale = 0;

    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID interfaceId, LCID locale, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* exception, UINT* argument) override;

private:
    ~Server() override;

    ITypeInfo* type;
    Answer answer;
};

/// An enumerator over VARIANTs, which returns `end` when they are through.
class Enumerator final : public ComObject<IEnumVARIANT> {
public:
    explicit Enumerator(std::vector<Variant> enumeratedItems, HRESULT finalResult = S_FALSE)
        : items(std::move(enumeratedItems)), end(finalResult) {}

    STDMETHODIMP Next(ULONG count, VARIANT* out, ULONG* fetched) override;
    STDMETHODIMP Skip(ULONG) override { return E_NOTIMPL; }
    STDMETHODIMP Reset() override { return E_NOTIMPL; }
    STDMETHODIMP Clone(IEnumVARIANT**) override { return E_NOTIMPL; }

private:
    std::vector<Variant> items;
    HRESULT end;
    std::size_t next = 0;
};

/// An object that is nothing else.
class Nothing final : public ComObject<IUnknown> {};

// ---- types ----

/// A member of a type that is described at run time.
struct Member {
    const wchar_t* name;
    DISPID id;
    INVOKEKIND kind = INVOKE_PROPERTYGET;
    int parameters = 0;
};

/// A dispatch interface with functions, and with variables for `fields`, in a type library made for it.
ComRef<ITypeInfo> MakeType(const wchar_t* name, std::initializer_list<Member> functions,
                           std::initializer_list<Member> fields = {});

/// A type of which nothing is known but what a class derived from this one says.
class TypeStub : public ComObject<ITypeInfo> {
public:
    STDMETHODIMP GetTypeAttr(TYPEATTR**) override { return E_NOTIMPL; }
    STDMETHODIMP GetFuncDesc(UINT, FUNCDESC**) override { return E_NOTIMPL; }
    STDMETHODIMP GetVarDesc(UINT, VARDESC**) override { return E_NOTIMPL; }
    STDMETHODIMP GetNames(MEMBERID, BSTR*, UINT, UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetRefTypeOfImplType(UINT, HREFTYPE*) override { return E_NOTIMPL; }
    STDMETHODIMP GetImplTypeFlags(UINT, INT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(LPOLESTR*, UINT, MEMBERID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(PVOID, MEMBERID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetDocumentation(MEMBERID, BSTR*, BSTR*, DWORD*, BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP GetDllEntry(MEMBERID, INVOKEKIND, BSTR*, BSTR*, WORD*) override { return E_NOTIMPL; }
    STDMETHODIMP GetRefTypeInfo(HREFTYPE, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP AddressOfMember(MEMBERID, INVOKEKIND, PVOID*) override { return E_NOTIMPL; }
    STDMETHODIMP CreateInstance(IUnknown*, REFIID, PVOID*) override { return E_NOTIMPL; }
    STDMETHODIMP GetMops(MEMBERID, BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP_(void) ReleaseTypeAttr(TYPEATTR*) override {}
};

/// A type that answers as it is told, for answers that no library gives. What it hands out it counts until it gets it
/// back.
class FakeType final : public TypeStub {
public:
    /// What Bind finds: the kind of description, and how many of them are out.
    DESCKIND found = DESCKIND_NONE;
    INVOKEKIND invokeKind = INVOKE_PROPERTYGET;
    HRESULT typeCompResult = S_OK;
    HRESULT bindResult = S_OK;
    HRESULT libraryResult = S_OK;
    HRESULT nameResult = S_OK;
    /// The type's name in its library; null for none.
    const wchar_t* typeName = L"Fake";
    unsigned indexInLibrary = 7;

    int descriptionsOut = 0;
    std::wstring boundName;
    ULONG boundHash = 0;
    WORD boundFlags = 0;

    FUNCDESC function{};
    VARDESC variable{};

    STDMETHODIMP GetTypeComp(ITypeComp** names) override;
    STDMETHODIMP GetContainingTypeLib(ITypeLib** library, UINT* index) override;
    STDMETHODIMP_(void) ReleaseFuncDesc(FUNCDESC* description) override;
    STDMETHODIMP_(void) ReleaseVarDesc(VARDESC* description) override;
};

} // namespace OrvUQL::Tests
