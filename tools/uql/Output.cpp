#include "Output.h"

#include "File.h"

namespace OrvUQL::Tool {

void Output::Flush() {
    if (buffer.empty()) {
        return;
    }
    ClearStatus(); // both may be the same terminal
    std::string error;
    const bool written = WriteToStandardOutput(buffer, error);
    buffer.clear();
    if (!written) {
        throw OutputFailed{std::move(error)};
    }
}

void Output::WriteError(std::string_view bytes) {
    Flush();
    ClearStatus();
    WriteToStandardError(bytes);
}

// Blanks and not a terminal's codes: they clear a line wherever there are lines.
void Output::ShowStatus(std::string_view line) {
    std::string bytes(1, '\r');
    bytes += line;
    if (line.size() < statusLength) {
        bytes.append(statusLength - line.size(), ' ');
    }
    statusLength = line.size();
    WriteToStandardError(bytes);
}

void Output::ClearStatus() {
    if (statusLength != 0) {
        std::string bytes(statusLength + 2, ' ');
        bytes.front() = bytes.back() = '\r';
        WriteToStandardError(bytes);
        statusLength = 0;
    }
}

} // namespace OrvUQL::Tool
