#include "fuzz/FuzzHost.h"

#include "fuzz/DecoratedTree.h"
#include "fuzz/Fuzzing.h"
#include "parser/TreeDump.h"
#include "support/QueryPrinter.h"

#include <climits>
#include <iterator>
#include <limits>

namespace OrvUQL::Tests {

namespace {

constexpr int intValues[] = {0, 1, 2, -1, 7, 65536, INT_MAX, INT_MIN};
constexpr double doubleValues[] = {0.0, -0.0, 0.5, -2.5, 1e300, 3e9, 1e-310, std::numeric_limits<double>::infinity()};
constexpr const wchar_t* textValues[] = {L"",     L"a",     L"12",          L" 1.5 ",
                                         L"TRUE", L"a,b,a", L"stra\u00dfe", L"\xd83d\xde00x"};

bool MentionsName(const OrvStringT& query, const wchar_t* lowerCaseName) {
    OrvStringT text = query;
    text.MakeLower();
    return text.View().find(lowerCaseName) != std::wstring_view::npos;
}

} // namespace

FuzzRecord::FuzzRecord(IUnitFactory& units) {
    bools[0] = Ref<IObject>(new ObjectBool(false));
    bools[1] = Ref<IObject>(new ObjectBool(true));
    for (std::size_t index = 0; index < std::size(intValues); ++index) {
        ints[index] = Ref<IObject>(new ObjectInt(intValues[index]));
        doubles[index] = Ref<IObject>(new ObjectDouble(doubleValues[index]));
        texts[index] = Ref<IObject>(new ObjectString(textValues[index]));
    }
    null = Ref<IObject>(new ObjectNull());
    int power = -1;
    for (Ref<IObject>& length : lengths) {
        const Ref<IUnitDefinition> definition(units.FindUnit(power % 2 == 0 ? L"mm" : L"in"));
        length = Ref<IObject>(new ObjectUnit(definition.Get(), 2.5, power++, true));
    }
    arrays[0] = Ref<IObject>(new ObjectArray(ObjectList{}));
    arrays[1] = Ref<IObject>(new ObjectArray(ObjectList{ints[1].Share(), texts[1].Share(), null.Share()}));
    arrays[2] = Ref<IObject>(new ObjectArray(
        ObjectList{lengths[1].Share(), lengths[2].Share(), doubles[1].Share(), doubles[0].Share(), bools[1].Share()}));
    ObjectList many;
    for (int index = 0; index < 40; ++index) {
        many.push_back(new ObjectInt(index % 7));
        many.push_back(texts[static_cast<std::size_t>(index) % 8].Share());
    }
    many.push_back(arrays[1].Share());
    arrays[3] = Ref<IObject>(new ObjectArray(many));
}

const ObjectBase::MethodMap* FuzzRecord::GetMethodMap() const { return _GetMethodMap(); }

const ObjectBase::MethodMap* FuzzRecord::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Property<&FuzzRecord::truth>(L"vb"),         MethodMap::Property<&FuzzRecord::number>(L"vi"),
        MethodMap::Property<&FuzzRecord::fraction>(L"vd"),      MethodMap::Property<&FuzzRecord::text>(L"vs"),
        MethodMap::Property<&FuzzRecord::GetNothing>(L"vn"),    MethodMap::Property<&FuzzRecord::GetArray>(L"va"),
        MethodMap::Property<&FuzzRecord::GetNext>(L"vv"),       MethodMap::Chain(&FuzzRecord::ObjectBaseMethods),
        MethodMap::CatchAll(L"o*", &FuzzRecord::Method_Member), MethodMap::End(),
    };
    return table;
}

PropertyValue FuzzRecord::GetNext() const {
    switch (reads++ % 6) {
    case 0:
        return PropertyValue(3);
    case 1:
        return PropertyValue(text);
    case 2:
        return PropertyValue(0.25);
    case 3:
        return PropertyValue(GetArray());
    case 4:
        return PropertyValue(true);
    default:
        return PropertyValue();
    }
}

IObject* FuzzRecord::Method_Member(QueryEngine*, const OrvStringT& name, const ObjectList&, IError** err) {
    const std::wstring_view member = name.View();
    const auto one = [&](auto& values) {
        const std::size_t digit = member.size() > 1 ? static_cast<std::size_t>(member[1]) : 0;
        return values[digit % std::size(values)].Share();
    };
    switch (member.empty() ? L' ' : member[0]) {
    case L'n':
        return null.Share();
    case L'b':
        return one(bools);
    case L'i':
        return one(ints);
    case L'd':
        return one(doubles);
    case L's':
        return one(texts);
    case L'a':
        return one(arrays);
    case L'u':
        return one(lengths);
    case L'r':
        AddRef();
        return this;
    case L'e':
        if (err != nullptr) {
            *err = Error::Create(L"The record has no '%1'", name.GetString());
        }
        return nullptr;
    default:
        return nullptr;
    }
}

