// A session without a terminal: what its entries give, and what Tab would offer.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

UqlRun Enter(std::string_view lines) { return RunUql({"repl"}, lines); }

/// What Tab offers behind a text, one a line.
std::string Complete(std::string_view text, std::vector<std::string> options = {}) {
    options.insert(options.begin(), "repl");
    return RunUql(options, ":complete " + std::string(text)).out;
}

TEST(UqlSession, ShowsTypeAndText) {
    EXPECT_EQ(Enter("1 + 2\n'a b'\nnull\n\n  array(1, 2)  \n''\n{2 cm}"),
              Prints("int 3\nstring a b\nnull\narray (1,2)\nstring\nunit 2 cm\n"));
    EXPECT_EQ(Enter("'a\nb'\n"), Prints("string\na\nb\n"));
    EXPECT_THAT(Enter("true.help()").out, StartsWith("string\nbool.ToBool()\nbool.ToInt()\n"));
}

TEST(UqlSession, ErrorsHaveACaret) {
    EXPECT_EQ(Enter("1 / 0\n2\n'a'.Lenght()\n1 +"),
              Fails("Division By Zero\n  1 / 0\n    ^\n"
                    "Identifier 'Lenght' is not a method of 'string'\n  'a'.Lenght()\n      ^\n"
                    "  did you mean 'Length'?\n"
                    "Error parsing query: Unexpected end of line at position 4\n  1 +\n     ^\n",
                    "int 2\n"));
}

TEST(UqlSession, AnEntryGoesOnWhileSomethingIsOpen) {
    EXPECT_EQ(Enter("max(1,\n  2,\n3)\n4"), Prints("int 3\nint 4\n"));
    EXPECT_EQ(Enter("'a\nb'.Length()\n"), Prints("int 3\n"));
    EXPECT_EQ(Enter("'('.Length()\n"), Prints("int 1\n"));
    EXPECT_EQ(Enter("{2\ncm}[\n.Value()]"), Prints("double 2\n"));
    // What cannot become right any more is not waited for, and what is open at the end is an error.
    EXPECT_EQ(Enter("(1]\n2").out, "int 2\n");
    EXPECT_EQ(Enter("max(1,\n2").err, "Error parsing query: Closing parenthesis expected at position 9\n  2\n   ^\n");
}

TEST(UqlSession, TheLastValueIsKept) {
    EXPECT_EQ(Enter("$last\n6 * 7\n$last + 1\n1 / 0\n$last\n"),
              Fails("Division By Zero\n  1 / 0\n    ^\n", "null\nint 42\nint 43\nint 43\n"));
    EXPECT_EQ(Enter("array(1, 2)\n$last.Convert($item + 1)\n$last\n"),
              Prints("array (1,2)\narray (2,3)\narray (2,3)\n"));
}

TEST(UqlSession, UnlessSomethingElseHoldsTheVariable) {
    EXPECT_EQ(Enter("7\n:var {\"a\": 5}\n$a\n$last\n:var\n:var off\n$last\n:var\n"),
              Prints("int 7\nint 5\nnull\nobject {\"a\":5}\nnull\noff: $last is the value before\n"));
    EXPECT_EQ(RunUql({"repl", "--var", "3"}, "$this + 1"), Prints("int 4\n"));
    // The arguments are members of the variable, one of them perhaps of that name.
    EXPECT_EQ(RunUql({"repl", "--arg", "a", "5"}, "7\n$last\n$a\n:complete $l\n:complete $a"),
              Prints("int 7\nnull\nstring 5\na\n"));
    EXPECT_EQ(RunUql({"repl", "--argjson", "last", "[8]"}, "7\n$last\n:complete $la\n:var\n:var off\n$last"),
              Prints("int 7\narray (8)\nlast\nobject {\"last\":[8]}\narray (8)\n"));
}

TEST(UqlSession, ItsOwnNamesAreSuggestedToo) {
    EXPECT_EQ(Enter("$lats"), Fails("Identifier 'lats' is not a method of 'session'\n  $lats\n  ^\n"
                                    "  did you mean '$last'?\n"));
}

TEST(UqlSession, PropsSetsAndShowsThePropertySource) {
    EXPECT_EQ(Enter(":props\n:props {\"a\": [1, 2]}\n@a\n:props\n:props off\n@a"),
              Fails("Invalid use of '@a' in the current context at position 0\n  @a\n  ^\n",
                    "off\narray (1,2)\nobject {\"a\":[1,2]}\n"));
    EXPECT_EQ(RunUql({"repl", "--props", "[4]"}, "@this"), Prints("array (4)\n"));
    EXPECT_THAT(Enter(":props {").err, StartsWith("line 1, column 2: "));
}

