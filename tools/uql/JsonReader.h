// JSON texts as values of the language.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "JsonKeys.h"
#include "Ref.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Why a text is not JSON.
struct JsonError {
    std::size_t offset = 0; ///< of the first byte that cannot be, from 0
    std::string message;
};

/// Reads JSON documents. null, true, false, strings and arrays become the language's own values; a number that is
/// written as an integer and fits 32 bits an int, any other a double; an object a JsonListObject. Nesting takes no
/// stack; more of it than deepestJson is an error.
///
/// A reader remembers the names it has seen, and its values share them: reader and values belong to one thread at a
/// time.
class JsonReader {
public:
    JsonReader();
    ~JsonReader();

    /// The value of a text that is one document, white space around it allowed; or null with the reason. Throws
    /// std::bad_alloc.
    Ref<IObject> Read(std::string_view document, JsonError& error);

private:
    class Builder;

    std::unique_ptr<Builder> builder;
};

struct JsonPlace {
    std::size_t line = 1;   ///< from 1
    std::size_t column = 1; ///< from 1, in bytes
};

/// Where an error is, in a text that begins at a place of its file.
JsonPlace FindJsonError(const JsonError& error, std::string_view text, JsonPlace begin = {});

/// "line 3, column 5: MESSAGE" for an error in a text of its own.
std::string DescribeJsonError(const JsonError& error, std::string_view text);

} // namespace OrvUQL::Tool
