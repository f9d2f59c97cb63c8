// Parse errors: each message, and where it points.

#include "parser/ParseCheck.h"

#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

struct Row {
    const char* query;
    const char* message;
    int position; ///< from 0, in code units
};

template <std::size_t N> void Check(const Row (&rows)[N]) {
    for (const Row& row : rows) {
        EXPECT_EQ(ParseDump(row.query), ParseError(row.message, row.position)) << row.query;
        EXPECT_EQ(ParseErrorPosition(row.query), row.position) << row.query;
    }
}

TEST(ParseErrors, UnexpectedEnd) {
    constexpr const char* message = "Unexpected end of line";
    constexpr Row rows[] = {
        {"", message, 0},
        {"   ", message, 3},
        {" \t\r\n ", message, 5},
        {"a +", message, 3},
        {"a +  ", message, 5},
        {"a *", message, 3},
        {"a ^", message, 3},
        {"a <", message, 3},
        {"a <=", message, 4},
        {"a and", message, 5},
        {"a ?", message, 3},
        {"a ? b :", message, 7},
        {"-", message, 1},
        {"not", message, 3},
        {"!", message, 1},
        {"(", message, 1},
        {"x[", message, 2},
        {"f(a,", message, 4},
        {"f(,", message, 3},
        // At once behind the point, where the name should be.
        {"x.", message, 2},
        {".", message, 1},
        {"x.y.", message, 4},
    };
    Check(rows);
}

TEST(ParseErrors, UnexpectedTokens) {
    constexpr Row rows[] = {
        {")", "Unexpected token ')'", 0},
        {"1)", "Unexpected token ')'", 1},
        {"  1  )", "Unexpected token ')'", 5},
        {"a b", "Unexpected token 'b'", 2},
        {"a 1.5", "Unexpected token '1.5'", 2},
        {"a 'b c'", "Unexpected token ''b c''", 2},
        {"a 'b", "Unexpected token ''b'", 2},
        {"1 not 2", "Unexpected token 'not'", 2},
        {"1 NOT 2", "Unexpected token 'NOT'", 2},
        {"a ! b", "Unexpected token '!'", 2},
        {"a ! = b", "Unexpected token '!'", 2},
        {"not not a", "Unexpected token 'not'", 4},
        {"!!a", "Unexpected token '!'", 1},
        {"!not a", "Unexpected token 'not'", 1},
        {"--a", "Unexpected token '-'", 1},
        {"+-a", "Unexpected token '-'", 1},
        {"a - - - b", "Unexpected token '-'", 6},
        {"2 * -3", "Unexpected token '-'", 4},
        {"2 ^ -3", "Unexpected token '-'", 4},
        {"2 / +3", "Unexpected token '+'", 4},
        {"2 \\ -3", "Unexpected token '-'", 4},
        {"-not a", "Unexpected token 'not'", 1},
        {"a = not b", "Unexpected token 'not'", 4},
        {"a === b", "Unexpected token '='", 4},
        {"a <>= b", "Unexpected token '='", 4},
        {"a <== b", "Unexpected token '='", 4},
        {"a !== b", "Unexpected token '='", 4},
        {"a !> b", "Unexpected token '!'", 2},
        {"a =! b", "Unexpected token '!'", 3},
        {"a < = b", "Unexpected token '='", 4},
        {"a & & b", "Unexpected token '&'", 4},
        {"a || b", "Unexpected token '|'", 3},
        {"and", "Unexpected token 'and'", 0},
        {"or", "Unexpected token 'or'", 0},
        {"Or + 1", "Unexpected token 'Or'", 0},
        {"*a", "Unexpected token '*'", 0},
        {"()", "Unexpected token ')'", 1},
        {"x[]", "Unexpected token ']'", 2},
        // Members.
        {".5", "Unexpected token '5'", 1},
        {"x.5", "Unexpected token '5'", 2},
        {"x.1.5", "Unexpected token '1.5'", 2},
        {"x.@y", "Unexpected token '@y'", 2},
        {"x.$y", "Unexpected token '$y'", 2},
        {"x. y", "Unexpected token ' '", 2},
        {". y", "Unexpected token ' '", 1},
        {"x.\ty", "Unexpected token '\t'", 2},
        {"x..y", "Unexpected token '.'", 2},
        {"x.'y'", "Unexpected token ''y''", 2},
        {"x.(y)", "Unexpected token '('", 2},
        {"x.[y]", "Unexpected token '['", 2},
        {"x.\xc3\xa4", "Unexpected token '\xc3\xa4'", 2},
        {"1..Abs()", "Unexpected token '.'", 2},
        // Arguments.
        {"f(a,)", "Unexpected token ')'", 4},
        {"f(a,,b)", "Unexpected token ','", 4},
        {"f(,)", "Unexpected token ')'", 3},
        {"f(,,a)", "Unexpected token ','", 3},
        {"$a(1)(2)", "Unexpected token '('", 5},
        {"(a)(b)", "Unexpected token '('", 3},
        {"1(2)", "Unexpected token '('", 1},
        // Groups.
        {"x[a][b][c]", "Unexpected token '['", 7},
        {"x[a].b[c][d]", "Unexpected token '['", 9},
        {"x.a[b][c]", "Unexpected token '['", 6},
        {"x.a[b].c", "Unexpected token '.'", 6},
        {"x[a].b[c].d", "Unexpected token '.'", 9},
        {"x[a][b].c", "Unexpected token '.'", 7},
        {".a[b].c", "Unexpected token '.'", 5},
        {".a[b][c]", "Unexpected token '['", 5},
        // Conditionals.
        {"a : b", "Unexpected token ':'", 2},
        {"a ? b : c : d", "Unexpected token ':'", 10},
        {"a ? : b", "Unexpected token ':'", 4},
        {"? a : b", "Unexpected token '?'", 0},
        // Rests behind a whole query.
        {"a]", "Unexpected token ']'", 1},
        {"a, b", "Unexpected token ','", 1},
        {"a;", "Unexpected token ';'", 1},
        {"a}", "Unexpected token '}'", 1},
        {"a # b", "Unexpected token '#'", 2},
        {"1 % 2", "Unexpected token '%'", 2},
        {"1 '%1 %2'", "Unexpected token ''%1 %2''", 2},
        {"a\fb", "Unexpected token '\f'", 1},
        {"a\xc2\xa0", "Unexpected token '\xc2\xa0'", 1},
        {"\xf0\x9f\x98\x80 x", "Unexpected token '\xef\xbf\xbd'",
         1}, // the pair's second half, which alone is no character
        {"'\xf0\x9f\x98\x80' x", "Unexpected token 'x'", 5},
    };
    Check(rows);
}

