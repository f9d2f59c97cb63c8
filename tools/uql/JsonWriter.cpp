#include "JsonWriter.h"

#include "JsonListObject.h"
#include "Ref.h"
#include "Utf8.h"

#include <charconv>
#include <cmath>
#include <utility>
#include <vector>

namespace OrvUQL::Tool {

namespace {

void AppendText(std::string& out, std::string_view text) { out += text; }
void AppendText(std::string& out, std::wstring_view text) { AppendUtf8(out, text); }

void AppendEscape(std::string& out, unsigned unit) {
    switch (unit) {
    case '"':
        out += "\\\"";
        return;
    case '\\':
        out += "\\\\";
        return;
    case '\b':
        out += "\\b";
        return;
    case '\f':
        out += "\\f";
        return;
    case '\n':
        out += "\\n";
        return;
    case '\r':
        out += "\\r";
        return;
    case '\t':
        out += "\\t";
        return;
    default:
        break;
    }
    constexpr char digits[] = "0123456789abcdef";
    out += "\\u00";
    out += digits[unit >> 4];
    out += digits[unit & 15];
}

template <class Text> void AppendQuoted(std::string& out, Text text) {
    out += '"';
    std::size_t written = 0;
    for (std::size_t place = 0; place < text.size(); ++place) {
        const auto unit = static_cast<std::make_unsigned_t<typename Text::value_type>>(text[place]);
        if (unit < 0x20 || unit == '"' || unit == '\\') {
            AppendText(out, text.substr(written, place - written));
            AppendEscape(out, unit);
            written = place + 1;
        }
    }
    AppendText(out, text.substr(written));
    out += '"';
}

void AppendUnit(std::string& out, const IUnit& unit) {
    out += "{\"value\":";
    AppendJsonNumber(out, unit.GetDisplayValue());
    out += ",\"unit\":";
    AppendJsonString(out, std::wstring_view(unit.GetName()));
    out += ",\"power\":";
    AppendJsonNumber(out, unit.GetPower());
    out += '}';
}

void AppendScalar(std::string& out, const IObject& value) {
    switch (value.GetType()) {
    case IObject::TypeBool: {
        bool boolean = false;
        out += value.ToBool(boolean, nullptr) ? (boolean ? "true" : "false") : "null";
        break;
    }
    case IObject::TypeInt: {
        int number = 0;
        if (value.ToInt(number, nullptr)) {
            AppendJsonNumber(out, number);
        } else {
            out += "null";
        }
        break;
    }
    case IObject::TypeDouble: {
        double number = NAN;
        value.ToDouble(number, nullptr);
        AppendJsonNumber(out, number);
        break;
    }
    case IObject::TypeString: {
        OrvStringT text;
        if (value.ToString(text, nullptr)) {
            AppendJsonString(out, text.View());
        } else {
            out += "null";
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
        out += "null";
    }
}

/// An array or an object of values of which some items have been written.
class OpenValue {
public:
    /// False if the value is neither; else its opening bracket has been written.
    static bool Open(std::string& out, const IObject& value, std::vector<OpenValue>& open) {
        OpenValue opened;
        if (value.GetType() == IObject::TypeArray) {
            opened.array = dynamic_cast<const ObjectArrayBase*>(&value);
        } else if (value.GetType() == IObject::TypeGlobal) {
            opened.object = dynamic_cast<const JsonListObject*>(&value);
        }
        if (opened.array == nullptr && opened.object == nullptr) {
            return false;
        }
        out += opened.object != nullptr ? '{' : '[';
        open.push_back(std::move(opened));
        return true;
    }

    /// Writes what stands before the next item and sets `item`, which is null for an empty slot of an array. False at
    /// the end, the closing bracket written.
    bool Next(std::string& out, const IObject*& item) {
        const std::size_t count =
            object != nullptr ? object->GetValues().size() : static_cast<std::size_t>(array->GetCount());
        if (next == count) {
            out += object != nullptr ? '}' : ']';
            return false;
        }
        if (next != 0) {
            out += ',';
        }
        if (object != nullptr) {
            AppendJsonString(out, object->GetKeys().GetName(next).View());
            out += ':';
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
    const JsonListObject* object = nullptr;
    Ref<IObject> current; // an array may make its items when asked for them
    std::size_t next = 0;
};

/// What has no items that are values.
void AppendLeaf(std::string& out, const IObject& value) {
    const JsonObject* object = nullptr;
    if (value.GetType() == IObject::TypeGlobal) {
        object = dynamic_cast<const JsonObject*>(&value);
    }
    if (object != nullptr) {
        object->AppendJson(out);
    } else {
        AppendScalar(out, value);
    }
}

} // namespace

void AppendJsonString(std::string& out, std::string_view utf8) { AppendQuoted(out, utf8); }
void AppendJsonString(std::string& out, std::wstring_view text) { AppendQuoted(out, text); }

void AppendJsonNumber(std::string& out, double number) {
    if (std::isfinite(number)) {
        AppendUtf8(out, OrvUtils::String::ToStringW(number));
    } else {
        out += "null";
    }
}

void AppendJsonNumber(std::string& out, int number) {
    char digits[12];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void AppendJson(std::string& out, const IObject& value) {
    std::vector<OpenValue> open;
    if (!OpenValue::Open(out, value, open)) {
        AppendLeaf(out, value);
        return;
    }
    while (!open.empty()) {
        const IObject* item = nullptr;
        if (!open.back().Next(out, item)) {
            open.pop_back();
        } else if (item == nullptr) {
            out += "null";
        } else if (!OpenValue::Open(out, *item, open)) {
            AppendLeaf(out, *item);
        }
    }
}

void AppendJson(OrvStringT& out, const IObject& value) {
    std::string json;
    AppendJson(json, value);
    out += OrvStringT::FromUtf8(json);
}

} // namespace OrvUQL::Tool
