#include "SystemMessageWindows.h"

#include <OrvUQL/OrvString.h>

#include <cstdio>
#include <iterator>
#include <string_view>

#include <windows.h>

namespace OrvUQL::Tool {

namespace {

/// Empty if the system has none.
std::string FindWords(DWORD code) {
    wchar_t units[512];
    constexpr DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    const DWORD count = ::FormatMessageW(flags, nullptr, code, 0, units, static_cast<DWORD>(std::size(units)), nullptr);
    std::wstring_view text(units, count);
    while (!text.empty() && (text.back() == L' ' || text.back() == L'.')) {
        text.remove_suffix(1);
    }
    return OrvStringT(text).ToUtf8();
}

} // namespace

std::string GetSystemMessage(unsigned long code) {
    const std::string words = FindWords(code);
    return words.empty() ? "error " + std::to_string(code) : words;
}

std::string GetResultMessage(long result) {
    const auto code = static_cast<unsigned long>(result);
    char number[16];
    std::snprintf(number, sizeof number, "0x%08lX", code);
    const std::string words = FindWords(code);
    return words.empty() ? std::string("error ") + number : words + " (" + number + ")";
}

} // namespace OrvUQL::Tool
