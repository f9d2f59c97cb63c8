// The lines of an input, of which some may be kept together.
#pragma once

#include "InputStream.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

/// Holds what has been kept and a block of what comes behind it.
class LineBuffer {
public:
    enum EResult { Line, End, Failed, WouldWait };
    enum EBreak {
        AtLineFeed,       ///< a line ends behind a line feed
        AtCarriageReturn, ///< and behind a carriage return that none follows
    };

    /// `stream` is borrowed.
    LineBuffer(InputStream& stream, EBreak lineBreak) : input(stream), breaks(lineBreak), buffer(blockSize) {}

    /// Goes on by a line. With `wait` false never waits for input. The last line may have no end.
    EResult Next(bool wait, std::string& error);

    /// The line that Next came upon, its end included. Borrowed until the next call of Next, as is the following.
    std::string_view GetLine() const { return View(lineBegin, lineEnd); }
    /// All lines since the last call of Drop.
    std::string_view GetKept() const { return View(kept, lineEnd); }
    /// The lines so far are of no interest any more.
    void Drop() { kept = lineEnd; }
    /// Of the line that Next came upon, from 1.
    std::size_t GetNumber() const { return number; }

private:
    static constexpr std::size_t blockSize = 256 * 1024;

    std::string_view View(std::size_t begin, std::size_t end) const {
        return std::string_view(buffer.data() + begin, end - begin);
    }
    bool FindEnd();
    void MakeRoom();
    void SkipByteOrderMark();

    InputStream& input;
    EBreak breaks;
    std::vector<char> buffer;
    std::size_t filled = 0;
    std::size_t kept = 0;
    std::size_t lineBegin = 0;
    std::size_t lineEnd = 0;
    std::size_t looked = 0; // up to where no end of the next line has been found
    std::size_t number = 0;
    bool isAtHead = true;
    bool isAtEnd = false;
};

/// A line without the line feed, or carriage return and line feed, or carriage return, that ends it.
std::string_view TrimLineBreak(std::string_view line);

} // namespace OrvUQL::Tool
