#include "JsonKeys.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

namespace OrvUQL::Tool {

namespace {

/// Up to here going through the names is as fast as anything cleverer.
constexpr std::size_t shortList = 16;

struct TextHash {
    std::size_t operator()(const OrvStringT& text) const noexcept { return std::hash<std::wstring_view>()(text); }
};

} // namespace

JsonKeys::JsonKeys(const std::vector<OrvStringT>& written) {
    names.reserve(written.size());
    std::unordered_map<OrvStringT, std::size_t, TextHash> seen;
    seen.reserve(written.size());
    for (std::size_t place = 0; place < written.size(); ++place) {
        const auto [found, isNew] = seen.emplace(written[place], names.size());
        if (isNew) {
            names.push_back(written[place]);
        } else if (members.empty()) {
            members.resize(written.size());
            std::iota(members.begin(), members.end(), std::size_t{0});
        }
        if (!members.empty()) {
            members[place] = found->second;
        }
    }
}

std::size_t JsonKeys::Find(std::wstring_view name) const {
    if (names.size() > shortList) {
        return FindInIndex(name);
    }
    for (std::size_t member = 0; member < names.size(); ++member) {
        if (names[member] == name) {
            return member;
        }
    }
    for (std::size_t member = 0; member < names.size(); ++member) {
        if (names[member].View().size() == name.size() && names[member].CompareNoCase(name) == 0) {
            return member;
        }
    }
    return none;
}

std::size_t JsonKeys::FindInIndex(std::wstring_view name) const {
    if (index.empty()) {
        index.resize(names.size());
        std::iota(index.begin(), index.end(), std::size_t{0});
        std::stable_sort(index.begin(), index.end(),
                         [this](std::size_t a, std::size_t b) { return names[a].CompareNoCase(names[b]) < 0; });
    }
    const auto first =
        std::lower_bound(index.begin(), index.end(), name, [this](std::size_t member, std::wstring_view n) {
            return names[member].CompareNoCase(n) < 0;
        });
    for (auto same = first; same != index.end() && names[*same].CompareNoCase(name) == 0; ++same) {
        if (names[*same] == name) {
            return *same;
        }
    }
    return first != index.end() && names[*first].CompareNoCase(name) == 0 ? *first : none;
}

} // namespace OrvUQL::Tool
