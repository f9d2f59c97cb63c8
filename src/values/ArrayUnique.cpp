// The items of an array without repetition.

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/QueryEngine.h"
#include "OrvUQL/Scalars.h"

#include "core/Failure.h"

#include <string_view>
#include <typeinfo>
#include <unordered_set>

namespace OrvUQL {

namespace {

template <class T> const T* Exactly(const IObject* object) noexcept {
    return typeid(*object) == typeid(T) ? static_cast<const T*>(object) : nullptr;
}

/// The kept values that are exactly the library's own scalars and texts, and those that are its arrays. The rule
/// compares a candidate with each kept value in turn; among these the answer is the same by hashing (and no two
/// arrays compare as equal), so that the time is linear for what arrays mostly hold.
class KeptIndex {
public:
    enum class Verdict {
        Known,  ///< an equal value has been kept
        Fresh,  ///< none of the indexed values is equal
        Foreign ///< not a value of these classes
    };

    /// Looks the candidate up and notes it if it is new. Borrowed texts live as long as the index.
    Verdict Note(const IObject* candidate) {
        if (candidate == nullptr) {
            return NoteFlag(emptySlot);
        }
        if (const auto* number = Exactly<ObjectInt>(candidate)) {
            return Result(ints.insert(number->GetValue()).second);
        }
        if (const auto* number = Exactly<ObjectDouble>(candidate)) {
            const double value = number->GetValue();
            return value != value ? Verdict::Fresh : Result(doubles.insert(value).second); // a NaN equals nothing
        }
        if (const auto* text = Exactly<ObjectString>(candidate)) {
            return Result(texts.insert(text->GetValue().View()).second);
        }
        if (const auto* truth = Exactly<ObjectBool>(candidate)) {
            return NoteFlag(truths[truth->GetValue() ? 1 : 0]);
        }
        if (Exactly<ObjectNull>(candidate) != nullptr) {
            return NoteFlag(null);
        }
        return Exactly<ObjectArray>(candidate) != nullptr ? Verdict::Fresh : Verdict::Foreign;
    }

private:
    static Verdict Result(bool isNew) noexcept { return isNew ? Verdict::Fresh : Verdict::Known; }
    static Verdict NoteFlag(bool& flag) noexcept { return Result(!std::exchange(flag, true)); }

    bool emptySlot = false;
    bool null = false;
    bool truths[2] = {false, false};
    std::unordered_set<int> ints;
    std::unordered_set<double> doubles;
    std::unordered_set<std::wstring_view> texts;
};

} // namespace

bool ObjectArrayBase::FindObject(QueryEngine* engine, const ObjectList& list, IObject* object) const {
    for (IObject* kept : list) {
        if (kept == nullptr || object == nullptr) {
            if (kept == object) {
                return true;
            }
            continue;
        }
        bool equal = false;
        if (kept->GetTypeName() == object->GetTypeName() &&
            engine->CompareObjects(OperStrictEqual, kept, object, equal, nullptr) && equal) {
            return true;
        }
    }
    return false;
}

IObject* ObjectArrayBase::Method_Unique(QueryEngine* engine, const OrvStringT&, const ObjectList&, IError**) {
    KeptIndex index;
    ObjectList kept;
    ObjectList foreign; // the kept values that only the rule itself can compare
    struct Borrow {
        ObjectList& list;
        ~Borrow() { list.clear(); } // their references are those of `kept`
    } borrow{foreign};
    for (int position = 0; position < GetCount(); ++position) {
        // The reference that GetItem gives is never given back, neither for a kept item nor for a repeated one. Hosts
        // rely on it that items of theirs stay alive; deliberately kept.
        IObject* const candidate = GetItem(position);
        const KeptIndex::Verdict verdict = index.Note(candidate);
        if (verdict == KeptIndex::Verdict::Known) {
            continue;
        }
        const bool isForeign = verdict == KeptIndex::Verdict::Foreign;
        if (FindObject(engine, isForeign ? kept : foreign, candidate)) {
            continue;
        }
        kept.push_back(candidate);
        if (candidate != nullptr) {
            candidate->AddRef();
        }
        if (isForeign) {
            foreign.push_back(candidate);
        }
    }
    return new ObjectArray(std::move(kept));
}

} // namespace OrvUQL
