// Decompression.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace OrvUQL::Tool {

/// Decompresses gzip data, which may be several files of it one behind the other.
class Inflater {
public:
    /// As InputFile::Read.
    using ReadCompressed = std::function<std::ptrdiff_t(char* buffer, std::size_t size, std::string& error)>;

    virtual ~Inflater() = default;

    /// Reads up to `size` decompressed bytes, as many as are to be had without waiting for more than the first. 0 at
    /// the end, -1 with the reason in `error`.
    virtual std::ptrdiff_t Read(char* buffer, std::size_t size, const ReadCompressed& readCompressed,
                                std::string& error) = 0;
    /// True if Read may have something to give without reading more.
    virtual bool HasInput() const = 0;
};

/// Null with the reason in `error` if this build cannot decompress.
std::unique_ptr<Inflater> MakeInflater(std::string& error);

} // namespace OrvUQL::Tool
