#include "core/Signature.h"

#include "OrvUQL/ObjectExpression.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/QueryElement.h"
#include "OrvUQL/Scalars.h"

#include "core/EngineAccess.h"
#include "core/Failure.h"

#include <typeinfo>

namespace OrvUQL::detail {

namespace {

constexpr bool IsRequired(wchar_t letter) noexcept { return letter >= L'A' && letter <= L'Z'; }

constexpr wchar_t ToUpperLetter(wchar_t letter) noexcept {
    return letter >= L'a' && letter <= L'z' ? static_cast<wchar_t>(letter - L'a' + L'A') : letter;
}

const wchar_t* LetterWord(wchar_t letter) noexcept {
    switch (ToUpperLetter(letter)) {
    case L'B':
        return L"bool";
    case L'I':
        return L"int";
    case L'D':
        return L"double";
    case L'S':
        return L"string";
    case L'N':
        return L"numeric";
    case L'O':
        return L"object";
    case L'E':
        return L"expression";
    default:
        return L"unknown";
    }
}

/// What the value converts to, always a new object. Without the calls that it takes where it is exactly a T already.
template <class T> IObject* ChangeTo(IObject::EType type, IObject* value, IError** err) {
    if (&typeid(*value) == &typeid(T)) {
        const T* const exact = static_cast<const T*>(value);
        if (!exact->ObjectBaseStaticImpl::IsStaticInstance()) {
            return new T(exact->GetValue());
        }
    }
    return value->ChangeType(type, err);
}

/// The parameter that a letter makes of an argument, or null.
IObject* MakeParameter(wchar_t letter, IQueryElement* node, QueryEngine* engine, IError** err) {
    const wchar_t kind = ToUpperLetter(letter);
    if (kind == L'O') {
        return EvaluateArgument(node, engine, err);
    }
    if (kind == L'E') {
        return new ObjectExpression(node);
    }
    Reference<IObject> value(EvaluateArgument(node, engine, err));
    if (!value) {
        return nullptr;
    }
    switch (kind) {
    case L'B':
        return ChangeTo<ObjectBool>(IObject::TypeBool, value.Get(), err);
    case L'I':
        return ChangeTo<ObjectInt>(IObject::TypeInt, value.Get(), err);
    case L'D':
        return ChangeTo<ObjectDouble>(IObject::TypeDouble, value.Get(), err);
    case L'S':
        return ChangeTo<ObjectString>(IObject::TypeString, value.Get(), err);
    case L'N':
        return value->ToNumeric(err);
    default:
        return nullptr;
    }
}

/// Appends an entry whose reference is handed over, also where memory ends.
void Append(ObjectList& params, IObject* entry) {
    Reference<IObject> owned(entry);
    params.push_back(entry);
    owned.Detach();
}

/// The error of a surplus argument replaces that of the one before.
void FailTooMany(IError** err, IError*& reported, const wchar_t* methodName, int expected) {
    if (err == nullptr) {
        return;
    }
    if (reported != nullptr) {
        reported->Release();
        reported = nullptr;
        *err = nullptr;
    }
    Fail(err, message::tooManyParameters, methodName, OrvUtils::String::ToStringW(expected));
    reported = *err;
}

} // namespace

bool CollectArguments(QueryEngine* engine, const wchar_t* methodName, const wchar_t* signature,
                      const QueryElementList& args, ObjectList& params, IError** err) {
    if (*signature == L'*') {
        return Fail(err, message::badSignature, methodName);
    }
    const wchar_t* cursor = signature;
    int position = 1;
    bool surplus = false;
    IError* reported = nullptr;
    for (IQueryElement* node : args) {
        const wchar_t letter = *cursor == L'*' ? cursor[-1] : *cursor;
        if (letter == L'\0') {
            surplus = true;
            FailTooMany(err, reported, methodName, position - 1);
            ++position;
            continue;
        }
        if (node == nullptr) {
            if (IsRequired(letter)) {
                return Fail(err, message::parameterNotOptional, OrvUtils::String::ToStringW(position), methodName);
            }
            params.push_back(nullptr);
        } else {
            IObject* const entry = MakeParameter(letter, node, engine, err);
            if (entry == nullptr) {
                return false;
            }
            Append(params, entry);
        }
        if (*cursor != L'*') {
            ++cursor;
        }
        ++position;
    }
    if (surplus) {
        return false;
    }
    for (; *cursor != L'\0' && *cursor != L'*'; ++cursor) {
        if (IsRequired(*cursor)) {
            return Fail(err, message::parameterNotOptional, OrvUtils::String::ToStringW(position), methodName);
        }
        // A repeated optional letter without arguments adds nothing, but it is counted.
        if (cursor[1] != L'*') {
            params.push_back(nullptr);
        }
        ++position;
    }
    return true;
}

OrvStringT DescribeSignature(const wchar_t* signature) {
    OrvStringT text;
    for (const wchar_t* letter = signature; *letter != L'\0'; ++letter) {
        const bool optional = !IsRequired(*letter);
        if (!text.IsEmpty()) {
            text += L", ";
        }
        if (optional) {
            text += L'[';
        }
        text += LetterWord(*letter);
        if (letter[1] == L'*') {
            text += L", ...";
            ++letter;
        }
        if (optional) {
            text += L']';
        }
    }
    return text;
}

} // namespace OrvUQL::detail
