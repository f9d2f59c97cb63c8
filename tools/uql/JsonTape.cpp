#include "JsonTape.h"

#include "JsonSyntax.h"
#include "JsonTapeObject.h"
#include "JsonWriter.h"

#include <limits>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

namespace OrvUQL::Tool {

using simdjson::dom::element;
using simdjson::dom::element_type;

namespace {

bool FitsInt(std::int64_t number) {
    return number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
}

/// An array of which some items have been made.
struct OpenArray {
    explicit OpenArray(simdjson::dom::array array) : next(array.begin()), end(array.end()) {}
    OpenArray(const OpenArray&) = delete; // a list's copy owns nothing
    OpenArray& operator=(const OpenArray&) = delete;
    OpenArray(OpenArray&&) = default;
    OpenArray& operator=(OpenArray&&) = default;
    ~OpenArray() = default;

    simdjson::dom::array::iterator next;
    simdjson::dom::array::iterator end;
    ObjectList items;
};

struct Member {
    std::string_view name;
    element value;
};

/// Up to here comparing each name with each other is as fast as anything cleverer.
constexpr std::size_t fewMembers = 16;

/// The members in the order in which their names come first, each with the last value of its name.
std::vector<Member> ListMembers(simdjson::dom::object object) {
    std::vector<Member> members;
    std::unordered_map<std::string_view, std::size_t> places; // when there are many
    for (const simdjson::dom::key_value_pair member : object) {
        std::size_t place = 0;
        if (members.size() < fewMembers) {
            while (place < members.size() && members[place].name != member.key) {
                ++place;
            }
        } else {
            if (places.empty()) {
                for (std::size_t before = 0; before < members.size(); ++before) {
                    places.emplace(members[before].name, before);
                }
            }
            place = places.emplace(member.key, members.size()).first->second;
        }
        if (place == members.size()) {
            members.push_back({member.key, member.value});
        } else {
            members[place].value = member.value;
        }
    }
    return members;
}

void AppendLeaf(std::string& out, element leaf) {
    switch (leaf.type()) {
    case element_type::BOOL:
        out += leaf.get_bool().value_unsafe() ? "true" : "false";
        break;
    case element_type::INT64: {
        const std::int64_t number = leaf.get_int64().value_unsafe();
        if (FitsInt(number)) {
            AppendJsonNumber(out, static_cast<int>(number));
        } else {
            AppendJsonNumber(out, static_cast<double>(number));
        }
        break;
    }
    case element_type::UINT64:
        AppendJsonNumber(out, static_cast<double>(leaf.get_uint64().value_unsafe()));
        break;
    case element_type::DOUBLE:
        AppendJsonNumber(out, leaf.get_double().value_unsafe());
        break;
    case element_type::STRING:
        AppendJsonString(out, leaf.get_string().value_unsafe());
        break;
    default:
        out += "null";
    }
}

/// An array or an object of which some items have been written.
class OpenElement {
public:
    explicit OpenElement(element opened) : isObject(opened.is_object()) {
        if (isObject) {
            members = ListMembers(opened.get_object().value_unsafe());
            return;
        }
        const simdjson::dom::array items = opened.get_array().value_unsafe();
        for (const element item : items) {
            members.push_back({{}, item});
        }
    }

    char GetOpening() const { return isObject ? '{' : '['; }
    char GetClosing() const { return isObject ? '}' : ']'; }
    bool HasMore() const { return next < members.size(); }
    /// Writes what stands before the next item.
    element Next(std::string& out) {
        if (next != 0) {
            out += ',';
        }
        const Member& member = members[next++];
        if (isObject) {
            AppendJsonString(out, member.name);
            out += ':';
        }
        return member.value;
    }

private:
    bool isObject;
    std::vector<Member> members;
    std::size_t next = 0;
};

} // namespace

JsonTape::EResult JsonTape::Parse(std::string_view document) {
    if (parser.capacity() == 0) {
        // The reader of the file sees to the limit; this one must only not be lower.
        if (parser.allocate(document.size() + 1, deepestJson + 2) != simdjson::SUCCESS) {
            throw std::bad_alloc();
        }
    }
    switch (parser.parse(document.data(), document.size(), false).get(root)) {
    case simdjson::SUCCESS:
        return Parsed;
    case simdjson::MEMALLOC:
        throw std::bad_alloc();
    case simdjson::UTF8_ERROR:
        return MalformedUtf8;
    default:
        return Refused;
    }
}

Ref<IObject> JsonTape::MakeLeaf(element leaf) {
    switch (leaf.type()) {
    case element_type::BOOL:
        return Ref<IObject>(new ObjectBool(leaf.get_bool().value_unsafe()));
    case element_type::INT64: {
        const std::int64_t number = leaf.get_int64().value_unsafe();
        if (FitsInt(number)) {
            return Ref<IObject>(new ObjectInt(static_cast<int>(number)));
        }
        return Ref<IObject>(new ObjectDouble(static_cast<double>(number)));
    }
    case element_type::UINT64:
        return Ref<IObject>(new ObjectDouble(static_cast<double>(leaf.get_uint64().value_unsafe())));
    case element_type::DOUBLE:
        return Ref<IObject>(new ObjectDouble(leaf.get_double().value_unsafe()));
    case element_type::STRING:
        return Ref<IObject>(new ObjectString(OrvStringT::FromUtf8(leaf.get_string().value_unsafe())));
    case element_type::OBJECT: {
        AddRef();
        Ref<JsonTape> self(this);
        return Ref<IObject>(new JsonTapeObject(std::move(self), leaf));
    }
    default:
        return Ref<IObject>(new ObjectNull());
    }
}

Ref<IObject> JsonTape::MakeValue(element made) {
    if (!made.is_array()) {
        return MakeLeaf(made);
    }
    std::vector<OpenArray> open;
    open.emplace_back(made.get_array().value_unsafe());
    for (;;) {
        OpenArray& current = open.back();
        Ref<IObject> item;
        if (!(current.next != current.end)) {
            item = Ref<IObject>(new ObjectArray(std::move(current.items)));
            open.pop_back();
            if (open.empty()) {
                return item;
            }
        } else {
            const element next = *current.next;
            ++current.next;
            if (next.is_array()) {
                open.emplace_back(next.get_array().value_unsafe());
                continue;
            }
            item = MakeLeaf(next);
        }
        open.back().items.push_back(item.Get());
        item.Detach();
    }
}

void AppendJson(std::string& out, element written) {
    std::vector<OpenElement> open;
    const auto append = [&](element item) {
        if (item.is_object() || item.is_array()) {
            open.emplace_back(item);
            out += open.back().GetOpening();
        } else {
            AppendLeaf(out, item);
        }
    };
    append(written);
    while (!open.empty()) {
        if (open.back().HasMore()) {
            append(open.back().Next(out));
        } else {
            out += open.back().GetClosing();
            open.pop_back();
        }
    }
}

} // namespace OrvUQL::Tool
