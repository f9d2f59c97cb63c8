// Limits of an evaluation: what a step is, each limit met exactly and exceeded by one, and that an exceeded one stays
// so until the outermost evaluation is over.

#include "values/CallHandler.h"
#include "values/HostTest.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <string>

namespace OrvUQL::Tests {
namespace {

const std::string noSteps = "! Evaluation limit exceeded: steps";
const std::string noMemory = "! Evaluation limit exceeded: memory";
const std::string noTime = "! Evaluation limit exceeded: time";
const std::string cancelled = "! Evaluation cancelled";

class Limits : public HostTest {
protected:
    /// What comes of a query within so many steps.
    std::string RunWithin(const wchar_t* query, std::uint64_t steps) {
        EvaluationLimits limits;
        limits.steps = steps;
        host.engine.SetLimits(limits);
        std::string outcome = Run(query);
        host.engine.ClearLimits();
        return outcome;
    }

    EvaluationUsage Measure(const wchar_t* query) {
        host.engine.SetLimits(EvaluationLimits());
        Run(query);
        host.engine.ClearLimits();
        return host.engine.GetUsage();
    }

    std::uint64_t StepsOf(const wchar_t* query) { return Measure(query).steps; }

    /// So many steps, and no fewer: the limit that is met exactly changes nothing, one less ends the evaluation.
    void ExpectSteps(const wchar_t* query, std::uint64_t steps) {
        const std::string usual = Run(query);
        EXPECT_EQ(StepsOf(query), steps) << Utf8(query);
        EXPECT_EQ(RunWithin(query, steps), usual) << Utf8(query);
        EXPECT_EQ(RunWithin(query, steps - 1), noSteps) << Utf8(query);
        EXPECT_EQ(Run(query), usual) << Utf8(query) << ", afterwards";
    }

