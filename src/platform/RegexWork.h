#pragma once

#include <algorithm>

/// How much a part of a pattern makes of itself: states when it is compiled, and ways through it that ask no guard.
namespace OrvUQL::platform {

/// Figures are bounds from above. They are floating-point numbers, which do not wrap, and end at a bound of their own.
struct RegexWork {
    double states = 0;
    double links = 0;    ///< states that only link others
    double branches = 0; ///< states that the matcher enters without asking the guard

    // Ways that ask no guard: through the whole part, from its begin to a back reference inside, from the last guarded
    // state inside to its end, and from one guarded state inside to a back reference inside.
    double through = 1;
    double into = 0;
    double outOf = 0;
    double within = 0;

    RegexWork Sized(double addedStates, double addedLinks, double addedBranches) const noexcept {
        RegexWork work = *this;
        work.states = Bound(states + addedStates);
        work.links = Bound(links + addedLinks);
        work.branches = Bound(branches + addedBranches);
        return work;
    }

    /// A state that asks the guard; of no size.
    static RegexWork Guarded() noexcept {
        RegexWork work;
        work.through = 0;
        work.outOf = 1;
        return work;
    }

    /// A back reference, which asks the guard unless its group has not matched.
    static RegexWork Reference() noexcept {
        RegexWork work = Guarded();
        work.into = 1;
        return work;
    }

    /// One part and then another.
    friend RegexWork operator+(const RegexWork& a, const RegexWork& b) noexcept {
        RegexWork work = AddSizes(a, b);
        work.through = Bound(a.through * b.through);
        work.into = Bound(a.into + a.through * b.into);
        work.outOf = Bound(b.outOf + a.outOf * b.through);
        work.within = Bound(std::max({a.within, b.within, a.outOf * b.into}));
        return work;
    }

    /// One part or another.
    friend RegexWork operator|(const RegexWork& a, const RegexWork& b) noexcept {
        RegexWork work = AddSizes(a, b);
        work.through = Bound(a.through + b.through);
        work.into = Bound(a.into + b.into);
        work.outOf = Bound(std::max(a.outOf, b.outOf));
        work.within = std::max(a.within, b.within);
        return work;
    }

    /// The same ways, of no size.
    RegexWork Ways() const noexcept {
        RegexWork work = *this;
        work.states = work.links = work.branches = 0;
        return work;
    }

private:
    static double Bound(double figure) noexcept { return std::min(figure, 1e18); }

    static RegexWork AddSizes(const RegexWork& a, const RegexWork& b) noexcept {
        return RegexWork().Sized(a.states + b.states, a.links + b.links, a.branches + b.branches);
    }
};

} // namespace OrvUQL::platform
