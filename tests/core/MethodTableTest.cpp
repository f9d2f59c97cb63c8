// Calls by name: how a name is found in a class's table and the tables chained to it.

#include <OrvUQL/OrvUQL.h>

#include "core/Recorder.h"
#include "support/Attempt.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <array>

namespace OrvUQL::Tests {
namespace {

using MethodMap = ObjectBase::MethodMap;
using MethodTable = CountedTest;

const MethodMap* OwnFirst() {
    static const MethodMap table[] = {
        Recorder::First(L"ToString"),
        Recorder::First(L"Extra"),
        Recorder::Common(),
        MethodMap::End(),
    };
    return table;
}

const MethodMap* ChainFirst() {
    static const MethodMap table[] = {
        Recorder::Common(),
        Recorder::First(L"ToString"),
        Recorder::First(L"Extra"),
        MethodMap::End(),
    };
    return table;
}

const MethodMap* CatchAllFirst() {
    static const MethodMap table[] = {
        Recorder::First(L"Extra"), Recorder::Any(), Recorder::Second(L"Hidden"), Recorder::Common(), MethodMap::End(),
    };
    return table;
}

const MethodMap* CatchAllLast() {
    static const MethodMap table[] = {
        Recorder::Common(),
        Recorder::Any(L"e*"),
        MethodMap::End(),
    };
    return table;
}

const MethodMap* Duplicates() {
    static const MethodMap table[] = {
        Recorder::First(L"Name"),  Recorder::Second(L"NAME"), Recorder::Second(L"Other"),
        Recorder::First(L"Other"), MethodMap::End(),
    };
    return table;
}

const MethodMap* Nothing() {
    static const MethodMap table[] = {MethodMap::End()};
    return table;
}

TEST_F(MethodTable, FindsOwnMethodsBeforeThoseChainedBehindThem) {
    RecorderWith<OwnFirst> object;
    EXPECT_EQ(Call(object, L"ToString"), "string first ToString()");
    EXPECT_EQ(Call(object, L"Extra"), "string first Extra()");
    EXPECT_EQ(Call(object, L"TypeName"), "string recorder");
}

TEST_F(MethodTable, FindsChainedMethodsFirstWhereTheChainStandsFirst) {
    RecorderWith<ChainFirst> object("", ORV_TEXT(L"the text"));
    EXPECT_EQ(Call(object, L"ToString"), "string the text");
    EXPECT_EQ(Call(object, L"Extra"), "string first Extra()");
}

TEST_F(MethodTable, EndsTheSearchAtACatchAll) {
    RecorderWith<CatchAllFirst> object;
    EXPECT_EQ(Call(object, L"Extra"), "string first Extra()");
    EXPECT_EQ(Call(object, L"Hidden"), "string any Hidden()");
    EXPECT_EQ(Call(object, L"TypeName"), "string any TypeName()") << "the common methods are behind it";
    EXPECT_EQ(Call(object, L"ANYTHING"), "string any ANYTHING()") << "the name arrives as written";
    EXPECT_EQ(Call(object, L""), "string any ()");
}

TEST_F(MethodTable, ComesToACatchAllLastWhereItStandsLast) {
    RecorderWith<CatchAllLast> object;
    EXPECT_EQ(Call(object, L"TypeName"), "string recorder");
    EXPECT_EQ(Call(object, L"IsNull"), "bool false");
    EXPECT_EQ(Call(object, L"Anything"), "string any Anything()");
}

TEST_F(MethodTable, TakesTheFirstOfEqualNames) {
    RecorderWith<Duplicates> object;
    EXPECT_EQ(Call(object, L"name"), "string first name()");
    EXPECT_EQ(Call(object, L"other"), "string second other()");
}

TEST_F(MethodTable, IgnoresLetterCaseAndHandsTheNameOnAsWritten) {
    RecorderWith<OwnFirst> object;
    EXPECT_EQ(Call(object, L"extra"), "string first extra()");
    EXPECT_EQ(Call(object, L"eXTRA"), "string first eXTRA()");
    EXPECT_EQ(Call(object, L"TYPENAME"), "string recorder");
}

const MethodMap* BeyondAscii() {
    static const MethodMap table[] = {Recorder::First(L"Gr\u00f6\u00dfe\u0416"), MethodMap::End()};
    return table;
}

TEST_F(MethodTable, IgnoresLetterCaseBeyondAscii) {
    RecorderWith<BeyondAscii> object;
    EXPECT_EQ(Call(object, L"GR\u00d6\u00dfE\u0436"), "string first GR\xc3\x96\xc3\x9f"
                                                      "E\xd0\xb6()");
    EXPECT_EQ(Call(object, L"Grosse"), "! Identifier 'Grosse' is not a method of 'recorder'");
}

TEST_F(MethodTable, SaysWhatItDoesNotFind) {
    RecorderWith<OwnFirst> object;
    EXPECT_EQ(Call(object, L"Foo"), "! Identifier 'Foo' is not a method of 'recorder'");
    EXPECT_EQ(Call(object, L"fOO"), "! Identifier 'fOO' is not a method of 'recorder'");
    EXPECT_EQ(Call(object, L"Extra2"), "! Identifier 'Extra2' is not a method of 'recorder'");
    EXPECT_EQ(Call(object, L"Extr"), "! Identifier 'Extr' is not a method of 'recorder'");
    EXPECT_EQ(Call(object, L""), "! Identifier '' is not a method of 'recorder'");
    const Ref<CountedElement> argument = Make<CountedElement>(nullptr);
    EXPECT_EQ(Call(object, L"Foo", {argument.Share()}), "! Identifier 'Foo' is not a method of 'recorder'");
    EXPECT_EQ(argument->Evaluations(), 0);
}

TEST_F(MethodTable, MayBeEmpty) {
    RecorderWith<Nothing> object;
    EXPECT_EQ(Call(object, L"ToString"), "! Identifier 'ToString' is not a method of 'recorder'");
    EXPECT_EQ(object.FindMethodEntry(Nothing(), OrvStringT(L"ToString")), nullptr);
}

/// Three classes whose tables chain one to the next.
class Grandparent : public Recorder {
public:
    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }
    const MethodMap* _GetMethodMap() const {
        static const MethodMap table[] = {First(L"A"), First(L"B"), First(L"C"), MethodMap::End()};
        return table;
    }
};

class Parent : public Grandparent {
public:
    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }
    const MethodMap* _GetMethodMap() const {
        static const MethodMap table[] = {
            Second(L"A"), MethodMap::Chain(&Grandparent::_GetMethodMap),
            Second(L"C"), // never reached
            Second(L"D"), MethodMap::End(),
        };
        return table;
    }
};

