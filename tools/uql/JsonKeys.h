// The names of an object's members. Records of one input mostly have the same ones, so objects share them.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

/// An immutable list of names, each at most once, in input order. Counted like the library's objects and like them for
/// one thread at a time.
class JsonKeys : public RefCountImpl<IRefCountObject> {
public:
    /// `written` are the names as the input has them. A name that comes again is the same member as the first time.
    explicit JsonKeys(const std::vector<OrvStringT>& written);

    std::size_t GetCount() const { return names.size(); }
    const OrvStringT& GetName(std::size_t member) const { return names[member]; }
    /// How many names the input has, those that come again counted again.
    std::size_t GetPlaceCount() const { return members.empty() ? names.size() : members.size(); }
    /// The member that the name at a place of the input stands for.
    std::size_t GetMember(std::size_t place) const { return members.empty() ? place : members[place]; }

    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    /// The member of this name, or else the first one whose name differs only in letter case, or else none.
    std::size_t Find(std::wstring_view name) const;

private:
    std::size_t FindInIndex(std::wstring_view name) const;

    std::vector<OrvStringT> names;
    std::vector<std::size_t> members;       // empty if no name comes twice
    mutable std::vector<std::size_t> index; // of many names: ordered without regard to case; made when first needed
};

} // namespace OrvUQL::Tool
