// The far side of the seam to OLE Automation where there is none; src/com has the other.

#include "OrvUQL/ObjectBase.h"

namespace OrvUQL {

VariantResult ObjectBase::ToVariant(VARIANT&, IError**) const {
    return static_cast<VariantResult>(0x80004001); // E_NOTIMPL
}

} // namespace OrvUQL
