// Errors: templates with inserts, and the texts for mistakes in regular expressions.

#include <OrvUQL/OrvUQL.h>

#include "support/Counted.h"
#include "support/Print.h"
#include "support/Ref.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

namespace OrvUQL::Tests {
namespace {

/// The message of an error that is handed over.
std::string Message(IError* error) {
    const Ref<IError> owned(error);
    return error == nullptr ? "(null)" : Utf8(error->GetMessageW());
}

TEST(ErrorMessage, IsTheTemplateWithItsInserts) {
    EXPECT_EQ(Message(Error::Create(L"Identifier '%1' is not a method of '%2'", L"Foo", L"Integer")),
              "Identifier 'Foo' is not a method of 'Integer'");
    EXPECT_EQ(Message(Error::Create(L"Cannot convert unit '%1' of category '%2' to category '%3'", L"cm", L"Lengths",
                                    L"Weights")),
              "Cannot convert unit 'cm' of category 'Lengths' to category 'Weights'");
}

TEST(ErrorMessage, StaysTheSameOnEveryCall) {
    const Ref<IError> error(Error::Create(L"'%1' is not a property of object '%2'", L"a", L"b"));
    ASSERT_TRUE(error);
    const OrvStringT first = error->GetMessageW();
    EXPECT_EQ(first, L"'a' is not a property of object 'b'");
    OrvStringT changed = error->GetMessageW();
    changed += L" (changed)";
    EXPECT_EQ(error->GetMessageW(), first);
    EXPECT_EQ(error->GetMessageW(), first);
}

TEST(ErrorMessage, IsATemplateWithoutPlaceholdersAsItStands) {
    EXPECT_EQ(Message(Error::Create(L"Integer Underflow")), "Integer Underflow");
    EXPECT_EQ(Message(Error::Create(L"")), "");
    EXPECT_EQ(Message(Error::Create(L"Integer overflow", L"an insert that nobody wants")), "Integer overflow");
}

TEST(ErrorMessage, ReadsAMissingInsertAsEmpty) {
    // The signature error is raised so: its template asks for the second of one insert.
    EXPECT_EQ(Message(Error::Create(L"Internal error in method %2", L"Foo")), "Internal error in method ");
    EXPECT_EQ(Message(Error::Create(L"[%1][%2][%3]")), "[][][]");
    EXPECT_EQ(Message(Error::Create(L"[%1][%2][%3]", L"a", L"b")), "[a][b][]");
    EXPECT_EQ(Message(Error::Create(L"[%99]", L"a")), "[]");
}

TEST(ErrorMessage, ReadsANullInsertAsEmpty) {
    EXPECT_EQ(Message(Error::Create(L"[%1][%2]", static_cast<const wchar_t*>(nullptr), L"b")), "[][b]");
}

TEST(ErrorMessage, TakesInsertsInAnyOrderAndSeveralTimes) {
    EXPECT_EQ(Message(Error::Create(L"%2 %1 %2 %2", L"a", L"b")), "b a b b");
    EXPECT_EQ(Message(Error::Create(L"%3%1", L"a", L"b", L"c")), "ca");
    EXPECT_EQ(Message(Error::Create(L"%10-%1", L"1", L"2", L"3", L"4", L"5", L"6", L"7", L"8", L"9", L"10")), "10-1");
}

TEST(ErrorMessage, ReadsTwoPerCentSignsAsOne) {
    EXPECT_EQ(Message(Error::Create(L"100%% of %1", L"a")), "100% of a");
    EXPECT_EQ(Message(Error::Create(L"%%1", L"a")), "%1");
}

TEST(ErrorMessage, TakesInsertsAsTheyStand) { EXPECT_EQ(Message(Error::Create(L"'%1'", L"%2 %% %1")), "'%2 %% %1'"); }

TEST(ErrorMessage, TakesTextsOfTheLibraryAsInserts) {
    const OrvStringT text(L"text");
    EXPECT_EQ(Message(Error::Create(L"%1 %2 %3", text, L"pointer", ORV_TEXT(L"literal").units)),
              "text pointer literal");
    EXPECT_EQ(Message(Error::Create(L"[%1]", OrvStringT())), "[]");
    EXPECT_EQ(Message(Error::Create(L"%1", OrvUtils::String::ToStringW(42))), "42");
}

TEST(ErrorMessage, KeepsTextsBeyondAscii) {
    EXPECT_EQ(Message(Error::Create(L"'%1' gr\u00f6\u00dfer", L"\u20ac")), "'\xe2\x82\xac' gr\xc3\xb6\xc3\x9f"
                                                                           "er");
}

TEST(ErrorMessage, IsCopiedFromThePointer) {
    wchar_t text[] = L"message";
    const Ref<Error> error = Make<Error>(text);
    text[0] = L'M';
    EXPECT_EQ(error->GetMessageW(), L"message");
    const Ref<Error> empty = Make<Error>(static_cast<const wchar_t*>(nullptr));
    EXPECT_EQ(empty->GetMessageW(), L"");
}

TEST(ErrorMessage, IsNotATemplateInTheConstructor) {
    const Ref<Error> error = Make<Error>(L"%1 %%");
    EXPECT_EQ(error->GetMessageW(), L"%1 %%");
    const Ref<Error> shared = Make<Error>(OrvStringT(L"%2"));
    EXPECT_EQ(shared->GetMessageW(), L"%2");
}

struct RegexRow {
    int code;
    const char* text;
};

// By number, since two of them have no name in some standard libraries.
constexpr RegexRow regexRows[] = {
    {0, "the expression contained an invalid collating element name"},
    {1, "the expression contained an invalid character class name"},
    {2, "the expression contained an invalid escape sequence"},
    {3, "the expression contained an invalid back reference"},
    {4, "the expression contained an unmatched '[' or ']'"},
    {5, "the expression contained an unmatched '(' or ')'"},
    {6, "the expression contained an unmatched '{' or '}'"},
    {7, "the expression contained an invalid count in a { } expression"},
    {8, "the expression contained an invalid character range specifier"},
    {9, "parsing a regular expression failed because there were not enough resources available"},
    {10, "a repeat expression (one of '*', '?', '+', '{' in most contexts) was not preceded by an expression"},
    {11, "an attempted match failed because it was too complex"},
    {12, "an attempted match failed because there was not enough memory available"},
    {13, "unable to parse the expression"},
    {14, "the expression contained a syntax error"},
    {15, "unknown error"},
    {-1, "unknown error"},
    {1000000, "unknown error"},
};

TEST(RegexErrorMessage, FollowsFromTheCode) {
    /// An exception with a code that std::regex_error need not be able to carry.
    struct Failure {
        int number;
        int code() const { return number; }
        const char* what() const { return ""; }
    };
    for (const RegexRow& row : regexRows) {
        const std::string expected = std::string("Error in regular expression: ") + row.text;
        EXPECT_EQ(Message(Error::Create(Failure{row.code})), expected) << row.code;
        EXPECT_EQ(Message(Error::CreateRegexError(row.code)), expected) << row.code;
    }
}

TEST(RegexErrorMessage, KnowsTheCodesOfTheStandardLibrary) {
    using namespace std::regex_constants;
    const std::pair<error_type, int> codes[] = {
        {error_collate, 0},    {error_ctype, 1},       {error_escape, 2},   {error_backref, 3}, {error_brack, 4},
        {error_paren, 5},      {error_brace, 6},       {error_badbrace, 7}, {error_range, 8},   {error_space, 9},
        {error_badrepeat, 10}, {error_complexity, 11}, {error_stack, 12},
    };
    for (const auto& [code, row] : codes) {
        EXPECT_EQ(Message(Error::Create(std::regex_error(code))),
                  std::string("Error in regular expression: ") + regexRows[row].text);
    }
}

TEST(RegexErrorMessage, IsMadeFromWhatIsCaught) {
    try {
        throw std::regex_error(std::regex_constants::error_paren);
    } catch (const std::regex_error& error) {
        EXPECT_EQ(Message(Error::Create(error)),
                  "Error in regular expression: the expression contained an unmatched '(' or ')'");
    }
}

} // namespace
} // namespace OrvUQL::Tests
