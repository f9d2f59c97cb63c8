#include "JsonTapeObject.h"

#include "Utf8.h"

#include <algorithm>
#include <unordered_set>

namespace OrvUQL::Tool {

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

/// A text in UTF-8, which for names as they are fits a buffer.
class Utf8Name {
public:
    explicit Utf8Name(std::wstring_view text) {
        if (text.size() > sizeof buffer) {
            Convert(text);
            return;
        }
        for (std::size_t place = 0; place < text.size(); ++place) {
            if (text[place] >= 0x80) {
                Convert(text);
                return;
            }
            buffer[place] = static_cast<char>(text[place]);
        }
        view = std::string_view(buffer, text.size());
    }
    Utf8Name(const Utf8Name&) = delete;
    Utf8Name& operator=(const Utf8Name&) = delete;

    std::string_view View() const { return view; }

private:
    void Convert(std::wstring_view text) {
        AppendUtf8(longText, text);
        view = longText;
    }

    char buffer[48];
    std::string longText;
    std::string_view view;
};

char ToUpperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool EqualsNoCaseAscii(std::string_view a, std::string_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return ToUpperAscii(x) == ToUpperAscii(y); });
}

} // namespace

JsonTapeObject::~JsonTapeObject() {
    for (const Made& member : made) {
        ReleaseNested(member.value);
    }
}

void JsonTapeObject::AppendJson(std::string& out) const { Tool::AppendJson(out, whole); }

std::size_t JsonTapeObject::FindExactly(std::string_view name, simdjson::dom::element& value) const {
    std::size_t found = none;
    std::size_t place = 0;
    for (auto member = object.begin(), end = object.end(); member != end; ++member, ++place) {
        if (member.key_equals(name)) {
            value = member.value();
            found = place;
        }
    }
    return found;
}

std::string_view JsonTapeObject::FindSpelling(std::wstring_view name) const {
    const Utf8Name wanted(name);
    const bool isWantedAscii = IsAscii(wanted.View());
    for (auto member = object.begin(), end = object.end(); member != end; ++member) {
        const std::string_view key = member.key();
        // Some characters beyond ASCII have a capital letter within.
        const bool isSame = isWantedAscii && IsAscii(key) ? EqualsNoCaseAscii(wanted.View(), key)
                                                          : OrvStringT::FromUtf8(key).CompareNoCase(name) == 0;
        if (isSame) {
            return key;
        }
    }
    return std::string_view();
}

IObject* JsonTapeObject::Find(std::wstring_view name) const {
    simdjson::dom::element value;
    std::size_t place = FindExactly(Utf8Name(name).View(), value);
    if (place == none) {
        const std::string_view spelling = FindSpelling(name);
        if (spelling.data() == nullptr) {
            return nullptr;
        }
        place = FindExactly(spelling, value);
    }
    if (!value.is_array() && !value.is_object()) {
        return tape->MakeValue(value).Detach();
    }
    for (const Made& member : made) {
        if (member.place == place) {
            member.value->AddRef();
            return member.value;
        }
    }
    made.reserve(made.size() + 1);
    IObject* const fresh = tape->MakeValue(value).Detach();
    made.push_back({place, fresh});
    fresh->AddRef();
    return fresh;
}

void JsonTapeObject::AppendKeys(ObjectList& names) const {
    std::unordered_set<std::string_view> seen;
    for (auto member = object.begin(), end = object.end(); member != end; ++member) {
        if (seen.insert(member.key()).second) {
            Ref<IObject> name(new ObjectString(OrvStringT::FromUtf8(member.key())));
            names.push_back(name.Get());
            name.Detach();
        }
    }
}

} // namespace OrvUQL::Tool
