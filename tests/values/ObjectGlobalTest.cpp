// The bodies of the global functions, given what no argument check lets through: another number of arguments, other
// names, values of a host.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "values/CallHandler.h"
#include "values/HostTest.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace OrvUQL::Tests {
namespace {

class GlobalHandlers : public HostTest {
protected:
    /// Calls the handler of a function as `name`.
    std::string As(const wchar_t* name, const wchar_t* function, ObjectList params) {
        return CallHandler(*global, function, name, std::move(params), &host.engine);
    }
    /// By its own name.
    std::string On(const wchar_t* function, ObjectList params) { return As(function, function, std::move(params)); }

    const Ref<ObjectGlobal> global = Make<ObjectGlobal>();
};

TEST_F(GlobalHandlers, MathematicsWantsExactlyOneArgument) {
    for (const wchar_t* const function : {L"sqrt", L"sin", L"cos", L"tan", L"atan", L"exp", L"log"}) {
        EXPECT_EQ(On(function, {}), "! Invalid number of parameters") << Utf8(function);
        EXPECT_EQ(On(function, {new ObjectInt(1), new ObjectInt(1)}), "! Invalid number of parameters")
            << Utf8(function);
        EXPECT_EQ(On(function, {new Stubborn()}), "! no double") << Utf8(function);
    }
    EXPECT_EQ(On(L"sqrt", {new ObjectString(L"9")}), "double 3");
}

TEST_F(GlobalHandlers, MathematicsKnowsItsNames) {
    EXPECT_EQ(As(L"SQRT", L"sin", {new ObjectInt(4)}), "double 2");
    EXPECT_EQ(As(L"Cos", L"log", {new ObjectInt(0)}), "double 1");
    EXPECT_EQ(As(L"sinh", L"sin", {new ObjectInt(0)}), "! Internal error in method 'sinh'");
    EXPECT_EQ(As(L"", L"sin", {new ObjectInt(0)}), "! Internal error in method ''");
    EXPECT_EQ(As(L"exp", L"sqrt", {new ObjectInt(-1)}), "! Internal error in method 'exp'");
    EXPECT_EQ(As(L"sqrt", L"exp", {new ObjectInt(-1)}), "! Negative value for square root: -1");
}

TEST_F(GlobalHandlers, ConstantsKnowTheirNames) {
    EXPECT_EQ(As(L"pI", L"e", {}), "double 3.141592653589793");
    EXPECT_EQ(As(L"E", L"pi", {}), "double 2.718281828459045");
    EXPECT_EQ(As(L"tau", L"pi", {}), "double 0") << "any other name is 0";
}

TEST_F(GlobalHandlers, MinAndMaxKnowTheirNames) {
    EXPECT_EQ(As(L"MAX", L"min", {new ObjectInt(1), new ObjectInt(2)}), "int 2");
    EXPECT_EQ(As(L"min", L"max", {new ObjectInt(1), new ObjectInt(2)}), "int 1");
    EXPECT_EQ(As(L"least", L"max", {new ObjectInt(2), new ObjectInt(1)}), "int 1");
}

TEST_F(GlobalHandlers, MinAndMaxReturnTheArgumentItself) {
    const Ref<ObjectInt> small = Make<ObjectInt>(1);
    const Ref<ObjectInt> great = Make<ObjectInt>(2);
    const Ref<ObjectDouble> alsoGreat = Make<ObjectDouble>(2.0);
    const ObjectList params{small.Share(), great.Share(), alsoGreat.Share()};
    const ObjectBase::Handler handler = FindHandler(*global, L"max");
    const Ref<IObject> greatest((*global.*handler)(&host.engine, ORV_TEXT(L"max"), params, nullptr));
    EXPECT_EQ(greatest.Get(), great.Get()) << "of equals the first";
    EXPECT_EQ(ReferencesOf(great.Get()), 3);
    const Ref<IObject> least((*global.*handler)(&host.engine, ORV_TEXT(L"min"), params, nullptr));
    EXPECT_EQ(least.Get(), small.Get());
    EXPECT_EQ(ReferencesOf(small.Get()), 3);
}

TEST_F(GlobalHandlers, MinAndMaxOfNothingAreNothing) {
    EXPECT_EQ(On(L"min", {}), "!");
    EXPECT_EQ(On(L"max", {}), "!");
}

// A double on either side makes the comparison one of doubles; else it is one of ints.
TEST_F(GlobalHandlers, MinAndMaxConvertWhatTheyCompare) {
    EXPECT_EQ(On(L"max", {new Stubborn()}), "counted") << "alone it is not compared";
    EXPECT_EQ(On(L"max", {new ObjectInt(1), new Stubborn()}), "! no int");
    EXPECT_EQ(On(L"max", {new Stubborn(), new ObjectInt(1)}), "! no int");
    EXPECT_EQ(On(L"min", {new ObjectDouble(1), new Stubborn()}), "! no double");
    EXPECT_EQ(On(L"min", {new Stubborn(), new ObjectDouble(1)}), "! no double");
    EXPECT_EQ(On(L"max", {new ObjectString(L"1.4"), new ObjectInt(1)}), "string 1.4") << "1 and 1 as ints";
    EXPECT_EQ(On(L"max", {new ObjectInt(1), new ObjectString(L"1.4")}), "int 1");
    EXPECT_EQ(On(L"max", {new ObjectDouble(1), new ObjectString(L"1.4")}), "string 1.4");
}

TEST_F(GlobalHandlers, IifNeedsExpressions) {
    const auto expression = [](IObject* value) {
        const Ref<CountedElement> element = Make<CountedElement>(value);
        return new ObjectExpression(element.Get());
    };
    EXPECT_EQ(On(L"iif", {new ObjectBool(true), new ObjectInt(1), expression(new ObjectInt(2))}), "!");
    EXPECT_EQ(On(L"iif", {new ObjectBool(false), new ObjectInt(1), expression(new ObjectInt(2))}), "int 2");
    EXPECT_EQ(On(L"iif", {new ObjectBool(false), expression(new ObjectInt(1)), new ObjectExpression(nullptr)}), "!");
    EXPECT_EQ(On(L"iif", {new ObjectBool(true), nullptr, nullptr}), "!");
    EXPECT_EQ(On(L"iif", {new ObjectBool(true), new CountedObject("", OrvStringT(), IObject::TypeExpression), nullptr}),
              "!")
        << "the type code alone makes no expression";
}

TEST_F(GlobalHandlers, IifFailsWithItsCondition) {
    EXPECT_EQ(On(L"iif", {new Stubborn(), nullptr, nullptr}), "! no bool");
}

TEST_F(GlobalHandlers, ReportConversionsThatFail) {
    EXPECT_EQ(On(L"chr", {new Stubborn()}), "! no int");
    EXPECT_EQ(On(L"rnd", {new Stubborn()}), "! no int");
    EXPECT_EQ(On(L"round", {new Stubborn(), nullptr}), "! no double");
    EXPECT_EQ(On(L"round", {new ObjectInt(1), new Stubborn()}), "! no int");
    EXPECT_EQ(On(L"radix", {new Stubborn(), new ObjectInt(2), nullptr}), "! no int");
    EXPECT_EQ(On(L"radix", {new ObjectInt(1), new Stubborn(), nullptr}), "! no int");
    EXPECT_EQ(On(L"radix", {new ObjectInt(1), new ObjectInt(2), new Stubborn()}), "! no int");
    EXPECT_EQ(On(L"rnd", {new ObjectInt(0)}), "int 0");
    EXPECT_EQ(On(L"radix", {new ObjectInt(-1), new ObjectInt(36), nullptr}), "string 1z141z3");
}

TEST_F(GlobalHandlers, ArraySkipsWhatIsAbsent) {
    EXPECT_EQ(On(L"array", {nullptr, new ObjectInt(1), nullptr}), "array (1)");
    EXPECT_EQ(On(L"array", {nullptr}), "array ()");
}

} // namespace
} // namespace OrvUQL::Tests
