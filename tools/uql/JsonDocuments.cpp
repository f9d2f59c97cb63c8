#include "JsonDocuments.h"

#include "JsonLines.h"
#include "JsonSyntax.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

namespace OrvUQL::Tool {

namespace {

constexpr std::size_t blockSize = 256 * 1024;

} // namespace

JsonDocuments::JsonDocuments(InputStream stream) : RecordSource(std::move(stream)), buffer(blockSize) {}

JsonDocuments::EResult JsonDocuments::Next(SourceRecord& document, bool wait, std::string& error) {
    while (!Scan()) {
        if (isAtEnd) {
            if (state == BeforeDocument || state == BehindBroken) {
                return End;
            }
            place = filled; // the last document may be a number, or incomplete
            if (!CutOff(std::nullopt)) {
                end = filled;
                state = BeforeDocument;
            }
            break;
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
    }
    document.text = std::string_view(buffer.data() + begin, end - begin);
    document.line = documentLine;
    document.column = documentColumn;
    return Record;
}

/// True if a document lies between `begin` and `end`; false if that takes more bytes.
bool JsonDocuments::Scan() {
    if (state == BehindBroken && !SkipLine()) {
        return false;
    }
    if (state == BeforeDocument && !Begin()) {
        return false;
    }
    bool isFound = false;
    switch (state) {
    case InScalar:
        isFound = ScanScalar();
        break;
    case InString:
        isFound = ScanString();
        break;
    case InNested:
        isFound = ScanNested();
        break;
    default:
        break;
    }
    if (state == InTokens) {
        isFound = ScanTokens();
    }
    if (isBroken) {
        BreakHere();
        return true;
    }
    if (isFound) {
        end = place;
        state = BeforeDocument;
    }
    return isFound;
}

bool JsonDocuments::Begin() {
    if ((isAtHead && !SkipByteOrderMark()) || !SkipBlanks()) {
        return false;
    }
    begin = place;
    documentLine = line;
    documentColumn = dropped + place - lineBegin + 1;
    const char first = buffer[place];
    if (first == '{' || first == '[') {
        ++place;
        depth = 1;
        isInString = false;
        state = InNested;
    } else if (first == '"') {
        ++place;
        state = InString;
    } else {
        // Any other punctuation is broken at once.
        isBroken = EndsJsonScalar(first);
        state = InScalar;
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
    for (; place < filled && IsJsonBlank(buffer[place]); ++place) {
        if (buffer[place] == '\n') {
            CountLine(place);
        }
    }
    return place < filled;
}

/// What is left of a line on which something cannot be.
bool JsonDocuments::SkipLine() {
    const void* const found = std::memchr(buffer.data() + place, '\n', filled - place);
    if (found == nullptr) {
        place = filled;
        return false;
    }
    place = static_cast<std::size_t>(static_cast<const char*>(found) - buffer.data());
    state = BeforeDocument;
    return true;
}

bool JsonDocuments::ScanScalar() {
    while (place < filled && !EndsJsonScalar(buffer[place])) {
        ++place;
    }
    return place < filled;
}

/// Behind an opening quote, to behind the closing one. No string goes on over the end of a line.
bool JsonDocuments::ScanString() {
    while (place < filled) {
        const char c = buffer[place];
        if (c == '"') {
            ++place;
            return true;
        }
        if (c == '\n') {
            isBroken = true;
            return false;
        }
        if (c == '\\') {
            if (place + 1 == filled) {
                return false; // looked at again when what it escapes is there
            }
            ++place;
            if (buffer[place] == '\n') {
                continue;
            }
        }
        ++place;
    }
    return false;
}

bool JsonDocuments::ScanNested() {
    if constexpr (findsJsonMarks) {
        while (state == InNested && filled - place >= jsonBlock) {
            if (ScanBlock()) {
                return true;
            }
            if (isBroken) {
                return false;
            }
        }
    }
    while (state == InNested && place < filled) {
        const char c = buffer[place];
        if (c == '\\' && isInString && place + 1 == filled) {
            return false; // looked at again when what it escapes is there
        }
        if (TakeMark(place)) {
            return true;
        }
        if (isBroken) {
            return false;
        }
    }
    return false;
}

/// Up to the end of the document or of a block. True if it is the document's.
bool JsonDocuments::ScanBlock() {
    const JsonMarks marks = FindJsonMarks(buffer.data() + place);
    if (marks.backslashes != 0) {
        return ScanEscapes(marks);
    }
    const std::uint64_t insides = FindInsides(marks.quotes) ^ (isInString ? ~std::uint64_t(0) : 0);
    std::uint64_t rest = ((marks.openings | marks.closings) & ~insides) | marks.lineFeeds;
    for (; rest != 0; rest &= rest - 1) {
        const std::uint64_t mark = rest & (~rest + 1);
        if ((marks.openings & mark) != 0 && depth < deepestJson) {
            ++depth;
        } else if ((marks.closings & mark) != 0 && depth > 1) {
            --depth;
        } else {
            isInString = (insides & mark) != 0;
            return TakeMark(place + static_cast<std::size_t>(std::countr_zero(mark)));
        }
    }
    isInString = (insides >> (jsonBlock - 1)) != 0;
    place += jsonBlock;
    return false;
}

/// The same for a block in which quotes may be escaped.
bool JsonDocuments::ScanEscapes(const JsonMarks& marks) {
    const std::size_t block = place;
    const std::size_t blockEnd = block + jsonBlock;
    std::uint64_t rest = marks.quotes | marks.backslashes | marks.openings | marks.closings | marks.lineFeeds;
    for (; rest != 0; rest &= rest - 1) {
        const std::size_t mark = block + static_cast<std::size_t>(std::countr_zero(rest));
        if (mark < place) {
            continue; // escaped
        }
        if (mark + 1 == blockEnd && buffer[mark] == '\\') {
            place = mark; // what it escapes is in the next block
            return false;
        }
        if (TakeMark(mark)) {
            return true;
        }
        if (isBroken || state != InNested) {
            return false;
        }
    }
    place = blockEnd;
    return false;
}

/// Moves `place` behind the byte at `mark` (and what it escapes), before which nothing matters. True if it ends the
/// document.
bool JsonDocuments::TakeMark(std::size_t mark) {
    place = mark + 1;
    const char c = buffer[mark];
    if (isInString) {
        if (c == '"') {
            isInString = false;
        } else if (c == '\n') {
            place = mark;
            isBroken = true;
        } else if (c == '\\' && buffer[place] != '\n') {
            ++place;
        }
        return false;
    }
    switch (c) {
    case '"':
        isInString = true;
        return false;
    case '{':
    case '[':
        if (depth == deepestJson) {
            place = mark;
            isBroken = true;
        } else {
            ++depth;
        }
        return false;
    case '}':
    case ']':
        return --depth == 0;
    case '\n': // it goes on over the end of its line
        if (dropped + begin < cutOffEnd) {
            place = mark;
            return true;
        }
        place = begin;
        tokens.Begin();
        token = NoToken;
        state = InTokens;
        return false;
    default:
        return false;
    }
}

bool JsonDocuments::ScanTokens() {
    for (;;) {
        if (token != NoToken && !ScanToken()) {
            return false;
        }
        if (place == filled) {
            return false;
        }
        const char c = buffer[place];
        if (c == '"') {
            if (!tokens.TakeString()) {
                isBroken = true;
                return false;
            }
            token = StringToken;
            ++place;
        } else if (IsJsonBlank(c)) {
            if (c == '\n') {
                CountLine(place);
            }
            ++place;
        } else if (!EndsJsonScalar(c)) {
            if (!tokens.TakeScalar()) {
                isBroken = true;
                return false;
            }
            token = ScalarToken;
        } else if (tokens.TakePunctuation(c)) {
            ++place;
            if (tokens.IsComplete()) {
                return true;
            }
        } else {
            isBroken = true;
            return false;
        }
    }
}

/// To behind the token that `place` is in.
bool JsonDocuments::ScanToken() {
    if (token == StringToken ? !ScanString() : !ScanScalar()) {
        return false;
    }
    token = NoToken;
    return true;
}

/// Ends the document behind the byte that cannot be.
void JsonDocuments::BreakHere() {
    isBroken = false;
    end = place + 1;
    // A document that is nested too deep is one, whatever its lines look like.
    if (!tokens.IsFull() && CutOff(buffer[place])) {
        return;
    }
    const std::size_t lineStart = lineBegin - dropped; // of a line that the document began before, or its own
    const bool beginsLine =
        line > documentLine && std::all_of(buffer.begin() + static_cast<std::ptrdiff_t>(lineStart),
                                           buffer.begin() + static_cast<std::ptrdiff_t>(place), IsJsonBlank);
    state = beginsLine || buffer[place] == '\n' ? BeforeDocument : BehindBroken;
}

/// Ends a document that has taken lines along behind its first one, if it has: then these are read again. `next` is the
/// byte at `place`, which cannot be; nothing at the end of input.
bool JsonDocuments::CutOff(std::optional<char> next) {
    if (state != InTokens) {
        return false;
    }
    const std::string_view text(buffer.data() + begin, place - begin);
    const std::size_t length = FindCutOffLines(text, next);
    if (length == 0) {
        return false;
    }
    cutOffEnd = dropped + begin + length;
    end = begin + text.find('\n');
    place = end;
    line = documentLine;
    state = BeforeDocument;
    return true;
}

void JsonDocuments::CountLine(std::size_t lineBreak) {
    ++line;
    lineBegin = dropped + lineBreak + 1;
}

/// Moves the document that has been begun to the front of the buffer, and makes the buffer larger if it fills it.
void JsonDocuments::MakeRoom() {
    const std::size_t kept = state == BeforeDocument || state == BehindBroken ? place : begin;
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
