// Ints: values and the type object, and their own method.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace OrvUQL::Tests {
namespace {

TEST(Int, IsAValueOrTheTypeObject) {
    const ObjectInt value(-7);
    EXPECT_EQ(value.GetValue(), -7);
    EXPECT_FALSE(value.IsStaticInstance());
    const ObjectInt zero(0);
    EXPECT_FALSE(zero.IsStaticInstance());
    const ObjectInt type;
    EXPECT_EQ(type.GetValue(), 0);
    EXPECT_TRUE(type.IsStaticInstance());
    EXPECT_EQ(type.GetTypeName(), L"int");
}

TEST(Int, HasAnAbsoluteValue) {
    const std::pair<int, const char*> rows[] = {
        {0, "int 0"},
        {5, "int 5"},
        {-5, "int 5"},
        {std::numeric_limits<int>::max(), "int 2147483647"},
        {-2147483647, "int 2147483647"},
        // There is no such int above zero; the negation wraps, without an error.
        {std::numeric_limits<int>::min(), "int -2147483648"},
    };
    for (const auto& [number, expected] : rows) {
        ObjectInt value(number);
        EXPECT_EQ(Call(value, L"abs"), expected) << number;
        EXPECT_EQ(value.GetValue(), number) << "values never change";
    }
}

TEST(Int, DoesNotRound) {
    ObjectInt value(5);
    EXPECT_EQ(Call(value, L"Round"), "! Identifier 'Round' is not a method of 'int'");
}

} // namespace
} // namespace OrvUQL::Tests
