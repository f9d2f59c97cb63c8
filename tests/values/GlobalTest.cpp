// The global functions, as far as it takes a host to see what they do with their arguments.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>

namespace OrvUQL::Tests {
namespace {

class Global : public CountedTest {
protected:
    /// Calls a global function with arguments that are handed over.
    std::string Call(const wchar_t* name, QueryElementList args = {}) {
        return Tests::Call(*global, name, std::move(args), &engine);
    }

    QueryEngine engine;
    const Ref<ObjectGlobal> global = Make<ObjectGlobal>();
};

IQueryElement* Value(IObject* value) { return new CountedElement(value); }
IQueryElement* Int(int value) { return Value(new ObjectInt(value)); }
IQueryElement* Double(double value) { return Value(new ObjectDouble(value)); }
IQueryElement* Text(const wchar_t* value) { return Value(new ObjectString(value)); }
IQueryElement* Failing() { return new CountedElement(nullptr, "", 0, L"evaluated"); }

TEST_F(Global, IsAnObjectOfItsOwnKind) {
    EXPECT_EQ(global->GetType(), IObject::TypeGlobal);
    EXPECT_EQ(global->GetTypeName(), L"global");
    EXPECT_FALSE(global->IsStaticInstance());
    EXPECT_EQ(ToText(*global), "");
}

TEST_F(Global, HasNothingButItsFunctions) {
    EXPECT_EQ(Call(L"ToString"), "! Identifier 'ToString' is not a method of 'global'");
    EXPECT_EQ(Call(L"TypeName"), "! Identifier 'TypeName' is not a method of 'global'");
    EXPECT_EQ(Call(L"abs", {Int(1)}), "! Identifier 'abs' is not a method of 'global'");
}

TEST_F(Global, MakesTypeObjectsAnewEachTime) {
    const QueryElementList none;
    for (const wchar_t* const name : {L"bool", L"int", L"double", L"string", L"INT"}) {
        const Ref<IObject> first(global->Invoke(&engine, name, none, nullptr));
        const Ref<IObject> second(global->Invoke(&engine, name, none, nullptr));
        ASSERT_TRUE(first && second);
        EXPECT_TRUE(first->IsStaticInstance());
        EXPECT_NE(first.Get(), second.Get());
        EXPECT_EQ(first->GetTypeName().CompareNoCase(name), 0);
    }
    EXPECT_EQ(Call(L"bool"), "bool false");
    EXPECT_EQ(Call(L"int"), "int 0");
    EXPECT_EQ(Call(L"double"), "double 0");
    EXPECT_EQ(Call(L"string"), "string ");
}

TEST_F(Global, HasConstants) {
    EXPECT_EQ(Call(L"pi"), "double 3.141592653589793");
    EXPECT_EQ(Call(L"Pi"), "double 3.141592653589793");
    EXPECT_EQ(Call(L"e"), "double 2.718281828459045");
    EXPECT_EQ(Call(L"E"), "double 2.718281828459045");
    EXPECT_EQ(Call(L"pi", {Int(1)}), "! Too many parameters specified for method pi. It expects only 0");
}

TEST_F(Global, FindsTheSmallestAndTheGreatest) {
    EXPECT_EQ(Call(L"min", {Int(3), Int(2), Double(2.0)}), "int 2") << "of equals the first";
    EXPECT_EQ(Call(L"min", {Int(3), Double(2.0), Int(2)}), "double 2");
    EXPECT_EQ(Call(L"max", {Int(1), Double(1.0)}), "int 1");
    EXPECT_EQ(Call(L"max", {Double(1.0), Int(1)}), "double 1");
    EXPECT_EQ(Call(L"max", {Int(3), Double(2.5)}), "int 3");
    EXPECT_EQ(Call(L"MAX", {Int(2), Double(2.5)}), "double 2.5");
    EXPECT_EQ(Call(L"max", {Int(5)}), "int 5");
    EXPECT_EQ(Call(L"min", {Text(L"2.0"), Text(L"0x1"), Value(new ObjectBool(true))}), "int 1");
    EXPECT_EQ(Call(L"max", {Int(2147483647), Double(2147483646.5)}), "int 2147483647");
    EXPECT_EQ(Call(L"min", {Int(-2147483647 - 1), Int(2147483647)}), "int -2147483648");
    // Nothing is greater than a NaN, nor is it greater than anything: the first stays.
    EXPECT_EQ(Call(L"max", {Double(std::numeric_limits<double>::quiet_NaN()), Int(1)}), "double nan");
    EXPECT_EQ(Call(L"max", {Int(1), Double(std::numeric_limits<double>::quiet_NaN())}), "int 1");
    EXPECT_EQ(Call(L"min"), "! Parameter 1 of method 'min' is not optional");
    EXPECT_EQ(Call(L"min", {Int(1), nullptr}), "! Parameter 2 of method 'min' is not optional");
    EXPECT_EQ(Call(L"max", {Int(1), Text(L"x")}), "! Cannot convert string 'x' to a number");
}

TEST_F(Global, ComputesFunctionsOfOneNumber) {
    EXPECT_EQ(Call(L"sqrt", {Int(9)}), "double 3");
    EXPECT_EQ(Call(L"SQRT", {Text(L"2.25")}), "double 1.5");
    EXPECT_EQ(Call(L"sqrt", {Double(-0.0)}), "double -0");
    EXPECT_EQ(Call(L"sqrt", {Double(-1.5)}), "! Negative value for square root: -1.5");
    EXPECT_EQ(Call(L"sqrt", {Double(std::numeric_limits<double>::quiet_NaN())}),
              "! Negative value for square root: nan");
    EXPECT_EQ(Call(L"sin", {Int(0)}), "double 0");
    EXPECT_EQ(Call(L"cos", {Int(0)}), "double 1");
    EXPECT_EQ(Call(L"tan", {Int(0)}), "double 0");
    EXPECT_EQ(Call(L"atan", {Int(0)}), "double 0");
    EXPECT_EQ(Call(L"atan", {Double(1.5)}).substr(0, 12), "double 0.982");
    EXPECT_EQ(Call(L"log", {Int(1)}), "double 0");
    EXPECT_EQ(Call(L"sqrt", {Value(new ObjectNull())}), "! Cannot convert the object 'null' to type 'Double'");
    EXPECT_EQ(Call(L"sqrt"), "! Parameter 1 of method 'sqrt' is not optional");
}

// The arc tangent has a value everywhere; its bounds here are the tangent's, and kept.
TEST_F(Global, RefusesArgumentsOutOfRange) {
    EXPECT_EQ(Call(L"ATan", {Double(1.5707963267948966)}),
              "! Invalid argument for function 'ATan': 1.5707963267948966");
    EXPECT_EQ(Call(L"atan", {Double(-1.5707963267948966)}),
              "! Invalid argument for function 'atan': -1.5707963267948966");
    EXPECT_EQ(Call(L"atan", {Double(1.5707963267948963)}).substr(0, 8), "double 1");
    EXPECT_EQ(Call(L"log", {Int(0)}), "! Invalid argument for function 'log': 0");
    EXPECT_EQ(Call(L"Log", {Double(-1)}), "! Invalid argument for function 'Log': -1");
}

// "exp" is offered and computes nothing.
TEST_F(Global, FailsToComputeExp) {
    EXPECT_EQ(Call(L"exp", {Int(1)}), "! Internal error in method 'exp'");
    EXPECT_EQ(Call(L"Exp", {Int(1)}), "! Internal error in method 'Exp'");
    EXPECT_EQ(Call(L"exp", {Text(L"x")}), "! Cannot convert string 'x' to Double");
}

TEST_F(Global, EvaluatesOneBranchOfIif) {
    const Ref<CountedElement> condition = Make<CountedElement>(new ObjectBool(true));
    const Ref<CountedElement> chosen = Make<CountedElement>(new CountedObject("", ORV_TEXT(L"chosen")));
    const Ref<CountedElement> other = Make<CountedElement>(nullptr, "", 0, L"evaluated");
    EXPECT_EQ(Call(L"iif", {condition.Share(), chosen.Share(), other.Share()}), "counted chosen");
    EXPECT_EQ(condition->Evaluations(), 2) << "once with and once without a place for the error";
    EXPECT_EQ(chosen->Evaluations(), 2);
    EXPECT_EQ(other->Evaluations(), 0);
    EXPECT_EQ(Call(L"IIF", {Text(L"false"), other.Share(), chosen.Share()}), "counted chosen");
    EXPECT_EQ(other->Evaluations(), 0);
    EXPECT_EQ(Call(L"iif", {Int(0), chosen.Share(), other.Share()}), "! evaluated");
    EXPECT_EQ(Call(L"iif", {Text(L"x"), chosen.Share(), other.Share()}), "! Cannot convert string 'x' to Boolean");
    EXPECT_EQ(Call(L"iif", {Failing(), chosen.Share(), other.Share()}), "! evaluated");
    EXPECT_EQ(Call(L"iif", {Int(1), new CountedElement(nullptr), nullptr}),
              "! Parameter 3 of method 'iif' is not optional");
    EXPECT_EQ(Call(L"iif", {Int(1), new CountedElement(nullptr), Int(2)}), "!");
}

TEST_F(Global, ReturnsTheValueOfTheBranchItself) {
    CountedObject* const value = new CountedObject();
    const QueryElementList args{Int(1), Value(value), Failing()};
    const Ref<IObject> result(global->Invoke(&engine, L"iif", args, nullptr));
    EXPECT_EQ(result.Get(), value);
    EXPECT_EQ(value->References(), 2);
}

TEST_F(Global, GathersItsArgumentsInAnArray) {
    CountedObject* const item = new CountedObject("", ORV_TEXT(L"item"));
    {
        const QueryElementList args{nullptr, Value(item), nullptr, Int(2), Value(new ObjectNull())};
        const Ref<IObject> result(global->Invoke(&engine, L"array", args, nullptr));
        EXPECT_EQ(Describe(result.Get()), "array (item,2,null)") << "what was left out is left out";
        const ObjectArray* const array = dynamic_cast<const ObjectArray*>(result.Get());
        ASSERT_NE(array, nullptr);
        EXPECT_EQ(array->GetObjectList()[0], item);
        EXPECT_EQ(item->References(), 2) << "the element's and the array's";
    }
    EXPECT_EQ(Call(L"array"), "array ()");
    EXPECT_EQ(Call(L"array", {Int(1), Failing()}), "! evaluated");
}

TEST_F(Global, MakesTextsOfOneUnit) {
    EXPECT_EQ(Call(L"chr", {Int(65)}), "string A");
    EXPECT_EQ(Call(L"chr", {Text(L"0x20ac")}), "! Cannot convert string '0x20ac' to Integer");
    EXPECT_EQ(Call(L"chr", {Int(0x20ac)}), "string \xe2\x82\xac");
    EXPECT_EQ(Call(L"chr", {Int(65536)}), "! Invalid character code: 65536");
    EXPECT_EQ(Call(L"chr", {Int(-1)}), "! Invalid character code: -1");
    for (const int code : {0, 1, 0xd800, 0xffff}) {
        const QueryElementList args{Int(code)};
        const Ref<IObject> result(global->Invoke(&engine, L"chr", args, nullptr));
        const ObjectString* const text = dynamic_cast<const ObjectString*>(result.Get());
        ASSERT_NE(text, nullptr);
        ASSERT_EQ(text->GetValue().GetLength(), 1) << code;
        EXPECT_EQ(text->GetValue()[0], static_cast<wchar_t>(code));
    }
}

/// A random number, by the function with this argument (null: none).
int Draw(ObjectGlobal& global, QueryEngine& engine, IQueryElement* limit) {
    QueryElementList args;
    if (limit != nullptr) {
        args.push_back(limit);
    }
    const Ref<IObject> result(global.Invoke(&engine, L"rnd", args, nullptr));
    EXPECT_TRUE(result);
    int number = -1;
    if (result) {
        EXPECT_EQ(result->GetType(), IObject::TypeInt);
        result->ToInt(number, nullptr);
    }
    return number;
}

TEST_F(Global, DrawsRandomNumbers) {
    std::set<int> unlimited;
    std::set<int> ten;
    for (int count = 0; count < 5000; ++count) {
        const int number = Draw(*global, engine, nullptr);
        EXPECT_GE(number, 0);
        unlimited.insert(number);
        const int small = Draw(*global, engine, Int(10));
        EXPECT_GE(small, 0);
        EXPECT_LE(small, 10);
        ten.insert(small);
        EXPECT_EQ(Draw(*global, engine, Int(0)), 0);
        EXPECT_GE(Draw(*global, engine, Int(2147483647)), 0);
    }
    EXPECT_GT(unlimited.size(), 4900u) << "31 random bits hardly ever repeat";
    for (int number = 0; number < 10; ++number) {
        EXPECT_EQ(ten.count(number), 1u) << number;
    }
    EXPECT_EQ(Call(L"rnd", {Text(L"x")}), "! Cannot convert string 'x' to Integer");
    Draw(*global, engine, Int(-10)); // whatever comes of it
}

TEST_F(Global, WritesNumbersInAnyRadix) {
    EXPECT_EQ(Call(L"radix", {Int(255), Int(16)}), "string ff");
    EXPECT_EQ(Call(L"radix", {Int(5), Int(2), Int(8)}), "string 00000101");
    EXPECT_EQ(Call(L"radix", {Int(-1), Int(16)}), "string ffffffff");
    EXPECT_EQ(Call(L"radix", {Int(-5), Int(10), Int(4)}), "string 00-5");
    EXPECT_EQ(Call(L"radix", {Int(1), Int(37)}), "! The radix must be between 2 and 36");
    EXPECT_EQ(Call(L"radix", {Int(1), Int(1), Int(3)}), "! The radix must be between 2 and 36");
    EXPECT_EQ(Call(L"radix", {Int(1)}), "! Parameter 2 of method 'radix' is not optional");
    EXPECT_EQ(Call(L"radix", {Double(2.5), Int(10)}), "string 3");
}

TEST_F(Global, Rounds) {
    EXPECT_EQ(Call(L"round", {Double(2.5)}), "double 3");
    EXPECT_EQ(Call(L"round", {Int(2)}), "double 2");
    EXPECT_EQ(Call(L"round", {Double(1.23456), Int(2)}), "double 1.23");
    EXPECT_EQ(Call(L"round", {Double(-2.4)}), "double -3");
    EXPECT_EQ(Call(L"round", {Double(-2.5)}), "double -3");
    EXPECT_EQ(Call(L"round", {Double(-2.6)}), "double -4");
    EXPECT_EQ(Call(L"round", {Int(1), Int(16)}), "! Rounding precision must be between 0 and 15");
    EXPECT_EQ(Call(L"round", {Int(1), Int(-1)}), "! Rounding precision must be between 0 and 15");
    EXPECT_EQ(Call(L"round", {Int(1), nullptr}), "double 1");
}

/// Functions of a host before those of the library.
class HostFunctions : public ObjectGlobal {
public:
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {
            MethodMap::Method(L"Answer", L"", &HostFunctions::Method_Answer),
            MethodMap::Method(L"PI", L"", &HostFunctions::Method_Answer),
            MethodMap::Chain(&ObjectGlobal::_GetMethodMap),
            MethodMap::End(),
        };
        return table;
    }

private:
    IObject* Method_Answer(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) { return new ObjectInt(42); }
};

TEST_F(Global, IsExtendedByAHost) {
    Host host;
    const Ref<HostFunctions> functions = Make<HostFunctions>();
    host.engine.SetGlobal(functions.Get());
    EXPECT_EQ(host.Run(L"answer + sqrt(4)"), "double 44");
    EXPECT_EQ(host.Run(L"pi"), "int 42");
    EXPECT_EQ(host.Run(L"e"), "double 2.718281828459045");
}

} // namespace
} // namespace OrvUQL::Tests
