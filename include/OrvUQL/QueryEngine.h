// The one object a host creates to run queries.
#pragma once

#include "OrvUQL/EvaluationLimits.h"
#include "OrvUQL/Object.h"
#include "OrvUQL/QueryElement.h"
#include "OrvUQL/Unit.h"

#include <vector>

namespace OrvUQL {

namespace detail {
struct CallSite;
struct EngineAccess;
} // namespace detail

namespace platform {
class Meter;
}

namespace detail {

/// What an engine does about an evaluation as a whole. A copy has the same settings, and nothing under way.
struct EvaluationState {
    EvaluationState() noexcept = default;
    EvaluationState(const EvaluationState& other) noexcept { *this = other; }
    EvaluationState& operator=(const EvaluationState& other) noexcept {
        isWatched = other.isWatched;
        isLimited = other.isLimited;
        releasesKept = other.releasesKept;
        limits = other.limits;
        return *this;
    }

    bool isWatched = false; ///< one of the next two
    bool isLimited = false;
    bool releasesKept = false;
    int depth = 0; ///< of the evaluations that are under way inside each other
    EvaluationLimits limits;
    EvaluationUsage usage;            ///< of the last one with limits
    platform::Meter* meter = nullptr; ///< of the one with limits that is under way
    std::vector<IObject*> kept;       ///< references to be given back when it ends
};

} // namespace detail

/// Parses queries, evaluates them, and carries what names in a query stand for. One engine serves one thread at a time.
///
///     QueryEngine engine;
///     ObjectGlobal* global = new ObjectGlobal();
///     engine.SetGlobal(global);
///     global->Release();
///     IError* error = nullptr;
///     IQueryElement* query = engine.ParseQuery(L"sqrt(@width ^ 2 + @height ^ 2)", &error);
///     for (each record) { engine.SetPropertySource(record); IObject* value = engine.Evaluate(query, &error); ... }
///     query->Release();
class ORVUQL_API QueryEngine {
public:
    QueryEngine() noexcept;
    /// Copies pointers and takes no references, deliberately: the copy is a view of the same objects, and only one
    /// engine of such a pair may be destroyed while it holds them.
    QueryEngine(const QueryEngine& other) = default;
    /// As the copy constructor; the target's earlier objects are not released.
    QueryEngine& operator=(const QueryEngine& other) = default;
    /// Releases the catalogues, the group-parent stack and the variable stack from the top, then global, property
    /// source, group parent and variable.
    virtual ~QueryEngine();

    /// Parses a NUL-terminated text. Returns the tree with one reference, or null with "Error parsing query: %1 at
    /// position %2" (1-based), or with the conversion's own error for a number that cannot be read.
    IQueryElement* ParseQuery(const wchar_t* text, IError** err);
    /// Evaluates a tree, which must not be null. Returns the value with a reference, or null on failure.
    IObject* Evaluate(IQueryElement* element, IError** err);
    /// The same for a host that wants a scalar or a text: the value, converted as its own ToBool(), ToInt(), ToDouble()
    /// or ToString() does, without an object for it where it needs none. False on failure of the evaluation, or of the
    /// conversion, with its error; `out` is then unchanged.
    bool EvaluateTo(IQueryElement* element, bool& out, IError** err);
    bool EvaluateTo(IQueryElement* element, int& out, IError** err);
    bool EvaluateTo(IQueryElement* element, double& out, IError** err);
    bool EvaluateTo(IQueryElement* element, OrvStringT& out, IError** err);
    /// 0-based position, in code units of the query text, of the last parse error or of the innermost element whose
    /// evaluation failed; -1 if the last ParseQuery() or Evaluate() succeeded.
    int GetErrorPosition() const noexcept { return errorPosition; }

    /// Bounds for each evaluation from the next one on. Where one is exceeded the evaluation fails with "Evaluation
    /// limit exceeded: steps", "memory" or "time", or with "Evaluation cancelled", and stays failed until the outermost
    /// call of Evaluate() or EvaluateTo() has returned, whatever the query's methods put up with. There are none at
    /// first; ClearLimits() takes them away. An evaluation with limits takes a few times as long, one without them no
    /// longer than ever.
    ///
    /// Host objects see such an end as they see the end of memory: what they ask for fails, and making a value throws
    /// std::bad_alloc, which may pass through them.
    void SetLimits(const EvaluationLimits& newLimits) noexcept;
    void ClearLimits() noexcept;
    /// What the evaluation with limits that is under way has taken by now, or else the last one. To count without a
    /// bound, set the limits that EvaluationLimits has at first.
    EvaluationUsage GetUsage() const noexcept;

