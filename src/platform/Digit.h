#pragma once

namespace OrvUQL::platform {

inline bool IsDigit(wchar_t unit) noexcept { return unit >= L'0' && unit <= L'9'; }

/// The value of a digit or letter in radix 36, or 36.
inline int DigitValue(wchar_t unit) noexcept {
    if (IsDigit(unit)) {
        return unit - L'0';
    }
    if (unit >= L'a' && unit <= L'z') {
        return unit - L'a' + 10;
    }
    if (unit >= L'A' && unit <= L'Z') {
        return unit - L'A' + 10;
    }
    return 36;
}

} // namespace OrvUQL::platform
