// Any text as a JSON document: both readers give the same value or the same error, what is written can be read again,
// and queries find the same in both values.

#include "DocumentReader.h"
#include "JsonWriter.h"
#include "fuzz/Fuzzing.h"
#include "support/Ref.h"

#include <new>
#include <string>

namespace OrvUQL::Tests {
namespace {

using Tool::DocumentReader;
using Tool::JsonError;
using Tool::JsonLibrary;

struct Reading {
    Tool::Ref<IObject> value;
    std::string outcome; ///< the value as JSON, or the error and its place
};

Reading Read(DocumentReader& reader, std::string_view document) {
    std::string padded(document);
    padded.append(DocumentReader::padding, '\0');
    std::size_t replacements = 0;
    JsonError error;
    Reading reading{reader.Read(std::string_view(padded).substr(0, document.size()), replacements, error), {}};
    if (reading.value) {
        Tool::AppendJson(reading.outcome, *reading.value);
    } else {
        Expect(error.offset <= document.size() + 2 * replacements, "an error behind the document", document);
        reading.outcome = "! " + std::to_string(error.offset) + " " + error.message;
    }
    return reading;
}

std::string Evaluate(QueryEngine& engine, const wchar_t* query) {
    const Ref<IQueryElement> tree(engine.ParseQuery(query, nullptr));
    ErrorSlot error;
    const Ref<IObject> value(engine.Evaluate(tree.Get(), error.Slot()));
    std::string text;
    if (value) {
        Tool::AppendJson(text, *value);
    }
    return value ? Utf8(value->GetTypeName()) + " " + text : "! " + error.Message();
}

void CheckQueries(IObject& first, IObject& second, std::string_view document) {
    for (const wchar_t* const query :
         {L"@Keys", L"@a", L"@A.b", L"@Get('a')", L"@This().TypeName", L"@a == @Get('A')", L"@Item(1)", L"@Count",
          L"@Keys.Convert(@Get($item))", L"'' + @This", L"@ToInt", L"@help"}) {
        QueryEngine engine;
        engine.SetPropertySource(&first);
        const std::string expected = Evaluate(engine, query);
        ExpectSame(Evaluate(engine, query), expected, "a query found something else the second time", document);
        engine.SetPropertySource(&second);
        ExpectSame(Evaluate(engine, query), expected, "a query found something else in the other value", document);
    }
}

void CheckDocument(std::string_view document) {
    const auto plain = DocumentReader::Make(JsonLibrary::Nlohmann);
    const auto fast = DocumentReader::Make(Tool::GetFastestJsonLibrary());
    const Reading first = Read(*plain, document);
    const Reading second = Read(*fast, document);
    ExpectSame(first.outcome, second.outcome, "the readers differ", document);
    if (first.value) {
        // A negative zero is written as the integer -0, which is none.
        const std::string again = Read(*plain, first.outcome).outcome;
        ExpectSame(Read(*plain, again).outcome, again, "written and read again", document);
        Expect(again == first.outcome || first.outcome.find("-0") != std::string::npos, "read again", document);
        CheckQueries(*first.value, *second.value, document);
    }
}

} // namespace
} // namespace OrvUQL::Tests

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace OrvUQL::Tests;
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    ExpectNoLeak(
        [&] {
            const BoundedMemory memory;
            try {
                CheckDocument(document);
            } catch (const std::bad_alloc&) {
                Expect(memory.HasEnded(), "an exception", document);
            }
        },
        document);
    return 0;
}
