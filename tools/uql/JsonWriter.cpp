#include "JsonWriter.h"

#include "JsonObject.h"
#include "Ref.h"

#include <cmath>
#include <vector>

namespace OrvUQL::Tool {

namespace {

/// The escape for a unit that JSON does not take as it is, or null. `buffer` has room for one.
const wchar_t* Escape(wchar_t unit, wchar_t (&buffer)[7]) {
    switch (unit) {
    case L'"':
        return L"\\\"";
    case L'\\':
        return L"\\\\";
    case L'\b':
        return L"\\b";
    case L'\f':
        return L"\\f";
    case L'\n':
        return L"\\n";
    case L'\r':
        return L"\\r";
    case L'\t':
        return L"\\t";
    default:
        break;
    }
    if (unit >= 0x20) {
        return nullptr;
    }
    constexpr wchar_t digits[] = L"0123456789abcdef";
    buffer[0] = L'\\';
    buffer[1] = L'u';
    buffer[2] = L'0';
    buffer[3] = L'0';
    buffer[4] = digits[unit >> 4];
    buffer[5] = digits[unit & 15];
    buffer[6] = L'\0';
    return buffer;
}

void AppendString(OrvStringT& out, std::wstring_view text) {
    out += L'"';
    std::size_t written = 0;
    wchar_t buffer[7];
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (const wchar_t* const escape = Escape(text[place], buffer)) {
            out += text.substr(written, place - written);
            out += escape;
            written = place + 1;
        }
    }
    out += text.substr(written);
    out += L'"';
}

void AppendNumber(OrvStringT& out, double number) {
    if (std::isfinite(number)) {
        out += OrvUtils::String::ToStringW(number);
    } else {
        out += L"null";
    }
}

void AppendUnit(OrvStringT& out, const IUnit& unit) {
    out += L"{\"value\":";
    AppendNumber(out, unit.GetDisplayValue());
    out += L",\"unit\":";
    AppendString(out, unit.GetName());
    out += L",\"power\":";
    out += OrvUtils::String::ToStringW(unit.GetPower());
    out += L'}';
}

void AppendScalar(OrvStringT& out, const IObject& value) {
    switch (value.GetType()) {
    case IObject::TypeBool: {
        bool boolean = false;
        out += value.ToBool(boolean, nullptr) ? (boolean ? L"true" : L"false") : L"null";
        break;
    }
    case IObject::TypeInt: {
        int number = 0;
        out += value.ToInt(number, nullptr) ? OrvUtils::String::ToStringW(number) : OrvStringT(ORV_TEXT(L"null"));
        break;
    }
    case IObject::TypeDouble: {
        double number = NAN;
        value.ToDouble(number, nullptr);
        AppendNumber(out, number);
        break;
    }
    case IObject::TypeString: {
        OrvStringT text;
        if (value.ToString(text, nullptr)) {
            AppendString(out, text);
        } else {
            out += L"null";
        }
        break;
    }
    case IObject::TypeUnit:
        if (const IUnit* const unit = value.GetUnitInterface()) {
            AppendUnit(out, *unit);
            break;
        }
        [[fallthrough]];
    default:
        out += L"null";
    }
}

/// An array or a JSON object of which some items have been written.
class OpenValue {
public:
    /// False if the value is neither; else its opening bracket has been written.
    static bool Open(OrvStringT& out, const IObject& value, std::vector<OpenValue>& open) {
        OpenValue opened;
        if (value.GetType() == IObject::TypeArray) {
            opened.array = dynamic_cast<const ObjectArrayBase*>(&value);
        } else if (value.GetType() == IObject::TypeGlobal) {
            opened.object = dynamic_cast<const JsonObject*>(&value);
        }
        if (opened.array == nullptr && opened.object == nullptr) {
            return false;
        }
        out += opened.object != nullptr ? L'{' : L'[';
        open.push_back(std::move(opened));
        return true;
    }

    /// Writes what stands before the next item and sets `item`, which is null for an empty slot of an array. False at
    /// the end, the closing bracket written.
    bool Next(OrvStringT& out, const IObject*& item) {
        const std::size_t count =
            object != nullptr ? object->GetValues().size() : static_cast<std::size_t>(array->GetCount());
        if (next == count) {
            out += object != nullptr ? L'}' : L']';
            return false;
        }
        if (next != 0) {
            out += L',';
        }
        if (object != nullptr) {
            AppendString(out, object->GetKeys().GetName(next));
            out += L':';
            item = object->GetValues()[next];
        } else {
            current = Ref<IObject>(array->GetItem(static_cast<int>(next)));
            item = current.Get();
        }
        ++next;
        return true;
    }

private:
    const ObjectArrayBase* array = nullptr;
    const JsonObject* object = nullptr;
    Ref<IObject> current; // an array may make its items when asked for them
    std::size_t next = 0;
};

} // namespace

void AppendJson(OrvStringT& out, const IObject& value) {
    std::vector<OpenValue> open;
    if (!OpenValue::Open(out, value, open)) {
        AppendScalar(out, value);
        return;
    }
    while (!open.empty()) {
        const IObject* item = nullptr;
        if (!open.back().Next(out, item)) {
            open.pop_back();
        } else if (item == nullptr) {
            out += L"null";
        } else if (!OpenValue::Open(out, *item, open)) {
            AppendScalar(out, *item);
        }
    }
}

} // namespace OrvUQL::Tool
