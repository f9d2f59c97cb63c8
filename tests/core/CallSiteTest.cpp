// One call site, many targets. A call site may remember where it found a name; none of these targets may get what was
// found for another.

#include <OrvUQL/OrvUQL.h>

#include "core/Recorder.h"
#include "support/Attempt.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using MethodMap = ObjectBase::MethodMap;

/// An engine, and one call of a method on whatever the property source is at the time.
class CallSite : public CountedTest {
protected:
    Ref<IQueryElement> Parse(const wchar_t* query) { return host.Parse(query); }

    /// Evaluates the tree over a target that is handed over.
    std::string Over(const Ref<IQueryElement>& tree, IObject* target) {
        host.engine.SetPropertySource(target);
        target->Release();
        const std::string outcome = host.Run(*tree);
        host.engine.SetPropertySource(nullptr);
        return outcome;
    }

    Host host;
};

const MethodMap* NameFirst() {
    static const MethodMap table[] = {Recorder::First(L"Name", L"i"), Recorder::Common(), MethodMap::End()};
    return table;
}

const MethodMap* NameSecond() {
    static const MethodMap table[] = {Recorder::Second(L"Other"), Recorder::Second(L"Name", L"S"), MethodMap::End()};
    return table;
}

const MethodMap* NameLess() {
    static const MethodMap table[] = {Recorder::First(L"Other"), Recorder::Common(), MethodMap::End()};
    return table;
}

const MethodMap* NameAny() {
    static const MethodMap table[] = {Recorder::Any(L"o*"), MethodMap::End()};
    return table;
}

const MethodMap* NameStatic() {
    static const MethodMap table[] = {Recorder::Static(L"Name", L"o*"), MethodMap::End()};
    return table;
}

/// Answers by itself, without a table.
class OwnInvoke : public CountedObject {
public:
    IObject* Invoke(QueryEngine*, const wchar_t* name, const QueryElementList& args, IError**) override {
        return new ObjectString(OrvStringT(L"own ") + name + L"/" +
                                OrvUtils::String::ToStringW(static_cast<int>(args.size())));
    }
};

TEST_F(CallSite, ServesTargetsOfDifferentClassesInTurn) {
    const Ref<IQueryElement> tree = Parse(L"@name(7)");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new RecorderWith<NameFirst>()), "string first name(int 7)");
        EXPECT_EQ(Over(tree, new RecorderWith<NameSecond>()), "string second name(string 7)");
        EXPECT_EQ(Over(tree, new RecorderWith<NameLess>()), "! Identifier 'name' is not a method of 'recorder'");
        EXPECT_EQ(Over(tree, new RecorderWith<NameAny>()), "string any name(int 7)");
        EXPECT_EQ(Over(tree, new RecorderWith<NameStatic>()), "string first name(int 7)");
        EXPECT_EQ(Over(tree, new OwnInvoke()), "string own name/1");
        EXPECT_EQ(Over(tree, new ObjectNull()), "null null");
        EXPECT_EQ(Over(tree, new ObjectInt(1)), "! Identifier 'name' is not a method of 'int'");
        EXPECT_EQ(Over(tree, new ObjectExpression(nullptr)), "!");
    }
}

