// Input compressed by gzip.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace OrvUQL::Tests {
namespace {

using testing::EndsWith;
using testing::StartsWith;

std::uint32_t Crc32(std::string_view bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320u : 0);
        }
    }
    return ~crc;
}

void AppendNumber(std::string& bytes, std::uint32_t number, int size) {
    for (int byte = 0; byte < size; ++byte) {
        bytes += static_cast<char>(number >> (8 * byte) & 0xFF);
    }
}

/// A gzip file whose blocks are stored without compression. (RFC 1952 and 1951.)
std::string MakeGzip(std::string_view text) {
    std::string bytes("\x1F\x8B\x08\0\0\0\0\0\0\x03", 10);
    std::string_view rest = text;
    do {
        const std::string_view block = rest.substr(0, 65535);
        rest.remove_prefix(block.size());
        bytes += rest.empty() ? '\1' : '\0';
        AppendNumber(bytes, static_cast<std::uint32_t>(block.size()), 2);
        AppendNumber(bytes, ~static_cast<std::uint32_t>(block.size()), 2);
        bytes += block;
    } while (!rest.empty());
    AppendNumber(bytes, Crc32(text), 4);
    AppendNumber(bytes, static_cast<std::uint32_t>(text.size()), 4);
    return bytes;
}

class UqlCompressedInput : public testing::Test {
protected:
    void SetUp() override {
        const UqlRun run = RunUql({"1", "-"}, MakeGzip("1"));
        if (run.status != 0) {
            EXPECT_EQ(run, Fails("uql: -: gzip input is not supported by this build\n"));
            GTEST_SKIP() << "this build has no zlib";
        }
    }
};

TEST_F(UqlCompressedInput, IsKnownByItsFirstBytes) {
    const TestFile file(MakeGzip("{\"a\": 1}\n{\"a\": 2}\n"));
    EXPECT_EQ(RunUql({"@a", file.GetPath()}), Prints("1\n2\n"));
    EXPECT_EQ(RunUql({"@a", "-", file.GetPath()}, MakeGzip("\xEF\xBB\xBF{\"a\":7}")), Prints("7\n1\n2\n"));
    EXPECT_EQ(RunUql({"@a", "-"}, MakeGzip("")), Prints(""));
    EXPECT_EQ(RunUql({"@a", "-"}, "\x1F").status, 1); // no gzip, and no JSON
}

TEST_F(UqlCompressedInput, MayReallyBeCompressed) {
    // What `gzip -n` makes of 100 lines of {"a":1}.
    const std::string bytes("\x1f\x8b\x08\x00\x00\x00\x00\x00\x00\x03\xab\x56\x4a\x54\xb2\x32\xac\xe5\xaa\x1e\xa5\x47"
                            "\xe9\x51\x1a\x83\x06\x00\xe9\xc1\xb8\x27\x20\x03\x00\x00",
                            36);
    std::string expected;
    for (int line = 0; line < 100; ++line) {
        expected += "1\n";
    }
    EXPECT_EQ(RunUql({"@a", "-"}, bytes), Prints(expected));
}

TEST_F(UqlCompressedInput, MayBeSeveralFilesOneBehindTheOther) {
    EXPECT_EQ(RunUql({"@this", "-"}, MakeGzip("1 2") + MakeGzip("") + MakeGzip("3 4\n") + MakeGzip("5")),
              Prints("1\n23\n4\n5\n"));
    EXPECT_EQ(RunUql({"@this", "-"}, MakeGzip("1") + std::string(100'000, '\0')), Prints("1\n"));
}

TEST_F(UqlCompressedInput, MayBeLargerThanAllBuffers) {
    std::string json;
    std::string expected;
    for (int number = 0; number < 300'000; ++number) {
        json += std::to_string(number) + "\n";
    }
    for (const char* jobs : {"1", "3"}) {
        EXPECT_TRUE(RunUql({"-j", jobs, "@this", "-"}, MakeGzip(json)) == Prints(json));
    }
    EXPECT_TRUE(RunUql({"-j", "2", "@Length", "-"}, MakeGzip("\"" + json.substr(0, 1'000'000) + "\"")).status == 1);
    std::replace(json.begin(), json.end(), '\n', ' ');
    EXPECT_EQ(RunUql({"@Length", "-"}, MakeGzip("\"" + json + "\"")), Prints(std::to_string(json.size()) + "\n"));
}

TEST_F(UqlCompressedInput, DamageIsReported) {
    const std::string good = MakeGzip("1 2 3\n");
    const UqlRun cut = RunUql({"@this", "-"}, good.substr(0, good.size() - 9));
    EXPECT_EQ(cut, Fails("uql: -: the compressed data end too early\n", "1\n2\n"));
    std::string changed = good;
    changed[15] = '7';
    EXPECT_EQ(RunUql({"@this", "-"}, changed),
              Fails("uql: -: the compressed data are damaged: incorrect data check\n", "7\n2\n3\n"));
    const UqlRun tail = RunUql({"@this", "-"}, good + "and more");
    EXPECT_EQ(tail.status, 1);
    EXPECT_EQ(tail.out, "1\n2\n3\n");
    EXPECT_THAT(tail.err, StartsWith("uql: -: the compressed data are damaged"));
    const TestFile bad(changed);
    const TestFile next("8");
    EXPECT_THAT(RunUql({"--keep-going", "@this", bad.GetPath(), next.GetPath()}).out, EndsWith("8\n"));
}

TEST_F(UqlCompressedInput, ResultsAreThereBeforeMoreInputIsWaitedFor) {
    const std::string bytes = MakeGzip("1\n2\n3\n");
    RunningUql uql({"@this * 10", "-"}, RunningUql::ToPipe);
    uql.Write(std::string_view(bytes).substr(0, 1));
    uql.Write(std::string_view(bytes).substr(1, 16)); // up to the first line feed
    EXPECT_EQ(uql.ReadLine(), "10\n");
    uql.Write(std::string_view(bytes).substr(17));
    EXPECT_EQ(uql.ReadLine(), "20\n");
    EXPECT_EQ(uql.ReadLine(), "30\n");
    EXPECT_EQ(uql.Wait(), Prints(""));
}

} // namespace
} // namespace OrvUQL::Tests
