// A row of a table as a value of the language.
#pragma once

#include "JsonKeys.h"
#include "JsonObject.h"
#include "Ref.h"

#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// Its members are its fields, which become strings when they are asked for.
class TableRow final : public JsonObject {
public:
    /// Takes over a reference to the names of the columns. There are no more fields (UTF-8) than columns.
    TableRow(Ref<JsonKeys> columns, std::vector<std::string> rowFields)
        : names(std::move(columns)), fields(std::move(rowFields)) {}

    void AppendJson(std::string& out) const override;

protected:
    IObject* Find(std::wstring_view name) const override;
    void AppendKeys(ObjectList& keys) const override;

private:
    /// The last field of a member; null if the row has none.
    const std::string* GetField(std::size_t member) const;

    Ref<JsonKeys> names;
    std::vector<std::string> fields;
};

} // namespace OrvUQL::Tool
