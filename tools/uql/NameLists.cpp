#include "NameLists.h"

#include "JsonReader.h"

#include <algorithm>
#include <cstdio>

namespace OrvUQL::Tool {

namespace {

/// The catalogue, whose table is for classes derived from it.
class ListedUnits : public LinearDimensionUnits {
public:
    using LinearDimensionUnits::LinearDimensionUnits;
    const UnitData* GetRows() { return GetDataList(); }
};

OrvStringT GetText(const Ref<IObject>& value) {
    OrvStringT text;
    return value && value->ToString(text, nullptr) ? text : OrvStringT();
}

void AddMethod(std::vector<MethodName>& methods, std::wstring_view line, std::size_t typeLength) {
    const std::size_t bracket = line.find(L'(', typeLength);
    if (line.size() <= typeLength || line[typeLength] != L'.' || bracket == std::wstring_view::npos) {
        return;
    }
    MethodName method;
    method.name = OrvStringT(line.substr(typeLength + 1, bracket - typeLength - 1));
    method.line = OrvStringT(line);
    const bool isKnown = std::any_of(methods.begin(), methods.end(), [&](const MethodName& other) {
        return other.name.CompareNoCase(method.name) == 0;
    });
    if (!isKnown) {
        methods.push_back(std::move(method));
    }
}

} // namespace

std::vector<MethodName> ReadMethods(IObject& value, QueryEngine* engine) {
    const QueryElementList none;
    const Ref<IObject> help(value.Invoke(engine, L"help", none, nullptr));
    const OrvStringT text = GetText(help);
    const std::size_t typeLength = static_cast<std::size_t>(value.GetTypeName().GetLength());
    std::vector<MethodName> methods;
    std::wstring_view rest = text.View();
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(L'\r'), rest.size());
        AddMethod(methods, rest.substr(0, end), typeLength);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return methods;
}

std::vector<Ref<IObject>> MakeSamples() {
    std::vector<Ref<IObject>> samples;
    samples.emplace_back(new ObjectNull());
    samples.emplace_back(new ObjectBool(false));
    samples.emplace_back(new ObjectInt(0));
    samples.emplace_back(new ObjectDouble(0.0));
    samples.emplace_back(new ObjectString(L""));
    samples.emplace_back(new ObjectArray(ObjectList()));
    samples.emplace_back(new ObjectUnit(nullptr, 0.0, 1, false));
    samples.emplace_back(new ObjectIterator(nullptr, nullptr, nullptr, nullptr));
    JsonError error;
    samples.push_back(JsonReader().Read("{}", error));
    samples.emplace_back(new ObjectGlobal());
    return samples;
}

Ref<IObject> MakeSample(const OrvStringT& typeName) {
    for (Ref<IObject>& sample : MakeSamples()) {
        if (sample->GetTypeName().CompareNoCase(typeName) == 0) {
            return std::move(sample);
        }
    }
    return Ref<IObject>();
}

std::vector<UnitName> ReadUnits(double resolution) {
    constexpr double baseUnitsInAMetre = 1e7;
    const Ref<ListedUnits> catalogue(new ListedUnits(resolution));
    std::vector<UnitName> units;
    for (const UnitData* row = catalogue->GetRows(); row->name != nullptr; ++row) {
        units.push_back({OrvStringT(row->name), row->factor / baseUnitsInAMetre});
    }
    return units;
}

std::string DescribeSize(const UnitName& unit) {
    char text[64]; // with the digits that a double surely has: the catalogue counts in tenths of a micrometre
    std::snprintf(text, sizeof text, "%.12g m", unit.metres);
    return text;
}

std::vector<OrvStringT> ReadMemberNames(IObject& value, QueryEngine* engine) {
    const std::vector<MethodName> methods = ReadMethods(value, engine);
    const bool hasKeys = std::any_of(methods.begin(), methods.end(),
                                     [](const MethodName& method) { return method.name.CompareNoCase(L"Keys") == 0; });
    std::vector<OrvStringT> names;
    if (value.GetType() != IObject::TypeGlobal || !hasKeys) {
        return names;
    }
    const QueryElementList none;
    const Ref<IObject> keys(value.Invoke(engine, L"Keys", none, nullptr));
    if (const auto* const array = dynamic_cast<const ObjectArrayBase*>(keys.Get())) {
        for (int index = 0; index < array->GetCount(); ++index) {
            names.push_back(GetText(Ref<IObject>(array->GetItem(index))));
        }
    }
    return names;
}

} // namespace OrvUQL::Tool
