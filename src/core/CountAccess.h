// The count of an object, for the few places that may look at it.
#pragma once

#include "OrvUQL/RefCount.h"

namespace OrvUQL::detail {

struct CountAccess {
    template <class T> static std::int32_t& Count(T* object) noexcept { return object->refCount; }
};

} // namespace OrvUQL::detail
