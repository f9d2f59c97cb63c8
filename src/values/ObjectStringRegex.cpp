// The methods of strings that take a regular expression. Each one's last argument says whether case matters; it does
// unless told otherwise.

#include "OrvUQL/ObjectString.h"
#include "OrvUQL/Scalars.h"

#include "core/EngineAccess.h"
#include "core/Failure.h"
#include "platform/CaseMap.h"
#include "platform/Regex.h"
#include "values/ItemList.h"

#include <memory>
#include <new>
#include <vector>

namespace OrvUQL {

namespace {

using platform::Regex;
using platform::RegexMatcher;
using platform::RegexSpan;
using std::regex_constants::syntax_option_type;

constexpr syntax_option_type withoutGroups =
    std::regex_constants::ECMAScript | std::regex_constants::nosubs | std::regex_constants::collate;
constexpr syntax_option_type withGroups = std::regex_constants::ECMAScript | std::regex_constants::collate;

/// Runs what works on patterns and texts alone; null, or what stands for it, with an error where that fails. Nothing
/// that a host wrote may run inside: what it throws would be taken for the matcher's.
template <class Body> auto Matching(IError** err, Body&& body) -> decltype(body()) {
    try {
        return body();
    } catch (const std::regex_error& error) {
        if (err != nullptr) {
            *err = Error::Create(error);
        }
        return decltype(body())();
    }
}

/// What the methods have in common: a pattern first, and whether case matters last.
struct PatternArguments {
    OrvStringT pattern;
    bool matchCase = true;

    bool Read(const ObjectList& params, std::size_t expected, IError** err) {
        if (params.size() != expected || params[0] == nullptr || !params[0]->ToString(pattern, err)) {
            return false;
        }
        const IObject* const flag = params[expected - 1];
        return flag == nullptr || flag->ToBool(matchCase, err);
    }

