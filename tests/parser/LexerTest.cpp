// Tokens: where they begin and end, and what moves the cursor.

#include "parser/Lexer.h"

#include "support/Print.h"
#include "support/Ref.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

/// A text with a cursor in it. Tables are written in UTF-8.
struct Reader {
    explicit Reader(std::string_view utf8, int position = 0) : text(OrvStringT::FromUtf8(utf8)) {
        cursor.position = position;
        cursor.text = text.GetString();
    }

    OrvStringT text;
    ParseCursor cursor{};
};

std::vector<std::string> Tokens(std::string_view utf8) {
    Reader reader(utf8);
    std::vector<std::string> tokens;
    for (;;) {
        SkipSpaces(reader.cursor);
        const OrvStringT token = PeekToken(reader.cursor);
        if (token.IsEmpty()) {
            return tokens;
        }
        tokens.push_back(Utf8(token));
        reader.cursor.position += token.GetLength();
    }
}

using List = std::vector<std::string>;

constexpr int lastUnit = 0xffff;

bool IsSpaceUnit(int unit) { return unit == 9 || unit == 10 || unit == 13 || unit == 32; }
bool IsDigitUnit(int unit) { return unit >= '0' && unit <= '9'; }
bool IsLetterUnit(int unit) { return (unit >= 'A' && unit <= 'Z') || (unit >= 'a' && unit <= 'z') || unit == '_'; }

TEST(LexerSpaces, AreTabLineFeedReturnAndBlankAndNothingElse) {
    for (int unit = 1; unit <= lastUnit; ++unit) {
        const wchar_t text[] = {static_cast<wchar_t>(unit), L'\0'};
        ParseCursor cursor{0, text};
        SkipSpaces(cursor);
        ASSERT_EQ(cursor.position, IsSpaceUnit(unit) ? 1 : 0) << "unit " << unit;
    }
}

TEST(LexerSpaces, EndWithTheFirstOtherCharacterOrTheText) {
    Reader between("a \t\r\n b", 1);
    SkipSpaces(between.cursor);
    EXPECT_EQ(between.cursor.position, 6);
    SkipSpaces(between.cursor);
    EXPECT_EQ(between.cursor.position, 6);

    Reader blank("  \t\r\n");
    SkipSpaces(blank.cursor);
    EXPECT_EQ(blank.cursor.position, 5);
    SkipSpaces(blank.cursor);
    EXPECT_EQ(blank.cursor.position, 5);

    Reader empty("");
    SkipSpaces(empty.cursor);
    EXPECT_EQ(empty.cursor.position, 0);
}

TEST(LexerTokens, AreLookedAtWithoutMoving) {
    Reader reader("ab + 0x1F'x'", 5);
    for (int repetition = 0; repetition < 2; ++repetition) {
        EXPECT_EQ(PeekToken(reader.cursor), L"0x1F");
        EXPECT_EQ(PeekTokenView(reader.cursor), L"0x1F");
        EXPECT_EQ(reader.cursor.position, 5);
        EXPECT_EQ(reader.cursor.text, reader.text.GetString());
    }
}

TEST(LexerTokens, DoNotSkipSpaces) {
    EXPECT_EQ(PeekToken(Reader("  a").cursor), L" ");
    EXPECT_EQ(PeekToken(Reader("\na").cursor), L"\n");
}

TEST(LexerTokens, AreEmptyOnlyAtTheEnd) {
    EXPECT_TRUE(PeekToken(Reader("").cursor).IsEmpty());
    EXPECT_TRUE(PeekToken(Reader("ab", 2).cursor).IsEmpty());
    EXPECT_TRUE(Tokens("  \t\r\n").empty());
    for (int unit = 1; unit <= lastUnit; ++unit) {
        const wchar_t text[] = {static_cast<wchar_t>(unit), L'\0'};
        ASSERT_EQ(PeekToken(ParseCursor{0, text}).GetLength(), 1) << "unit " << unit;
    }
}

// A name begins with a letter A to Z, "_", "@" or "$". Everything else stands alone, letters with accents, full-width
// digits and halves of surrogate pairs included.
TEST(LexerTokens, BeginANameWithExactlyTheNameCharacters) {
    for (int unit = 1; unit <= lastUnit; ++unit) {
        if (IsDigitUnit(unit) || unit == '\'') {
            continue;
        }
        const wchar_t text[] = {static_cast<wchar_t>(unit), L'q', L'7', L'_', L'\0'};
        const bool name = IsLetterUnit(unit) || unit == '@' || unit == '$';
        ASSERT_EQ(PeekToken(ParseCursor{0, text}).GetLength(), name ? 4 : 1) << "unit " << unit;
    }
}

