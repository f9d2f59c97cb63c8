// The listing of a value's methods.

#include <OrvUQL/OrvUQL.h>

#include "core/Recorder.h"
#include "support/Attempt.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace OrvUQL::Tests {
namespace {

using MethodMap = ObjectBase::MethodMap;
using Help = CountedTest;

/// The lines of a listing of `type`, separated by single carriage returns. Line breaks look otherwise, but hosts
/// split the listing so.
std::string Listing(const std::string& type, std::initializer_list<const char*> methods) {
    std::string text;
    for (const char* method : methods) {
        if (!text.empty()) {
            text += '\r';
        }
        text += type;
        text += '.';
        text += method;
    }
    return text;
}

std::string WithCommon(const std::string& type, std::initializer_list<const char*> methods) {
    std::string text = Listing(type, methods);
    if (!text.empty()) {
        text += '\r';
    }
    text += Listing(type, {"ToBool()", "ToInt()", "ToDouble()", "ToString()", "TypeName() {Static}", "This()",
                           "IsNumeric()", "IsNull()"});
    return text;
}

/// The listing of a value that is handed over.
std::string HelpOf(IObject* object) {
    const Ref<IObject> owned(object);
    const std::string listing = Call(*object, L"help");
    const std::string prefix = "string ";
    EXPECT_EQ(listing.substr(0, prefix.size()), prefix);
    return listing.substr(prefix.size());
}

TEST_F(Help, OfEachClassListsItsMethods) {
    EXPECT_EQ(HelpOf(new ObjectNull()), WithCommon("null", {})) << "up to the row that takes every name";
    EXPECT_EQ(HelpOf(new ObjectBool(true)), WithCommon("bool", {}));
    EXPECT_EQ(HelpOf(new ObjectInt(1)),
              WithCommon("int", {"Abs()", "ToRadians()", "ToDegrees()", "Radix(int, [int])"}));
    EXPECT_EQ(HelpOf(new ObjectDouble(1)),
              WithCommon("double", {"Abs()", "Round([int])", "ToRadians()", "ToDegrees()", "Radix(int, [int])"}));
    EXPECT_EQ(HelpOf(new ObjectUnit(nullptr, 1, 1, false)),
              WithCommon("unit", {"Category()", "Power()", "Unit()", "DisplayUnit()", "Value()", "BaseValue()",
                                  "Convert(string)", "Round([int])"}));
    EXPECT_EQ(HelpOf(new ObjectGlobal()), Listing("global", {"bool()",
                                                             "int()",
                                                             "double()",
                                                             "string()",
                                                             "pi()",
                                                             "e()",
                                                             "min(numeric, ...)",
                                                             "max(numeric, ...)",
                                                             "sqrt(double)",
                                                             "sin(double)",
                                                             "cos(double)",
                                                             "tan(double)",
                                                             "atan(double)",
                                                             "exp(double)",
                                                             "log(double)",
                                                             "iif(bool, expression, expression)",
                                                             "array([object, ...])",
                                                             "chr(int)",
                                                             "rnd([int])",
                                                             "radix(int, int, [int])",
                                                             "round(double, [int])"}));
    EXPECT_EQ(HelpOf(new CountedObject()), WithCommon("counted", {}));
}

TEST_F(Help, OfStringsAndArraysListsTheirMethods) {
    EXPECT_EQ(HelpOf(new ObjectString(L"text")), WithCommon("string", {"Length()",
                                                                       "Empty()",
                                                                       "ToUpper()",
                                                                       "ToLower()",
                                                                       "ToTitle()",
                                                                       "CharCode()",
                                                                       "SubStr(int, [int])",
                                                                       "Delete(int, [int])",
                                                                       "Trim([string])",
                                                                       "LTrim([string])",
                                                                       "RTrim([string])",
                                                                       "Repeat(int)",
                                                                       "StartsWith(string, [bool])",
                                                                       "EndsWith(string, [bool])",
                                                                       "Contains(string, [bool])",
                                                                       "Replace(string, string, [bool])",
                                                                       "Split(string)",
                                                                       "CharAt(int)",
                                                                       "CharCodeAt(int)",
                                                                       "IndexOf(string)",
                                                                       "LastIndexOf(string)",
                                                                       "ToCharArray()",
                                                                       "ParseInt([int])",
                                                                       "RegMatch(string, [bool])",
                                                                       "RegMatchEx(string, [bool])",
                                                                       "RegContains(string, [bool])",
                                                                       "RegContainsEx(string, [bool])",
                                                                       "RegReplace(string, string, [bool])",
                                                                       "RegReplaceEx(string, expression, [bool])",
                                                                       "RegSplit(string, [bool])",
                                                                       "RegFind(string, [bool])"}));
    EXPECT_EQ(HelpOf(new ObjectArray(ObjectList())),
              WithCommon("array", {"Count()", "Empty()", "Add(object)", "Item(int)", "Join(string)",
                                   "ForEach(object, expression, [object])", "Filter(expression, [object])",
                                   "Convert(expression, [object])", "Find(object)", "IndexOf(object)", "First()",
                                   "Last()", "AddArray(object)", "Unique()", "Contains(expression, [object])"}));
    EXPECT_EQ(HelpOf(new ObjectIterator(nullptr, nullptr, nullptr, nullptr)),
              WithCommon("iterator", {"lasteval()", "item()", "index()", "data()"}));
}

TEST_F(Help, OfAnExpressionIsNothing) {
    ObjectExpression expression(nullptr);
    EXPECT_EQ(Call(expression, L"help"), "!");
}

TEST_F(Help, IsFoundInAnyLetterCase) {
    ObjectBool value(true);
    const std::string listing = "string " + WithCommon("bool", {});
    EXPECT_EQ(Call(value, L"help"), listing);
    EXPECT_EQ(Call(value, L"HELP"), listing);
    EXPECT_EQ(Call(value, L"hElP"), listing);
    EXPECT_EQ(Call(value, L"help "), "! Identifier 'help ' is not a method of 'bool'");
    EXPECT_EQ(Call(value, L"hel"), "! Identifier 'hel' is not a method of 'bool'");
}

TEST_F(Help, IsToBeHadOfTypeObjects) {
    EXPECT_EQ(HelpOf(new ObjectBool()), WithCommon("bool", {}));
    EXPECT_EQ(HelpOf(new ObjectInt()), HelpOf(new ObjectInt(5)));
    EXPECT_EQ(HelpOf(new ObjectString()), HelpOf(new ObjectString(L"text")));
}

TEST_F(Help, NeitherChecksNorEvaluatesItsArguments) {
    ObjectBool value(true);
    const Ref<CountedElement> argument = Make<CountedElement>(nullptr, "", 0, L"evaluated");
    EXPECT_EQ(Call(value, L"help", {argument.Share(), nullptr, argument.Share()}), "string " + WithCommon("bool", {}));
    EXPECT_EQ(argument->Evaluations(), 0);
    Host host;
    EXPECT_EQ(host.Run(L"true.HELP()"), "string " + WithCommon("bool", {}));
    EXPECT_EQ(host.Run(L"true.help(1 / 0, 2)"), "string " + WithCommon("bool", {}));
    EXPECT_EQ(host.Run(L"bool.help"), "string " + WithCommon("bool", {}));
}

const MethodMap* EverySignature() {
    static const MethodMap table[] = {
        Recorder::First(L"Letters", L"BIDSNOE"),
        Recorder::First(L"optional", L"bidsnoe"),
        Recorder::First(L"Mixed", L"SEb"),
        Recorder::First(L"Repeated", L"N*"),
        Recorder::First(L"RepeatedOptional", L"Ie*"),
        Recorder::First(L"Unknown", L"XIx"),
        Recorder::Static(L"Static", L"i"),
        MethodMap::End(),
    };
    return table;
}

TEST_F(Help, DescribesEverySignature) {
    EXPECT_EQ(HelpOf(new RecorderWith<EverySignature>()),
              Listing("recorder", {"Letters(bool, int, double, string, numeric, object, expression)",
                                   "optional([bool], [int], [double], [string], [numeric], [object], [expression])",
                                   "Mixed(string, expression, [bool])", "Repeated(numeric, ...)",
                                   "RepeatedOptional(int, [expression, ...])", "Unknown(unknown, int, [unknown])",
                                   "Static([int]) {Static}"}));
}

const MethodMap* HelpRow() {
    static const MethodMap table[] = {Recorder::First(L"help"), MethodMap::End()};
    return table;
}

TEST_F(Help, ComesBeforeAMethodOfThatName) { EXPECT_EQ(HelpOf(new RecorderWith<HelpRow>()), "recorder.help()"); }

const MethodMap* Inner() {
    static const MethodMap table[] = {Recorder::First(L"InnerOne"), Recorder::Any(), Recorder::First(L"InnerHidden"),
                                      MethodMap::End()};
    return table;
}

class Chained : public Recorder {
public:
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {First(L"One"), MethodMap::Chain(&Chained::InnerRows), First(L"Two"),
                                          MethodMap::End()};
        return table;
    }
    const MethodMap* InnerRows() const { return Inner(); }
};