TEST_F(CallSite, ServesTheLibrarysClassesInTurn) {
    const Ref<IQueryElement> text = Parse(L"@ToString()");
    const Ref<IQueryElement> absolute = Parse(L"@abs()");
    const Ref<IQueryElement> unit = Parse(L"@Round(1)");
    const Ref<IQueryElement> help = Parse(L"@help()");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(text, new ObjectInt(-1)), "string -1");
        EXPECT_EQ(Over(text, new ObjectDouble(-1.5)), "string -1.5");
        EXPECT_EQ(Over(text, new ObjectNull()), "string null");
        EXPECT_EQ(Over(text, new ObjectGlobal()), "! Identifier 'ToString' is not a method of 'global'");
        EXPECT_EQ(Over(text, new ObjectArray(ObjectList())), "string ()");
        EXPECT_EQ(Over(absolute, new ObjectInt(-1)), "int 1");
        EXPECT_EQ(Over(absolute, new ObjectDouble(-1.5)), "double 1.5");
        EXPECT_EQ(Over(absolute, new ObjectBool(true)), "! Identifier 'abs' is not a method of 'bool'");
        EXPECT_EQ(Over(unit, new ObjectDouble(1.25)), "double 1.3");
        EXPECT_EQ(Over(unit, new ObjectUnit(nullptr, 1.25, 0, false)), "unit 1.3");
        EXPECT_EQ(Over(help, new ObjectBool(true)).substr(0, 20), "string bool.ToBool()");
        EXPECT_EQ(Over(help, new ObjectInt(1)).substr(0, 16), "string int.Abs()");
    }
}

// Values and the type object share a table, and yet not the answer.
TEST_F(CallSite, TellsTypeObjectsFromValues) {
    const Ref<IQueryElement> absolute = Parse(L"@Abs()");
    const Ref<IQueryElement> name = Parse(L"@TypeName()");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(absolute, new ObjectInt(-5)), "int 5");
        EXPECT_EQ(Over(absolute, new ObjectInt()),
                  "! Unable to call non-static method 'Abs' of class 'int' without a class instance");
        EXPECT_EQ(Over(name, new ObjectInt()), "string int");
        EXPECT_EQ(Over(name, new ObjectInt(-5)), "string int");
    }
}

TEST_F(CallSite, ChecksArgumentsEveryTime) {
    const Ref<CountedObject> argument = Make<CountedObject>("", ORV_TEXT(L"5"));
    host.engine.SetVariable(argument.Get());
    const Ref<IQueryElement> tree = Parse(L"@name($this())");
    EXPECT_EQ(Over(tree, new RecorderWith<NameFirst>()), "string first name(int 5)");
    EXPECT_EQ(Over(tree, new RecorderWith<NameFirst>()), "string first name(int 5)");
    const Ref<CountedObject> word = Make<CountedObject>("", ORV_TEXT(L"word"));
    host.engine.SetVariable(word.Get());
    EXPECT_EQ(Over(tree, new RecorderWith<NameFirst>()), "! Cannot convert string 'word' to Integer");
    host.engine.SetVariable(argument.Get());
    EXPECT_EQ(Over(tree, new RecorderWith<NameFirst>()), "string first name(int 5)");
    host.engine.SetVariable(nullptr);
}

/// Passes each call on under another name: "name" becomes "Other", everything else "Name".
class Renamer : public RecorderWith<NameSecond> {
public:
    IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) override {
        const OrvStringT written(name);
        return Recorder::Invoke(engine, written.CompareNoCase(L"name") == 0 ? L"Other" : L"Name", args, err);
    }
};

TEST_F(CallSite, KeepsToTheNameThatAHostForwardsUnder) {
    const Ref<IQueryElement> name = Parse(L"@Name");
    const Ref<IQueryElement> other = Parse(L"@Other('x')");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(name, new Renamer()), "string second Other()");
        EXPECT_EQ(Over(other, new Renamer()), "string second Name(string x)");
        EXPECT_EQ(Over(name, new RecorderWith<NameFirst>()), "string first Name(-)");
        EXPECT_EQ(Over(other, new RecorderWith<NameLess>()),
                  "! Too many parameters specified for method Other. It expects only 0");
    }
}

/// Passes each call on as it is: first to an object of its own, then to itself.
class Proxy : public RecorderWith<NameSecond> {
public:
    /// Takes `proxyTarget` over.
    explicit Proxy(IObject* proxyTarget) : target(proxyTarget) {}

    IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) override {
        const Ref<IObject> first(target->Invoke(engine, name, args, nullptr));
        const Ref<IObject> second(Recorder::Invoke(engine, name, args, err));
        if (!second) {
            return nullptr;
        }
        return new ObjectString(OrvStringT::FromUtf8(Describe(first.Get()) + " / " + Describe(second.Get())));
    }

private:
    std::string Describe(const IObject* object) { return Tests::Describe(object); }
    Ref<IObject> target;
};

TEST_F(CallSite, ServesAProxyAndWhatIsBehindIt) {
    const Ref<IQueryElement> tree = Parse(L"@name(1)");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new Proxy(new RecorderWith<NameFirst>())),
                  "string string first name(int 1) / string second name(string 1)");
        EXPECT_EQ(Over(tree, new Proxy(new RecorderWith<NameLess>())), "string (null) / string second name(string 1)");
        EXPECT_EQ(Over(tree, new Proxy(new Proxy(new ObjectNull()))),
                  "string string null null / string second name(string 1) / string second name(string 1)");
        EXPECT_EQ(Over(tree, new RecorderWith<NameSecond>()), "string second name(string 1)");
    }
}

/// Evaluates another tree while it is being called, then goes on with its own call.
class Evaluator : public RecorderWith<NameSecond> {
public:
    explicit Evaluator(const Ref<IQueryElement>& tree) : inner(tree.Get()) {}

    IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) override {
        const Ref<RecorderWith<NameFirst>> source = Make<RecorderWith<NameFirst>>();
        const Ref<IObject> outer(engine->GetPropertySource());
        outer->AddRef();
        engine->SetPropertySource(source.Get());
        const Ref<IObject> nested(engine->Evaluate(inner, err));
        engine->SetPropertySource(outer.Get());
        EXPECT_EQ(Tests::Describe(nested.Get()), "string first name(int 1)");
        return Recorder::Invoke(engine, name, args, err);
    }

private:
    IQueryElement* inner;
};

TEST_F(CallSite, SurvivesANestedEvaluationOfTheSameTree) {
    const Ref<IQueryElement> tree = Parse(L"@name(1)");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new Evaluator(tree)), "string second name(string 1)");
    }
}

TEST_F(CallSite, SurvivesANestedEvaluationOfAnotherTree) {
    const Ref<IQueryElement> tree = Parse(L"@Name('2')");
    const Ref<IQueryElement> inner = Parse(L"@name(1)");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new Evaluator(inner)), "string second Name(string 2)");
        EXPECT_EQ(Over(inner, new Evaluator(inner)), "string second name(string 1)");
    }
}

// The nested tree has gone, and its call sites with it, when the outer call looks for its name.
TEST_F(CallSite, SurvivesATreeThatComesAndGoesInsideTheCall) {
    class Passing : public RecorderWith<NameFirst> {
    public:
        IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) override {
            const Ref<IQueryElement> tree(engine->ParseQuery(L"(5).Abs()", err));
            const Ref<IObject> five(engine->Evaluate(tree.Get(), err));
            EXPECT_EQ(Tests::Describe(five.Get()), "int 5");
            return Recorder::Invoke(engine, name, args, err);
        }
    };
    const Ref<IQueryElement> tree = Parse(L"@name(1)");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new Passing()), "string first name(int 1)");
    }
}

/// A method that evaluates its own call site again, over itself, until it has counted down.
class Countdown : public Recorder {
public:
    explicit Countdown(int from) : left(from) {}
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {MethodMap::Method(L"Count", L"", &Countdown::Method_Count), MethodMap::End()};
        return table;
    }
    IQueryElement* tree = nullptr;

private:
    IObject* Method_Count(QueryEngine* engine, const OrvStringT&, const ObjectList&, IError** err) {
        if (left-- == 0) {
            return new ObjectString(L"done");
        }
        return engine->Evaluate(tree, err);
    }
    int left;
};

