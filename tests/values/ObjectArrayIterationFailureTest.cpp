// ForEach, Filter, Convert and Contains where something is wrong: no expression, an array that changes, evaluations
// that fail or throw, and trees that are too deep.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "support/StackThread.h"
#include "values/CallHandler.h"
#include "values/HostArrays.h"
#include "values/IterationTest.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using IterationFailures = Iteration;

// ---- arguments that are no expressions ----

TEST_F(IterationFailures, NeedsAnExpression) {
    /// Says that it is an expression and is none.
    const auto pretender = [] { return new CountedObject("", OrvStringT(), IObject::TypeExpression); };
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList{new ObjectInt(1)});
    const std::vector<std::function<IObject*()>> makers{[] { return static_cast<IObject*>(nullptr); },
                                                        [] { return new ObjectInt(1); },
                                                        [] { return new ObjectExpression(nullptr); }, pretender};
    for (const auto& make : makers) {
        EXPECT_EQ(CallHandler(*array, L"ForEach", L"ForEach", {new ObjectInt(7), make(), nullptr}), "int 7");
        EXPECT_EQ(CallHandler(*array, L"Filter", L"Filter", {make(), nullptr}), "!");
        EXPECT_EQ(CallHandler(*array, L"Convert", L"Convert", {make(), nullptr}), "!");
        EXPECT_EQ(CallHandler(*array, L"Contains", L"Contains", {make(), nullptr}), "!");
    }
    const Ref<ObjectArray> empty = Make<ObjectArray>(ObjectList());
    EXPECT_EQ(CallHandler(*empty, L"Filter", L"Filter", {nullptr, nullptr}), "!") << "even with nothing to evaluate";
    EXPECT_EQ(CallHandler(*empty, L"Contains", L"Contains", {nullptr, nullptr}), "!");
}

TEST_F(IterationFailures, KnowsItsNames) {
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList{new ObjectInt(1), new ObjectInt(2)});
    const auto expression = [] {
        const Ref<CountedElement> element = Make<CountedElement>(new ObjectInt(0));
        return new ObjectExpression(element.Get());
    };
    EXPECT_EQ(CallHandler(*array, L"Convert", L"FILTER", {expression(), nullptr}), "array ()");
    EXPECT_EQ(CallHandler(*array, L"Filter", L"Convert", {expression(), nullptr}), "array (0,0)");
    EXPECT_EQ(CallHandler(*array, L"Filter", L"Map", {expression(), nullptr}), "array (0,0)");
}

// ---- failures ----

TEST_F(IterationFailures, StopsWhereTheExpressionFails) {
    const Ref<CountedObject> outer = Make<CountedObject>();
    host.engine.SetVariable(outer.Get());
    for (const wchar_t* const method : iteratingMethods) {
        for (const bool isSilent : {false, true}) {
            SCOPED_TRACE(Utf8(method));
            const int live = Counted::live;
            int evaluations = 0;
            ErrorSlot error;
            const Ref<IObject> result = Call(
                MakeNumbers(5), method,
                [&](QueryEngine*, IError** err) -> IObject* {
                    if (++evaluations < 3) {
                        return new CountedObject("", ORV_TEXT(L"0"));
                    }
                    if (!isSilent) {
                        *err = Error::Create(L"failed");
                    }
                    return nullptr;
                },
                error.Slot());
            EXPECT_FALSE(result);
            EXPECT_EQ(error.Message(), isSilent ? "(none)" : "failed");
            EXPECT_EQ(evaluations, 3);
            EXPECT_EQ(host.engine.GetVariable(), outer.Get());
            EXPECT_EQ(Counted::live, live);
        }
    }
}

TEST_F(IterationFailures, StopsWhereAResultIsNoTruth) {
    const Ref<CountedObject> outer = Make<CountedObject>();
    host.engine.SetVariable(outer.Get());
    for (const wchar_t* const method : {L"Filter", L"Contains"}) {
        const int live = Counted::live;
        int evaluations = 0;
        ErrorSlot error;
        EXPECT_FALSE(Call(
            MakeNumbers(5), method,
            [&](QueryEngine*, IError**) -> IObject* {
                return ++evaluations < 3 ? new CountedObject("", ORV_TEXT(L"0")) : new Stubborn();
            },
            error.Slot()));
        EXPECT_EQ(error.Message(), "no bool");
        EXPECT_EQ(evaluations, 3);
        EXPECT_EQ(host.engine.GetVariable(), outer.Get());
        EXPECT_EQ(Counted::live, live);
    }
}

