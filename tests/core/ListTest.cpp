// The two lists through which values and query elements travel: who owns the entries, and what copies and moves do.

#include <OrvUQL/OrvUQL.h>

#include "support/Counted.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using Strings = std::vector<std::string>;

/// What a list holds and how to make one such thing with a label.
struct Values {
    using List = ObjectList;
    using Entry = CountedObject;
    static Entry* Make(const std::string& label) { return new CountedObject(label); }
};

struct Elements {
    using List = QueryElementList;
    using Entry = CountedElement;
    static Entry* Make(const std::string& label) { return new CountedElement(nullptr, label); }
};

template <class Kind> class Lists : public CountedTest {};

using Kinds = ::testing::Types<Values, Elements>;
TYPED_TEST_SUITE(Lists, Kinds);

TYPED_TEST(Lists, BeginEmpty) {
    typename TypeParam::List list;
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.size(), 0u);
    EXPECT_EQ(list.capacity(), 0u);
    EXPECT_EQ(list.begin(), list.end());
}

TYPED_TEST(Lists, TakeTheReferenceOfWhatIsPutIn) {
    typename TypeParam::Entry* const entry = TypeParam::Make("entry");
    {
        typename TypeParam::List list;
        list.push_back(entry);
        EXPECT_EQ(entry->References(), 1);
        EXPECT_EQ(list.size(), 1u);
        EXPECT_EQ(list[0], entry);
    }
    EXPECT_EQ(Counted::gone, Strings{"entry"});
}

TYPED_TEST(Lists, ReleaseFrontToBackAndSkipNull) {
    {
        typename TypeParam::List list;
        list.push_back(TypeParam::Make("first"));
        list.push_back(nullptr);
        list.push_back(TypeParam::Make("second"));
        list.push_back(TypeParam::Make("third"));
        EXPECT_EQ(list.size(), 4u);
        EXPECT_EQ(list[1], nullptr);
    }
    EXPECT_EQ(Counted::gone, (Strings{"first", "second", "third"}));
}

TYPED_TEST(Lists, ReleaseOneReferenceOfEach) {
    typename TypeParam::Entry* const shared = TypeParam::Make("shared");
    shared->AddRef();
    {
        typename TypeParam::List list;
        list.push_back(shared);
    }
    EXPECT_EQ(shared->References(), 1);
    shared->Release();
}

TYPED_TEST(Lists, HoldOneObjectSeveralTimes) {
    typename TypeParam::Entry* const twice = TypeParam::Make("twice");
    twice->AddRef();
    { typename TypeParam::List list{twice, nullptr, twice}; }
    EXPECT_EQ(Counted::gone, Strings{"twice"});
}

TYPED_TEST(Lists, AreMadeFromInitializers) {
    {
        const typename TypeParam::List list{TypeParam::Make("first"), nullptr, TypeParam::Make("third")};
        EXPECT_EQ(list.size(), 3u);
        EXPECT_EQ(list[1], nullptr);
    }
    EXPECT_EQ(Counted::gone, (Strings{"first", "third"}));
    const typename TypeParam::List empty{};
    EXPECT_TRUE(empty.empty());
}

// The reason why lists are passed by reference: of two copies only one may be destroyed with its entries.
TYPED_TEST(Lists, CopyThePointersAndTakeNoReferences) {
    typename TypeParam::Entry* const entry = TypeParam::Make("entry");
    typename TypeParam::List source{entry, nullptr};
    {
        typename TypeParam::List copy(source);
        EXPECT_EQ(copy.size(), 2u);
        EXPECT_EQ(copy[0], entry);
        EXPECT_EQ(copy[1], nullptr);
        EXPECT_EQ(entry->References(), 1);
        copy.clear();
    }
    EXPECT_EQ(entry->References(), 1);
    EXPECT_EQ(source.size(), 2u);
}

TYPED_TEST(Lists, AssignThePointersAndDropTheOldOnesUnreleased) {
    typename TypeParam::Entry* const old = TypeParam::Make("old");
    typename TypeParam::Entry* const entry = TypeParam::Make("new");
    typename TypeParam::List source{entry};
    {
        typename TypeParam::List target{old};
        target = source;
        EXPECT_EQ(target.size(), 1u);
        EXPECT_EQ(target[0], entry);
        EXPECT_EQ(entry->References(), 1);
        EXPECT_EQ(old->References(), 1) << "an assignment releases nothing";
        target.clear();
    }
    old->Release();
}

TYPED_TEST(Lists, SurviveAssignmentToThemselves) {
    typename TypeParam::List list{TypeParam::Make("entry")};
    typename TypeParam::List& same = list;
    list = same;
    EXPECT_EQ(list.size(), 1u);
    list = std::move(same);
    EXPECT_EQ(list.size(), 1u);
    EXPECT_EQ(Counted::live, 1);
}

