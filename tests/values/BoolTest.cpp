// Bools: values and the type object.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"

#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

TEST(Bool, IsAValueOrTheTypeObject) {
    const ObjectBool yes(true);
    EXPECT_TRUE(yes.GetValue());
    EXPECT_FALSE(yes.IsStaticInstance());
    const ObjectBool no(false);
    EXPECT_FALSE(no.GetValue());
    EXPECT_FALSE(no.IsStaticInstance());
    const ObjectBool type;
    EXPECT_FALSE(type.GetValue());
    EXPECT_TRUE(type.IsStaticInstance());
    EXPECT_EQ(type.GetTypeName(), L"bool");
}

TEST(Bool, HasNoMethodsOfNumbers) {
    ObjectBool value(true);
    EXPECT_EQ(Call(value, L"Abs"), "! Identifier 'Abs' is not a method of 'bool'");
    EXPECT_EQ(Call(value, L"IsNumeric"), "bool true");
}

} // namespace
} // namespace OrvUQL::Tests