TEST(ParseErrors, ColonExpected) {
    constexpr const char* message = "':' expected";
    constexpr Row rows[] = {
        {"a ? b", message, 5},          {"a ? b  ", message, 7},        {"a ? b)", message, 5},
        {"a ? b ]", message, 6},        {"a ? b, c", message, 5},       {"(a ? b)", message, 6},
        {"a ? b ? c", message, 9},      {"f(a ? b)", message, 7},       {"x[a ? b]", message, 7},
        {"a ? b ? c : d", message, 13}, {"a ? b : c ? d", message, 13},
    };
    Check(rows);
}

TEST(ParseErrors, ClosingBracketExpected) {
    constexpr const char* message = "Closing ']' expected";
    constexpr Row rows[] = {
        {"x[a", message, 3},      {"x[a  ", message, 5},  {"x[a)", message, 3},  {"x[a, b]", message, 3},
        {"x[a : b]", message, 4}, {"x[a][b", message, 6}, {"x.y[a", message, 5}, {".y[a", message, 4},
        {"x[y[a]", message, 6},   {"(x[a)", message, 4},
    };
    Check(rows);
}

TEST(ParseErrors, ClosingParenthesisExpected) {
    constexpr const char* message = "Closing parenthesis expected";
    constexpr Row rows[] = {
        {"(1", message, 2},
        {"(1  ", message, 4},
        {"((1)", message, 4},
        {"(1]", message, 2},
        {"(1, 2)", message, 2},
        {"(1 : 2)", message, 3},
        {"a((b), (c, d))", message, 9},
        // Of a call, whose list may also end before it began.
        {"f(", message, 2},
        {"f(  ", message, 4},
        {"f(a", message, 3},
        {"f(a]", message, 3},
        {"f(a:", message, 3},
        {"f(a, b", message, 6},
        {"f(,a", message, 4},
        {"x.f(", message, 4},
        {"x.f(a", message, 5},
        {"f(g(a)", message, 6},
        {"#(", message, 2},
    };
    Check(rows);
}

TEST(ParseErrors, UnterminatedString) {
    constexpr const char* message = "Unterminated string constant";
    constexpr Row rows[] = {
        {"'abc", message, 0},       {"  'abc", message, 2},   {"a + 'b + c", message, 4}, {"'abc''", message, 0},
        {"'abc'''' x", message, 0}, {"f('a, b)", message, 2}, {"'a'' + b''", message, 0}, {"'x'.y('z", message, 6},
    };
    Check(rows);
}