    /// The references that the array methods AddArray and Unique take and never give back: if true, they are given back
    /// when the outermost call of Evaluate() or EvaluateTo() is over. False at first, and for hosts that rely on it
    /// that items of theirs stay alive.
    void SetReleaseKeptReferences(bool release) noexcept;
    bool GetReleaseKeptReferences() const noexcept { return state.releasesKept; }

    /// The object of bare names, borrowed.
    IObject* GetGlobal() const noexcept { return global; }
    /// The object of names written with "@", borrowed.
    IObject* GetPropertySource() const noexcept { return propertySource; }
    /// The object of names with a leading ".", borrowed.
    IObject* GetGroupParent() const noexcept { return groupParent; }
    /// The object of names written with "$", borrowed.
    IObject* GetVariable() const noexcept { return variable; }
    /// The setters release the slot's object first and then take a reference to the new one (null: none): an object
    /// that is set again must have another owner.
    void SetGlobal(IObject* object);
    void SetPropertySource(IObject* object);
    void SetGroupParent(IObject* object);
    void SetVariable(IObject* object);

    /// Puts the slot's object aside and sets the new one, to which it takes a reference. False, with nothing changed,
    /// where memory ends. Each push needs its pop.
    bool PushGroupParent(IObject* object);
    bool PushVariable(IObject* object);
    /// Releases the slot's object and brings the one put aside last back; null if there is none.
    void PopGroupParent();
    void PopVariable();

    /// Decimal places to which unit values count as equal; 0 at first: one whole unit of the finer operand.
    int GetUnitPrecision() const noexcept { return unitPrecision; }
    void SetUnitPrecision(int precision) noexcept { unitPrecision = precision; }
    /// Appends a catalogue and takes a reference; null is ignored. False where memory ends.
    bool AddUnitFactory(IUnitFactory* factory);
    /// The first catalogue's answer, in the order of their adding, with a reference; null if none knows the name.
    IUnitDefinition* FindUnit(const wchar_t* name) const;

    /// The type by which an operator treats a pair of operands (both borrowed): the first that either has of null,
    /// global object, unit, string, double, int, bool; else TypeGlobal, which stands for any other object too.
    IObject::EType GetOperandType(IObject* left, IObject* right) const;
    /// Brings two values, of which one is a unit, to comparable units. Each holds a reference, released through
    /// `GetObject()->Release()`. False on failure, with nothing handed out.
    bool GetUnitOperands(IObject* left, IObject* right, IUnit** leftUnit, IUnit** rightUnit, IError** err) const;
    /// Compares two values (borrowed). True with the verdict in `result`, or false on failure.
    bool CompareObjects(EOperType op, IObject* left, IObject* right, bool& result, IError** err) const;

    /// Releases `object` if it is not null and sets it to null.
    static void ReleaseObject(IObject*& object);
    /// Takes a reference to `object` if it is not null.
    static void AddRefObject(IObject* object);

protected:
    bool CompareStrings(EOperType op, const OrvStringT& a, const OrvStringT& b) const;
    /// OperEqual and OperNotEqual allow the tolerance, OperStrictEqual never does; with a NaN every verdict is false.
    bool CompareDoubles(EOperType op, double a, double b, double tolerance) const;
    bool CompareInts(EOperType op, int a, int b) const;

private:
    friend struct detail::EngineAccess;

    template <class Out> bool EvaluateAs(IQueryElement* element, Out& out, IError** err);
    template <class Out> static bool ConvertAs(detail::Value value, Out& out, IError** err);
    bool FailAtRoot(const IQueryElement* element) noexcept;
    ORVUQL_NOINLINE IObject* EvaluateWatched(IQueryElement* element, IError** err);
    template <class Out> ORVUQL_NOINLINE bool EvaluateWatchedAs(IQueryElement* element, Out& out, IError** err);

    std::vector<IUnitFactory*> unitFactories;
    std::vector<IObject*> groupParentStack;
    std::vector<IObject*> variableStack;
    IObject* global = nullptr;
    IObject* propertySource = nullptr;
    IObject* groupParent = nullptr;
    IObject* variable = nullptr;
    int unitPrecision = 0;
    int errorPosition = -1;
    detail::EvaluationState state;
    const detail::CallSite* callSite = nullptr;
    std::vector<const IQueryElement*> spine;
    IObject* none = nullptr; // where a call that has a parent looks for the object of one that has none
};

} // namespace OrvUQL
