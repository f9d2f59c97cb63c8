#include "TextLines.h"

namespace OrvUQL::Tool {

TextLines::EResult TextLines::Next(SourceRecord& line, bool wait, std::string& error) {
    lines.Drop();
    switch (lines.Next(wait, error)) {
    case LineBuffer::Line:
        break;
    case LineBuffer::End:
        return End;
    case LineBuffer::Failed:
        return Failed;
    case LineBuffer::WouldWait:
        return WouldWait;
    }
    line.text = lines.GetLine();
    if (line.text.back() == '\n') {
        line.text.remove_suffix(1);
    }
    line.line = lines.GetNumber();
    line.column = 1;
    return Record;
}

} // namespace OrvUQL::Tool
