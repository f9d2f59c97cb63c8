// Any text as a conformance file: it is read, or the error says in which of its lines it is none; engines can be
// prepared as its settings say.

#include "ConformanceFile.h"
#include "fuzz/Fuzzing.h"
#include "support/Ref.h"

#include <algorithm>
#include <new>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

void CheckFile(std::string_view text) {
    std::vector<Tool::ConformanceCase> cases;
    Tool::ConformanceError error;
    const std::size_t lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    if (!Tool::ReadConformanceFile(text, cases, error)) {
        Expect(error.line >= 1 && error.line <= lines && !error.message.empty(), "an error without its place", text);
        return;
    }
    std::size_t line = 0;
    for (const Tool::ConformanceCase& one : cases) {
        Expect(one.line > line && one.line <= lines, "queries out of order", text);
        line = one.line;
        Expect(one.settings != nullptr, "a query without settings", text);
        QueryEngine engine;
        Tool::ComApartment apartment;
        std::string reason;
        Expect(Tool::PrepareEngine(engine, *one.settings, apartment, reason), "settings that were read are none", text);
        const Ref<IQueryElement> tree(engine.ParseQuery(one.query.GetString(), nullptr));
    }
}

} // namespace
} // namespace OrvUQL::Tests

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace OrvUQL::Tests;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    ExpectNoLeak(
        [&] {
            const BoundedMemory memory;
            try {
                CheckFile(text);
            } catch (const std::bad_alloc&) {
                Expect(memory.HasEnded(), "an exception", text);
            }
        },
        text);
    return 0;
}
