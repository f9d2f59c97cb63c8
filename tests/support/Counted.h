// Objects that count themselves and tell when they go: a host's value, a host's query element, and any class of the
// library with a count beside it.
#pragma once

#include "support/Ref.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace OrvUQL::Tests {

/// What all the counting classes share. Each test begins with nothing alive and an empty log (see CountedTest).
struct Counted {
    /// How many counting objects are alive now.
    static inline int live = 0;
    /// The labels of those that went, in that order; objects without a label are not logged.
    static inline std::vector<std::string> gone;

    static void Begin() { ++live; }
    static void End(const std::string& label) {
        --live;
        if (!label.empty()) {
            gone.push_back(label);
        }
    }
};

/// Base of tests that use them: nothing may be left over.
class CountedTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Counted::live, 0) << "left over from an earlier test";
        Counted::gone.clear();
    }
    void TearDown() override { EXPECT_EQ(Counted::live, 0) << "leaked"; }
};

/// A value of a host, with a text of its own and the methods that every value has.
class CountedObject : public ObjectBase {
public:
    explicit CountedObject(std::string objectLabel = {}, OrvStringT objectText = {}, EType objectType = TypeGlobal)
        : label(std::move(objectLabel)), text(std::move(objectText)), type(objectType) {
        Counted::Begin();
    }
    CountedObject(const CountedObject& other)
        : ObjectBase(other), label(other.label), text(other.text), type(other.type) {
        Counted::Begin();
    }
    CountedObject& operator=(const CountedObject&) = default;
    ~CountedObject() override { Counted::End(label); }

    int References() const noexcept { return refCount; }

    EType GetType() const override { return type; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"counted"); }
    OrvStringT ToString() const override { return text; }
    using ObjectBase::ToString;

private:
    std::string label;
    OrvStringT text;
    EType type;
};

/// An element of a host: evaluates to a value it holds, or fails.
class CountedElement : public RefCountImpl<IQueryElement> {
public:
    /// Takes the value's reference over. Without a value evaluation fails, with `message` if there is one.
    explicit CountedElement(IObject* elementValue, std::string elementLabel = {}, int elementPosition = 0,
                            const wchar_t* failureMessage = nullptr)
        : value(elementValue), label(std::move(elementLabel)), position(elementPosition), message(failureMessage) {
        Counted::Begin();
    }
    CountedElement(const CountedElement&) = delete;
    CountedElement& operator=(const CountedElement&) = delete;
    ~CountedElement() override;

    int References() const noexcept { return refCount; }
    int Evaluations() const noexcept { return evaluations; }

    EType GetType() const override { return Object; }
    int GetStringPosition() const override { return position; }
    IObject* Evaluate(QueryEngine*, IError** err) const override {
        ++evaluations;
        if (value != nullptr) {
            value->AddRef();
        } else if (message != nullptr && err != nullptr) {
            *err = Error::Create(message);
        }
        return value;
    }

private:
    IObject* value;
    std::string label;
    int position;
    const wchar_t* message;
    mutable int evaluations = 0;
};

/// A class of the library with its instances counted, and its count of references to be read. To the library it is
/// a subclass like any of a host's.
template <class Base> class Probe : public Base {
public:
    template <class... Arguments>
    explicit Probe(Arguments&&... arguments) : Base(std::forward<Arguments>(arguments)...) {
        Counted::Begin();
    }
    Probe(const Probe& other) : Base(other) { Counted::Begin(); }
    Probe& operator=(const Probe&) = default;
    ~Probe() override { Counted::End(label); }

    int References() const noexcept { return this->refCount; }

    std::string label;
};

} // namespace OrvUQL::Tests
