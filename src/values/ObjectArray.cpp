#include "OrvUQL/ObjectArray.h"

#include "OrvUQL/ObjectString.h"
#include "OrvUQL/QueryEngine.h"
#include "OrvUQL/Scalars.h"

#include "core/Failure.h"
#include "platform/CaseMap.h"
#include "platform/Meter.h"
#include "platform/Thread.h"
#include "values/ItemEvaluation.h"

#include <algorithm>
#include <typeinfo>
#include <vector>

namespace OrvUQL {

ObjectArrayBase::~ObjectArrayBase() = default;

const ObjectBase::MethodMap* ObjectArrayBase::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Method(L"Count", L"", &ObjectArrayBase::Method_Count),
        MethodMap::Method(L"Empty", L"", &ObjectArrayBase::Method_Empty),
        MethodMap::Method(L"Add", L"O", &ObjectArrayBase::Method_Add),
        MethodMap::Method(L"Item", L"I", &ObjectArrayBase::Method_Item),
        MethodMap::Method(L"Join", L"S", &ObjectArrayBase::Method_Join),
        MethodMap::Method(L"ForEach", L"OEo", &ObjectArrayBase::Method_ForEach),
        MethodMap::Method(L"Filter", L"Eo", &ObjectArrayBase::Method_FilterConvert),
        MethodMap::Method(L"Convert", L"Eo", &ObjectArrayBase::Method_FilterConvert),
        MethodMap::Method(L"Find", L"O", &ObjectArrayBase::Method_FindIndexOf),
        MethodMap::Method(L"IndexOf", L"O", &ObjectArrayBase::Method_FindIndexOf),
        MethodMap::Method(L"First", L"", &ObjectArrayBase::Method_First),
        MethodMap::Method(L"Last", L"", &ObjectArrayBase::Method_Last),
        MethodMap::Method(L"AddArray", L"O", &ObjectArrayBase::Method_AddArray),
        MethodMap::Method(L"Unique", L"", &ObjectArrayBase::Method_Unique),
        MethodMap::Method(L"Contains", L"Eo", &ObjectArrayBase::Method_Contains),
        MethodMap::Chain(&ObjectBase::_GetMethodMap),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectArrayBase::GetMethodMap() const { return _GetMethodMap(); }
OrvStringT ObjectArrayBase::GetTypeName() const { return ORV_TEXT(L"array"); }

OrvStringT ObjectArrayBase::ToString() const {
    // Arrays of the library nest as deep as a query makes them, so their texts are joined without recursion. An array
    // class of a host may print itself otherwise and is asked; then the stack is the limit.
    if (!platform::HasStack()) {
        throw std::bad_alloc();
    }
    struct Level {
        const ObjectArrayBase* array;
        int next;
        Reference<IObject> held;
    };
    std::vector<Level> levels;
    levels.push_back({this, 0, Reference<IObject>()});
    OrvStringT text;
    text += L'(';
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next >= level.array->GetCount()) {
            text += L')';
            levels.pop_back();
            continue;
        }
        if (level.next > 0) {
            text += L',';
        }
        platform::Charge(1);
        Reference<IObject> item(level.array->GetItem(level.next++));
        if (!item) {
            continue;
        }
        const IObject& object = *item.Get();
        if (typeid(object) == typeid(ObjectArray)) {
            text += L'(';
            const ObjectArrayBase* const inner = static_cast<const ObjectArray*>(item.Get());
            levels.push_back({inner, 0, std::move(item)});
            continue;
        }
        OrvStringT itemText;
        const unsigned shortages = platform::CurrentThread().shortages;
        if (item->ToString(itemText, nullptr)) {
            text += itemText;
        } else {
            // An item that has no text shows its type. One whose text did not fit into memory or stack has one, and a
            // text without it would be wrong.
            if (platform::CurrentThread().shortages != shortages) {
                throw std::bad_alloc();
            }
            text += L'<';
            text += item->GetTypeName();
            text += L'>';
        }
    }
    return text;
}

IObject* ObjectArrayBase::GetItemOrNull(int index) const {
    if (index >= 0 && index < GetCount()) {
        if (IObject* const item = GetItem(index)) {
            return item;
        }
    }
    return new ObjectNull();
}

IObject* ObjectArrayBase::Method_Count(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectInt(GetCount());
}

