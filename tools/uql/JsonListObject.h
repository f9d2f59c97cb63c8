// An object whose members are all values already.
#pragma once

#include "JsonKeys.h"
#include "JsonObject.h"
#include "Ref.h"

namespace OrvUQL::Tool {

class JsonListObject final : public JsonObject {
public:
    /// Takes over a reference to the names, and the values' references: one non-null value for each name, in their
    /// order.
    JsonListObject(Ref<JsonKeys> keys, ObjectList&& values);
    ~JsonListObject() override;

    const JsonKeys& GetKeys() const { return *keys; }
    /// The values, borrowed.
    const ObjectList& GetValues() const { return values; }

    void AppendJson(std::string& out) const override;

protected:
    IObject* Find(std::wstring_view name) const override;
    void AppendKeys(ObjectList& names) const override;

private:
    Ref<JsonKeys> keys;
    ObjectList values;
};

} // namespace OrvUQL::Tool
