#include "core/NumberConversion.h"

#include "OrvUQL/ObjectString.h"

#include "core/Failure.h"
#include "platform/Meter.h"
#include "platform/NumberText.h"
#include "platform/Power.h"

#include <cmath>
#include <limits>

namespace OrvUQL {

bool DoubleToInt(double number, int& out) noexcept {
    if (number > 2147483647.0 || number < -2147483648.0) {
        return false;
    }
    if (std::isnan(number)) {
        out = std::numeric_limits<int>::min();
        return true;
    }
    const double rounded = number > 0 ? number + 0.5 : number - 0.5;
    // Half a unit beyond either bound still truncates to the bound, but only in 64 bits.
    out = static_cast<int>(static_cast<std::int64_t>(rounded));
    return true;
}

double RoundToDecimals(double number, int decimals) noexcept {
    const double unit = platform::PowerOfTen(-decimals);
    double scaled = number / unit;
    if (scaled < 0) {
        scaled -= 0.5;
    } else {
        scaled += 0.5;
    }
    return std::floor(scaled) * unit;
}

bool ReadRoundingPrecision(IObject* param, int& decimals, IError** err) {
    decimals = 0;
    if (param != nullptr && !param->ToInt(decimals, err)) {
        return false;
    }
    if (static_cast<unsigned>(decimals) > 15u) {
        return Fail(err, message::badRoundingPrecision);
    }
    return true;
}

IObject* MakeRadixText(int value, int radix, int width, IError** err) {
    if (static_cast<unsigned>(radix) - 2u > 34u) {
        return FailNull(err, message::badRadix);
    }
    wchar_t digits[65];
    const int length = platform::FormatInteger(value, radix, digits);
    OrvStringT text;
    if (width > length) {
        platform::RequireUnits(width);
        text = OrvStringT(L'0', width - length);
    }
    text.Append(std::wstring_view(digits, static_cast<std::size_t>(length)));
    return new ObjectString(std::move(text));
}

} // namespace OrvUQL
