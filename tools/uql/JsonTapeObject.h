// An object whose members become values when they are asked for.
#pragma once

#include "JsonObject.h"
#include "JsonTape.h"
#include "Ref.h"

#include <cstddef>
#include <simdjson.h>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvUQL::Tool {

class JsonTapeObject final : public JsonObject {
public:
    /// Takes over a reference to the tape. `part` is an object.
    JsonTapeObject(Ref<JsonTape> parsedTape, simdjson::dom::element part)
        : tape(std::move(parsedTape)), whole(part), object(part.get_object().value_unsafe()) {}
    ~JsonTapeObject() override;

    void AppendJson(std::string& out) const override;

protected:
    IObject* Find(std::wstring_view name) const override;
    void AppendKeys(ObjectList& names) const override;

private:
    struct Made {
        std::size_t place; // of the member
        IObject* value;
    };

    /// The last member of exactly that name. Its place from 0, or none.
    std::size_t FindExactly(std::string_view name, simdjson::dom::element& value) const;
    /// The name of the first member whose name differs only in letter case; a null view if there is none.
    std::string_view FindSpelling(std::wstring_view name) const;

    Ref<JsonTape> tape;
    simdjson::dom::element whole;
    simdjson::dom::object object;   // the same
    mutable std::vector<Made> made; // arrays and objects, which would be long to make again
};

} // namespace OrvUQL::Tool
