// The bytes of an input, decompressed if they are compressed.
#pragma once

#include "File.h"
#include "Inflater.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace OrvUQL::Tool {

/// A file that begins as gzip data do is decompressed while it is read; any other is read as it is.
class InputStream {
public:
    /// The file must be open.
    explicit InputStream(InputFile openFile) : file(std::move(openFile)) {}

    /// As InputFile::Read.
    std::ptrdiff_t Read(char* buffer, std::size_t size, std::string& error);
    /// As InputFile::WouldWait.
    bool WouldWait() const;

    /// How much of the file has been read, from 0 to 1; nothing if its size is not known.
    std::optional<double> GetFraction() const;

private:
    bool LookAtHead(std::string& error);
    std::ptrdiff_t ReadFile(char* buffer, std::size_t size, std::string& error);

    InputFile file;
    bool isHeadKnown = false;
    std::string head; // what was read to look at it and has not been taken
    std::unique_ptr<Inflater> inflater;
    std::uint64_t position = 0;
};

} // namespace OrvUQL::Tool
