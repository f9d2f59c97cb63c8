// Every token at every place of the grammar: which of them go on, which end a level, and which are errors where.
//
// A query here is what stands before the token, the token, and nothing behind it. What must come of it is told by the
// grammar: from the classes of the tokens below and what each place allows.

#include "parser/ParseCheck.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

enum class Class {
    Closer,     ///< ends conditions: ) ] , :
    Question,   ///< the conditional
    Logic,      ///< and, or and their signs
    Negation,   ///< not, and "!" without "="
    Comparison, ///< "!=" included
    Sign,       ///< + -
    Product,    ///< * / "\"
    Power,      ///< ^
    Point,      ///< .
    Open,       ///< (
    Bracket,    ///< [
    Brace,      ///< {
    Value,      ///< strings, numbers, names
    Other,      ///< characters without a meaning, which may be names
};

struct Token {
    const char* text;
    Class kind;
};

constexpr Token tokens[] = {
    {")", Class::Closer},     {"]", Class::Closer},      {",", Class::Closer},      {":", Class::Closer},
    {"?", Class::Question},   {"&", Class::Logic},       {"|", Class::Logic},       {"and", Class::Logic},
    {"or", Class::Logic},     {"AND", Class::Logic},     {"Or", Class::Logic},      {"not", Class::Negation},
    {"NoT", Class::Negation}, {"!", Class::Negation},    {"<", Class::Comparison},  {">", Class::Comparison},
    {"=", Class::Comparison}, {"!=", Class::Comparison}, {"<=", Class::Comparison}, {"><", Class::Comparison},
    {"+", Class::Sign},       {"-", Class::Sign},        {"*", Class::Product},     {"/", Class::Product},
    {"\\", Class::Product},   {"^", Class::Power},       {".", Class::Point},       {"(", Class::Open},
    {"[", Class::Bracket},    {"{", Class::Brace},       {"'s'", Class::Value},     {"12", Class::Value},
    {"1.5", Class::Value},    {"name", Class::Value},    {"@n", Class::Value},      {"$n", Class::Value},
    {"true", Class::Value},   {"null", Class::Value},    {"#", Class::Other},       {";", Class::Other},
    {"}", Class::Other},      {"\"", Class::Other},      {"~", Class::Other},       {"\xc3\xa4", Class::Other},
};

/// Of a token that cannot stand where it stands, the first character only is reported if that is a token of its own.
std::string FirstToken(const Token& token) {
    return token.kind == Class::Comparison ? std::string(token.text, 1) : std::string(token.text);
}

std::string Unexpected(const Token& token, std::size_t position) {
    return ParseError("Unexpected token '" + FirstToken(token) + "'", static_cast<int>(position));
}

std::string EndAfter(const std::string& query) {
    return ParseError("Unexpected end of line", static_cast<int>(OrvStringT::FromUtf8(query).GetLength()));
}

// ---- where an operand must stand ----

struct OperandPlace {
    const char* before;
    bool negation; ///< a comparison begins here
    bool sign;     ///< a sum's term begins here
    /// What is missing behind a whole operand here; null if nothing is.
    const char* missing;
};

constexpr const char* parenthesis = "Closing parenthesis expected";
constexpr const char* bracket = "Closing ']' expected";
constexpr const char* colon = "':' expected";

