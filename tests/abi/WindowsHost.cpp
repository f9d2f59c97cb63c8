// A host that includes windows.h in full, before the library's headers (HOST_WINDOWS_FIRST) or after them, and keeps
// its macros: what the library declares under a name that windows.h redefines can be called and overridden all the
// same. A program for Windows that returns 0 if everything answers as it should; elsewhere it is only compiled.

// The standard headers come first, since they do not survive the macros min and max. The library's own must.
#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <new>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#if HOST_WINDOWS_FIRST
#include <windows.h>

// Microsoft's windows.h defines these, mingw-w64's leaves them out for C++.
#undef min
#undef max
#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))
#endif

#include <OrvUQL/OrvUQL.h>

#if !HOST_WINDOWS_FIRST
#include <windows.h>
#endif

#if !defined(GetObject) || !defined(GetMessage)
#error "this file is about the macros of windows.h"
#endif

namespace {

using namespace OrvUQL;

// A catalogue and a value class of the host.
class Weights : public UnitFactoryBase {
public:
    OrvStringT GetUnitCategory() const override { return ORV_TEXT(L"Weights"); }

protected:
    const UnitData* GetDataList() override {
        static const UnitData rows[] = {{1, L"g", 1.0}, {2, L"kg", 1000.0}, {0, nullptr, 0.0}};
        return rows;
    }
};

class Parcel : public ObjectBase {
public:
    explicit Parcel(int grams) : weight(grams) {}

    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }
    OrvStringT ToString() const override { return ORV_TEXT(L"a parcel"); }
    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"parcel"); }
    using ObjectBase::ToString;

    const MethodMap* _GetMethodMap() const {
        static const MethodMap table[] = {
            MethodMap::Method(L"Weight", L"", &Parcel::Method_Weight),
            MethodMap::Chain(&Parcel::ObjectBaseMethods),
            MethodMap::End(),
        };
        return table;
    }

private:
    IObject* Method_Weight(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
        return new ObjectInt(weight);
    }

    int weight;
};

// A class of two bases whose method table is the host's.
class Load : public ObjectUnit {
public:
    Load(IUnitDefinition* unit, double amount) : ObjectUnit(unit, amount, 1, true) {}

    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }

    const MethodMap* _GetMethodMap() const {
        static const MethodMap table[] = {
            MethodMap::Method(L"Halves", L"", &Load::Method_Halves),
            MethodMap::Chain(&ObjectUnit::_GetMethodMap),
            MethodMap::End(),
        };
        return table;
    }

private:
    IObject* Method_Halves(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
        return new ObjectDouble(GetDisplayValue() * 2.0);
    }
};

class Refusal : public RefCountImpl<IError> {
public:
    OrvStringT GetMessageW() const override { return ORV_TEXT(L"no"); }
};

// Only a class that overrides GetObject() has to do without the macro.
#pragma push_macro("GetObject")
#undef GetObject
class BareUnit : public IUnit {
public:
    explicit BareUnit(IObject* value) : face(value) {}

    double GetValue() const override { return 3.0; }
    double GetDisplayValue() const override { return 3.0; }
    double GetFactor() const override { return 1.0; }
    double GetFactorValue() const override { return 1.0; }
    OrvStringT GetName() const override { return ORV_TEXT(L"b"); }
    OrvStringT GetDisplayName() const override { return ORV_TEXT(L"b"); }
    OrvStringT GetDisplayString() const override { return ORV_TEXT(L"3 b"); }
    OrvStringT GetCategory() const override { return ORV_TEXT(L"Bare"); }
    int GetPower() const override { return 1; }
    IUnitDefinition* GetUnitDefinition() const override { return nullptr; }
    IObject* GetObject() override { return face; }
    const IObject* GetObject() const override { return face; }

private:
    IObject* face;
};
#pragma pop_macro("GetObject")

int failures = 0;

void Check(bool holds) { failures += holds ? 0 : 1; }

void CheckUnits(IObject* value, IUnitDefinition* unit) {
    IUnit* const face = value->ToUnit(unit, nullptr);
    Check(face != nullptr && face->GetObject() == value);
    face->GetObject()->Release();
    const IObject& constant = *value;
    Check(constant.GetUnitInterface()->GetObject() == value);
    BareUnit bare(value);
    Check(bare.GetObject() == value && static_cast<const IUnit&>(bare).GetObject() == value);
}

void CheckErrors() {
    IError* const error = Error::Create(L"%2 of %1", L"two", OrvStringT(L"one"));
    Check(error->GetMessageW() == L"one of two");
#if defined(UNICODE)
    Check(error->GetMessage() == L"one of two");
#endif
    error->Release();
    IError* const regexError = Error::Create(std::regex_error(std::regex_constants::error_paren));
    Check(regexError->GetMessageW().Find(L"Error in regular expression: ") == 0);
    regexError->Release();
    Refusal* const refusal = new Refusal();
    Check(static_cast<IError*>(refusal)->GetMessageW() == L"no");
    refusal->Release();
}

void CheckQuery(QueryEngine& engine, const wchar_t* query, const wchar_t* text) {
    IError* error = nullptr;
    IQueryElement* const tree = engine.ParseQuery(query, &error);
    IObject* const value = tree != nullptr ? engine.Evaluate(tree, &error) : nullptr;
    OrvStringT got;
    Check(value != nullptr && value->ToString(got, &error) && got == text);
    Check(error == nullptr);
    if (value != nullptr) {
        value->Release();
    }
    if (tree != nullptr) {
        tree->Release();
    }
}

void CheckVariant(const IObject& value) {
    VARIANT variant;
    VariantInit(&variant);
    const HRESULT result = value.ToVariant(variant, nullptr);
    Check(result == S_OK && variant.vt == VT_I4 && variant.lVal == 7);
    VariantClear(&variant);
}

} // namespace

int main() {
    QueryEngine engine;
    Weights* const weights = new Weights();
    engine.AddUnitFactory(weights);
    IUnitDefinition* const kilogram = engine.FindUnit(L"kg");
    Load* const load = new Load(kilogram, 2.0);
    CheckUnits(load, kilogram);
    kilogram->Release();
    weights->Release();

    Parcel* const parcel = new Parcel(7);
    engine.SetPropertySource(parcel);
    engine.SetVariable(load);
    CheckQuery(engine, L"@Weight + 1", L"8");
    CheckQuery(engine, L"$Halves", L"4");
    CheckQuery(engine, L"$Unit", L"kg");
    parcel->Release();
    load->Release();

    CheckErrors();
    ObjectInt* const seven = new ObjectInt(7);
    CheckVariant(*seven);
    seven->Release();
    return failures;
}
