#include "JsonDocuments.h"

#include <algorithm>
#include <cstring>

namespace OrvUQL::Tool {

namespace {

constexpr std::size_t blockSize = 256 * 1024;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

/// What ends a number or a word that is a document of its own.
bool EndsScalar(char c) { return IsBlank(c) || std::strchr("{}[]\",:", c) != nullptr; }

} // namespace

JsonDocuments::JsonDocuments(InputFile input) : file(std::move(input)), buffer(blockSize) {}

JsonDocuments::EResult JsonDocuments::Next(JsonDocument& document, bool wait, std::string& error) {
    while (!Scan()) {
        if (isAtEnd) {
            if (state == BeforeDocument) {
                return End;
            }
            place = filled; // the last document may be a number, or incomplete
            break;
        }
        if (!wait && file.WouldWait()) {
            return WouldWait;
        }
        MakeRoom();
        const std::ptrdiff_t count = file.Read(buffer.data() + filled, buffer.size() - filled, error);
        if (count < 0) {
            return Failed;
        }
        isAtEnd = count == 0;
        filled += static_cast<std::size_t>(count);
    }
    document.text = std::string_view(buffer.data() + begin, place - begin);
    document.line = documentLine;
    document.column = documentColumn;
    state = BeforeDocument;
    return Document;
}

/// True if `place` is behind the end of a document; false if that takes more bytes.
bool JsonDocuments::Scan() {
    if (state == BeforeDocument && !Begin()) {
        return false;
    }
    switch (state) {
    case InScalar:
        return ScanScalar();
    case InString:
        return ScanString();
    default:
        return ScanNested();
    }
}

bool JsonDocuments::Begin() {
    if ((isAtHead && !SkipByteOrderMark()) || !SkipBlanks()) {
        return false;
    }
    begin = place;
    documentLine = line;
    documentColumn = dropped + place - lineBegin + 1;
    depth = 0;
    isInString = false;
    const char first = buffer[place++];
    if (first == '{' || first == '[') {
        depth = 1;
        state = InNested;
    } else if (first == '"') {
        state = InString;
    } else {
        // Any other punctuation is a document of this one byte, which the reader will not like.
        state = InScalar;
        if (EndsScalar(first)) {
            --place;
        }
    }
    return true;
}

/// False if the head of the file is too short to tell.
bool JsonDocuments::SkipByteOrderMark() {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    const std::size_t length = std::min(filled, mark.size());
    if (std::memcmp(buffer.data(), mark.data(), length) == 0) {
        if (length < mark.size() && !isAtEnd) {
            return false;
        }
        if (length == mark.size()) {
            place = mark.size();
            lineBegin = place;
        }
    }
    isAtHead = false;
    return true;
}

bool JsonDocuments::SkipBlanks() {
    for (; place < filled && IsBlank(buffer[place]); ++place) {
        if (buffer[place] == '\n') {
            CountLine(place);
        }
    }
    return place < filled;
}

bool JsonDocuments::ScanScalar() {
    if (place == begin) { // punctuation
        ++place;
        return true;
    }
    while (place < filled && !EndsScalar(buffer[place])) {
        ++place;
    }
    return place < filled;
}

/// Behind an opening quote, to behind the closing one.
bool JsonDocuments::ScanString() {
    while (place < filled) {
        const char c = buffer[place];
        if (c == '\\') {
            if (place + 1 == filled) {
                return false; // looked at again when what it escapes is there
            }
            place += 2;
            continue;
        }
        ++place;
        if (c == '"') {
            return true;
        }
    }
    return false;
}

bool JsonDocuments::ScanNested() {
    for (;;) {
        if (isInString) {
            if (!ScanString()) {
                return false;
            }
            isInString = false;
        }
        if (place == filled) {
            return false;
        }
        switch (buffer[place++]) {
        case '"':
            isInString = true;
            break;
        case '{':
        case '[':
            ++depth;
            break;
        case '}':
        case ']':
            if (--depth == 0) {
                return true;
            }
            break;
        case '\n':
            CountLine(place - 1);
            break;
        default:
            break;
        }
    }
}

void JsonDocuments::CountLine(std::size_t lineBreak) {
    ++line;
    lineBegin = dropped + lineBreak + 1;
}

/// Moves the document that has been begun to the front of the buffer, and makes the buffer larger if it fills it.
void JsonDocuments::MakeRoom() {
    const std::size_t kept = state == BeforeDocument ? place : begin;
    if (kept != 0) {
        std::memmove(buffer.data(), buffer.data() + kept, filled - kept);
        dropped += kept;
        filled -= kept;
        place -= kept;
        begin = 0;
    }
    if (filled > buffer.size() / 2) {
        buffer.resize(buffer.size() * 2);
    }
}

} // namespace OrvUQL::Tool