TEST_F(CallSite, MayBeEnteredAgainByItsOwnMethod) {
    const Ref<IQueryElement> tree = Parse(L"@count");
    const Ref<Countdown> source = Make<Countdown>(20);
    source->tree = tree.Get();
    host.engine.SetPropertySource(source.Get());
    const Ref<IObject> value(host.engine.Evaluate(tree.Get(), nullptr));
    EXPECT_EQ(Describe(value.Get()), "string done");
    host.engine.SetPropertySource(nullptr);
}

/// The table is the base's; what it chains to is asked of the object, and so is the derived class's.
class Shape : public Recorder {
public:
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {First(L"Common"), MethodMap::Chain(&Shape::OwnRows), MethodMap::End()};
        return table;
    }
    virtual const MethodMap* OwnRows() const { return NameFirst(); }
};

class Circle : public Shape {
public:
    const MethodMap* OwnRows() const override { return NameSecond(); }
};

TEST_F(CallSite, TellsClassesApartThatShareATableWithAVirtualChain) {
    const Ref<IQueryElement> tree = Parse(L"@name(1)");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new Shape()), "string first name(int 1)");
        EXPECT_EQ(Over(tree, new Circle()), "string second name(string 1)");
    }
}

TEST_F(CallSite, ServesSeveralEngines) {
    const Ref<IQueryElement> tree = Parse(L"@name(1)");
    Host second;
    const Ref<RecorderWith<NameFirst>> one = Make<RecorderWith<NameFirst>>();
    const Ref<RecorderWith<NameSecond>> other = Make<RecorderWith<NameSecond>>();
    host.engine.SetPropertySource(one.Get());
    second.engine.SetPropertySource(other.Get());
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(host.Run(*tree), "string first name(int 1)");
        EXPECT_EQ(second.Run(*tree), "string second name(string 1)");
    }
    host.engine.SetPropertySource(nullptr);
}

TEST_F(CallSite, OfATreeEvaluatedWithoutAnEngineWorksToo) {
    QueryElementList none;
    ElementMethod call(new CountedElement(new RecorderWith<NameFirst>()), L"name", none, false, 0);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Attempt([&](IError** err) { return call.Evaluate(nullptr, err); }), "string first name(-)");
    }
}

// Several call sites in one tree, each over several classes: a chain, its arguments and a group.
TEST_F(CallSite, EachRemembersForItself) {
    const Ref<IQueryElement> tree =
        Parse(L"@This().Name(@This().TypeName().ToString() == 'recorder' ? 3 : 4).ToString()");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new RecorderWith<NameFirst>()), "string first Name(int 3)");
        EXPECT_EQ(Over(tree, new ObjectInt(1)), "! Identifier 'Name' is not a method of 'int'");
        EXPECT_EQ(Over(tree, new RecorderWith<NameLess>()), "! Identifier 'Name' is not a method of 'recorder'");
        EXPECT_EQ(Over(tree, new ObjectNull()), "string null");
    }
}

// ---- names without arguments, read by an operator: the shortest way there is ----

const MethodMap* ReadFirst() {
    static const MethodMap table[] = {Recorder::First(L"Name"), MethodMap::End()};
    return table;
}

const MethodMap* ReadSecond() {
    static const MethodMap table[] = {Recorder::Second(L"Name", L"s"), MethodMap::End()};
    return table;
}

/// Has a table, and is not asked through it.
class OwnInvokeAndTable : public RecorderWith<ReadFirst> {
public:
    IObject* Invoke(QueryEngine*, const wchar_t*, const QueryElementList&, IError**) override {
        return new ObjectString(L"own");
    }
};

/// Type objects and values of one class.
class Statue : public RecorderWith<ReadFirst> {
public:
    explicit Statue(bool isType) : isTypeObject(isType) {}
    bool IsStaticInstance() const override { return isTypeObject; }

private:
    bool isTypeObject;
};

