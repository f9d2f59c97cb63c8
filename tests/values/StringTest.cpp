// The text value itself; its methods have tests of their own.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"

#include <gtest/gtest.h>

#include <utility>

namespace OrvUQL::Tests {
namespace {

TEST(StringValue, IsAValueOrTheTypeObject) {
    const ObjectString value(L"text");
    EXPECT_EQ(value.GetValue(), L"text");
    EXPECT_EQ(value.ToString(), L"text");
    EXPECT_FALSE(value.IsStaticInstance());
    EXPECT_EQ(value.GetType(), IObject::TypeString);
    EXPECT_EQ(value.GetTypeName(), L"string");
    const ObjectString type;
    EXPECT_EQ(type.GetValue(), L"");
    EXPECT_TRUE(type.IsStaticInstance());
}

// Only the constructor without a text makes the type object, not the text without units.
TEST(StringValue, MayBeEmptyAndAValueStill) {
    const ObjectString empty(L"");
    EXPECT_FALSE(empty.IsStaticInstance());
    const ObjectString null(static_cast<const wchar_t*>(nullptr));
    EXPECT_FALSE(null.IsStaticInstance());
    EXPECT_EQ(null.GetValue(), L"");
    const ObjectString shared{OrvStringT()};
    EXPECT_FALSE(shared.IsStaticInstance());
}

TEST(StringValue, CopiesAPointersTextAndSharesATexts) {
    wchar_t buffer[] = L"text";
    const ObjectString copied(buffer);
    buffer[0] = L'T';
    EXPECT_EQ(copied.GetValue(), L"text");

    const OrvStringT text(L"shared");
    const ObjectString shared(text);
    EXPECT_EQ(shared.GetValue().GetString(), text.GetString());
    OrvStringT moved(L"moved");
    const wchar_t* const units = moved.GetString();
    const ObjectString taken(std::move(moved));
    EXPECT_EQ(taken.GetValue().GetString(), units);
}

TEST(StringValue, DoesNotChangeWithTheTextItWasMadeFrom) {
    OrvStringT text(L"before");
    const ObjectString value(text);
    text += L" and after";
    EXPECT_EQ(value.GetValue(), L"before");
    OrvStringT out;
    ASSERT_TRUE(value.ToString(out, nullptr));
    out += L" and after";
    EXPECT_EQ(value.GetValue(), L"before");
}

TEST(StringValue, KeepsZeroUnitsOfATextButNotOfAPointer) {
    const OrvStringT text(L"a\0b", 3);
    EXPECT_EQ(ObjectString(text).GetValue().GetLength(), 3);
    EXPECT_EQ(ObjectString(L"a\0b").GetValue().GetLength(), 1);
    const ObjectString value(text);
    OrvStringT out;
    ASSERT_TRUE(value.ToString(out, nullptr));
    EXPECT_EQ(out.GetLength(), 3);
}

TEST(StringValue, CountsCodeUnits) {
    const ObjectString value(L"\U0001d11e"); // one code point, two units on every platform
    EXPECT_EQ(value.GetValue().GetLength(), 2);
}

TEST(StringValue, CopiesMemberWise) {
    const ObjectString type;
    const ObjectString copyOfType(type);
    EXPECT_TRUE(copyOfType.IsStaticInstance());
    const ObjectString value(L"text");
    ObjectString target(L"other");
    target = value;
    EXPECT_EQ(target.GetValue(), L"text");
    EXPECT_FALSE(target.IsStaticInstance());
}

TEST(StringValue, HasTheMethodsOfEveryValue) {
    ObjectString value(L"12");
    EXPECT_EQ(Call(value, L"ToString"), "string 12");
    EXPECT_EQ(Call(value, L"TypeName"), "string string");
    EXPECT_EQ(Call(value, L"ToInt"), "int 12");
    EXPECT_EQ(Call(value, L"IsNumeric"), "bool true");
    EXPECT_EQ(Call(value, L"Foo"), "! Identifier 'Foo' is not a method of 'string'");
}

} // namespace
} // namespace OrvUQL::Tests
