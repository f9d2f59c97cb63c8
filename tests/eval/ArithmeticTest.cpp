// Arithmetic on ints, doubles, bools, null, texts and what else there is, without units.

#include "eval/Nodes.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

namespace OrvUQL::Tests {
namespace {

using Arithmetic = CountedTest;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::string Evaluate(IQueryElement* element) {
    QueryEngine engine;
    const Ref<IQueryElement> tree(element);
    return Attempt([&](IError** err) { return engine.Evaluate(tree.Get(), err); });
}

std::string Text(int value) { return "int " + Utf8(OrvUtils::String::ToStringW(value)); }
std::string Text(double value) { return "double " + Utf8(OrvUtils::String::ToStringW(value)); }

constexpr int edges[] = {INT_MIN, INT_MIN + 1, -1073741824, -65536,     -46341,      -46340, -7, -3,
                         -2,      -1,          0,           1,          2,           3,      7,  46340,
                         46341,   65535,       65536,       1073741824, INT_MAX - 1, INT_MAX};

bool Fits(std::int64_t value) { return value >= INT_MIN && value <= INT_MAX; }

TEST_F(Arithmetic, OfInts) {
    for (const int a : edges) {
        for (const int b : edges) {
            const auto run = [&](const wchar_t* op) { return Evaluate(Binary(Literal(a), op, Literal(b))); };
            const std::string what = std::to_string(a) + " and " + std::to_string(b);
            const std::int64_t sum = std::int64_t{a} + b;
            EXPECT_EQ(run(L"+"), Fits(sum) ? Text(static_cast<int>(sum)) : "! Integer overflow") << what;
            const std::int64_t difference = std::int64_t{a} - b;
            EXPECT_EQ(run(L"-"), Fits(difference) ? Text(static_cast<int>(difference)) : "! Integer Underflow") << what;
            // A product beyond the ints is a double, not an error.
            const std::int64_t product = std::int64_t{a} * b;
            EXPECT_EQ(run(L"*"), Fits(product) ? Text(static_cast<int>(product)) : Text(static_cast<double>(a) * b))
                << what;
            // A quotient is always a double.
            EXPECT_EQ(run(L"/"), b == 0 ? "! Division By Zero" : Text(static_cast<double>(a) / b)) << what;
            if (b == 0) {
                EXPECT_EQ(run(L"\\"), "! Division By Zero") << what;
            } else if (a != INT_MIN || b != -1) {
                EXPECT_EQ(run(L"\\"), Text(a / b)) << what << ": towards zero";
            }
        }
        // The sign is not checked: the least int has no positive and stays what it is.
        EXPECT_EQ(Evaluate(Unary(L"-", Literal(a))), Text(a == INT_MIN ? INT_MIN : -a));
        EXPECT_EQ(Evaluate(Unary(L"+", Literal(a))), Text(a));
    }
}

// The one quotient that is no int either wraps or is an error; it must not end the process.
TEST_F(Arithmetic, TheLeastIntDividedByMinusOne) {
    const std::string got = Evaluate(Binary(Literal(INT_MIN), L"\\", Literal(-1)));
    EXPECT_TRUE(got == "int -2147483648" || got == "! Integer overflow") << got;
}

constexpr double doubles[] = {0.0,   -0.0,   1.0,    -1.0,   0.5,          1.5,          -2.5,     3.0,       0.1, 0.2,
                              1e308, -1e308, 1e-308, 5e-324, 4294967296.0, 2147483648.0, infinity, -infinity, nan};

/// The double that a tree evaluates to, bit by bit; the result of one operation on doubles is the same everywhere.
void ExpectDouble(IQueryElement* element, double expected, const std::string& what) {
    QueryEngine engine;
    const Ref<IQueryElement> tree(element);
    const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
    ASSERT_TRUE(value) << what;
    const auto* const number = dynamic_cast<const ObjectDouble*>(value.Get());
    ASSERT_NE(number, nullptr) << what << " gave " << Describe(value.Get());
    const double got = number->GetValue();
    if (std::isnan(expected)) {
        EXPECT_TRUE(std::isnan(got)) << what << " gave " << got;
        return;
    }
    EXPECT_EQ(std::memcmp(&got, &expected, sizeof got), 0) << what << " gave " << got << ", not " << expected;
}

TEST_F(Arithmetic, OfDoubles) {
    for (const double a : doubles) {
        for (const double b : doubles) {
            const std::string what = std::to_string(a) + " and " + std::to_string(b);
            ExpectDouble(Binary(Literal(a), L"+", Literal(b)), a + b, what + " +");
            ExpectDouble(Binary(Literal(a), L"-", Literal(b)), a - b, what + " -");
            ExpectDouble(Binary(Literal(a), L"*", Literal(b)), a * b, what + " *");
            if (b == 0.0) {
                EXPECT_EQ(Evaluate(Binary(Literal(a), L"/", Literal(b))), "! Division By Zero") << what;
            } else {
                ExpectDouble(Binary(Literal(a), L"/", Literal(b)), a / b, what + " /");
            }
        }
        ExpectDouble(Unary(L"-", Literal(a)), -a, std::to_string(a) + " negated");
        ExpectDouble(Unary(L"+", Literal(a)), a, std::to_string(a) + " unchanged");
    }
}

// One double makes doubles of both.
TEST_F(Arithmetic, OfIntsAndDoubles) {
    for (const int a : edges) {
        for (const double b : doubles) {
            const std::string what = std::to_string(a) + " and " + std::to_string(b);
            ExpectDouble(Binary(Literal(a), L"+", Literal(b)), a + b, what + " +");
            ExpectDouble(Binary(Literal(b), L"+", Literal(a)), b + a, what + " + reversed");
            ExpectDouble(Binary(Literal(a), L"-", Literal(b)), a - b, what + " -");
            ExpectDouble(Binary(Literal(b), L"-", Literal(a)), b - a, what + " - reversed");
            ExpectDouble(Binary(Literal(a), L"*", Literal(b)), a * b, what + " *");
            ExpectDouble(Binary(Literal(b), L"*", Literal(a)), b * a, what + " * reversed");
            if (b != 0.0) {
                ExpectDouble(Binary(Literal(a), L"/", Literal(b)), a / b, what + " /");
            }
            if (a != 0) {
                ExpectDouble(Binary(Literal(b), L"/", Literal(a)), b / a, what + " / reversed");
            }
        }
    }
}

TEST_F(Arithmetic, SignedNought) {
    ExpectDouble(Unary(L"-", Literal(0.0)), -0.0, "-0.0");
    ExpectDouble(Unary(L"-", Unary(L"-", Literal(0.0))), 0.0, "-(-0.0)");
    EXPECT_EQ(Evaluate(Unary(L"-", Literal(0))), "int 0") << "ints have only one";
    ExpectDouble(Binary(Literal(0), L"*", Literal(-1.5)), -0.0, "0 * -1.5");
}

TEST_F(Arithmetic, Powers) {
    // Exact where the result is a double.
    for (int base = -9; base <= 9; ++base) {
        double exact = 1;
        for (int exponent = 0; exponent <= 15; ++exponent) {
            const std::string what = std::to_string(base) + " ^ " + std::to_string(exponent);
            ExpectDouble(Binary(Literal(base), L"^", Literal(exponent)), exact, what);
            ExpectDouble(Binary(Literal(static_cast<double>(base)), L"^", Literal(static_cast<double>(exponent))),
                         exact, what);
            exact *= base;
        }
    }
    ExpectDouble(Binary(Literal(2), L"^", Literal(-3)), 0.125, "2 ^ -3");
    ExpectDouble(Binary(Literal(10), L"^", Literal(-1)), 0.1, "10 ^ -1");
    ExpectDouble(Binary(Literal(9), L"^", Literal(0.5)), 3.0, "9 ^ 0.5");
    ExpectDouble(Binary(Literal(2), L"^", Literal(1023)), std::ldexp(1.0, 1023), "2 ^ 1023");
    ExpectDouble(Binary(Literal(2), L"^", Literal(1024)), infinity, "2 ^ 1024");
    // Nothing is checked.
    ExpectDouble(Binary(Literal(0), L"^", Literal(0)), 1.0, "0 ^ 0");
    ExpectDouble(Binary(Literal(0), L"^", Literal(-1)), infinity, "0 ^ -1");
    ExpectDouble(Binary(Literal(-8), L"^", Literal(0.5)), nan, "-8 ^ 0.5");
    ExpectDouble(Binary(Literal(nan), L"^", Literal(0)), 1.0, "nan ^ 0");
    ExpectDouble(Binary(Literal(INT_MAX), L"^", Literal(1)), 2147483647.0, "a power is never an int");
}

struct Row {
    const char* name;
    IQueryElement* (*make)();
    const char* value;
};

void Check(const Row& row) { EXPECT_EQ(Evaluate(row.make()), row.value) << row.name; }

TEST_F(Arithmetic, OfBools) {
    const Row rows[] = {
        {"true + true", [] { return Binary(Truth(true), L"+", Truth(true)); }, "int 2"},
        {"true - 2", [] { return Binary(Truth(true), L"-", Literal(2)); }, "int -1"},
        {"true * 1.5", [] { return Binary(Truth(true), L"*", Literal(1.5)); }, "double 1.5"},
        {"false * 7", [] { return Binary(Truth(false), L"*", Literal(7)); }, "int 0"},
        {"1 / true", [] { return Binary(Literal(1), L"/", Truth(true)); }, "double 1"},
        {"1 / false", [] { return Binary(Literal(1), L"/", Truth(false)); }, "! Division By Zero"},
        {"7 \\ true", [] { return Binary(Literal(7), L"\\", Truth(true)); }, "int 7"},
        {"true ^ 2", [] { return Binary(Truth(true), L"^", Literal(2)); }, "double 1"},
        {"-true", [] { return Unary(L"-", Truth(true)); }, "int -1"},
        {"+false", [] { return Unary(L"+", Truth(false)); }, "int 0"},
        {"2147483647 + true", [] { return Binary(Literal(INT_MAX), L"+", Truth(true)); }, "! Integer overflow"},
    };
    for (const Row& row : rows) {
        Check(row);
    }
}

// Each conversion says in its own words that null is no number.
TEST_F(Arithmetic, OfNull) {
    constexpr const char* noInt = "! Cannot convert the object 'null' to type 'Int'";
    constexpr const char* noDouble = "! Cannot convert the object 'null' to type 'Double'";
    constexpr const char* noNumber = "! Cannot convert the object 'null' to a numeric type";
    const Row rows[] = {
        {"null + 1", [] { return Binary(Null(), L"+", Literal(1)); }, noInt},
        {"1.5 + null", [] { return Binary(Literal(1.5), L"+", Null()); }, noInt},
        {"null + 'a'", [] { return Binary(Null(), L"+", Literal(L"a")); }, noInt},
        // The left side is converted first.
        {"'a' + null", [] { return Binary(Literal(L"a"), L"+", Null()); }, "! Cannot convert string 'a' to Integer"},
        {"null - 1", [] { return Binary(Null(), L"-", Literal(1)); }, noNumber},
        {"1 - null", [] { return Binary(Literal(1), L"-", Null()); }, noNumber},
        {"null * 1", [] { return Binary(Null(), L"*", Literal(1)); }, noNumber},
        {"null / 1", [] { return Binary(Null(), L"/", Literal(1)); }, noDouble},
        {"1 / null", [] { return Binary(Literal(1), L"/", Null()); }, noDouble},
        {"null \\ 1", [] { return Binary(Null(), L"\\", Literal(1)); }, noInt},
        {"2 ^ null", [] { return Binary(Literal(2), L"^", Null()); }, noDouble},
        {"-null", [] { return Unary(L"-", Null()); }, noInt},
        {"+null", [] { return Unary(L"+", Null()); }, noInt},
    };
    for (const Row& row : rows) {
        Check(row);
    }
}

// Texts are added as texts and otherwise read as numbers.
TEST_F(Arithmetic, OfTexts) {
    const Row rows[] = {
        {"'a' + 'b'", [] { return Binary(Literal(L"a"), L"+", Literal(L"b")); }, "string ab"},
        {"'1' + 2", [] { return Binary(Literal(L"1"), L"+", Literal(2)); }, "string 12"},
        {"1 + '2'", [] { return Binary(Literal(1), L"+", Literal(L"2")); }, "string 12"},
        {"1.5 + 'a'", [] { return Binary(Literal(1.5), L"+", Literal(L"a")); }, "string 1.5a"},
        {"true + 'a'", [] { return Binary(Truth(true), L"+", Literal(L"a")); }, "string truea"},
        {"'' + ''", [] { return Binary(Literal(L""), L"+", Literal(L"")); }, "string "},
        {"'5' - 2", [] { return Binary(Literal(L"5"), L"-", Literal(2)); }, "int 3"},
        {"'0x10' - 0", [] { return Binary(Literal(L"0x10"), L"-", Literal(0)); }, "int 16"},
        {"' 5 ' * 2", [] { return Binary(Literal(L" 5 "), L"*", Literal(2)); }, "int 10"},
        {"'1.5' * '2'", [] { return Binary(Literal(L"1.5"), L"*", Literal(L"2")); }, "double 3"},
        {"'1.0' * 2", [] { return Binary(Literal(L"1.0"), L"*", Literal(2)); }, "double 2"},
        {"'7' / 2", [] { return Binary(Literal(L"7"), L"/", Literal(2)); }, "double 3.5"},
        {"'2.5' \\ 1", [] { return Binary(Literal(L"2.5"), L"\\", Literal(1)); }, "int 3"},
        {"'2' ^ '3'", [] { return Binary(Literal(L"2"), L"^", Literal(L"3")); }, "double 8"},
        {"-'5'", [] { return Unary(L"-", Literal(L"5")); }, "int -5"},
        {"+'1.50'", [] { return Unary(L"+", Literal(L"1.50")); }, "double 1.5"},
        {"-'-0.0'", [] { return Unary(L"-", Literal(L"-0.0")); }, "double 0"},
        {"'a' - 1", [] { return Binary(Literal(L"a"), L"-", Literal(1)); }, "! Cannot convert string 'a' to a number"},
        {"1 * ''", [] { return Binary(Literal(1), L"*", Literal(L"")); }, "! Cannot convert string '' to a number"},
        {"'a' / 1", [] { return Binary(Literal(L"a"), L"/", Literal(1)); }, "! Cannot convert string 'a' to Double"},
        {"'a' \\ 1", [] { return Binary(Literal(L"a"), L"\\", Literal(1)); }, "! Cannot convert string 'a' to Integer"},
        {"'0x10' / 1", [] { return Binary(Literal(L"0x10"), L"/", Literal(1)); },
         "! Cannot convert string '0x10' to Double"},
        {"-'a'", [] { return Unary(L"-", Literal(L"a")); }, "! Cannot convert string 'a' to a number"},
        {"'3000000000' \\ 1", [] { return Binary(Literal(L"3000000000"), L"\\", Literal(1)); },
         "! Data overflow occured while converting a floating point number 3000000000 to integer"},
        {"'3000000000' - 1", [] { return Binary(Literal(L"3000000000"), L"-", Literal(1)); }, "double 2999999999"},
    };
    for (const Row& row : rows) {
        Check(row);
    }
}

TEST_F(Arithmetic, OfDoublesAsInts) {
    EXPECT_EQ(Evaluate(Binary(Literal(2.5), L"\\", Literal(1))), "int 3");
    EXPECT_EQ(Evaluate(Binary(Literal(-2.5), L"\\", Literal(1))), "int -3");
    EXPECT_EQ(Evaluate(Binary(Literal(7), L"\\", Literal(0.4))), "! Division By Zero") << "0.4 is rounded to 0";
    EXPECT_EQ(Evaluate(Binary(Literal(1e10), L"\\", Literal(1))),
              "! Data overflow occured while converting a floating point number 10000000000 to integer");
    EXPECT_EQ(Evaluate(Binary(Literal(nan), L"\\", Literal(1))), "int -2147483648");
}

TEST_F(Arithmetic, OfOtherObjects) {
    const Row rows[] = {
        // Two of them are added as texts ...
        {"array + array", [] { return Binary(Array({Literal(1)}), L"+", Array({Literal(2)})); }, "string (1)(2)"},
        {"array + 'a'", [] { return Binary(Array({Literal(1)}), L"+", Literal(L"a")); }, "string (1)a"},
        {"global + 5", [] { return Binary(Literal(new ObjectGlobal()), L"+", Literal(5)); }, "string 5"},
        {"array + global", [] { return Binary(Array({}), L"+", Literal(new ObjectGlobal())); }, "string ()"},
        // ... but beside a number they are to be numbers.
        {"array(1, 2) + 1",
         [] {
             return Binary(Array({Literal(1), Literal(2)}), L"+", Literal(1));
         },
         "int -11"},
        {"array() + 1", [] { return Binary(Array({}), L"+", Literal(1)); }, "! Cannot convert string '()' to Integer"},
        {"array(5) - 1", [] { return Binary(Array({Literal(5)}), L"-", Literal(1)); }, "int -6"},
        {"-array(5)", [] { return Unary(L"-", Array({Literal(5)})); }, "int 5"},
        {"global - 1", [] { return Binary(Literal(new ObjectGlobal()), L"-", Literal(1)); },
         "! Cannot convert string '' to a number"},
        {"-global", [] { return Unary(L"-", Literal(new ObjectGlobal())); }, "! Cannot convert string '' to Integer"},
        // An expression has no value and says nothing.
        {"expression + expression",
         [] { return Binary(Literal(new ObjectExpression(nullptr)), L"+", Literal(new ObjectExpression(nullptr))); },
         "!"},
        {"1 + expression", [] { return Binary(Literal(1), L"+", Literal(new ObjectExpression(nullptr))); }, "!"},
        {"'a' + expression", [] { return Binary(Literal(L"a"), L"+", Literal(new ObjectExpression(nullptr))); }, "!"},
        {"expression - 1", [] { return Binary(Literal(new ObjectExpression(nullptr)), L"-", Literal(1)); }, "!"},
        {"-expression", [] { return Unary(L"-", Literal(new ObjectExpression(nullptr))); }, "!"},
    };
    for (const Row& row : rows) {
        Check(row);
    }
}

// A sum of texts grows where nobody sees it: neither the literal nor a text that a host holds is changed.
TEST_F(Arithmetic, LeavesTextsAlone) {
    QueryEngine engine;
    OrvStringT held(L"held by the host");
    held += L'.'; // a buffer with room behind the text
    const Ref<ObjectString> value = Make<ObjectString>(held);
    const Ref<IQueryElement> tree(Binary(Binary(Literal(value.Share()), L"+", Literal(L" more")), L"+", Literal(1)));
    for (int round = 0; round < 3; ++round) {
        const Ref<IObject> sum(engine.Evaluate(tree.Get(), nullptr));
        EXPECT_EQ(Describe(sum.Get()), "string held by the host. more1");
        EXPECT_EQ(held, L"held by the host.");
        EXPECT_EQ(value->GetValue(), L"held by the host.");
    }
    const Ref<IQueryElement> doubled(Binary(Literal(value.Share()), L"+", Literal(value.Share())));
    const Ref<IObject> twice(engine.Evaluate(doubled.Get(), nullptr));
    EXPECT_EQ(Describe(twice.Get()), "string held by the host.held by the host.");
    const Ref<IQueryElement> empty(Binary(Literal(value.Share()), L"+", Literal(L"")));
    const Ref<IObject> same(engine.Evaluate(empty.Get(), nullptr));
    EXPECT_EQ(Describe(same.Get()), "string held by the host.");
    EXPECT_NE(same.Get(), value.Get());
}

// A result that was handed out is not continued by the next evaluation.
TEST_F(Arithmetic, LeavesItsResultsAlone) {
    QueryEngine engine;
    const Ref<IObject> first([&] {
        const Ref<IQueryElement> tree(Binary(Literal(L"a"), L"+", Literal(L"b")));
        return engine.Evaluate(tree.Get(), nullptr);
    }());
    const Ref<IQueryElement> tree(Binary(Literal(Ref<IObject>(first.Share()).Detach()), L"+", Literal(L"c")));
    const Ref<IObject> second(engine.Evaluate(tree.Get(), nullptr));
    EXPECT_EQ(Describe(first.Get()), "string ab");
    EXPECT_EQ(Describe(second.Get()), "string abc");
}

TEST_F(Arithmetic, TextsMayHoldNul) {
    const Ref<ObjectString> text = Make<ObjectString>(OrvStringT(L"a\0b", 3));
    QueryEngine engine;
    const Ref<IQueryElement> tree(Binary(Literal(text.Share()), L"+", Literal(text.Share())));
    const Ref<IObject> sum(engine.Evaluate(tree.Get(), nullptr));
    EXPECT_EQ(dynamic_cast<const ObjectString&>(*sum).GetValue(), OrvStringT(L"a\0ba\0b", 6));
}

} // namespace
} // namespace OrvUQL::Tests
