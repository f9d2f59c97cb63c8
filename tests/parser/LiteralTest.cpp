// Literals: strings, numbers, units and words, and the values that they stand for.

#include "parser/ParseCheck.h"
#include "support/CountedUnits.h"

#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

/// The value of a query that is one literal, as "type text".
std::string Literal(std::string_view utf8) {
    Host host;
    ErrorSlot error;
    const Ref<IQueryElement> tree(host.engine.ParseQuery(OrvStringT::FromUtf8(utf8).GetString(), error.Slot()));
    if (!tree) {
        return "! " + error.Message();
    }
    EXPECT_EQ(tree->GetType(), IQueryElement::Object) << utf8;
    const auto* const literal = dynamic_cast<const ElementObject*>(tree.Get());
    return literal == nullptr ? "no literal" : Describe(literal->GetValue());
}

struct Row {
    const char* query;
    const char* value;
};

template <std::size_t N> void Check(const Row (&rows)[N]) {
    for (const Row& row : rows) {
        EXPECT_EQ(Literal(row.query), row.value) << row.query;
    }
}

TEST(Literals, Strings) {
    constexpr Row rows[] = {
        {"'abc'", "string abc"},
        {"''", "string "},
        {"' a '", "string  a "},
        {"''''", "string '"},
        {"''''''", "string ''"},
        {"'it''s'", "string it's"},
        {"'''a'''", "string 'a'"},
        {"'a'''", "string a'"},
        {"'a'''''", "string a''"},
        {"'''a'", "string 'a"},
        {"'a''''b'", "string a''b"},
        {"'\"'", "string \""},
        {"'a\tb\r\nc'", "string a\tb\r\nc"},
        {"'\\n'", "string \\n"},
        {"'%1'", "string %1"},
        {"'\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80'", "string \xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"},
        {"'true'", "string true"},
        {"'12'", "string 12"},
    };
    Check(rows);
}

// A token of apostrophes alone is a string even where their number is odd: between the first and the last of them
// pairs stand for one, and of a single one nothing remains.
TEST(Literals, StringsOfApostrophesAlone) {
    constexpr Row rows[] = {
        {"'", "string "},
        {"'''", "string '"},
        {"'''''", "string ''"},
    };
    Check(rows);
}

TEST(Literals, ALoneApostropheMayEndAQuery) {
    EXPECT_EQ(ParseDump("a + '"), "(+ a '')");
    EXPECT_EQ(ParseDump("' "), ParseError("Unterminated string constant", 0));
}

TEST(Literals, Numbers) {
    constexpr Row rows[] = {
        {"0", "int 0"},
        {"007", "int 7"},
        {"123456789", "int 123456789"},
        {"1234567890", "int 1234567890"},
        {"0000000000000000000012", "int 12"},
        {"2147483647", "int 2147483647"},
        // One more is a double, and so is its negation: there is no literal for the least int.
        {"2147483648", "double 2147483648"},
        {"3000000000", "double 3000000000"},
        {"12345678901234567890", "double 12345678901234567000"},
        // A point makes a double.
        {"1.5", "double 1.5"},
        {"12.0", "double 12"},
        {"0.0", "double 0"},
        {"0.1", "double 0.1"},
        {"2147483647.0", "double 2147483647"},
        // An exponent alone does not.
        {"1e3", "int 1000"},
        {"1E+3", "int 1000"},
        {"10e-1", "int 1"},
        {"15e-1", "double 1.5"},
        {"1e10", "double 10000000000"},
        {"1.5e1", "double 15"},
        {"1e-3", "double 0.001"},
        {"1e-400", "double 0"},
        {"1.7976931348623157e308", "double 1.7976931348623157e+308"},
        {"5e-324", "double 5e-324"},
        // Hexadecimal numbers are patterns of 32 bits, and beyond that all ones.
        {"0x0", "int 0"},
        {"0x1F", "int 31"},
        {"0X1f", "int 31"},
        {"0x7FFFFFFF", "int 2147483647"},
        {"0x80000000", "int -2147483648"},
        {"0xFFFFFFFF", "int -1"},
        {"0x1FFFFFFFF", "int -1"},
    };
    Check(rows);
}