// Nothing behind a catch-all of a chained table can be called either; the listing tells of each table by itself.
TEST_F(Help, StopsAtACatchAllInItsTableOnly) {
    EXPECT_EQ(HelpOf(new RecorderWith<Inner>()), "recorder.InnerOne()");
    EXPECT_EQ(HelpOf(new Chained()), Listing("recorder", {"One()", "InnerOne()", "Two()"}));
}

const MethodMap* Nothing() {
    static const MethodMap table[] = {MethodMap::End()};
    return table;
}

TEST_F(Help, OfAnEmptyTableIsEmpty) { EXPECT_EQ(HelpOf(new RecorderWith<Nothing>()), ""); }

/// Numbers its listing and hides a table.
class Numbered : public RecorderWith<EverySignature> {
public:
    const MethodMap* GetMethodMap() const override {
        static const MethodMap table[] = {First(L"One"), Common(), MethodMap::End()};
        return table;
    }
    int tables = 0;

protected:
    void GetMethodList(const MethodMap* map, OrvStringT& out) override {
        ++tables;
        if (map == ObjectBase::_GetMethodMap()) {
            out += L"\r(and what every value has)";
            return;
        }
        ObjectBase::GetMethodList(map, out);
    }
};

TEST_F(Help, AsksTheClassForEachChainedTable) {
    Numbered object;
    QueryEngine engine;
    const QueryElementList none;
    const Ref<IObject> listing(object.Invoke(&engine, L"help", none, nullptr));
    ASSERT_TRUE(listing);
    EXPECT_EQ(Describe(listing.Get()), "string recorder.One()\r(and what every value has)");
    EXPECT_EQ(object.tables, 2);
}

TEST_F(Help, IsWhatGetHelpReturns) {
    RecorderWith<EverySignature> object;
    const Ref<IObject> listing(object.GetHelp());
    EXPECT_EQ(Describe(listing.Get()), Call(object, L"help"));
    OrvStringT text(L"before");
    object.GetMethodList(HelpRow(), text);
    EXPECT_EQ(text, L"before\rrecorder.help()");
}

} // namespace
} // namespace OrvUQL::Tests
