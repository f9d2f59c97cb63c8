#include "platform/TextSearch.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using namespace OrvUQL::platform;

namespace {

struct Same {
    static constexpr bool isIdentity = true;
    static wchar_t Map(wchar_t unit) noexcept { return unit; }
};

/// Counts what is looked at.
struct Counted {
    static constexpr bool isIdentity = false;
    static inline std::size_t looks = 0;
    static wchar_t Map(wchar_t unit) noexcept {
        ++looks;
        return unit;
    }
};

/// All places where a pattern is found, each search beginning behind the place before.
template <typename Fold> std::wstring Places(const std::wstring& text, const std::wstring& pattern) {
    TextSearcher<Fold> searcher(pattern);
    std::wstring places;
    std::size_t at = 0;
    while ((at = searcher.Find(text, at)) != searcher.notFound) {
        places += static_cast<wchar_t>(at++);
    }
    return places;
}

std::wstring ExpectedPlaces(const std::wstring& text, const std::wstring& pattern) {
    std::wstring places;
    for (std::size_t at = 0; (at = text.find(pattern, at)) != std::wstring::npos; ++at) {
        places += static_cast<wchar_t>(at);
    }
    return places;
}

} // namespace

TEST(TextSearch, FindsWhatAPlainSearchFinds) {
    std::minstd_rand random(1991);
    for (int i = 0; i < 20'000; ++i) {
        const auto letters = 1 + random() % 3;
        std::wstring text(random() % 400, L'a');
        for (wchar_t& unit : text) {
            unit = static_cast<wchar_t>(L'a' + random() % letters);
        }
        std::wstring pattern(1 + random() % 12, L'a');
        for (wchar_t& unit : pattern) {
            unit = static_cast<wchar_t>(L'a' + random() % letters);
        }
        for (auto doublings = random() % 4; doublings > 0; --doublings) {
            pattern += pattern; // periodic
        }
        if (!text.empty() && random() % 2 == 0) {
            pattern = text.substr(random() % text.size(), 1 + random() % 60);
        }
        const std::wstring expected = ExpectedPlaces(text, pattern);
        ASSERT_EQ(Places<Same>(text, pattern), expected);
        ASSERT_EQ(Places<Counted>(text, pattern), expected);
    }
}

TEST(TextSearch, HardTextsTakeLinearTime) {
    constexpr std::size_t length = 100'000;
    const auto looksFor = [](const std::wstring& text, const std::wstring& pattern) {
        TextSearcher<Counted> searcher(pattern);
        Counted::looks = 0;
        searcher.Find(text, 0);
        return Counted::looks;
    };
    const std::wstring as(length, L'a');
    std::wstring pairs;
    while (pairs.size() < length) {
        pairs += L"ab";
    }
    for (const std::size_t size : {10u, 100u, 1000u, 30'000u}) {
        const std::wstring many(size, L'a');
        EXPECT_LT(looksFor(as, many + L"b"), 12 * length + 100 * size) << size;
        EXPECT_LT(looksFor(as, L"b" + many), 12 * length + 100 * size) << size;
        EXPECT_LT(looksFor(as, many + L"b" + many), 12 * length + 100 * size) << size;
        EXPECT_LT(looksFor(pairs, pairs.substr(0, size) + L"b"), 12 * length + 100 * size) << size;
        EXPECT_LT(looksFor(pairs, pairs.substr(0, size) + L"aa"), 12 * length + 100 * size) << size;
    }
}