    void SetText(int units) { SetValue(new ObjectString(OrvStringT(L'a', units))); }
};

// ---- steps ----

TEST_F(Limits, AnEvaluationIsAStepAndLiteralsAreNone) {
    ExpectSteps(L"42", 1);
    ExpectSteps(L"'abc'", 1);
    ExpectSteps(L"{10 mm}", 1);
}

TEST_F(Limits, EachOperatorIsAStep) {
    ExpectSteps(L"1 + 2", 2);
    ExpectSteps(L"(1 + 2) * 3 - 4 / 2", 5);
    ExpectSteps(L"1 + 1 + 1 + 1 + 1 + 1 + 1 + 1 + 1 + 1 + 1", 11);
    ExpectSteps(L"-(1 + 2.5)", 3);
    ExpectSteps(L"not true", 2);
    ExpectSteps(L"1 < 2", 2);
    ExpectSteps(L"'a' = 'A'", 2);
    ExpectSteps(L"2 ^ 3 \\ 4", 3);
}

TEST_F(Limits, OnlyWhatIsEvaluatedCounts) {
    ExpectSteps(L"true or 1 / 0 = 1", 2);
    ExpectSteps(L"false and 1 / 0 = 1", 2);
    ExpectSteps(L"false or 1 < 2", 3);
    ExpectSteps(L"true ? 1 : 2 + 3", 2);
    ExpectSteps(L"false ? 1 : 2 + 3", 3);
}

TEST_F(Limits, EachNameIsAStep) {
    ExpectSteps(L"pi", 2);
    ExpectSteps(L"sqrt(4)", 2);
    ExpectSteps(L"sqrt(abs(-4))", 3); // the argument's name is unknown
    ExpectSteps(L"'abc'.Length()", 2);
    ExpectSteps(L"'abc'.ToUpper().Length()", 3);
    ExpectSteps(L"'abc'.Length() + 1", 3);
    SetValue(new ObjectInt(7));
    ExpectSteps(L"@This", 2);
    ExpectSteps(L"@This + @This", 4);
}

TEST_F(Limits, AFailedEvaluationHasTakenItsStepsToo) {
    ExpectSteps(L"1 / 0", 2);
    ExpectSteps(L"nonsense", 2);
}

TEST_F(Limits, AnElementOfAnArrayIsAStepAndSoIsEachItem) {
    Ref<IQueryElement> one = host.Parse(L"1 + 1");
    QueryElementList items{one.Get(), nullptr, one.Get()};
    const Ref<ElementArray> array = Make<ElementArray>(items, 0);
    items.clear();
    host.engine.SetLimits(EvaluationLimits());
    EXPECT_EQ(host.Run(*array), "array (2,null,2)");
    EXPECT_EQ(host.engine.GetUsage().steps, 1u + 1 + 3 + 2);
}

TEST_F(Limits, AGroupIsAStep) { ExpectSteps(L"'abc'[.Length() + .Length()]", 5); }

TEST_F(Limits, MethodsOfArraysTakeAStepForEachItem) {
    ExpectSteps(L"array()", 2);
    ExpectSteps(L"array(1, 2, 3)", 5);
    ExpectSteps(L"array(1, 2, 3).Count()", 6);
    ExpectSteps(L"array(1, 2, 3).Join('-')", 6 + 3);
    ExpectSteps(L"array(1, 2, 3).Filter(true)", 6 + 3);
    ExpectSteps(L"array(1, 2, 3).Convert($item)", 6 + 3 * 2);
    ExpectSteps(L"array(1, 2, 3).ForEach(0, $lasteval + $item)", 6 + 3 * 4);
    ExpectSteps(L"array(1, 2, 3).Contains($item = 2)", 6 + 2 * 3);
    ExpectSteps(L"array(1, 2, 3).IndexOf(2)", 6 + 2);
    ExpectSteps(L"array(1, 2, 3).Find(4)", 6 + 3);
    ExpectSteps(L"array(1, 2, 3).Add(4)", 6 + 3);
    ExpectSteps(L"array(1, 2, 3).ToString()", 6 + 3);
    ExpectSteps(L"array(1, 2, 3).Item(2)", 6);
    ExpectSteps(L"'a,b,c'.Split(',')", 2 + 3);
    ExpectSteps(L"'abc'.ToCharArray()", 2 + 3);
}

TEST_F(Limits, AnItemThatIsKeptOnPurposeIsNotKeptByALimit) {
    host.engine.SetReleaseKeptReferences(true);
    ExpectSteps(L"array(1, 2, 1).Unique()", 6 + 3);
    ExpectSteps(L"array(1, 2).AddArray(array(3))", 4 + 1 + 2 + 3);
}

TEST_F(Limits, TextsTakeAStepForEach64Units) {
    SetText(63);
    ExpectSteps(L"@This", 2);
    SetText(64);
    ExpectSteps(L"@This", 3);
    SetText(6400);
    const std::uint64_t read = 1 + 100; // the name, and the text that it is a method of
    ExpectSteps(L"@This.Length()", 1 + read + 1 + 100);
    ExpectSteps(L"@This.ToUpper()", 1 + read + 1 + 200);                 // and what it gives
    ExpectSteps(L"@This.Trim().Length()", 1 + read + 1 + 200 + 1 + 100); // which the next one is called on
    ExpectSteps(L"@This = @This", 1 + 2 * read + 1 + 100);
    ExpectSteps(L"@This = 'b'", 1 + read + 1);
    ExpectSteps(L"@This + 'b'", 1 + read + 1 + 100);
    ExpectSteps(L"'b' + @This", 1 + read + 1 + 100);
    ExpectSteps(L"@This.IsNumeric()", 1 + read + 1 + 200); // and it would become a number
    ExpectSteps(L"'a'.Repeat(6400)", 2 + 100);
    ExpectSteps(L"radix(1, 2, 6400)", 2 + 100);
    ExpectSteps(L"'a'.Replace('a', @This)", 2 + read + 100);
    ExpectSteps(L"array(@This, @This).Join('')", 2 + 2 * read + 2 + 1 + 2 + 200);
}

TEST_F(Limits, ATextThatGrowsTakesStepsForWhatIsAdded) {
    // Each sum extends the one before: the steps are those of the whole text, once.
    SetText(6400);
    ExpectSteps(L"@This + @This + @This + @This", 1 + 4 * 101 + 3 + 400);
}

TEST_F(Limits, RegularExpressionsTakeThoseOfTheirMatcher) {
    const std::uint64_t few = StepsOf(L"'aaaaaaaaaa'.RegMatch('(a|b)*c')");
    const std::uint64_t many =
        StepsOf(L"'aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa'.RegMatch('(a*)*c')");
    EXPECT_GT(few, 2u);
    EXPECT_GT(many, 100'000u) << "what takes long hides in no step";
    EXPECT_EQ(RunWithin(L"'aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa'.RegMatch('(a*)*c')", 10'000),
              noSteps);
    ExpectSteps(L"'a1b22c333'.RegReplaceEx('\\d+', $Item(1) + $Item(1))",
                StepsOf(L"'a1b22c333'.RegReplaceEx('\\d+', $Item(1) + $Item(1))"));
}

TEST_F(Limits, StepsDependOnTheQueryAndItsDataAlone) {
    host.engine.SetReleaseKeptReferences(true);
    for (const wchar_t* query : {L"'a1b22c333'.RegReplace('(\\d)+', '<$1>')", L"array(3, 1, 3).Unique().Join(',')",
                                 L"'a-b'.Split('-').Count()"}) {
        const std::uint64_t steps = StepsOf(query);
        EXPECT_EQ(StepsOf(query), steps) << "with caches filled: " << Utf8(query);
        Host other;
        other.engine.SetReleaseKeptReferences(true);
        other.engine.SetLimits(EvaluationLimits());
        other.Run(query);
        EXPECT_EQ(other.engine.GetUsage().steps, steps) << Utf8(query);
    }
}

TEST_F(Limits, ScalarsTakenOutTakeTheSameSteps) {
    SetValue(new ObjectInt(7));
    for (const wchar_t* query :
         {L"@This + 1", L"@This", L"7", L"-@This", L"true ? @This : 0", L"array(1, 2).Count()"}) {
        const std::uint64_t steps = StepsOf(query);
        const Ref<IQueryElement> tree = host.Parse(query);
        host.engine.SetLimits(EvaluationLimits());
        int number = 0;
        EXPECT_TRUE(host.engine.EvaluateTo(tree.Get(), number, nullptr));
        EXPECT_EQ(host.engine.GetUsage().steps, steps) << Utf8(query);
        OrvStringT text;
        EXPECT_TRUE(host.engine.EvaluateTo(tree.Get(), text, nullptr));
        EXPECT_EQ(host.engine.GetUsage().steps, steps) << Utf8(query);
        host.engine.ClearLimits();
    }
}

TEST_F(Limits, AnExceededLimitLeavesTheOutputAsItIs) {
    const Ref<IQueryElement> tree = host.Parse(L"1 + 2 + 3");
    EvaluationLimits limits;
    limits.steps = 2;
    host.engine.SetLimits(limits);
    int number = 5;
    ErrorSlot error;
    EXPECT_FALSE(host.engine.EvaluateTo(tree.Get(), number, error.Slot()));
    EXPECT_EQ(number, 5);
    EXPECT_EQ("! " + error.Message(), noSteps);
    EXPECT_EQ(host.engine.GetErrorPosition(), 6) << "of the second operator";
}

TEST_F(Limits, FailuresAreTheQuerysOwnWithin) {
    const Ref<IQueryElement> failing = host.Parse(L"1 + 1 / 0");
    const Ref<IQueryElement> word = host.Parse(L"  'wo' + 'rd'");
    host.engine.SetLimits(EvaluationLimits());
    int number = 5;
    ErrorSlot error;
    EXPECT_FALSE(host.engine.EvaluateTo(failing.Get(), number, error.Slot()));
    EXPECT_EQ(error.Message(), "Division By Zero");
    EXPECT_EQ(host.engine.GetErrorPosition(), 6);
    ErrorSlot second;
    EXPECT_FALSE(host.engine.EvaluateTo(word.Get(), number, second.Slot()));
    EXPECT_EQ(second.Message(), "Cannot convert string 'word' to Integer");
    EXPECT_EQ(host.engine.GetErrorPosition(), 7) << "a conversion that fails is the whole query's";
    EXPECT_EQ(number, 5);
}

TEST_F(Limits, NoStepsAtAllAreALimitToo) {
    EXPECT_EQ(RunWithin(L"42", 0), noSteps);
    EXPECT_EQ(RunWithin(L"1 + 2", 0), noSteps);
}

// ---- it stays exceeded ----

TEST_F(Limits, WhatPutsUpWithFailuresDoesNotPutUpWithLimits) {
    host.engine.SetReleaseKeptReferences(true);
    SetText(64 * 100);
    // SubStr takes a count that is none for none at all, IsNumeric a failure for an answer, Unique it for a difference.
    for (const wchar_t* query : {L"'abc'.SubStr(0, @This)", L"@This.IsNumeric()",
                                 L"array(@This, @This + '', 1).Unique()", L"'abc'.SubStr(0, @This) + 'd'"}) {
        const std::uint64_t steps = StepsOf(query);
        for (std::uint64_t limit = 1; limit < steps; limit += 1 + steps / 50) {
            EXPECT_EQ(RunWithin(query, limit), noSteps) << Utf8(query) << " within " << limit << " of " << steps;
        }
    }
}

/// Evaluates what it holds, puts up with the failure, and gives a number.
class Forgiving : public CountedObject {
public:
    Forgiving(IQueryElement* query, int times) : inner(query), rounds(times) {}

    IObject* Invoke(QueryEngine* engine, const wchar_t*, const QueryElementList&, IError**) override {
        for (int round = 0; round < rounds; ++round) {
            ErrorSlot error;
            const Ref<IObject> value(engine->Evaluate(inner, error.Slot()));
            outcomes.push_back(value ? Describe(value.Get()) : "! " + error.Message());
        }
        return new ObjectInt(1);
    }

    std::vector<std::string> outcomes;

private:
    IQueryElement* inner;
    int rounds;
};

TEST_F(Limits, WhatHostsEvaluateMeanwhileCountsAndStaysFailed) {
    const Ref<IQueryElement> inner = host.Parse(L"1 + 2");
    const Ref<Forgiving> object = Make<Forgiving>(inner.Get(), 3);
    host.engine.SetPropertySource(object.Get());
    const Ref<IQueryElement> tree = host.Parse(L"@sum");
    EvaluationLimits limits;
    limits.steps = 2 + 3 * 2;
    host.engine.SetLimits(limits);
    EXPECT_EQ(Describe(Ref<IObject>(host.engine.Evaluate(tree.Get(), nullptr)).Get()), "int 1");
    EXPECT_EQ(host.engine.GetUsage().steps, limits.steps);
    EXPECT_EQ(object->outcomes, std::vector<std::string>(3, "int 3"));

    object->outcomes.clear();
    limits.steps = 2 + 2 + 1;
    host.engine.SetLimits(limits);
    ErrorSlot error;
    EXPECT_EQ(host.engine.Evaluate(tree.Get(), error.Slot()), nullptr) << "what the host puts up with is not its own";
    EXPECT_EQ("! " + error.Message(), noSteps);
    EXPECT_EQ(object->outcomes, (std::vector<std::string>{"int 3", noSteps, noSteps}));
}

/// Has another engine evaluate a query, for every name.
class Delegating : public CountedObject {
public:
    Delegating(QueryEngine& engine, IQueryElement* query) : used(engine), tree(query) {}
    IObject* Invoke(QueryEngine*, const wchar_t*, const QueryElementList&, IError** err) override {
        return used.Evaluate(tree, err);
    }

private:
    QueryEngine& used;
    IQueryElement* tree;
};

TEST_F(Limits, AnotherEnginesStepsCountForBoth) {
    Host other;
    const Ref<IQueryElement> inner = other.Parse(L"1 + 2 + 3");
    const Ref<Delegating> object = Make<Delegating>(other.engine, inner.Get());
    host.engine.SetPropertySource(object.Get());
    other.engine.SetLimits(EvaluationLimits());
    ExpectSteps(L"@value", 2 + 3);
    EXPECT_EQ(other.engine.GetUsage().steps, 3u);
    EXPECT_EQ(RunWithin(L"@value", 3), noSteps);

    EvaluationLimits tight;
    tight.steps = 2;
    other.engine.SetLimits(tight);
    EXPECT_EQ(RunWithin(L"@value", 1000), noSteps) << "as the other engine says";
    EXPECT_EQ(RunWithin(L"1 + 2", 1000), "int 3");
}

// ---- memory ----

TEST_F(Limits, MemoryIsWhatValuesTakeAtTheSameTime) {
    EXPECT_EQ(Measure(L"1 + 2").peakMemory, sizeof(ObjectInt));
    const std::size_t one = Measure(L"'a'.Repeat(100000).Length()").peakMemory;
    EXPECT_GE(one, 100'000 * sizeof(wchar_t));
    EXPECT_LT(one, 110'000 * sizeof(wchar_t));
    const std::size_t after = Measure(L"'a'.Repeat(100000).Length() + 'b'.Repeat(100000).Length()").peakMemory;
    EXPECT_LT(after, one + 1000) << "the first is gone before the second is made";
    const std::size_t both = Measure(L"('a'.Repeat(100000) + '!').Length()").peakMemory;
    EXPECT_GE(both, one);
}

TEST_F(Limits, MemoryIsLimitedToTheByte) {
    SetText(1000);
    for (const wchar_t* query :
         {L"'a'.Repeat(100000).Length()", L"array(1, 2, 3).Convert($item * 2).Join(',')", L"'a,b,c'.Split(',')",
          L"@This + 'b'", L"'a1b22'.RegReplaceEx('(\\d)', $Item(1) + '!')"}) {
        const std::string usual = Run(query);
        const std::size_t peak = Measure(query).peakMemory;
        EvaluationLimits limits;
        limits.memory = peak;
        host.engine.SetLimits(limits);
        EXPECT_EQ(Run(query), usual) << Utf8(query);
        EXPECT_EQ(host.engine.GetUsage().peakMemory, peak);
        for (std::size_t less = 1; less <= peak; less += 1 + peak / 40) {
            limits.memory = peak - less;
            host.engine.SetLimits(limits);
            EXPECT_EQ(Run(query), noMemory) << Utf8(query) << ": " << less << " bytes less than " << peak;
            EXPECT_LE(host.engine.GetUsage().peakMemory, limits.memory + 64 * 1024);
        }
        host.engine.ClearLimits();
        EXPECT_EQ(Run(query), usual) << "afterwards";
    }
}

TEST_F(Limits, AnotherEnginesMemoryCountsForBoth) {
    Host other;
    const Ref<IQueryElement> inner = other.Parse(L"'a'.Repeat(100000).Length()");
    const Ref<Delegating> object = Make<Delegating>(other.engine, inner.Get());
    host.engine.SetPropertySource(object.Get());
    const std::size_t little = 100'000;
    const std::size_t much = 1'000'000;
    const auto within = [&](std::size_t mine, std::size_t others) {
        EvaluationLimits limits;
        limits.memory = mine;
        host.engine.SetLimits(limits);
        limits.memory = others;
        other.engine.SetLimits(limits);
        return Run(L"'b'.Repeat(10).Length() + @value");
    };
    EXPECT_EQ(within(much, much), "int 100010");
    EXPECT_EQ(within(little, much), noMemory);
    EXPECT_EQ(within(much, little), noMemory) << "as the other engine says";
    EXPECT_EQ(within(little, EvaluationLimits().memory), noMemory) << "the other has no limit of its own";
    EXPECT_EQ(within(EvaluationLimits().memory, little), noMemory);
    EXPECT_EQ(within(much, much), "int 100010") << "afterwards";
}

TEST_F(Limits, WhatWouldNeverFitIsNotEvenTried) {
    EvaluationLimits limits;
    limits.memory = 1'000'000;
    host.engine.SetLimits(limits);
    EXPECT_EQ(Run(L"'abc'.Repeat(700000000)"), noMemory);
    EXPECT_EQ(Run(L"radix(1, 2, 2147483647)"), noMemory);
    limits = EvaluationLimits();
    limits.steps = 1'000'000;
    host.engine.SetLimits(limits);
    EXPECT_EQ(Run(L"'abc'.Repeat(700000000)"), noSteps);
    EXPECT_EQ(Run(L"radix(1, 2, 2147483647)"), noSteps);
    EXPECT_LT(host.engine.GetUsage().peakMemory, 1000u);
}

TEST_F(Limits, ResultsOutliveTheirEvaluation) {
    host.engine.SetLimits(EvaluationLimits());
    Ref<IObject> text = host.Evaluate(L"'a'.Repeat(50)");
    Ref<IObject> array = host.Evaluate(L"array(1, 'x', array(2))");
    host.engine.ClearLimits();
    EXPECT_EQ(Describe(array.Get()), "array (1,x,(2))");
    text.Reset();
    array.Reset();
    host.engine.SetLimits(EvaluationLimits());
    SetText(100'000); // made before, and gone within
    const std::size_t peak = Measure(L"@This.Length()").peakMemory;
    EXPECT_EQ(peak, sizeof(ObjectInt));
}

// ---- time and the flag ----

TEST_F(Limits, TimeRunsOut) {
    EvaluationLimits limits;
    limits.nanoseconds = std::chrono::nanoseconds(std::chrono::nanoseconds(0)).count();
    host.engine.SetLimits(limits);
    EXPECT_EQ(Run(L"1 + 2"), noTime);
    EXPECT_EQ(Run(L"42"), noTime);
    limits.nanoseconds = std::chrono::nanoseconds(std::chrono::milliseconds(20)).count();
    host.engine.SetLimits(limits);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Run(L"'a'.Repeat(1000).ToCharArray().Convert('b'.Repeat(1000).ToCharArray().Convert("
                  L"'c'.Repeat(1000).ToCharArray().Convert($item))).Count()"),
              noTime);
    // A billion steps take minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
    limits.nanoseconds = std::chrono::nanoseconds(std::chrono::hours(1)).count();
    host.engine.SetLimits(limits);
    EXPECT_EQ(Run(L"1 + 2"), "int 3");
    limits.nanoseconds = EvaluationLimits::unlimitedTime - 1;
    host.engine.SetLimits(limits);
    EXPECT_EQ(Run(L"1 + 2"), "int 3");
}

TEST_F(Limits, TimeEndsARegularExpressionToo) {
    EvaluationLimits limits;
    limits.nanoseconds = std::chrono::nanoseconds(std::chrono::milliseconds(5)).count();
    host.engine.SetLimits(limits);
    SetText(200);
    EXPECT_EQ(Run(L"@This.RegMatch('(a*)*(a*)*c')"), noTime);
}

/// Sets a flag when it is asked for anything, and answers.
class Canceller : public CountedObject {
public:
    explicit Canceller(std::atomic<bool>& flag) : cancel(flag) {}
    IObject* Invoke(QueryEngine*, const wchar_t*, const QueryElementList&, IError**) override {
        cancel.store(true, std::memory_order_relaxed);
        return new ObjectInt(3);
    }

private:
    std::atomic<bool>& cancel;
};

TEST_F(Limits, TheFlagCancels) {
    std::atomic<bool> cancel = false;
    const Ref<Canceller> object = Make<Canceller>(cancel);
    host.engine.SetPropertySource(object.Get());
    EvaluationLimits limits;
    limits.cancel = &cancel;
    host.engine.SetLimits(limits);
    EXPECT_EQ(Run(L"1 + 2"), "int 3");
    EXPECT_EQ(Run(L"@x + 1"), cancelled);
    EXPECT_EQ(Run(L"1 + 2"), cancelled) << "as long as the flag is set";
    EXPECT_EQ(Run(L"42"), cancelled);
    cancel = false;
    EXPECT_EQ(Run(L"1 + 2"), "int 3");
}

// ---- the engine ----

TEST_F(Limits, WhatIsExceededFirstIsTold) {
    EvaluationLimits limits;
    limits.steps = 1000;
    limits.memory = 6000;
    limits.nanoseconds = std::chrono::nanoseconds(std::chrono::hours(1)).count();
    host.engine.SetLimits(limits);
    EXPECT_EQ(Run(L"'a'.Repeat(5000).Length()"), noMemory);
    EXPECT_EQ(Run(L"array(1, 2, 3, 4, 5, 6, 7, 8, 9).ForEach(0, array(1, 2, 3, 4, 5, 6, 7, 8, 9).ForEach($lasteval, "
                  L"array(1, 2, 3, 4, 5, 6, 7, 8, 9).ForEach($lasteval, 0)))"),
              noSteps);
}

TEST_F(Limits, UsageIsThatOfTheLastEvaluationWithLimits) {
    EXPECT_EQ(host.engine.GetUsage().steps, 0u);
    EXPECT_EQ(StepsOf(L"1 + 2"), 2u);
    Run(L"1 + 2 + 3");
    EXPECT_EQ(host.engine.GetUsage().steps, 2u);
    EXPECT_EQ(RunWithin(L"1 + 2 + 3 + 4", 2), noSteps);
    EXPECT_EQ(host.engine.GetUsage().steps, 3u) << "the one that was too much included";
}

TEST_F(Limits, UsageMayBeAskedForMeanwhile) {
    class Curious : public CountedObject {
    public:
        IObject* Invoke(QueryEngine* engine, const wchar_t*, const QueryElementList&, IError**) override {
            return new ObjectInt(static_cast<int>(engine->GetUsage().steps));
        }
    };
    const Ref<Curious> object = Make<Curious>();
    host.engine.SetPropertySource(object.Get());
    host.engine.SetLimits(EvaluationLimits());
    EXPECT_EQ(Run(L"1 + 2 + @steps"), "int 6") << "an evaluation, the first operator and a name, by then";
}

TEST_F(Limits, ACopyHasTheSameLimits) {
    EvaluationLimits limits;
    limits.steps = 2;
    QueryEngine engine;
    engine.SetLimits(limits);
    engine.SetReleaseKeptReferences(true);
    QueryEngine copy = engine;
    EXPECT_TRUE(copy.GetReleaseKeptReferences());
    const Ref<IQueryElement> tree = host.Parse(L"1 + 2 + 3");
    ErrorSlot error;
    EXPECT_EQ(copy.Evaluate(tree.Get(), error.Slot()), nullptr);
    EXPECT_EQ("! " + error.Message(), noSteps);
    copy.ClearLimits();
    EXPECT_EQ(Describe(Ref<IObject>(copy.Evaluate(tree.Get(), nullptr)).Get()), "int 6");
}

TEST_F(Limits, LimitsSetMeanwhileAreForTheNextEvaluation) {
    class Tightening : public CountedObject {
    public:
        IObject* Invoke(QueryEngine* engine, const wchar_t*, const QueryElementList&, IError**) override {
            EvaluationLimits limits;
            limits.steps = 1;
            engine->SetLimits(limits);
            return new ObjectInt(1);
        }
    };
    const Ref<Tightening> object = Make<Tightening>();
    host.engine.SetPropertySource(object.Get());
    const Ref<IQueryElement> tree = host.Parse(L"@x + 2 + 3");
    EXPECT_EQ(Describe(Ref<IObject>(host.engine.Evaluate(tree.Get(), nullptr)).Get()), "int 6");
    EXPECT_EQ(host.engine.Evaluate(tree.Get(), nullptr), nullptr);
}

TEST_F(Limits, AHostsExceptionEndsTheEvaluationAndItsLimits) {
    class Throwing : public CountedObject {
    public:
        IObject* Invoke(QueryEngine*, const wchar_t*, const QueryElementList&, IError**) override { throw 42; }
    };
    const Ref<Throwing> object = Make<Throwing>();
    host.engine.SetPropertySource(object.Get());
    host.engine.SetLimits(EvaluationLimits());
    const Ref<IQueryElement> tree = host.Parse(L"1 + @x");
    EXPECT_THROW(host.engine.Evaluate(tree.Get(), nullptr), int);
    EXPECT_EQ(host.engine.GetUsage().steps, 2u) << "the evaluation and the name, not the operator that never began";
    EXPECT_EQ(StepsOf(L"1 + 2"), 2u) << "no longer inside of the one before";
}

} // namespace
} // namespace OrvUQL::Tests