class Child : public Parent {
public:
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {
            MethodMap::Chain(&ObjectBase::_GetMethodMap),
            MethodMap::Chain(&Parent::_GetMethodMap),
            MethodMap::End(),
        };
        return table;
    }
};

TEST_F(MethodTable, FollowsChainsOfChains) {
    Child object;
    EXPECT_EQ(Call(object, L"a"), "string second a()");
    EXPECT_EQ(Call(object, L"b"), "string first b()");
    EXPECT_EQ(Call(object, L"c"), "string first c()");
    EXPECT_EQ(Call(object, L"d"), "string second d()");
    EXPECT_EQ(Call(object, L"typename"), "string recorder");
    EXPECT_EQ(Call(object, L"e"), "! Identifier 'e' is not a method of 'recorder'");
}

TEST_F(MethodTable, IsSearchedAsFindMethodEntryTells) {
    Child object;
    const MethodMap* const table = object.GetMethodMap();
    const MethodMap* const found = object.FindMethodEntry(table, OrvStringT(L"D"));
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found->name, L"D");
    EXPECT_STREQ(found->signature, L"");
    EXPECT_FALSE(found->isStatic);
    EXPECT_EQ(object.FindMethodEntry(table, OrvStringT(L"d")), found);
    EXPECT_EQ(object.FindMethodEntry(table, OrvStringT(L"help")), nullptr) << "help is no row of any table";

    const MethodMap* const common = object.FindMethodEntry(table, OrvStringT(L"TYPENAME"));
    ASSERT_NE(common, nullptr);
    EXPECT_STREQ(common->name, L"TypeName");
    EXPECT_TRUE(common->isStatic);

    RecorderWith<CatchAllFirst> any;
    const MethodMap* const caught = any.FindMethodEntry(CatchAllFirst(), OrvStringT(L"Hidden"));
    ASSERT_NE(caught, nullptr);
    EXPECT_STREQ(caught->name, L"");
    // Any table may be asked for, not only the object's own.
    EXPECT_EQ(object.FindMethodEntry(CatchAllFirst(), OrvStringT(L"Hidden")), caught);
}

/// A value whose class is a type object now and then.
class TypeRecorder : public RecorderWith<CatchAllLast> {
public:
    bool IsStaticInstance() const override { return true; }
};

const MethodMap* StaticRows() {
    static const MethodMap table[] = {
        Recorder::Static(L"Make", L"i"),
        Recorder::First(L"Use", L"I"),
        Recorder::Common(),
        MethodMap::End(),
    };
    return table;
}

