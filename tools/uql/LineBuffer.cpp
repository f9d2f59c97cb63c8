#include "LineBuffer.h"

#include <cstring>

namespace OrvUQL::Tool {

LineBuffer::EResult LineBuffer::Next(bool wait, std::string& error) {
    lineBegin = lineEnd;
    while (!FindEnd()) {
        if (isAtEnd) {
            if (lineBegin == filled) {
                return End;
            }
            lineEnd = filled;
            ++number;
            return Line;
        }
        if (!wait && input.WouldWait()) {
            return WouldWait;
        }
        MakeRoom();
        const std::ptrdiff_t count = input.Read(buffer.data() + filled, buffer.size() - filled, error);
        if (count < 0) {
            return Failed;
        }
        isAtEnd = count == 0;
        filled += static_cast<std::size_t>(count);
        SkipByteOrderMark();
    }
    ++number;
    return Line;
}

/// Sets `lineEnd` if the end of the line has been read.
bool LineBuffer::FindEnd() {
    if (isAtHead) {
        return false;
    }
    if (looked < lineBegin) {
        looked = lineBegin;
    }
    const void* const found = std::memchr(buffer.data() + looked, '\n', filled - looked);
    const std::size_t feed =
        found == nullptr ? filled : static_cast<std::size_t>(static_cast<const char*>(found) - buffer.data());
    if (breaks == AtCarriageReturn) {
        const void* const other = std::memchr(buffer.data() + looked, '\r', feed - looked);
        if (other != nullptr) {
            const auto place = static_cast<std::size_t>(static_cast<const char*>(other) - buffer.data());
            if (place + 1 < filled && place + 1 != feed) {
                lineEnd = place + 1;
                return true;
            }
            if (place + 1 == filled && !isAtEnd) {
                looked = place; // a line feed may follow
                return false;
            }
        }
    }
    if (found == nullptr) {
        looked = filled;
        return false;
    }
    lineEnd = feed + 1;
    return true;
}

void LineBuffer::SkipByteOrderMark() {
    if (!isAtHead) {
        return;
    }
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (filled < mark.size() && !isAtEnd && View(0, filled) == mark.substr(0, filled)) {
        return; // too short to tell
    }
    isAtHead = false;
    if (View(0, filled).substr(0, mark.size()) == mark) {
        kept = lineBegin = lineEnd = mark.size();
    }
}

/// Moves what is kept to the front of the buffer, and makes the buffer larger if it fills it.
void LineBuffer::MakeRoom() {
    if (kept != 0) {
        std::memmove(buffer.data(), buffer.data() + kept, filled - kept);
        filled -= kept;
        lineBegin -= kept;
        lineEnd -= kept;
        looked -= looked < kept ? looked : kept;
        kept = 0;
    }
    if (filled > buffer.size() / 2) {
        buffer.resize(buffer.size() * 2);
    }
}

std::string_view TrimLineBreak(std::string_view line) {
    if (!line.empty() && line.back() == '\n') {
        line.remove_suffix(1);
    }
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

} // namespace OrvUQL::Tool
