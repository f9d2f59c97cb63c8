#include <OrvUQL/OrvString.h>

#include "platform/FloatDigits.h"
#include "platform/TextUnits.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <utility>

using namespace OrvUQL::platform;

// printf for wide texts. The C library's own would ask the locale for the decimal point, and reads %s differently on
// Windows and elsewhere.

namespace {

/// One conversion specification, between its % and its letter.
struct Specification {
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool alternate = false;
    bool zero = false;
    bool starWidth = false;
    bool starPrecision = false;
    int width = 0;
    int precision = -1; ///< negative: none
    enum class ELength { None, Char, Short, Long, LongLong, Size, Max, Difference } length = ELength::None;
    wchar_t conversion = L'\0';
};

/// Reads a number, which stays within an int.
int ReadNumber(const wchar_t*& at) noexcept {
    std::int64_t number = 0;
    for (; *at >= L'0' && *at <= L'9'; ++at) {
        number = std::min<std::int64_t>(number * 10 + (*at - L'0'), std::numeric_limits<int>::max());
    }
    return static_cast<int>(number);
}

bool ReadFlag(wchar_t unit, Specification& spec) noexcept {
    switch (unit) {
    case L'-':
        spec.left = true;
        return true;
    case L'+':
        spec.plus = true;
        return true;
    case L' ':
        spec.blank = true;
        return true;
    case L'#':
        spec.alternate = true;
        return true;
    case L'0':
        spec.zero = true;
        return true;
    default:
        return false;
    }
}

Specification::ELength ReadLength(const wchar_t*& at) noexcept {
    using ELength = Specification::ELength;
    const wchar_t first = *at;
    const bool doubled = first != L'\0' && at[1] == first;
    ELength length = ELength::None;
    switch (first) {
    case L'h':
        length = doubled ? ELength::Char : ELength::Short;
        break;
    case L'l':
        length = doubled ? ELength::LongLong : ELength::Long;
        break;
    case L'z':
        length = ELength::Size;
        break;
    case L'j':
        length = ELength::Max;
        break;
    case L't':
        length = ELength::Difference;
        break;
    default:
        return length;
    }
    at += length == ELength::Char || length == ELength::LongLong ? 2 : 1;
    return length;
}

/// Reads what follows a %, up to and with the letter.
Specification ReadSpecification(const wchar_t*& at) noexcept {
    Specification spec;
    while (ReadFlag(*at, spec)) {
        ++at;
    }
    spec.starWidth = *at == L'*';
    if (spec.starWidth) {
        ++at;
    } else {
        spec.width = ReadNumber(at);
    }
    if (*at == L'.') {
        ++at;
        spec.starPrecision = *at == L'*';
        if (spec.starPrecision) {
            ++at;
        } else {
            spec.precision = ReadNumber(at);
        }
    }
    spec.length = ReadLength(at);
    spec.conversion = *at;
    if (*at != L'\0') {
        ++at;
    }
    return spec;
}

bool IsKnown(const Specification& spec) noexcept {
    using ELength = Specification::ELength;
    switch (spec.conversion) {
    case L'd':
    case L'i':
    case L'u':
    case L'x':
    case L'X':
    case L'o':
        return true;
    case L'c':
        return spec.length == ELength::None || spec.length == ELength::Long;
    case L's':
        return spec.length == ELength::None || spec.length == ELength::Long || spec.length == ELength::Short;
    case L'S':
        return spec.length == ELength::None;
    case L'f':
    case L'F':
    case L'e':
    case L'E':
    case L'g':
    case L'G':
        return spec.length == ELength::None || spec.length == ELength::Long;
    default:
        return false;
    }
}

void AppendRepeated(OrvStringT& text, wchar_t unit, std::int64_t count) {
    if (count > 0) {
        if (count > std::numeric_limits<int>::max()) {
            throw std::length_error("a text has at most 2147483647 code units");
        }
        text.Append(OrvStringT(unit, static_cast<int>(count)));
    }
}

void AppendAscii(OrvStringT& text, std::string_view ascii) {
    for (const char unit : ascii) {
        text.Append(static_cast<wchar_t>(static_cast<unsigned char>(unit)));
    }
}

/// Length of a text that need not be terminated if it has `limit` elements.
template <typename Unit> std::size_t LengthUpTo(const Unit* text, int limit) noexcept {
    std::size_t length = 0;
    while ((limit < 0 || length < static_cast<std::size_t>(limit)) && text[length] != Unit()) {
        ++length;
    }
    return length;
}

/// The arguments that are left.
class Arguments {
public:
    explicit Arguments(std::va_list arguments) noexcept { va_copy(args, arguments); }
    ~Arguments() { va_end(args); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    template <typename T> T Next() noexcept { return va_arg(args, T); }

    long long NextSigned(Specification::ELength length) noexcept {
        switch (length) {
        case Specification::ELength::Char:
            return static_cast<signed char>(Next<int>());
        case Specification::ELength::Short:
            return static_cast<short>(Next<int>());
        case Specification::ELength::Long:
            return Next<long>();
        case Specification::ELength::LongLong:
            return Next<long long>();
        case Specification::ELength::Max:
            return Next<std::intmax_t>();
        case Specification::ELength::Size:
        case Specification::ELength::Difference:
            return Next<std::ptrdiff_t>();
        default:
            return Next<int>();
        }
    }

    unsigned long long NextUnsigned(Specification::ELength length) noexcept {
        switch (length) {
        case Specification::ELength::Char:
            return static_cast<unsigned char>(Next<int>());
        case Specification::ELength::Short:
            return static_cast<unsigned short>(Next<int>());
        case Specification::ELength::Long:
            return Next<unsigned long>();
        case Specification::ELength::LongLong:
            return Next<unsigned long long>();
        case Specification::ELength::Max:
            return Next<std::uintmax_t>();
        case Specification::ELength::Size:
        case Specification::ELength::Difference:
            return Next<std::size_t>();
        default:
            return Next<unsigned>();
        }
    }

private:
    std::va_list args;
};

/// Writes one formatted text from its template and arguments.
class Formatter {
public:
    explicit Formatter(std::va_list args) noexcept : arguments(args) {}

