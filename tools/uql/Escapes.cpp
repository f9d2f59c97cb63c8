#include "Escapes.h"

#include <charconv>
#include <cstdio>

namespace OrvUQL::Tool {

namespace {

bool IsHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(wchar_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

bool ReadHexUnit(std::string_view digits, wchar_t& unit) {
    unsigned number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, failure] = std::from_chars(digits.data(), end, number, 16);
    unit = static_cast<wchar_t>(number);
    return digits.size() == 4 && failure == std::errc() && stop == end;
}

} // namespace

bool DecodeEscapes(std::string_view written, OrvStringT& text, std::string& error) {
    text.Clear();
    while (!written.empty()) {
        const std::size_t backslash = written.find('\\');
        text += OrvStringT::FromUtf8(written.substr(0, backslash));
        if (backslash == std::string_view::npos) {
            break;
        }
        written.remove_prefix(backslash);
        std::size_t length = 2;
        wchar_t unit = 0;
        switch (written.size() < 2 ? '\0' : written[1]) {
        case '\\':
            unit = L'\\';
            break;
        case 'n':
            unit = L'\n';
            break;
        case 'r':
            unit = L'\r';
            break;
        case 't':
            unit = L'\t';
            break;
        case 'u':
            length = 6;
            if (ReadHexUnit(written.substr(2, 4), unit)) {
                break;
            }
            [[fallthrough]];
        default:
            error = "unknown escape '" + std::string(written.substr(0, length)) + "'";
            return false;
        }
        text += unit;
        written.remove_prefix(length);
    }
    return true;
}

std::string EncodeEscapes(const OrvStringT& text) {
    std::string written;
    const std::wstring_view units = text.View();
    std::size_t plain = 0; // where the run of units that need no escape begins
    for (std::size_t place = 0; place < units.size(); ++place) {
        const wchar_t unit = units[place];
        if (IsHighSurrogate(unit) && place + 1 < units.size() && IsLowSurrogate(units[place + 1])) {
            ++place;
            continue;
        }
        char escape[8] = "";
        if (unit == L'\\' || unit == L'\n' || unit == L'\r' || unit == L'\t') {
            escape[0] = '\\';
            escape[1] = unit == L'\\' ? '\\' : unit == L'\n' ? 'n' : unit == L'\r' ? 'r' : 't';
        } else if (unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
            std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(unit) & 0xFFFFu);
        } else {
            continue;
        }
        written += OrvStringT(units.substr(plain, place - plain)).ToUtf8();
        written += escape;
        plain = place + 1;
    }
    return written + OrvStringT(units.substr(plain)).ToUtf8();
}

} // namespace OrvUQL::Tool
