// The grammar level by level: what binds how, and where each node stands.

#include "parser/ParseCheck.h"

#include <gtest/gtest.h>

#include <vector>

namespace OrvUQL::Tests {
namespace {

struct Row {
    const char* query;
    const char* tree;
};

template <std::size_t N> void Check(const Row (&rows)[N], DumpPositions positions = DumpPositions::No) {
    for (const Row& row : rows) {
        EXPECT_EQ(ParseDump(row.query, positions), row.tree) << row.query;
    }
}

TEST(Grammar, Conditions) {
    constexpr Row rows[] = {
        {"a ? b : c", "(? a b c)"},
        {"a?b:c", "(? a b c)"},
        // The branches are conditions again, so the operator associates to the right and nests in the middle.
        {"a ? b : c ? d : e", "(? a b (? c d e))"},
        {"a ? b ? c : d : e", "(? a (? b c d) e)"},
        {"a ? b ? c : d : e ? f : g", "(? a (? b c d) (? e f g))"},
        {"(a ? b : c) ? d : e", "(? (? a b c) d e)"},
        // Everything else binds tighter.
        {"a or b ? c and d : e or f", "(? (or a b) (and c d) (or e f))"},
        {"a = b ? c : d", "(? (= a b) c d)"},
        {"not a ? b : c", "(? (not a) b c)"},
        {"-a ? -b : -c", "(? (- a) (- b) (- c))"},
        {"a + b ? c : d", "(? (+ a b) c d)"},
        {"a ? b : c = d", "(? a b (= c d))"},
        {"(a ? b : c) = d", "(= (? a b c) d)"},
    };
    Check(rows);
}

TEST(Grammar, LogicHasOnePrecedence) {
    constexpr Row rows[] = {
        {"a and b", "(and a b)"},
        {"a or b", "(or a b)"},
        {"a & b", "(& a b)"},
        {"a | b", "(| a b)"},
        {"a&b|c", "(| (& a b) c)"},
        // Deliberate: "and" binds no tighter than "or".
        {"a or b and c", "(and (or a b) c)"},
        {"a and b or c", "(or (and a b) c)"},
        {"a | b & c and d or e", "(or (and (& (| a b) c) d) e)"},
        {"a and (b or c)", "(and a (or b c))"},
        // Negation and comparison bind tighter.
        {"not a and b", "(and (not a) b)"},
        {"a and not b", "(and a (not b))"},
        {"a or !b", "(or a (! b))"},
        {"a = b and c < d", "(and (= a b) (< c d))"},
        {"not a = b or !c <> d", "(or (not (= a b)) (! (<> c d)))"},
        // Texts are kept as written.
        {"a AND b Or c", "(Or (AND a b) c)"},
        {"1and 2", "(and 1 2)"},
        {"(a)and(b)", "(and a b)"},
        {"'a'or'b'", "(or 'a' 'b')"},
    };
    Check(rows);
}

TEST(Grammar, NegationIsOfTheWholeComparison) {
    constexpr Row rows[] = {
        {"not a", "(not a)"},
        {"!a", "(! a)"},
        {"! a", "(! a)"},
        {"NOT a", "(NOT a)"},
        {"nOt(a)", "(nOt a)"},
        // Deliberate.
        {"not a = b", "(not (= a b))"},
        {"!a = b", "(! (= a b))"},
        {"!a < b < c", "(! (< (< a b) c))"},
        {"(not a) = b", "(= (not a) b)"},
        {"a = (not b)", "(= a (not b))"},
        {"not a + b", "(not (+ a b))"},
        {"not -a", "(not (- a))"},
        {"!-a", "(! (- a))"},
        {"not (not a)", "(not (not a))"},
        {"!(!a)", "(! (! a))"},
        {"!a != b", "(! (!= a b))"},
        {"(!a)", "(! a)"},
        {"f(!a, not b)", "f((! a),(not b))"},
        {"x[!a]", "x[(! a)]"},
        {"a ? !b : not c", "(? a (! b) (not c))"},
    };
    Check(rows);
}

TEST(Grammar, Comparisons) {
    constexpr Row rows[] = {
        {"a < b", "(< a b)"},
        {"a > b", "(> a b)"},
        {"a = b", "(= a b)"},
        {"a <= b", "(<= a b)"},
        {"a >= b", "(>= a b)"},
        {"a == b", "(== a b)"},
        {"a != b", "(!= a b)"},
        {"a =< b", "(=< a b)"},
        {"a => b", "(=> a b)"},
        {"a <> b", "(<> a b)"},
        {"a >< b", "(>< a b)"},
        // These are read too, and mean nothing.
        {"a << b", "(<< a b)"},
        {"a >> b", "(>> a b)"},
        {"a<b", "(< a b)"},
        {"a<=b", "(<= a b)"},
        {"a!=b", "(!= a b)"},
        {"a=-b", "(= a (- b))"},
        {"a<-b", "(< a (- b))"},
        {"a < +b", "(< a (+ b))"},
        // They associate to the left.
        {"a < b < c", "(< (< a b) c)"},
        {"a = b <> c == d", "(== (<> (= a b) c) d)"},
        {"a = (b = c)", "(= a (= b c))"},
        // Sums bind tighter.
        {"a + b = c - d", "(= (+ a b) (- c d))"},
        {"a * b < c ^ d", "(< (* a b) (^ c d))"},
    };
    Check(rows);
}

TEST(Grammar, SumsAndSigns) {
    constexpr Row rows[] = {
        {"a + b", "(+ a b)"},
        {"a - b", "(- a b)"},
        {"a - b - c", "(- (- a b) c)"},
        {"a - b + c", "(+ (- a b) c)"},
        {"a - (b - c)", "(- a (- b c))"},
        {"a+b*c", "(+ a (* b c))"},
        {"a*b+c", "(+ (* a b) c)"},
        // A sign is of the whole term behind it.
        {"-a", "(- a)"},
        {"+a", "(+ a)"},
        {"- a", "(- a)"},
        {"-a*b", "(- (* a b))"},
        {"-a*b^c", "(- (* a (^ b c)))"},
        {"-2 ^ 2", "(- (^ 2 2))"},
        {"-a + b", "(+ (- a) b)"},
        {"-a - -b", "(- (- a) (- b))"},
        {"1 - -2", "(- 1 (- 2))"},
        {"1 + +2", "(+ 1 (+ 2))"},
        {"1--2", "(- 1 (- 2))"},
        {"1 - -2 * 3", "(- 1 (- (* 2 3)))"},
        {"-(a)", "(- a)"},
        {"-(-a)", "(- (- a))"},
        {"2 * (-3)", "(* 2 (- 3))"},
        {"-1.Abs()", "(- 1.Abs)"},
        {"(-1).Abs()", "(- 1).Abs"},
        {"-{1 mm}", "(- {1 mm})"},
    };
    Check(rows);
}

TEST(Grammar, TermsAndPowers) {
    constexpr Row rows[] = {
        {"a * b", "(* a b)"},
        {"a / b", "(/ a b)"},
        {"a \\ b", "(\\ a b)"},
        {"a / b * c \\ d", "(\\ (* (/ a b) c) d)"},
        {"a * (b / c)", "(* a (/ b c))"},
        {"a * b ^ c", "(* a (^ b c))"},
        {"a ^ b * c", "(* (^ a b) c)"},
        {"a ^ b", "(^ a b)"},
        // To the left like all the others, deliberately.
        {"2^3^2", "(^ (^ 2 3) 2)"},
        {"2^(3^2)", "(^ 2 (^ 3 2))"},
        {"a.b^c.d", "(^ a.b c.d)"},
        {"a[b]^c[d]", "(^ a[b] c[d])"},
    };
    Check(rows);
}

TEST(Grammar, ParenthesesLeaveNoTrace) {
    constexpr Row rows[] = {
        {"(a)", "a"},
        {"((((a))))", "a"},
        {" ( ( a ) ) ", "a"},
        {"(a + b) * c", "(* (+ a b) c)"},
        {"(a).b", "a.b"},
        {"(a)[b]", "a[b]"},
        {"(1 + 2).x(3)", "(+ 1 2).x(3)"},
        {"(a ? b : c)", "(? a b c)"},
    };
    Check(rows);
}

TEST(Grammar, NamesAndCalls) {
    constexpr Row rows[] = {
        {"a", "a"},
        {"_", "_"},
        {"@a", "@a"},
        {"$a", "$a"},
        {"@", "@"},
        {"@1", "@1"},
        // A property is a call without arguments.
        {"a()", "a"},
        {"a( )", "a"},
        {"a ( )", "a"},
        {"a\n(\t)", "a"},
        {"a(b)", "a(b)"},
        {"a(b, c , d)", "a(b,c,d)"},
        {"@a(b)", "@a(b)"},
        {"a(b(c(d)))", "a(b(c(d)))"},
        {"a(b ? c : d, e or f)", "a((? b c d),(or e f))"},
        // Only a first argument can be left out.
        {"f(,a)", "f(_,a)"},
        {"f( , a)", "f(_,a)"},
        {"f(,a,b)", "f(_,a,b)"},
        {"x.f(,a)", "x.f(_,a)"},
        // Words that are operators elsewhere are names behind a point, and parts of longer names are nothing special.
        {"x.not", "x.not"},
        {"x.Not()", "x.Not"},
        {"x.and.or", "x.and.or"},
        {"x.null.true.false", "x.null.true.false"},
        {"notx", "notx"},
        {"nota or andb", "(or nota andb)"},
        {"@and and @or", "(and @and @or)"},
        {"Truex", "Truex"},
        {"nulls", "nulls"},
        // A character that no rule takes is a name, which fails when it is evaluated.
        {"#", "#"},
        {"#.a", "#.a"},
        {"#(a)", "#(a)"},
        {"[", "["},
        {"[(a)", "[(a)"},
        {"}", "}"},
        {";", ";"},
        {"\"", "\""},
        {"\xc3\xa4", "\xc3\xa4"},
        {"\xc3\xa4 + \xc3\xa4", "(+ \xc3\xa4 \xc3\xa4)"},
        {"\f", "\f"},
    };
    Check(rows);
}

TEST(Grammar, Members) {
    constexpr Row rows[] = {
        {"x.y", "x.y"},
        {"x .y", "x.y"},
        {"x\n.y\n.z", "x.y.z"},
        {"x.y(1, 2).z", "x.y(1,2).z"},
        {"x.y.z(a.b)", "x.y.z(a.b)"},
        {"x().y()", "x.y"},
        {"'abc'.Length()", "'abc'.Length"},
        {"5.Radix(2)", "5.Radix(2)"},
        {"1.5.Round()", "1.5d.Round"},
        {"0x1F.Abs()", "31.Abs"},
        {"{1 cm}.Value", "{1 cm}.Value"},
        {"true.a", "true.a"},
        {"null.a.b", "null.a.b"},
        {"@x.y", "@x.y"},
        {"$x.y", "$x.y"},
        // Without a parent.
        {".a", ".a"},
        {".a.b(c).d", ".a.b(c).d"},
        {"f(.a)", "f(.a)"},
        {"-.a", "(- .a)"},
    };
    Check(rows);
}

TEST(Grammar, Groups) {
    constexpr Row rows[] = {
        {"x[a]", "x[a]"},
        {"x [ a ]", "x[a]"},
        {"x[.a]", "x[.a]"},
        {"x[.a = 1 and .b]", "x[(and (= .a 1) .b)]"},
        {"x[a ? b : c]", "x[(? a b c)]"},
        {"x[a[b]]", "x[a[b]]"},
        {"'a'[.b]", "'a'[.b]"},
        {"5[.b]", "5[.b]"},
        {"null[a]", "null[a]"},
        {"(a)[b]", "a[b]"},
        {"f(a)[b]", "f(a)[b]"},
        // One group, a chain, one more group.
        {"x[a].b", "x[a].b"},
        {"x[a].b.c", "x[a].b.c"},
        {"x.b[a]", "x.b[a]"},
        {"x[a].b[c]", "x[a].b[c]"},
        {"x[a][b]", "x[a][b]"},
        {"(x[a].b[c])[d]", "x[a].b[c][d]"},
        {"(x[a][b]).c", "x[a][b].c"},
        // After a leading point the chain comes first, then one group.
        {".a[b]", ".a[b]"},
        {".a.b[c]", ".a.b[c]"},
        {"(.a[b])[c]", ".a[b][c]"},
        // A character that is a name can have a group too.
        {"[[a]", "[[a]"},
    };
    Check(rows);
}

TEST(Grammar, Positions) {
    constexpr Row rows[] = {
        {"a + b", "(+@2 a@0 b@4)"},
        {"  a+b", "(+@3 a@2 b@4)"},
        {"\t\r\n a", "a@4"},
        // Operators stand where they begin, negations and signs included.
        {"a and b", "(and@2 a@0 b@6)"},
        {"a  <=  b", "(<=@3 a@0 b@7)"},
        {"a != b", "(!=@2 a@0 b@5)"},
        {"not a = b", "(not@0 (=@6 a@4 b@8))"},
        {" ! a", "(!@1 a@3)"},
        {"- a * b", "(-@0 (*@4 a@2 b@6))"},
        {"1 - - 2", "(-@2 1@0 (-@4 2@6))"},
        {"2 ^ 3 ^ 4", "(^@6 (^@2 2@0 3@4) 4@8)"},
        {"a \\ b", "(\\@2 a@0 b@4)"},
        // A conditional stands at its question mark.
        {"a ? b : c", "(?@2 a@0 b@4 c@8)"},
        {"a ? b : c ? d : e", "(?@2 a@0 b@4 (?@10 c@8 d@12 e@16))"},
        // Parentheses do not count.
        {"(a)", "a@1"},
        {"( (a + b) )", "(+@5 a@3 b@7)"},
        // A name stands at itself, not at its "(", and a member not at its point.
        {"f(a, b)", "f@0(a@2,b@5)"},
        {"f ( , a )", "f@0(_,a@6)"},
        {"x.y", "x@0.y@2"},
        {"x  .y(1).z", "x@0.y@4(1@6).z@9"},
        {".a", ".a@1"},
        {" .a.b", ".a@2.b@4"},
        {"@x.y", "@x@0.y@3"},
        {"$x", "$x@0"},
        {"#", "#@0"},
        // A group stands at its bracket.
        {"x[a]", "x@0[@1a@2]"},
        {"x.y [ .a ]", "x@0.y@2[@4.a@7]"},
        {"x[a].b[c]", "x@0[@1a@2].b@5[@6c@7]"},
        // Literals stand at their first character.
        {" 'abc' ", "'abc'@1"},
        {" 12.5 ", "12.5d@1"},
        {" {1 cm} ", "{1 cm}@1"},
        {" true", "true@1"},
        {" null", "null@1"},
        // In code units: a character beyond U+FFFF counts for two.
        {"'\xc3\xa4' + a", "(+@4 '\xc3\xa4'@0 a@6)"},
        {"'\xf0\x9f\x98\x80' + a", "(+@5 '\xf0\x9f\x98\x80'@0 a@7)"},
    };
    Check(rows, DumpPositions::Yes);
}

// ---- each pair of binary operators ----

struct Operator {
    const char* text;
    int level;
};

constexpr Operator operators[] = {
    {"and", 1}, {"&", 1},  {"or", 1}, {"|", 1},  {"<", 2},  {">", 2},  {"=", 2},  {"<=", 2},
    {">=", 2},  {"==", 2}, {"!=", 2}, {"=<", 2}, {"=>", 2}, {"<>", 2}, {"><", 2}, {"<<", 2},
    {">>", 2},  {"+", 3},  {"-", 3},  {"*", 4},  {"/", 4},  {"\\", 4}, {"^", 5},
};

TEST(Grammar, EachPairOfBinaryOperators) {
    for (const Operator& first : operators) {
        for (const Operator& second : operators) {
            const std::string query = std::string("a ") + first.text + " b " + second.text + " c";
            const std::string one = first.text;
            const std::string two = second.text;
            // All associate to the left.
            const std::string expected =
                second.level > first.level ? "(" + one + " a (" + two + " b c))" : "(" + two + " (" + one + " a b) c)";
            EXPECT_EQ(ParseDump(query), expected) << query;
        }
    }
}

TEST(Grammar, EachBinaryOperatorBesideASign) {
    for (const Operator& op : operators) {
        const std::string text = op.text;
        const bool tighter = op.level >= 4;
        EXPECT_EQ(ParseDump("-a " + text + " b"), tighter ? "(- (" + text + " a b))" : "(" + text + " (- a) b)")
            << text;
        EXPECT_EQ(ParseDump("a " + text + " -b"),
                  tighter ? ParseError("Unexpected token '-'", static_cast<int>(text.size()) + 3)
                          : "(" + text + " a (- b))")
            << text;
    }
}

TEST(Grammar, EachBinaryOperatorBesideANegation) {
    for (const Operator& op : operators) {
        const std::string text = op.text;
        const bool tighter = op.level >= 2;
        EXPECT_EQ(ParseDump("not a " + text + " b"), tighter ? "(not (" + text + " a b))" : "(" + text + " (not a) b)")
            << text;
        const int position = static_cast<int>(text.size()) + 3;
        EXPECT_EQ(ParseDump("a " + text + " not b"),
                  tighter ? ParseError("Unexpected token 'not'", position) : "(" + text + " a (not b))")
            << text;
        EXPECT_EQ(ParseDump("a " + text + " !b"),
                  tighter ? ParseError("Unexpected token '!'", position) : "(" + text + " a (! b))")
            << text;
    }
}

TEST(Grammar, WhiteSpaceMayStandBetweenAnyTwoTokens) {
    // Only a point and its name, and the characters of one operator, stand together.
    const std::vector<std::string> tokens = {"not", "f", "(",  ",", "-",  "1.5", "*", "{",  "2",  "cm", "^", "2", "}",
                                             ")",   "[", ".x", "]", ".m", "(",   ")", "<=", "$v", "?",  "a", ":", "b"};
    const std::string tree = "(? (not (<= f(_,(- (* 1.5d {2 cm\xc2\xb2})))[.x].m $v)) a b)";
    for (const char* space : {" ", "  ", "\t", "\r\n", "\n \t"}) {
        std::string query = space;
        for (const std::string& token : tokens) {
            query += token + space;
        }
        EXPECT_EQ(ParseDump(query), tree) << query;
    }
    std::string query;
    for (const std::string& token : tokens) {
        query += token == "f" ? " f" : token;
    }
    EXPECT_EQ(ParseDump(query), tree) << query;
}

} // namespace
} // namespace OrvUQL::Tests
