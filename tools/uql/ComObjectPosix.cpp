#include "ComObject.h"

namespace OrvUQL::Tool {

bool HasComObjects() { return false; }

ComApartment::~ComApartment() = default;

Ref<IObject> ComApartment::Create(const std::string& programId, std::string& error) {
    error = programId + ": this system has no automation objects";
    return Ref<IObject>();
}

} // namespace OrvUQL::Tool
