// A thread with a stack of a given size.
#pragma once

#include <cstddef>
#include <functional>

namespace OrvUQL::Tests {

/// What threads get that a careful host makes for small work.
inline constexpr std::size_t smallStack = 256 * 1024;

/// Runs `body` on a thread of its own with a stack of `stackBytes`, and waits for it. Assertions inside count.
void RunOnThread(std::size_t stackBytes, const std::function<void()>& body);

} // namespace OrvUQL::Tests
