// The catalogue of lengths: every unit, by name and by id.

#include <OrvUQL/OrvUQL.h>

#include "support/Counted.h"
#include "support/Print.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>

namespace OrvUQL::Tests {
namespace {

struct Row {
    int id;
    const wchar_t* name;
    double factor; ///< tenths of a micrometre
};

const Row rows[] = {
    {1, L"px", 846.6666395733}, // without a resolution: 300 an inch
    {2, L"un", 1},
    {3, L"in", 254000},
    {4, L"cm", 100000},
    {5, L"mm", 10000},
    {6, L"ft", 3048000},
    {7, L"mi", 16093440000.0},
    {8, L"m", 10000000},
    {9, L"km", 10000000000.0},
    {10, L"dd", 3759.2},
    {11, L"yd", 9144000},
    {12, L"pc", 42333.33333333}, // cut after eight decimals, not 254000 / 6
    {13, L"cc", 45118.7},        // not twelve didot points
    {14, L"pt", 3527.777777777778},
    {15, L"H", 2500},
    {16, L"Q", 2500},
};

using LinearDimensions = CountedTest;

OrvStringT Upper(const wchar_t* text) { return OrvStringT(text).MakeUpper(); }
OrvStringT Lower(const wchar_t* text) { return OrvStringT(text).MakeLower(); }

TEST_F(LinearDimensions, HasEveryUnitByNameAndById) {
    const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(0.0);
    for (const Row& row : rows) {
        SCOPED_TRACE(Utf8(row.name));
        for (const Ref<IUnitDefinition>& definition :
             {Ref<IUnitDefinition>(catalogue->FindUnit(row.name)), Ref<IUnitDefinition>(catalogue->FindUnit(row.id))}) {
            ASSERT_TRUE(definition);
            EXPECT_EQ(definition->GetId(), row.id);
            EXPECT_EQ(definition->GetName(), row.name);
            EXPECT_EQ(definition->GetFactor(), row.factor);
            EXPECT_EQ(definition->GetFactory(), catalogue.Get());
            EXPECT_EQ(definition->GetCategory(), L"Linear Dimensions");
        }
    }
}

TEST_F(LinearDimensions, IgnoresTheLetterCaseOfNames) {
    const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(0.0);
    for (const Row& row : rows) {
        for (const OrvStringT& name : {Upper(row.name), Lower(row.name)}) {
            const Ref<IUnitDefinition> definition(catalogue->FindUnit(name.GetString()));
            ASSERT_TRUE(definition) << Utf8(name);
            EXPECT_EQ(definition->GetId(), row.id) << Utf8(name);
            EXPECT_EQ(definition->GetName(), row.name) << "as the table writes it";
        }
    }
    const Ref<IUnitDefinition> inch(catalogue->FindUnit(L"In"));
    EXPECT_EQ(inch->GetId(), 3);
}

TEST_F(LinearDimensions, HasNothingElse) {
    const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(0.0);
    for (const wchar_t* const name :
         {L"", L" ", L"kg", L"inch", L"i", L"c", L"cm ", L" cm", L"px2", L"\u00b5m", L"cm\u00b2"}) {
        EXPECT_EQ(catalogue->FindUnit(name), nullptr) << Utf8(name);
    }
    for (const int id : {0, 17, 18, -1, 1000000, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(catalogue->FindUnit(id), nullptr) << id;
    }
}

TEST_F(LinearDimensions, AgreesWithItself) {
    std::set<int> ids;
    std::set<std::string> names;
    for (const Row& row : rows) {
        EXPECT_TRUE(ids.insert(row.id).second);
        EXPECT_TRUE(names.insert(Utf8(Upper(row.name))).second) << "names differ in more than letter case";
    }
    const auto factor = [](int id) { return rows[id - 1].factor; };
    EXPECT_EQ(factor(4), 10 * factor(5));
    EXPECT_EQ(factor(8), 100 * factor(4));
    EXPECT_EQ(factor(9), 1000 * factor(8));
    EXPECT_EQ(factor(6), 12 * factor(3));
    EXPECT_EQ(factor(11), 3 * factor(6));
    EXPECT_EQ(factor(7), 1760 * factor(11));
    EXPECT_EQ(factor(14), factor(3) / 72);
    EXPECT_NE(factor(12), factor(3) / 6);
    EXPECT_NE(factor(13), 12 * factor(10));
}

TEST_F(LinearDimensions, SizesThePixelByTheResolution) {
    const struct {
        double resolution; // pixels in a kilometre
        double pixel;
    } pixelRows[] = {
        {0.0, 846.6666395733},
        {-0.0, 846.6666395733},
        {11811024.0, 10000000000.0 / 11811024.0},   // 300 an inch
        {39370078.74, 10000000000.0 / 39370078.74}, // 1000 an inch
        {1.0, 10000000000.0},
        {10000000000.0, 1.0},
        // Not checked: what comes of it is used.
        {-1.0, -10000000000.0},
        {std::numeric_limits<double>::infinity(), 0.0},
    };
    for (const auto& row : pixelRows) {
        const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(row.resolution);
        const Ref<IUnitDefinition> pixel(catalogue->FindUnit(L"px"));
        ASSERT_TRUE(pixel);
        EXPECT_EQ(pixel->GetFactor(), row.pixel) << row.resolution;
        const Ref<IUnitDefinition> inch(catalogue->FindUnit(L"in"));
        EXPECT_EQ(inch->GetFactor(), 254000.0);
    }
    EXPECT_NEAR(10000000000.0 / 11811024.0, 846.6666396, 1e-6);
    EXPECT_NEAR(10000000000.0 / 39370078.74, 254, 1e-6);
    const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(std::numeric_limits<double>::quiet_NaN());
    const Ref<IUnitDefinition> pixel(catalogue->FindUnit(1));
    EXPECT_TRUE(std::isnan(pixel->GetFactor()));
}

TEST_F(LinearDimensions, KeepsEachCataloguesPixelApart) {
    const Ref<LinearDimensionUnits> first = Make<LinearDimensionUnits>(1.0);
    const Ref<LinearDimensionUnits> second = Make<LinearDimensionUnits>(2.0);
    const Ref<IUnitDefinition> firstPixel(first->FindUnit(L"px"));
    const Ref<IUnitDefinition> secondPixel(second->FindUnit(L"px"));
    EXPECT_EQ(firstPixel->GetFactor(), 10000000000.0);
    EXPECT_EQ(secondPixel->GetFactor(), 5000000000.0);
}

TEST_F(LinearDimensions, MakesANewDefinitionForEachLookUp) {
    const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(0.0);
    const Ref<IUnitDefinition> first(catalogue->FindUnit(L"cm"));
    const Ref<IUnitDefinition> second(catalogue->FindUnit(L"cm"));
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(first->GetId(), second->GetId());
    EXPECT_EQ(first->GetFactor(), second->GetFactor());
    EXPECT_EQ(first->GetName(), second->GetName());
}

TEST_F(LinearDimensions, LiveAsLongAsADefinition) {
    Probe<LinearDimensionUnits>* const catalogue = new Probe<LinearDimensionUnits>(0.0);
    EXPECT_EQ(catalogue->References(), 1);
    Ref<IUnitDefinition> first(catalogue->FindUnit(L"cm"));
    Ref<IUnitDefinition> second(catalogue->FindUnit(5));
    EXPECT_EQ(catalogue->References(), 3);
    catalogue->Release();
    first.Reset();
    EXPECT_EQ(Counted::live, 1);
    EXPECT_EQ(second->GetCategory(), L"Linear Dimensions");
    EXPECT_EQ(second->GetFactory(), catalogue);
    EXPECT_EQ(catalogue->References(), 1) << "the factory is lent";
    second.Reset();
    EXPECT_EQ(Counted::live, 0);
}

} // namespace
} // namespace OrvUQL::Tests
