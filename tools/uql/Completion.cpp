#include "Completion.h"

#include "NameLists.h"
#include "QueryScan.h"

#include <algorithm>
#include <optional>

namespace OrvUQL::Tool {

namespace {

OrvStringT ToLower(std::string_view utf8) {
    OrvStringT text = OrvStringT::FromUtf8(utf8);
    text.MakeLower();
    return text;
}

bool IsNameByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool CanBeSpelt(const OrvStringT& name) {
    const std::string text = name.ToUtf8();
    return !text.empty() && !(text[0] >= '0' && text[0] <= '9') && std::all_of(text.begin(), text.end(), IsNameByte);
}

/// Members come before methods: they are what differs from value to value.
void AddNames(std::vector<std::string>& names, IObject& value, QueryEngine& engine) {
    for (const OrvStringT& member : ReadMemberNames(value, &engine)) {
        if (CanBeSpelt(member)) {
            names.push_back(member.ToUtf8());
        }
    }
    for (const MethodName& method : ReadMethods(value, &engine)) {
        const bool takesArguments = method.line.View().find(L"()") == std::wstring_view::npos;
        names.push_back(method.name.ToUtf8() + (takesArguments ? "(" : ""));
    }
}

/// For the time of an evaluation, what `$` stands for in an array's expression: its first item.
class ItemScope {
public:
    ItemScope(QueryEngine& queryEngine, IObject* item) : engine(queryEngine) {
        const Ref<ObjectInt> index(new ObjectInt(1));
        const Ref<ObjectNull> nothing(new ObjectNull());
        const Ref<ObjectIterator> iterator(
            new ObjectIterator(nothing.Get(), item != nullptr ? item : nothing.Get(), index.Get(), nothing.Get()));
        isPushed = engine.PushVariable(iterator.Get());
    }
    ItemScope(const ItemScope&) = delete;
    ItemScope& operator=(const ItemScope&) = delete;
    ~ItemScope() {
        if (isPushed) {
            engine.PopVariable();
        }
    }

private:
    QueryEngine& engine;
    bool isPushed = false;
};

class Completer {
public:
    Completer(QueryEngine& queryEngine, std::string_view before) : engine(queryEngine), scan(before) {}

    /// The names that can follow the token `end`, whatever they begin with.
    std::vector<std::string> GetNames(std::size_t end, char sign) {
        std::vector<std::string> names;
        if (sign == '@') {
            AddObject(names, engine.GetPropertySource());
        } else if (sign == '$') {
            const std::optional<ItemScope> scope = EnterArray(end);
            AddObject(names, engine.GetVariable());
        } else if (end > 0 && scan.IsSign(end - 1, '.')) {
            const Ref<IObject> value = EvaluateBefore(end - 1);
            AddObject(names, value.Get());
        } else if (const std::size_t bracket = scan.FindOpenBracket(end);
                   bracket != QueryScan::none && scan.IsSign(bracket, '{')) {
            AddUnits(names);
        } else {
            AddObject(names, engine.GetGlobal());
            names.insert(names.end(), {"and", "false", "not", "null", "or", "true"});
        }
        return names;
    }

    const QueryScan& GetScan() const { return scan; }

private:
    void AddObject(std::vector<std::string>& names, IObject* value) {
        if (value != nullptr) {
            AddNames(names, *value, engine);
        }
    }

    void AddUnits(std::vector<std::string>& names) {
        for (const UnitName& unit : ReadUnits(0)) {
            const Ref<IUnitDefinition> known(engine.FindUnit(unit.name.GetString()));
            if (known) {
                names.push_back(unit.name.ToUtf8());
            }
        }
    }

    /// If the token `end` stands in the arguments of a method of an array, its first item is `$item` while the result
    /// lives.
    std::optional<ItemScope> EnterArray(std::size_t end) {
        const std::size_t bracket = scan.FindOpenBracket(end);
        const bool isCall = bracket != QueryScan::none && bracket >= 2 && scan.IsSign(bracket, '(') &&
                            scan.IsName(bracket - 1) && scan.IsSign(bracket - 2, '.');
        if (!isCall) {
            return std::nullopt;
        }
        const Ref<IObject> value = EvaluateBefore(bracket - 2);
        const auto* const array = dynamic_cast<const ObjectArrayBase*>(value.Get());
        if (array == nullptr) {
            return std::nullopt;
        }
        const Ref<IObject> item(array->GetCount() > 0 ? array->GetItem(0) : nullptr);
        return std::optional<ItemScope>(std::in_place, engine, item.Get());
    }