    OrvStringT Format(const wchar_t* format) {
        while (*format != L'\0') {
            const wchar_t* const begin = format;
            while (*format != L'\0' && *format != L'%') {
                ++format;
            }
            result.Append(std::wstring_view(begin, static_cast<std::size_t>(format - begin)));
            if (*format == L'%') {
                FormatOne(format);
            }
        }
        return std::move(result);
    }

private:
    Arguments arguments;
    OrvStringT result;

    void FormatOne(const wchar_t*& format) {
        const wchar_t* const begin = format++;
        if (*format == L'%') {
            result.Append(*format++);
            return;
        }
        Specification spec = ReadSpecification(format);
        if (!IsKnown(spec)) {
            result.Append(std::wstring_view(begin, static_cast<std::size_t>(format - begin)));
            return;
        }
        TakeStars(spec);
        switch (spec.conversion) {
        case L'd':
        case L'i':
            FormatSigned(spec);
            break;
        case L'u':
            FormatUnsigned(spec, 10, "");
            break;
        case L'o':
            FormatUnsigned(spec, 8, "");
            break;
        case L'x':
            FormatUnsigned(spec, 16, "0x");
            break;
        case L'X':
            FormatUnsigned(spec, 16, "0X");
            break;
        case L'c':
            FormatUnit(spec);
            break;
        case L's':
        case L'S':
            FormatText(spec);
            break;
        default:
            FormatFloat(spec);
            break;
        }
    }

    void TakeStars(Specification& spec) noexcept {
        if (spec.starWidth) {
            const int width = arguments.Next<int>();
            spec.left = spec.left || width < 0;
            spec.width = width == std::numeric_limits<int>::min() ? std::numeric_limits<int>::max() : std::abs(width);
        }
        if (spec.starPrecision) {
            spec.precision = arguments.Next<int>();
        }
    }

    void FormatSigned(const Specification& spec) {
        const long long value = arguments.NextSigned(spec.length);
        const auto bits = static_cast<unsigned long long>(value);
        PutInteger(spec, value < 0 ? 0 - bits : bits, 10, SignOf(spec, value < 0));
    }

    void FormatUnsigned(const Specification& spec, int radix, const char* prefix) {
        const unsigned long long value = arguments.NextUnsigned(spec.length);
        PutInteger(spec, value, radix, spec.alternate && value != 0 ? prefix : "");
    }

    static const char* SignOf(const Specification& spec, bool negative) noexcept {
        return negative ? "-" : spec.plus ? "+" : spec.blank ? " " : "";
    }

