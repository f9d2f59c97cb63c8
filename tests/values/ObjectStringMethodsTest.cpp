// The methods of texts, as far as it takes a host to see what they do. (What they compute is in tests/conformance.)

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "values/CallHandler.h"
#include "values/HostTest.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace OrvUQL::Tests {
namespace {

class StringMethods : public HostTest {
protected:
    /// Calls the handler of a method, by its own name, on a text.
    std::string On(const wchar_t* text, const wchar_t* method, ObjectList params) {
        const Ref<ObjectString> value = Make<ObjectString>(text);
        return CallHandler(*value, method, method, std::move(params));
    }
};

// Texts never change, and what a method returns is nobody else's.
TEST_F(StringMethods, ReturnAValueOfItsOwn) {
    const Ref<ObjectString> value = Make<ObjectString>(L"Hello");
    host.engine.SetPropertySource(value.Get());
    for (const wchar_t* const query :
         {L"@ToUpper", L"@ToLower", L"@ToTitle", L"@SubStr(0)", L"@SubStr(1)", L"@Delete(5)", L"@Delete(0, 5)",
          L"@Trim", L"@LTrim('z')", L"@RTrim(' ')", L"@Repeat(1)", L"@Repeat(0)", L"@Replace('z', '')",
          L"@Replace('', 'x', false)", L"@Replace('Z', 'x', false)", L"@CharAt(0)", L"@ToString"}) {
        const Ref<IObject> first = host.Evaluate(query);
        const Ref<IObject> second = host.Evaluate(query);
        ASSERT_TRUE(first && second) << Utf8(query);
        EXPECT_EQ(first->GetType(), IObject::TypeString) << Utf8(query);
        EXPECT_NE(first.Get(), value.Get()) << Utf8(query);
        EXPECT_NE(first.Get(), second.Get()) << Utf8(query);
        EXPECT_EQ(ReferencesOf(first.Get()), 1) << Utf8(query);
        EXPECT_FALSE(first->IsStaticInstance()) << Utf8(query);
        EXPECT_EQ(value->GetValue(), L"Hello") << Utf8(query);
        EXPECT_EQ(ReferencesOf(value.Get()), 2) << Utf8(query);
    }
}

TEST_F(StringMethods, ReturnArraysThatAloneHoldTheirItems) {
    for (const wchar_t* const query : {L"'a,b,,c'.Split(',')", L"'abc'.Split('')", L"'abcd'.ToCharArray()"}) {
        const Ref<IObject> result = host.Evaluate(query);
        const ObjectArray* const array = dynamic_cast<const ObjectArray*>(result.Get());
        ASSERT_NE(array, nullptr) << Utf8(query);
        EXPECT_EQ(ReferencesOf(array), 1);
        for (const IObject* const item : array->GetObjectList()) {
            ASSERT_NE(item, nullptr);
            EXPECT_EQ(item->GetType(), IObject::TypeString);
            EXPECT_FALSE(item->IsStaticInstance());
            EXPECT_EQ(ReferencesOf(item), 1);
        }
    }
}

TEST_F(StringMethods, ReturnItselfFromThisOnly) {
    const Ref<ObjectString> value = Make<ObjectString>(L"Hello");
    const Ref<IObject> result(value->Invoke(&host.engine, L"This", {}, nullptr));
    EXPECT_EQ(result.Get(), value.Get());
}

// ---- arguments that are not what the signature promises ----

TEST_F(StringMethods, TrimWantsExactlyOneArgument) {
    for (const wchar_t* const method : {L"Trim", L"LTrim", L"RTrim"}) {
        EXPECT_EQ(On(L" a ", method, {}), "! Wrong number of parameters");
        EXPECT_EQ(On(L" a ", method, {nullptr, nullptr}), "! Wrong number of parameters");
        EXPECT_EQ(On(L" a ", method, {new ObjectString(L"a"), new ObjectString(L"b")}), "! Wrong number of parameters");
        EXPECT_EQ(On(L" a ", method, {new Stubborn()}), "! no text");
    }
    EXPECT_EQ(On(L" a ", L"Trim", {nullptr}), "string a") << "left out, it still counts";
    EXPECT_EQ(On(L"xax", L"RTrim", {new ObjectString(L"x")}), "string xa");
}

TEST_F(StringMethods, StartsWithAndItsLikeWantTwoArgumentsAndSayNothing) {
    for (const wchar_t* const method : {L"StartsWith", L"EndsWith", L"Contains"}) {
        EXPECT_EQ(On(L"abc", method, {}), "!");
        EXPECT_EQ(On(L"abc", method, {new ObjectString(L"a")}), "!");
        EXPECT_EQ(On(L"abc", method, {new ObjectString(L"a"), nullptr, nullptr}), "!");
        EXPECT_EQ(On(L"abc", method, {new ObjectString(L"ABC"), nullptr}), "bool true");
        EXPECT_EQ(On(L"abc", method, {new Stubborn(), nullptr}), "! no text");
        EXPECT_EQ(On(L"abc", method, {new ObjectString(L"abc"), new Stubborn()}), "! no bool");
        EXPECT_EQ(On(L"abc", method, {new Stubborn(), new Stubborn()}), "! no text") << "the pattern comes first";
    }
}

// A start that is no number ends SubStr and Delete without a word, a count that is none is as good as left out; but
// Delete then takes all, since the one character is for a count that is really absent.
TEST_F(StringMethods, SubStrAndDeleteKeepQuietAboutConversions) {
    /// Fails only if nobody asks why.
    class Curious : public CountedObject {
    public:
        bool ToInt(int&, IError** err) const override {
            EXPECT_EQ(err, nullptr) << "the reason is not wanted";
            return false;
        }
    };
    EXPECT_EQ(On(L"Hello", L"SubStr", {new Curious(), nullptr}), "!");
    EXPECT_EQ(On(L"Hello", L"Delete", {new Curious(), nullptr}), "!");
    EXPECT_EQ(On(L"Hello", L"SubStr", {new Stubborn(), new ObjectInt(1)}), "!");
    EXPECT_EQ(On(L"Hello", L"SubStr", {new ObjectInt(1), new Stubborn()}), "string ello");
    EXPECT_EQ(On(L"Hello", L"Delete", {new ObjectInt(1), new Stubborn()}), "string H");
    EXPECT_EQ(On(L"Hello", L"Delete", {new ObjectInt(1), nullptr}), "string Hllo");
    EXPECT_EQ(On(L"Hello", L"SubStr", {new ObjectString(L"1"), new ObjectDouble(2.5)}), "string ell");
}

TEST_F(StringMethods, ReportConversionsThatFail) {
    EXPECT_EQ(On(L"a", L"Repeat", {new Stubborn()}), "! no int");
    EXPECT_EQ(On(L"a", L"CharAt", {new Stubborn()}), "! no int");
    EXPECT_EQ(On(L"a", L"CharCodeAt", {new Stubborn()}), "! no int");
    EXPECT_EQ(On(L"a", L"ParseInt", {new Stubborn()}), "! no int");
    EXPECT_EQ(On(L"a", L"Split", {new Stubborn()}), "! no text");
    EXPECT_EQ(On(L"a", L"IndexOf", {new Stubborn()}), "! no text");
    EXPECT_EQ(On(L"a", L"LastIndexOf", {new Stubborn()}), "! no text");
    EXPECT_EQ(On(L"a", L"Replace", {new Stubborn(), new Stubborn(), new Stubborn()}), "! no text");
    EXPECT_EQ(On(L"a", L"Replace", {new ObjectString(L"a"), new Stubborn(), nullptr}), "! no text");
    EXPECT_EQ(On(L"a", L"Replace", {new ObjectString(L"a"), new ObjectString(L"b"), new Stubborn()}), "! no bool");
    EXPECT_EQ(On(L"a", L"Replace", {new ObjectString(L"a"), new ObjectString(L"b"), nullptr}), "string b");
}

// Bodies that serve several names know them whatever their case, and what they take every other name for.
TEST_F(StringMethods, KnowTheirNames) {
    const Ref<ObjectString> value = Make<ObjectString>(L" aXa ");
    EXPECT_EQ(CallHandler(*value, L"LTrim", L"Strip", {nullptr}), "string aXa");
    EXPECT_EQ(CallHandler(*value, L"Trim", L"LTRIM", {nullptr}), "string aXa ");
    EXPECT_EQ(CallHandler(*value, L"Trim", L"rtrim", {nullptr}), "string  aXa");
    EXPECT_EQ(CallHandler(*value, L"SubStr", L"DELETE", {new ObjectInt(1), nullptr}), "string  Xa ");
    EXPECT_EQ(CallHandler(*value, L"Delete", L"substr", {new ObjectInt(3), nullptr}), "string a ");
    EXPECT_EQ(CallHandler(*value, L"CharAt", L"At", {new ObjectInt(1)}), "int 97");
    EXPECT_EQ(CallHandler(*value, L"CharCodeAt", L"charAT", {new ObjectInt(1)}), "string a");
    EXPECT_EQ(CallHandler(*value, L"LastIndexOf", L"Position", {new ObjectString(L"a")}), "int 1");
    EXPECT_EQ(CallHandler(*value, L"IndexOf", L"lastINDEXof", {new ObjectString(L"a")}), "int 3");
    EXPECT_EQ(CallHandler(*value, L"Contains", L"STARTSWITH", {new ObjectString(L" A"), nullptr}), "bool true");
    EXPECT_EQ(CallHandler(*value, L"StartsWith", L"endswith", {new ObjectString(L"A "), nullptr}), "bool true");
    EXPECT_EQ(CallHandler(*value, L"StartsWith", L"CONTAINS", {new ObjectString(L"x"), nullptr}), "bool true");
}

// ---- code units ----

TEST_F(StringMethods, TakeSurrogatesApart) {
    host.engine.SetPropertySource(Make<ObjectString>(L"\U0001d11e").Get());
    const Ref<IObject> characters = host.Evaluate(L"@ToCharArray");
    const ObjectArray* const array = dynamic_cast<const ObjectArray*>(characters.Get());
    ASSERT_NE(array, nullptr);
    ASSERT_EQ(array->GetCount(), 2);
    for (int index = 0; index < 2; ++index) {
        const auto* const text = dynamic_cast<const ObjectString*>(array->GetObjectList()[index == 0 ? 0u : 1u]);
        ASSERT_NE(text, nullptr);
        ASSERT_EQ(text->GetValue().GetLength(), 1);
        EXPECT_EQ(text->GetValue()[0], static_cast<wchar_t>(index == 0 ? 0xd834 : 0xdd1e));
    }
    EXPECT_EQ(host.Run(L"@CharCodeAt(1)"), "int 56606");
    EXPECT_EQ(host.Run(L"@IndexOf(chr(56606))"), "int 1");
    EXPECT_EQ(host.Run(L"@Delete(0).CharCode"), "int 56606");
    EXPECT_EQ(host.Run(L"@Split(chr(56606)).Count"), "int 2");
}

TEST_F(StringMethods, KeepZeroUnits) {
    const OrvStringT text(L"a\0b\0", 4);
    host.engine.SetPropertySource(Make<ObjectString>(text).Get());
    EXPECT_EQ(host.Run(L"@Length"), "int 4");
    EXPECT_EQ(host.Run(L"@SubStr(1, 2).Length"), "int 2");
    EXPECT_EQ(host.Run(L"@Repeat(3).Length"), "int 12");
    EXPECT_EQ(host.Run(L"@Split(chr(0)).Join('|')"), "string a|b|");
    EXPECT_EQ(host.Run(L"@LastIndexOf(chr(0))"), "int 3");
    EXPECT_EQ(host.Run(L"@RTrim(chr(0)).Length"), "int 3");
    EXPECT_EQ(host.Run(L"@Replace(chr(0), '')"), "string ab");
    EXPECT_EQ(host.Run(L"@Replace(chr(0), '', false)"), "string ab");
    EXPECT_EQ(host.Run(L"@ToTitle.Length"), "int 4");
    EXPECT_EQ(host.Run(L"@EndsWith('B' + chr(0))"), "bool true");
    EXPECT_EQ(host.Run(L"('12' + chr(0) + '3').ParseInt"), "int 12");
}

// ---- what is long ----

TEST_F(StringMethods, SearchLongTextsInAReasonableTime) {
    host.engine.SetPropertySource(Make<ObjectString>(OrvStringT(L'a', 400000)).Get());
    EXPECT_EQ(host.Run(L"@IndexOf(@SubStr(200000) + 'b')"), "int -1");
    EXPECT_EQ(host.Run(L"@LastIndexOf('b' + @SubStr(200000))"), "int -1");
    EXPECT_EQ(host.Run(L"@LastIndexOf(@SubStr(200000))"), "int 200000");
    EXPECT_EQ(host.Run(L"@Contains(@SubStr(200000) + 'B')"), "bool false");
    EXPECT_EQ(host.Run(L"@Replace('A', 'bb', false).Length"), "int 800000");
    EXPECT_EQ(host.Run(L"@Replace('a', '').Length"), "int 0");
    EXPECT_EQ(host.Run(L"@Split('a').Count"), "int 400001");
}

TEST_F(StringMethods, RefuseTextsBeyondTheLimit) {
    EXPECT_EQ(host.Run(L"'0123456789'.Repeat(214748365)"), "! Internal error");
    EXPECT_EQ(host.Run(L"'ab'.Repeat(2147483647)"), "! Internal error");
    host.engine.SetPropertySource(Make<ObjectString>(OrvStringT(L'a', 100000)).Get());
    EXPECT_EQ(host.Run(L"@Replace('a', @This)"), "! Internal error");
    EXPECT_EQ(host.Run(L"@Replace('A', @This, false)"), "! Internal error");
    EXPECT_EQ(host.Run(L"@Length"), "int 100000") << "nothing has happened to the text";
}

// ---- texts of a host ----

/// A text of a host's, with a method of its own in front of those of every text.
class Path : public ObjectString {
public:
    using ObjectString::ObjectString;
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {
            MethodMap::Method(L"Parts", L"", &Path::Method_Parts),
            MethodMap::Method(L"Length", L"", &Path::Method_Parts),
            MethodMap::Chain(&ObjectString::_GetMethodMap),
            MethodMap::End(),
        };
        return table;
    }

private:
    IObject* Method_Parts(QueryEngine* engine, const OrvStringT&, const ObjectList&, IError** err) {
        return Invoke(engine, L"Split", {new ElementObject(L"/", 0)}, err);
    }
};

TEST_F(StringMethods, ServeTextsOfAHost) {
    host.engine.SetPropertySource(Make<Path>(L"usr/lib").Get());
    EXPECT_EQ(host.Run(L"@Parts"), "array (usr,lib)");
    EXPECT_EQ(host.Run(L"@length"), "array (usr,lib)") << "its own rows come first";
    EXPECT_EQ(host.Run(L"@ToUpper"), "string USR/LIB");
    EXPECT_EQ(host.Run(L"@SubStr(-3).Length"), "int 3") << "a result is an ordinary text";
    EXPECT_EQ(host.Run(L"@Foo"), "! Identifier 'Foo' is not a method of 'string'");
}

} // namespace
} // namespace OrvUQL::Tests
