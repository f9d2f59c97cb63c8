// The items of an array without repetition.
//
// The rule compares each candidate with every value that has been kept, in their order, which takes time by the square
// of the count. Among the library's own scalars and texts hashing finds the same answer, in one step for each, and
// nobody can tell: only their own functions would be called. Where values of a host are among the kept ones, all
// that the rule would ask of them is asked, in its order.

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/QueryEngine.h"
#include "OrvUQL/Scalars.h"

#include "core/EngineAccess.h"
#include "platform/Meter.h"

#include <cstdint>
#include <cstring>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace OrvUQL {

namespace {

bool AreEqual(QueryEngine* engine, IObject* kept, IObject* object) {
    if (kept == nullptr || object == nullptr) {
        return kept == object;
    }
    bool equal = false;
    return kept->GetTypeName() == object->GetTypeName() &&
           engine->CompareObjects(OperStrictEqual, kept, object, equal, nullptr) && equal;
}

/// What a value equals, as far as it shows in the value alone.
struct Key {
    enum Kind {
        Scalar, ///< equals what has the same key
        Single, ///< a NaN, or an array: equals no value of the library
        Foreign ///< only the rule itself can tell
    };

    Kind kind = Foreign;
    int type = 0;           ///< the same for values of the same class
    std::uint64_t bits = 0; ///< the value, if it is no text
    std::wstring_view text; ///< borrowed

    bool operator==(const Key& other) const noexcept {
        return type == other.type && bits == other.bits && text == other.text;
    }
};

/// The key of a value that is exactly of one of the library's classes. What a host derives from them is foreign, for
/// it may answer as it likes. (So would be a library's value, did a system hold two descriptions of its class.)
Key KeyOf(const IObject& object) noexcept {
    const std::type_info* const type = &typeid(object);
    if (type == &typeid(ObjectInt)) {
        return {Key::Scalar,
                IObject::TypeInt,
                static_cast<std::uint32_t>(static_cast<const ObjectInt&>(object).GetValue()),
                {}};
    }
    if (type == &typeid(ObjectString)) {
        return {Key::Scalar, IObject::TypeString, 0, static_cast<const ObjectString&>(object).GetValue().View()};
    }
    if (type == &typeid(ObjectDouble)) {
        const double value = static_cast<const ObjectDouble&>(object).GetValue() + 0.0; // of two zeros the same one
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof(bits));
        return {value == value ? Key::Scalar : Key::Single, IObject::TypeDouble, bits, {}};
    }
    if (type == &typeid(ObjectBool)) {
        return {Key::Scalar, IObject::TypeBool, static_cast<const ObjectBool&>(object).GetValue() ? 1u : 0u, {}};
    }
    if (type == &typeid(ObjectNull)) {
        return {Key::Scalar, IObject::TypeNull, 0, {}};
    }
    return {type == &typeid(ObjectArray) ? Key::Single : Key::Foreign, 0, 0, {}};
}

/// Of which the lower bits choose the entry. Ints that follow each other stay neighbours, four at a time: lists of
/// numbers in a row are frequent, and neighbours are in the processor's cache already.
std::uint32_t HashOf(const Key& key) noexcept {
    constexpr std::uint64_t spread = 0x9E3779B97F4A7C15u;
    const std::uint64_t beside = key.type == IObject::TypeInt ? 3 : 0;
    std::uint64_t hash = (key.bits & ~beside) + static_cast<unsigned>(key.type) * spread;
    for (const wchar_t unit : key.text) {
        hash = (hash ^ static_cast<std::uint64_t>(unit)) * spread;
        hash ^= hash >> 32;
    }
    hash = (hash ^ hash >> 32) * spread;
    hash = (hash ^ hash >> 29) * spread;
    return static_cast<std::uint32_t>((hash >> 32 & ~beside) | (key.bits & beside));
}

/// The kept values with keys. One array and no memory for each value: what a look-up costs is mostly one access to
/// memory that is far away.
class KeptTable {
public:
    struct Entry {
        const IObject* value; ///< borrowed; null: free
        std::uint32_t hash;
        std::uint32_t foreignBefore; ///< how many foreign values were kept before it
    };

