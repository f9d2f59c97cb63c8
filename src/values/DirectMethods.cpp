// The direct forms of methods that expressions call for every item or record.

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectString.h"

#include "core/EngineAccess.h"
#include "core/Value.h"
#include "values/IteratorAccess.h"
#include "values/TextRange.h"

#include <string_view>
#include <typeinfo>
#include <utility>

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

struct TextRow {
    std::wstring_view name; ///< as in the class's table
    TextMethod method;
};

const TextRow textRows[] = {
    {L"Length", TextMethod::Length},   {L"Empty", TextMethod::Empty},   {L"ToUpper", TextMethod::ToUpper},
    {L"ToLower", TextMethod::ToLower}, {L"Trim", TextMethod::Trim},     {L"LTrim", TextMethod::LTrim},
    {L"RTrim", TextMethod::RTrim},     {L"SubStr", TextMethod::SubStr},
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

TextMethod FindTextMethod(const std::type_info& type, const ObjectBase::MethodMap& entry) noexcept {
    if (&type == &typeid(ObjectString)) {
        for (const TextRow& row : textRows) {
            if (row.name == entry.name) {
                return row.method;
            }
        }
    }
    return TextMethod::None;
}

Value CallTextMethod(TextMethod method, OrvStringT text, int start, int count) {
    switch (method) {
    case TextMethod::Length:
        return Value::Int(text.GetLength());
    case TextMethod::Empty:
        return Value::Bool(text.IsEmpty());
    case TextMethod::ToUpper:
        text.MakeUpper();
        break;
    case TextMethod::ToLower:
        text.MakeLower();
        break;
    case TextMethod::Trim:
        text.Trim(blanks);
        break;
    case TextMethod::LTrim:
        text.TrimLeft(blanks);
        break;
    case TextMethod::RTrim:
        text.TrimRight(blanks);
        break;
    case TextMethod::SubStr: {
        const TextRange range = FindRange(text.GetLength(), start, count);
        text = text.Mid(range.start, range.count);
        break;
    }
    case TextMethod::None:
        return Value::None();
    }
    return Value::Text(std::move(text));
}

} // namespace OrvUQL::detail