TEST(ParseErrors, UnitLiterals) {
    constexpr const char* value = "Unit numeric value expected";
    constexpr const char* name = "Unit name expected";
    constexpr const char* brace = "Closing '}' expected";
    constexpr Row rows[] = {
        {"{", value, 1},
        {"{ ", value, 2},
        {"{}", value, 1},
        {"{mm}", value, 1},
        {"{ -1 mm}", value, 2},
        {"{+1 mm}", value, 1},
        {"{'1' mm}", value, 1},
        {"{(1) mm}", value, 1},
        {"{. mm}", value, 1},
        {"{1", name, 2},
        {"{1 ", name, 3},
        {"{1}", name, 2},
        {"{1 2}", name, 3},
        {"{1 @mm}", name, 3},
        {"{1 \xc2\xb5m}", name, 3},
        {"{1.5.5 mm}", name, 4},
        {"{1 mm", brace, 5},
        {"{1 mm ", brace, 6},
        {"{1 mm)", brace, 5},
        {"{1 mm cm}", brace, 6},
        {"{1 mm-2}", brace, 5},
        {"{1 mm -2}", brace, 6},
        {"{1 mm^--2}", brace, 7},
        {"{1 mm^- 2}", brace, 8},
        {"{1 mm^x}", brace, 6},
        {"{1 mm^+2}", brace, 6},
        {"{1 mm2.5}", brace, 6},
        {"{1 mm2 2}", brace, 7},
        {"{1 mm\xc2\xb2"
         "2}",
         brace, 6},
        {"{1 mm\xc2\xb2\xc2\xb2}", brace, 6},
        {"{1 mm^\xc2\xb2}", brace, 6},
        // The third digit stays unread, and it is there that the brace is missed.
        {"{1 mm100}", brace, 7},
        {"{1 mm^100}", brace, 8},
        {"{1 mm 123}", brace, 8},
        {"{1 mm^-100}", brace, 9},
        {"{1 mm999999999999}", brace, 7},
        {"{1 mm0100}", brace, 8},
        // Only a whole literal has its name looked up, and the error points there.
        {"{5 zz}", "Unknown unit name 'zz'", 3},
        {"{5zz^2}", "Unknown unit name 'zz'", 2},
        {"a + { 5 foot }", "Unknown unit name 'foot'", 8},
        {"{5 zz", brace, 5},
        {"{1 m_m}", "Unknown unit name 'm_m'", 3},
        // The name is looked up before the number is read.
        {"{5e zz}", "Unknown unit name 'zz'", 4},
        {"-{1 mm} {", "Unexpected token '{'", 8},
    };
    Check(rows);
}

// A number that cannot be converted tells so itself, without a position in the message.
TEST(ParseErrors, NumbersThatDoNotConvert) {
    struct NumberRow {
        const char* query;
        const char* message;
        int position;
    };
    constexpr NumberRow rows[] = {
        {"1e", "Cannot convert string '1e' to a number", 0},
        {"  1e+", "Cannot convert string '1e+' to a number", 2},
        {"a + 1e5.5", "Cannot convert string '1e5.5' to a number", 4},
        {"1e400", "Cannot convert string '1e400' to a number", 0},
        {"0x", "Cannot convert string '0x' to a number", 0},
        {"0xg", "Cannot convert string '0x' to a number", 0},
        {"f(1, 0x)", "Cannot convert string '0x' to a number", 5},
        {"{1e mm}", "Cannot convert string '1e' to Double", 1},
        {"{e5 mm}", "Cannot convert string 'e5' to Double", 1},
        {"{ 1e5.5 mm}", "Cannot convert string '1e5.5' to Double", 2},
        {"{5em}", "Cannot convert string '5e' to Double", 1},
        {"{0x10 mm}", "Cannot convert string '0x10' to Double", 1},
    };
    for (const NumberRow& row : rows) {
        EXPECT_EQ(ParseDump(row.query), std::string("! ") + row.message) << row.query;
        EXPECT_EQ(ParseErrorPosition(row.query), row.position) << row.query;
    }
}

TEST(ParseErrors, OfALongQueryPointFarBehind) {
    std::string query;
    for (int term = 0; term < 100000; ++term) {
        query += "a + ";
    }
    EXPECT_EQ(ParseDump(query + ")"), ParseError("Unexpected token ')'", 400000));
}

TEST(ParseErrors, NullTextReadsAsEmpty) {
    QueryEngine engine;
    ErrorSlot error;
    EXPECT_EQ(engine.ParseQuery(nullptr, error.Slot()), nullptr);
    EXPECT_EQ(error.Message(), "Error parsing query: Unexpected end of line at position 1");
}

// Without a catalogue no unit is known; each engine asks its own.
TEST(ParseErrors, UnitNamesAreTheEngines) {
    QueryEngine engine;
    ErrorSlot error;
    EXPECT_EQ(engine.ParseQuery(L"{1 mm}", error.Slot()), nullptr);
    EXPECT_EQ(error.Message(), "Error parsing query: Unknown unit name 'mm' at position 4");
}

TEST(ParseErrors, TheEnginesPositionIsOfTheLastQuery) {
    Host host;
    EXPECT_EQ(host.engine.GetErrorPosition(), -1);
    EXPECT_EQ(host.engine.ParseQuery(L"a b", nullptr), nullptr);
    EXPECT_EQ(host.engine.GetErrorPosition(), 2);
    EXPECT_EQ(host.engine.ParseQuery(L"", nullptr), nullptr);
    EXPECT_EQ(host.engine.GetErrorPosition(), 0);
    const Ref<IQueryElement> tree = host.Parse(L"1");
    EXPECT_EQ(host.engine.GetErrorPosition(), -1);
}

} // namespace
} // namespace OrvUQL::Tests