    /// The value of what stands before the dot with that number; null if that cannot be told.
    Ref<IObject> EvaluateBefore(std::size_t dot) {
        std::size_t begin = scan.FindChain(dot);
        if (begin == QueryScan::none) {
            if (scan.EndsValue(dot)) {
                return Ref<IObject>();
            }
            begin = dot; // nothing stands before it but the group that it is in
        }
        const std::optional<std::string> chain = scan.GetChainText(begin, dot);
        if (!chain || !IsHarmless(*chain)) {
            return Ref<IObject>();
        }
        const Ref<IQueryElement> tree(engine.ParseQuery(OrvStringT::FromUtf8(*chain).GetString(), nullptr));
        if (!tree) {
            return Ref<IObject>();
        }
        // (Which looks at what stands before, and so ends.)
        const std::optional<ItemScope> scope = chain->find('$') == std::string::npos ? std::nullopt : EnterArray(begin);
        return Ref<IObject>(engine.Evaluate(tree.Get(), nullptr));
    }

    bool IsHarmless(const std::string& query) const {
        const QueryScan parts(query);
        for (const QueryToken& token : parts.GetTokens()) {
            if (token.kind != QueryToken::Word) {
                continue;
            }
            const std::string_view word = parts.GetText(token);
            const OrvStringT name = ToLower(word);
            if (name == L"repeat" || name == L"foreach" || (word[0] == '@' && IsForeign(engine.GetPropertySource())) ||
                (word[0] == '$' && IsForeign(engine.GetVariable()))) {
                return false;
            }
        }
        return true;
    }

    static bool IsForeign(const IObject* value) { return value != nullptr && value->GetType() == IObject::TypeCom; }

    QueryEngine& engine;
    QueryScan scan;
};

} // namespace

Completion CompleteQuery(QueryEngine& engine, std::string_view text, std::size_t cursor) {
    cursor = std::min(cursor, text.size());
    std::size_t begin = cursor;
    while (begin > 0 && IsNameByte(text[begin - 1])) {
        --begin;
    }
    const char sign = begin > 0 ? text[begin - 1] : '\0';
    const bool isSigned = sign == '@' || sign == '$';
    Completer completer(engine, text.substr(0, isSigned ? begin - 1 : begin));
    const bool isNumber = begin < cursor && text[begin] >= '0' && text[begin] <= '9';
    if (isNumber || completer.GetScan().EndsInString()) {
        return {cursor, {}};
    }
    return SelectNames(text, begin, cursor, completer.GetNames(completer.GetScan().GetTokens().size(), sign));
}

Completion SelectNames(std::string_view text, std::size_t begin, std::size_t cursor,
                       const std::vector<std::string>& names) {
    Completion completion{begin, {}};
    const OrvStringT wanted = ToLower(text.substr(begin, cursor - begin));
    for (const std::string& name : names) {
        const bool fits = ToLower(name).View().substr(0, wanted.View().size()) == wanted.View();
        if (fits && std::find(completion.names.begin(), completion.names.end(), name) == completion.names.end()) {
            completion.names.push_back(name);
        }
    }
    return completion;
}

std::string GetCommonBeginning(const std::vector<std::string>& names) {
    if (names.empty()) {
        return std::string();
    }
    const OrvStringT first = OrvStringT::FromUtf8(names[0]);
    const OrvStringT firstLower = ToLower(names[0]);
    std::size_t length = first.View().size();
    for (const std::string& name : names) {
        const OrvStringT other = ToLower(name);
        const auto [here, there] =
            std::mismatch(firstLower.View().begin(), firstLower.View().end(), other.View().begin(), other.View().end());
        length = std::min(length, static_cast<std::size_t>(here - firstLower.View().begin()));
    }
    return OrvStringT(first.View().substr(0, length)).ToUtf8();
}

} // namespace OrvUQL::Tool