TEST(Literals, Words) {
    constexpr Row rows[] = {
        {"true", "bool true"},   {"TRUE", "bool true"}, {"tRuE", "bool true"}, {"false", "bool false"},
        {"False", "bool false"}, {"null", "null null"}, {"Null", "null null"}, {"NULL", "null null"},
    };
    Check(rows);
}

TEST(Literals, Units) {
    constexpr Row rows[] = {
        {"{2.54 cm}", "unit 2.54 cm"},
        {"{2.54cm}", "unit 2.54 cm"},
        {"{ 2.54\tcm\n}", "unit 2.54 cm"},
        {"{.5 mm}", "unit 0.5 mm"},
        {"{1e3 m}", "unit 1000 m"},
        {"{1.5e-3 m}", "unit 0.0015 m"},
        {"{0 km}", "unit 0 km"},
        // Names of units in any case; the value shows the catalogue's spelling.
        {"{1 CM}", "unit 1 cm"},
        {"{1 In}", "unit 1 in"},
        {"{1 h}", "unit 1 H"},
        // Powers.
        {"{10 mm\xc2\xb2}", "unit 10 mm\xc2\xb2"},
        {"{10 mm \xc2\xb2 }", "unit 10 mm\xc2\xb2"},
        {"{10 mm\xc2\xb3}", "unit 10 mm\xc2\xb3"},
        {"{10 mm2}", "unit 10 mm\xc2\xb2"},
        {"{10 mm 2}", "unit 10 mm\xc2\xb2"},
        {"{10 mm^2}", "unit 10 mm\xc2\xb2"},
        {"{10 mm ^ 2 }", "unit 10 mm\xc2\xb2"},
        {"{10 mm3}", "unit 10 mm\xc2\xb3"},
        {"{10 mm1}", "unit 10 mm"},
        {"{10 mm^1}", "unit 10 mm"},
        {"{1 in^-2}", "unit 1 in^-2"},
        {"{1 in^ -2}", "unit 1 in^-2"},
        {"{1 in^-02}", "unit 1 in^-2"},
        {"{1 un^99}", "unit 1 un^99"},
        {"{1 un99}", "unit 1 un^99"},
        {"{1 un^-99}", "unit 1 un^-99"},
        {"{1 un^099}", "unit 1 un^99"},
        // Of power 0 only the number shows. A "^" without digits means 0, deliberately.
        {"{1 m0}", "unit 1"},
        {"{1 m^0}", "unit 1"},
        {"{1 m^}", "unit 1"},
        {"{1 m^-}", "unit 1"},
        {"{1 m ^ - }", "unit 1"},
    };
    Check(rows);
}

struct UnitRow {
    const char* query;
    double value;
    int power;
    const char* name;
};

TEST(Literals, UnitsKeepTheirValueInBaseUnits) {
    constexpr UnitRow rows[] = {
        {"{2.54 cm}", 254000.0, 1, "cm"}, {"{1 in}", 254000.0, 1, "in"}, {"{2 mm2}", 2e8, 2, "mm"},
        {"{2 mm^-1}", 2e-4, -1, "mm"},    {"{5 m^}", 5.0, 0, "m"},       {"{3 un3}", 3.0, 3, "un"},
    };
    for (const UnitRow& row : rows) {
        Host host;
        const Ref<IObject> object = host.Evaluate(OrvStringT::FromUtf8(row.query).GetString());
        ASSERT_TRUE(object) << row.query;
        const IUnit* const unit = object->GetUnitInterface();
        ASSERT_NE(unit, nullptr) << row.query;
        EXPECT_DOUBLE_EQ(unit->GetValue(), row.value) << row.query;
        EXPECT_EQ(unit->GetPower(), row.power) << row.query;
        EXPECT_EQ(Utf8(unit->GetName()), row.name) << row.query;
    }
}