TEST(LexerTokens, ContinueANameWithLettersAndDigitsOnly) {
    for (int unit = 1; unit <= lastUnit; ++unit) {
        const wchar_t text[] = {L'q', static_cast<wchar_t>(unit), L'\0'};
        const bool name = IsLetterUnit(unit) || IsDigitUnit(unit);
        ASSERT_EQ(PeekToken(ParseCursor{0, text}).GetLength(), name ? 2 : 1) << "unit " << unit;
    }
}

struct TokenCase {
    const char* text;
    List tokens;
};

TEST(LexerTokens, Table) {
    const TokenCase cases[] = {
        // Every operator is one character; the parser joins them.
        {"()[]{},.+-*/\\^&|!<>=?:", {"(", ")",  "[", "]", "{", "}", ",", ".", "+", "-", "*",
                                     "/", "\\", "^", "&", "|", "!", "<", ">", "=", "?", ":"}},
        {"<=>=<>==!=", {"<", "=", ">", "=", "<", ">", "=", "=", "!", "="}},
        {"#;~`\"%", {"#", ";", "~", "`", "\"", "%"}},
        // Names.
        {"abc _a a_1 A9z", {"abc", "_a", "a_1", "A9z"}},
        {"@name $name @ $ @1 $_", {"@name", "$name", "@", "$", "@1", "$_"}},
        {"a@b a$b @@x @$x", {"a", "@b", "a", "$b", "@", "@x", "@", "$x"}},
        {"and Or NOT TRUE false Null", {"and", "Or", "NOT", "TRUE", "false", "Null"}},
        {"andy nota _or", {"andy", "nota", "_or"}},
        {"a.b", {"a", ".", "b"}},
        {"1a", {"1", "a"}},
        {"\xc3\xa4x x\xc3\xa4", {"\xc3\xa4", "x", "x", "\xc3\xa4"}},
        // Form feed, vertical tab and the wide spaces are no white space here.
        {"a\fb\vc", {"a", "\f", "b", "\v", "c"}},
        {"\xc2\xa0", {"\xc2\xa0"}},
        // Strings keep their apostrophes.
        {"'abc'", {"'abc'"}},
        {"''", {"''"}},
        {"'it''s'", {"'it''s'"}},
        {"''''", {"''''"}},
        {"''''''", {"''''''"}},
        {"'a' 'b'", {"'a'", "'b'"}},
        {"'a''b' 'c'", {"'a''b'", "'c'"}},
        {"'a'b", {"'a'", "b"}},
        {"'a\n b'", {"'a\n b'"}},
        {"'\"@$1.5+'", {"'\"@$1.5+'"}},
        // Without a closing apostrophe a string goes to the end of the text.
        {"'abc", {"'abc"}},
        {"'", {"'"}},
        {"'''", {"'''"}},
        {"'abc''", {"'abc''"}},
        {"'abc'' + 1", {"'abc'' + 1"}},
        {"a 'b + 1", {"a", "'b + 1"}},
        // Numbers inside of other things.
        {"1+2", {"1", "+", "2"}},
        {"1-2", {"1", "-", "2"}},
        {"5.Radix(2)", {"5", ".", "Radix", "(", "2", ")"}},
        {"1.5.Round()", {"1.5", ".", "Round", "(", ")"}},
        {"2.5.1", {"2.5", ".", "1"}},
        {"1..2", {"1", ".", ".", "2"}},
        {".5", {".", "5"}},
        {"-5", {"-", "5"}},
        {"1e5.5", {"1e5.5"}},
        {"1e5.5.5", {"1e5.5", ".", "5"}},
        {"1e5e5", {"1e5", "e5"}},
        {"10x5", {"10", "x5"}},
        {"0x1F.5", {"0x1F", ".", "5"}},
        {"{2.54cm}", {"{", "2.54", "cm", "}"}},
        {"{10 mm\xc2\xb2}", {"{", "10", "mm", "\xc2\xb2", "}"}},
        {"{5em}", {"{", "5e", "m", "}"}},
    };
    for (const TokenCase& row : cases) {
        EXPECT_EQ(Tokens(row.text), row.tokens) << row.text;
    }
}