constexpr OperandPlace operandPlaces[] = {
    // The whole query, the operands of and/or, and everything that is a condition.
    {"", true, true, nullptr},
    {"a and ", true, true, nullptr},
    {"a | ", true, true, nullptr},
    {"a or b & ", true, true, nullptr},
    {"(", true, true, parenthesis},
    {"f(a, ", true, true, parenthesis},
    {"f(, ", true, true, parenthesis},
    {"x[", true, true, bracket},
    {"a ? ", true, true, colon},
    {"a ? b : ", true, true, nullptr},
    {"a ? b : c ? ", true, true, colon},
    // Behind a negation or a comparison a sum begins.
    {"not ", false, true, nullptr},
    {"! ", false, true, nullptr},
    {"a < ", false, true, nullptr},
    {"a <= ", false, true, nullptr},
    {"not a = ", false, true, nullptr},
    // Behind "+" and "-" a signed term.
    {"a + ", false, true, nullptr},
    {"a - b - ", false, true, nullptr},
    // Behind a sign only a term.
    {"- ", false, false, nullptr},
    {"a + - ", false, false, nullptr},
    // Behind "*" and the like a power, behind "^" a primary.
    {"a * ", false, false, nullptr},
    {"a / ", false, false, nullptr},
    {"a \\ ", false, false, nullptr},
    {"a ^ ", false, false, nullptr},
    {"a ^ b ^ ", false, false, nullptr},
};

TEST(StopTokens, WhereAnOperandMustStand) {
    for (const OperandPlace& place : operandPlaces) {
        const std::string before = place.before;
        for (const Token& token : tokens) {
            const std::string query = before + token.text;
            const std::string got = ParseDump(query);
            std::string expected;
            switch (token.kind) {
            case Class::Closer:
            case Class::Question:
            case Class::Logic:
            case Class::Product:
            case Class::Power:
                expected = Unexpected(token, before.size());
                break;
            case Class::Comparison:
                // "!=" begins with a negation, behind which "=" cannot stand.
                expected = place.negation && token.text[0] == '!'
                               ? ParseError("Unexpected token '='", static_cast<int>(before.size()) + 1)
                               : Unexpected(token, before.size());
                break;
            case Class::Negation:
                expected = place.negation ? EndAfter(query) : Unexpected(token, before.size());
                break;
            case Class::Sign:
                expected = place.sign ? EndAfter(query) : Unexpected(token, before.size());
                break;
            case Class::Point:
            case Class::Open:
                expected = EndAfter(query);
                break;
            case Class::Brace:
                expected = ParseError("Unit numeric value expected", static_cast<int>(query.size()));
                break;
            case Class::Bracket: // a name like any other character
            case Class::Value:
            case Class::Other:
                if (place.missing == nullptr) {
                    EXPECT_NE(got.substr(0, 1), "!") << query << ": " << got;
                    continue;
                }
                expected = ParseError(place.missing, OrvStringT::FromUtf8(query).GetLength());
                break;
            }
            EXPECT_EQ(got, expected) << query;
        }
    }
}

// ---- behind a whole operand ----

struct Behind {
    const char* before;
    const char* closer;  ///< the token that ends the innermost bracket, null if none is open
    const char* missing; ///< what is said at any other closer
    bool name;           ///< the last operand is a name, which can be called
};

constexpr Behind behinds[] = {
    // At each level, with nothing around it.
    {"a ", nullptr, nullptr, true},
    {"1 ", nullptr, nullptr, false},
    {"'s' ", nullptr, nullptr, false},
    {"{1 mm} ", nullptr, nullptr, false},
    {"null ", nullptr, nullptr, false},
    {"a.b ", nullptr, nullptr, true},
    {"f() ", nullptr, nullptr, false},
    {"(a) ", nullptr, nullptr, false},
    {"a ^ b ", nullptr, nullptr, true},
    {"a * b ", nullptr, nullptr, true},
    {"a \\ 1 ", nullptr, nullptr, false},
    {"a + b ", nullptr, nullptr, true},
    {"-a ", nullptr, nullptr, true},
    {"a - -b * c ", nullptr, nullptr, true},
    {"a < b ", nullptr, nullptr, true},
    {"a != 1 ", nullptr, nullptr, false},
    {"not a ", nullptr, nullptr, true},
    {"!a = b ", nullptr, nullptr, true},
    {"a and b ", nullptr, nullptr, true},
    {"a or 1 ", nullptr, nullptr, false},
    {"a ? b : c ", nullptr, nullptr, true},
    {"a ? b : 1 + 2 ", nullptr, nullptr, false},
    // Inside of something.
    {"(a ", ")", parenthesis, true},
    {"(a + 1 ", ")", parenthesis, false},
    {"((a ", ")", parenthesis, true},
    {"f(a ", ")", parenthesis, true},
    {"f(a, b = 1 ", ")", parenthesis, false},
    {"f(, a ", ")", parenthesis, true},
    {"x[a ", "]", bracket, true},
    {"x.y[.a < 1 ", "]", bracket, false},
    {"a ? b ", ":", colon, true},
    {"a ? b and 1 ", ":", colon, false},
    {"(a ? b ", ":", colon, true},
    {"(a ? b : c ", ")", parenthesis, true},
    {"x[a ? b : 1 ", "]", bracket, false},
};

