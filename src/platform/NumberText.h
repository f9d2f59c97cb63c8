#pragma once

#include <OrvUQL/OrvString.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

/// Numbers as text and text as numbers. Nothing here asks a locale, and nothing but AppendTo allocates.
namespace OrvUQL::platform {

// ---- text to number ----

/// Reads a number as OLE Automation does in the invariant locale with every form allowed: signs before or behind,
/// parentheses, the currency sign U+00A4, "," between digits, an exponent, &H and &O, white space around it all. The
/// result is rounded correctly whatever the number of digits. False if the text is no number or the number is too great
/// for a double (&H and &O: for 32 bits); `value` is then unchanged. A number too small for a double reads as zero.
bool ParseDouble(std::wstring_view text, double& value) noexcept;

/// What a text turned out to be.
enum class NumberKind {
    None,  ///< no number, or one out of range
    Int,   ///< a whole number of 32 bits, written without a decimal point
    Double ///< any other number
};

/// Reads a number in the same forms and chooses its type. Only the result that the kind names is set.
NumberKind ParseNumber(std::wstring_view text, int& intValue, double& doubleValue) noexcept;

/// wcstoul with an unsigned long of 32 bits: skips white space, takes a sign ("-" negates) and the digits of `base`,
/// and saturates at 4294967295. `base` is 0 (0x: 16, 0: 8, otherwise 10) or 2..36; any other reads nothing. `used`
/// becomes the number of units read, 0 if there were no digits.
std::uint32_t ParseUnsigned(std::wstring_view text, int base, std::size_t& used) noexcept;

// ---- number to text ----

/// Room for any text that FormatInteger makes: 32 binary digits and the terminator.
inline constexpr int integerTextUnits = 33;

/// Writes `value` in `radix` 2..36 with digits and lower-case letters, and a terminator. In radix 10 a negative value
/// has a minus sign; in any other it is written as its 32-bit pattern. Returns the length.
int FormatInteger(int value, int radix, wchar_t* buffer) noexcept;

/// Room for any text that FormatDouble makes, with its terminator.
inline constexpr int doubleTextUnits = 32;

/// Writes the text of a double (see OrvUtils::String::ToStringW) and a terminator. Returns the length.
int FormatDouble(double value, wchar_t* buffer) noexcept;

/// Appends the text that OrvUtils::String::ToStringW makes, without making it first.
void AppendTo(OrvStringT& text, int value);
void AppendTo(OrvStringT& text, double value);
void AppendTo(OrvStringT& text, bool value);
void AppendTo(OrvStringT& text, const void* value) = delete; // a pointer would turn into a bool

} // namespace OrvUQL::platform
