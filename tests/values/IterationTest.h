// Calls of the array methods that evaluate an expression, with a function of the test in its place.
#pragma once

#include "values/HostArrays.h"
#include "values/HostTest.h"

#include <functional>
#include <utility>
#include <vector>

namespace OrvUQL::Tests {

/// Runs a function when it is converted to a bool.
class HostTruth : public CountedObject {
public:
    explicit HostTruth(std::function<bool()> truthBody) : body(std::move(truthBody)) {}
    bool ToBool(bool& out, IError**) const override {
        out = body();
        return true;
    }

private:
    std::function<bool()> body;
};

/// An expression of a host: a function.
class FunctionElement : public RefCountImpl<IQueryElement> {
public:
    using Body = std::function<IObject*(QueryEngine*, IError**)>;
    explicit FunctionElement(Body expressionBody) : body(std::move(expressionBody)) { Counted::Begin(); }
    FunctionElement(const FunctionElement&) = delete;
    FunctionElement& operator=(const FunctionElement&) = delete;
    ~FunctionElement() override { Counted::End({}); }

    EType GetType() const override { return Object; }
    int GetStringPosition() const override { return 0; }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override { return body(engine, err); }

private:
    Body body;
};

class Iteration : public HostTest {
protected:
    /// Calls a method of an array, in place of the expression a function. ForEach starts from 100, and all of them get
    /// the data "data". The array's reference is taken over.
    Ref<IObject> Call(IObject* array, const wchar_t* method, FunctionElement::Body body, IError** err = nullptr) {
        const Ref<IObject> receiver(array);
        QueryElementList args;
        if (OrvStringT(method) == L"ForEach") {
            args.push_back(new ElementObject(100, 0));
        }
        args.push_back(new FunctionElement(std::move(body)));
        args.push_back(new ElementObject(L"data", 0));
        return Ref<IObject>(receiver->Invoke(&host.engine, method, args, err));
    }

    /// The value of a name of the engine's variable.
    static Ref<IObject> Get(QueryEngine* engine, const wchar_t* name) {
        return Ref<IObject>(engine->GetVariable()->Invoke(engine, name, {}, nullptr));
    }

    void TearDown() override {
        held.clear();
        HostTest::TearDown();
    }

    std::vector<Ref<IObject>> held;
};

inline constexpr const wchar_t* iteratingMethods[] = {L"ForEach", L"Filter", L"Convert", L"Contains"};

} // namespace OrvUQL::Tests
