#include <OrvUQL/OrvString.h>

#include "platform/CaseMap.h"
#include "platform/TextSearch.h"
#include "platform/TextUnits.h"

#include <algorithm>
#include <cwchar>
#include <limits>

using namespace OrvUQL::platform;

// Searching, replacing and comparing.

namespace {

struct Exact {
    static constexpr bool isIdentity = true;
    static wchar_t Map(wchar_t unit) noexcept { return unit; }
};

struct UpperCase {
    static constexpr bool isIdentity = false;
    static wchar_t Map(wchar_t unit) noexcept { return ToUpperUnit(unit); }
};

/// Sets `result` to the text with each occurrence replaced, and returns the number of occurrences. Without one,
/// `result` is left as it is. The occurrences are counted first: the result then has exactly the room it needs, and one
/// that is too long is known before it is made.
template <typename Fold>
int ReplaceAll(std::wstring_view text, std::wstring_view oldText, std::wstring_view newText, OrvStringT& result) {
    TextSearcher<Fold> searcher(oldText);
    const std::size_t first = searcher.Find(text, 0);
    std::int64_t count = 0;
    for (std::size_t at = first; at != searcher.notFound; at = searcher.Find(text, at + oldText.size())) {
        ++count;
    }
    if (count == 0) {
        return 0;
    }
    const auto difference = static_cast<std::int64_t>(newText.size()) - static_cast<std::int64_t>(oldText.size());
    const std::int64_t length = static_cast<std::int64_t>(text.size()) + count * difference;
    if (length > std::numeric_limits<int>::max()) {
        throw std::length_error("a text has at most 2147483647 code units");
    }
    OrvStringT made;
    made.Reserve(static_cast<int>(length));
    std::size_t last = 0;
    for (std::size_t at = first; at != searcher.notFound; at = searcher.Find(text, last)) {
        made.Append(text.substr(last, at - last));
        made.Append(newText);
        last = at + oldText.size();
    }
    made.Append(text.substr(last));
    result.Swap(made);
    return static_cast<int>(count);
}

/// The code units of a text whose elements may have to be split.
class UnitReader {
public:
    explicit UnitReader(std::wstring_view text) noexcept : rest(text) {}

    /// The next unit, or -1.
    std::int32_t Next() noexcept {
        if (hasLow) {
            hasLow = false;
            return low;
        }
        if (rest.empty()) {
            return -1;
        }
        const UnitPair pair(static_cast<std::uint32_t>(rest.front()));
        rest.remove_prefix(1);
        hasLow = pair.count == 2;
        low = pair.units[1];
        return pair.units[0];
    }

private:
    std::wstring_view rest;
    wchar_t low = 0;
    bool hasLow = false;
};

template <typename Fold> int CompareUnits(std::wstring_view a, std::wstring_view b) noexcept {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (a[i] == b[i]) {
            continue;
        }
        if (IsWide(b[i])) {
            UnitReader left(a.substr(i));
            UnitReader right(b.substr(i));
            for (;;) {
                const std::int32_t x = left.Next();
                const std::int32_t y = right.Next();
                const std::int32_t foldedX = x < 0 ? x : Fold::Map(static_cast<wchar_t>(x));
                const std::int32_t foldedY = y < 0 ? y : Fold::Map(static_cast<wchar_t>(y));
                if (foldedX != foldedY || x < 0) {
                    return foldedX == foldedY ? 0 : foldedX < foldedY ? -1 : 1;
                }
            }
        }
        const wchar_t x = Fold::Map(a[i]);
        const wchar_t y = Fold::Map(b[i]);
        if (x != y) {
            return x < y ? -1 : 1;
        }
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

} // namespace

int OrvStringT::Find(std::wstring_view sub, int start, ECompareCase compareCase) const {
    const auto from = static_cast<std::size_t>(std::max(start, 0));
    const UnitText subUnits(sub);
    const std::wstring_view searched = subUnits.View();
    if (searched.empty()) {
        return from <= static_cast<std::size_t>(GetLength()) ? static_cast<int>(from) : -1;
    }
    const std::size_t found = compareCase == CaseSensitive ? TextSearcher<Exact>(searched).Find(View(), from)
                                                           : TextSearcher<UpperCase>(searched).Find(View(), from);
    return found == std::wstring_view::npos ? -1 : static_cast<int>(found);
}

int OrvStringT::Replace(std::wstring_view oldText, std::wstring_view newText, ECompareCase compareCase) {
    const UnitText oldUnits(oldText);
    const UnitText newUnits(newText);
    if (oldUnits.View().empty()) {
        return 0;
    }
    OrvStringT result;
    const int count = compareCase == CaseSensitive
                          ? ReplaceAll<Exact>(View(), oldUnits.View(), newUnits.View(), result)
                          : ReplaceAll<UpperCase>(View(), oldUnits.View(), newUnits.View(), result);
    if (count > 0) {
        Swap(result);
    }
    return count;
}

int OrvStringT::Compare(std::wstring_view other, ECompareCase compareCase) const noexcept {
    return compareCase == CaseSensitive ? CompareUnits<Exact>(View(), other) : CompareUnits<UpperCase>(View(), other);
}

bool OrvStringT::Equals(std::wstring_view other) const noexcept {
    const auto length = static_cast<std::size_t>(GetLength());
    if (other.size() == length) {
        return length == 0 || std::wmemcmp(units, other.data(), length) == 0;
    }
    // Splitting makes a text longer, so only a shorter one can still be equal.
    return sizeof(wchar_t) > 2 && other.size() < length && HasWide(other) && Compare(other) == 0;
}
