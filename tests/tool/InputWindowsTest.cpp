// What is special about arguments, inputs and outputs on Windows.
#include "tool/ProcessWindows.h"
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <string>

#include <windows.h>

namespace OrvUQL::Tests {
namespace {

/// Runs uql with arguments that need not be text.
std::string PrintOfArguments(const std::vector<std::wstring>& arguments) {
    Pipe in = MakePipe();
    Pipe out = MakePipe();
    const Handle process =
        StartProcess(MakeCommandLine(ToUtf16(UQL_PATH), arguments), in.reader, out.writer, out.writer);
    out.writer.Close();
    const std::string printed = ReadAll(out.reader);
    WaitForProcess(process);
    return printed;
}

TEST(UqlInput, AReaderThatGoesAwayIsNothingToComplainAbout) {
    std::string json;
    for (int number = 0; number < 100'000; ++number) {
        json += "1\n";
    }
    const TestFile input(json);
    EXPECT_EQ(RunningUql({"@this", input.GetPath()}, RunningUql::ToClosedPipe).Wait(), Fails(""));
    RunningUql uql({"@this", "-"}, RunningUql::ToPipe);
    uql.Write("1\n");
    EXPECT_EQ(uql.ReadLine(), "1\n");
}

TEST(UqlInput, TextGoesInAndOutAsUtf8) {
    // A letter of every code page, one of few, one of none, and one beyond 16 bits.
    const std::string text = "äШ€ሴ😀";
    EXPECT_EQ(RunUql({"'" + text + "'.Length()"}), Prints("6\n"));
    EXPECT_EQ(RunUql({"'" + text + "'"}), Prints(text + "\n"));
    EXPECT_EQ(RunUql({"@this", "-"}, "\"" + text + "\""), Prints(text + "\n"));
    const TestFile file("\"" + text + "\"", "-" + text + ".json");
    EXPECT_EQ(RunUql({"@this", file.GetPath()}), Prints(text + "\n"));
    EXPECT_EQ(RunUql({"--props", "@" + file.GetPath(), "@this"}), Prints(text + "\n"));
    const TestFile query("'" + text + "' + 1 / 0", "-" + text + ".uql");
    EXPECT_EQ(RunUql({"-f", query.GetPath()}),
              Fails("uql: Division By Zero\n  '" + text + "' + 1 / 0\n              ^\n"));
    EXPECT_EQ(RunUql({"1", file.GetPath() + "/" + text}),
              Fails("uql: " + file.GetPath() + "/" + text + ": " + GetMissingFileReason() + "\n"));
}

TEST(UqlInput, HalfASurrogatePairInAnArgumentIsTheReplacementCharacter) {
    const std::string replaced = "\xEF\xBF\xBD";
    EXPECT_EQ(PrintOfArguments({L"'a\xD83D"
                                L"b'"}),
              "a" + replaced + "b\n");
    EXPECT_EQ(PrintOfArguments({L"'a\xDE00\xD83D'"}), "a" + replaced + replaced + "\n");
    EXPECT_EQ(PrintOfArguments({L"'a\xD83D\xDE00'"}), "a😀\n");
}

TEST(UqlInput, ArgumentsAreNoPatternsOfFileNames) {
    EXPECT_EQ(RunUql({"-e", "*"}).err, "uql: Error parsing query: Unexpected token '*' at position 1\n  *\n  ^\n");
    EXPECT_EQ(RunUql({"1", "C:/*"}).err.substr(0, 10), "uql: C:/*:");
}

TEST(UqlInput, ArgumentsMayHoldQuotesAndBackslashes) {
    EXPECT_EQ(RunUql({R"('a\"b\\')"}), Prints("a\\\"b\\\\\n"));
    EXPECT_EQ(RunUql({R"('\')"}), Prints("\\\n"));
    EXPECT_EQ(RunUql({""}).status, 1);
}

TEST(UqlInput, AnArgumentThatBeginsWithASlashIsNoOption) {
    EXPECT_EQ(RunUql({"1", "/o"}).status, 1);
    EXPECT_EQ(RunUql({"/1"}).err, "uql: Error parsing query: Unexpected token '/' at position 1\n  /1\n  ^\n");
}

TEST(UqlInput, LineBreaksAreReadAndPrintedAsTheyAre) {
    EXPECT_EQ(RunUql({"-f", "-"}, "'a\r\nb'.Length() +\r\n1\r\n"), Prints("5\n"));
    EXPECT_EQ(RunUql({"'a' + chr(10) + 'b' + chr(13) + chr(10) + 'c'"}), Prints("a\nb\r\nc\n"));
    const TestFile lines("{\"a\": 1}\r\n{\"a\": 2}\r\n");
    EXPECT_EQ(RunUql({"@a", lines.GetPath()}), Prints("1\n2\n"));
    EXPECT_EQ(RunUql({"-f", "-"}, "'\x1A'.Length()"), Prints("1\n")); // Ctrl-Z ends what is typed and nothing else
}

TEST(UqlInput, NothingWrittenToAPipeIsNotItsEnd) {
    Pipe in = MakePipe();
    Pipe out = MakePipe();
    const Handle process =
        StartProcess(MakeCommandLine(ToUtf16(UQL_PATH), {L"@this + 1", L"-"}), in.reader, out.writer, out.writer);
    out.writer.Close();
    in.reader.Close();
    WriteAll(in.writer, "1\n");
    DWORD count = 0;
    EXPECT_NE(::WriteFile(in.writer.Get(), "", 0, &count, nullptr), 0);
    WriteAll(in.writer, "5\n");
    in.writer.Close();
    EXPECT_EQ(ReadAll(out.reader), "2\n6\n");
    EXPECT_EQ(WaitForProcess(process), 0);
}

TEST(UqlInput, FilesThatOthersUseCanBeRead) {
    const TestFile file("1 2");
    const Handle other(::CreateFileW(ToUtf16(file.GetPath()).c_str(), GENERIC_READ | GENERIC_WRITE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr),
                       "a file in use");
    EXPECT_EQ(RunUql({"@this", file.GetPath()}), Prints("1\n2\n"));
}

TEST(UqlInput, TheNulDeviceIsAnEmptyFile) { EXPECT_EQ(RunUql({"@this", "NUL"}), Prints("")); }

} // namespace
} // namespace OrvUQL::Tests
