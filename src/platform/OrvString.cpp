#include <OrvUQL/OrvString.h>

#include "platform/CaseMap.h"
#include "platform/Pool.h"
#include "platform/TextUnits.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

using namespace OrvUQL::platform;

// Buffers, parts and changes. A text that nobody shares is changed where it stands; any other change makes the new text
// beside the old one and exchanges the two at the end, so arguments may refer to the old one and a failure leaves it.

namespace {

constexpr std::int64_t greatestLength = std::numeric_limits<int>::max();

std::size_t BlockSize(std::int64_t capacity) noexcept {
    return sizeof(OrvTextHeader) + (static_cast<std::size_t>(capacity) + 1) * sizeof(wchar_t);
}

// Looked at before the units are: a length that is too great may have none behind it.
int CheckedLength(std::size_t length) {
    if (length > static_cast<std::size_t>(greatestLength)) {
        throw std::length_error("a text has at most 2147483647 code units");
    }
    return static_cast<int>(length);
}

void CopyUnits(wchar_t* to, const wchar_t* from, std::size_t count) noexcept {
    if (count > 0) { // an empty view may have no address
        std::memcpy(to, from, count * sizeof(wchar_t));
    }
}

void MoveUnits(wchar_t* to, const wchar_t* from, std::size_t count) noexcept {
    std::memmove(to, from, count * sizeof(wchar_t));
}

void SplitInto(wchar_t* to, std::wstring_view text) noexcept {
    for (const wchar_t element : text) {
        const UnitPair pair(static_cast<std::uint32_t>(element));
        for (int i = 0; i < pair.count; ++i) {
            *to++ = pair.units[i];
        }
    }
}

/// A loop: sets have a few units, for which a call of the C library's search takes longer.
bool Contains(std::wstring_view set, wchar_t unit) noexcept {
    return std::any_of(set.begin(), set.end(), [unit](wchar_t each) { return each == unit; });
}

/// The part of `text` that is left when `isOut` has cut at its ends.
template <typename IsOut> std::wstring_view Trimmed(std::wstring_view text, bool left, bool right, IsOut isOut) {
    while (left && !text.empty() && isOut(text.front())) {
        text.remove_prefix(1);
    }
    while (right && !text.empty() && isOut(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace

// ---- buffers ----

/// A text with a buffer of its own and room for `capacity` units, of which the first `length` are still to be written.
OrvStringT OrvStringT::WithLength(std::int64_t length, std::int64_t capacity) {
    CheckedLength(static_cast<std::size_t>(length));
    // The memory comes in steps, so the whole step may be used.
    std::size_t size = BlockSize(std::min(capacity, greatestLength));
    size = PoolBlockSize(PoolClass(size));
    const auto room = static_cast<std::int64_t>((size - sizeof(OrvTextHeader)) / sizeof(wchar_t)) - 1;
    const auto usable = static_cast<int>(std::min(room, greatestLength));
    auto* const header = ::new (PoolAllocate(BlockSize(usable))) OrvTextHeader{1, static_cast<int>(length), usable};
    OrvStringT text;
    text.units = reinterpret_cast<wchar_t*>(header + 1);
    text.units[length] = L'\0';
    return text;
}

OrvStringT OrvStringT::Copy(const wchar_t* text, int length) {
    if (length == 0) {
        return OrvStringT();
    }
    OrvStringT copy = WithLength(length, length);
    CopyUnits(copy.units, text, static_cast<std::size_t>(length));
    return copy;
}

void OrvStringT::FreeBuffer() noexcept { PoolFree(&Header(), BlockSize(Header().capacity)); }

void OrvStringT::SetLength(int length) noexcept {
    Header().length = length;
    units[length] = L'\0';
}

void OrvStringT::MakeUnique() {
    if (!IsUnique()) {
        OrvStringT copy = WithLength(GetLength(), GetLength());
        CopyUnits(copy.units, units, static_cast<std::size_t>(GetLength()));
        Swap(copy);
    }
}

/// Room for a text that has become longer: more than it needs if it has grown before, so that growth is paid for once.
std::int64_t OrvStringT::GrownCapacity(std::int64_t length) const noexcept {
    const std::int64_t capacity = Header().capacity;
    return IsUnique() ? std::max(length, capacity + capacity / 2) : length;
}

void OrvStringT::Reserve(int length) {
    if (length <= 0 || (IsUnique() && length <= Header().capacity)) {
        return;
    }
    OrvStringT wider = WithLength(GetLength(), std::max(length, GetLength()));
    CopyUnits(wider.units, units, static_cast<std::size_t>(GetLength()));
    Swap(wider);
}

void OrvStringT::Clear() noexcept {
    if (IsUnique()) {
        SetLength(0);
    } else {
        *this = OrvStringT();
    }
}

void OrvStringT::Detach() {
    if (Header().refs > 1) {
        MakeUnique();
    }
}

// ---- making ----

OrvStringT::OrvStringT(const wchar_t* text) : OrvStringT(ViewOf(text)) {}

OrvStringT::OrvStringT(const wchar_t* text, int length)
    : OrvStringT(text == nullptr || length <= 0 ? std::wstring_view()
                                                : std::wstring_view(text, static_cast<std::size_t>(length))) {}

OrvStringT::OrvStringT(std::wstring_view text) : OrvStringT() {
    const int length = CheckedLength(text.size());
    if (HasWide(text)) {
        Append(text);
    } else {
        units = Copy(text.data(), length).ReleaseBuffer();
    }
}

OrvStringT::OrvStringT(wchar_t unit, int count) : OrvStringT() {
    if (count <= 0) {
        return;
    }
    const UnitPair pair(static_cast<std::uint32_t>(unit));
    const std::int64_t length = std::int64_t{count} * pair.count;
    OrvStringT text = WithLength(length, length);
    if (pair.count == 1) {
        std::fill_n(text.units, length, pair.units[0]);
    } else {
        for (std::int64_t i = 0; i < length; ++i) {
            text.units[i] = pair.units[i & 1];
        }
    }
    Swap(text);
}

// ---- parts ----

OrvStringT OrvStringT::Left(int count) const { return Mid(0, count); }

OrvStringT OrvStringT::Right(int count) const {
    const int length = GetLength();
    return count >= length ? *this : Mid(length - std::max(count, 0));
}

OrvStringT OrvStringT::Mid(int start) const { return Mid(start, GetLength()); }

OrvStringT OrvStringT::Mid(int start, int count) const {
    const int length = GetLength();
    const int first = std::clamp(start, 0, length);
    const int kept = std::clamp(count, 0, length - first);
    return kept == length ? *this : Copy(units + first, kept);
}

// ---- changing ----

/// Cuts the text down to a part of itself.
void OrvStringT::KeepRange(int start, int count) {
    if (count == GetLength()) {
        return;
    }
    if (!IsUnique()) {
        *this = Copy(units + start, count);
        return;
    }
    MoveUnits(units, units + start, static_cast<std::size_t>(count));
    SetLength(count);
}

int OrvStringT::Delete(int start, int count) {
    const int length = GetLength();
    const int first = std::clamp(start, 0, length);
    const int removed = std::clamp(count, 0, length - first);
    if (removed == 0) {
        return length;
    }
    const int behind = first + removed;
    if (first == 0 || behind == length) {
        KeepRange(first == 0 ? behind : 0, length - removed);
        return GetLength();
    }
    if (!IsUnique()) {
        OrvStringT text = WithLength(length - removed, length - removed);
        CopyUnits(text.units, units, static_cast<std::size_t>(first));
        CopyUnits(text.units + first, units + behind, static_cast<std::size_t>(length - behind));
        Swap(text);
        return GetLength();
    }
    MoveUnits(units + first, units + behind, static_cast<std::size_t>(length - behind));
    SetLength(length - removed);
    return GetLength();
}

int OrvStringT::Insert(int index, std::wstring_view text) {
    CheckedLength(text.size());
    const UnitText unitText(text);
    const std::wstring_view inserted = unitText.View();
    const int length = GetLength();
    const auto at = static_cast<std::size_t>(std::clamp(index, 0, length));
    const auto behind = static_cast<std::size_t>(length) - at;
    if (inserted.empty()) {
        return length;
    }
    const std::int64_t total = std::int64_t{length} + CheckedLength(inserted.size());
    const bool inside =
        std::less_equal<>()(units, inserted.data()) && std::less_equal<>()(inserted.data(), units + length);
    if (IsUnique() && total <= Header().capacity && !inside) {
        MoveUnits(units + at + inserted.size(), units + at, behind);
        CopyUnits(units + at, inserted.data(), inserted.size());
        SetLength(static_cast<int>(total));
        return GetLength();
    }
    OrvStringT result = WithLength(total, GrownCapacity(total));
    CopyUnits(result.units, units, at);
    CopyUnits(result.units + at, inserted.data(), inserted.size());
    CopyUnits(result.units + at + inserted.size(), units + at, behind);
    Swap(result);
    return GetLength();
}

OrvStringT& OrvStringT::AppendUnits(const wchar_t* text, std::size_t count) {
    if (count == 0) {
        return *this;
    }
    const int length = GetLength();
    const std::int64_t total = std::int64_t{length} + CheckedLength(count);
    if (IsUnique() && total <= Header().capacity) {
        CopyUnits(units + length, text, count);
        SetLength(static_cast<int>(total));
        return *this;
    }
    OrvStringT wider = WithLength(total, GrownCapacity(total));
    CopyUnits(wider.units, units, static_cast<std::size_t>(length));
    CopyUnits(wider.units + length, text, count);
    Swap(wider);
    return *this;
}

OrvStringT& OrvStringT::Append(std::wstring_view text) {
    CheckedLength(text.size());
    if (!HasWide(text)) {
        return AppendUnits(text.data(), text.size());
    }
    const int count = CheckedLength(CountUnits(text));
    OrvStringT split = WithLength(count, count);
    SplitInto(split.units, text);
    return Append(split);
}

OrvStringT& OrvStringT::Append(wchar_t unit) {
    const UnitPair pair(static_cast<std::uint32_t>(unit));
    return AppendUnits(pair.units, static_cast<std::size_t>(pair.count));
}

OrvStringT& OrvStringT::Append(const OrvStringT& text) {
    if (IsEmpty() && !IsUnique()) {
        return *this = text;
    }
    return AppendUnits(text.units, static_cast<std::size_t>(text.GetLength()));
}

OrvStringT& OrvStringT::MakeUpper() {
    const std::wstring_view text = View();
    const auto changed = std::find_if(text.begin(), text.end(), [](wchar_t u) { return ToUpperUnit(u) != u; });
    if (changed != text.end()) {
        const auto first = changed - text.begin();
        MakeUnique();
        std::transform(units + first, units + GetLength(), units + first, ToUpperUnit);
    }
    return *this;
}

OrvStringT& OrvStringT::MakeLower() {
    const std::wstring_view text = View();
    const auto changed = std::find_if(text.begin(), text.end(), [](wchar_t u) { return ToLowerUnit(u) != u; });
    if (changed != text.end()) {
        const auto first = changed - text.begin();
        MakeUnique();
        std::transform(units + first, units + GetLength(), units + first, ToLowerUnit);
    }
    return *this;
}

// ---- trimming ----

namespace {

/// A set that is longer is looked through once, not for each unit of the text: both may be as long as a text can be.
constexpr std::size_t longSet = 64;

std::wstring_view TrimmedOf(std::wstring_view text, std::wstring_view set, bool left, bool right) {
    const UnitText units(set);
    if (units.View().size() <= longSet) {
        return Trimmed(text, left, right, [&units](wchar_t unit) { return Contains(units.View(), unit); });
    }
    std::vector<bool> isIn(0x10000);
    for (const wchar_t unit : units.View()) {
        isIn[static_cast<std::uint16_t>(unit)] = true;
    }
    return Trimmed(text, left, right, [&isIn](wchar_t unit) { return isIn[static_cast<std::uint16_t>(unit)]; });
}

} // namespace

OrvStringT& OrvStringT::Trim() {
    const std::wstring_view kept = Trimmed(View(), true, true, IsWhiteSpace);
    KeepRange(static_cast<int>(kept.data() - units), static_cast<int>(kept.size()));
    return *this;
}

OrvStringT& OrvStringT::TrimLeft() {
    const std::wstring_view kept = Trimmed(View(), true, false, IsWhiteSpace);
    KeepRange(static_cast<int>(kept.data() - units), static_cast<int>(kept.size()));
    return *this;
}

OrvStringT& OrvStringT::TrimRight() {
    KeepRange(0, static_cast<int>(Trimmed(View(), false, true, IsWhiteSpace).size()));
    return *this;
}

OrvStringT& OrvStringT::Trim(std::wstring_view set) {
    const std::wstring_view kept = TrimmedOf(View(), set, true, true);
    KeepRange(static_cast<int>(kept.data() - units), static_cast<int>(kept.size()));
    return *this;
}

OrvStringT& OrvStringT::TrimLeft(std::wstring_view set) {
    const std::wstring_view kept = TrimmedOf(View(), set, true, false);
    KeepRange(static_cast<int>(kept.data() - units), static_cast<int>(kept.size()));
    return *this;
}

OrvStringT& OrvStringT::TrimRight(std::wstring_view set) {
    KeepRange(0, static_cast<int>(TrimmedOf(View(), set, false, true).size()));
    return *this;
}
