// Every value as a bool, an int, a double, a text and a number; and as another type.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

/// A host's value that gives no more than it must.
class Bare : public ObjectBase {
public:
    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"bare"); }
};

/// A host's value with a text, and nothing else.
class WithText : public Bare {
public:
    explicit WithText(const wchar_t* valueText) : text(valueText) {}
    OrvStringT ToString() const override { return text; }
    using ObjectBase::ToString;

private:
    OrvStringT text;
};

/// A host's value that overrides the conversions themselves. Whatever converts it must ask them.
class Converting : public Bare {
public:
    OrvStringT ToString() const override { return ORV_TEXT(L"not a number"); }
    bool ToBool(bool& out, IError**) const override {
        out = true;
        return true;
    }
    bool ToInt(int& out, IError**) const override {
        out = 17;
        return true;
    }
    bool ToDouble(double& out, IError** err) const override {
        out = 0;
        if (err != nullptr) {
            *err = Error::Create(L"no double today");
        }
        return false;
    }
    bool ToString(OrvStringT& out, IError**) const override {
        out = ORV_TEXT(L"seventeen");
        return true;
    }
};

struct Row {
    const char* label;
    std::function<IObject*()> make;
    std::string asBool;
    std::string asInt;
    std::string asDouble;
    std::string asText;
    std::string asNumber;
};

std::string NoBool(const std::string& text) { return "! Cannot convert string '" + text + "' to Boolean"; }
std::string NoInt(const std::string& text) { return "! Cannot convert string '" + text + "' to Integer"; }
std::string NoDouble(const std::string& text) { return "! Cannot convert string '" + text + "' to Double"; }
std::string NoNumber(const std::string& text) { return "! Cannot convert string '" + text + "' to a number"; }
std::string Overflow(const std::string& text) {
    return "! Data overflow occured while converting a floating point number " + text + " to integer";
}

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

IObject* Centimetres(double value, int power) {
    const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(0.0);
    const Ref<IUnitDefinition> definition(catalogue->FindUnit(L"cm"));
    return new ObjectUnit(definition.Get(), value, power, true);
}

template <class Value> std::function<IObject*()> Of(Value value) {
    return [value]() -> IObject* {
        if constexpr (std::is_same_v<Value, bool>) {
            return new ObjectBool(value);
        } else if constexpr (std::is_same_v<Value, int>) {
            return new ObjectInt(value);
        } else if constexpr (std::is_same_v<Value, double>) {
            return new ObjectDouble(value);
        } else {
            return new ObjectString(value);
        }
    };
}

