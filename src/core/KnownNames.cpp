#include "core/KnownNames.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>

namespace OrvUQL::detail {

namespace {

template <std::size_t... sizes> constexpr auto MakeLiterals(const wchar_t (&... names)[sizes]) {
    return std::tuple<OrvLiteral<sizes>...>(OrvLiteral<sizes>(names)...);
}

/// In the spelling of the method tables, which is the one that people use.
constexpr auto literals = MakeLiterals(
    L"Abs", L"Add", L"AddArray", L"BaseValue", L"Category", L"CharAt", L"CharCode", L"CharCodeAt", L"Contains",
    L"Convert", L"Count", L"Delete", L"DisplayUnit", L"Empty", L"EndsWith", L"Filter", L"Find", L"First", L"ForEach",
    L"IndexOf", L"IsNull", L"IsNumeric", L"Item", L"Join", L"LTrim", L"Last", L"LastIndexOf", L"Length", L"ParseInt",
    L"Power", L"RTrim", L"Radix", L"RegContains", L"RegContainsEx", L"RegFind", L"RegMatch", L"RegMatchEx",
    L"RegReplace", L"RegReplaceEx", L"RegSplit", L"Repeat", L"Replace", L"Round", L"Split", L"StartsWith", L"SubStr",
    L"This", L"ToArray", L"ToBool", L"ToCharArray", L"ToDegrees", L"ToDouble", L"ToInt", L"ToLower", L"ToRadians",
    L"ToString", L"ToTitle", L"ToUpper", L"Trim", L"TypeName", L"Unique", L"Unit", L"Value", L"array", L"atan", L"bool",
    L"chr", L"cos", L"data", L"double", L"e", L"exp", L"iif", L"index", L"int", L"item", L"lasteval", L"log", L"max",
    L"min", L"pi", L"radix", L"rnd", L"round", L"sin", L"sqrt", L"string", L"tan", L"$item", L"$index", L"$lasteval",
    L"$data", L"$Item", L"and", L"or", L"not");

constexpr std::size_t nameCount = std::tuple_size_v<decltype(literals)>;

constexpr auto names = std::apply(
    [](const auto&... literal) {
        return std::array<std::wstring_view, sizeof...(literal)>{
            std::wstring_view(literal.units, static_cast<std::size_t>(literal.header.length))...};
    },
    literals);

/// Four slots for each name, so that the first one looked at is nearly always the right one.
constexpr std::size_t slotCount = 512;
constexpr std::uint8_t noName = 0xFF;
static_assert(nameCount < noName && nameCount * 4 < slotCount);

constexpr std::size_t SlotOf(std::wstring_view name) noexcept {
    const auto unit = [name](std::size_t at) { return static_cast<std::size_t>(name[at]); };
    const std::size_t last = name.size() - 1;
    return (unit(0) * 7 + unit(last / 2) * 31 + unit(last) * 131 + name.size() * 53) % slotCount;
}

constexpr std::array<std::uint8_t, slotCount> MakeSlots() {
    std::array<std::uint8_t, slotCount> slots{};
    for (std::uint8_t& slot : slots) {
        slot = noName;
    }
    for (std::size_t number = 0; number < nameCount; ++number) {
        std::size_t at = SlotOf(names[number]);
        while (slots[at] != noName) {
            at = (at + 1) % slotCount;
        }
        slots[at] = static_cast<std::uint8_t>(number);
    }
    return slots;
}

constexpr std::array<std::uint8_t, slotCount> slots = MakeSlots();

} // namespace

OrvStringT NameText(std::wstring_view name) {
    if (!name.empty()) {
        for (std::size_t at = SlotOf(name); slots[at] != noName; at = (at + 1) % slotCount) {
            const std::wstring_view known = names[slots[at]];
            if (known == name) {
                return OrvStringT::ShareBuffer(const_cast<wchar_t*>(known.data()));
            }
        }
    }
    return OrvStringT(name);
}

} // namespace OrvUQL::detail
