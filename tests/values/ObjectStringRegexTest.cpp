// The methods of strings that take a regular expression, beyond what a query alone can show: the values that they make,
// the variable of RegReplaceEx, and arguments that no query can bring about.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "support/StackThread.h"
#include "values/CallHandler.h"
#include "values/HostTest.h"

#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>
#include <string>

namespace OrvUQL::Tests {
namespace {

const wchar_t* const allNames[] = {L"RegMatch",   L"RegMatchEx", L"RegContains",  L"RegContainsEx",
                                   L"RegReplace", L"RegSplit",   L"RegReplaceEx", L"RegFind"};

Ref<ObjectString> Text(const wchar_t* text) { return Make<ObjectString>(text); }

/// An expression that a test brings.
template <class Body> class BodyElement : public RefCountImpl<IQueryElement> {
public:
    explicit BodyElement(Body elementBody) : body(std::move(elementBody)) { Counted::Begin(); }
    BodyElement(const BodyElement&) = delete;
    BodyElement& operator=(const BodyElement&) = delete;
    ~BodyElement() override { Counted::End({}); }

    EType GetType() const override { return Object; }
    int GetStringPosition() const override { return 0; }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override { return body(engine, err); }

private:
    Body body;
};

template <class Body> IObject* Expression(Body body) {
    const Ref<BodyElement<Body>> element = Make<BodyElement<Body>>(std::move(body));
    return new ObjectExpression(element.Get());
}

using StringRegex = HostTest;

// ---- values ----

TEST_F(StringRegex, ListsAreNewArraysOfNewStrings) {
    SetValue(new ObjectString(L"a1b2"));
    const Ref<IObject> found = Evaluate(L"@RegFind('([a-z])(\\d)')");
    ASSERT_TRUE(found);
    EXPECT_EQ(ReferencesOf(found.Get()), 1);
    ASSERT_EQ(Items(found).size(), 2u);
    for (const IObject* const match : Items(found)) {
        EXPECT_EQ(match->GetType(), IObject::TypeArray);
        EXPECT_EQ(ReferencesOf(match), 1);
        const ObjectList& groups = dynamic_cast<const ObjectArray&>(*match).GetObjectList();
        ASSERT_EQ(groups.size(), 3u);
        for (const IObject* const group : groups) {
            EXPECT_EQ(group->GetType(), IObject::TypeString);
            EXPECT_EQ(ReferencesOf(group), 1);
        }
    }
}

TEST_F(StringRegex, ReceiverWithoutAMatchComesBackAsANewString) {
    SetValue(new ObjectString(L"abc"));
    const Ref<IObject> same = Evaluate(L"@RegReplace('x', 'y')");
    ASSERT_TRUE(same);
    EXPECT_NE(same.Get(), host.engine.GetPropertySource());
    EXPECT_EQ(ReferencesOf(same.Get()), 1);
    EXPECT_EQ(Describe(same.Get()), "string abc");
}

TEST_F(StringRegex, TextsMayHoldNul) {
    SetValue(new ObjectString(OrvStringT(L"a\0b\0c", 5)));
    EXPECT_EQ(Run(L"@RegSplit('\\0')"), "array (a,b,c)");
    EXPECT_EQ(Run(L"@RegReplace(chr(0), '-')"), "string a-b-c");
    EXPECT_EQ(Run(L"@RegMatch('a.b.c')"), "bool true");
}

// ---- RegReplaceEx ----

TEST_F(StringRegex, VariableIsTheArrayOfTheMatchesGroups) {
    int evaluations = 0;
    const Ref<CountedObject> outer = Make<CountedObject>();
    host.engine.SetVariable(outer.Get());
    const auto body = [&](QueryEngine* engine, IError**) -> IObject* {
        ++evaluations;
        const IObject* const variable = engine->GetVariable();
        EXPECT_EQ(variable->GetType(), IObject::TypeArray);
        EXPECT_EQ(ReferencesOf(variable), 1) << "only the engine's";
        EXPECT_EQ(dynamic_cast<const ObjectArray&>(*variable).GetCount(), 3);
        return new ObjectString(L"-");
    };
    const Ref<ObjectString> text = Text(L"a1b2");
    EXPECT_EQ(CallHandler(*text, L"RegReplaceEx", L"RegReplaceEx",
                          {new ObjectString(L"([a-z])(\\d)"), Expression(body), nullptr}, &host.engine),
              "string --");
    EXPECT_EQ(evaluations, 4) << "once a match, and the call is made twice";
    EXPECT_EQ(host.engine.GetVariable(), outer.Get());
}

TEST_F(StringRegex, ConversionOfTheValueSeesTheOuterVariable) {
    /// A host's value whose text depends on the engine's variable.
    class Onlooker : public CountedObject {
    public:
        explicit Onlooker(const QueryEngine& hostEngine) : engine(hostEngine) {}
        using CountedObject::ToString;
        bool ToString(OrvStringT& out, IError**) const override {
            out = engine.GetVariable()->GetType() == TypeArray ? L"inner" : L"outer";
            return true;
        }

    private:
        const QueryEngine& engine;
    };
    const Ref<CountedObject> outer = Make<CountedObject>();
    host.engine.SetVariable(outer.Get());
    const auto body = [](QueryEngine* engine, IError**) -> IObject* { return new Onlooker(*engine); };
    const Ref<ObjectString> text = Text(L"a1b2");
    EXPECT_EQ(CallHandler(*text, L"RegReplaceEx", L"RegReplaceEx",
                          {new ObjectString(L"\\d"), Expression(body), nullptr}, &host.engine),
              "string aouterbouter");
}

TEST_F(StringRegex, ExpressionMayKeepItsVariable) {
    std::vector<Ref<IObject>> kept;
    const auto body = [&](QueryEngine* engine, IError**) -> IObject* {
        engine->GetVariable()->AddRef();
        kept.emplace_back(engine->GetVariable());
        return new ObjectNull();
    };
    const Ref<ObjectString> text = Text(L"12");
    EXPECT_EQ(CallHandler(*text, L"RegReplaceEx", L"RegReplaceEx",
                          {new ObjectString(L"\\d"), Expression(body), nullptr}, &host.engine),
              "string nullnull");
    ASSERT_EQ(kept.size(), 4u);
    EXPECT_EQ(Describe(kept[0].Get()), "array (1)");
    EXPECT_EQ(Describe(kept[1].Get()), "array (2)");
}

TEST_F(StringRegex, FailureOfTheExpressionIsTheMethods) {
    SetValue(new ObjectString(L"a1b2"));
    EXPECT_EQ(Run(L"@RegReplaceEx('\\d', 1 / 0)"), "! Division By Zero");
    EXPECT_EQ(Run(L"@RegReplaceEx('x', 1 / 0)"), "string a1b2") << "never evaluated";
    EXPECT_EQ(host.engine.GetVariable(), nullptr);
    const Ref<ObjectString> text = Text(L"1");
    const auto silent = [](QueryEngine*, IError**) -> IObject* { return nullptr; };
    EXPECT_EQ(CallHandler(*text, L"RegReplaceEx", L"RegReplaceEx",
                          {new ObjectString(L"1"), Expression(silent), nullptr}, &host.engine),
              "!");
    const auto textless = [](QueryEngine*, IError**) -> IObject* { return new Stubborn(); };
    EXPECT_EQ(CallHandler(*text, L"RegReplaceEx", L"RegReplaceEx",
                          {new ObjectString(L"1"), Expression(textless), nullptr}, &host.engine),
              "! no text");
    EXPECT_EQ(host.engine.GetVariable(), nullptr);
}

TEST_F(StringRegex, ExceptionsOfTheExpressionPassThrough) {
    const Ref<ObjectString> text = Text(L"1");
    const auto call = [&](IObject* expression) {
        const ObjectBase::Handler handler = FindHandler(*text, L"RegReplaceEx");
        const ObjectList params{new ObjectString(L"1"), expression, nullptr};
        const Ref<IObject> unused((*text.*handler)(&host.engine, OrvStringT(L"RegReplaceEx"), params, nullptr));
    };
    const auto throwing = [](QueryEngine*, IError**) -> IObject* { throw std::logic_error("the host's"); };
    EXPECT_THROW(call(Expression(throwing)), std::logic_error);
    EXPECT_EQ(host.engine.GetVariable(), nullptr);
    // Of the very class that the methods catch from their own matching.
    const auto alike = [](QueryEngine*, IError**) -> IObject* {
        throw std::regex_error(std::regex_constants::error_paren);
    };
    EXPECT_THROW(call(Expression(alike)), std::regex_error);
    EXPECT_EQ(host.engine.GetVariable(), nullptr);
}

TEST_F(StringRegex, NeedsAnExpression) {
    const Ref<ObjectString> text = Text(L"1");
    const auto call = [&](const wchar_t* pattern, IObject* expression) {
        return CallHandler(*text, L"RegReplaceEx", L"RegReplaceEx", {new ObjectString(pattern), expression, nullptr},
                           &host.engine);
    };
    EXPECT_EQ(call(L"1", nullptr), "!");
    EXPECT_EQ(call(L"1", new ObjectInt(1)), "!");
    EXPECT_EQ(call(L"1", new ObjectExpression(nullptr)), "!");
    EXPECT_EQ(call(L"1", new CountedObject("", OrvStringT(), IObject::TypeExpression)), "!");
    EXPECT_EQ(call(L"x", nullptr), "!") << "even without a match";
    EXPECT_EQ(call(L"(", nullptr), "! Error in regular expression: the expression contained an unmatched '(' or ')'")
        << "the pattern comes first";
}

TEST_F(StringRegex, ExpressionMayUseManyOtherPatterns) {
    SetValue(new ObjectString(L"abc"));
    // More than a thread keeps compiled.
    EXPECT_EQ(Run(L"@RegReplaceEx('[a-z]', $Item(1).RegReplace('1', '').RegReplace('2', '').RegReplace('3', '')"
                  L".RegReplace('4', '').RegReplace('5', '').RegReplace('6', '').RegReplace('7', '')"
                  L".RegReplace('8', '').RegReplace('9', '').RegReplace('b', 'B') + '.')"),
              "string a.B.c.");
}

// ---- arguments ----

TEST_F(StringRegex, NumberOfArgumentsIsExact) {
    const Ref<ObjectString> text = Text(L"a");
    for (const wchar_t* const name : allNames) {
        const bool isReplace = std::wstring_view(name).starts_with(L"RegReplace");
        EXPECT_EQ(CallHandler(*text, name, name, {}), "!");
        EXPECT_EQ(CallHandler(*text, name, name, {new ObjectString(L"a")}), "!");
        EXPECT_EQ(CallHandler(*text, name, name,
                              {new ObjectString(L"a"), new ObjectBool(true), nullptr, new ObjectBool(true)}),
                  "!");
        if (isReplace) {
            EXPECT_EQ(CallHandler(*text, name, name, {new ObjectString(L"a"), nullptr}), "!");
        } else {
            EXPECT_EQ(CallHandler(*text, name, name, {new ObjectString(L"a"), nullptr, nullptr}), "!");
        }
    }
}

TEST_F(StringRegex, ArgumentsThatDoNotConvert) {
    const Ref<ObjectString> text = Text(L"a");
    const auto element = [](QueryEngine*, IError**) -> IObject* { return new ObjectInt(1); };
    for (const wchar_t* const name : allNames) {
        const bool isReplace = std::wstring_view(name).starts_with(L"RegReplace");
        const auto params = [&](IObject* pattern, IObject* flag) {
            return isReplace ? ObjectList{pattern, Expression(element), flag} : ObjectList{pattern, flag};
        };
        EXPECT_EQ(CallHandler(*text, name, name, params(new Stubborn(), nullptr)), "! no text");
        EXPECT_EQ(CallHandler(*text, name, name, params(new ObjectString(L"("), new Stubborn())), "! no bool")
            << "the flag is read before the pattern is compiled";
        EXPECT_EQ(CallHandler(*text, name, name, params(nullptr, nullptr)), "!");
    }
    EXPECT_EQ(CallHandler(*text, L"RegReplace", L"RegReplace", {new ObjectString(L"a"), new Stubborn(), nullptr}),
              "! no text");
    EXPECT_EQ(CallHandler(*text, L"RegReplace", L"RegReplace", {new ObjectString(L"a"), nullptr, nullptr}), "!");
}

TEST_F(StringRegex, HandlersOfTwoNames) {
    const Ref<ObjectString> text = Text(L"abc");
    const auto call = [&](const wchar_t* row, const wchar_t* name) {
        return CallHandler(*text, row, name, {new ObjectString(L"b"), nullptr});
    };
    EXPECT_EQ(call(L"RegContains", L"REGMATCH"), "bool false");
    EXPECT_EQ(call(L"RegMatch", L"RegContains"), "bool true");
    EXPECT_EQ(call(L"RegMatch", L"Search"), "bool true") << "any other name searches";
    EXPECT_EQ(call(L"RegContainsEx", L"regmatchEX"), "array ()");
    EXPECT_EQ(call(L"RegMatchEx", L"RegMatch"), "array (b)") << "any other name searches";
}

TEST_F(StringRegex, TypeObjectHasNoText) {
    const Ref<ObjectString> type = Make<ObjectString>();
    SetValue(type.Share());
    EXPECT_EQ(Run(L"@RegMatch('')"),
              "! Unable to call non-static method 'RegMatch' of class 'string' without a class instance");
}

// ---- bounds ----

TEST_F(StringRegex, TooMuchIsAnErrorOfEachMethod) {
    const std::string tooComplex =
        "! Error in regular expression: an attempted match failed because it was too complex";
    RunOnThread(smallStack, [&] {
        Host own;
        for (const wchar_t* const query :
             {L"('a'.Repeat(40) + '!').RegMatch('(a+)+$')", L"('a'.Repeat(40) + '!').RegFind('(a+)+$')",
              L"('a'.Repeat(40) + '!').RegSplit('(a+)+$')", L"('a'.Repeat(40) + '!').RegReplace('(a+)+$', '')",
              L"('a'.Repeat(40) + '!').RegReplaceEx('(a+)+$', '')"}) {
            EXPECT_EQ(own.Run(query), tooComplex) << OrvStringT(query).ToUtf8();
        }
        EXPECT_EQ(own.Run(L"'ab'.Repeat(75000).RegMatch('(a|b)*')"), "bool true");
        EXPECT_EQ(own.Run(L"'ab'.Repeat(75000).RegReplaceEx('(a|b)*', $Item(1).Length).ToInt()"), "int 1500000");
    });
}

} // namespace
} // namespace OrvUQL::Tests
