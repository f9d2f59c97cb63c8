#pragma once

#include "platform/RegexGuard.h"
#include "platform/RegexSequence.h"
#include "platform/RegexSyntax.h"

#include <cstddef>
#include <cstdint>
#include <regex>

namespace OrvUQL::platform {

/// An expression as the standard library compiled it, and what matching it costs, or one that needs no more than a
/// RegexSequence. Counts its references; starts with one.
class RegexProgram {
public:
    /// Compiles a pattern, on a stack of its own if that takes more than is left. Throws std::regex_error.
    static const RegexProgram* Compile(std::wstring_view pattern, RegexOptions options);

    void AddRef() const noexcept { ++references; }
    void Release() const noexcept {
        if (--references == 0) {
            delete this;
        }
    }

    /// What matches the expression in place of Execute(), or null.
    virtual const RegexSequence* Sequence() const noexcept { return nullptr; }

    /// Matches the whole range or searches it. On a stack with room for FrameReserve() below the guard's limit.
    virtual bool Execute(const RegexIterator& first, const RegexIterator& last,
                         std::match_results<RegexIterator>& results, std::regex_constants::match_flag_type flags,
                         bool wholeText) const = 0;

    std::size_t States() const noexcept { return states; }
    std::uint64_t StepPrice() const noexcept { return stepPrice; }
    std::uint64_t StartPrice() const noexcept { return startPrice; }

    /// How much stack the matcher may take between two questions to the guard, beside the usual reserve.
    std::size_t FrameReserve() const noexcept { return frameReserve; }

protected:
    explicit RegexProgram(const RegexSyntax& syntax) noexcept;
    RegexProgram(const RegexProgram&) = delete;
    RegexProgram& operator=(const RegexProgram&) = delete;
    virtual ~RegexProgram();

private:
    mutable int references = 1;
    std::size_t states;
    std::size_t frameReserve;
    std::uint64_t stepPrice;
    std::uint64_t startPrice;
};

/// The lowest address that may be used of the stack that the caller is on, with the usual reserve below it.
std::uintptr_t GetUsableStackLow() noexcept;

} // namespace OrvUQL::platform
