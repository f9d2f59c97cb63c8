#include <OrvUQL/OrvString.h>

#include "platform/TextUnits.h"
#include "platform/Utf8.h"

using namespace OrvUQL::platform;

namespace {

bool IsHighSurrogate(std::uint32_t unit) noexcept { return (unit & 0xFC00u) == 0xD800u; }

bool IsLowSurrogate(std::uint32_t unit) noexcept { return (unit & 0xFC00u) == 0xDC00u; }

} // namespace

OrvStringT OrvStringT::FromUtf8(std::string_view bytes) {
    std::int64_t length = 0;
    DecodeUtf8(bytes, [&length](std::uint32_t code) { length += code > 0xFFFFu ? 2 : 1; });
    if (length == 0) {
        return OrvStringT();
    }
    OrvStringT text = WithLength(length, length);
    wchar_t* at = text.units;
    DecodeUtf8(bytes, [&at](std::uint32_t code) {
        const UnitPair pair(code);
        *at++ = pair.units[0];
        if (pair.count == 2) {
            *at++ = pair.units[1];
        }
    });
    return text;
}

std::string OrvStringT::ToUtf8() const {
    const std::wstring_view text = View();
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto unit = static_cast<std::uint32_t>(text[i]);
        if (unit < 0x80u) {
            bytes.push_back(static_cast<char>(unit));
        } else if (IsHighSurrogate(unit) && i + 1 < text.size() &&
                   IsLowSurrogate(static_cast<std::uint32_t>(text[i + 1]))) {
            const auto low = static_cast<std::uint32_t>(text[++i]);
            bytes += Utf8Bytes(0x10000u + ((unit & 0x3FFu) << 10) + (low & 0x3FFu)).View();
        } else {
            bytes += Utf8Bytes(IsHighSurrogate(unit) || IsLowSurrogate(unit) ? 0xFFFDu : unit).View();
        }
    }
    return bytes;
}
