#include "NearestName.h"

#include <algorithm>

namespace OrvUQL::Tool {

std::size_t GetEditDistance(std::wstring_view a, std::wstring_view b) {
    // Rows of the table of distances between the beginnings of both: the one being made and the two before it.
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        last[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t change = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, change});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last[b.size()];
}

const OrvStringT* FindNearestName(const OrvStringT& written, const std::vector<OrvStringT>& names) {
    constexpr std::size_t longest = 100; // beyond, it is no name that somebody typed, and takes long
    OrvStringT wanted = written;
    wanted.MakeLower();
    const std::size_t length = wanted.View().size();
    const OrvStringT* nearest = nullptr;
    std::size_t least = 0;
    for (const OrvStringT& name : names) {
        const std::size_t longer = std::max(length, name.View().size());
        const std::size_t difference = longer - std::min(length, name.View().size());
        const std::size_t limit = longer / 3;
        if (longer > longest || difference > limit) {
            continue;
        }
        OrvStringT candidate = name;
        candidate.MakeLower();
        const std::size_t distance = GetEditDistance(wanted.View(), candidate.View());
        if (distance == 0) {
            return nullptr;
        }
        if (distance <= limit && (nearest == nullptr || distance < least)) {
            nearest = &name;
            least = distance;
        }
    }
    return nearest;
}

} // namespace OrvUQL::Tool
