#include "platform/Digit.h"
#include "platform/NumberText.h"

#include <limits>

namespace OrvUQL::platform {

std::uint32_t ParseUnsigned(std::wstring_view text, int base, std::size_t& used) noexcept {
    used = 0;
    if (base < 0 || base == 1 || base > 36) {
        return 0;
    }
    const auto unitAt = [text](std::size_t i) { return i < text.size() ? text[i] : L'\0'; };
    std::size_t at = 0;
    while (unitAt(at) == L' ' || (unitAt(at) >= L'\t' && unitAt(at) <= L'\r')) {
        ++at;
    }
    const bool negative = unitAt(at) == L'-';
    if (negative || unitAt(at) == L'+') {
        ++at;
    }
    // "0x" without a digit behind it is the number 0 and an x that is not read.
    if ((base == 0 || base == 16) && unitAt(at) == L'0' && (unitAt(at + 1) == L'x' || unitAt(at + 1) == L'X') &&
        DigitValue(unitAt(at + 2)) < 16) {
        at += 2;
        base = 16;
    } else if (base == 0) {
        base = unitAt(at) == L'0' ? 8 : 10;
    }
    constexpr std::uint64_t greatest = std::numeric_limits<std::uint32_t>::max();
    std::uint64_t value = 0;
    const std::size_t first = at;
    for (; DigitValue(unitAt(at)) < base; ++at) {
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(DigitValue(unitAt(at)));
        value = value > greatest ? greatest + 1 : value;
    }
    if (at == first) {
        return 0;
    }
    used = at;
    if (value > greatest) {
        return static_cast<std::uint32_t>(greatest);
    }
    return static_cast<std::uint32_t>(negative ? 0 - value : value);
}

} // namespace OrvUQL::platform
