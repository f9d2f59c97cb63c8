// Values of the language as JSON.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Appends the value as compact JSON in UTF-8. What JSON has no form for is null: nan, inf, type objects, values of a
/// host; so is a value whose text cannot be made. A value with a unit is {"value":2.54,"unit":"cm","power":1}. Takes a
/// stack that does not depend on the value's depth.
void AppendJson(std::string& out, const IObject& value);
/// The same as a text of the library.
void AppendJson(OrvStringT& out, const IObject& value);

/// The pieces: a text in quotes, as UTF-8 or as the library has it; numbers as the library writes them, what is no
/// number as null.
void AppendJsonString(std::string& out, std::string_view utf8);
void AppendJsonString(std::string& out, std::wstring_view text);
void AppendJsonNumber(std::string& out, double number);
void AppendJsonNumber(std::string& out, int number);

} // namespace OrvUQL::Tool
