// Automation objects in queries. The classes are parts of every Windows.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(UqlCom, ThePropertySourceIsANewObject) {
    EXPECT_EQ(RunUql({"-o", "typed", "--com", "Scripting.Dictionary", "@Count"}), Prints("int\t0\n"));
    EXPECT_EQ(RunUql({"--com", "Scripting.Dictionary", "@Count + @COUNT"}), Prints("0\n"));
    EXPECT_EQ(RunUql({"--com=scripting.dictionary", "@TypeName"}), Prints("COM:IDictionary\n"));
}

TEST(UqlCom, TheVariableIsANewObject) {
    EXPECT_EQ(RunUql({"--com-var", "Scripting.Dictionary", "$CompareMode"}), Prints("0\n"));
    EXPECT_EQ(RunUql({"--com-var", "Scripting.Dictionary", "--props", R"({"a": 5})", "$Count + @a"}), Prints("5\n"));
    EXPECT_EQ(RunUql({"--com", "Scripting.FileSystemObject", "--com-var", "Scripting.Dictionary",
                      "@TypeName + ' ' + $TypeName"}),
              Prints("COM:IFileSystem3 COM:IDictionary\n"));
}

TEST(UqlCom, PropertiesOfPropertiesAndCollections) {
    const UqlRun count = RunUql({"--com", "Scripting.FileSystemObject", "@Drives.ToArray().Count() = @Drives.Count"});
    EXPECT_EQ(count, Prints("true\n"));
    EXPECT_EQ(RunUql({"--com", "Scripting.FileSystemObject",
                      "@Drives.ToArray().Convert($item.DriveLetter).Contains($item = 'C')"}),
              Prints("true\n"));
}

TEST(UqlCom, AnObjectHasNoText) {
    EXPECT_EQ(RunUql({"-o", "typed", "--com", "Scripting.Dictionary", "@this"}), Prints("COM:IDictionary\t\n"));
    EXPECT_EQ(RunUql({"-o", "json", "--com", "Scripting.Dictionary", "array(@this, 1)"}), Prints("[null,1]\n"));
}

TEST(UqlCom, MethodsAreNotProperties) {
    EXPECT_EQ(RunUql({"--com", "Scripting.Dictionary", "@Exists(1)"}),
              Fails("uql: 'Exists' is not a property of object 'COM:IDictionary'\n  @Exists(1)\n  ^\n"));
}

TEST(UqlCom, AClassThatCannotBeMadeIsReportedWithItsCode) {
    const UqlRun unknown = RunUql({"--com", "No.Such.Class", "1"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.out, "");
    EXPECT_THAT(unknown.err, StartsWith("uql: the property source: No.Such.Class: "));
    EXPECT_THAT(unknown.err, HasSubstr("0x800401F3")); // CO_E_CLASSSTRING
    const UqlRun variable = RunUql({"--com-var", "Grüße.€", "1"});
    EXPECT_EQ(variable.status, 1);
    EXPECT_THAT(variable.err, StartsWith("uql: the variable: Grüße.€: "));
    EXPECT_THAT(variable.err, HasSubstr("0x800401F3"));
    EXPECT_EQ(RunUql({"--com", "", "1"}).status, 1);
}

TEST(UqlCom, EachThreadHasAnObjectOfItsOwn) {
    std::string json;
    std::string expected;
    for (int number = 0; number < 2'000; ++number) {
        json += std::to_string(number) + "\n";
        expected += std::to_string(number) + "\n";
    }
    for (const char* jobs : {"1", "4"}) {
        EXPECT_EQ(RunUql({"-j", jobs, "--com-var", "Scripting.Dictionary", "@this + $Count", "-"}, json),
                  Prints(expected))
            << jobs << " jobs";
    }
}

TEST(UqlCom, OptionsForTheSameThingExcludeEachOther) {
    for (const auto& [arguments, message] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"--com", "A.B", "--props", "1", "1"}, "--com and --props exclude each other"},
             {{"--com-var", "A.B", "--var", "1", "1"}, "--com-var and --var exclude each other"},
             {{"--com", "A.B", "1", "file"}, "--com and INPUT exclude each other"}}) {
        EXPECT_EQ(RunUql(arguments), UqlRun({2, "", "uql: " + message + "\nTry `uql --help`.\n"}));
    }
}

TEST(UqlCom, HelpNamesTheOptions) {
    const UqlRun help = RunUql({"--help"});
    EXPECT_THAT(help.out, HasSubstr("--com PROGID"));
    EXPECT_THAT(help.out, HasSubstr("--com-var PROGID"));
}

} // namespace
} // namespace OrvUQL::Tests
