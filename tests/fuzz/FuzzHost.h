// The host that fuzzed queries run in, and what must hold for each of them.
#pragma once

#include "support/Ref.h"

#include <optional>
#include <string>

namespace OrvUQL::Tests {

/// A host value with members for every kind of value. The first letter of a member's name says which:
///
///     n null, b bool, i int, d double, s text, a array, u length, r the record itself,
///     e a failure with an error, anything else a failure without
///
/// and the second picks one of its kind: @i, @i1, @a3. Those that begin with v are properties, which are read without
/// an object: @vb, @vi, @vd, @vs, @vn, @va, and @vv, which is of another kind each time that it is read.
class FuzzRecord : public ObjectBase {
public:
    explicit FuzzRecord(IUnitFactory& units);

    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"record"); }
    OrvStringT ToString() const override { return ORV_TEXT(L"12.5"); }
    using ObjectBase::ToString;
    const MethodMap* GetMethodMap() const override;

    /// What @vv gives next is its first value again.
    void Rewind() { reads = 0; }

private:
    const MethodMap* _GetMethodMap() const;
    std::optional<OrvStringT> GetNothing() const { return std::nullopt; }
    IObject* GetArray() const { return arrays[1].Share(); }
    PropertyValue GetNext() const;
    IObject* Method_Member(QueryEngine* engine, const OrvStringT& name, const ObjectList& params, IError** err);

    Ref<IObject> bools[2];
    Ref<IObject> ints[8];
    Ref<IObject> doubles[8];
    Ref<IObject> texts[8];
    Ref<IObject> arrays[4];
    Ref<IObject> lengths[4];
    Ref<IObject> null;
    bool truth = true;
    int number = 41;
    double fraction = 2.75;
    OrvStringT text = ORV_TEXT(L"17");
    mutable unsigned reads = 0;
};

class FuzzHost {
public:
    FuzzHost();

    /// Parses a query and, if it is one, evaluates it in several ways that must come to the same; the engine must be as
    /// it was and no memory be kept.
    void CheckQuery(const OrvStringT& query);

    /// The same for parsing alone.
    void CheckParse(const OrvStringT& query);

private:
    Ref<IQueryElement> Parse(const OrvStringT& query);
    void CheckPrinted(const OrvStringT& query, const IQueryElement& tree);
    void CheckEvaluation(const OrvStringT& query, IQueryElement& tree);
    std::string Evaluate(IQueryElement& tree, bool quietly = false);

    QueryEngine engine;
    Ref<FuzzRecord> record;
};

} // namespace OrvUQL::Tests
