#include "OrvUQL/Unit.h"

#include <algorithm>
#include <iterator>

namespace OrvUQL {

namespace {

/// Base units in a kilometre, over which a resolution counts pixels.
constexpr double kilometre = 10000000000.0;

/// A pixel at 300 pixels an inch, where no resolution is given. Kept to these digits.
constexpr double defaultPixel = 846.6666395733;

/// Factors in tenths of a micrometre. The inch is 25.4 mm by international agreement (1959), and with it foot, yard
/// and mile are exact. Two are deliberately not the multiples one might derive: the pica is cut after eight decimals,
/// and the cicero is not twelve of these didot points.
constexpr UnitData linearUnits[] = {
    {1, L"px", 0.0}, // set by each catalogue from its resolution
    {2, L"un", 1.0},
    {3, L"in", 254000.0},
    {4, L"cm", 100000.0},
    {5, L"mm", 10000.0},
    {6, L"ft", 3048000.0},
    {7, L"mi", 16093440000.0},
    {8, L"m", 10000000.0},
    {9, L"km", 10000000000.0},
    {10, L"dd", 3759.2},
    {11, L"yd", 9144000.0},
    {12, L"pc", 42333.33333333},
    {13, L"cc", 45118.7},
    {14, L"pt", 254000.0 / 72.0},
    {15, L"H", 2500.0},
    {16, L"Q", 2500.0},
    {0, nullptr, 0.0},
};

} // namespace

LinearDimensionUnits::LinearDimensionUnits(double resolution) : units(new UnitData[std::size(linearUnits)]) {
    std::copy(std::begin(linearUnits), std::end(linearUnits), units);
    units[0].factor = resolution == 0.0 ? defaultPixel : kilometre / resolution;
}

LinearDimensionUnits::~LinearDimensionUnits() { delete[] units; }

OrvStringT LinearDimensionUnits::GetUnitCategory() const { return ORV_TEXT(L"Linear Dimensions"); }

} // namespace OrvUQL
