#pragma once

#include "platform/Thread.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <regex>
#include <utility>

/// What keeps the standard library's matcher within bounds. It recurses for each character and backtracks without end;
/// all that can be had of it is the iterator that it is given. Every state that it enters compares or assigns
/// iterators, but for alternatives, lazy repeats on their way down and references to groups without a match, which
/// RegexSyntax limits.
namespace OrvUQL::platform {

/// The bounds of one match: how deep it may recurse, and how many steps it may take.
struct RegexGuard {
    std::uintptr_t stackLimit = 0; ///< the lowest address that a frame may have
    std::uint64_t steps = 0;       ///< left for the whole of a call, without those put aside
    std::uint64_t aside = 0;       ///< where the thread has a meter, which is asked now and then: what comes later
    std::uint64_t first = 0;       ///< how many there were in all when the meter was charged last
    std::uint64_t price = 1;       ///< of one step, 1 or more

    /// What ran out.
    enum class Lack : unsigned char { None, Stack, Steps } lack = Lack::None;

    /// False when a bound is reached.
    bool Step() {
        if (StackPointer() >= stackLimit && steps >= price) {
            steps -= price;
            return true;
        }
        return GiveUp();
    }

    /// Begins another match with the steps that are left.
    void Restart(std::uintptr_t limit) noexcept {
        stackLimit = limit;
        lack = Lack::None;
        if (CurrentThread().meter != nullptr) {
            aside = std::exchange(steps, 0);
            first = aside;
        }
    }

    /// Ends it.
    void Finish() noexcept { steps += std::exchange(aside, 0); }

    static std::uintptr_t StackPointer() noexcept { return ORVUQL_FRAME_ADDRESS(); }

private:
    std::uint64_t grace = 0;

    bool TakeMore() noexcept;
    bool GiveUp();
};

/// A random-access iterator over units that asks the guard wherever it is compared or assigned.
///
/// Where a bound is reached all comparisons pretend to be at the end, so that the matcher finds nothing more to try and
/// returns: an exception through a hundred thousand frames would take a hundred times as long. The exception is for
/// what still goes on after that.
class RegexIterator {
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = wchar_t;
    using difference_type = std::ptrdiff_t;
    using pointer = const wchar_t*;
    using reference = const wchar_t&;

    RegexIterator() noexcept = default;
    RegexIterator(const wchar_t* unit, RegexGuard* owner) noexcept : position(unit), guard(owner) {}
    RegexIterator(const RegexIterator& other) noexcept = default;
    RegexIterator& operator=(const RegexIterator& other) {
        if (other.guard != nullptr) {
            other.guard->Step();
        }
        position = other.position;
        guard = other.guard;
        return *this;
    }

    const wchar_t* Position() const noexcept { return position; }

    reference operator*() const noexcept { return *position; }
    pointer operator->() const noexcept { return position; }
    reference operator[](difference_type offset) const noexcept { return position[offset]; }
    RegexIterator& operator++() noexcept {
        ++position;
        return *this;
    }
    RegexIterator operator++(int) noexcept { return {position++, guard}; }
    RegexIterator& operator--() noexcept {
        --position;
        return *this;
    }
    RegexIterator operator--(int) noexcept { return {position--, guard}; }
    RegexIterator& operator+=(difference_type offset) noexcept {
        position += offset;
        return *this;
    }
    RegexIterator& operator-=(difference_type offset) noexcept {
        position -= offset;
        return *this;
    }

    friend RegexIterator operator+(RegexIterator a, difference_type offset) noexcept { return a += offset; }
    friend RegexIterator operator+(difference_type offset, RegexIterator a) noexcept { return a += offset; }
    friend RegexIterator operator-(RegexIterator a, difference_type offset) noexcept { return a -= offset; }
    // Takes no part in the guarding: the standard library calls it where nothing may be thrown.
    friend difference_type operator-(const RegexIterator& a, const RegexIterator& b) noexcept {
        return a.position - b.position;
    }

    friend bool operator==(const RegexIterator& a, const RegexIterator& b) {
        return !Proceeds(b) || a.position == b.position;
    }
    friend bool operator!=(const RegexIterator& a, const RegexIterator& b) {
        return Proceeds(b) && a.position != b.position;
    }
    friend bool operator<(const RegexIterator& a, const RegexIterator& b) noexcept { return a.position < b.position; }
    friend bool operator>(const RegexIterator& a, const RegexIterator& b) noexcept { return b < a; }
    friend bool operator<=(const RegexIterator& a, const RegexIterator& b) noexcept { return !(b < a); }
    friend bool operator>=(const RegexIterator& a, const RegexIterator& b) noexcept { return !(a < b); }

private:
    const wchar_t* position = nullptr;
    RegexGuard* guard = nullptr;

    static bool Proceeds(const RegexIterator& other) { return other.guard == nullptr || other.guard->Step(); }
};

} // namespace OrvUQL::platform