TEST_F(CallSite, OfAReadServesAllClassesInTurn) {
    const Ref<IQueryElement> tree = Parse(L"'<' + @name + '>'");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new RecorderWith<ReadFirst>()), "string <first name()>");
        EXPECT_EQ(Over(tree, new RecorderWith<ReadSecond>()), "string <second name(-)>");
        EXPECT_EQ(Over(tree, new OwnInvokeAndTable()), "string <own>");
        EXPECT_EQ(Over(tree, new OwnInvoke()), "string <own name/0>");
        EXPECT_EQ(Over(tree, new Statue(false)), "string <first name()>");
        EXPECT_EQ(Over(tree, new Statue(true)),
                  "! Unable to call non-static method 'name' of class 'recorder' without a class instance");
        EXPECT_EQ(Over(tree, new ObjectString(L"text")), "! Identifier 'name' is not a method of 'string'");
    }
}

/// Passes calls on without their arguments.
class Silencer : public CountedObject {
public:
    /// Takes the target over.
    explicit Silencer(IObject* silencedTarget) : target(silencedTarget) {}

    IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList&, IError** err) override {
        return target->Invoke(engine, name, QueryElementList(), err);
    }

private:
    Ref<IObject> target;
};

// What a call without arguments found is not for one with arguments, though the site be the same.
TEST_F(CallSite, ChecksArgumentsAlsoAfterACallWithout) {
    const Ref<IQueryElement> read = Parse(L"'<' + @name(7) + '>'");
    const Ref<IQueryElement> call = Parse(L"@name(7)");
    const Ref<IQueryElement> length = Parse(L"1 + @Length(7)");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(read, new Silencer(new RecorderWith<ReadFirst>())), "string <first name()>");
        EXPECT_EQ(Over(read, new RecorderWith<ReadFirst>()),
                  "! Too many parameters specified for method name. It expects only 0");
        EXPECT_EQ(Over(call, new Silencer(new RecorderWith<ReadFirst>())), "string first name()");
        EXPECT_EQ(Over(call, new RecorderWith<ReadFirst>()),
                  "! Too many parameters specified for method name. It expects only 0");
        EXPECT_EQ(Over(length, new Silencer(new ObjectString(L"text"))), "int 5");
        EXPECT_EQ(Over(length, new ObjectString(L"text")),
                  "! Too many parameters specified for method Length. It expects only 0");
    }
}

TEST_F(CallSite, OfAReadTellsTypeObjectsFromValues) {
    const Ref<IQueryElement> tree = Parse(L"1 + @Length");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new ObjectString(L"text")), "int 5");
        EXPECT_EQ(Over(tree, new ObjectString()),
                  "! Unable to call non-static method 'Length' of class 'string' without a class instance");
        EXPECT_EQ(Over(tree, new ObjectInt(1)), "! Identifier 'Length' is not a method of 'int'");
    }
}

/// Takes itself out of the engine, or fails for want of memory, in the middle of a read.
class Fickle : public Recorder {
public:
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {MethodMap::Method(L"Leave", L"", &Fickle::Method_Leave),
                                          MethodMap::Method(L"Lack", L"", &Fickle::Method_Lack), MethodMap::End()};
        return table;
    }

private:
    IObject* Method_Leave(QueryEngine* engine, const OrvStringT&, const ObjectList&, IError**) {
        engine->SetPropertySource(nullptr);
        return new ObjectInt(number); // still there
    }
    IObject* Method_Lack(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) { throw std::bad_alloc(); }

    int number = 7;
};

TEST_F(CallSite, OfAReadHoldsItsTarget) {
    const Ref<IQueryElement> tree = Parse(L"@leave + 1");
    for (int round = 0; round < 3; ++round) {
        host.engine.SetPropertySource(Make<Fickle>().Get());
        const Ref<IObject> value(host.engine.Evaluate(tree.Get(), nullptr));
        EXPECT_EQ(Describe(value.Get()), "int 8");
        EXPECT_EQ(host.engine.GetPropertySource(), nullptr);
    }
}

