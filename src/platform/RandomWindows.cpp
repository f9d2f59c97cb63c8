#include "platform/Random.h"

#include <windows.h>
// After windows.h, whose types it uses.
#include <bcrypt.h>

namespace OrvUQL::platform {

bool SecureRandom(std::uint32_t& bits) noexcept {
    const NTSTATUS status =
        BCryptGenRandom(nullptr, reinterpret_cast<UCHAR*>(&bits), sizeof(bits), BCRYPT_USE_SYSTEM_PREFERRED_RNG);
    return status >= 0;
}

} // namespace OrvUQL::platform
