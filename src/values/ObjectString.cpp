// The text value and its methods. Everything counts UTF-16 code units; positions start at 0, unlike those of arrays.

#include "OrvUQL/ObjectString.h"

#include "OrvUQL/Scalars.h"

#include "core/Failure.h"
#include "platform/CaseMap.h"
#include "platform/Meter.h"
#include "platform/NumberText.h"
#include "values/ItemList.h"
#include "values/TextRange.h"

#include <algorithm>

namespace OrvUQL {

namespace {

bool NameIs(const OrvStringT& name, std::wstring_view text) noexcept { return platform::EqualsIgnoreCase(name, text); }

/// Reads an optional bool; `value` stays what it is where the argument was left out.
bool ReadFlag(IObject* param, bool& value, IError** err) { return param == nullptr || param->ToBool(value, err); }

OrvStringT Reversed(const OrvStringT& text) {
    return OrvStringT(std::wstring(text.View().rbegin(), text.View().rend()));
}

} // namespace

ObjectString::~ObjectString() = default;

const ObjectBase::MethodMap* ObjectString::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Method(L"Length", L"", &ObjectString::Method_Length),
        MethodMap::Method(L"Empty", L"", &ObjectString::Method_Empty),
        MethodMap::Method(L"ToUpper", L"", &ObjectString::Method_ToUpper),
        MethodMap::Method(L"ToLower", L"", &ObjectString::Method_ToLower),
        MethodMap::Method(L"ToTitle", L"", &ObjectString::Method_ToTitle),
        MethodMap::Method(L"CharCode", L"", &ObjectString::Method_CharCode),
        MethodMap::Method(L"SubStr", L"Ii", &ObjectString::Method_SubStrDelete),
        MethodMap::Method(L"Delete", L"Ii", &ObjectString::Method_SubStrDelete),
        MethodMap::Method(L"Trim", L"s", &ObjectString::Method_Trim),
        MethodMap::Method(L"LTrim", L"s", &ObjectString::Method_Trim),
        MethodMap::Method(L"RTrim", L"s", &ObjectString::Method_Trim),
        MethodMap::Method(L"Repeat", L"I", &ObjectString::Method_Repeat),
        MethodMap::Method(L"StartsWith", L"Sb", &ObjectString::Method_StartsEndsContains),
        MethodMap::Method(L"EndsWith", L"Sb", &ObjectString::Method_StartsEndsContains),
        MethodMap::Method(L"Contains", L"Sb", &ObjectString::Method_StartsEndsContains),
        MethodMap::Method(L"Replace", L"SSb", &ObjectString::Method_Replace),
        MethodMap::Method(L"Split", L"S", &ObjectString::Method_Split),
        MethodMap::Method(L"CharAt", L"I", &ObjectString::Method_CharOrCodeAt),
        MethodMap::Method(L"CharCodeAt", L"I", &ObjectString::Method_CharOrCodeAt),
        MethodMap::Method(L"IndexOf", L"S", &ObjectString::Method_IndexOf),
        MethodMap::Method(L"LastIndexOf", L"S", &ObjectString::Method_IndexOf),
        MethodMap::Method(L"ToCharArray", L"", &ObjectString::Method_ToCharArray),
        MethodMap::Method(L"ParseInt", L"i", &ObjectString::Method_ParseInt),
        MethodMap::Method(L"RegMatch", L"Sb", &ObjectString::Method_RegMatchContains),
        MethodMap::Method(L"RegMatchEx", L"Sb", &ObjectString::Method_RegMatchContainsEx),
        MethodMap::Method(L"RegContains", L"Sb", &ObjectString::Method_RegMatchContains),
        MethodMap::Method(L"RegContainsEx", L"Sb", &ObjectString::Method_RegMatchContainsEx),
        MethodMap::Method(L"RegReplace", L"SSb", &ObjectString::Method_RegReplace),
        MethodMap::Method(L"RegReplaceEx", L"SEb", &ObjectString::Method_RegReplaceEx),
        MethodMap::Method(L"RegSplit", L"Sb", &ObjectString::Method_RegSplit),
        MethodMap::Method(L"RegFind", L"Sb", &ObjectString::Method_RegFind),
        MethodMap::Chain(&ObjectBase::_GetMethodMap),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectString::GetMethodMap() const { return _GetMethodMap(); }
OrvStringT ObjectString::GetTypeName() const { return ORV_TEXT(L"string"); }
OrvStringT ObjectString::ToString() const { return value; }

IObject* ObjectString::Method_Length(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectInt(value.GetLength());
}

IObject* ObjectString::Method_Empty(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectBool(value.IsEmpty());
}

IObject* ObjectString::Method_ToUpper(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    OrvStringT text = value;
    text.MakeUpper();
    return new ObjectString(std::move(text));
}

IObject* ObjectString::Method_ToLower(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    OrvStringT text = value;
    text.MakeLower();
    return new ObjectString(std::move(text));
}

/// Only the very first character changes: there is no word rule, and the rest keeps its case.
IObject* ObjectString::Method_ToTitle(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    OrvStringT text = value.Left(1);
    text.MakeUpper();
    text += value.View().substr(value.IsEmpty() ? 0 : 1);
    return new ObjectString(std::move(text));
}

IObject* ObjectString::Method_CharCode(QueryEngine*, const OrvStringT&, const ObjectList&, IError** err) {
    if (value.IsEmpty()) {
        return FailNull(err, message::emptyCharCode);
    }
    return new ObjectInt(static_cast<int>(value[0]));
}

IObject* ObjectString::Method_SubStrDelete(QueryEngine*, const OrvStringT& name, const ObjectList& params, IError**) {
    const bool isDelete = NameIs(name, L"delete");
    int start = 0;
    if (!params[0]->ToInt(start, nullptr)) {
        return nullptr;
    }
    int count = 0;
    if (params[1] == nullptr) {
        count = isDelete ? 1 : 0; // one character, which may lie behind the end and is then none
    } else if (!params[1]->ToInt(count, nullptr)) {
        count = 0;
    }
    const detail::TextRange range = detail::FindRange(value.GetLength(), start, count);
    if (!isDelete) {
        return new ObjectString(value.Mid(range.start, range.count));
    }
    OrvStringT text = value;
    text.Delete(range.start, range.count);
    return new ObjectString(std::move(text));
}

IObject* ObjectString::Method_Trim(QueryEngine*, const OrvStringT& name, const ObjectList& params, IError** err) {
    if (params.size() != 1) {
        return FailNull(err, message::wrongNumberOfParameters);
    }
    OrvStringT set;
    if (params[0] != nullptr && !params[0]->ToString(set, err)) {
        return nullptr;
    }
    const std::wstring_view removed = set.IsEmpty() ? detail::blanks : set.View();
    OrvStringT text = value;
    if (NameIs(name, L"ltrim")) {
        text.TrimLeft(removed);
    } else if (NameIs(name, L"rtrim")) {
        text.TrimRight(removed);
    } else {
        text.Trim(removed);
    }
    return new ObjectString(std::move(text));
}

IObject* ObjectString::Method_Repeat(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    int count = 0;
    if (!params[0]->ToInt(count, err)) {
        return nullptr;
    }
    if (count <= 0 || value.IsEmpty()) {
        return new ObjectString(OrvStringT());
    }
    const std::int64_t length = static_cast<std::int64_t>(value.GetLength()) * count;
    if (length > 0x7fffffff) {
        throw std::length_error("Repeat");
    }
    platform::RequireUnits(length);
    OrvStringT text;
    text.Reserve(static_cast<int>(length));
    for (int index = 0; index < count; ++index) {
        text += value;
    }
    return new ObjectString(std::move(text));
}

/// Without regard to case unless asked otherwise.
IObject* ObjectString::Method_StartsEndsContains(QueryEngine*, const OrvStringT& name, const ObjectList& params,
                                                 IError** err) {
    OrvStringT pattern;
    bool matchCase = false;
    if (params.size() != 2 || !params[0]->ToString(pattern, err) || !ReadFlag(params[1], matchCase, err)) {
        return nullptr;
    }
    if (NameIs(name, L"contains")) {
        const auto mode = matchCase ? OrvStringT::CaseSensitive : OrvStringT::CaseInsensitive;
        return new ObjectBool(value.Find(pattern, 0, mode) >= 0);
    }
    const int length = pattern.GetLength();
    const OrvStringT part = NameIs(name, L"endswith") ? value.Right(length) : value.Left(length);
    return new ObjectBool(CompareStrings(part, pattern, matchCase));
}

/// With regard to case unless asked otherwise, deliberately unlike StartsWith, EndsWith and Contains. Text that does
/// not match keeps its own case.
IObject* ObjectString::Method_Replace(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    OrvStringT sought;
    OrvStringT replacement;
    bool matchCase = true;
    if (!params[0]->ToString(sought, err) || !params[1]->ToString(replacement, err) ||
        !ReadFlag(params[2], matchCase, err)) {
        return nullptr;
    }
    OrvStringT text = value;
    text.Replace(sought, replacement, matchCase ? OrvStringT::CaseSensitive : OrvStringT::CaseInsensitive);
    return new ObjectString(std::move(text));
}

IObject* ObjectString::Method_Split(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    OrvStringT separator;
    if (!params[0]->ToString(separator, err)) {
        return nullptr;
    }
    ItemList pieces;
    int last = 0;
    if (!separator.IsEmpty()) {
        for (int found = value.Find(separator); found >= 0; found = value.Find(separator, last)) {
            pieces.AddText(value.Mid(last, found - last));
            last = found + separator.GetLength();
        }
    }
    pieces.AddText(value.Mid(last));
    return pieces.MakeArray();
}

IObject* ObjectString::Method_CharOrCodeAt(QueryEngine*, const OrvStringT& name, const ObjectList& params,
                                           IError** err) {
    int index = 0;
    if (!params[0]->ToInt(index, err)) {
        return nullptr;
    }
    if (index < 0 || index >= value.GetLength()) {
        return new ObjectNull();
    }
    if (NameIs(name, L"charat")) {
        return new ObjectString(value.Mid(index, 1));
    }
    return new ObjectInt(static_cast<int>(value[index]));
}

/// From 0, and -1 for absent; arrays count from 1 and answer 0, deliberately otherwise.
IObject* ObjectString::Method_IndexOf(QueryEngine*, const OrvStringT& name, const ObjectList& params, IError** err) {
    OrvStringT sought;
    if (!params[0]->ToString(sought, err)) {
        return nullptr;
    }
    if (!NameIs(name, L"LastIndexOf")) {
        return new ObjectInt(value.Find(sought));
    }
    // The last occurrence is the first one from behind, whether occurrences overlap or not, and so it is found in
    // linear time. An empty text occurs at the end.
    const int found = Reversed(value).Find(Reversed(sought));
    return new ObjectInt(found < 0 ? -1 : value.GetLength() - sought.GetLength() - found);
}

IObject* ObjectString::Method_ToCharArray(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    ItemList characters;
    for (int index = 0; index < value.GetLength(); ++index) {
        characters.AddText(value.Mid(index, 1));
    }
    return characters.MakeArray();
}

IObject* ObjectString::Method_ParseInt(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    int radix = 10;
    if (params[0] != nullptr) {
        if (!params[0]->ToInt(radix, err)) {
            return nullptr;
        }
        if (radix < 2 || radix > 36) {
            return FailNull(err, message::badRadix);
        }
    } else if (value.GetLength() >= 2 && value[0] == L'0' && (value[1] == L'x' || value[1] == L'X')) {
        radix = 0; // automatic: hexadecimal behind the prefix
    }
    // Saturates at 32 bits on every platform: 4294967295, which as an int is -1.
    std::size_t used = 0;
    return new ObjectInt(static_cast<int>(platform::ParseUnsigned(value, radix, used)));
}

} // namespace OrvUQL
