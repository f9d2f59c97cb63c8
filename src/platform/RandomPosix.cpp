#include "platform/Random.h"

#include <unistd.h>

namespace OrvUQL::platform {

bool SecureRandom(std::uint32_t& bits) noexcept { return getentropy(&bits, sizeof(bits)) == 0; }

} // namespace OrvUQL::platform
