// Walking down a long chain of nodes and back up without recursion.
#pragma once

#include "core/EngineAccess.h"

#include <vector>

namespace OrvUQL::detail {

/// The calls from the top of a chain (`x.f().g()...`) to its bottom. The first few stand in the frame, the rest in a
/// stack that the engine keeps, so that chains of any length need neither recursion nor, in the steady state, memory.
/// Chains that are evaluated inside of others put theirs on top and take them off before they return.
class Spine {
public:
    explicit Spine(QueryEngine* engine) noexcept
        : far(engine == nullptr ? own : EngineAccess::SpineStorage(engine)), base(far.size()) {}
    Spine(const Spine&) = delete;
    Spine& operator=(const Spine&) = delete;

    ~Spine() {
        if (far.size() != base) {
            far.resize(base);
        }
        if (base == 0 && far.capacity() > keptCapacity) {
            std::vector<const IQueryElement*>().swap(far);
        }
    }

    bool IsEmpty() const noexcept { return nearCount == 0; }

    /// May throw std::bad_alloc.
    void Push(const IQueryElement* node) {
        if (nearCount < nearCapacity) {
            near[nearCount++] = node;
        } else {
            far.push_back(node);
        }
    }

    const IQueryElement* Pop() noexcept {
        if (far.size() > base) {
            const IQueryElement* const node = far.back();
            far.pop_back();
            return node;
        }
        return near[--nearCount];
    }

private:
    static constexpr int nearCapacity = 8;
    /// Greater stacks are not kept from one evaluation to the next.
    static constexpr std::size_t keptCapacity = 64 * 1024;

    const IQueryElement* near[nearCapacity];
    int nearCount = 0;
    std::vector<const IQueryElement*> own; // for a tree that is evaluated without an engine
    std::vector<const IQueryElement*>& far;
    std::size_t base;
};

} // namespace OrvUQL::detail
