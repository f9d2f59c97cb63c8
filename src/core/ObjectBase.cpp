// Calls by name: look-up in method tables, argument checking, the listing of methods, and the methods that every value
// has.

#include "OrvUQL/ObjectBase.h"

#include "OrvUQL/ObjectExpression.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/QueryElement.h"
#include "OrvUQL/Scalars.h"

#include "core/EngineAccess.h"
#include "core/Failure.h"
#include "core/InlineList.h"
#include "core/Signature.h"
#include "core/Value.h"
#include "platform/CaseMap.h"
#include "platform/Pool.h"

#include <typeinfo>

namespace OrvUQL {

namespace {

bool IsEnd(const ObjectBase::MethodMap& row) noexcept { return row.base == nullptr && row.handler == nullptr; }

const ObjectBase::MethodMap* ChainedTable(const ObjectBase* object, const ObjectBase::MethodMap& row) {
    return (detail::Adjust(object, row.baseAdjust)->*row.base)();
}

const ObjectBase::MethodMap* FindRow(const ObjectBase* object, const ObjectBase::MethodMap* row,
                                     std::wstring_view name) {
    for (; !IsEnd(*row); ++row) {
        if (row->base != nullptr) {
            if (const ObjectBase::MethodMap* const found = FindRow(object, ChainedTable(object, *row), name)) {
                return found;
            }
        } else if (*row->name == L'\0' || platform::EqualsIgnoreCase(row->name, name)) {
            return row;
        }
    }
    return nullptr;
}

/// What belongs to the row of a property; null for any other row.
const detail::PropertySignature* PropertyOf(const ObjectBase::MethodMap& row) noexcept {
    // The row's signature is its first member.
    return row.baseAdjust == detail::propertyMark ? reinterpret_cast<const detail::PropertySignature*>(row.signature)
                                                  : nullptr;
}

/// Whether the class is known to look names up in its table from where its property was declared.
bool IsPlainClass(const std::type_info& type, const ObjectBase::MethodMap& row) noexcept {
    const detail::PropertySignature* const property = PropertyOf(row);
    return property != nullptr && property->plainType != nullptr && *property->plainType == type;
}

/// The form of a row that gives its value without an object, or NoDirectMethod.
detail::DirectMethod FindDirect(bool isPlain, const std::type_info& type, const ObjectBase::MethodMap& row) noexcept {
    if (const detail::PropertySignature* const property = PropertyOf(row)) {
        return isPlain ? property->read : detail::NoDirectMethod;
    }
    return detail::FindDirectMethod(type, row);
}

} // namespace

void* ObjectBase::operator new(std::size_t size) { return platform::PoolAllocate(size); }
void ObjectBase::operator delete(void* block, std::size_t size) noexcept { platform::PoolFree(block, size); }

const ObjectBase::MethodMap* ObjectBase::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Method(L"ToBool", L"", &ObjectBase::Method_ToBool),
        MethodMap::Method(L"ToInt", L"", &ObjectBase::Method_ToInt),
        MethodMap::Method(L"ToDouble", L"", &ObjectBase::Method_ToDouble),
        MethodMap::Method(L"ToString", L"", &ObjectBase::Method_ToString),
        MethodMap::StaticMethod(L"TypeName", L"", &ObjectBase::Method_TypeName),
        MethodMap::Method(L"This", L"", &ObjectBase::Method_This),
        MethodMap::Method(L"IsNumeric", L"", &ObjectBase::Method_IsNumeric),
        MethodMap::Method(L"IsNull", L"", &ObjectBase::Method_IsNull),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectBase::GetMethodMap() const { return _GetMethodMap(); }
OrvStringT ObjectBase::ToString() const { return OrvStringT(); }
IObject* ObjectBase::MakeObject(detail::Value value) { return detail::Box(value); }
bool ObjectBase::IsStaticInstance() const { return false; }
bool ObjectBase::IsNull() const { return false; }
bool ObjectBase::IsUnit() const { return false; }
IUnit* ObjectBase::GetUnitInterface() { return nullptr; }
const IUnit* ObjectBase::GetUnitInterface() const { return nullptr; }

IQueryElement* ObjectBase::GetQueryElement(IObject* obj) {
    if (obj == nullptr || obj->GetType() != TypeExpression) {
        return nullptr;
    }
    const ObjectExpression* const expression = &typeid(*obj) == &typeid(ObjectExpression)
                                                   ? static_cast<const ObjectExpression*>(obj)
                                                   : dynamic_cast<const ObjectExpression*>(obj);
    return expression == nullptr ? nullptr : expression->GetQueryElement();
}

const ObjectBase::MethodMap* ObjectBase::FindMethodEntry(const MethodMap* map, const OrvStringT& name) const {
    return FindRow(this, map, name);
}

IObject* ObjectBase::Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) {
    const detail::CallSite* const site = detail::EngineAccess::TakeCallSite(engine, name);
    if (site != nullptr && site->isRead && args.empty() && site->type == &typeid(*this) &&
        (site->entry->isStatic || !IsStaticInstance())) [[likely]] {
        // Most calls are reads of properties.
        return Guarded(
            err, [&] { return detail::CallRow(this, *site->entry, engine, site->name, detail::noParameters, err); });
    }
    return InvokeNamed(engine, site, name, args, err);
}

