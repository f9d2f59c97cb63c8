#pragma once

#include <cstdint>

namespace OrvUQL::platform {

/// 32 bits from the operating system's cryptographically secure source. False if it gives none.
bool SecureRandom(std::uint32_t& bits) noexcept;

} // namespace OrvUQL::platform