// A character outside of the first 65536 is two code units wherever it comes from.
TEST(LexerTokens, SplitAtSurrogates) {
    const Reader reader("\xf0\x9f\x98\x80");
    ASSERT_EQ(reader.text.GetLength(), 2);
    EXPECT_EQ(PeekToken(reader.cursor), OrvStringT(static_cast<wchar_t>(0xd83d), 1));
    EXPECT_EQ(PeekToken(ParseCursor{1, reader.cursor.text}), OrvStringT(static_cast<wchar_t>(0xde00), 1));
}

struct NumberCase {
    const char* text;
    const char* number;
};

constexpr NumberCase numbers[] = {
    {"0", "0"},
    {"007", "007"},
    {"12345678901234567890", "12345678901234567890"},
    {"12 3", "12"},
    {"1,234", "1"},
    {"1_000", "1"},
    // The point needs a digit behind it, and there is only one.
    {"1.5", "1.5"},
    {"1.", "1"},
    {"1. 5", "1"},
    {"1.e5", "1"},
    {"1.x", "1"},
    {"1.5.5", "1.5"},
    {"1.5.", "1.5"},
    // The exponent's letter needs nothing behind it.
    {"1e5", "1e5"},
    {"1E5", "1E5"},
    {"1e", "1e"},
    {"1e+", "1e+"},
    {"1e-", "1e-"},
    {"1e+5", "1e+5"},
    {"1e-5", "1e-5"},
    {"1e+-5", "1e+"},
    {"1e 5", "1e"},
    {"1ex", "1e"},
    {"1e5e5", "1e5"},
    {"1e5E", "1e5"},
    {"1e5+5", "1e5"},
    {"1.5e5", "1.5e5"},
    {"1.5e-5.5", "1.5e-5"},
    // A point behind the exponent is taken where there was none before it. Deliberate, although no such number
    // converts.
    {"1e5.5", "1e5.5"},
    {"1e.5", "1e.5"},
    {"1e+.5", "1e+.5"},
    {"1e5.", "1e5"},
    {"1e5.e", "1e5"},
    {"1e5.5.5", "1e5.5"},
    // Hexadecimal.
    {"0x1F", "0x1F"},
    {"0X1f", "0X1f"},
    {"0xabcdefABCDEF0123456789", "0xabcdefABCDEF0123456789"},
    {"0x", "0x"},
    {"0xg", "0x"},
    {"0x1G", "0x1"},
    {"0x1.5", "0x1"},
    {"0x1e5", "0x1e5"},
    {"0x1e+5", "0x1e"},
    {"0xx1", "0x"},
    {"0x1x", "0x1"},
    {"00x1", "00"},
    {"10x", "10"},
    {"1x1", "1"},
    {"0.0x1", "0.0"},
    {"0e0x1", "0e0"},
    {"5a", "5"},
    {"5f", "5"},
    {"5@x", "5"},
    {"5'x'", "5"},
};

TEST(LexerNumbers, EndWhereTheNextCharacterDoesNotFit) {
    for (const NumberCase& row : numbers) {
        EXPECT_EQ(Utf8(PeekToken(Reader(row.text).cursor)), row.number) << row.text;
        Reader reader(row.text);
        EXPECT_EQ(Utf8(ReadNumberText(reader.cursor)), row.number) << row.text;
        EXPECT_EQ(reader.cursor.position, static_cast<int>(std::string_view(row.number).size())) << row.text;
    }
}

TEST(LexerNumbers, AreReadFromTheCursorOn) {
    Reader reader("ab12.5cd", 2);
    EXPECT_EQ(ReadNumberView(reader.cursor), L"12.5");
    EXPECT_EQ(reader.cursor.position, 6);
    EXPECT_EQ(ReadNumberView(reader.cursor), L"");
    EXPECT_EQ(reader.cursor.position, 6);

    // "0x" counts from the cursor too: what stands before it is another number's.
    Reader hexadecimal("10x5", 1);
    EXPECT_EQ(ReadNumberView(hexadecimal.cursor), L"0x5");
}

