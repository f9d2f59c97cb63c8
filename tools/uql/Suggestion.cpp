#include "Suggestion.h"

#include "ElementView.h"
#include "NameLists.h"
#include "NearestName.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

namespace {

// Messages of the library. It has no codes for its errors: their texts are what a host sees.
constexpr std::wstring_view notAMethod[] = {L"Identifier '", L"' is not a method of '", L"'"};
constexpr std::wstring_view unknownUnit[] = {L"Error parsing query: Unknown unit name '", L"' at position "};
constexpr std::wstring_view invalidUnit[] = {L"Invalid unit name '", L"'"};

constexpr std::wstring_view endsOfEvaluation[] = {L"Evaluation limit exceeded: ", L"Evaluation cancelled"};

/// Elements that are looked at, at most: failures of records come in millions.
constexpr int searchLimit = 1000;

/// What stands between the two in the text, which begins with `before`. False if it is not like this.
bool Extract(std::wstring_view& text, std::wstring_view before, std::wstring_view behind, OrvStringT& insert) {
    if (text.substr(0, before.size()) != before) {
        return false;
    }
    const std::size_t end = text.find(behind, before.size());
    if (end == std::wstring_view::npos) {
        return false;
    }
    insert = OrvStringT(text.substr(before.size(), end - before.size()));
    text.remove_prefix(end);
    return true;
}

OrvStringT Choose(const OrvStringT& written, const std::vector<OrvStringT>& names) {
    const OrvStringT* const nearest = FindNearestName(written, names);
    return nearest == nullptr ? OrvStringT() : *nearest;
}

/// "@" or "$" if the name at that place has one.
OrvStringT GetSign(const OrvStringT& text, int position) {
    const std::wstring_view rest = text.View().substr(std::min(static_cast<std::size_t>(position), text.View().size()));
    const bool isSigned = !rest.empty() && (rest[0] == L'@' || rest[0] == L'$');
    return OrvStringT(rest.substr(0, isSigned ? 1 : 0));
}

OrvStringT SuggestMethod(const FailedQuery& failure, const OrvStringT& written, const OrvStringT& typeName) {
    const QueryEngine& engine = failure.engine;
    const Ref<IObject> sample = MakeSample(typeName);
    IObject* value = sample.Get();
    // Of these there may be classes that nobody has a sample of.
    for (IObject* const known : {engine.GetPropertySource(), engine.GetVariable(), engine.GetGlobal()}) {
        if (known != nullptr && known->GetTypeName().Compare(typeName) == 0) {
            value = known;
        }
    }
    if (value == nullptr) {
        return OrvStringT();
    }
    std::vector<OrvStringT> names;
    for (const MethodName& method : ReadMethods(*value, &failure.engine)) {
        names.push_back(method.name);
    }
    const OrvStringT name = Choose(written, names);
    return name.IsEmpty() ? name : GetSign(failure.text, failure.position) + name;
}

OrvStringT SuggestUnit(const FailedQuery& failure, const OrvStringT& written) {
    std::vector<OrvStringT> names;
    for (const UnitName& unit : ReadUnits(0)) {
        const Ref<IUnitDefinition> known(failure.engine.FindUnit(unit.name.GetString()));
        if (known) {
            names.push_back(unit.name);
        }
    }
    return Choose(written, names);
}

/// The value of a chain of names without arguments that begins with "@", but for its last name; null for anything else.
Ref<IObject> ReadOwner(QueryEngine& engine, const ElementMethod& name) {
    for (const ElementMethod* part = &name;;) {
        if (!part->GetArguments().empty()) {
            return Ref<IObject>();
        }
        if (part->GetParent() == nullptr) {
            if (part->GetName().View().substr(0, 1) != L"@") {
                return Ref<IObject>();
            }
            break;
        }
        part = dynamic_cast<const ElementMethod*>(part->GetParent());
        if (part == nullptr) {
            return Ref<IObject>();
        }
    }
    if (name.GetParent() != nullptr) {
        return Ref<IObject>(engine.Evaluate(name.GetParent(), nullptr));
    }
    IObject* const source = engine.GetPropertySource();
    if (source != nullptr) {
        source->AddRef();
    }
    return Ref<IObject>(source);
}

/// A member that is not there is null, and what fails is what is done with that.
OrvStringT SuggestMember(QueryEngine& engine, const IQueryElement& element) {
    const auto* const name = dynamic_cast<const ElementMethod*>(&element);
    const Ref<IObject> owner = name == nullptr ? Ref<IObject>() : ReadOwner(engine, *name);
    if (!owner) {
        return OrvStringT();
    }
    std::vector<OrvStringT> names = ReadMemberNames(*owner, &engine);
    if (names.empty()) {
        return OrvStringT();
    }
    for (const MethodName& method : ReadMethods(*owner, &engine)) {
        names.push_back(method.name); // the methods of every value are no slips, whatever they are near to
    }
    const bool isSource = name->GetParent() == nullptr;
    const OrvStringT written(name->GetName().View().substr(isSource ? 1 : 0));
    const OrvStringT nearest = Choose(written, names);
    return nearest.IsEmpty() || !isSource ? nearest : OrvStringT(L"@") + nearest;
}

template <class Visit> void Search(const IQueryElement& tree, Visit&& visit) {
    std::vector<const IQueryElement*> waiting{&tree};
    for (int count = 0; !waiting.empty() && count < searchLimit; ++count) {
        const IQueryElement* const element = waiting.back();
        waiting.pop_back();
        if (visit(*element)) {
            return;
        }
        const ElementView view = ViewElement(*element);
        for (auto child = view.children.rbegin(); child != view.children.rend(); ++child) {
            if (child->element != nullptr) {
                waiting.push_back(child->element);
            }
        }
    }
}

} // namespace

OrvStringT SuggestName(const FailedQuery& failure) {
    for (const std::wstring_view end : endsOfEvaluation) {
        if (failure.message.View().substr(0, end.size()) == end) {
            return OrvStringT(); // no name would have helped
        }
    }
    OrvStringT written;
    OrvStringT typeName;
    std::wstring_view rest = failure.message.View();
    if (Extract(rest, notAMethod[0], notAMethod[1], written)) {
        return Extract(rest, notAMethod[1], notAMethod[2], typeName) ? SuggestMethod(failure, written, typeName)
                                                                     : OrvStringT();
    }
    if (Extract(rest, unknownUnit[0], unknownUnit[1], written) ||
        Extract(rest, invalidUnit[0], invalidUnit[1], written)) {
        return SuggestUnit(failure, written);
    }
    if (failure.tree == nullptr) {
        return OrvStringT();
    }
    const IQueryElement* failed = nullptr;
    Search(*failure.tree, [&](const IQueryElement& element) {
        if (element.GetStringPosition() == failure.position) {
            failed = &element;
        }
        return failed != nullptr;
    });
    OrvStringT name;
    if (failed != nullptr) {
        Search(*failed, [&](const IQueryElement& element) {
            name = SuggestMember(failure.engine, element);
            return !name.IsEmpty();
        });
    }
    return name;
}

} // namespace OrvUQL::Tool
