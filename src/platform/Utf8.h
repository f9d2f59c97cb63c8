#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace OrvUQL::platform {

/// Calls `take(codePoint)` for each code point of a UTF-8 text, with U+FFFD for each maximal part of a malformed
/// sequence: the longest beginning of a well-formed one, or a single byte (Unicode 15.0, section 3.9; the WHATWG
/// Encoding standard).
template <typename Take> void DecodeUtf8(std::string_view bytes, Take take) {
    const auto byteAt = [bytes](std::size_t i) { return static_cast<std::uint8_t>(bytes[i]); };
    std::size_t at = 0;
    while (at < bytes.size()) {
        const std::uint8_t lead = byteAt(at++);
        if (lead < 0x80u) {
            take(std::uint32_t{lead});
            continue;
        }
        const int following = lead >= 0xC2u && lead <= 0xDFu   ? 1
                              : lead >= 0xE0u && lead <= 0xEFu ? 2
                              : lead >= 0xF0u && lead <= 0xF4u ? 3
                                                               : 0;
        // The second byte's range keeps out longer forms than needed, surrogates and what lies above U+10FFFF.
        std::uint8_t lowest = lead == 0xE0u ? 0xA0u : lead == 0xF0u ? 0x90u : 0x80u;
        std::uint8_t highest = lead == 0xEDu ? 0x9Fu : lead == 0xF4u ? 0x8Fu : 0xBFu;
        std::uint32_t code = lead & (0x3Fu >> following);
        int left = following;
        for (; left > 0 && at < bytes.size() && byteAt(at) >= lowest && byteAt(at) <= highest; --left) {
            code = code << 6 | (byteAt(at++) & 0x3Fu);
            lowest = 0x80u;
            highest = 0xBFu;
        }
        take(following == 0 || left > 0 ? std::uint32_t{0xFFFD} : code);
    }
}

/// The bytes of one code point beyond ASCII that is no surrogate.
class Utf8Bytes {
public:
    explicit Utf8Bytes(std::uint32_t code) noexcept {
        if (code < 0x800u) {
            Put(0xC0u | code >> 6);
            Put(0x80u | (code & 0x3Fu));
        } else if (code < 0x10000u) {
            Put(0xE0u | code >> 12);
            Put(0x80u | (code >> 6 & 0x3Fu));
            Put(0x80u | (code & 0x3Fu));
        } else {
            Put(0xF0u | code >> 18);
            Put(0x80u | (code >> 12 & 0x3Fu));
            Put(0x80u | (code >> 6 & 0x3Fu));
            Put(0x80u | (code & 0x3Fu));
        }
    }

    std::string_view View() const noexcept { return std::string_view(bytes.data(), count); }

private:
    std::array<char, 4> bytes{};
    std::size_t count = 0;

    void Put(std::uint32_t byte) noexcept { bytes[count++] = static_cast<char>(byte); }
};

} // namespace OrvUQL::platform
