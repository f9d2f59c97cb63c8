// Base of tests that evaluate queries over counted values.
#pragma once

#include "support/Counted.h"
#include "support/Host.h"

#include <string>
#include <utility>

namespace OrvUQL::Tests {

/// A host whose property source the test sets: `@This` is that value, `@Name` a method of it. Nothing may be left over
/// when a test is done, and the engine's stacks must be as they were.
class HostTest : public CountedTest {
protected:
    /// Makes `@This` an array of these items, whose references are taken over.
    void SetItems(ObjectList items) { SetValue(new ObjectArray(std::move(items))); }
    /// Makes `@This` this value, whose reference is taken over.
    void SetValue(IObject* value) {
        host.engine.SetPropertySource(value);
        value->Release();
    }
    /// Makes `$First` this value, whose reference is taken over.
    void SetArgument(IObject* value) {
        const Ref<ObjectArray> holder = Make<ObjectArray>(ObjectList{value});
        host.engine.SetVariable(holder.Get());
    }

    std::string Run(const wchar_t* query) { return host.Run(query); }
    Ref<IObject> Evaluate(const wchar_t* query) { return host.Evaluate(query); }
    static const ObjectList& Items(const Ref<IObject>& array) {
        return dynamic_cast<const ObjectArray&>(*array).GetObjectList();
    }

    void TearDown() override {
        host.engine.SetPropertySource(nullptr);
        host.engine.SetVariable(nullptr);
        host.engine.PopVariable();
        EXPECT_EQ(host.engine.GetVariable(), nullptr) << "a variable was pushed and not popped";
        CountedTest::TearDown();
    }

    Host host;
};

} // namespace OrvUQL::Tests