TEST_F(IterationFailures, LetsExceptionsOfTheExpressionPass) {
    const Ref<CountedObject> outer = Make<CountedObject>();
    host.engine.SetVariable(outer.Get());
    for (const wchar_t* const method : iteratingMethods) {
        SCOPED_TRACE(Utf8(method));
        const int live = Counted::live;
        int evaluations = 0;
        EXPECT_THROW(Call(MakeNumbers(5), method,
                          [&](QueryEngine*, IError**) -> IObject* {
                              if (++evaluations == 3) {
                                  throw std::runtime_error("host's own");
                              }
                              return new CountedObject("", ORV_TEXT(L"0"));
                          }),
                     std::runtime_error);
        EXPECT_EQ(host.engine.GetVariable(), outer.Get());
        EXPECT_EQ(outer->References(), 2);
        EXPECT_EQ(Counted::live, live);
    }
}

TEST_F(IterationFailures, LetsExceptionsOfTheArrayAndTheConversionPass) {
    const Ref<CountedObject> outer = Make<CountedObject>();
    host.engine.SetVariable(outer.Get());
    const int live = Counted::live;
    for (const wchar_t* const method : iteratingMethods) {
        EXPECT_THROW(Call(new HostArray(5,
                                        [](int index) -> IObject* {
                                            if (index == 2) {
                                                throw std::runtime_error("host's own");
                                            }
                                            return new CountedObject();
                                        }),
                          method, [](QueryEngine*, IError**) { return new CountedObject("", ORV_TEXT(L"0")); }),
                     std::runtime_error);
        EXPECT_EQ(host.engine.GetVariable(), outer.Get()) << Utf8(method);
        EXPECT_EQ(Counted::live, live) << Utf8(method);
    }
    for (const wchar_t* const method : {L"Filter", L"Contains"}) {
        EXPECT_THROW(Call(MakeNumbers(3), method,
                          [](QueryEngine*, IError**) {
                              return new HostTruth([]() -> bool { throw std::runtime_error("host's own"); });
                          }),
                     std::runtime_error);
        EXPECT_EQ(host.engine.GetVariable(), outer.Get()) << Utf8(method);
        EXPECT_EQ(Counted::live, live) << Utf8(method);
    }
}

TEST_F(IterationFailures, TurnsTheEndOfMemoryIntoAnError) {
    for (const wchar_t* const method : iteratingMethods) {
        ErrorSlot error;
        EXPECT_FALSE(Call(
            MakeNumbers(5), method, [](QueryEngine*, IError**) -> IObject* { throw std::bad_alloc(); }, error.Slot()));
        EXPECT_EQ(error.Message(), "Internal error") << Utf8(method);
        EXPECT_EQ(host.engine.GetVariable(), nullptr) << Utf8(method);
    }
}

// ---- depth ----

/// array(1).Convert(array(1).Convert(... 7 ...)), so many levels deep.
Ref<IQueryElement> NestConversions(int depth) {
    IQueryElement* tree = new ElementObject(7, 0);
    for (int level = 0; level < depth; ++level) {
        QueryElementList items{new ElementObject(1, 0)};
        QueryElementList args{tree};
        tree = new ElementMethod(new ElementArray(items, 0), L"Convert", args, true, 0);
        items.ReleaseAll();
    }
    return Ref<IQueryElement>(tree);
}

TEST_F(IterationFailures, NestsAsDeepAsTheStackAllows) {
    RunOnThread(smallStack, [] {
        Host own;
        const Ref<IQueryElement> shallow = NestConversions(20);
        EXPECT_EQ(own.Run(*shallow), "array " + std::string(20, '(') + "7" + std::string(20, ')'));
        const Ref<IQueryElement> deep = NestConversions(100000);
        EXPECT_EQ(own.Run(*deep), "! Internal error");
        EXPECT_EQ(own.engine.GetVariable(), nullptr);
        own.engine.PopVariable();
        EXPECT_EQ(own.engine.GetVariable(), nullptr) << "nothing was left on the stack of variables";
    });
}

} // namespace
} // namespace OrvUQL::Tests
