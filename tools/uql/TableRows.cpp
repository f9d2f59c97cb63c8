#include "TableRows.h"

namespace OrvUQL::Tool {

TableRows::EResult TableRows::Next(SourceRecord& row, bool wait, std::string& error) {
    if (!header) {
        const EResult result = NextRow(row, wait, error);
        if (result != Record) {
            return result;
        }
        header = std::make_shared<const std::string>(row.text);
    }
    return NextRow(row, wait, error);
}

TableRows::EResult TableRows::NextRow(SourceRecord& row, bool wait, std::string& error) {
    bool isRow = false;
    if (rowLine == 0) {
        lines.Drop();
    }
    while (!isRow) {
        switch (lines.Next(wait, error)) {
        case LineBuffer::Line:
            break;
        case LineBuffer::End:
            if (rowLine == 0) {
                return End;
            }
            isRow = true; // within quotes, or without an end of its line
            continue;
        case LineBuffer::Failed:
            return Failed;
        case LineBuffer::WouldWait:
            return WouldWait;
        }
        if (rowLine == 0 && TrimLineBreak(lines.GetLine()).empty()) {
            lines.Drop();
            continue;
        }
        if (rowLine == 0) {
            rowLine = lines.GetNumber();
        }
        isRow = parser.Take(lines.GetLine());
    }
    row.text = TrimLineBreak(lines.GetKept());
    row.line = rowLine;
    row.column = 1;
    rowLine = 0;
    return Record;
}

} // namespace OrvUQL::Tool