TEST_F(CallSite, OfAReadReportsTheEndOfMemory) {
    const Ref<IQueryElement> tree = Parse(L"2 * @lack");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new Fickle()), "! Internal error");
        EXPECT_EQ(host.engine.GetErrorPosition(), 4);
    }
}

// ---- methods of texts, which go from call to call without an object around them ----

/// Has a method of a text's name.
const MethodMap* TrimFirst() {
    static const MethodMap table[] = {Recorder::First(L"Trim", L"o"), Recorder::Common(), MethodMap::End()};
    return table;
}

TEST_F(CallSite, OfATextsMethodServesAllClassesInTurn) {
    const Ref<IQueryElement> tree = Parse(L"@Trim().ToUpper()");
    const Ref<IQueryElement> argument = Parse(L"@this().Trim('x').SubStr(1)");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new ObjectString(L" text ")), "string TEXT");
        EXPECT_EQ(Over(tree, new RecorderWith<TrimFirst>()), "string FIRST TRIM(-)");
        EXPECT_EQ(Over(tree, new OwnInvoke()), "string OWN TRIM/0");
        EXPECT_EQ(Over(tree, new ObjectInt(1)), "! Identifier 'Trim' is not a method of 'int'");
        EXPECT_EQ(Over(tree, new ObjectString()),
                  "! Unable to call non-static method 'Trim' of class 'string' without a class instance");
        EXPECT_EQ(Over(tree, new Silencer(new ObjectString(L" text "))), "string TEXT");
        EXPECT_EQ(Over(argument, new ObjectString(L"xtext")), "string ext");
        EXPECT_EQ(Over(argument, new RecorderWith<TrimFirst>()), "string irst Trim(string x)");
        EXPECT_EQ(Over(argument, new ObjectString()),
                  "! Unable to call non-static method 'this' of class 'string' without a class instance");
    }
}

// The first evaluation makes each call on an object, those with limits always do; the others need not.
TEST_F(CallSite, OfATextsMethodGivesTheSameWithAndWithoutAnObject) {
    const wchar_t* const calls[] = {
        L"Length()",
        L"Empty()",
        L"ToUpper()",
        L"ToLower()",
        L"Trim()",
        L"LTrim()",
        L"RTrim()",
        L"SubStr(1)",
        L"length",
        L"TOUPPER",
        L"Trim('a\t ')",
        L"Trim('')",
        L"Trim(1)",
        L"Trim(null)",
        L"LTrim('\t')",
        L"RTrim(' ')",
        L"Delete(1)",
        L"SubStr()",
        L"SubStr(0, 3)",
        L"SubStr(0, 0)",
        L"SubStr(2, 1)",
        L"SubStr(2, -1)",
        L"SubStr(-3)",
        L"SubStr(-3, 2)",
        L"SubStr(-3, -2)",
        L"SubStr(-100, 2)",
        L"SubStr(100)",
        L"SubStr(100, -100)",
        L"SubStr(1, 2147483647)",
        L"SubStr(2147483647, 2147483647)",
        L"SubStr(-2147483647, -2147483647)",
        L"SubStr(1.6)",
        L"SubStr('1', true)",
        L"SubStr('one')",
        L"SubStr(1, null)",
        L"SubStr(1 + 1, 1)",
        L"SubStr(1, 2, 3)",
        L"SubStr(9999999999)",
        L"Length(1)",
        L"Empty(1)",
        L"ToUpper(1)",
        L"ToUpper().ToLower().Trim().SubStr(1).Length().Abs()",
        L"ToTitle().Trim().ToTitle()",
        L"Trim().Foo",
        L"Trim().Split('b').First().ToUpper()",
    };
    Host limited;
    limited.engine.SetLimits({});
    for (const wchar_t* const call : calls) {
        const Ref<IQueryElement> ofSource = Parse((OrvStringT(L"@this.") + call).GetString());
        const Ref<IQueryElement> ofLiteral = Parse((OrvStringT(L"' aBc\t'.") + call).GetString());
        const Ref<ObjectString> source = Make<ObjectString>(L" aBc\t");
        limited.engine.SetPropertySource(source.Get());
        host.engine.SetPropertySource(source.Get());
        const std::string first = limited.Run(*ofSource);
        const int position = limited.engine.GetErrorPosition();
        for (int round = 0; round < 3; ++round) {
            EXPECT_EQ(host.Run(*ofSource), first) << Utf8(call);
            EXPECT_EQ(host.engine.GetErrorPosition(), position) << Utf8(call);
            EXPECT_EQ(limited.Run(*ofSource), first) << Utf8(call);
            EXPECT_EQ(host.Run(*ofLiteral), first) << Utf8(call);
            EXPECT_EQ(limited.Run(*ofLiteral), first) << Utf8(call);
        }
        EXPECT_EQ(Describe(source.Get()), "string  aBc\t");
        limited.engine.SetPropertySource(nullptr);
        host.engine.SetPropertySource(nullptr);
    }
}

