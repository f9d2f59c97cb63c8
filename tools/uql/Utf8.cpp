#include "Utf8.h"

#include <algorithm>
#include <cstdint>

namespace OrvUQL::Tool {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

bool IsHighSurrogate(std::uint32_t unit) { return (unit & 0xFC00u) == 0xD800u; }
bool IsLowSurrogate(std::uint32_t unit) { return (unit & 0xFC00u) == 0xDC00u; }

void AppendCode(std::string& out, std::uint32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
        return;
    }
    if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
    } else {
        if (code < 0x10000) {
            out += static_cast<char>(0xE0 | (code >> 12));
        } else {
            out += static_cast<char>(0xF0 | (code >> 18));
            out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        }
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    }
    out += static_cast<char>(0x80 | (code & 0x3F));
}

struct Sequence {
    std::size_t length;
    bool isWellFormed;
};

/// The sequence at the begin of `bytes`, or the maximal part of one. (The Unicode Standard, tables 3-7 and 3-8.)
Sequence Look(std::string_view bytes) {
    const auto at = [&](std::size_t place) { return static_cast<unsigned char>(bytes[place]); };
    const unsigned char first = at(0);
    if (first < 0x80) {
        return {1, true};
    }
    if (first < 0xC2 || first > 0xF4) {
        return {1, false};
    }
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    unsigned char least = 0x80;
    unsigned char most = 0xBF;
    switch (first) {
    case 0xE0:
        least = 0xA0;
        break;
    case 0xED:
        most = 0x9F;
        break;
    case 0xF0:
        least = 0x90;
        break;
    case 0xF4:
        most = 0x8F;
        break;
    default:
        break;
    }
    for (std::size_t place = 1; place < length; ++place) {
        if (place == bytes.size() || at(place) < least || at(place) > most) {
            return {place, false};
        }
        least = 0x80;
        most = 0xBF;
    }
    return {length, true};
}

/// Calls take(begin, length) for each malformed part, in their order.
template <class Take> void ForEachMalformed(std::string_view bytes, Take take) {
    std::size_t place = 0;
    while (place < bytes.size()) {
        const Sequence sequence = Look(bytes.substr(place));
        if (!sequence.isWellFormed) {
            take(place, sequence.length);
        }
        place += sequence.length;
    }
}

} // namespace

void AppendUtf8(std::string& out, std::wstring_view text) {
    const bool isAscii = std::all_of(text.begin(), text.end(), [](wchar_t unit) { return unit < 0x80; });
    if (isAscii) {
        const std::size_t before = out.size();
        out.resize(before + text.size());
        std::transform(text.begin(), text.end(), out.begin() + static_cast<std::ptrdiff_t>(before),
                       [](wchar_t unit) { return static_cast<char>(unit); });
        return;
    }
    for (std::size_t place = 0; place < text.size(); ++place) {
        const auto unit = static_cast<std::uint32_t>(text[place]);
        if (IsHighSurrogate(unit) && place + 1 < text.size() &&
            IsLowSurrogate(static_cast<std::uint32_t>(text[place + 1]))) {
            const auto low = static_cast<std::uint32_t>(text[++place]);
            AppendCode(out, 0x10000u + ((unit & 0x3FFu) << 10) + (low & 0x3FFu));
        } else {
            AppendCode(out, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? 0xFFFDu : unit);
        }
    }
}

std::size_t RepairUtf8(std::string_view bytes, std::string& repaired) {
    std::size_t count = 0;
    std::size_t copied = 0;
    ForEachMalformed(bytes, [&](std::size_t begin, std::size_t length) {
        if (count++ == 0) {
            repaired.clear();
        }
        repaired += bytes.substr(copied, begin - copied);
        repaired += replacement;
        copied = begin + length;
    });
    if (count != 0) {
        repaired += bytes.substr(copied);
    }
    return count;
}

std::size_t FindUnrepairedPlace(std::string_view bytes, std::size_t repairedPlace) {
    std::size_t place = repairedPlace;
    std::size_t grown = 0; // how much longer the repaired text is than the other, up to some place
    ForEachMalformed(bytes, [&](std::size_t begin, std::size_t length) {
        if (begin + grown < repairedPlace) {
            grown += replacement.size() - length;
            place = std::max(begin, repairedPlace - std::min(grown, repairedPlace));
        }
    });
    return place;
}

} // namespace OrvUQL::Tool
