// A host's value whose methods tell how they were called.
#pragma once

#include "support/Counted.h"
#include "support/Print.h"

#include <string>

namespace OrvUQL::Tests {

/// Base of values for tests of dispatch. A derived class gives a table; the handlers here answer with
/// "handler name(parameters)", a parameter that was left out shown as "-".
class Recorder : public CountedObject {
public:
    using CountedObject::CountedObject;
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"recorder"); }

    using ObjectBase::FindMethodEntry;
    using ObjectBase::GetHelp;
    using ObjectBase::GetMethodList;
    using ObjectBase::ValidateParameters;

    // Rows for tables.
    static constexpr MethodMap First(const wchar_t* name, const wchar_t* signature = L"") {
        return MethodMap::Method(name, signature, &Recorder::Method_First);
    }
    static constexpr MethodMap Second(const wchar_t* name, const wchar_t* signature = L"") {
        return MethodMap::Method(name, signature, &Recorder::Method_Second);
    }
    static constexpr MethodMap Static(const wchar_t* name, const wchar_t* signature = L"") {
        return MethodMap::StaticMethod(name, signature, &Recorder::Method_First);
    }
    static constexpr MethodMap Any(const wchar_t* signature = L"") {
        return MethodMap::CatchAll(signature, &Recorder::Method_Any);
    }
    static constexpr MethodMap Fail(const wchar_t* name, const wchar_t* signature = L"") {
        return MethodMap::Method(name, signature, &Recorder::Method_Fail);
    }
    static constexpr MethodMap FailSilently(const wchar_t* name, const wchar_t* signature = L"") {
        return MethodMap::Method(name, signature, &Recorder::Method_FailSilently);
    }
    static constexpr MethodMap Common() { return MethodMap::Chain(&Recorder::ObjectBaseMethods); }

    static std::string Describe(const ObjectList& params) {
        std::string text;
        for (const IObject* param : params) {
            if (!text.empty()) {
                text += ", ";
            }
            text += param == nullptr ? "-" : Tests::Describe(param);
        }
        return text;
    }

protected:
    static IObject* Report(const char* handler, const OrvStringT& name, const ObjectList& params) {
        const std::string text = std::string(handler) + " " + Utf8(name) + "(" + Describe(params) + ")";
        return new ObjectString(OrvStringT::FromUtf8(text));
    }

    IObject* Method_First(QueryEngine*, const OrvStringT& name, const ObjectList& params, IError**) {
        return Report("first", name, params);
    }
    IObject* Method_Second(QueryEngine*, const OrvStringT& name, const ObjectList& params, IError**) {
        return Report("second", name, params);
    }
    IObject* Method_Any(QueryEngine*, const OrvStringT& name, const ObjectList& params, IError**) {
        return Report("any", name, params);
    }
    IObject* Method_Fail(QueryEngine*, const OrvStringT&, const ObjectList&, IError** err) {
        if (err != nullptr) {
            *err = Error::Create(L"handler failed");
        }
        return nullptr;
    }
    IObject* Method_FailSilently(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) { return nullptr; }
};

/// A recorder with the table that `Rows` returns.
template <const ObjectBase::MethodMap* (*Rows)()> class RecorderWith : public Recorder {
public:
    using Recorder::Recorder;
    const MethodMap* GetMethodMap() const override { return Rows(); }
};

} // namespace OrvUQL::Tests
