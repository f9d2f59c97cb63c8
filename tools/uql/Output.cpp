#include "Output.h"

#include "File.h"

namespace OrvUQL::Tool {

void Output::Flush() {
    std::string error;
    const bool written = WriteToStandardOutput(buffer, error);
    buffer.clear();
    if (!written) {
        throw OutputFailed{std::move(error)};
    }
}

void Output::WriteError(std::string_view bytes) {
    Flush();
    WriteToStandardError(bytes);
}

} // namespace OrvUQL::Tool
