// What names there are: methods of a value, as its help lists them, types and units.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "Ref.h"

#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

struct MethodName {
    OrvStringT name;
    OrvStringT line; ///< as help has it: "string.SubStr(int, [int])"
};

/// The methods of a value in the order of its help, which is where they are read: what a value does not list there is
/// not found here. Each name once, the first line wins as it does in a call.
std::vector<MethodName> ReadMethods(IObject& value, QueryEngine* engine = nullptr);

/// A value of each type that has methods, in the order in which they are to be listed; last the object of the global
/// functions. Which methods a value has depends on its type alone.
std::vector<Ref<IObject>> MakeSamples();
/// A value of the type of that name, letter case ignored; null if there is none.
Ref<IObject> MakeSample(const OrvStringT& typeName);

struct UnitName {
    OrvStringT name;
    double metres; ///< its size
};

/// The units of length, for a resolution of so many pixels in a kilometre (0: 300 an inch).
std::vector<UnitName> ReadUnits(double resolution);

/// The size as text: "0.01 m".
std::string DescribeSize(const UnitName& unit);

/// The names of the members of a value that has them as JSON objects do: by a method Keys(). Empty for any other.
std::vector<OrvStringT> ReadMemberNames(IObject& value, QueryEngine* engine);

} // namespace OrvUQL::Tool
