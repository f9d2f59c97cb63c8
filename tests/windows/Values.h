// Values for tests of conversions.
#pragma once

#include "windows/Automation.h"

#include <string>
#include <utility>

namespace OrvUQL::Tests {

/// An array of what is handed over.
inline Ref<IObject> ArrayValue(ObjectList items) { return Ref<IObject>(new ObjectArray(std::move(items))); }

/// A length, area, ... in centimetres.
inline Ref<ObjectUnit> Length(double centimetres, int power) {
    const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(0.0);
    const Ref<IUnitDefinition> unit(catalogue->FindUnit(L"cm"));
    return Make<ObjectUnit>(unit.Get(), centimetres, power, true);
}

/// An object of a host with a type code of the library's.
inline Ref<CountedObject> HostValue(IObject::EType type, const wchar_t* text) {
    return Make<CountedObject>("", OrvStringT(text), type);
}

/// What FromVariant says of a type that is refused.
inline std::string Unsupported(int type) {
    return "! Unable to convert unsupported VARIANT data type: " + std::to_string(type);
}

} // namespace OrvUQL::Tests
