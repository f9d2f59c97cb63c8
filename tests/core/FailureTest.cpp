// What a host's own code throws: the end of memory becomes an error of the library, everything else passes through, and
// nothing is lost on the way.

#include <OrvUQL/OrvUQL.h>

#include "core/Recorder.h"
#include "support/Attempt.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

namespace OrvUQL::Tests {
namespace {

using Failure = CountedTest;

/// What is thrown, and where.
enum class Thrown { BadAlloc, LengthError, RuntimeError };

[[noreturn]] void Throw(Thrown what) {
    switch (what) {
    case Thrown::BadAlloc:
        throw std::bad_alloc();
    case Thrown::LengthError:
        throw std::length_error("too long");
    default:
        throw std::runtime_error("the host's own");
    }
}

/// A value that throws from its text, its type name or its methods.
class Thrower : public CountedObject {
public:
    enum Place { Nowhere, Text, TypeName, Handler };
    Thrower(Place throwPlace, Thrown thrownThing) : place(throwPlace), what(thrownThing) {}
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {MethodMap::Method(L"Act", L"o*", &Thrower::Method_Act),
                                          MethodMap::Chain(&Thrower::ObjectBaseMethods), MethodMap::End()};
        return table;
    }
    OrvStringT ToString() const override { return Checked(Text, ORV_TEXT(L"17")); }
    using ObjectBase::ToString;
    OrvStringT GetTypeName() const override { return Checked(TypeName, ORV_TEXT(L"thrower")); }

private:
    OrvStringT Checked(Place here, OrvStringT normally) const {
        if (place == here) {
            Throw(what);
        }
        return normally;
    }
    IObject* Method_Act(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
        if (place == Handler) {
            Throw(what);
        }
        return new ObjectInt(1);
    }
    Place place;
    Thrown what;
};

/// An element that throws instead of evaluating.
class ThrowingElement : public RefCountImpl<IQueryElement> {
public:
    explicit ThrowingElement(Thrown thrownThing) : what(thrownThing) {}
    EType GetType() const override { return Object; }
    int GetStringPosition() const override { return 0; }
    IObject* Evaluate(QueryEngine*, IError**) const override { Throw(what); }

private:
    Thrown what;
};

TEST_F(Failure, OfMemoryInATextIsAnError) {
    for (const Thrown what : {Thrown::BadAlloc, Thrown::LengthError}) {
        Thrower thrower(Thrower::Text, what);
        EXPECT_EQ(ToBool(thrower), "! Internal error");
        EXPECT_EQ(ToInt(thrower), "! Internal error");
        EXPECT_EQ(ToDouble(thrower), "! Internal error");
        EXPECT_EQ(ToText(thrower), "! Internal error");
        EXPECT_EQ(ToNumeric(thrower), "! Internal error");
        for (const IObject::EType type :
             {IObject::TypeBool, IObject::TypeInt, IObject::TypeDouble, IObject::TypeString}) {
            EXPECT_EQ(ChangeType(thrower, type), "! Internal error");
        }
        EXPECT_EQ(ChangeType(thrower, IObject::TypeArray), "!") << "nobody asks for the text";
        ErrorSlot error;
        EXPECT_EQ(thrower.ToUnit(nullptr, error.Slot()), nullptr);
        EXPECT_EQ(error.Message(), "Internal error");
        EXPECT_EQ(Call(thrower, L"ToString"), "! Internal error");
        EXPECT_EQ(Call(thrower, L"IsNumeric"), "bool false");
        EXPECT_EQ(Call(thrower, L"TypeName"), "string thrower");
    }
}

TEST_F(Failure, OfMemoryInATypeNameIsAnError) {
    Thrower thrower(Thrower::TypeName, Thrown::BadAlloc);
    EXPECT_EQ(Call(thrower, L"Foo"), "! Internal error");
    EXPECT_EQ(Call(thrower, L"TypeName"), "! Internal error");
    EXPECT_EQ(Call(thrower, L"help"), "! Internal error");
    EXPECT_EQ(ToInt(thrower), "17");
}

TEST_F(Failure, OfMemoryInAHandlerIsAnErrorAndReleasesTheArguments) {
    for (const Thrown what : {Thrown::BadAlloc, Thrown::LengthError}) {
        Thrower thrower(Thrower::Handler, what);
        EXPECT_EQ(Call(thrower, L"Act",
                       {new CountedElement(new CountedObject()), nullptr, new CountedElement(new CountedObject())}),
                  "! Internal error");
    }
}

TEST_F(Failure, OfMemoryInAnArgumentIsAnErrorAndReleasesTheOthers) {
    for (const Thrown what : {Thrown::BadAlloc, Thrown::LengthError}) {
        Thrower thrower(Thrower::Nowhere, what);
        EXPECT_EQ(Call(thrower, L"Act", {new CountedElement(new CountedObject()), new ThrowingElement(what)}),
                  "! Internal error");
    }
}

// More arguments than find room beside the call.
TEST_F(Failure, ReleasesManyArguments) {
    Thrower thrower(Thrower::Handler, Thrown::BadAlloc);
    QueryElementList args;
    for (int index = 0; index < 100; ++index) {
        args.push_back(new CountedElement(new CountedObject()));
    }
    EXPECT_EQ(Call(thrower, L"Act", std::move(args)), "! Internal error");
}

TEST_F(Failure, OfTheHostsOwnKindPassesThrough) {
    const QueryElementList none;
    QueryEngine engine;
    for (const bool wantError : {false, true}) {
        ErrorSlot error;
        IError** const err = wantError ? error.Slot() : nullptr;
        Thrower text(Thrower::Text, Thrown::RuntimeError);
        int number = 0;
        OrvStringT out;
        EXPECT_THROW(text.ToInt(number, err), std::runtime_error);
        EXPECT_THROW(static_cast<IObject&>(text).ToString(out, err), std::runtime_error);
        EXPECT_THROW(text.ToNumeric(err), std::runtime_error);
        EXPECT_THROW(text.ChangeType(IObject::TypeString, err), std::runtime_error);
        EXPECT_THROW(text.Invoke(&engine, L"ToString", none, err), std::runtime_error);

        Thrower handler(Thrower::Handler, Thrown::RuntimeError);
        const QueryElementList args{new CountedElement(new CountedObject())};
        EXPECT_THROW(handler.Invoke(&engine, L"Act", args, err), std::runtime_error);
        const QueryElementList failing{new CountedElement(new CountedObject()),
                                       new ThrowingElement(Thrown::RuntimeError)};
        EXPECT_THROW(handler.Invoke(&engine, L"Act", failing, err), std::runtime_error);
        EXPECT_TRUE(error.IsEmpty());
    }
}

TEST_F(Failure, LeavesTheCallUsable) {
    Host host;
    const Ref<IQueryElement> tree = host.Parse(L"@Act(@ToString())");
    for (int round = 0; round < 3; ++round) {
        const Ref<Thrower> throwing = Make<Thrower>(Thrower::Handler, Thrown::RuntimeError);
        host.engine.SetPropertySource(throwing.Get());
        EXPECT_THROW(host.engine.Evaluate(tree.Get(), nullptr), std::runtime_error);
        const Ref<Thrower> starving = Make<Thrower>(Thrower::Text, Thrown::BadAlloc);
        host.engine.SetPropertySource(starving.Get());
        EXPECT_EQ(host.Run(*tree), "! Internal error");
        const Ref<Thrower> well = Make<Thrower>(Thrower::Nowhere, Thrown::BadAlloc);
        host.engine.SetPropertySource(well.Get());
        EXPECT_EQ(host.Run(*tree), "int 1");
    }
    host.engine.SetPropertySource(nullptr);
}

} // namespace
} // namespace OrvUQL::Tests
