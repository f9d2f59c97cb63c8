// How much an evaluation may take, and how much one took.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace OrvUQL {

/// Bounds for the evaluations of an engine; see QueryEngine::SetLimits(). Each is for one evaluation, from where the
/// host asks for it until it returns; what host objects evaluate with the same engine meanwhile belongs to it.
struct EvaluationLimits {
    static constexpr std::uint64_t unlimitedSteps = ~std::uint64_t{0};
    static constexpr std::size_t unlimitedMemory = ~std::size_t{0};
    static constexpr std::int64_t unlimitedTime = INT64_MAX;

    /// How many steps it may take. What a step is depends on the query and its data alone, so that the same limit ends
    /// the same evaluation on every system and however busy that is:
    /// - an evaluation that is asked for, an operator that has its operands, a name that is looked up or called, an
    ///   array with each of its items, and a group are one step each; literals are none;
    /// - a method that looks at the items of an array, or makes some, takes one more for each;
    /// - a text that a method is called on, that an operator compares or makes, that becomes a number, or that a
    ///   method gives takes one more for each 64 code units in it;
    /// - a regular expression takes one for each 16 steps of the matcher and one for each 16 states that its pattern is
    ///   compiled to, whether or not it has been compiled before.
    std::uint64_t steps = unlimitedSteps;

    /// How many bytes all that the library makes for values (objects, texts, lists) may take at the same time, beyond
    /// what was there at the beginning. What host objects have of their own is not counted, nor what a method puts down
    /// beside its values while it works, which is never more than a small multiple of them.
    std::size_t memory = unlimitedMemory;

    /// How many nanoseconds it may take. The clock is looked at after no more than 32 steps, so a single step that is
    /// long, a host's function above all, makes it longer.
    std::int64_t nanoseconds = unlimitedTime;

    /// Ends the evaluation as soon as it is true. Borrowed, and the only thing here that another thread may touch.
    /// Null: there is no such flag.
    const std::atomic<bool>* cancel = nullptr;
};

/// What an evaluation has taken.
struct EvaluationUsage {
    std::uint64_t steps = 0;    ///< as EvaluationLimits counts them
    std::size_t peakMemory = 0; ///< the most bytes at the same time, as EvaluationLimits counts them
};

} // namespace OrvUQL
