#include "HostRecords.h"

#include <algorithm>

namespace OrvUQL::bench {

namespace {

IObject* MakeList(const std::vector<int>& numbers) {
    ObjectList items;
    items.reserve(numbers.size());
    for (const int number : numbers) {
        items.push_back(new ObjectInt(number));
    }
    return new ObjectArray(std::move(items));
}

std::size_t SlotOf(const std::string& name) {
    const auto* const found = std::find(std::begin(variableNames), std::end(variableNames), name);
    return static_cast<std::size_t>(found - std::begin(variableNames));
}

} // namespace

HostRecord::HostRecord(const Record& record) {
    for (const Variable& variable : record) {
        Field& field = fields[SlotOf(variable.name)];
        if (const int* const whole = std::get_if<int>(&variable.value)) {
            field.kind = Kind::Int;
            field.whole = *whole;
        } else if (const double* const real = std::get_if<double>(&variable.value)) {
            field.kind = Kind::Double;
            field.real = *real;
        } else if (const std::string* const text = std::get_if<std::string>(&variable.value)) {
            field.kind = Kind::Text;
            field.text = OrvStringT::FromUtf8(*text);
        } else {
            field.kind = Kind::List;
            field.list = MakeList(NumbersOf(std::get<List>(variable.value)));
        }
    }
}

HostRecord::~HostRecord() {
    for (const Field& field : fields) {
        if (field.list != nullptr) {
            field.list->Release();
        }
    }
}

IObject* HostRecord::MakeValue(std::size_t slot) const {
    const Field& field = fields[slot];
    switch (field.kind) {
    case Kind::Int:
        return new ObjectInt(field.whole);
    case Kind::Double:
        return new ObjectDouble(field.real);
    case Kind::Text:
        return new ObjectString(field.text);
    case Kind::List:
        field.list->AddRef();
        return field.list;
    case Kind::Missing:
        break;
    }
    return new ObjectNull();
}

const ObjectBase::MethodMap* TableRecord::_GetMethodMap() const {
    // In the order of variableNames.
    static const MethodMap table[] = {
        MethodMap::Property<&TableRecord::Get<0>>(L"A"),        MethodMap::Property<&TableRecord::Get<1>>(L"B"),
        MethodMap::Property<&TableRecord::Get<2>>(L"C"),        MethodMap::Property<&TableRecord::Get<3>>(L"D"),
        MethodMap::Property<&TableRecord::Get<4>>(L"E"),        MethodMap::Property<&TableRecord::Get<5>>(L"List"),
        MethodMap::Property<&TableRecord::Get<6>>(L"Name"),     MethodMap::Property<&TableRecord::Get<7>>(L"Price"),
        MethodMap::Property<&TableRecord::Get<8>>(L"Quantity"), MethodMap::Property<&TableRecord::Get<9>>(L"Weight"),
        MethodMap::Chain(&TableRecord::ObjectBaseMethods),      MethodMap::End(),
    };
    return table;
}

IObject* InvokeRecord::Invoke(QueryEngine* engine, const wchar_t* called, const QueryElementList& args, IError** err) {
    // variableNames is in the order of the names: a binary search. (Their letters are ASCII.)
    const std::wstring_view sought(called);
    const auto isBefore = [](const char* name, std::wstring_view text) {
        const std::string_view units(name);
        return std::lexicographical_compare(units.begin(), units.end(), text.begin(), text.end());
    };
    const auto* const found = std::lower_bound(std::begin(variableNames), std::end(variableNames), sought, isBefore);
    if (found != std::end(variableNames)) {
        const std::string_view name(*found);
        if (std::equal(name.begin(), name.end(), sought.begin(), sought.end())) {
            return MakeValue(static_cast<std::size_t>(found - std::begin(variableNames)));
        }
    }
    return ObjectBase::Invoke(engine, called, args, err);
}

} // namespace OrvUQL::bench