IObject* ObjectBase::InvokeNamed(QueryEngine* engine, const detail::CallSite* site, const wchar_t* name,
                                 const QueryElementList& args, IError** err) {
    return Guarded(err, [&]() -> IObject* {
        const std::type_info* const type = &typeid(*this);
        if (site != nullptr && site->type == type) {
            return CallMethod(engine, *site->entry, name, site->name, args, err);
        }
        const std::wstring_view sought(name);
        if (platform::EqualsIgnoreCaseAscii(sought, L"help")) {
            return GetHelp();
        }
        const MethodMap* const entry = FindRow(this, GetMethodMap(), sought);
        if (entry == nullptr) {
            return FailNull(err, message::notAMethod, name, GetTypeName());
        }
        if (site != nullptr) {
            site->type = type;
            site->entry = entry;
            site->isRead = *entry->signature == L'\0';
            site->isPlain = site->isRead && (IsPlainClass(*type, *entry) || IsPlain());
            site->direct = site->isRead ? FindDirect(site->isPlain, *type, *entry) : detail::NoDirectMethod;
            site->textMethod = detail::FindTextMethod(*type, *entry);
            return CallMethod(engine, *entry, name, site->name, args, err);
        }
        return CallMethod(engine, *entry, name, OrvStringT(name), args, err);
    });
}

/// Whether the object's class leaves Invoke() and IsStaticInstance() as they are here: what it finds in its table may
/// then be called without asking. Where the compiler has no way to tell, no class does.
bool ObjectBase::IsPlain() {
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpmf-conversions"
#pragma GCC diagnostic ignored "-Wpedantic"
    using InvokeFunction = IObject* (*)(ObjectBase*, QueryEngine*, const wchar_t*, const QueryElementList&, IError**);
    using StaticFunction = bool (*)(const ObjectBase*);
    return (InvokeFunction)(this->*(&ObjectBase::Invoke)) == (InvokeFunction)(&ObjectBase::Invoke) &&
           (StaticFunction)(this->*(&ObjectBase::IsStaticInstance)) == (StaticFunction)(&ObjectBase::IsStaticInstance);
#pragma GCC diagnostic pop
#else
    return false;
#endif
}

IObject* ObjectBase::CallMethod(QueryEngine* engine, const MethodMap& entry, const wchar_t* name,
                                const OrvStringT& callName, const QueryElementList& args, IError** err) {
    if (!entry.isStatic && IsStaticInstance()) {
        return FailNull(err, message::notStatic, name, GetTypeName());
    }
    InlineList<ObjectList, 6> params;
    if (!detail::CollectArguments(engine, name, entry.signature, args, params, err)) {
        return nullptr;
    }
    return detail::CallRow(this, entry, engine, callName, params, err);
}

bool ObjectBase::ValidateParameters(QueryEngine* engine, const wchar_t* methodName, const OrvStringT& signature,
                                    const QueryElementList& args, ObjectList& params, IError** err) const {
    return Guarded(
        err, [&] { return detail::CollectArguments(engine, methodName, signature.GetString(), args, params, err); });
}

IObject* ObjectBase::GetHelp() {
    OrvStringT text;
    GetMethodList(GetMethodMap(), text);
    return new ObjectString(std::move(text));
}

void ObjectBase::GetMethodList(const MethodMap* map, OrvStringT& out) {
    for (const MethodMap* row = map; !IsEnd(*row); ++row) {
        if (row->base != nullptr) {
            GetMethodList(ChainedTable(this, *row), out);
            continue;
        }
        if (*row->name == L'\0') {
            return; // nothing behind a catch-all can be called
        }
        OrvStringT line;
        line.Format(L"%s.%s(%s)%s", GetTypeName().GetString(), row->name,
                    detail::DescribeSignature(row->signature).GetString(), row->isStatic ? L" {Static}" : L"");
        if (!out.IsEmpty()) {
            out += L'\r'; // a lone carriage return, deliberately: hosts split the listing at it
        }
        out += line;
    }
}

IObject* ObjectBase::Method_ToBool(QueryEngine*, const OrvStringT&, const ObjectList&, IError** err) {
    bool value = false;
    return ToBool(value, err) ? new ObjectBool(value) : nullptr;
}

IObject* ObjectBase::Method_ToInt(QueryEngine*, const OrvStringT&, const ObjectList&, IError** err) {
    int value = 0;
    return ToInt(value, err) ? new ObjectInt(value) : nullptr;
}

IObject* ObjectBase::Method_ToDouble(QueryEngine*, const OrvStringT&, const ObjectList&, IError** err) {
    double value = 0;
    return ToDouble(value, err) ? new ObjectDouble(value) : nullptr;
}

IObject* ObjectBase::Method_ToString(QueryEngine*, const OrvStringT&, const ObjectList&, IError** err) {
    OrvStringT text;
    return ToString(text, err) ? new ObjectString(std::move(text)) : nullptr;
}

IObject* ObjectBase::Method_TypeName(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectString(GetTypeName());
}

IObject* ObjectBase::Method_This(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    AddRef();
    return this;
}

IObject* ObjectBase::Method_IsNumeric(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    const Reference<IObject> number(ToNumeric(nullptr));
    return new ObjectBool(static_cast<bool>(number));
}

IObject* ObjectBase::Method_IsNull(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectBool(IsNull());
}

} // namespace OrvUQL