// The same tree gives the same value each time: the literal's own.
TEST(Literals, AreMadeOnceWhenTheyAreParsed) {
    for (const char* const query : {"1", "1.5", "'abc'", "true", "null", "{1 cm}"}) {
        Host host;
        const Ref<IQueryElement> tree = host.Parse(OrvStringT::FromUtf8(query).GetString());
        const Ref<IObject> first(host.engine.Evaluate(tree.Get(), nullptr));
        const Ref<IObject> second(host.engine.Evaluate(tree.Get(), nullptr));
        EXPECT_EQ(first.Get(), second.Get()) << query;
        EXPECT_FALSE(first->IsStaticInstance()) << query;
        EXPECT_EQ(first.Get(), dynamic_cast<const ElementObject&>(*tree).GetValue()) << query;
    }
}

TEST(Literals, EachIsAValueOfItsOwn) {
    Host host;
    const Ref<IQueryElement> tree = host.Parse(L"array(1, 1)");
    const auto& arguments = dynamic_cast<const ElementMethod&>(*tree).GetArguments();
    ASSERT_EQ(arguments.size(), 2U);
    EXPECT_NE(dynamic_cast<const ElementObject&>(*arguments[0]).GetValue(),
              dynamic_cast<const ElementObject&>(*arguments[1]).GetValue());
}

TEST(Literals, TheTreeOwnsItsTextsAlone) {
    Host host;
    wchar_t text[] = L"'abc' + name";
    const Ref<IQueryElement> tree = host.Parse(text);
    for (wchar_t& unit : text) {
        unit = L'x';
    }
    EXPECT_EQ(Dump(tree.Get()), "(+ 'abc' name)");
}

using UnitLiterals = CountedTest;

// The literal holds its definition, which holds its catalogue; the engine may go before the tree.
TEST_F(UnitLiterals, LiteralsOutliveTheEngine) {
    Ref<IQueryElement> tree;
    {
        QueryEngine engine;
        const Ref<CountedUnitFactory> factory =
            Make<CountedUnitFactory>(OrvStringT(L"Weights"), OrvStringT(L"kg"), 1000.0);
        engine.AddUnitFactory(factory.Get());
        tree.Reset(engine.ParseQuery(L"{2 kg} + {3 kg2}", nullptr));
        ASSERT_TRUE(tree);
        EXPECT_EQ(factory->LookUps(), 2);
        EXPECT_EQ(Counted::live, 3) << "the catalogue and two definitions";
    }
    EXPECT_EQ(Counted::live, 3);
    EXPECT_EQ(Dump(tree.Get()), "(+ {2 kg} {3 kg\xc2\xb2})");
    tree.Reset();
    EXPECT_EQ(Counted::live, 0);
}

TEST_F(UnitLiterals, FailedLiteralsReleaseTheDefinition) {
    QueryEngine engine;
    const Ref<CountedUnitFactory> factory = Make<CountedUnitFactory>(OrvStringT(L"Weights"), OrvStringT(L"kg"), 1000.0);
    engine.AddUnitFactory(factory.Get());
    for (const wchar_t* const query : {L"{2e kg}", L"{2 kg} +", L"{2 kg} {3 kg}", L"({2 kg}", L"{2 kg", L"{2 gg}"}) {
        EXPECT_EQ(engine.ParseQuery(query, nullptr), nullptr);
        EXPECT_EQ(Counted::live, 1) << Utf8(query);
    }
    EXPECT_EQ(factory->LookUps(), 5) << "an unfinished literal is not looked up";
}

TEST_F(UnitLiterals, TheNameIsPassedAsWritten) {
    QueryEngine engine;
    const Ref<CountedUnitFactory> factory = Make<CountedUnitFactory>(OrvStringT(L"Weights"), OrvStringT(L"kg"), 1000.0);
    engine.AddUnitFactory(factory.Get());
    ErrorSlot error;
    EXPECT_EQ(engine.ParseQuery(L"{2 KG}", error.Slot()), nullptr);
    EXPECT_EQ(error.Message(), "Error parsing query: Unknown unit name 'KG' at position 4");
}

} // namespace
} // namespace OrvUQL::Tests