// Unit literals read their numbers without looking for a digit first.
TEST(LexerNumbers, FollowTheSameRulesWhereNoDigitStands) {
    constexpr NumberCase cases[] = {
        {".5", ".5"},   {".5.5", ".5"}, {".5e5", ".5e5"}, {".", ""},      {".e5", ""}, {"e5", "e5"},     {"E", "E"},
        {"e+5", "e+5"}, {"e-", "e-"},   {"e5.5", "e5.5"}, {"e5e5", "e5"}, {"-5", ""},  {"+5", ""},       {"x", ""},
        {"x5", ""},     {"mm", ""},     {"", ""},         {"}", ""},      {" 5", ""},  {"\xc2\xb2", ""}, {"a", ""},
    };
    for (const NumberCase& row : cases) {
        Reader reader(row.text);
        EXPECT_EQ(Utf8(ReadNumberText(reader.cursor)), row.number) << row.text;
        EXPECT_EQ(reader.cursor.position, static_cast<int>(std::string_view(row.number).size())) << row.text;
    }
}

TEST(LexerLists, FindATokenInAnyLetterCase) {
    EXPECT_TRUE(IsTokenInList(L"and", L"&;|;and;or"));
    EXPECT_TRUE(IsTokenInList(L"AND", L"&;|;and;or"));
    EXPECT_TRUE(IsTokenInList(L"Or", L"&;|;and;or"));
    EXPECT_TRUE(IsTokenInList(L"&", L"&;|;and;or"));
    EXPECT_TRUE(IsTokenInList(L"not", L"];);,;&;:;?;and;|;or;NOT"));
    EXPECT_TRUE(IsTokenInList(L"]", L"];);,;:;?"));
    EXPECT_TRUE(IsTokenInList(L"x", L"x"));
}

TEST(LexerLists, CompareWholeTokens) {
    EXPECT_FALSE(IsTokenInList(L"an", L"and;or"));
    EXPECT_FALSE(IsTokenInList(L"andy", L"and;or"));
    EXPECT_FALSE(IsTokenInList(L"and;or", L"and;or"));
    EXPECT_FALSE(IsTokenInList(L"d", L"and;or"));
    EXPECT_FALSE(IsTokenInList(L"nor", L"and;or"));
    EXPECT_FALSE(IsTokenInList(L";", L"and;or"));
}

TEST(LexerLists, NeverHoldTheEmptyToken) {
    EXPECT_FALSE(IsTokenInList(L"", L"and;or"));
    EXPECT_FALSE(IsTokenInList(L"", L""));
    EXPECT_FALSE(IsTokenInList(L"", L"a;;b"));
    EXPECT_FALSE(IsTokenInList(L"a", L""));
    EXPECT_TRUE(IsTokenInList(L"b", L"a;;b"));
}

std::string ParseMessage(int position, const wchar_t* format, const wchar_t* insert = nullptr) {
    ErrorSlot error;
    const ParseCursor cursor{position, L"text"};
    if (insert == nullptr) {
        ReportParseError(cursor, error.Slot(), format);
    } else {
        ReportParseError(cursor, error.Slot(), format, insert);
    }
    return error.Message();
}

TEST(LexerErrors, CountPositionsFromOne) {
    EXPECT_EQ(ParseMessage(0, L"Unexpected end of line"), "Error parsing query: Unexpected end of line at position 1");
    EXPECT_EQ(ParseMessage(41, L"':' expected"), "Error parsing query: ':' expected at position 42");
    EXPECT_EQ(ParseMessage(2147483646, L"x"), "Error parsing query: x at position 2147483647");
}

TEST(LexerErrors, TakeInsertsAsTheyAre) {
    EXPECT_EQ(ParseMessage(2, L"Unexpected token '%1'", L"+"),
              "Error parsing query: Unexpected token '+' at position 3");
    EXPECT_EQ(ParseMessage(0, L"Unknown unit name '%1'", L""),
              "Error parsing query: Unknown unit name '' at position 1");
    // A token that looks like an insert stays what it is.
    EXPECT_EQ(ParseMessage(0, L"Unexpected token '%1'", L"'%1 %2 %%'"),
              "Error parsing query: Unexpected token ''%1 %2 %%'' at position 1");
}

TEST(LexerErrors, LeaveTheCursorAlone) {
    ErrorSlot error;
    const ParseCursor cursor{3, L"text"};
    ReportParseError(cursor, error.Slot(), L"x");
    EXPECT_EQ(cursor.position, 3);
    EXPECT_FALSE(error.IsEmpty());
}

TEST(LexerErrors, MakeNothingWhereNobodyAsks) {
    const ParseCursor cursor{0, L"text"};
    // Not even the text is formatted: a template that is no text at all does no harm.
    ReportParseError(cursor, nullptr, nullptr);
    ReportParseError(cursor, nullptr, L"Unexpected token '%1'", L"+");
}

} // namespace
} // namespace OrvUQL::Tests
