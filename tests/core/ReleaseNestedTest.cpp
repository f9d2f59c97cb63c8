// Releasing what is nested up to a million levels deep, on stacks that hold a thousandth of that; and in the natural
// order where it is not deep.

#include <OrvUQL/OrvUQL.h>

#include "support/Counted.h"
#include "support/Effort.h"
#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace OrvUQL::Tests {
namespace {

constexpr int million = PartOf(1000000);
constexpr int hundredThousand = PartOf(100000);

using Strings = std::vector<std::string>;

/// A value of a host that holds another.
class Holder : public CountedObject {
public:
    /// Takes `heldValue` over.
    explicit Holder(IObject* heldValue) : held(heldValue) {}
    ~Holder() override { ReleaseNested(held); }

private:
    IObject* held;
};

/// The same by someone who has not read about nesting. It does no harm as long as the library's objects lie between.
class CarelessHolder : public CountedObject {
public:
    explicit CarelessHolder(IObject* heldValue) : held(heldValue) {}
    ~CarelessHolder() override { held->Release(); }

private:
    IObject* held;
};

IObject* InArray(IObject* item) { return new ObjectArray(ObjectList{item}); }
IObject* InExpression(IQueryElement* element) {
    IObject* const expression = new ObjectExpression(element);
    element->Release();
    return expression;
}
IQueryElement* InObject(IObject* value) { return new ElementObject(value, 0, false); }
IQueryElement* InElementArray(IQueryElement* element) {
    const QueryElementList items{element};
    return new ElementArray(items, 0); // its own reference beside the list's
}
IQueryElement* InCall(IQueryElement* parent) {
    QueryElementList none;
    return new ElementMethod(parent, L"x", none, false, 0);
}
IQueryElement* InArguments(IQueryElement* argument) {
    QueryElementList arguments{nullptr, argument};
    return new ElementMethod(nullptr, L"x", arguments, false, 0);
}

/// A chain of values with a counted one at its end, made by applying `wrap` again and again.
template <class Wrap> IObject* Nest(int depth, Wrap&& wrap) {
    IObject* value = new CountedObject();
    for (int level = 0; level < depth; ++level) {
        value = wrap(value);
    }
    return value;
}

template <class Wrap> IQueryElement* NestElements(int depth, Wrap&& wrap) {
    IQueryElement* element = new CountedElement(nullptr);
    for (int level = 0; level < depth; ++level) {
        element = wrap(element);
    }
    return element;
}

using Release = CountedTest;

/// Releases what `make` makes, on the thread of the test and on one with a small stack.
template <class MakeNested> void ExpectReleased(MakeNested&& make) {
    make()->Release();
    EXPECT_EQ(Counted::live, 0);
    RunOnThread(smallStack, [&] {
        make()->Release();
        EXPECT_EQ(Counted::live, 0);
    });
}

TEST_F(Release, IgnoresNull) {
    ReleaseNested(nullptr);
    EXPECT_EQ(Counted::live, 0);
}

TEST_F(Release, GivesBackOneReference) {
    CountedObject* const object = new CountedObject("object");
    object->AddRef();
    ReleaseNested(object);
    EXPECT_EQ(object->References(), 1);
    ReleaseNested(object);
    EXPECT_EQ(Counted::gone, Strings{"object"});
}

// ((a, b), c, (d)): what people nest goes depth first, front to back, each array before its items.
TEST_F(Release, KeepsTheNaturalOrderOfWhatIsNotDeep) {
    const auto array = [](const std::string& label, ObjectList items) {
        auto* const result = new Probe<ObjectArray>(std::move(items));
        result->label = label;
        return result;
    };
    IObject* const outer =
        array("outer", ObjectList{array("left", ObjectList{new CountedObject("a"), nullptr, new CountedObject("b")}),
                                  new CountedObject("c"), array("right", ObjectList{new CountedObject("d")})});
    outer->Release();
    EXPECT_EQ(Counted::gone, (Strings{"outer", "left", "a", "b", "c", "right", "d"}));
}

TEST_F(Release, ReleasesAtOnceWhatIsTwentyDeep) {
    IObject* value = new CountedObject("innermost");
    for (int level = 20; level-- > 0;) {
        auto* const array =
            new Probe<ObjectArray>(ObjectList{value, new CountedObject("beside " + std::to_string(level))});
        array->label = std::to_string(level);
        value = array;
    }
    value->Release();
    Strings expected;
    for (int level = 0; level < 20; ++level) {
        expected.push_back(std::to_string(level));
    }
    expected.push_back("innermost");
    for (int level = 20; level-- > 0;) {
        expected.push_back("beside " + std::to_string(level));
    }
    EXPECT_EQ(Counted::gone, expected);
}

TEST_F(Release, OfArraysAMillionDeep) {
    ExpectReleased([] { return Nest(million, InArray); });
}

TEST_F(Release, OfExpressionsAMillionDeep) {
    ExpectReleased([] { return Nest(million, [](IObject* value) { return InExpression(InObject(value)); }); });
}

TEST_F(Release, OfHostObjectsAMillionDeep) {
    ExpectReleased([] { return Nest(million, [](IObject* value) -> IObject* { return new Holder(value); }); });
}

TEST_F(Release, OfMixedNestsAMillionDeep) {
    ExpectReleased([] {
        int level = 0;
        return Nest(million, [&](IObject* value) -> IObject* {
            switch (level++ % 5) {
            case 0:
                return InArray(value);
            case 1:
                return new CarelessHolder(value);
            case 2:
                return InExpression(InElementArray(InObject(value)));
            case 3:
                return new Holder(value);
            default:
                return InExpression(new CountedElement(value));
            }
        });
    });
}

TEST_F(Release, OfArraysThatAreWideAtEveryLevel) {
    ExpectReleased([] {
        return Nest(hundredThousand, [](IObject* value) -> IObject* {
            return new ObjectArray(ObjectList{new CountedObject(), value, nullptr, new CountedObject()});
        });
    });
}

// Each level holds the one below it twice: every level must wait for its second reference.
TEST_F(Release, OfSharedArraysAMillionDeep) {
    ExpectReleased([] {
        return Nest(million, [](IObject* value) -> IObject* {
            value->AddRef();
            return new ObjectArray(ObjectList{value, value});
        });
    });
}

TEST_F(Release, OfCallsAMillionDeep) {
    ExpectReleased([] { return NestElements(million, InCall); });
}

TEST_F(Release, OfArgumentsAHundredThousandDeep) {
    ExpectReleased([] { return NestElements(hundredThousand, InArguments); });
}

TEST_F(Release, OfElementArraysAHundredThousandDeep) {
    ExpectReleased([] { return NestElements(hundredThousand, InElementArray); });
}

TEST_F(Release, OfGroupsAHundredThousandDeep) {
    ExpectReleased([] {
        return NestElements(hundredThousand, [](IQueryElement* element) -> IQueryElement* {
            return new ElementGroup(element, new CountedElement(nullptr), 0);
        });
    });
    ExpectReleased([] {
        return NestElements(hundredThousand, [](IQueryElement* element) -> IQueryElement* {
            return new ElementGroup(new CountedElement(nullptr), element, 0);
        });
    });
}

TEST_F(Release, OfOperatorsAHundredThousandDeep) {
    ExpectReleased([] {
        return NestElements(hundredThousand, [](IQueryElement* element) -> IQueryElement* {
            return new OperatorUnary(ORV_TEXT(L"-"), element, 0);
        });
    });
    ExpectReleased([] {
        return NestElements(hundredThousand, [](IQueryElement* element) -> IQueryElement* {
            return new OperatorBinary(ORV_TEXT(L"+"), element, new CountedElement(nullptr), 0);
        });
    });
    ExpectReleased([] {
        return NestElements(hundredThousand, [](IQueryElement* element) -> IQueryElement* {
            return new OperatorBinary(ORV_TEXT(L"+"), new CountedElement(nullptr), element, 0);
        });
    });
    for (int place = 0; place < 3; ++place) {
        ExpectReleased([place] {
            return NestElements(hundredThousand, [place](IQueryElement* element) -> IQueryElement* {
                IQueryElement* operands[3];
                for (int index = 0; index < 3; ++index) {
                    operands[index] = index == place ? element : new CountedElement(nullptr);
                }
                return new OperatorTernary(ORV_TEXT(L"?"), operands[0], operands[1], operands[2], 0);
            });
        });
    }
}

TEST_F(Release, OfAListOfDeepThings) {
    {
        ObjectList list;
        for (int index = 0; index < 10; ++index) {
            list.push_back(Nest(10000, InArray));
            list.push_back(nullptr);
        }
    }
    EXPECT_EQ(Counted::live, 0);
}

// A host may make and release further deep things while the library is in the middle of releasing.
TEST_F(Release, FromWithinARelease) {
    class Releaser : public CountedObject {
    public:
        ~Releaser() override { Nest(10000, InArray)->Release(); }
    };
    IObject* value = new Releaser();
    for (int level = 0; level < 10000; ++level) {
        value = new ObjectArray(ObjectList{value, level % 1000 == 0 ? new Releaser() : nullptr});
    }
    value->Release();
    EXPECT_EQ(Counted::live, 0);
}

// Values may go on another thread than the one that made them, if they go whole.
TEST_F(Release, OnAnotherThread) {
    IObject* const value = Nest(hundredThousand, InArray);
    RunOnThread(smallStack, [&] { value->Release(); });
    EXPECT_EQ(Counted::live, 0);
}

} // namespace
} // namespace OrvUQL::Tests
