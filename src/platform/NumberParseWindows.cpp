// On Windows OLE Automation is asked which texts are numbers, and which of those are ints, because other programs on
// the same machine read texts with it. Two things are not left to it:
//
// - The value. It is computed from the digits that the system has read as on every platform, rounded correctly: what
//   the system's own conversion makes of them may be some units in the last place off, and the text of a double would
//   then not read back to that double.
// - Texts where asking tells nothing. Digits with a "-", a point or an exponent are numbers to every system, and what
//   begins with a letter is none; both are so frequent that the detour, through a copy and the locale's data, would be
//   felt. And where the number of digits or the exponent is beyond what the system's counters hold, its answer is an
//   accident: 1e4294967297 wraps around to 1e1, the number of places is lost behind the room for digits, and
//   1e2147483648 has been seen to crash. The library's own reader takes all these and gives the answer that the
//   system's rules demand.

#include "platform/Decimal.h"
#include "platform/Digit.h"
#include "platform/NumberReader.h"

#include <limits>

#include <windows.h>

#include <oleauto.h>

namespace OrvUQL::platform {

namespace {

/// The invariant locale, and none of what the user has set otherwise.
constexpr LCID locale = LOCALE_INVARIANT;
constexpr ULONG localeFlags = LOCALE_NOUSEROVERRIDE;

/// Room for a number's digits. No text that is longer is given to the system, so it never has to leave any out.
constexpr std::size_t greatestCount = 100;

/// The digits of an exponent that the system's counters hold with the widest margin. No double needs more.
constexpr int greatestExponentCount = 4;

std::size_t SkipDigits(std::wstring_view text, std::size_t at) noexcept {
    while (at < text.size() && IsDigit(text[at])) {
        ++at;
    }
    return at;
}

/// Whether a text is [-]digits[.digits][e[+/-]digits], in which programs write numbers, and this library all of its
/// own.
bool IsPlainNumber(std::wstring_view text) noexcept {
    std::size_t at = !text.empty() && text[0] == L'-' ? 1 : 0;
    std::size_t first = at;
    at = SkipDigits(text, first);
    if (at > first && at < text.size() && text[at] == L'.') {
        first = at + 1;
        at = SkipDigits(text, first);
    }
    if (at > first && at < text.size() && (text[at] == L'e' || text[at] == L'E')) {
        first = at + 1;
        first += first < text.size() && (text[first] == L'+' || text[first] == L'-') ? 1 : 0;
        at = SkipDigits(text, first);
    }
    return at > first && at == text.size();
}

bool IsLetter(wchar_t unit) noexcept { return (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z'); }

/// Whether an exponent may be longer than the system can count. (The digits of &H1E12345 only look like one.)
bool HasLongExponent(std::wstring_view text) noexcept {
    int count = 0;
    for (std::size_t at = text.find_first_of(L"eE"); at < text.size(); ++at) {
        count += IsDigit(text[at]) ? 1 : 0;
    }
    return count > greatestExponentCount;
}

/// Whether the system has to be asked. (It would take a U+0000 for the end of the text.)
bool IsForSystem(std::wstring_view text) noexcept {
    return !text.empty() && text.size() <= greatestCount && !IsLetter(text[0]) && !IsPlainNumber(text) &&
           text.find(L'\0') == std::wstring_view::npos && !HasLongExponent(text);
}

/// A number as the system reads it.
class SystemNumber {
public:
    /// Takes a text that IsForSystem.
    explicit SystemNumber(std::wstring_view from) noexcept { text[from.copy(text, greatestCount)] = L'\0'; }

    SystemNumber(const SystemNumber&) = delete;
    SystemNumber& operator=(const SystemNumber&) = delete;

    /// Whether the system has a double for the text, or would have if there were greater ones: which are too great is
    /// decided by the correctly rounded value.
    bool IsDouble() noexcept {
        double ignored = 0.0;
        const HRESULT result = VarR8FromStr(text, locale, localeFlags, &ignored);
        return SUCCEEDED(result) || result == DISP_E_OVERFLOW;
    }

    /// Reads the digits. To be called before what is below; false if the text is no number.
    bool Read() noexcept {
        number.cDig = static_cast<INT>(greatestCount);
        number.dwInFlags = NUMPRS_STD;
        return SUCCEEDED(VarParseNumFromStr(text, locale, localeFlags, &number, digits)) && IsClosed();
    }

    /// The number as an int, if the system chooses that type and the text has no decimal point: the system, which drops
    /// zeros at the end, takes 1.0 for an int.
    bool ToInt(int& value) noexcept {
        if (IsPattern()) {
            return ReadPattern(value);
        }
        if ((number.dwOutFlags & NUMPRS_DECIMAL) != 0) {
            return false;
        }
        VARIANT variant;
        VariantInit(&variant);
        if (FAILED(VarNumFromParseNum(&number, digits, VTBIT_I4 | VTBIT_R8, &variant)) || V_VT(&variant) == VT_R8 ||
            FAILED(VariantChangeType(&variant, &variant, 0, VT_I4))) {
            return false;
        }
        value = static_cast<int>(V_I4(&variant));
        return true;
    }

    /// The number as a double. False if it is too great.
    bool ToDouble(double& value) const noexcept {
        if (IsPattern()) {
            int pattern = 0;
            if (!ReadPattern(pattern)) {
                return false;
            }
            value = pattern;
            return true;
        }
        Decimal decimal;
        for (INT i = 0; i < number.cDig; ++i) {
            decimal.Add(static_cast<char>('0' + digits[i]), false);
        }
        decimal.Scale(number.nPwr10);
        double result = 0.0;
        if (!decimal.ToDouble(result)) {
            return false;
        }
        value = (number.dwOutFlags & NUMPRS_NEG) != 0 ? -result : result;
        return true;
    }

private:
    OLECHAR text[greatestCount + 1];
    NUMPARSE number = {};
    BYTE digits[greatestCount];

    /// Whether the text has both parentheses if it has the first. The system should have seen to that, but Wine tells
    /// by the minus that a pair stands for whether it was closed, and misses the second in "-(5".
    bool IsClosed() const noexcept {
        return (number.dwOutFlags & NUMPRS_PARENS) == 0 ||
               std::wstring_view(text).find(L')') != std::wstring_view::npos;
    }

    /// Whether it was written with &H or &O.
    bool IsPattern() const noexcept { return number.nBaseShift != 0; }

    /// The 32 bits of such a number. False if there are more. A sign before it has no effect.
    bool ReadPattern(int& value) const noexcept {
        std::uint64_t bits = 0;
        for (INT i = 0; i < number.cDig; ++i) {
            bits = bits << number.nBaseShift | digits[i];
            if (bits > std::numeric_limits<std::uint32_t>::max()) {
                return false;
            }
        }
        value = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
        return true;
    }
};

} // namespace

bool ParseDouble(std::wstring_view text, double& value) noexcept {
    if (!IsForSystem(text)) {
        return ReadDouble(text, value);
    }
    SystemNumber number(text);
    return number.IsDouble() && number.Read() && number.ToDouble(value);
}

NumberKind ParseNumber(std::wstring_view text, int& intValue, double& doubleValue) noexcept {
    if (!IsForSystem(text)) {
        return ReadNumber(text, intValue, doubleValue);
    }
    SystemNumber number(text);
    if (!number.Read()) {
        return NumberKind::None;
    }
    if (number.ToInt(intValue)) {
        return NumberKind::Int;
    }
    return number.ToDouble(doubleValue) ? NumberKind::Double : NumberKind::None;
}

} // namespace OrvUQL::platform
