#include "InputStream.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace OrvUQL::Tool {

namespace {

constexpr std::string_view gzipMagic = "\x1F\x8B";

} // namespace

std::ptrdiff_t InputStream::ReadFile(char* buffer, std::size_t size, std::string& error) {
    const std::ptrdiff_t count = file.Read(buffer, size, error);
    position += count > 0 ? static_cast<std::uint64_t>(count) : 0;
    return count;
}

bool InputStream::LookAtHead(std::string& error) {
    head.resize(gzipMagic.size());
    std::size_t length = 0;
    while (length < gzipMagic.size() && (length == 0 || head[0] == gzipMagic[0])) {
        const std::ptrdiff_t count = ReadFile(head.data() + length, gzipMagic.size() - length, error);
        if (count < 0) {
            return false;
        }
        if (count == 0) {
            break;
        }
        length += static_cast<std::size_t>(count);
    }
    head.resize(length);
    isHeadKnown = true;
    if (head == gzipMagic) {
        inflater = MakeInflater(error);
        return inflater != nullptr;
    }
    return true;
}

std::ptrdiff_t InputStream::Read(char* buffer, std::size_t size, std::string& error) {
    if (!isHeadKnown && !LookAtHead(error)) {
        return -1;
    }
    if (inflater) {
        return inflater->Read(
            buffer, size,
            [this](char* block, std::size_t room, std::string& reason) {
                if (head.empty()) {
                    return ReadFile(block, room, reason);
                }
                const std::size_t count = head.copy(block, room);
                head.erase(0, count);
                return static_cast<std::ptrdiff_t>(count);
            },
            error);
    }
    if (!head.empty()) {
        const std::size_t count = head.copy(buffer, size);
        head.erase(0, count);
        return static_cast<std::ptrdiff_t>(count);
    }
    return ReadFile(buffer, size, error);
}

bool InputStream::WouldWait() const { return head.empty() && !(inflater && inflater->HasInput()) && file.WouldWait(); }

std::optional<double> InputStream::GetFraction() const {
    const std::optional<std::uint64_t> size = file.GetSize();
    if (!size || *size == 0) {
        return std::nullopt;
    }
    return std::min(static_cast<double>(position) / static_cast<double>(*size), 1.0);
}

} // namespace OrvUQL::Tool
