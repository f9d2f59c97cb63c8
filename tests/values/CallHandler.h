// Calling the body of a method with arguments that no check has seen, as a host can that gives a row of the library's
// tables another name or signature in a table of its own.
#pragma once

#include "support/Attempt.h"
#include "support/Counted.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace OrvUQL::Tests {

/// The handler of the row `row` of the class's own table.
template <class T> ObjectBase::Handler FindHandler(const T& object, const wchar_t* row) {
    for (const ObjectBase::MethodMap* entry = object._GetMethodMap(); entry->handler != nullptr; ++entry) {
        if (OrvStringT(entry->name) == OrvStringT(row)) {
            return entry->handler;
        }
    }
    throw std::logic_error("no such row");
}

/// What comes of the handler of `row` when it is called as `name`. The arguments' references are taken over.
template <class T>
std::string CallHandler(T& object, const wchar_t* row, const wchar_t* name, ObjectList params,
                        QueryEngine* engine = nullptr) {
    QueryEngine own;
    QueryEngine* const used = engine == nullptr ? &own : engine;
    const ObjectBase::Handler handler = FindHandler(object, row);
    const OrvStringT callName(name);
    std::string outcome = Attempt([&](IError** err) { return (object.*handler)(used, callName, params, err); });
    params.ReleaseAll();
    return outcome;
}

/// How many references a value holds.
inline int ReferencesOf(const IObject* object) {
    // The count is for those who derive; its place in the object is the same for all.
    struct CountReader : RefCountImpl<IObject> {
        static int Read(const RefCountImpl<IObject>& counted) { return counted.*&CountReader::refCount; }
    };
    return CountReader::Read(dynamic_cast<const RefCountImpl<IObject>&>(*object));
}

/// A host's value that converts to nothing and says so.
class Stubborn : public CountedObject {
public:
    using CountedObject::CountedObject;
    using CountedObject::ToString;

    bool ToBool(bool&, IError** err) const override { return Refuse(L"no bool", err); }
    bool ToInt(int&, IError** err) const override { return Refuse(L"no int", err); }
    bool ToDouble(double&, IError** err) const override { return Refuse(L"no double", err); }
    bool ToString(OrvStringT&, IError** err) const override { return Refuse(L"no text", err); }

private:
    static bool Refuse(const wchar_t* message, IError** err) {
        if (err != nullptr) {
            *err = Error::Create(message);
        }
        return false;
    }
};

} // namespace OrvUQL::Tests
