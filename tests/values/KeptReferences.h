// What AddArray and Unique hold on to. Both deliberately keep a reference too many to the items of their results (hosts
// rely on it that items of theirs stay alive), and Unique one to each item that it leaves out.
#pragma once

#include "values/CallHandler.h"
#include "values/HostTest.h"

#include <vector>

namespace OrvUQL::Tests {

/// Base of tests that give such references back themselves.
class KeptReferences : public HostTest {
protected:
    /// A value that the test looks after: in the end it gives back what the library keeps.
    template <class T> T* Watch(T* value) {
        value->AddRef();
        watched.push_back(value);
        return value;
    }
    IObject* WatchInt(int value) { return Watch(new ObjectInt(value)); }
    IObject* WatchDouble(double value) { return Watch(new ObjectDouble(value)); }
    IObject* WatchText(const wchar_t* value) { return Watch(new ObjectString(value)); }

    /// The references to a watched value, without the test's own.
    static int Held(const IObject* value) { return ReferencesOf(value) - 1; }

    void TearDown() override {
        host.engine.SetPropertySource(nullptr);
        host.engine.SetVariable(nullptr);
        // The last first: what holds others was made after them.
        for (; !watched.empty(); watched.pop_back()) {
            for (int count = ReferencesOf(watched.back()); count > 0; --count) {
                watched.back()->Release();
            }
        }
        HostTest::TearDown();
    }

    std::vector<IObject*> watched;
};

} // namespace OrvUQL::Tests
