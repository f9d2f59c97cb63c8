#include "OrvUQL/ObjectExpression.h"

#include "OrvUQL/QueryElement.h"

#include "platform/Pool.h"

namespace OrvUQL {

ObjectExpression::ObjectExpression(IQueryElement* wrapped) : element(wrapped) {
    if (element != nullptr) {
        element->AddRef();
    }
}

ObjectExpression::~ObjectExpression() {
    ReleaseNested(element);
    element = nullptr;
}

OrvStringT ObjectExpression::GetTypeName() const { return ORV_TEXT(L"expression"); }

// An expression has no value until somebody evaluates its element, so all of these fail, and silently: whoever asked
// knows better what to say.
bool ObjectExpression::ToBool(bool&, IError**) const { return false; }
bool ObjectExpression::ToInt(int&, IError**) const { return false; }
bool ObjectExpression::ToDouble(double&, IError**) const { return false; }
bool ObjectExpression::ToString(OrvStringT&, IError**) const { return false; }
VariantResult ObjectExpression::ToVariant(VARIANT&, IError**) const {
    return static_cast<VariantResult>(0x80004001); // E_NOTIMPL
}
IObject* ObjectExpression::ToNumeric(IError**) { return nullptr; }
IUnit* ObjectExpression::ToUnit(IUnitDefinition*, IError**) { return nullptr; }
IObject* ObjectExpression::ChangeType(EType, IError**) { return nullptr; }
bool ObjectExpression::CompareTo(EOperType, IObject*, bool, bool&, IError**) const { return false; }
IObject* ObjectExpression::Invoke(QueryEngine*, const wchar_t*, const QueryElementList&, IError**) { return nullptr; }

void* ObjectExpression::operator new(std::size_t size) { return platform::PoolAllocate(size); }
void ObjectExpression::operator delete(void* block, std::size_t size) noexcept { platform::PoolFree(block, size); }

} // namespace OrvUQL
