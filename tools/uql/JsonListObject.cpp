#include "JsonListObject.h"

#include "JsonWriter.h"

#include <utility>

namespace OrvUQL::Tool {

JsonListObject::JsonListObject(Ref<JsonKeys> names, ObjectList&& members)
    : keys(std::move(names)), values(std::move(members)) {}

JsonListObject::~JsonListObject() = default; // the list lets go of deeply nested values without deep recursion

void JsonListObject::AppendJson(std::string& out) const { Tool::AppendJson(out, *this); }

IObject* JsonListObject::Find(std::wstring_view name) const {
    const std::size_t member = keys->Find(name);
    if (member == JsonKeys::none) {
        return nullptr;
    }
    values[member]->AddRef();
    return values[member];
}

void JsonListObject::AppendKeys(ObjectList& names) const {
    names.reserve(keys->GetCount());
    for (std::size_t member = 0; member < keys->GetCount(); ++member) {
        names.push_back(new ObjectString(keys->GetName(member)));
    }
}

} // namespace OrvUQL::Tool
