#include "JsonObject.h"

#include "JsonWriter.h"

namespace OrvUQL::Tool {

JsonObject::JsonObject(Ref<JsonKeys> names, ObjectList&& members)
    : keys(std::move(names)), values(std::move(members)) {}

JsonObject::~JsonObject() = default; // the list lets go of deeply nested values without deep recursion

const ObjectBase::MethodMap* JsonObject::_GetMethodMap() const {
    // Members are a catch-all and not an Invoke of their own: so a call site finds its row once for all records.
    static const MethodMap table[] = {
        MethodMap::Method(L"Get", L"S", &JsonObject::Method_Get),
        MethodMap::Method(L"Keys", L"", &JsonObject::Method_Keys),
        MethodMap::Chain(&JsonObject::ObjectBaseMethods),
        MethodMap::CatchAll(L"", &JsonObject::Method_Member),
        MethodMap::End(),
    };
    return table;
}

OrvStringT JsonObject::ToString() const {
    OrvStringT text;
    AppendJson(text, *this);
    return text;
}

IObject* JsonObject::Read(std::wstring_view name) const {
    const std::size_t member = keys->Find(name);
    if (member == JsonKeys::none) {
        return new ObjectNull();
    }
    values[member]->AddRef();
    return values[member];
}

IObject* JsonObject::Method_Get(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    OrvStringT name;
    return params[0]->ToString(name, err) ? Read(name) : nullptr;
}

IObject* JsonObject::Method_Keys(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    ObjectList names;
    names.reserve(keys->GetCount());
    for (std::size_t member = 0; member < keys->GetCount(); ++member) {
        names.push_back(new ObjectString(keys->GetName(member)));
    }
    return new ObjectArray(std::move(names));
}

IObject* JsonObject::Method_Member(QueryEngine*, const OrvStringT& name, const ObjectList&, IError**) {
    return Read(name);
}

} // namespace OrvUQL::Tool