const std::vector<Row>& Rows() {
    static const std::vector<Row> rows = {
        {"null", [] { return new ObjectNull(); }, "false", "! Cannot convert the object 'null' to type 'Int'",
         "! Cannot convert the object 'null' to type 'Double'", "null",
         "! Cannot convert the object 'null' to a numeric type"},

        {"true", Of(true), "true", "1", "1", "true", "int 1"},
        {"false", Of(false), "false", "0", "0", "false", "int 0"},
        {"type bool", [] { return new ObjectBool(); }, "false", "0", "0", "false", "int 0"},

        {"0", Of(0), "false", "0", "0", "0", "int 0"},
        {"5", Of(5), "true", "5", "5", "5", "int 5"},
        {"-5", Of(-5), "true", "-5", "-5", "-5", "int -5"},
        {"lowest", Of(lowest), "true", "-2147483648", "-2147483648", "-2147483648", "int -2147483648"},
        {"highest", Of(highest), "true", "2147483647", "2147483647", "2147483647", "int 2147483647"},
        {"type int", [] { return new ObjectInt(); }, "false", "0", "0", "0", "int 0"},

        {"0.0", Of(0.0), "false", "0", "0", "0", "double 0"},
        {"-0.0", Of(-0.0), "false", "0", "-0", "-0", "double -0"},
        {"0.1", Of(0.1), "true", "0", "0.1", "0.1", "double 0.1"},
        {"0.5", Of(0.5), "true", "1", "0.5", "0.5", "double 0.5"},
        {"-0.5", Of(-0.5), "true", "-1", "-0.5", "-0.5", "double -0.5"},
        {"2.4", Of(2.4), "true", "2", "2.4", "2.4", "double 2.4"},
        {"2.5", Of(2.5), "true", "3", "2.5", "2.5", "double 2.5"},
        {"-2.5", Of(-2.5), "true", "-3", "-2.5", "-2.5", "double -2.5"},
        {"2147483646.6", Of(2147483646.6), "true", "2147483647", "2147483646.6", "2147483646.6", "double 2147483646.6"},
        {"2147483647.0", Of(2147483647.0), "true", "2147483647", "2147483647", "2147483647", "double 2147483647"},
        {"2147483647.4", Of(2147483647.4), "true", Overflow("2147483647.4"), "2147483647.4", "2147483647.4",
         "double 2147483647.4"},
        {"-2147483648.0", Of(-2147483648.0), "true", "-2147483648", "-2147483648", "-2147483648", "double -2147483648"},
        {"-2147483648.4", Of(-2147483648.4), "true", Overflow("-2147483648.4"), "-2147483648.4", "-2147483648.4",
         "double -2147483648.4"},
        {"1e300", Of(1e300), "true", Overflow("1e+300"), "1e+300", "1e+300", "double 1e+300"},
        {"inf", Of(infinity), "true", Overflow("inf"), "inf", "inf", "double inf"},
        {"-inf", Of(-infinity), "true", Overflow("-inf"), "-inf", "-inf", "double -inf"},
        // Passes both tests of the bounds and converts as the processor does it.
        {"nan", Of(nan), "true", "-2147483648", "nan", "nan", "double nan"},
        {"type double", [] { return new ObjectDouble(); }, "false", "0", "0", "0", "double 0"},

        {"text true", Of(L"TruE"), "true", NoInt("TruE"), NoDouble("TruE"), "TruE", NoNumber("TruE")},
        {"text 3.5", Of(L"3.5"), "true", "4", "3.5", "3.5", "double 3.5"},
        {"empty text", Of(L""), NoBool(""), NoInt(""), NoDouble(""), "", NoNumber("")},
        {"type string", [] { return new ObjectString(); }, NoBool(""), NoInt(""), NoDouble(""), "", NoNumber("")},

        // Parentheses negate, and commas separate thousands: an array of numbers reads as a number, if not its sum.
        {"array()", [] { return new ObjectArray(ObjectList()); }, NoBool("()"), NoInt("()"), NoDouble("()"), "()",
         NoNumber("()")},
        {"array(5)", [] { return new ObjectArray(ObjectList{new ObjectInt(5)}); }, "true", "-5", "-5", "(5)", "int -5"},
        {"array(1, 2)",
         [] {
             return new ObjectArray(ObjectList{new ObjectInt(1), new ObjectInt(2)});
         },
         "true", "-12", "-12", "(1,2)", "int -12"},
        {"array(array(1))", [] { return new ObjectArray(ObjectList{new ObjectArray(ObjectList{new ObjectInt(1)})}); },
         NoBool("((1))"), NoInt("((1))"), NoDouble("((1))"), "((1))", NoNumber("((1))")},

        {"2.54 cm", [] { return Centimetres(2.54, 1); }, NoBool("2.54 cm"), NoInt("2.54 cm"), NoDouble("2.54 cm"),
         "2.54 cm", NoNumber("2.54 cm")},
        {"unit of power 0", [] { return Centimetres(2.5, 0); }, "true", "3", "2.5", "2.5", "double 2.5"},

        {"global", [] { return new ObjectGlobal(); }, NoBool(""), NoInt(""), NoDouble(""), "", NoNumber("")},
        {"expression", [] { return new ObjectExpression(nullptr); }, "!", "!", "!", "!", "!"},

        {"host with nothing", [] { return new Bare(); }, NoBool(""), NoInt(""), NoDouble(""), "", NoNumber("")},
        {"host with a number for text", [] { return new WithText(L" 1,234.5 "); }, "true", "1235", "1234.5",
         " 1,234.5 ", "double 1234.5"},
        {"host with a word for text", [] { return new WithText(L" word "); }, NoBool(" word "), NoInt(" word "),
         NoDouble(" word "), " word ", NoNumber("word")},
        {"host that converts", [] { return new Converting(); }, "true", "17", "! no double today", "seventeen",
         NoNumber("not a number")},
    };
    return rows;
}