TYPED_TEST(Lists, HandTheirReferencesOverWhenMoved) {
    typename TypeParam::Entry* const entry = TypeParam::Make("entry");
    typename TypeParam::List source{entry};
    {
        typename TypeParam::List target(std::move(source));
        EXPECT_TRUE(source.empty());
        EXPECT_EQ(target.size(), 1u);
        EXPECT_EQ(target[0], entry);
        EXPECT_EQ(entry->References(), 1);
    }
    EXPECT_EQ(Counted::gone, Strings{"entry"});
    // What was moved from is a list like any other.
    source.push_back(TypeParam::Make("again"));
    EXPECT_EQ(source.size(), 1u);
}

TYPED_TEST(Lists, ReleaseTheirOwnEntriesWhenMovedInto) {
    typename TypeParam::List source{TypeParam::Make("new")};
    typename TypeParam::List target{TypeParam::Make("old")};
    target = std::move(source);
    EXPECT_EQ(Counted::gone, Strings{"old"});
    EXPECT_TRUE(source.empty());
    EXPECT_EQ(target.size(), 1u);
}

TYPED_TEST(Lists, ForgetWithoutReleasing) {
    typename TypeParam::Entry* const entry = TypeParam::Make("entry");
    {
        typename TypeParam::List list{entry, nullptr};
        list.clear();
        EXPECT_TRUE(list.empty());
    }
    EXPECT_EQ(entry->References(), 1);
    {
        typename TypeParam::List list{entry};
        list.pop_back();
        EXPECT_TRUE(list.empty());
    }
    EXPECT_EQ(entry->References(), 1);
    entry->Release();
}

TYPED_TEST(Lists, ReleaseAllAndCanBeUsedAgain) {
    typename TypeParam::List list{TypeParam::Make("first"), nullptr, TypeParam::Make("second")};
    list.ReleaseAll();
    EXPECT_EQ(Counted::gone, (Strings{"first", "second"}));
    EXPECT_TRUE(list.empty());
    list.ReleaseAll();
    list.push_back(TypeParam::Make("third"));
    EXPECT_EQ(list.size(), 1u);
}

TYPED_TEST(Lists, KeepTheirEntriesWhileTheyGrow) {
    typename TypeParam::List list;
    std::vector<typename TypeParam::Entry*> expected;
    std::size_t growths = 0;
    for (int index = 0; index < 10000; ++index) {
        const std::size_t capacity = list.capacity();
        expected.push_back(index % 7 == 0 ? nullptr : TypeParam::Make({}));
        list.push_back(expected.back());
        growths += list.capacity() != capacity;
    }
    ASSERT_EQ(list.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        ASSERT_EQ(list[index], expected[index]) << index;
    }
    EXPECT_EQ(list.front(), expected.front());
    EXPECT_EQ(list.back(), expected.back());
    EXPECT_LT(growths, 20u) << "growth is by a factor, not by a step";
    std::size_t seen = 0;
    for (const auto* entry : list) {
        EXPECT_EQ(entry, expected[seen++]);
    }
    EXPECT_EQ(seen, expected.size());
}

TYPED_TEST(Lists, KeepTheRoomThatIsReserved) {
    typename TypeParam::List list;
    list.reserve(100);
    EXPECT_GE(list.capacity(), 100u);
    EXPECT_TRUE(list.empty());
    auto* const* const storage = list.data();
    for (int index = 0; index < 100; ++index) {
        list.push_back(nullptr);
    }
    EXPECT_EQ(list.data(), storage);
    list.reserve(10);
    EXPECT_GE(list.capacity(), 100u);
    EXPECT_EQ(list.size(), 100u);
}

TYPED_TEST(Lists, HaveALimitBeyondWhichNothingChanges) {
    typename TypeParam::List list{TypeParam::Make("entry")};
    EXPECT_THROW(list.reserve(std::size_t{0x80000000u}), std::length_error);
    EXPECT_EQ(list.size(), 1u);
    EXPECT_EQ(Counted::live, 1);
}

TYPED_TEST(Lists, ReachTheirEntriesForWriting) {
    typename TypeParam::List list{nullptr, nullptr};
    list[1] = TypeParam::Make("entry");
    *list.begin() = TypeParam::Make("front");
    EXPECT_NE(list.front(), nullptr);
    list.ReleaseAll();
    EXPECT_EQ(Counted::gone, (Strings{"front", "entry"}));
}

static_assert(std::is_same_v<ObjectList::value_type, IObject*>);
static_assert(std::is_same_v<QueryElementList::value_type, IQueryElement*>);

} // namespace
} // namespace OrvUQL::Tests
