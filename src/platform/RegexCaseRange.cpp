#include "platform/RegexCaseRange.h"

#include "platform/CaseMap.h"

#include <algorithm>
#include <vector>

namespace OrvUQL::platform {

namespace {

struct Letter {
    wchar_t unit;
    wchar_t upper;
};

/// The units that are not their own upper-case mapping, in order.
const std::vector<Letter>& LowerLetters() {
    static const std::vector<Letter> letters = [] {
        std::vector<Letter> found;
        for (int code = 0; code <= 0xFFFF; ++code) {
            const auto unit = static_cast<wchar_t>(code);
            if (ToUpperUnit(unit) != unit) {
                found.push_back({unit, ToUpperUnit(unit)});
            }
        }
        return found;
    }();
    return letters;
}

bool IsUpper(wchar_t unit) noexcept { return ToUpperUnit(unit) == unit; }

void AppendEscape(std::wstring& pattern, wchar_t unit) {
    constexpr wchar_t digits[] = L"0123456789abcdef";
    pattern += L"\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        pattern += digits[(static_cast<unsigned>(unit) >> shift) & 15u];
    }
}

void AppendRange(std::wstring& pattern, wchar_t first, wchar_t last) {
    AppendEscape(pattern, first);
    pattern += L'-';
    AppendEscape(pattern, last);
}

} // namespace

std::size_t AppendUpperRanges(std::wstring& pattern, wchar_t first, wchar_t last) {
    const std::vector<Letter>& letters = LowerLetters();
    const auto before = [](const Letter& letter, wchar_t unit) { return letter.unit < unit; };
    const auto begin = std::lower_bound(letters.begin(), letters.end(), first, before);
    std::vector<wchar_t> uppers;
    for (auto letter = begin; letter != letters.end() && letter->unit <= last; ++letter) {
        uppers.push_back(letter->upper);
    }
    // What of the range is its own mapping is one range; lower letters in between do no harm, since no mapping gives
    // them.
    while (first < last && !IsUpper(first)) {
        ++first;
    }
    while (first < last && !IsUpper(last)) {
        --last;
    }
    std::size_t count = 0;
    if (IsUpper(first)) {
        AppendRange(pattern, first, last);
        ++count;
        std::erase_if(uppers, [&](wchar_t unit) { return unit >= first && unit <= last; });
    }
    std::sort(uppers.begin(), uppers.end());
    uppers.erase(std::unique(uppers.begin(), uppers.end()), uppers.end());
    for (std::size_t i = 0; i < uppers.size(); ++count) {
        const wchar_t start = uppers[i];
        wchar_t end = start;
        for (++i; i < uppers.size(); ++i) {
            wchar_t next = end;
            do {
                ++next;
            } while (next < uppers[i] && !IsUpper(next));
            if (next != uppers[i]) {
                break;
            }
            end = next;
        }
        AppendRange(pattern, start, end);
    }
    return count;
}

} // namespace OrvUQL::platform
