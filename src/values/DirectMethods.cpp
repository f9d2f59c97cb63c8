// The direct forms of methods that expressions call for every item or record.

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectString.h"

#include "core/EngineAccess.h"
#include "core/Value.h"
#include "values/IteratorAccess.h"

#include <string_view>
#include <typeinfo>

namespace OrvUQL::detail {

namespace {

template <Value (*read)(const ObjectIterator*) noexcept> Value OfIterator(IObject* target) {
    return read(static_cast<const ObjectIterator*>(target));
}

Value LengthOfString(IObject* target) {
    const ObjectString* const text = static_cast<const ObjectString*>(target);
    return text->ObjectBaseStaticImpl::IsStaticInstance() ? Value::None() : Value::Int(text->GetValue().GetLength());
}

Value CountOfArray(IObject* target) { return Value::Int(static_cast<const ObjectArray*>(target)->GetCount()); }

struct Row {
    const std::type_info* type;
    std::wstring_view name; ///< as in the class's table
    DirectMethod method;
};

const Row rows[] = {
    {&typeid(ObjectIterator), L"item", OfIterator<IteratorAccess::Item>},
    {&typeid(ObjectIterator), L"lasteval", OfIterator<IteratorAccess::LastEval>},
    {&typeid(ObjectIterator), L"index", OfIterator<IteratorAccess::Index>},
    {&typeid(ObjectIterator), L"data", OfIterator<IteratorAccess::Data>},
    {&typeid(ObjectString), L"Length", LengthOfString},
    {&typeid(ObjectArray), L"Count", CountOfArray},
};

} // namespace

DirectMethod FindDirectMethod(const std::type_info& type, const ObjectBase::MethodMap& entry) noexcept {
    for (const Row& row : rows) {
        if (row.type == &type && row.name == entry.name) {
            return row.method;
        }
    }
    return NoDirectMethod;
}

} // namespace OrvUQL::detail
