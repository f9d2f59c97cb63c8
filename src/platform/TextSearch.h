#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace OrvUQL::platform {

/// Finds a pattern in texts, in time linear in the text whatever both hold.
///
/// The plain search from each place where the first unit fits is fastest on what people write, and is done first. When
/// it has compared much more than it has moved on, the two-way algorithm (Crochemore and Perrin, Journal of the ACM 38,
/// 1991) takes over: no memory, and at most twice the length of the text in comparisons.
///
/// `Fold` maps a unit to what is compared. The pattern is borrowed and not empty.
template <typename Fold> class TextSearcher {
public:
    static constexpr std::size_t notFound = std::wstring_view::npos;

    explicit TextSearcher(std::wstring_view searched) noexcept : pattern(searched) {}

    /// The first place at or after `start`, or notFound.
    std::size_t Find(std::wstring_view text, std::size_t start) noexcept {
        if (text.size() < pattern.size() || start > text.size() - pattern.size()) {
            return notFound;
        }
        return isFactored ? FindTwoWay(text, start) : FindPlainly(text, start);
    }

private:
    std::wstring_view pattern;

    bool isFactored = false; // the rest is set with it
    bool isPeriodic = false;
    std::size_t split = 0; // where the pattern's second part begins
    std::size_t period = 0;

    static constexpr bool isExact = Fold::isIdentity;

    std::size_t FindPlainly(std::wstring_view text, std::size_t start) noexcept {
        const std::size_t last = text.size() - pattern.size();
        const wchar_t first = Fold::Map(pattern.front());
        std::size_t compared = 0;
        for (std::size_t at = start; at <= last; ++at) {
            if constexpr (isExact) {
                at = text.substr(0, last + 1).find(first, at);
                if (at == notFound) {
                    return notFound;
                }
            } else if (Fold::Map(text[at]) != first) {
                continue;
            }
            std::size_t i = 1;
            while (i < pattern.size() && Fold::Map(pattern[i]) == Fold::Map(text[at + i])) {
                ++i;
            }
            if (i == pattern.size()) {
                return at;
            }
            compared += i;
            if (compared > 4 * (at - start) + 8 * pattern.size() + 64) {
                Factor();
                return FindTwoWay(text, at + 1);
            }
        }
        return notFound;
    }

    std::size_t FindTwoWay(std::wstring_view text, std::size_t start) const noexcept {
        std::size_t known = 0; // units at the pattern's start that are known to fit here
        for (std::size_t at = start; at + pattern.size() <= text.size();) {
            std::size_t i = std::max(split, known);
            while (i < pattern.size() && Fits(i, text[at + i])) {
                ++i;
            }
            if (i < pattern.size()) {
                at += i - split + 1;
                known = 0;
                continue;
            }
            i = split;
            while (i > known && Fits(i - 1, text[at + i - 1])) {
                --i;
            }
            if (i <= known) {
                return at;
            }
            at += period;
            known = isPeriodic ? pattern.size() - period : 0;
        }
        return notFound;
    }

    bool Fits(std::size_t i, wchar_t unit) const noexcept { return Fold::Map(pattern[i]) == Fold::Map(unit); }

    /// The greatest suffix of the pattern for one of the two orders of units: where it begins, and its period.
    std::size_t GreatestSuffix(bool reversed, std::size_t& suffixPeriod) const noexcept {
        std::size_t best = 0;      // begin of the greatest suffix so far
        std::size_t candidate = 1; // begin of the suffix that is compared with it
        std::size_t offset = 0;
        suffixPeriod = 1;
        while (candidate + offset < pattern.size()) {
            const wchar_t a = Fold::Map(pattern[candidate + offset]);
            const wchar_t b = Fold::Map(pattern[best + offset]);
            if (a == b) {
                if (++offset == suffixPeriod) {
                    candidate += suffixPeriod;
                    offset = 0;
                }
            } else if ((a < b) != reversed) {
                candidate += offset + 1;
                offset = 0;
                suffixPeriod = candidate - best;
            } else {
                best = candidate++;
                offset = 0;
                suffixPeriod = 1;
            }
        }
        return best;
    }

    void Factor() noexcept {
        std::size_t periodUp = 0;
        std::size_t periodDown = 0;
        const std::size_t up = GreatestSuffix(false, periodUp);
        const std::size_t down = GreatestSuffix(true, periodDown);
        split = std::max(up, down);
        period = up > down ? periodUp : periodDown;
        isPeriodic = split + period <= pattern.size();
        for (std::size_t i = 0; isPeriodic && i < split; ++i) {
            isPeriodic = Fits(i, pattern[i + period]);
        }
        if (!isPeriodic) {
            period = std::max(split, pattern.size() - split) + 1;
        }
        isFactored = true;
    }
};

} // namespace OrvUQL::platform
