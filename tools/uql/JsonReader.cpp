#include "JsonReader.h"

#include "JsonListObject.h"
#include "JsonSyntax.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <vector>

namespace OrvUQL::Tool {

namespace {

using NameId = std::uint32_t;

struct NameIdsHash {
    std::size_t operator()(const std::vector<NameId>& ids) const noexcept {
        std::size_t hash = ids.size();
        for (const NameId id : ids) {
            hash = (hash ^ id) * std::size_t{0x9E3779B97F4A7C15u};
            hash ^= hash >> 29;
        }
        return hash;
    }
};

/// The names seen so far, and the lists of names that objects had.
class Names {
public:
    /// The number of a name.
    NameId GetId(const std::string& name) {
        if (const auto found = ids.find(name); found != ids.end()) {
            return found->second;
        }
        texts.push_back(OrvStringT::FromUtf8(name));
        const NameId id = static_cast<NameId>(texts.size() - 1);
        ids.emplace(name, id);
        return id;
    }

    Ref<JsonKeys> GetKeys(const NameId* first, const NameId* last) {
        wanted.assign(first, last);
        if (const auto found = lists.find(wanted); found != lists.end()) {
            found->second->AddRef();
            return Ref<JsonKeys>(found->second.Get());
        }
        std::vector<OrvStringT> written;
        written.reserve(wanted.size());
        for (const NameId id : wanted) {
            written.push_back(texts[id]);
        }
        Ref<JsonKeys> keys(new JsonKeys(written));
        if (wanted.size() <= longestShared) {
            keys->AddRef();
            lists.emplace(wanted, Ref<JsonKeys>(keys.Get()));
        }
        return keys;
    }

    /// To be called between documents: objects may be maps whose names never come again, and an input may be endless.
    void ForgetIfMany() {
        if (texts.size() > mostNames || lists.size() > mostLists) {
            lists.clear();
            ids.clear();
            texts.clear();
        }
    }

private:
    static constexpr std::size_t longestShared = 256;
    static constexpr std::size_t mostNames = 10'000;
    static constexpr std::size_t mostLists = 1'000;

