// Evaluation into a scalar or a text of the host's: the same as evaluating to a value and converting that.

#include "support/Counted.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

const wchar_t* const queries[] = {
    L"1",
    L"-5",
    L"1.5",
    L"2147483648",
    L"true",
    L"null",
    L"'12'",
    L"'true'",
    L"'text'",
    L"''",
    L"1 + 2",
    L"(1 + 2) * 3 - 4 / 2",
    L"1 / 0",
    L"'a' + 1",
    L"1 < 2",
    L"not 0",
    L"1 and 'x'",
    L"true ? 'yes' : 'no'",
    L"false ? 'yes' : 7",
    L"true ? @this : 0",
    L"false ? 0 : @this.ToString()",
    L"@this",
    L"@this + 1",
    L"@missing",
    L"@this.missing",
    L"array(1, 2)",
    L"array(5).First()",
    L"{1 in}",
    L"{1 in} + {1 cm}",
    L"sqrt(16)",
    L"iif(true, 'a', 'b')",
    L"int",
    L"max(2, 3).ToString()",
    L"'abc'.Length()",
    L"1 << 2",
};

class ScalarEvaluation : public CountedTest {
protected:
    void SetUp() override {
        CountedTest::SetUp();
        source = Make<CountedObject>("", ORV_TEXT(L"17"));
        host.engine.SetPropertySource(source.Get());
    }
    void TearDown() override {
        host.engine.SetPropertySource(nullptr);
        source.Reset();
        CountedTest::TearDown();
    }

    /// What Evaluate() and the value's own conversion come to.
    template <class Out, class Convert> std::string ByValue(IQueryElement& tree, Convert convert) {
        const std::string outcome = AttemptOut<Out>([&](Out& out, IError** err) {
            const Ref<IObject> value(host.engine.Evaluate(&tree, err));
            return value && convert(*value, out, err);
        });
        return outcome;
    }
    template <class Out> std::string Directly(IQueryElement& tree) {
        return AttemptOut<Out>([&](Out& out, IError** err) { return host.engine.EvaluateTo(&tree, out, err); });
    }

    Host host;
    Ref<CountedObject> source;
};

TEST_F(ScalarEvaluation, IsEvaluationAndConversion) {
    for (const wchar_t* query : queries) {
        const Ref<IQueryElement> tree = host.Parse(query);
        for (int round = 0; round < 3; ++round) {
            SCOPED_TRACE(Utf8(query));
            EXPECT_EQ(Directly<bool>(*tree), ByValue<bool>(*tree, [](IObject& value, bool& out, IError** err) {
                          return value.ToBool(out, err);
                      }));
            EXPECT_EQ(Directly<int>(*tree), ByValue<int>(*tree, [](IObject& value, int& out, IError** err) {
                          return value.ToInt(out, err);
                      }));
            EXPECT_EQ(Directly<double>(*tree), ByValue<double>(*tree, [](IObject& value, double& out, IError** err) {
                          return value.ToDouble(out, err);
                      }));
            EXPECT_EQ(Directly<OrvStringT>(*tree),
                      ByValue<OrvStringT>(*tree, [](IObject& value, OrvStringT& out, IError** err) {
                          return value.ToString(out, err);
                      }));
        }
    }
}

// What an element prepares in its first evaluation is prepared by this one as well.
TEST_F(ScalarEvaluation, MayBeATreesFirst) {
    for (const wchar_t* query : queries) {
        const Ref<IQueryElement> tree = host.Parse(query);
        const std::string first = Directly<OrvStringT>(*tree);
        EXPECT_EQ(first, ByValue<OrvStringT>(*tree, [](IObject& value, OrvStringT& out,
                                                       IError** err) { return value.ToString(out, err); }))
            << Utf8(query);
    }
}

TEST_F(ScalarEvaluation, GivesWhatAHostAsksFor) {
    const Ref<IQueryElement> sum = host.Parse(L"(1 + 2) * 3 - 4 / 2");
    double number = 0;
    EXPECT_TRUE(host.engine.EvaluateTo(sum.Get(), number, nullptr));
    EXPECT_EQ(number, 7.0);
    int whole = 0;
    EXPECT_TRUE(host.engine.EvaluateTo(sum.Get(), whole, nullptr));
    EXPECT_EQ(whole, 7);
    bool truth = false;
    EXPECT_TRUE(host.engine.EvaluateTo(sum.Get(), truth, nullptr));
    EXPECT_TRUE(truth);
    OrvStringT text;
    EXPECT_TRUE(host.engine.EvaluateTo(sum.Get(), text, nullptr));
    EXPECT_EQ(Utf8(text), "7");
}

TEST_F(ScalarEvaluation, LeavesTheHostsVariableAloneOnFailure) {
    const Ref<IQueryElement> failing = host.Parse(L"1 + 1 / 0");
    const Ref<IQueryElement> word = host.Parse(L"'wo' + 'rd'");
    bool truth = true;
    int whole = 5;
    double number = 1.5;
    OrvStringT text(L"kept");
    EXPECT_FALSE(host.engine.EvaluateTo(failing.Get(), truth, nullptr));
    EXPECT_FALSE(host.engine.EvaluateTo(failing.Get(), whole, nullptr));
    EXPECT_FALSE(host.engine.EvaluateTo(failing.Get(), number, nullptr));
    EXPECT_FALSE(host.engine.EvaluateTo(failing.Get(), text, nullptr));
    EXPECT_FALSE(host.engine.EvaluateTo(word.Get(), truth, nullptr));
    EXPECT_FALSE(host.engine.EvaluateTo(word.Get(), whole, nullptr));
    EXPECT_FALSE(host.engine.EvaluateTo(word.Get(), number, nullptr));
    EXPECT_TRUE(truth);
    EXPECT_EQ(whole, 5);
    EXPECT_EQ(number, 1.5);
    EXPECT_EQ(Utf8(text), "kept");
}

TEST_F(ScalarEvaluation, TellsWhereItFailed) {
    const Ref<IQueryElement> failing = host.Parse(L"1 + 1 / 0");
    const Ref<IQueryElement> word = host.Parse(L"  'wo' + 'rd'");
    const Ref<IQueryElement> right = host.Parse(L"2");
    int whole = 0;
    EXPECT_FALSE(host.engine.EvaluateTo(failing.Get(), whole, nullptr));
    EXPECT_EQ(host.engine.GetErrorPosition(), 6);
    EXPECT_FALSE(host.engine.EvaluateTo(word.Get(), whole, nullptr));
    EXPECT_EQ(host.engine.GetErrorPosition(), 7) << "a conversion that fails is the whole query's";
    EXPECT_TRUE(host.engine.EvaluateTo(right.Get(), whole, nullptr));
    EXPECT_EQ(host.engine.GetErrorPosition(), -1);
}

// The right operand's truth is asked for only where it may be no bool.
TEST_F(ScalarEvaluation, OfLogicIsAlwaysABool) {
    for (const wchar_t* query : {L"true and 5", L"false or 'true'", L"true and (false ? 1 : 5)",
                                 L"true and (true ? 3 : 1 < 2)", L"false or (true ? @this : 1 = 1)", L"true and -1",
                                 L"false or not 0", L"true and (1 < 2)", L"true and (0 or 7)", L"true and 2 + 3"}) {
        EXPECT_EQ(host.Run(query), "bool true") << Utf8(query);
    }
}

} // namespace
} // namespace OrvUQL::Tests
