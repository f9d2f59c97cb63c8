#include "platform/NumberReader.h"

namespace OrvUQL::platform {

bool ParseDouble(std::wstring_view text, double& value) noexcept { return ReadDouble(text, value); }

NumberKind ParseNumber(std::wstring_view text, int& intValue, double& doubleValue) noexcept {
    return ReadNumber(text, intValue, doubleValue);
}

} // namespace OrvUQL::platform
