// A host's record as a value of the language, in the two ways in which a host can offer one.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "Cases.h"

#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>

namespace OrvUQL::bench {

/// What both have in common: the host's data, and a fresh value for whoever asks. Texts and lists are kept in the form
/// in which a share of them is taken; numbers become values each time.
class HostRecord : public ObjectBase {
public:
    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"record"); }

protected:
    explicit HostRecord(const Record& record);
    ~HostRecord() override;

    /// The value of variableNames[slot]; null values for names that the record lacks.
    PropertyValue GetValue(std::size_t slot) const {
        const Field& field = fields[slot];
        switch (field.kind) {
        case Kind::Int:
            return field.whole;
        case Kind::Double:
            return field.real;
        case Kind::Text:
            return field.text;
        case Kind::List:
            field.list->AddRef();
            return PropertyValue(field.list);
        case Kind::Missing:
            break;
        }
        return {};
    }
    /// The same as an object with a new reference.
    IObject* MakeValue(std::size_t slot) const;

private:
    enum class Kind { Missing, Int, Double, Text, List };

    struct Field {
        Kind kind = Kind::Missing;
        int whole = 0;
        double real = 0;
        OrvStringT text;
        IObject* list = nullptr;
    };

    Field fields[std::size(variableNames)];
};

/// Offers properties, as most hosts do.
class TableRecord : public HostRecord {
public:
    explicit TableRecord(const Record& record) : HostRecord(record) {}

    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }

private:
    const MethodMap* _GetMethodMap() const;

    template <std::size_t slot> PropertyValue Get() const { return GetValue(slot); }
};

/// Answers names itself: the way of a host whose names are data, such as the columns of a table.
class InvokeRecord : public HostRecord {
public:
    explicit InvokeRecord(const Record& record) : HostRecord(record) {}

    IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) override;
};

} // namespace OrvUQL::bench
