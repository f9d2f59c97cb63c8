// Texts to numbers and numbers to texts, beside what the standard library makes of them.

#include "fuzz/Fuzzing.h"
#include "platform/FloatDigits.h"
#include "platform/NumberReader.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <cwchar>
#include <string>

namespace OrvUQL::Tests {
namespace {

std::uint64_t Bits(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

bool IsAscii(std::wstring_view text) {
    for (const wchar_t unit : text) {
        if (unit >= 0x80) {
            return false;
        }
    }
    return true;
}

/// What std::from_chars reads, it reads as the same.
void CheckFromChars(const std::string& text, bool isRead, double value) {
    const bool isPositive = !text.empty() && text[0] != '-';
    const char* const end = text.data() + text.size();
    double expected = 0;
    const auto [stop, failure] = std::from_chars(text.data(), end, expected);
    const bool isWord = text.find_first_of("nN") != std::string::npos; // inf and nan
    if (stop != end || isWord) {
        return;
    }
    if (failure == std::errc()) {
        Expect(isRead && Bits(value) == Bits(expected), "from_chars reads another number", text);
    } else if (isRead) {
        // Out of range: too great is no number, too small is zero.
        Expect(value == 0 && std::signbit(value) != isPositive, "from_chars finds it too great", text);
    }
}

void CheckUnsigned(const std::wstring& text, int base) {
    wchar_t* end = nullptr;
    errno = 0;
    const unsigned long number = std::wcstoul(text.c_str(), &end, base);
    const std::size_t sign = text.find_first_not_of(L" \t\n\v\f\r");
    const bool isNegative = sign != std::wstring::npos && text[sign] == L'-';
    const unsigned long magnitude = isNegative ? 0 - number : number;
    const bool isTooGreat = errno == ERANGE || magnitude > 0xFFFFFFFFUL;
    const std::uint32_t expected = isTooGreat ? 0xFFFFFFFF : static_cast<std::uint32_t>(number);
    std::size_t used = 0;
    const std::uint32_t got = platform::ParseUnsigned(text, base, used);
    const std::string detail = OrvStringT(text).ToUtf8() + " in base " + std::to_string(base);
    ExpectSame(std::to_string(got), std::to_string(expected), "wcstoul reads another number", detail);
    ExpectSame(std::to_string(used), std::to_string(end - text.c_str()), "wcstoul reads another length", detail);
}

void CheckText(const OrvStringT& whole, int base) {
    const std::string shown = whole.ToUtf8();
    double value = 77.5;
    const bool isRead = platform::ReadDouble(whole.View(), value);
    int integer = 77;
    double number = 77.5;
    const platform::NumberKind kind = platform::ReadNumber(whole.View(), integer, number);
    Expect(isRead == (kind != platform::NumberKind::None), "is a number in one way only", shown);
    Expect(isRead || Bits(value) == Bits(77.5), "no number, but a value", shown);
    if (kind == platform::NumberKind::Int) {
        Expect(static_cast<double>(integer) == value, "an int of another value", shown);
    } else if (kind == platform::NumberKind::Double) {
        Expect(Bits(number) == Bits(value), "a double of another value", shown);
    }
    double parsed = 77.5;
    Expect(platform::ParseDouble(whole.View(), parsed) == isRead && Bits(parsed) == Bits(value), "parsed is not read",
           shown);
    if (IsAscii(whole.View()) && whole.View().find(L'\0') == std::wstring_view::npos) {
        CheckFromChars(shown, isRead, value);
        if (base != 1) {
            CheckUnsigned(std::wstring(whole.View()), base); // which leaves the end alone in a base that is none
        }
    }
}

/// The shortest text reads back to the number and has the digits of std::to_chars; fixed digits are printf's.
void CheckNumber(double number, int precision, char letter) {
    wchar_t buffer[platform::doubleTextUnits];
    const int length = platform::FormatDouble(number, buffer);
    Expect(length > 0 && length < platform::doubleTextUnits && buffer[length] == 0, "no proper text");
    const std::wstring_view text(buffer, static_cast<std::size_t>(length));
    const std::string shown = OrvStringT(buffer).ToUtf8();
    if (std::isfinite(number)) {
        double again = 0;
        Expect(platform::ReadDouble(text, again) && Bits(again) == Bits(number), "does not read back", shown);
        char standard[64];
        const auto scientific = std::to_chars(standard, std::end(standard), number, std::chars_format::scientific);
        char ours[64];
        std::from_chars(shown.data(), shown.data() + shown.size(), again);
        const auto second = std::to_chars(ours, std::end(ours), again, std::chars_format::scientific);
        ExpectSame(std::string(standard, scientific.ptr), std::string(ours, second.ptr), "other digits", shown);
    }

    platform::FloatBuffer digits;
    const platform::FloatDigits parts = platform::WriteFloat(number, letter, precision, false, digits);
    if (!parts.finite) {
        Expect(!std::isfinite(number), "not finite", shown);
        return;
    }
    std::string all = parts.negative ? "-" : "";
    all.append(static_cast<std::size_t>(parts.leadingZeros), '0').append(parts.digits);
    all.append(static_cast<std::size_t>(parts.trailingZeros), '0').append(parts.exponent);
    char expected[2048];
    const char format[] = {'%', '.', '*', letter, 0};
    std::snprintf(expected, sizeof expected, format, precision, number);
    ExpectSame(all, expected, "printf writes other digits", shown);
}

} // namespace
} // namespace OrvUQL::Tests

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace OrvUQL::Tests;
    Choices choices(data, size);
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CheckText(OrvStringT::FromUtf8(text), size == 0 ? 10 : static_cast<int>(text.back() % 37));
    if (size >= 8) {
        double number = 0;
        std::memcpy(&number, data, sizeof number);
        CheckNumber(number, size > 8 ? data[8] : 6, "feg"[size % 3]);
    }
    return 0;
}
