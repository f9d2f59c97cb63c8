#include "JsonObject.h"

namespace OrvUQL::Tool {

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
    std::string json;
    AppendJson(json);
    return OrvStringT::FromUtf8(json);
}

IObject* JsonObject::Read(std::wstring_view name) const {
    IObject* const value = Find(name);
    return value != nullptr ? value : new ObjectNull();
}

IObject* JsonObject::Method_Get(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    OrvStringT name;
    return params[0]->ToString(name, err) ? Read(name) : nullptr;
}

IObject* JsonObject::Method_Keys(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    ObjectList names;
    AppendKeys(names);
    return new ObjectArray(std::move(names));
}

IObject* JsonObject::Method_Member(QueryEngine*, const OrvStringT& name, const ObjectList&, IError**) {
    return Read(name);
}

} // namespace OrvUQL::Tool