    void PutInteger(const Specification& spec, unsigned long long value, int radix, std::string_view prefix) {
        char digits[24];
        char* const end =
            value == 0 && spec.precision == 0 ? digits : std::to_chars(digits, std::end(digits), value, radix).ptr;
        if (spec.conversion == L'X') {
            ToUpperAscii(digits, end);
        }
        std::int64_t zeros = std::max<std::int64_t>(0, std::int64_t{spec.precision} - (end - digits));
        if (radix == 8 && spec.alternate && zeros == 0 && (end == digits || digits[0] != '0')) {
            zeros = 1;
        }
        FloatDigits number;
        number.leadingZeros = zeros;
        number.digits = std::string_view(digits, static_cast<std::size_t>(end - digits));
        PutNumber(spec, prefix, number, spec.zero && spec.precision < 0);
    }

    void FormatFloat(const Specification& spec) {
        const double value = arguments.Next<double>();
        const auto letter = static_cast<char>(spec.conversion | 0x20);
        FloatBuffer buffer;
        FloatDigits number = WriteFloat(value, letter, spec.precision < 0 ? 6 : spec.precision, spec.alternate, buffer);
        if (spec.conversion != static_cast<wchar_t>(letter)) {
            ToUpperAscii(buffer.text, buffer.text + sizeof buffer.text);
        }
        PutNumber(spec, SignOf(spec, number.negative), number, spec.zero && number.finite);
    }

    void PutNumber(const Specification& spec, std::string_view prefix, const FloatDigits& number, bool fillWithZeros) {
        const std::int64_t length = static_cast<std::int64_t>(prefix.size()) + number.leadingZeros +
                                    static_cast<std::int64_t>(number.digits.size()) + number.trailingZeros +
                                    static_cast<std::int64_t>(number.exponent.size());
        const std::int64_t fill = std::max<std::int64_t>(0, spec.width - length);
        const bool zeros = fillWithZeros && !spec.left;
        AppendRepeated(result, L' ', spec.left || zeros ? 0 : fill);
        AppendAscii(result, prefix);
        AppendRepeated(result, L'0', number.leadingZeros + (zeros ? fill : 0));
        AppendAscii(result, number.digits);
        AppendRepeated(result, L'0', number.trailingZeros);
        AppendAscii(result, number.exponent);
        AppendRepeated(result, L' ', spec.left ? fill : 0);
    }

    void FormatUnit(const Specification& spec) {
        PutText(spec, OrvStringT(static_cast<wchar_t>(arguments.Next<int>()), 1).View());
    }

    void FormatText(const Specification& spec) {
        const bool narrow = spec.conversion == L'S' || spec.length == Specification::ELength::Short;
        const void* const text = narrow ? arguments.Next<const void*>() : arguments.Next<const wchar_t*>();
        if (text == nullptr) {
            PutText(spec, std::wstring_view(L"(null)").substr(
                              0, spec.precision < 0 ? 6u : static_cast<unsigned>(spec.precision)));
        } else if (narrow) {
            const auto* const bytes = static_cast<const char*>(text);
            PutText(spec, OrvStringT::FromUtf8(std::string_view(bytes, LengthUpTo(bytes, spec.precision))).View());
        } else {
            const auto* const units = static_cast<const wchar_t*>(text);
            PutText(spec, UnitText(std::wstring_view(units, LengthUpTo(units, spec.precision))).View());
        }
    }

    void PutText(const Specification& spec, std::wstring_view text) {
        const std::int64_t fill = spec.width - static_cast<std::int64_t>(text.size());
        AppendRepeated(result, L' ', spec.left ? 0 : fill);
        result.Append(text);
        AppendRepeated(result, L' ', spec.left ? fill : 0);
    }

    static void ToUpperAscii(char* begin, char* end) noexcept {
        std::transform(begin, end, begin,
                       [](char unit) { return unit >= 'a' && unit <= 'z' ? static_cast<char>(unit - 0x20) : unit; });
    }
};

} // namespace

void OrvStringT::Format(const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    try {
        FormatV(format, args);
    } catch (...) {
        va_end(args);
        throw;
    }
    va_end(args);
}

void OrvStringT::FormatV(const wchar_t* format, std::va_list args) {
    OrvStringT text = Formatter(args).Format(format == nullptr ? L"" : format);
    Swap(text);
}