TEST(StopTokens, BehindAnOperand) {
    for (const Behind& place : behinds) {
        const std::string before = place.before;
        for (const Token& token : tokens) {
            const std::string query = before + token.text;
            const std::string got = ParseDump(query);
            std::string expected;
            switch (token.kind) {
            case Class::Closer:
                if (place.closer == nullptr) {
                    expected = Unexpected(token, before.size());
                } else if (std::string(token.text) == place.closer) {
                    if (std::string(place.closer) == ":") {
                        expected = EndAfter(query);
                        break;
                    }
                    // What was open is closed; at most an outer one is missing now.
                    EXPECT_TRUE(got[0] != '!' || got == ParseError(parenthesis, static_cast<int>(query.size())))
                        << query << ": " << got;
                    continue;
                } else if (std::string(token.text) == "," && before.substr(0, 2) == "f(") {
                    expected = EndAfter(query); // the next argument
                } else {
                    expected = ParseError(place.missing, static_cast<int>(before.size()));
                }
                break;
            case Class::Question:
            case Class::Logic:
            case Class::Comparison:
            case Class::Sign:
            case Class::Product:
            case Class::Power:
                expected = EndAfter(query);
                break;
            case Class::Point:
                expected = EndAfter(query);
                break;
            case Class::Open:
                expected = place.name ? ParseError(parenthesis, static_cast<int>(query.size()))
                                      : Unexpected(token, before.size());
                break;
            case Class::Bracket:
                expected = EndAfter(query);
                break;
            case Class::Negation:
            case Class::Brace:
            case Class::Value:
            case Class::Other:
                expected = Unexpected(token, before.size());
                break;
            }
            EXPECT_EQ(got, expected) << query;
        }
    }
}

// ---- where the levels differ in what they leave to the one above ----

// A conditional may stand in each bracket, but its last branch takes what follows it.
TEST(StopTokens, ConditionsEndAtCommasColonsAndBrackets) {
    EXPECT_EQ(ParseDump("f(a ? b : c, d)"), "f((? a b c),d)");
    EXPECT_EQ(ParseDump("x[a ? b : c].d"), "x[(? a b c)].d");
    EXPECT_EQ(ParseDump("a ? f(b, c) : d"), "(? a f(b,c) d)");
    EXPECT_EQ(ParseDump("a ? x[b] : (c)"), "(? a x[b] c)");
    EXPECT_EQ(ParseDump("a ? (b) : c"), "(? a b c)");
}

// "!" before "=" is an operator even where the "=" was meant for something else; any other "!" ends the comparison.
TEST(StopTokens, ExclamationMarks) {
    EXPECT_EQ(ParseDump("a!=b"), "(!= a b)");
    EXPECT_EQ(ParseDump("a != b != c"), "(!= (!= a b) c)");
    EXPECT_EQ(ParseDump("a and!b"), "(and a (! b))");
    EXPECT_EQ(ParseDump("a &!b"), "(& a (! b))");
    EXPECT_EQ(ParseDump("a !b"), ParseError("Unexpected token '!'", 2));
    EXPECT_EQ(ParseDump("a + b !c"), ParseError("Unexpected token '!'", 6));
    EXPECT_EQ(ParseDump("a < b ! < c"), ParseError("Unexpected token '!'", 6));
}

} // namespace
} // namespace OrvUQL::Tests
