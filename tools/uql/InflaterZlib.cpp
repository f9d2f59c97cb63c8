#include "Inflater.h"

#include <algorithm>
#include <limits>
#include <new>
#include <vector>
#include <zlib.h>

namespace OrvUQL::Tool {

namespace {

constexpr std::size_t blockSize = 64 * 1024;
constexpr int gzipOnly = 15 + 16; // the largest window, and a gzip header

class ZlibInflater final : public Inflater {
public:
    ZlibInflater() : block(blockSize) {
        if (::inflateInit2(&stream, gzipOnly) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ZlibInflater(const ZlibInflater&) = delete;
    ZlibInflater& operator=(const ZlibInflater&) = delete;
    ~ZlibInflater() override { ::inflateEnd(&stream); }

    std::ptrdiff_t Read(char* buffer, std::size_t size, const ReadCompressed& readCompressed,
                        std::string& error) override {
        const auto room = static_cast<uInt>(std::min<std::size_t>(size, std::numeric_limits<uInt>::max()));
        stream.next_out = reinterpret_cast<Bytef*>(buffer);
        stream.avail_out = room;
        while (stream.avail_out == room) {
            if (stream.avail_in == 0 && !isFull) {
                const std::ptrdiff_t count = readCompressed(block.data(), block.size(), error);
                if (count < 0) {
                    return -1;
                }
                if (count == 0) {
                    if (isBetweenFiles) {
                        return 0;
                    }
                    error = "the compressed data end too early";
                    return -1;
                }
                stream.next_in = reinterpret_cast<Bytef*>(block.data());
                stream.avail_in = static_cast<uInt>(count);
            }
            if (isBetweenFiles && !BeginFile()) {
                continue;
            }
            const int result = ::inflate(&stream, Z_NO_FLUSH);
            isFull = stream.avail_out == 0; // there may be more where that came from
            if (result == Z_STREAM_END) {
                ::inflateReset(&stream);
                isBetweenFiles = true;
                isFull = false;
            } else if (result == Z_MEM_ERROR) {
                throw std::bad_alloc();
            } else if (result != Z_OK && result != Z_BUF_ERROR) {
                if (stream.avail_out != room) {
                    break; // what came before the damage first; then it is met again
                }
                error = "the compressed data are damaged";
                if (stream.msg != nullptr) {
                    error += std::string(": ") + stream.msg;
                }
                return -1;
            }
        }
        return static_cast<std::ptrdiff_t>(room - stream.avail_out);
    }

    bool HasInput() const override { return stream.avail_in != 0 || isFull; }

private:
    /// Tapes and block devices fill up with zeros behind the last file. False if that is all there is.
    bool BeginFile() {
        while (stream.avail_in != 0 && *stream.next_in == 0) {
            ++stream.next_in;
            --stream.avail_in;
        }
        isBetweenFiles = stream.avail_in == 0;
        return !isBetweenFiles;
    }

    z_stream stream = {};
    std::vector<char> block;
    bool isBetweenFiles = false;
    bool isFull = false;
};

} // namespace

std::unique_ptr<Inflater> MakeInflater(std::string&) { return std::make_unique<ZlibInflater>(); }

} // namespace OrvUQL::Tool