    /// The entry of the kept value with that key, or a free one for it, which holds until the next call.
    Entry& Find(const Key& key) {
        if ((used + 1) * 4 > entries.size() * 3) {
            Grow();
        }
        const std::uint32_t hash = HashOf(key);
        for (std::size_t at = hash;; ++at) {
            Entry& entry = entries[at & (entries.size() - 1)];
            if (entry.value == nullptr) {
                entry.hash = hash;
                return entry;
            }
            if (entry.hash == hash && KeyOf(*entry.value) == key) {
                return entry;
            }
        }
    }

    /// Uses the free entry that Find has just given.
    void Fill(Entry& entry, const IObject* value, std::size_t foreignBefore) noexcept {
        entry.value = value;
        entry.foreignBefore = static_cast<std::uint32_t>(foreignBefore);
        ++used;
    }

private:
    void Grow() {
        std::vector<Entry> larger(entries.empty() ? 16 : entries.size() * 2);
        for (const Entry& entry : entries) {
            if (entry.value != nullptr) {
                std::size_t at = entry.hash;
                while (larger[at & (larger.size() - 1)].value != nullptr) {
                    ++at;
                }
                larger[at & (larger.size() - 1)] = entry;
            }
        }
        entries.swap(larger);
    }

    std::vector<Entry> entries; ///< as many as a power of two, or none
    std::size_t used = 0;
};

/// The values that Unique has kept so far.
class KeptValues {
public:
    /// Whether an equal value has been kept; if not, the candidate is kept.
    bool KnowsOrKeeps(QueryEngine* engine, IObject* candidate) {
        if (candidate == nullptr) {
            return std::exchange(emptySlot, true) || Keep(nullptr);
        }
        const Key key = KeyOf(*candidate);
        platform::ChargeUnits(static_cast<std::int64_t>(key.text.size()));
        if (key.kind == Key::Foreign) {
            if (IsAmong(engine, values, values.size(), candidate)) {
                return true;
            }
            foreign.push_back(candidate);
            return Keep(candidate);
        }
        KeptTable::Entry* const entry = key.kind == Key::Scalar ? &table.Find(key) : nullptr;
        if (entry != nullptr && entry->value != nullptr) {
            // Those of a host are asked for the asking alone: the answer is known.
            IsAmong(engine, foreign, entry->foreignBefore, candidate);
            return true;
        }
        if (IsAmong(engine, foreign, foreign.size(), candidate)) {
            return true;
        }
        if (entry != nullptr) {
            table.Fill(*entry, candidate, foreign.size());
        }
        return Keep(candidate);
    }

    ObjectList Take() noexcept { return std::move(values); }

private:
    template <class List>
    static bool IsAmong(QueryEngine* engine, const List& list, std::size_t count, IObject* candidate) {
        for (std::size_t position = 0; position < count; ++position) {
            platform::Charge(1);
            if (AreEqual(engine, list[position], candidate)) {
                return true;
            }
        }
        return false;
    }

    bool Keep(IObject* candidate) {
        values.push_back(candidate);
        if (candidate != nullptr) {
            candidate->AddRef();
        }
        return false;
    }

    ObjectList values;
    std::vector<IObject*> foreign; ///< those of `values` that only the rule itself can compare; borrowed
    KeptTable table;               ///< those that have a key
    bool emptySlot = false;
};

} // namespace

bool ObjectArrayBase::FindObject(QueryEngine* engine, const ObjectList& list, IObject* object) const {
    for (IObject* kept : list) {
        if (AreEqual(engine, kept, object)) {
            return true;
        }
    }
    return false;
}

IObject* ObjectArrayBase::Method_Unique(QueryEngine* engine, const OrvStringT&, const ObjectList&, IError**) {
    KeptValues kept;
    for (int position = 0; position < GetCount(); ++position) {
        // The reference that GetItem gives is never given back, neither for a kept item nor for a repeated one. Hosts
        // rely on it that items of theirs stay alive; deliberately kept, unless the engine is told otherwise.
        platform::Charge(1);
        IObject* const item = GetItem(position);
        detail::EngineAccess::Keep(engine, item);
        kept.KnowsOrKeeps(engine, item);
    }
    return new ObjectArray(kept.Take());
}

} // namespace OrvUQL
