#include "platform/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace OrvUQL::platform {

namespace {

/// Writes units one after the other.
class UnitWriter {
public:
    explicit UnitWriter(wchar_t* buffer) noexcept : first(buffer), at(buffer) {}

    void Put(char unit) noexcept { *at++ = static_cast<wchar_t>(unit); }

    void Put(std::string_view units) noexcept {
        for (const char unit : units) {
            Put(unit);
        }
    }

    void PutZeros(int count) noexcept {
        for (; count > 0; --count) {
            Put('0');
        }
    }

    int Finish() noexcept {
        *at = L'\0';
        return static_cast<int>(at - first);
    }

private:
    wchar_t* first;
    wchar_t* at;
};

void PutExponent(UnitWriter& writer, int exponent) noexcept {
    char text[8];
    const char* const end = std::to_chars(text, text + sizeof text, std::abs(exponent)).ptr;
    writer.Put(exponent < 0 ? "e-" : "e+");
    writer.PutZeros(exponent > -10 && exponent < 10 ? 1 : 0);
    writer.Put(std::string_view(text, static_cast<std::size_t>(end - text)));
}

/// Writes a positive number that has up to four decimals, as prices and lengths have, and says whether it is one.
/// With less than 16 digits the quotient n / 10^k, which is rounded correctly, is the double that these digits read
/// back to; and the first k for which it is the value gives the shortest.
bool PutFewDecimals(UnitWriter& writer, double value) noexcept {
    constexpr double powers[] = {10.0, 100.0, 1000.0, 10000.0};
    constexpr double limit = 1e15;
    for (int decimals = 1; decimals <= 4; ++decimals) {
        const double scaled = value * powers[decimals - 1];
        if (!(scaled < limit)) {
            return false;
        }
        const auto digits = static_cast<std::int64_t>(scaled + 0.5);
        if (static_cast<double>(digits) / powers[decimals - 1] != value) {
            continue;
        }
        char text[doubleTextUnits];
        char* const end = text + sizeof text;
        char* at = end;
        std::int64_t rest = digits;
        for (int written = 0; written <= decimals || rest != 0; ++written) {
            if (written == decimals) {
                *--at = '.';
            }
            *--at = static_cast<char>('0' + rest % 10);
            rest /= 10;
        }
        writer.Put(std::string_view(at, static_cast<std::size_t>(end - at)));
        return true;
    }
    return false;
}

} // namespace

int FormatInteger(int value, int radix, wchar_t* buffer) noexcept {
    wchar_t digits[integerTextUnits];
    wchar_t* const end = digits + integerTextUnits;
    wchar_t* at = end;
    auto rest = static_cast<std::uint32_t>(value);
    if (radix == 10) { // apart, because a division by a constant takes a fraction of the time
        rest = value < 0 ? 0 - rest : rest;
        do {
            *--at = static_cast<wchar_t>(L'0' + rest % 10);
            rest /= 10;
        } while (rest != 0);
        if (value < 0) {
            *--at = L'-';
        }
    } else {
        do {
            *--at = static_cast<wchar_t>("0123456789abcdefghijklmnopqrstuvwxyz"[rest % static_cast<unsigned>(radix)]);
            rest /= static_cast<unsigned>(radix);
        } while (rest != 0);
    }
    *std::copy(at, end, buffer) = L'\0';
    return static_cast<int>(end - at);
}

int FormatDouble(double value, wchar_t* buffer) noexcept {
    UnitWriter writer(buffer);
    if (std::isnan(value)) {
        writer.Put("nan");
        return writer.Finish();
    }
    if (std::signbit(value)) {
        writer.Put('-');
        value = -value;
    }
    if (std::isinf(value)) {
        writer.Put("inf");
        return writer.Finish();
    }
    // Whole numbers are the most frequent ones. Below 2^53 all their digits are needed to tell them apart.
    if (value < 9007199254740992.0 && value == std::trunc(value)) {
        char whole[doubleTextUnits];
        const char* const last = std::to_chars(whole, whole + sizeof whole, static_cast<std::int64_t>(value)).ptr;
        writer.Put(std::string_view(whole, static_cast<std::size_t>(last - whole)));
        return writer.Finish();
    }

    if (PutFewDecimals(writer, value)) {
        return writer.Finish();
    }

    // The shortest digits come as d.ddde-XX and are laid out again: fixed notation would print great numbers with all
    // the digits of their exact value.
    char text[doubleTextUnits];
    const char* const end = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific).ptr;
    const auto* const letter = static_cast<const char*>(std::memchr(text, 'e', static_cast<std::size_t>(end - text)));
    int exponent = 0;
    std::from_chars(letter[1] == '+' ? letter + 2 : letter + 1, end, exponent);
    char digits[doubleTextUnits] = {};
    int count = 0;
    for (const char* at = text; at < letter; ++at) {
        if (*at != '.') {
            digits[count++] = *at;
        }
    }
    const std::string_view all(digits, static_cast<std::size_t>(count));

    if (exponent < -6 || exponent >= 21) {
        writer.Put(all.front());
        if (count > 1) {
            writer.Put('.');
            writer.Put(all.substr(1));
        }
        PutExponent(writer, exponent);
    } else if (exponent < 0) {
        writer.Put("0.");
        writer.PutZeros(-exponent - 1);
        writer.Put(all);
    } else if (exponent + 1 >= count) {
        writer.Put(all);
        writer.PutZeros(exponent + 1 - count);
    } else {
        const auto whole = static_cast<std::size_t>(exponent + 1);
        writer.Put(all.substr(0, whole));
        writer.Put('.');
        writer.Put(all.substr(whole));
    }
    return writer.Finish();
}

void AppendTo(OrvStringT& text, int value) {
    wchar_t buffer[integerTextUnits];
    const int length = FormatInteger(value, 10, buffer);
    text.Append(std::wstring_view(buffer, static_cast<std::size_t>(length)));
}

void AppendTo(OrvStringT& text, double value) {
    wchar_t buffer[doubleTextUnits];
    const int length = FormatDouble(value, buffer);
    text.Append(std::wstring_view(buffer, static_cast<std::size_t>(length)));
}

void AppendTo(OrvStringT& text, bool value) { text.Append(value ? std::wstring_view(L"true") : L"false"); }

} // namespace OrvUQL::platform

namespace OrvUtils::String {

OrvStringT ToStringW(bool value) { return value ? OrvStringT(ORV_TEXT(L"true")) : OrvStringT(ORV_TEXT(L"false")); }

OrvStringT ToStringW(int value) {
    static constexpr OrvLiteral<2> digits[] = {
        OrvLiteral<2>(L"0"), OrvLiteral<2>(L"1"), OrvLiteral<2>(L"2"), OrvLiteral<2>(L"3"), OrvLiteral<2>(L"4"),
        OrvLiteral<2>(L"5"), OrvLiteral<2>(L"6"), OrvLiteral<2>(L"7"), OrvLiteral<2>(L"8"), OrvLiteral<2>(L"9")};
    if (value >= 0 && value <= 9) {
        return digits[value];
    }
    wchar_t buffer[OrvUQL::platform::integerTextUnits];
    return OrvStringT(buffer, OrvUQL::platform::FormatInteger(value, 10, buffer));
}

OrvStringT ToStringW(double value) {
    wchar_t buffer[OrvUQL::platform::doubleTextUnits];
    return OrvStringT(buffer, OrvUQL::platform::FormatDouble(value, buffer));
}

} // namespace OrvUtils::String
