#include "TableRow.h"

#include "JsonWriter.h"

namespace OrvUQL::Tool {

const std::string* TableRow::GetField(std::size_t member) const {
    if (names->GetCount() == names->GetPlaceCount()) {
        return member < fields.size() ? &fields[member] : nullptr;
    }
    // Of columns of the same name the last counts, as of the members of an object.
    for (std::size_t place = names->GetPlaceCount(); place-- > 0;) {
        if (names->GetMember(place) == member) {
            return place < fields.size() ? &fields[place] : nullptr;
        }
    }
    return nullptr;
}

void TableRow::AppendJson(std::string& out) const {
    out += '{';
    for (std::size_t member = 0; member < names->GetCount(); ++member) {
        if (member != 0) {
            out += ',';
        }
        AppendJsonString(out, names->GetName(member).View());
        out += ':';
        if (const std::string* const field = GetField(member)) {
            AppendJsonString(out, std::string_view(*field));
        } else {
            out += "null";
        }
    }
    out += '}';
}

IObject* TableRow::Find(std::wstring_view name) const {
    const std::size_t member = names->Find(name);
    const std::string* const field = member == JsonKeys::none ? nullptr : GetField(member);
    return field == nullptr ? nullptr : new ObjectString(OrvStringT::FromUtf8(*field));
}

void TableRow::AppendKeys(ObjectList& keys) const {
    keys.reserve(names->GetCount());
    for (std::size_t member = 0; member < names->GetCount(); ++member) {
        keys.push_back(new ObjectString(names->GetName(member)));
    }
}

} // namespace OrvUQL::Tool
