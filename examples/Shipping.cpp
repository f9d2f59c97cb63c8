// A host with values of its own: parcels whose properties and methods queries use, and a catalogue of weights. Each
// rule is parsed once and evaluated for every parcel.
#include <OrvUQL/OrvUQL.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace OrvUQL;

/// Gives the reference back when it goes out of scope.
struct Releaser {
    void operator()(IRefCountObject* object) const { object->Release(); }
};
template <class T> using Owned = std::unique_ptr<T, Releaser>;

/// Weights, in grams. The category keeps them apart from lengths.
class Weights : public UnitFactoryBase {
public:
    OrvStringT GetUnitCategory() const override { return ORV_TEXT(L"Weights"); }

protected:
    const UnitData* GetDataList() override {
        static const UnitData rows[] = {
            {1, L"g", 1.0}, {2, L"kg", 1000.0}, {3, L"oz", 28.349523125}, {4, L"lb", 453.59237}, {0, nullptr, 0.0}};
        return rows;
    }
};

struct ParcelData {
    int number;
    const char* destination;
    double grams;
    int items;
    std::optional<double> value; // not everybody declares one
};

/// A parcel as queries see it. Values never change, so it keeps what it was made from.
class Parcel : public ObjectBase {
public:
    /// Takes a reference to `shownIn`, the unit in which weights are shown.
    Parcel(const ParcelData& parcel, IUnitDefinition* shownIn)
        : data(parcel), destination(OrvStringT::FromUtf8(parcel.destination)), unit(shownIn) {
        unit->AddRef();
    }

    EType GetType() const override { return TypeGlobal; } // the code of all values that are no scalars
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"parcel"); }
    OrvStringT ToString() const override { return L"parcel " + OrvUtils::String::ToStringW(data.number); }
    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }

private:
    const MethodMap* _GetMethodMap() const {
        static const MethodMap table[] = {
            MethodMap::Property<&Parcel::destination>(L"Destination"),
            MethodMap::Property<&Parcel::GetWeight>(L"Weight"),
            MethodMap::Property<&Parcel::GetItems>(L"Items"),
            MethodMap::Property<&Parcel::GetValue>(L"Value"),
            MethodMap::Method(L"Postage", L"S", &Parcel::Method_Postage), // one text, required
            MethodMap::Chain(&Parcel::ObjectBaseMethods),
            MethodMap::End(),
        };
        return table;
    }

    // An object's reference is handed over.
    IObject* GetWeight() const {
        return new ObjectUnit(unit.get(), data.grams, 1, false); // in base units, which are grams
    }
    int GetItems() const { return data.items; }
    std::optional<double> GetValue() const { return data.value; } // the null value where there is none

    IObject* Method_Postage(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
        OrvStringT service;
        if (!params[0]->ToString(service, err)) {
            return nullptr;
        }
        if (CompareStrings(service, ORV_TEXT(L"standard"), false)) {
            return new ObjectDouble(data.grams <= 2000 ? 4.5 : 7.25);
        }
        if (CompareStrings(service, ORV_TEXT(L"express"), false)) {
            return new ObjectDouble(12.0 + data.items * 0.5);
        }
        if (err != nullptr) {
            *err = Error::Create(L"There is no service '%1'", service);
        }
        return nullptr;
    }

    ParcelData data;
    OrvStringT destination;
    Owned<IUnitDefinition> unit;
};

std::string TextOf(IObject& value) {
    OrvStringT text;
    return value.ToString(text, nullptr) ? text.ToUtf8() : std::string();
}

/// Points at the place in the rule, which was printed last, and tells what is wrong there.
void PrintError(const QueryEngine& engine, IError* error) {
    const Owned<IError> owned(error); // null where a failure has no message
    std::printf("  %*s\n", engine.GetErrorPosition() + 1, "^");
    std::printf("  %s\n", owned ? owned->GetMessageW().ToUtf8().c_str() : "no value");
}

/// Prints the rule and its value for every parcel, up to the first one for which it has none.
void Run(QueryEngine& engine, const wchar_t* rule, const std::vector<Owned<Parcel>>& parcels) {
    std::printf("  %s\n", OrvStringT(rule).ToUtf8().c_str());
    IError* error = nullptr;
    const Owned<IQueryElement> query(engine.ParseQuery(rule, &error));
    if (!query) {
        PrintError(engine, error);
        return;
    }
    for (const Owned<Parcel>& parcel : parcels) {
        engine.SetPropertySource(parcel.get());
        const Owned<IObject> value(engine.Evaluate(query.get(), &error));
        if (!value) {
            PrintError(engine, error);
            return;
        }
        std::printf("%s: %s\n", TextOf(*parcel).c_str(), TextOf(*value).c_str());
    }
}

} // namespace

int main() {
    QueryEngine engine;
    const Owned<IObject> functions(new ObjectGlobal);
    engine.SetGlobal(functions.get());
    const Owned<IUnitFactory> weights(new Weights);
    engine.AddUnitFactory(weights.get()); // of the rule's units, before it is parsed
    const Owned<IUnitDefinition> kilogram(weights->FindUnit(L"kg"));

    const ParcelData data[] = {
        {101, "Graz", 850, 2, 35.0},
        {102, "Århus", 23500, 1, 410.0},
        {103, "Porto", 4200, 12, std::nullopt},
        {104, "Brno", 1999, 3, 1250.0},
    };
    std::vector<Owned<Parcel>> parcels;
    for (const ParcelData& parcel : data) {
        parcels.emplace_back(new Parcel(parcel, kilogram.get()));
    }

    Run(engine, L"@destination + ': ' + @weight.ToString() + ', ' + (@value = null ? 'undeclared' : @value)", parcels);
    Run(engine, L"@weight > {20 kg} ? 'freight' : @postage(@value <> null and @value > 500 ? 'express' : 'standard')",
        parcels);
    Run(engine, L"(@weight / @items).Convert('g').Round()", parcels);
    Run(engine, L"@weight > {1 kg} ? 'heavy' : @postage('pigeon')", parcels);
    Run(engine, L"@weight > {20 stone}", parcels);
}