IObject* ObjectArrayBase::Method_Empty(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectBool(GetCount() == 0);
}

IObject* ObjectArrayBase::Method_Item(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    int position = 0;
    if (!params[0]->ToInt(position, err)) {
        return nullptr;
    }
    return GetItemOrNull(position >= 1 ? position - 1 : -1);
}

IObject* ObjectArrayBase::Method_First(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return GetItemOrNull(0);
}

IObject* ObjectArrayBase::Method_Last(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return GetItemOrNull(GetCount() - 1);
}

IObject* ObjectArrayBase::Method_Add(QueryEngine*, const OrvStringT&, const ObjectList& params, IError**) {
    ObjectList list;
    list.reserve(static_cast<std::size_t>(std::max(GetCount(), 0)) + 1);
    for (int index = 0; index < GetCount(); ++index) { // a host's array may shrink while it is read
        platform::Charge(1);
        Reference<IObject> item(GetItem(index));
        list.push_back(item.Get());
        item.Detach();
    }
    list.push_back(params[0]);
    params[0]->AddRef();
    return new ObjectArray(std::move(list));
}

IObject* ObjectArrayBase::Method_AddArray(QueryEngine* engine, const OrvStringT&, const ObjectList& params,
                                          IError** err) {
    const ObjectArrayBase* const other = params[0] != nullptr && params[0]->GetType() == TypeArray
                                             ? dynamic_cast<const ObjectArrayBase*>(params[0])
                                             : nullptr;
    if (other == nullptr) {
        return FailNull(err, message::notAnArray);
    }
    ObjectList list;
    for (const ObjectArrayBase* source : {static_cast<const ObjectArrayBase*>(this), other}) {
        // The count is read before each step: a host's array may change while it is read.
        for (int index = 0; index < source->GetCount(); ++index) {
            platform::Charge(1);
            Reference<IObject> item(source->GetItem(index));
            list.push_back(item.Get());
            // Each item gets one reference more than the result gives back. Hosts rely on it that items of theirs stay
            // alive; deliberately kept, unless the engine is told otherwise.
            if (IObject* const kept = item.Detach()) {
                kept->AddRef();
                detail::EngineAccess::Keep(engine, kept);
            }
        }
    }
    return new ObjectArray(std::move(list));
}

IObject* ObjectArrayBase::Method_Join(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    OrvStringT separator;
    if (!params[0]->ToString(separator, err)) {
        return nullptr;
    }
    OrvStringT text;
    const detail::ItemSource items(*this);
    for (int index = 0; index < items.Count(); ++index) {
        if (index > 0) {
            text += separator; // also before an empty slot
        }
        if (IObject* const item = items.Item(index)) {
            const detail::ValueHolder value(detail::Unbox(item));
            if (!detail::AppendText(text, value.Get(), err)) {
                return nullptr;
            }
        }
    }
    return new ObjectString(std::move(text));
}

/// Find tells whether an item equals the argument, IndexOf where the first such item stands, from 1, and 0 if there
/// is none.
IObject* ObjectArrayBase::Method_FindIndexOf(QueryEngine* engine, const OrvStringT& name, const ObjectList& params,
                                             IError** err) {
    int position = 0;
    for (int index = 0; index < GetCount() && position == 0; ++index) {
        platform::Charge(1);
        const Reference<IObject> item(GetItem(index));
        bool equal = false;
        if (item && !engine->CompareObjects(OperEqual, item.Get(), params[0], equal, err)) {
            return nullptr;
        }
        if (equal) {
            position = index + 1;
        }
    }
    if (platform::EqualsIgnoreCase(name, L"IndexOf")) {
        return new ObjectInt(position);
    }
    return new ObjectBool(position != 0);
}

ObjectArray::ObjectArray(const ObjectList& list) : items(list) {
    for (IObject* item : items) {
        if (item != nullptr) {
            item->AddRef();
        }
    }
}

ObjectArray::ObjectArray(ObjectList&& list) : items(std::move(list)) {}

ObjectArray::~ObjectArray() = default;

int ObjectArray::GetCount() const { return static_cast<int>(items.size()); }

IObject* ObjectArray::GetItem(int index) const {
    IObject* const item = items[static_cast<std::size_t>(index)];
    if (item != nullptr) {
        item->AddRef();
    }
    return item;
}

} // namespace OrvUQL