TEST(Conversion, OfEachClass) {
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.label);
        const Ref<IObject> object(row.make());
        EXPECT_EQ(ToBool(*object), row.asBool);
        EXPECT_EQ(ToInt(*object), row.asInt);
        EXPECT_EQ(ToDouble(*object), row.asDouble);
        EXPECT_EQ(ToText(*object), row.asText);
        EXPECT_EQ(ToNumeric(*object), row.asNumber);
    }
}

/// What ChangeType should give where the conversion gives `outcome`.
std::string Changed(const char* type, const std::string& outcome) {
    return outcome[0] == '!' ? outcome : std::string(type) + " " + outcome;
}

TEST(Conversion, ToAnotherTypeAsksTheConversions) {
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.label);
        const Ref<IObject> object(row.make());
        EXPECT_EQ(ChangeType(*object, IObject::TypeBool), Changed("bool", row.asBool));
        EXPECT_EQ(ChangeType(*object, IObject::TypeInt), Changed("int", row.asInt));
        EXPECT_EQ(ChangeType(*object, IObject::TypeDouble), Changed("double", row.asDouble));
        EXPECT_EQ(ChangeType(*object, IObject::TypeString), Changed("string", row.asText));
    }
}

TEST(Conversion, ToATypeThatIsNoScalarIsNullWithoutAnError) {
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.label);
        const Ref<IObject> object(row.make());
        for (const int type : {0, 5, 6, 7, 8, 9, 10, 1000000, -1}) {
            EXPECT_EQ(ChangeType(*object, static_cast<IObject::EType>(type)), "!") << type;
        }
    }
}

TEST(Conversion, MakesNewObjects) {
    const Ref<IObject> objects[] = {Ref<IObject>(new ObjectBool(true)), Ref<IObject>(new ObjectInt(5)),
                                    Ref<IObject>(new ObjectDouble(1.5)), Ref<IObject>(new ObjectString(L"text"))};
    for (const Ref<IObject>& object : objects) {
        const Ref<IObject> changed(object->ChangeType(object->GetType(), nullptr));
        ASSERT_TRUE(changed);
        EXPECT_NE(changed.Get(), object.Get());
        EXPECT_EQ(Describe(changed.Get()), Describe(object.Get()));
    }
    const Ref<IObject> fromInt(objects[1]->ToNumeric(nullptr));
    EXPECT_NE(fromInt.Get(), objects[1].Get());
    const Ref<IObject> fromDouble(objects[2]->ToNumeric(nullptr));
    EXPECT_NE(fromDouble.Get(), objects[2].Get());
}

TEST(Conversion, OfTypeObjectsMakesValues) {
    const Ref<ObjectInt> type = Make<ObjectInt>();
    ASSERT_TRUE(type->IsStaticInstance());
    const Ref<IObject> number(type->ToNumeric(nullptr));
    EXPECT_FALSE(number->IsStaticInstance());
    const Ref<IObject> text(type->ChangeType(IObject::TypeString, nullptr));
    EXPECT_FALSE(text->IsStaticInstance());
}

