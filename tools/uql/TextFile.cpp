#include "TextFile.h"

#include "File.h"

#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

bool ReadTextFile(const std::string& path, std::string& text, std::string& error) {
    InputFile file(path);
    if (!file.Open(error)) {
        return false;
    }
    text.clear();
    std::vector<char> block(1 << 16);
    for (;;) {
        const std::ptrdiff_t count = file.Read(block.data(), block.size(), error);
        if (count < 0) {
            return false;
        }
        if (count == 0) {
            break;
        }
        text.append(block.data(), static_cast<std::size_t>(count));
    }
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.compare(0, byteOrderMark.size(), byteOrderMark) == 0) {
        text.erase(0, byteOrderMark.size());
    }
    return true;
}

} // namespace OrvUQL::Tool