    std::unordered_map<std::string, NameId> ids;
    std::vector<OrvStringT> texts;
    std::unordered_map<std::vector<NameId>, Ref<JsonKeys>, NameIdsHash> lists;
    std::vector<NameId> wanted;
};

/// The bracket that opens one level too many: the parser does not tell where it is. Up to there all is well.
std::size_t FindDeepestBracket(std::string_view document) {
    std::size_t depth = 0;
    bool isInString = false;
    for (std::size_t place = 0; place < document.size(); ++place) {
        const char c = document[place];
        if (c == '"') {
            isInString = !isInString;
        } else if (isInString) {
            place += c == '\\' ? 1 : 0;
        } else if (c == '{' || c == '[') {
            if (depth++ == deepestJson) {
                return place;
            }
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return document.size();
}

} // namespace

/// Receives the parser's events and puts the value together from the inside out.
class JsonReader::Builder final : public nlohmann::json_sax<nlohmann::json> {
public:
    Builder() = default;
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;
    ~Builder() override { Clear(); }

    /// After a document that was read to its end.
    Ref<IObject> TakeResult() {
        Ref<IObject> result(values.back());
        values.pop_back();
        return result;
    }

    JsonError GetError(std::string_view document) const {
        return isTooDeep ? JsonError{FindDeepestBracket(document), error.message} : error;
    }

    /// To be called before each document: a failed one leaves its pieces behind. What is kept is the room for them.
    void Clear() noexcept {
        for (IObject* const value : values) {
            ReleaseNested(value);
        }
        values.clear();
        keyIds.clear();
        open.clear();
        isTooDeep = false;
        names.ForgetIfMany();
    }

    bool null() override { return Add(new ObjectNull()); }
    bool boolean(bool value) override { return Add(new ObjectBool(value)); }
    bool number_integer(number_integer_t value) override {
        if (value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max()) {
            return Add(new ObjectInt(static_cast<int>(value)));
        }
        return Add(new ObjectDouble(static_cast<double>(value)));
    }
    bool number_unsigned(number_unsigned_t value) override {
        if (value <= static_cast<number_unsigned_t>(std::numeric_limits<int>::max())) {
            return Add(new ObjectInt(static_cast<int>(value)));
        }
        return Add(new ObjectDouble(static_cast<double>(value)));
    }
    bool number_float(number_float_t value, const string_t&) override { return Add(new ObjectDouble(value)); }
    bool string(string_t& value) override { return Add(new ObjectString(OrvStringT::FromUtf8(value))); }
    bool binary(binary_t&) override { return false; } // JSON text has none

    bool start_object(std::size_t) override { return Open(); }
    bool key(string_t& name) override {
        keyIds.push_back(names.GetId(name));
        return true;
    }
    bool end_object() override {
        const Opened opened = open.back();
        open.pop_back();
        Ref<JsonKeys> keys = names.GetKeys(keyIds.data() + opened.firstKey, keyIds.data() + keyIds.size());
        keyIds.resize(opened.firstKey);
        ObjectList members;
        members.reserve(keys->GetCount());
        for (std::size_t place = opened.firstValue; place < values.size(); ++place) {
            IObject* const value = values[place];
            values[place] = nullptr;
            const std::size_t member = keys->GetMember(place - opened.firstValue);
            if (member == members.size()) {
                members.push_back(value);
            } else { // the name came before: the last value counts
                Ref<IObject> replaced(std::exchange(members[member], value));
            }
        }
        values.resize(opened.firstValue);
        return Add(new JsonListObject(std::move(keys), std::move(members)));
    }
    bool start_array(std::size_t) override { return Open(); }
    bool end_array() override {
        const Opened opened = open.back();
        open.pop_back();
        ObjectList items;
        items.reserve(values.size() - opened.firstValue);
        for (std::size_t place = opened.firstValue; place < values.size(); ++place) {
            items.push_back(values[place]);
        }
        values.resize(opened.firstValue);
        return Add(new ObjectArray(std::move(items)));
    }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::json::exception& exception) override {
        // "[json.exception.parse_error.101] parse error at line 1, column 2: what is wrong": the place is told by us,
        // who know where the document stands in its file.
        const std::string_view what = exception.what();
        const std::size_t place = what.find("] ");
        std::string_view message = place == std::string_view::npos ? what : what.substr(place + 2);
        if (message.substr(0, 11) == "parse error") {
            const std::size_t colon = message.find(": ");
            message = colon == std::string_view::npos ? message : message.substr(colon + 2);
        }
        error.offset = position == 0 ? 0 : position - 1;
        error.message = message;
        return false;
    }

private:
    struct Opened {
        std::size_t firstValue;
        std::size_t firstKey;
    };

    bool Open() {
        if (open.size() == deepestJson) {
            error.message = "nested deeper than " + std::to_string(deepestJson) + " levels";
            isTooDeep = true;
            return false;
        }
        open.push_back({values.size(), keyIds.size()});
        return true;
    }

    bool Add(IObject* value) {
        Ref<IObject> owned(value);
        values.push_back(value);
        owned.Detach();
        return true;
    }

    Names names;
    JsonError error;
    std::vector<IObject*> values; // complete ones, of all that is open
    std::vector<NameId> keyIds;   // of all objects that are open
    std::vector<Opened> open;
    bool isTooDeep = false;
};

JsonReader::JsonReader() : builder(std::make_unique<Builder>()) {}
JsonReader::~JsonReader() = default;

Ref<IObject> JsonReader::Read(std::string_view document, JsonError& error) {
    builder->Clear();
    if (!nlohmann::json::sax_parse(document.data(), document.data() + document.size(), builder.get())) {
        error = builder->GetError(document);
        return Ref<IObject>();
    }
    return builder->TakeResult();
}

JsonPlace FindJsonError(const JsonError& error, std::string_view text, JsonPlace begin) {
    const std::string_view before = text.substr(0, error.offset);
    const std::size_t lineBreak = before.rfind('\n');
    return {begin.line + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')),
            lineBreak == std::string_view::npos ? begin.column + before.size() : before.size() - lineBreak};
}

std::string DescribeJsonError(const JsonError& error, std::string_view text) {
    const JsonPlace place = FindJsonError(error, text);
    return "line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ": " + error.message;
}

} // namespace OrvUQL::Tool
