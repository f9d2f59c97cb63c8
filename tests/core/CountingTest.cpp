// The count of references: born with 1, gone at 0, copied with the rest of an object.

#include <OrvUQL/OrvUQL.h>

#include "support/Counted.h"
#include "support/Print.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace OrvUQL::Tests {
namespace {

using Counting = CountedTest;

TEST_F(Counting, NewObjectIsOwnedOnceByItsCreator) {
    CountedObject* const object = new CountedObject("object");
    EXPECT_EQ(object->References(), 1);
    EXPECT_EQ(Counted::live, 1);
    object->Release();
    EXPECT_EQ(Counted::live, 0);
}

TEST_F(Counting, GoesWithTheLastReferenceAndOnlyOnce) {
    CountedObject* const object = new CountedObject("object");
    object->AddRef();
    EXPECT_EQ(object->References(), 2);
    object->Release();
    EXPECT_EQ(object->References(), 1);
    EXPECT_EQ(Counted::live, 1);
    object->Release();
    EXPECT_EQ(Counted::gone, std::vector<std::string>{"object"});
}

TEST_F(Counting, EveryKindOfObjectIsBornWithOneReference) {
    const Ref<Probe<ObjectNull>> null = Make<Probe<ObjectNull>>();
    EXPECT_EQ(null->References(), 1);
    const Ref<Probe<ObjectInt>> number = Make<Probe<ObjectInt>>(5);
    EXPECT_EQ(number->References(), 1);
    const Ref<Probe<ObjectString>> text = Make<Probe<ObjectString>>(L"text");
    EXPECT_EQ(text->References(), 1);
    const Ref<Probe<ObjectExpression>> expression = Make<Probe<ObjectExpression>>(nullptr);
    EXPECT_EQ(expression->References(), 1);
    const Ref<Probe<Error>> error = Make<Probe<Error>>(L"message");
    EXPECT_EQ(error->References(), 1);
    const Ref<Probe<ElementObject>> element = Make<Probe<ElementObject>>(true, 0);
    EXPECT_EQ(element->References(), 1);
    const Ref<Probe<LinearDimensionUnits>> catalogue = Make<Probe<LinearDimensionUnits>>(0.0);
    EXPECT_EQ(catalogue->References(), 1);
    const Ref<Probe<UnitDefinition>> definition = Make<Probe<UnitDefinition>>(1, L"g", 1.0, catalogue.Get());
    EXPECT_EQ(definition->References(), 1);
    EXPECT_EQ(catalogue->References(), 2);
}

// A copy that began with one reference would be the expected thing; hosts rely on this one.
TEST_F(Counting, CopyStartsWithTheCountOfItsSource) {
    CountedObject* const source = new CountedObject("source");
    source->AddRef();
    source->AddRef();
    CountedObject* const copy = new CountedObject(*source);
    EXPECT_EQ(copy->References(), 3);
    EXPECT_EQ(source->References(), 3);
    for (int count = 0; count < 3; ++count) {
        EXPECT_EQ(Counted::live, 2);
        copy->Release();
    }
    EXPECT_EQ(Counted::live, 1);
    source->Release();
    source->Release();
    source->Release();
}

TEST_F(Counting, AssignmentTakesTheCountAlong) {
    CountedObject* const source = new CountedObject();
    source->AddRef();
    CountedObject* const target = new CountedObject();
    *target = *source;
    EXPECT_EQ(target->References(), 2);
    target->Release();
    target->Release();
    source->Release();
    source->Release();
}

TEST_F(Counting, ErrorsCopyTheirCountToo) {
    Probe<Error>* const source = new Probe<Error>(L"message");
    source->AddRef();
    Probe<Error>* const copy = new Probe<Error>(*source);
    EXPECT_EQ(copy->References(), 2);
    EXPECT_EQ(copy->GetMessageW(), L"message");
    copy->Release();
    copy->Release();
    source->Release();
    source->Release();
}

TEST_F(Counting, ValuesCopyTheirCountToo) {
    Probe<ObjectInt>* const source = new Probe<ObjectInt>(7);
    source->AddRef();
    Probe<ObjectInt>* const copy = new Probe<ObjectInt>(*source);
    EXPECT_EQ(copy->References(), 2);
    EXPECT_EQ(copy->GetValue(), 7);
    EXPECT_FALSE(copy->IsStaticInstance());
    copy->Release();
    copy->Release();
    source->Release();
    source->Release();
}

TEST_F(Counting, HelpersOfTheEngineIgnoreNull) {
    QueryEngine::AddRefObject(nullptr);
    IObject* none = nullptr;
    QueryEngine::ReleaseObject(none);
    EXPECT_EQ(none, nullptr);
}

TEST_F(Counting, HelpersOfTheEngineCountAndClear) {
    CountedObject* const object = new CountedObject();
    QueryEngine::AddRefObject(object);
    EXPECT_EQ(object->References(), 2);
    IObject* pointer = object;
    QueryEngine::ReleaseObject(pointer);
    EXPECT_EQ(pointer, nullptr);
    EXPECT_EQ(object->References(), 1);
    object->Release();
}

// Counted through any of its interfaces, an object is one object.
TEST_F(Counting, UnitIsReleasedThroughItsObject) {
    Probe<ObjectUnit>* const unit = new Probe<ObjectUnit>(nullptr, 1.0, 1, false);
    IUnit* const face = unit->GetUnitInterface();
    EXPECT_EQ(unit->References(), 1) << "the face is lent";
    face->GetObject()->AddRef();
    EXPECT_EQ(unit->References(), 2);
    face->GetObject()->Release();
    face->GetObject()->Release();
    EXPECT_EQ(Counted::live, 0);
}

static_assert(!std::is_copy_constructible_v<ObjectUnit> && !std::is_copy_assignable_v<ObjectUnit>);
static_assert(!std::is_copy_constructible_v<LinearDimensionUnits> && !std::is_copy_assignable_v<LinearDimensionUnits>);
static_assert(!std::is_copy_constructible_v<UnitDefinition> && !std::is_copy_assignable_v<UnitDefinition>);

} // namespace
} // namespace OrvUQL::Tests
