#include <OrvUQL/OrvString.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Utf8Row {
    std::string bytes;
    std::wstring text;
};

constexpr wchar_t replaced = 0xFFFD;

} // namespace

TEST(OrvStringUtf8, WellFormed) {
    using namespace std::string_literals;
    const std::vector<Utf8Row> rows = {
        {"", L""},
        {"abc", L"abc"},
        {"a\0b"s, L"a\0b"s},
        {"\x7F", L"\x7F"},
        {"\xC2\x80", L"\u0080"},
        {"\xC3\xA9", L"\u00E9"},
        {"\xDF\xBF", L"\u07FF"},
        {"\xE0\xA0\x80", L"\u0800"},
        {"\xE2\x82\xAC", L"\u20AC"},
        {"\xED\x9F\xBF", L"\uD7FF"},
        {"\xEE\x80\x80", L"\uE000"},
        {"\xEF\xBB\xBF", L"\uFEFF"}, // a byte-order mark is kept
        {"\xEF\xBF\xBF", L"\uFFFF"},
        {"\xF0\x90\x80\x80", L"\xD800\xDC00"},
        {"x\xF0\x9F\x98\x80y", L"x\xD83D\xDE00y"},
        {"\xF4\x8F\xBF\xBF", L"\xDBFF\xDFFF"},
    };
    for (const Utf8Row& row : rows) {
        const OrvStringT text = OrvStringT::FromUtf8(row.bytes);
        EXPECT_EQ(text, row.text) << testing::PrintToString(row.bytes);
        EXPECT_EQ(text.GetLength(), static_cast<int>(row.text.size()));
        EXPECT_EQ(text.ToUtf8(), row.bytes);
    }
}

// Each maximal part of a malformed sequence is one replacement; the rows follow table 3-8 and 3-9 of the Unicode
// standard (section 3.9) and the decoder of the WHATWG Encoding standard.
TEST(OrvStringUtf8, Malformed) {
    using namespace std::string_literals;
    const std::vector<Utf8Row> rows = {
        {"\x80", {replaced}},
        {"\xBF", {replaced}},
        {"\xFE\xFF", {replaced, replaced}},
        {"\xC0\x80", {replaced, replaced}}, // longer than needed
        {"\xC1\xBF", {replaced, replaced}},
        {"\xE0\x80\xAF", {replaced, replaced, replaced}},
        {"\xE0\x9F\xBF", {replaced, replaced, replaced}},
        {"\xF0\x80\x80\x80", {replaced, replaced, replaced, replaced}},
        {"\xF0\x8F\xBF\xBF", {replaced, replaced, replaced, replaced}},
        {"\xED\xA0\x80", {replaced, replaced, replaced}}, // surrogates
        {"\xED\xBF\xBF", {replaced, replaced, replaced}},
        {"\xF4\x90\x80\x80", {replaced, replaced, replaced, replaced}}, // above U+10FFFF
        {"\xF5\x80\x80\x80", {replaced, replaced, replaced, replaced}},
        {"\xC3", {replaced}}, // the end comes too early
        {"\xE2\x82", {replaced}},
        {"\xE2", {replaced}},
        {"\xF0\x9F\x98", {replaced}},
        {"\xF0\x9F", {replaced}},
        {"\xF0", {replaced}},
        {"\xC3(", {replaced, L'('}}, // another character comes too early
        {"\xE2\x82(", {replaced, L'('}},
        {"\xE2(\xA1", {replaced, L'(', replaced}},
        {"\xF0\x9F\x98(", {replaced, L'('}},
        {"\xF0(\x8C\xBC", {replaced, L'(', replaced, replaced}},
        {"\xE2\x82\xC3\xA9", {replaced, 0xE9}},
        {"\xF0\x9F\xF0\x9F\x98\x80", {replaced, 0xD83D, 0xDE00}},
        {"a\xF1\x80\x80\xE1\x80\xC2"
         "b\x80"
         "c\x80\xBF"
         "d",
         {L'a', replaced, replaced, replaced, L'b', replaced, L'c', replaced, replaced, L'd'}},
        {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82"
         "A",
         {replaced, replaced, replaced, replaced, replaced, replaced, replaced, replaced, L'A'}},
        {"\xF4\x91\x92\x93\xFF"
         "A\x80\xBF"
         "B",
         {replaced, replaced, replaced, replaced, replaced, L'A', replaced, replaced, L'B'}},
    };
    for (const Utf8Row& row : rows) {
        EXPECT_EQ(OrvStringT::FromUtf8(row.bytes), row.text) << testing::PrintToString(row.bytes);
    }
}

TEST(OrvStringUtf8, UnpairedSurrogatesAreReplaced) {
    const auto bytes = [](std::wstring units) { return OrvStringT(units).ToUtf8(); };
    EXPECT_EQ(bytes({0xD83D}), "\xEF\xBF\xBD");
    EXPECT_EQ(bytes({0xDE00}), "\xEF\xBF\xBD");
    EXPECT_EQ(bytes({0xD83D, L'a'}), "\xEF\xBF\xBD"
                                     "a");
    EXPECT_EQ(bytes({0xDE00, 0xD83D}), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(bytes({0xD83D, 0xD83D, 0xDE00}), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(OrvStringUtf8, EveryCodePointComesBack) {
    for (std::uint32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF) {
            continue;
        }
        OrvStringT text;
        if (code <= 0xFFFF) {
            text += static_cast<wchar_t>(code);
        } else {
            text += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
            text += static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        }
        const std::string bytes = text.ToUtf8();
        ASSERT_EQ(bytes.size(), code < 0x80 ? 1u : code < 0x800 ? 2u : code < 0x10000 ? 3u : 4u) << code;
        ASSERT_EQ(OrvStringT::FromUtf8(bytes), text) << code;
    }
}