TEST(UqlSession, LoadReadsARecord) {
    const TestFile records("{\"n\": 1}\n{\"n\": 2}\n[3");
    const std::string& path = records.GetPath();
    EXPECT_EQ(Enter(":load " + path + "\n@n\n:load " + path + " 2\n@n * 10\n"),
              Prints("object {\"n\":1}\nint 1\nobject {\"n\":2}\nint 20\n"));
    EXPECT_THAT(Enter(":load " + path + " 3\n").err, HasSubstr("line 3, column "));
    const TestFile one("5");
    EXPECT_EQ(Enter(":load " + one.GetPath() + " 2").err, one.GetPath() + ": there is no record 2\n");
    EXPECT_EQ(Enter(":load /no/such/file").err, "/no/such/file: " + GetMissingFileReason() + "\n");
    EXPECT_EQ(Enter(":load").err, ":load FILE [N]\n");
}

TEST(UqlSession, HelpListsCommandsTypesAndMethods) {
    const UqlRun help = Enter(":help");
    for (const char* const command : {":complete", ":explain", ":help", ":limits", ":load", ":precision", ":props",
                                      ":quit", ":time", ":tree", ":units", ":var"}) {
        EXPECT_THAT(help.out, HasSubstr(std::string(command) + " "));
    }
    EXPECT_THAT(Enter(":help String").out, StartsWith("string.Length()\nstring.Empty()\n"));
    EXPECT_EQ(Enter(":help round"), Prints("double.Round([int])\nunit.Round([int])\nglobal.round(double, [int])\n"));
    EXPECT_EQ(Enter(":help Rouns").err, "there is no type and no method 'Rouns'\n  did you mean 'Round'?\n");
}

TEST(UqlSession, UnitsAndPrecision) {
    EXPECT_THAT(Enter(":units").out, HasSubstr("\nin  0.0254 m\ncm  0.01 m\n"));
    EXPECT_EQ(RunUql({"repl", "--no-units"}, ":units"), Prints(""));
    EXPECT_THAT(RunUql({"repl", "--resolution", "1000"}, ":units").out, StartsWith("px  1 m\n"));
    EXPECT_EQ(Enter("{1 mm} = {1.4 mm}\n:precision 2\n{1 mm} = {1.4 mm}\n:precision\n"),
              Prints("bool true\nbool false\n2\n"));
    EXPECT_EQ(Enter(":precision x").err, ":precision [N]\n");
}

TEST(UqlSession, TreeExplainAndTime) {
    EXPECT_EQ(Enter(":tree -x"), Prints("0  operator -\n1    operand: name x\n"));
    EXPECT_EQ(Enter("5\n:explain $last * 2\n$last"), Prints("int 5\n"
                                                            "6  operator *          int 10\n"
                                                            "0    left: name $last  int 5\n"
                                                            "8    right: int 2      int 2\n"
                                                            "int 5\n"));
    EXPECT_EQ(Enter(":explain 1 / 0"),
              Fails("Division By Zero\n  1 / 0\n    ^\n", "2  operator /      error: Division By Zero\n"
                                                          "0    left: int 1   int 1\n"
                                                          "4    right: int 0  int 0\n"));
    EXPECT_THAT(Enter(":time 1 + 2").out, testing::MatchesRegex("parsed in .*s, evaluated in .*s \\(mean of .*\\)\n"));
    EXPECT_EQ(Enter(":time 1 / 0"), Fails("Division By Zero\n  1 / 0\n    ^\n"));
    EXPECT_EQ(Enter(":tree"), Fails(":tree QUERY\n"));
    EXPECT_EQ(Enter(":tree 1 +").err, "Error parsing query: Unexpected end of line at position 4\n  1 +\n     ^\n");
}

TEST(UqlSession, QuitEndsIt) { EXPECT_EQ(Enter("1\n:quit\n2"), Prints("int 1\n")); }

TEST(UqlSession, AnUnknownCommandIsAnError) {
    EXPECT_EQ(Enter(":foo"), Fails("there is no command ':foo'; see :help\n"));
    EXPECT_EQ(Enter(":quitt").err, "there is no command ':quitt'; see :help\n  did you mean ':quit'?\n");
    EXPECT_EQ(RunUql({"repl", "1"}).status, 2);
}

TEST(UqlSession, LinesMayEndAsWindowsHasIt) {
    EXPECT_EQ(Enter("1 + 1\r\nmax(1,\r\n2)\r\n:precision\r\n"), Prints("int 2\nint 2\n0\n"));
}