#if !defined(_WIN32)
TEST(Conversion, ToAVariantIsNotImplementedHere) {
    constexpr auto notImplemented = static_cast<VariantResult>(0x80004001);
    alignas(16) unsigned char storage[32];
    std::memset(storage, 0xab, sizeof(storage));
    unsigned char before[sizeof(storage)];
    std::memcpy(before, storage, sizeof(storage));
    VARIANT& variant = reinterpret_cast<VARIANT&>(storage);
    for (const Row& row : Rows()) {
        const Ref<IObject> object(row.make());
        ErrorSlot error;
        EXPECT_EQ(object->ToVariant(variant, error.Slot()), notImplemented) << row.label;
        EXPECT_EQ(object->ToVariant(variant, nullptr), notImplemented) << row.label;
        EXPECT_TRUE(error.IsEmpty()) << row.label;
        EXPECT_EQ(std::memcmp(storage, before, sizeof(storage)), 0) << row.label;
    }
}
#endif

// ---- what a value is ----

TEST(Conversion, LeavesTheKindsApart) {
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.label);
        const Ref<IObject> object(row.make());
        const bool isUnit = object->GetType() == IObject::TypeUnit;
        EXPECT_EQ(object->IsNull(), object->GetType() == IObject::TypeNull);
        EXPECT_EQ(object->IsUnit(), isUnit);
        EXPECT_EQ(object->GetUnitInterface() != nullptr, isUnit);
        EXPECT_EQ(static_cast<const IObject&>(*object).GetUnitInterface() != nullptr, isUnit);
        EXPECT_EQ(object->IsStaticInstance(), std::string(row.label).rfind("type ", 0) == 0);
    }
}

TEST(Conversion, HasACodeForEachType) {
    const auto code = [](IObject* object) {
        const Ref<IObject> owned(object);
        return static_cast<int>(object->GetType());
    };
    EXPECT_EQ(code(new ObjectNull()), 0);
    EXPECT_EQ(code(new ObjectBool(true)), 1);
    EXPECT_EQ(code(new ObjectInt(1)), 2);
    EXPECT_EQ(code(new ObjectDouble(1)), 3);
    EXPECT_EQ(code(new ObjectString(L"")), 4);
    EXPECT_EQ(code(new ObjectArray(ObjectList())), 5);
    EXPECT_EQ(code(new ObjectUnit(nullptr, 1, 1, false)), 6);
    EXPECT_EQ(code(new ObjectGlobal()), 8);
    EXPECT_EQ(code(new ObjectExpression(nullptr)), 9);
}

// ---- comparing texts ----

TEST(Conversion, ComparesTextsWithAndWithoutTheirCase) {
    const OrvStringT lower(L"stra\u00dfe \u00e4");
    const OrvStringT upper(L"STRA\u00dfE \u00c4");
    EXPECT_TRUE(ObjectBase::CompareStrings(lower, lower, true));
    EXPECT_FALSE(ObjectBase::CompareStrings(lower, upper, true));
    EXPECT_TRUE(ObjectBase::CompareStrings(lower, upper, false));
    EXPECT_FALSE(ObjectBase::CompareStrings(lower, OrvStringT(L"stra\u00dfe"), false));
    EXPECT_TRUE(ObjectBase::CompareStrings(OrvStringT(), OrvStringT(), true));
    EXPECT_TRUE(ObjectBase::CompareStrings(OrvStringT(), OrvStringT(), false));
    EXPECT_FALSE(ObjectBase::CompareStrings(OrvStringT(), OrvStringT(L" "), false));
}

// ---- comparing values ----

// A value knows no order of its own. The message names the left operand first, whichever side the value stands on.
TEST(Conversion, ComparesToNothingByItself) {
    const WithText value(L"5");
    const Ref<ObjectInt> other = Make<ObjectInt>(5);
    for (int op = 0; op <= 8; ++op) {
        for (const bool reversed : {false, true}) {
            EXPECT_EQ(AttemptOut<bool>([&](bool& out, IError** err) {
                          return value.CompareTo(static_cast<EOperType>(op), other.Get(), reversed, out, err);
                      }),
                      reversed
                          ? "! Cannot compare object 'int' to object 'bare'. Incompatible types for this operation"
                          : "! Cannot compare object 'bare' to object 'int'. Incompatible types for this operation");
        }
    }
}

} // namespace
} // namespace OrvUQL::Tests
