// The scripts that teach shells to complete uql's arguments, run by those shells.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

/// What a command of the system's shell prints.
std::string RunShell(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string output;
    char block[4096];
    for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, pipe.get())) != 0;) {
        output.append(block, count);
    }
    return output;
}

bool HasShell(const char* name) { return RunShell(std::string("command -v ") + name) != ""; }

std::set<std::string> SplitLines(const std::string& text) {
    std::set<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.insert(line);
    }
    return lines;
}

TestFile MakeScript(const char* shell) {
    const UqlRun run = RunUql({"--completions", shell});
    EXPECT_EQ(run.status, 0);
    return TestFile(run.out, std::string(".") + shell);
}

/// What bash offers for the last word.
std::set<std::string> CompleteInBash(const std::string& words) {
    const TestFile script = MakeScript("bash");
    const TestFile program("source " + script.GetPath() + "\nCOMP_WORDS=(" + words +
                               ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_uql\n"
                               "printf '%s\\n' \"${COMPREPLY[@]}\"\n",
                           ".sh");
    return SplitLines(RunShell("bash " + program.GetPath() + " 2>&1"));
}

/// What fish offers at the end of the line, without the descriptions.
std::set<std::string> CompleteInFish(const std::string& line) {
    const TestFile script = MakeScript("fish");
    const TestFile program("source " + script.GetPath() + "\ncomplete -C '" + line + "'\n", ".fish");
    std::set<std::string> offers;
    for (const std::string& offer :
         SplitLines(RunShell("HOME=/nonexistent fish --no-config " + program.GetPath() + " 2>&1"))) {
        offers.insert(offer.substr(0, offer.find('\t')));
    }
    return offers;
}

/// All options that the help of a command lists.
std::set<std::string> ReadOptions(const std::vector<std::string>& command) {
    std::vector<std::string> arguments = command;
    arguments.push_back("--help");
    std::set<std::string> options;
    std::istringstream help(RunUql(arguments).out);
    for (std::string line; std::getline(help, line);) {
        if (line.compare(0, 3, "  -") != 0) {
            continue;
        }
        // Two names at most, with a comma between them, up to what they take.
        std::istringstream names(line.substr(2, line.find_first_of(" \t", 2) - 2));
        for (std::string name; std::getline(names, name, ',');) {
            options.insert(name);
        }
    }
    return options;
}

TEST(UqlCompletionScript, BashKnowsEveryOptionOfEveryCommand) {
    const std::set<std::string> options = ReadOptions({});
    EXPECT_THAT(options, IsSupersetOf({"-e", "-f", "-o", "-j", "--props", "--help", "--precision"}));
    EXPECT_EQ(CompleteInBash("uql 1 -"), options);
    for (const char* const command : {"tree", "explain", "repl", "test"}) {
        EXPECT_EQ(CompleteInBash(std::string("uql ") + command + " -"), ReadOptions({command})) << command;
    }
}

TEST(UqlCompletionScript, BashKnowsCommandsAndValues) {
    EXPECT_THAT(CompleteInBash("uql t"), UnorderedElementsAre("test", "tree"));
    EXPECT_THAT(CompleteInBash("uql --li"), UnorderedElementsAre("--list"));
    EXPECT_THAT(CompleteInBash("uql -o ''"), UnorderedElementsAre("text", "typed", "json"));
    EXPECT_THAT(CompleteInBash("uql tree --format ''"), UnorderedElementsAre("text", "json", "dot"));
    EXPECT_THAT(CompleteInBash("uql --list ''"), UnorderedElementsAre("methods", "functions", "units"));
    EXPECT_THAT(CompleteInBash("uql --list methods ar"), UnorderedElementsAre("array"));
    EXPECT_THAT(CompleteInBash("uql --completions ''"), UnorderedElementsAre("bash", "fish", "zsh"));
    EXPECT_THAT(CompleteInBash("uql 1 some"), UnorderedElementsAre("")); // for files there is the shell itself
}

TEST(UqlCompletionScript, TheValuesThatAreOfferedAreTaken) {
    for (const std::string& format : CompleteInBash("uql -o ''")) {
        EXPECT_EQ(RunUql({"-o", format, "1"}).status, 0) << format;
    }
    for (const char* const command : {"tree", "explain"}) {
        for (const std::string& format : CompleteInBash(std::string("uql ") + command + " --format ''")) {
            EXPECT_EQ(RunUql({command, "--format", format, "1"}).status, 0) << format;
        }
    }
    for (const std::string& what : CompleteInBash("uql --on-error ''")) {
        EXPECT_EQ(RunUql({"--on-error", what, "1", "-"}, "1").status, 0) << what;
    }
    for (const std::string& type : CompleteInBash("uql --list methods ''")) {
        EXPECT_EQ(RunUql({"--list", "methods", type}).status, 0) << type;
    }
}

TEST(UqlCompletionScript, FishKnowsTheSame) {
    if (!HasShell("fish")) {
        GTEST_SKIP() << "there is no fish";
    }
    EXPECT_THAT(CompleteInFish("uql tr"), UnorderedElementsAre("tree"));
    EXPECT_THAT(CompleteInFish("uql -o "), UnorderedElementsAre("text", "typed", "json"));
    EXPECT_THAT(CompleteInFish("uql tree --fo"), UnorderedElementsAre("--format"));
    EXPECT_THAT(CompleteInFish("uql tree --k"), testing::IsEmpty());
    EXPECT_THAT(CompleteInFish("uql --k"), UnorderedElementsAre("--keep-going"));
    EXPECT_THAT(CompleteInFish("uql --list methods ar"), UnorderedElementsAre("array"));
    std::set<std::string> options = CompleteInFish("uql 1 -");
    const std::set<std::string> longOptions = CompleteInFish("uql 1 --");
    options.insert(longOptions.begin(), longOptions.end());
    EXPECT_THAT(options, IsSupersetOf(ReadOptions({})));
}

TEST(UqlCompletionScript, ZshCanReadIts) {
    if (!HasShell("zsh")) {
        GTEST_SKIP() << "there is no zsh";
    }
    const TestFile script = MakeScript("zsh");
    EXPECT_EQ(RunShell("zsh -n " + script.GetPath() + " 2>&1"), "");
    const std::string text = RunUql({"--completions", "zsh"}).out;
    EXPECT_THAT(text, testing::StartsWith("#compdef uql\n"));
    for (const std::string& option : ReadOptions({})) {
        EXPECT_THAT(text, HasSubstr("'" + option + "["));
    }
}

TEST(UqlCompletionScript, AnotherShellIsAMistake) {
    EXPECT_EQ(RunUql({"--completions", "csh"}).status, 2);
    EXPECT_EQ(RunUql({"--completions"}).err, "uql: --completions needs one of bash, fish and zsh\nTry `uql --help`.\n");
}

} // namespace
} // namespace OrvUQL::Tests
