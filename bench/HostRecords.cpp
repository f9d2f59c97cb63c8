#include "HostRecords.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace OrvUQL::bench {

TableRecord::TableRecord(const Record& data)
    : record(data), b(OrvStringT::FromUtf8(data.b)), name(OrvStringT::FromUtf8(data.name)) {}

const ObjectBase::MethodMap* TableRecord::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Method(L"A", L"", &TableRecord::Method_A),
        MethodMap::Method(L"B", L"", &TableRecord::Method_B),
        MethodMap::Method(L"C", L"", &TableRecord::Method_C),
        MethodMap::Method(L"Name", L"", &TableRecord::Method_Name),
        MethodMap::Method(L"Price", L"", &TableRecord::Method_Price),
        MethodMap::Method(L"Quantity", L"", &TableRecord::Method_Quantity),
        MethodMap::Method(L"Weight", L"", &TableRecord::Method_Weight),
        MethodMap::Chain(&TableRecord::ObjectBaseMethods),
        MethodMap::End(),
    };
    return table;
}

IObject* TableRecord::Method_A(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectInt(record.a);
}

IObject* TableRecord::Method_B(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectString(b);
}

IObject* TableRecord::Method_C(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectInt(record.c);
}

IObject* TableRecord::Method_Name(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectString(name);
}

IObject* TableRecord::Method_Price(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectDouble(record.price);
}

IObject* TableRecord::Method_Quantity(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectInt(record.quantity);
}

IObject* TableRecord::Method_Weight(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectDouble(record.weight);
}

namespace {

enum class Field { A, B, C, Name, Price, Quantity, Weight };

struct FieldName {
    std::wstring_view name;
    Field field;
};

constexpr FieldName fieldNames[] = {
    // in the order of the names, for a binary search
    {L"a", Field::A},           {L"b", Field::B},         {L"c", Field::C},
    {L"name", Field::Name},     {L"price", Field::Price}, {L"quantity", Field::Quantity},
    {L"weight", Field::Weight},
};

} // namespace

InvokeRecord::InvokeRecord(const Record& data)
    : record(data), b(OrvStringT::FromUtf8(data.b)), name(OrvStringT::FromUtf8(data.name)) {}

IObject* InvokeRecord::Invoke(QueryEngine* engine, const wchar_t* called, const QueryElementList& args, IError** err) {
    const std::wstring_view sought(called);
    const auto* const found =
        std::lower_bound(std::begin(fieldNames), std::end(fieldNames), sought,
                         [](const FieldName& entry, std::wstring_view text) { return entry.name < text; });
    if (found == std::end(fieldNames) || found->name != sought) {
        return ObjectBase::Invoke(engine, called, args, err);
    }
    switch (found->field) {
    case Field::A:
        return new ObjectInt(record.a);
    case Field::B:
        return new ObjectString(b);
    case Field::C:
        return new ObjectInt(record.c);
    case Field::Name:
        return new ObjectString(name);
    case Field::Price:
        return new ObjectDouble(record.price);
    case Field::Quantity:
        return new ObjectInt(record.quantity);
    case Field::Weight:
        return new ObjectDouble(record.weight);
    }
    return nullptr;
}

} // namespace OrvUQL::bench