class StaticRecorder : public RecorderWith<StaticRows> {
public:
    bool IsStaticInstance() const override { return true; }
};

TEST_F(MethodTable, LetsTypeObjectsCallStaticMethodsOnly) {
    StaticRecorder type;
    EXPECT_EQ(Call(type, L"make"), "string first make(-)");
    EXPECT_EQ(Call(type, L"TypeName"), "string recorder");
    EXPECT_EQ(Call(type, L"ToString"),
              "! Unable to call non-static method 'ToString' of class 'recorder' without a class instance");
    EXPECT_EQ(Call(type, L"Foo"), "! Identifier 'Foo' is not a method of 'recorder'");
    RecorderWith<StaticRows> value;
    EXPECT_EQ(Call(value, L"Make"), "string first Make(-)") << "a value may call them too";
}

TEST_F(MethodTable, RefusesBeforeItLooksAtArguments) {
    StaticRecorder type;
    const Ref<CountedElement> argument = Make<CountedElement>(new ObjectInt(1));
    EXPECT_EQ(Call(type, L"use"),
              "! Unable to call non-static method 'use' of class 'recorder' without a class instance");
    EXPECT_EQ(Call(type, L"USE", {argument.Share()}),
              "! Unable to call non-static method 'USE' of class 'recorder' without a class instance");
    EXPECT_EQ(argument->Evaluations(), 0);
}

TEST_F(MethodTable, CountsACatchAllAsNotStatic) {
    TypeRecorder type;
    EXPECT_EQ(Call(type, L"Anything"),
              "! Unable to call non-static method 'Anything' of class 'recorder' without a class instance");
}

TEST_F(MethodTable, ServesTheTypeObjectsOfTheLanguage) {
    Host host;
    EXPECT_EQ(host.Run(L"int.TypeName()"), "string int");
    EXPECT_EQ(host.Run(L"double.TypeName()"), "string double");
    EXPECT_EQ(host.Run(L"bool.TypeName()"), "string bool");
    EXPECT_EQ(host.Run(L"string.TypeName()"), "string string");
    EXPECT_EQ(host.Run(L"int.Abs()"),
              "! Unable to call non-static method 'Abs' of class 'int' without a class instance");
    EXPECT_EQ(host.Run(L"int.ToString()"),
              "! Unable to call non-static method 'ToString' of class 'int' without a class instance");
    EXPECT_EQ(host.Run(L"double.round(1, 2, 3)"),
              "! Unable to call non-static method 'round' of class 'double' without a class instance");
    EXPECT_EQ(host.Run(L"string.This()"),
              "! Unable to call non-static method 'This' of class 'string' without a class instance");
    EXPECT_EQ(host.Run(L"bool.IsNull()"),
              "! Unable to call non-static method 'IsNull' of class 'bool' without a class instance");
    EXPECT_EQ(host.Run(L"int.Foo()"), "! Identifier 'Foo' is not a method of 'int'");
}

// ---- rows for another base of the class ----

/// The second base of a class with two: what its rows call must be reached where it lies in the whole object.
class Attachment : public ObjectBase {
public:
    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"attachment"); }

    IObject* Method_Weight(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
        return new ObjectInt(weight);
    }
    const MethodMap* AttachmentRows() const {
        // A table that tells by the object it is asked of whether it was reached rightly.
        static const MethodMap right[] = {MethodMap::Method(L"Reached", L"", &Attachment::Method_Weight),
                                          MethodMap::End()};
        static const MethodMap wrong[] = {MethodMap::End()};
        return weight == 42 ? right : wrong;
    }

protected:
    int weight = 42;
};

class Letter : public Recorder, public Attachment {
public:
    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"letter"); }
    OrvStringT ToString() const override { return OrvStringT(); }
    const MethodMap* GetMethodMap() const override {
        const MethodMap* const table = Table();
        return table;
    }
    int AttachmentOffset() const {
        const auto* const mine = static_cast<const ObjectBase*>(static_cast<const Recorder*>(this));
        const auto* const other = static_cast<const ObjectBase*>(static_cast<const Attachment*>(this));
        return static_cast<int>(reinterpret_cast<const char*>(other) - reinterpret_cast<const char*>(mine));
    }

private:
    const MethodMap* Table() const {
        static const std::array<MethodMap, 4> table = [this] {
            MethodMap row = MethodMap::Method(L"Weight", L"", &Attachment::Method_Weight);
            row.handlerAdjust = AttachmentOffset();
            MethodMap chain;
            chain.base = static_cast<MapGetter>(&Attachment::AttachmentRows);
            chain.baseAdjust = AttachmentOffset();
            return std::array<MethodMap, 4>{row, chain, Recorder::First(L"Own"), MethodMap::End()};
        }();
        return table.data();
    }
};

