// The arguments of a call: what each letter of a signature makes of them, and how calls with too few, too many and
// empty positions fail.

#include <OrvUQL/OrvUQL.h>

#include "core/Recorder.h"
#include "support/Attempt.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace OrvUQL::Tests {
namespace {

using Arguments = CountedTest;

/// Checks arguments, which are taken over, against a signature: "[int 1, -]" with "-" for a null entry, "! message",
/// or "!".
std::string Validate(const wchar_t* signature, const QueryElementList& args) {
    const Recorder object;
    QueryEngine engine;
    ErrorSlot error;
    ObjectList params;
    ObjectList quietParams;
    const bool valid = object.ValidateParameters(&engine, L"Method", OrvStringT(signature), args, params, error.Slot());
    EXPECT_EQ(object.ValidateParameters(&engine, L"Method", OrvStringT(signature), args, quietParams, nullptr), valid)
        << "the outcome depends on whether errors are asked for";
    EXPECT_EQ(quietParams.size(), params.size());
    if (valid) {
        EXPECT_TRUE(error.IsEmpty()) << error.Message();
        std::string text(1, '[');
        text += Recorder::Describe(params);
        return text += ']';
    }
    return error.IsEmpty() ? "!" : "! " + error.Message();
}

IQueryElement* Value(IObject* value) { return new CountedElement(value); }
IQueryElement* Int(int value) { return Value(new ObjectInt(value)); }
IQueryElement* Double(double value) { return Value(new ObjectDouble(value)); }
IQueryElement* Text(const wchar_t* value) { return Value(new ObjectString(value)); }
IQueryElement* Bool(bool value) { return Value(new ObjectBool(value)); }
IQueryElement* Null() { return Value(new ObjectNull()); }

// ---- the letters ----

TEST_F(Arguments, ForBAreBools) {
    EXPECT_EQ(Validate(L"B", {Bool(true)}), "[bool true]");
    EXPECT_EQ(Validate(L"B", {Int(0)}), "[bool false]");
    EXPECT_EQ(Validate(L"B", {Double(0.1)}), "[bool true]");
    EXPECT_EQ(Validate(L"B", {Text(L"FALSE")}), "[bool false]");
    EXPECT_EQ(Validate(L"B", {Null()}), "[bool false]");
    EXPECT_EQ(Validate(L"B", {Text(L"yes")}), "! Cannot convert string 'yes' to Boolean");
}

TEST_F(Arguments, ForIAreInts) {
    EXPECT_EQ(Validate(L"I", {Int(7)}), "[int 7]");
    EXPECT_EQ(Validate(L"I", {Bool(true)}), "[int 1]");
    EXPECT_EQ(Validate(L"I", {Double(2.5)}), "[int 3]");
    EXPECT_EQ(Validate(L"I", {Text(L"-2.5")}), "[int -3]");
    EXPECT_EQ(Validate(L"I", {Null()}), "! Cannot convert the object 'null' to type 'Int'");
    EXPECT_EQ(Validate(L"I", {Text(L"x")}), "! Cannot convert string 'x' to Integer");
    EXPECT_EQ(Validate(L"I", {Double(3e9)}),
              "! Data overflow occured while converting a floating point number 3000000000 to integer");
}

TEST_F(Arguments, ForDAreDoubles) {
    EXPECT_EQ(Validate(L"D", {Double(1.5)}), "[double 1.5]");
    EXPECT_EQ(Validate(L"D", {Int(2)}), "[double 2]");
    EXPECT_EQ(Validate(L"D", {Text(L"1e3")}), "[double 1000]");
    EXPECT_EQ(Validate(L"D", {Null()}), "! Cannot convert the object 'null' to type 'Double'");
    EXPECT_EQ(Validate(L"D", {Text(L"")}), "! Cannot convert string '' to Double");
}

TEST_F(Arguments, ForSAreStrings) {
    EXPECT_EQ(Validate(L"S", {Text(L"abc")}), "[string abc]");
    EXPECT_EQ(Validate(L"S", {Int(-1)}), "[string -1]");
    EXPECT_EQ(Validate(L"S", {Null()}), "[string null]");
    EXPECT_EQ(Validate(L"S", {Value(new ObjectArray(ObjectList{new ObjectInt(1), nullptr}))}), "[string (1,)]");
    EXPECT_EQ(Validate(L"S", {Value(new ObjectExpression(nullptr))}), "!");
}

TEST_F(Arguments, ForNAreIntsOrDoubles) {
    EXPECT_EQ(Validate(L"N", {Int(7)}), "[int 7]");
    EXPECT_EQ(Validate(L"N", {Double(7)}), "[double 7]");
    EXPECT_EQ(Validate(L"N", {Bool(true)}), "[int 1]");
    EXPECT_EQ(Validate(L"N", {Text(L" 1.0 ")}), "[double 1]");
    EXPECT_EQ(Validate(L"N", {Text(L"0x1F")}), "[int 31]");
    EXPECT_EQ(Validate(L"N", {Text(L"abc")}), "! Cannot convert string 'abc' to a number");
    EXPECT_EQ(Validate(L"N", {Null()}), "! Cannot convert the object 'null' to a numeric type");
}

TEST_F(Arguments, ForOAreTheValuesThemselves) {
    EXPECT_EQ(Validate(L"O", {Text(L"abc")}), "[string abc]");
    EXPECT_EQ(Validate(L"O", {Null()}), "[null null]");
    CountedObject* const object = new CountedObject();
    const Recorder recorder;
    QueryEngine engine;
    const QueryElementList args{Value(object)};
    {
        ObjectList params;
        ASSERT_TRUE(recorder.ValidateParameters(&engine, L"M", ORV_TEXT(L"O"), args, params, nullptr));
        ASSERT_EQ(params.size(), 1u);
        EXPECT_EQ(params[0], object);
        EXPECT_EQ(object->References(), 2) << "the element's and the parameter's";
    }
    EXPECT_EQ(object->References(), 1);
}

TEST_F(Arguments, ForEAreWrappedUnevaluated) {
    CountedElement* const element = new CountedElement(new CountedObject());
    const Recorder recorder;
    QueryEngine engine;
    const QueryElementList args{element};
    {
        ObjectList params;
        ASSERT_TRUE(recorder.ValidateParameters(&engine, L"M", ORV_TEXT(L"E"), args, params, nullptr));
        ASSERT_EQ(params.size(), 1u);
        EXPECT_EQ(params[0]->GetType(), IObject::TypeExpression);
        EXPECT_EQ(ObjectBase::GetQueryElement(params[0]), element);
        EXPECT_EQ(element->References(), 2);
    }
    EXPECT_EQ(element->References(), 1);
    EXPECT_EQ(element->Evaluations(), 0);
}

// The parameter belongs to the call; a literal's own value must not become it.
TEST_F(Arguments, AreNewObjectsEvenOfTheRightType) {
    const Recorder recorder;
    QueryEngine engine;
    const struct {
        const wchar_t* signature;
        IObject* value;
    } rows[] = {
        {L"B", new ObjectBool(true)},      {L"I", new ObjectInt(1)}, {L"D", new ObjectDouble(1.5)},
        {L"S", new ObjectString(L"text")}, {L"N", new ObjectInt(1)}, {L"N", new ObjectDouble(1.5)},
    };
    for (const auto& row : rows) {
        const QueryElementList args{Value(row.value)};
        ObjectList params;
        ASSERT_TRUE(recorder.ValidateParameters(&engine, L"M", OrvStringT(row.signature), args, params, nullptr));
        ASSERT_EQ(params.size(), 1u);
        EXPECT_NE(params[0], row.value) << Utf8(row.signature);
        EXPECT_EQ(params[0]->GetType(), row.value->GetType()) << Utf8(row.signature);
    }
}

TEST_F(Arguments, ForLowerCaseLettersAreConvertedAlike) {
    EXPECT_EQ(Validate(L"bidsno", {Int(1), Text(L"2"), Int(3), Int(4), Text(L"5.0"), Int(6)}),
              "[bool true, int 2, double 3, string 4, double 5, int 6]");
    EXPECT_EQ(Validate(L"e", {Int(1)}), "[expression]");
    EXPECT_EQ(Validate(L"i", {Text(L"x")}), "! Cannot convert string 'x' to Integer");
}

TEST_F(Arguments, ForUnknownLettersFailWithoutAMessage) {
    EXPECT_EQ(Validate(L"X", {Int(1)}), "!");
    EXPECT_EQ(Validate(L"x", {Int(1)}), "!");
    EXPECT_EQ(Validate(L"x", {}), "[-]");
    EXPECT_EQ(Validate(L"x", {nullptr}), "[-]");
    EXPECT_EQ(Validate(L"X", {}), "! Parameter 1 of method 'Method' is not optional");
}

// ---- how many ----

TEST_F(Arguments, OfAnEmptySignatureAreNone) {
    EXPECT_EQ(Validate(L"", {}), "[]");
    EXPECT_EQ(Validate(L"", {Int(1)}), "! Too many parameters specified for method Method. It expects only 0");
    EXPECT_EQ(Validate(L"", {nullptr}), "! Too many parameters specified for method Method. It expects only 0");
}

TEST_F(Arguments, LeftOutAreNullWhereTheyMayBe) {
    EXPECT_EQ(Validate(L"Ii", {Int(1)}), "[int 1, -]");
    EXPECT_EQ(Validate(L"Ii", {Int(1), Int(2)}), "[int 1, int 2]");
    EXPECT_EQ(Validate(L"Ii", {Int(1), nullptr}), "[int 1, -]");
    EXPECT_EQ(Validate(L"bids", {}), "[-, -, -, -]");
    EXPECT_EQ(Validate(L"bids", {nullptr, nullptr, Int(3)}), "[-, -, double 3, -]");
    EXPECT_EQ(Validate(L"SEb", {Text(L"a"), Int(1)}), "[string a, expression, -]");
    EXPECT_EQ(Validate(L"e", {nullptr}), "[-]");
}

TEST_F(Arguments, LeftOutFailWhereTheyAreRequired) {
    EXPECT_EQ(Validate(L"Ii", {}), "! Parameter 1 of method 'Method' is not optional");
    EXPECT_EQ(Validate(L"Ii", {nullptr}), "! Parameter 1 of method 'Method' is not optional");
    EXPECT_EQ(Validate(L"Ii", {nullptr, Int(1)}), "! Parameter 1 of method 'Method' is not optional");
    EXPECT_EQ(Validate(L"BEE", {Bool(true), Int(1)}), "! Parameter 3 of method 'Method' is not optional");
    EXPECT_EQ(Validate(L"BEE", {Bool(true), nullptr, Int(1)}), "! Parameter 2 of method 'Method' is not optional");
    EXPECT_EQ(Validate(L"iI", {}), "! Parameter 2 of method 'Method' is not optional");
    EXPECT_EQ(Validate(L"iiiiiiiiiiI", {}), "! Parameter 11 of method 'Method' is not optional");
}

TEST_F(Arguments, TooManyFail) {
    EXPECT_EQ(Validate(L"I", {Int(1), Int(2)}), "! Too many parameters specified for method Method. It expects only 1");
    EXPECT_EQ(Validate(L"Ii", {Int(1), Int(2), Int(3)}),
              "! Too many parameters specified for method Method. It expects only 2");
}

// Each surplus argument counts up the number in the message. It is one too high from the second on, and stays so: hosts
// have learned to read it.
TEST_F(Arguments, TooManyAreCountedInTheMessage) {
    EXPECT_EQ(Validate(L"i", {Int(1), Int(2), Int(3)}),
              "! Too many parameters specified for method Method. It expects only 2");
    EXPECT_EQ(Validate(L"i", {Int(1), Int(2), Int(3), Int(4)}),
              "! Too many parameters specified for method Method. It expects only 3");
    EXPECT_EQ(Validate(L"", {Int(1), nullptr, Int(3)}),
              "! Too many parameters specified for method Method. It expects only 2");
    QueryElementList many;
    for (int index = 0; index < 100; ++index) {
        many.push_back(Int(index));
    }
    EXPECT_EQ(Validate(L"", many), "! Too many parameters specified for method Method. It expects only 99");
}

TEST_F(Arguments, TooManyAreNotEvaluated) {
    const Ref<CountedElement> first = Make<CountedElement>(new ObjectInt(1));
    const Ref<CountedElement> surplus = Make<CountedElement>(nullptr, "", 0, L"evaluated");
    EXPECT_EQ(Validate(L"i", {first.Share(), surplus.Share(), surplus.Share()}),
              "! Too many parameters specified for method Method. It expects only 2");
    EXPECT_EQ(surplus->Evaluations(), 0);
    EXPECT_EQ(first->Evaluations(), 2) << "once with and once without a place for the error";
}

// ---- repeated letters ----

TEST_F(Arguments, OfARepeatedLetterAreAsManyAsThereAre) {
    EXPECT_EQ(Validate(L"N*", {Int(1)}), "[int 1]");
    EXPECT_EQ(Validate(L"N*", {Int(1), Text(L"2"), Double(3.5)}), "[int 1, int 2, double 3.5]");
    EXPECT_EQ(Validate(L"n*", {}), "[]");
    EXPECT_EQ(Validate(L"o*", {Int(1), nullptr, Int(3)}), "[int 1, -, int 3]");
    EXPECT_EQ(Validate(L"e*", {Int(1), Int(2)}), "[expression, expression]");
    EXPECT_EQ(Validate(L"SN*", {Int(1), Int(2), Int(3)}), "[string 1, int 2, int 3]");
    EXPECT_EQ(Validate(L"So*", {Int(1)}), "[string 1]") << "repeated and left out, an optional letter adds nothing";
    EXPECT_EQ(Validate(L"io*", {}), "[-]");
}

TEST_F(Arguments, OfARequiredRepeatedLetterAreAtLeastOne) {
    EXPECT_EQ(Validate(L"N*", {}), "! Parameter 1 of method 'Method' is not optional");
    EXPECT_EQ(Validate(L"SN*", {Int(1)}), "! Parameter 2 of method 'Method' is not optional");
    EXPECT_EQ(Validate(L"N*", {Int(1), nullptr}), "! Parameter 2 of method 'Method' is not optional");
    EXPECT_EQ(Validate(L"N*", {Int(1), Int(2), Text(L"x")}), "! Cannot convert string 'x' to a number");
}

// Behind a star nothing is asked for and nothing can be given.
TEST_F(Arguments, BehindAStarDoNotExist) {
    EXPECT_EQ(Validate(L"Io*B", {Int(1)}), "[int 1]");
    EXPECT_EQ(Validate(L"o*B", {Int(1), Int(2), Int(3)}), "[int 1, int 2, int 3]");
    EXPECT_EQ(Validate(L"o*B", {}), "[]");
}

TEST_F(Arguments, OfASignatureThatBeginsWithAStarAreAnError) {
    EXPECT_EQ(Validate(L"*", {}), "! Internal error in method ");
    EXPECT_EQ(Validate(L"*I", {Int(1)}), "! Internal error in method ");
}

// ---- failing on the way ----

TEST_F(Arguments, ThatFailToEvaluateEndTheCall) {
    const Ref<CountedElement> last = Make<CountedElement>(new ObjectInt(3));
    EXPECT_EQ(Validate(L"III", {Int(1), new CountedElement(nullptr, "", 0, L"no value"), last.Share()}), "! no value");
    EXPECT_EQ(last->Evaluations(), 0);
    EXPECT_EQ(Validate(L"I", {new CountedElement(nullptr)}), "!") << "a failure that says nothing stays one";
    EXPECT_EQ(Validate(L"O", {new CountedElement(nullptr)}), "!");
}

TEST_F(Arguments, GatheredBeforeAFailureAreReleasedWithTheList) {
    CountedObject* const object = new CountedObject();
    const Recorder recorder;
    QueryEngine engine;
    ErrorSlot error;
    const QueryElementList args{Value(object), Text(L"x")};
    {
        ObjectList params;
        EXPECT_FALSE(recorder.ValidateParameters(&engine, L"M", ORV_TEXT(L"OI"), args, params, error.Slot()));
        EXPECT_EQ(error.Message(), "Cannot convert string 'x' to Integer");
        EXPECT_LE(params.size(), 1u);
    }
    EXPECT_EQ(object->References(), 1);
}

TEST_F(Arguments, AreEvaluatedOnceInOrderWithTheEngineOfTheCall) {
    class Ordered : public RefCountImpl<IQueryElement> {
    public:
        Ordered(std::string& orderLog, char elementName, QueryEngine* expectedEngine)
            : log(orderLog), name(elementName), engine(expectedEngine) {}
        EType GetType() const override { return Object; }
        int GetStringPosition() const override { return 0; }
        IObject* Evaluate(QueryEngine* given, IError**) const override {
            EXPECT_EQ(given, engine);
            log += name;
            return new ObjectInt(1);
        }

    private:
        std::string& log;
        char name;
        QueryEngine* engine;
    };
    std::string log;
    const Recorder recorder;
    QueryEngine engine;
    const QueryElementList args{new Ordered(log, 'a', &engine), nullptr, new Ordered(log, 'b', &engine),
                                new Ordered(log, 'c', &engine)};
    ObjectList params;
    EXPECT_TRUE(recorder.ValidateParameters(&engine, L"M", ORV_TEXT(L"Iion"), args, params, nullptr));
    EXPECT_EQ(log, "abc");
}

// ---- through calls ----

const ObjectBase::MethodMap* CallRows() {
    static const ObjectBase::MethodMap table[] = {
        Recorder::First(L"None"),        Recorder::First(L"Two", L"Ii"),         Recorder::First(L"Many", L"So*"),
        Recorder::First(L"Wrong", L"*"), Recorder::First(L"Eight", L"iiiiiiii"), ObjectBase::MethodMap::End(),
    };
    return table;
}

TEST_F(Arguments, ReachTheHandlerChecked) {
    RecorderWith<CallRows> object;
    EXPECT_EQ(Call(object, L"None"), "string first None()");
    EXPECT_EQ(Call(object, L"two", {Text(L"4")}), "string first two(int 4, -)");
    EXPECT_EQ(Call(object, L"many", {Int(1), Int(2), nullptr, Text(L"x")}),
              "string first many(string 1, int 2, -, string x)");
    EXPECT_EQ(Call(object, L"eight", {nullptr, Int(2)}), "string first eight(-, int 2, -, -, -, -, -, -)");
    QueryElementList hundred;
    std::string expected = "string first many(string 0";
    hundred.push_back(Int(0));
    for (int index = 1; index < 100; ++index) {
        hundred.push_back(Value(new CountedObject()));
        expected += ", counted ";
    }
    EXPECT_EQ(Call(object, L"many", std::move(hundred)), expected + ")");
}

TEST_F(Arguments, NameTheMethodAsItWasCalled) {
    RecorderWith<CallRows> object;
    EXPECT_EQ(Call(object, L"nONE", {Int(1)}), "! Too many parameters specified for method nONE. It expects only 0");
    EXPECT_EQ(Call(object, L"tWO"), "! Parameter 1 of method 'tWO' is not optional");
    EXPECT_EQ(Call(object, L"wrong"), "! Internal error in method ");
}

TEST_F(Arguments, OfTheLibrarysOwnMethodsAreCheckedSo) {
    Host host;
    EXPECT_EQ(host.Run(L"(1.5).Round(1, 2)"), "! Too many parameters specified for method Round. It expects only 1");
    EXPECT_EQ(host.Run(L"(1.5).Round(1, 2, 3)"), "! Too many parameters specified for method Round. It expects only 2");
    EXPECT_EQ(host.Run(L"(5).Radix()"), "! Parameter 1 of method 'Radix' is not optional");
    EXPECT_EQ(host.Run(L"min()"), "! Parameter 1 of method 'min' is not optional");
    EXPECT_EQ(host.Run(L"sqrt(1, 2)"), "! Too many parameters specified for method sqrt. It expects only 1");
    EXPECT_EQ(host.Run(L"iif(true, 1)"), "! Parameter 3 of method 'iif' is not optional");
}

} // namespace
} // namespace OrvUQL::Tests