    Regex Compile(syntax_option_type options) const {
        return OrvUtils::String::CreateRegEx(pattern, matchCase ? options : options | std::regex_constants::icase);
    }
};

IObject* MakeTextArray(std::vector<OrvStringT>&& texts) {
    ItemList items;
    for (OrvStringT& text : texts) {
        items.AddText(std::move(text));
    }
    return items.MakeArray();
}

OrvStringT PartOf(const OrvStringT& text, const RegexSpan& span) {
    return text.Mid(static_cast<int>(span.start), static_cast<int>(span.length));
}

/// The array is the engine's variable as long as this lives.
class VariableScope {
public:
    /// Takes the reference over; the engine takes its own.
    VariableScope(QueryEngine* queryEngine, IObject* taken) : engine(queryEngine) {
        const Reference<IObject> object(taken);
        if (!engine->PushVariable(object.Get())) {
            throw std::bad_alloc();
        }
    }
    VariableScope(const VariableScope&) = delete;
    VariableScope& operator=(const VariableScope&) = delete;
    ~VariableScope() { engine->PopVariable(); }

private:
    QueryEngine* engine;
};

} // namespace

IObject* ObjectString::Method_RegMatchContains(QueryEngine*, const OrvStringT& name, const ObjectList& params,
                                               IError** err) {
    PatternArguments arguments;
    if (!arguments.Read(params, 2, err)) {
        return nullptr;
    }
    return Matching(err, [&]() -> IObject* {
        const Regex expression = arguments.Compile(withoutGroups);
        const bool wholeText = platform::EqualsIgnoreCase(name, L"regmatch");
        return new ObjectBool(wholeText ? OrvUtils::String::MatchRegEx(value, expression)
                                        : OrvUtils::String::SearchRegEx(value, expression));
    });
}

IObject* ObjectString::Method_RegMatchContainsEx(QueryEngine*, const OrvStringT& name, const ObjectList& params,
                                                 IError** err) {
    PatternArguments arguments;
    if (!arguments.Read(params, 2, err)) {
        return nullptr;
    }
    return Matching(err, [&]() -> IObject* {
        const Regex expression = arguments.Compile(withGroups);
        std::vector<OrvStringT> groups; // stays empty without a match
        if (platform::EqualsIgnoreCase(name, L"regmatchex")) {
            OrvUtils::String::MatchRegEx(value, groups, expression);
        } else {
            OrvUtils::String::SearchRegEx(value, groups, expression);
        }
        return MakeTextArray(std::move(groups));
    });
}

IObject* ObjectString::Method_RegReplace(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    PatternArguments arguments;
    if (!arguments.Read(params, 3, err)) {
        return nullptr;
    }
    return Matching(err, [&]() -> IObject* {
        const Regex expression = arguments.Compile(withGroups);
        OrvStringT format;
        if (params[1] == nullptr || !params[1]->ToString(format, err)) {
            return nullptr;
        }
        return new ObjectString(OrvUtils::String::ReplaceRegEx(value, expression, format));
    });
}

/// The variable of the expression is the array of the match's groups itself and not an iterator, deliberately unlike in
/// the methods of arrays.
IObject* ObjectString::Method_RegReplaceEx(QueryEngine* engine, const OrvStringT&, const ObjectList& params,
                                           IError** err) {
    PatternArguments arguments;
    if (!arguments.Read(params, 3, err)) {
        return nullptr;
    }
    const OrvStringT subject = value;
    const auto matcher =
        Matching(err, [&] { return std::make_unique<RegexMatcher>(arguments.Compile(withGroups), subject.View()); });
    const IQueryElement* const expression = GetQueryElement(params[1]);
    if (matcher == nullptr || expression == nullptr) {
        return nullptr;
    }
    enum class Step : unsigned char { Failed, Match, End };
    const auto next = [&] { return matcher->Next() ? Step::Match : Step::End; };
    // The variable is gone before the value is asked for its text: a host's value sees the engine as it was.
    const auto evaluate = [&] {
        const VariableScope variable(engine, MakeTextArray(OrvUtils::String::GetGroups(*matcher)));
        return Reference<IObject>(detail::EvaluateArgument(expression, engine, err));
    };
    OrvStringT out;
    Step step = Matching(err, next);
    for (; step == Step::Match; step = Matching(err, next)) {
        out += matcher->Text(matcher->Before());
        OrvStringT replacement;
        const Reference<IObject> result = evaluate();
        if (!result || !result->ToString(replacement, err)) {
            return nullptr;
        }
        out += replacement;
    }
    if (step == Step::Failed) {
        return nullptr;
    }
    out += matcher->Text(matcher->Rest());
    return new ObjectString(std::move(out));
}

/// An empty piece between two matches, or before the first, counts; one behind the last does not, deliberately.
IObject* ObjectString::Method_RegSplit(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    PatternArguments arguments;
    if (!arguments.Read(params, 2, err)) {
        return nullptr;
    }
    return Matching(err, [&]() -> IObject* {
        RegexMatcher matcher(arguments.Compile(withoutGroups), value.View());
        ItemList pieces;
        bool isSplit = false;
        for (; matcher.Next(); isSplit = true) {
            pieces.AddText(PartOf(value, matcher.Before()));
        }
        if (!isSplit || matcher.Rest().length != 0) {
            pieces.AddText(PartOf(value, matcher.Rest()));
        }
        return pieces.MakeArray();
    });
}

IObject* ObjectString::Method_RegFind(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    PatternArguments arguments;
    if (!arguments.Read(params, 2, err)) {
        return nullptr;
    }
    return Matching(err, [&]() -> IObject* {
        RegexMatcher matcher(arguments.Compile(withGroups), value.View());
        ItemList found;
        while (matcher.Next()) {
            found.Add(MakeTextArray(OrvUtils::String::GetGroups(matcher)));
        }
        return found.MakeArray();
    });
}

} // namespace OrvUQL