TEST_F(MethodTable, AdjustsTheObjectForRowsOfAnotherBase) {
    Letter letter;
    IObject& object = static_cast<Recorder&>(letter);
    ASSERT_NE(letter.AttachmentOffset(), 0);
    EXPECT_EQ(Call(object, L"Weight"), "int 42");
    EXPECT_EQ(Call(object, L"Own"), "string first Own()");
    EXPECT_NE(static_cast<Recorder&>(letter).FindMethodEntry(letter.GetMethodMap(), OrvStringT(L"reached")), nullptr);
}

// ---- what a handler gets ----

/// Checks what it is called with.
class Witness : public CountedObject {
public:
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {MethodMap::Method(L"Look", L"", &Witness::Method_Look), MethodMap::End()};
        return table;
    }
    QueryEngine* engine = nullptr;
    IError** err = nullptr;
    OrvStringT name;

private:
    IObject* Method_Look(QueryEngine* callEngine, const OrvStringT& callName, const ObjectList&, IError** callErr) {
        engine = callEngine;
        name = callName;
        err = callErr;
        return nullptr;
    }
};

TEST_F(MethodTable, HandsEngineNameAndErrorToTheHandler) {
    Witness witness;
    QueryEngine engine;
    ErrorSlot error;
    const QueryElementList none;
    EXPECT_EQ(witness.Invoke(&engine, L"loOK", none, error.Slot()), nullptr);
    EXPECT_EQ(witness.engine, &engine);
    EXPECT_EQ(witness.err, error.Slot());
    EXPECT_EQ(witness.name, L"loOK");
    EXPECT_TRUE(error.IsEmpty());
    EXPECT_EQ(witness.Invoke(nullptr, L"Look", none, nullptr), nullptr);
    EXPECT_EQ(witness.engine, nullptr);
    EXPECT_EQ(witness.err, nullptr);
}

const MethodMap* FailingRows() {
    static const MethodMap table[] = {
        Recorder::Fail(L"Fail", L"o*"),
        Recorder::FailSilently(L"Silent", L"o*"),
        MethodMap::End(),
    };
    return table;
}

TEST_F(MethodTable, HandsTheHandlersFailureOn) {
    RecorderWith<FailingRows> object;
    EXPECT_EQ(Call(object, L"fail"), "! handler failed");
    EXPECT_EQ(Call(object, L"silent"), "!");
    // The arguments go with the call, whatever comes of it.
    EXPECT_EQ(Call(object, L"fail", {new CountedElement(new CountedObject()), nullptr}), "! handler failed");
}

TEST_F(MethodTable, ThisIsTheObjectItselfWithOneMoreReference) {
    const Ref<CountedObject> object = Make<CountedObject>();
    QueryEngine engine;
    const QueryElementList none;
    const Ref<IObject> self(object->Invoke(&engine, L"this", none, nullptr));
    EXPECT_EQ(self.Get(), object.Get());
    EXPECT_EQ(object->References(), 2);
}

TEST_F(MethodTable, CommonMethodsAnswerForAnyValue) {
    CountedObject object("", ORV_TEXT(L" 42 "));
    EXPECT_EQ(Call(object, L"ToBool"), "bool true");
    EXPECT_EQ(Call(object, L"ToInt"), "int 42");
    EXPECT_EQ(Call(object, L"ToDouble"), "double 42");
    EXPECT_EQ(Call(object, L"ToString"), "string  42 ");
    EXPECT_EQ(Call(object, L"TypeName"), "string counted");
    EXPECT_EQ(Call(object, L"IsNumeric"), "bool true");
    EXPECT_EQ(Call(object, L"IsNull"), "bool false");

    CountedObject word("", ORV_TEXT(L"word"));
    EXPECT_EQ(Call(word, L"ToBool"), "! Cannot convert string 'word' to Boolean");
    EXPECT_EQ(Call(word, L"ToInt"), "! Cannot convert string 'word' to Integer");
    EXPECT_EQ(Call(word, L"ToDouble"), "! Cannot convert string 'word' to Double");
    EXPECT_EQ(Call(word, L"IsNumeric"), "bool false") << "never an error";
    EXPECT_EQ(Call(word, L"ToInt", {nullptr}), "! Too many parameters specified for method ToInt. It expects only 0");
}

} // namespace
} // namespace OrvUQL::Tests