FuzzHost::FuzzHost() {
    const Ref<ObjectGlobal> global = Make<ObjectGlobal>();
    engine.SetGlobal(global.Get());
    const Ref<LinearDimensionUnits> units = Make<LinearDimensionUnits>(0.0);
    engine.AddUnitFactory(units.Get());
    record = Make<FuzzRecord>(*units);
    engine.SetPropertySource(record.Get());
    engine.SetVariable(record.Get());
}

Ref<IQueryElement> FuzzHost::Parse(const OrvStringT& query) {
    const std::string shown = Utf8(query);
    ErrorSlot error;
    Ref<IQueryElement> tree(engine.ParseQuery(query.GetString(), error.Slot()));
    const int position = engine.GetErrorPosition();
    Expect(static_cast<bool>(tree) == error.IsEmpty(), "a tree and an error, or neither", shown);
    Expect(tree ? position == -1 : position >= 0 && position <= query.GetLength(), "a wrong error position", shown);
    const Ref<IQueryElement> quiet(engine.ParseQuery(query.GetString(), nullptr));
    Expect(static_cast<bool>(tree) == static_cast<bool>(quiet), "parses only with or without an error", shown);
    Expect(engine.GetErrorPosition() == position, "the error position depends on the error", shown);
    return tree;
}

void FuzzHost::CheckPrinted(const OrvStringT& query, const IQueryElement& tree) {
    const std::optional<OrvStringT> printed = PrintQuery(tree);
    Expect(printed.has_value(), "a parsed tree that is no query", Utf8(query));
    ErrorSlot error;
    const Ref<IQueryElement> again(engine.ParseQuery(printed->GetString(), error.Slot()));
    Expect(static_cast<bool>(again), "the printed query does not parse", Utf8(query) + "\n" + Utf8(*printed));
    ExpectSame(Dump(&tree), Dump(again.Get()), "the printed query is another", Utf8(query) + "\n" + Utf8(*printed));
}

std::string FuzzHost::Evaluate(IQueryElement& tree, bool quietly) {
    ErrorSlot error;
    IObject* const source = engine.GetPropertySource();
    record->Rewind();
    const Ref<IObject> value(engine.Evaluate(&tree, quietly ? nullptr : error.Slot()));
    Expect(engine.GetVariable() == source && engine.GetGroupParent() == nullptr,
           "the engine's stacks are not as before");
    Expect(!value || error.IsEmpty(), "a value and an error");
    Expect(value ? engine.GetErrorPosition() == -1 : engine.GetErrorPosition() >= 0, "a wrong error position");
    if (!value) {
        return "! " + (quietly ? std::string() : error.Message());
    }
    OrvStringT text;
    const bool hasText = value->ToString(text, nullptr);
    return Utf8(value->GetTypeName()) + (hasText ? " " + Utf8(text) : std::string());
}

void FuzzHost::CheckEvaluation(const OrvStringT& query, IQueryElement& tree) {
    const std::string shown = Utf8(query);
    const std::string first = Evaluate(tree);
    const int position = engine.GetErrorPosition();
    const std::string second = Evaluate(tree);
    const std::string quiet = Evaluate(tree, true);
    const Ref<IQueryElement> decorated(Decorate(&tree));
    const std::string plain = Evaluate(*decorated);
    const int plainPosition = engine.GetErrorPosition();
    // Chance, and a stack or a memory that ends at another place, are no mistakes.
    const std::string_view ended = "! Internal error";
    if (MentionsName(query, L"rnd") || first == ended || second == ended || plain == ended) {
        return;
    }
    ExpectSame(first, second, "evaluated twice", shown);
    ExpectSame(first.substr(0, 2) == "! " ? "! " : first, quiet, "evaluated without an error", shown);
    ExpectSame(first, plain, "evaluated node by node", shown);
    Expect(position == plainPosition, "the error's position, evaluated node by node", shown);
}

void FuzzHost::CheckParse(const OrvStringT& query) {
    const auto check = [&] {
        const BoundedMemory memory;
        const Ref<IQueryElement> tree = Parse(query);
        if (tree) {
            CheckPrinted(query, *tree);
        }
    };
    ExpectNoLeak(check, Utf8(query));
}

void FuzzHost::CheckQuery(const OrvStringT& query) {
    CheckParse(query);
    const auto check = [&] {
        const BoundedMemory memory;
        const Ref<IQueryElement> tree = Parse(query);
        if (tree) {
            try {
                CheckEvaluation(query, *tree);
            } catch (const std::bad_alloc&) {
                // The check's own texts.
                Expect(memory.HasEnded(), "an exception");
            }
        }
    };
    // These two keep references on purpose.
    if (MentionsName(query, L"unique") || MentionsName(query, L"addarray")) {
        check();
    } else {
        ExpectNoLeak(check, Utf8(query));
    }
}

} // namespace OrvUQL::Tests