TEST(UqlCompletion, BehindADotAreTheMethodsOfTheValue) {
    EXPECT_EQ(Complete("'abc'.Len"), "Length\n");
    EXPECT_EQ(Complete("'abc'.len"), "Length\n");
    EXPECT_EQ(Complete("'abc'.Length().Ab"), "Abs\n");
    EXPECT_EQ(Complete("1 + 'a.b('.ToU"), "ToUpper\n");
    EXPECT_EQ(Complete("(1.5 + 2).Rou"), "Round(\n");
    EXPECT_EQ(Complete("max(1, 2.5).Rou"), "Round(\n");
    EXPECT_EQ(Complete("{1 cm}.Conv"), "Convert(\n");
    EXPECT_EQ(Complete("array(1, 2).Item(1).Ab"), "Abs\n");
    EXPECT_EQ(Complete("not 'a'.Emp"), "Empty\n");
    EXPECT_EQ(Complete("'abc'.xyz"), "");
    EXPECT_EQ(Complete("(1 / 0).A"), ""); // it has no value
    EXPECT_EQ(Complete("1 + .A"), "");
}

TEST(UqlCompletion, GroupsKnowTheirSource) {
    EXPECT_EQ(Complete("'abc'[.Len"), "Length\n");
    EXPECT_EQ(Complete("'abc'[max(1, .Len"), "Length\n");
    EXPECT_EQ(Complete("'abc'[.Length().Ab"), "Abs\n");
    EXPECT_EQ(Complete("'abc'[.Length()].Ab"), "Abs\n");
}

TEST(UqlCompletion, BehindAnAtSignAreTheMembersOfTheRecord) {
    const std::vector<std::string> record = {"--props", R"({"price": 2, "PIN": 1, "a b": 3, "size": {"length": 1.5}})"};
    EXPECT_EQ(Complete("@p", record), "price\nPIN\n");
    EXPECT_THAT(Complete("@", record), StartsWith("price\nPIN\nsize\nGet(\nKeys\nToBool\n"));
    EXPECT_EQ(Complete("1 + @size.len", record), "length\n");
    EXPECT_EQ(Complete("@size.length.Rou", record), "Round(\n");
    EXPECT_EQ(Complete("@p"), "");
}

TEST(UqlCompletion, BehindADollarSignIsTheVariable) {
    EXPECT_EQ(Complete("$la"), "last\n");
    EXPECT_EQ(RunUql({"repl"}, "'abc'\n:complete $last.Leng").out, "string abc\nLength\n");
    EXPECT_EQ(Complete("$a", {"--var", R"({"abc": 1})"}), "abc\n");
}

TEST(UqlCompletion, InAnArraysExpressionItIsTheItem) {
    EXPECT_EQ(Complete("array('a').Convert($it"), "item\n");
    EXPECT_EQ(Complete("array('a').Convert($item.Leng"), "Length\n");
    EXPECT_EQ(Complete("array(array('a')).Convert($item.Convert($item.Leng"), "Length\n");
}

TEST(UqlCompletion, InBracesAreUnits) {
    EXPECT_EQ(Complete("{2 c"), "cm\ncc\n");
    EXPECT_EQ(Complete("{2 c", {"--no-units"}), "");
}

TEST(UqlCompletion, ElsewhereAreFunctions) {
    EXPECT_EQ(Complete("1 + sq"), "sqrt(\n");
    EXPECT_EQ(Complete("max(1, p"), "pi\n");
    EXPECT_EQ(Complete("n"), "not\nnull\n");
}

TEST(UqlCompletion, NothingInsideOfStringsAndNumbers) {
    EXPECT_EQ(Complete("'sq"), "");
    EXPECT_EQ(Complete("1 + 12e"), "");
}

TEST(UqlCompletion, WhatMightTakeLongIsNotEvaluated) {
    EXPECT_EQ(Complete("'x'.Repeat(2000000000).Leng"), "");
    EXPECT_EQ(Complete("array(1, 2).ForEach('x', $lasteval + $lasteval).Leng"), "");
}

TEST(UqlCompletion, CommandsAreCompletedToo) {
    EXPECT_EQ(Complete(":t"), "time\ntree\n");
    EXPECT_EQ(Complete(":tree 'a'.Leng"), "Length\n");
    EXPECT_EQ(Complete(":help strin"), "string\n");
    EXPECT_EQ(Complete(":help rou"), "Round\n");
    const TestFile record("1", ".completed");
    const std::string& path = record.GetPath();
    EXPECT_EQ(Complete(":load " + path.substr(0, path.size() - 4)), path + "\n");
}

TEST(UqlCompletion, DeepNestingIsNoTrouble) {
    const std::string many(100'000, '(');
    EXPECT_EQ(Complete(many + "'abc'.Leng"), "Length\n");
    EXPECT_EQ(Complete(many + "1" + std::string(100'000, ')') + ".Ab"), "");
}

} // namespace
} // namespace OrvUQL::Tests