/// A host's property that gives something else each time.
class Varied : public CountedObject {
public:
    enum class Gives { Text, Null, Number, Object, TypeObject, Nothing };

    explicit Varied(Gives given) : gives(given) {}
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {MethodMap::Property<&Varied::GetName>(L"Name"), MethodMap::End()};
        return table;
    }

private:
    PropertyValue GetName() const {
        switch (gives) {
        case Gives::Text:
            return PropertyValue(L" text ");
        case Gives::Null:
            return PropertyValue();
        case Gives::Number:
            return PropertyValue(5);
        case Gives::Object:
            return PropertyValue(new RecorderWith<TrimFirst>());
        case Gives::TypeObject:
            return PropertyValue(new ObjectString());
        case Gives::Nothing:
            break;
        }
        throw std::bad_alloc();
    }

    Gives gives;
};

TEST_F(CallSite, OfATextsMethodTakesWhatAPropertyGives) {
    const Ref<IQueryElement> tree = Parse(L"1 + @name.Trim().ToUpper()");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(tree, new Varied(Varied::Gives::Text)), "string 1TEXT");
        EXPECT_EQ(Over(tree, new Varied(Varied::Gives::Object)), "string 1FIRST TRIM(-)");
        EXPECT_EQ(Over(tree, new Varied(Varied::Gives::Text)), "string 1TEXT");
        EXPECT_EQ(Over(tree, new Varied(Varied::Gives::Number)), "! Identifier 'Trim' is not a method of 'int'");
        EXPECT_EQ(host.engine.GetErrorPosition(), 10);
        EXPECT_EQ(Over(tree, new Varied(Varied::Gives::Text)), "string 1TEXT");
        EXPECT_EQ(Over(tree, new Varied(Varied::Gives::TypeObject)),
                  "! Unable to call non-static method 'Trim' of class 'string' without a class instance");
        EXPECT_EQ(Over(tree, new Varied(Varied::Gives::Text)), "string 1TEXT");
        EXPECT_EQ(Over(tree, new Varied(Varied::Gives::Nothing)), "! Internal error");
        EXPECT_EQ(host.engine.GetErrorPosition(), 4);
    }
    const Ref<IQueryElement> chain = Parse(L"@name.Trim().ToUpper()");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Over(chain, new Varied(Varied::Gives::Text)), "string TEXT");
        EXPECT_EQ(Over(chain, new Varied(Varied::Gives::Null)), "null null");
    }
}

// A value that is an item of an array as well, or a literal of the query, stays what it is.
TEST_F(CallSite, OfATextsMethodLeavesTheTextToOthers) {
    const Ref<IQueryElement> tree =
        Parse(L"array(' a ', 'B').Convert($item.Trim().ToUpper() + $item.ToLower() + $item + ' c '.Trim()).Join(';')");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(host.Run(*tree), "string A a  a c;BbBc");
    }
}

} // namespace
} // namespace OrvUQL::Tests
