// What a program of operators needs while it runs; see eval/Program.h.
#pragma once

#include "OrvUQL/QueryEngine.h"

#include "core/Value.h"

#include <cstddef>

namespace OrvUQL::detail {

/// What a run needs beside the registers.
class Frame {
public:
    /// How many values a run may put aside, unless it is given more room.
    static constexpr std::size_t nearDepth = 6;

    Frame(bool givesObject, IError** error) noexcept : Frame(near, givesObject, error) {}
    Frame(Value* room, bool givesObject, IError** error) noexcept
        : err(error), wantsObject(givesObject), top(room), bottom(room) {}
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    /// The values put aside are the frame's, so that they are disposed of however the run ends.
    ~Frame() {
        if (top != bottom) [[unlikely]] {
            DisposeOfAll();
        }
    }

    void Push(Value value) noexcept { *top++ = value; }
    Value Pop() noexcept { return *--top; }

    IError** const err;
    const bool wantsObject; ///< where the program's value is that of an element: whether it has to be its very object

private:
    /// Not inline: where nothing is left, which is nearly always, the program's value stays in registers.
    ORVUQL_NOINLINE void DisposeOfAll() noexcept {
        while (top != bottom) {
            const ValueHolder disposed(Pop());
        }
    }

    Value* top;
    Value* const bottom;
    Value near[nearDepth];
};

struct Instruction;

/// Runs a program. The value, or none with the position of the failing element noted; then, and where an exception
/// comes out, values may be left in the frame. May throw.
///
/// On a thread that has a meter it is the metered form that has to be run: it charges a step for each operator, and has
/// the elements charge theirs. So it is for a tree that is evaluated without an engine: the other form does not ask
/// whether there is one.
template <bool isMetered> Value RunProgram(const Instruction* at, QueryEngine* engine, Frame& frame);

} // namespace OrvUQL::detail
