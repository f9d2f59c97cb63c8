// What a construct costs at a size: bench/growth starts this program below callgrind, and the program has it write one
// profile for each step of the work.

#include "depth/Outcome.h"
#include "support/Host.h"
#include "support/StackThread.h"

#include <cstdio>
#include <cstdlib>
#include <valgrind/callgrind.h>

namespace OrvUQL::Tests {
namespace {

constexpr const char* usage =
    "usage: orvuql_growth FIRST STEP SIZE   counts each STEPth construct from FIRST on, at SIZE, 2 SIZE and 4 SIZE;\n"
    "                                       prints a line for each profile: construct, step, size, whether it has to\n"
    "                                       be linear, what the evaluation came to\n";

/// What nests takes hundreds of bytes for each level.
constexpr std::size_t greatStack = std::size_t{512} * 1024 * 1024;

/// What is worse than linear takes its time.
constexpr int fewInstead = 250;

/// "the answer", "its end" where a construct may have one, or "a fault".
const char* NameOfOutcome(const Construct& construct, int size, const IObject* value, const ErrorSlot& error) {
    const std::string got = value != nullptr ? Describe(value) : "! " + error.Message();
    return got == construct.answer(size) ? "the answer" : construct.ends != Ends::Never ? "its end" : "a fault";
}

void Count(const Construct& construct, int size) {
    const auto step = [&](const char* name, const std::function<void()>& body) {
        CALLGRIND_ZERO_STATS;
        body();
        CALLGRIND_DUMP_STATS;
        std::printf("%s\t%s\t%d\t%d\t", construct.name, name, size, construct.isLinear ? 1 : 0);
    };
    const std::wstring text = construct.query(size);
    Host host;
    ErrorSlot error;
    Ref<IQueryElement> tree;
    Ref<IObject> value;
    OrvStringT shown;
    step("parse", [&] { tree = Ref<IQueryElement>(host.engine.ParseQuery(text.c_str(), error.Slot())); });
    std::puts("");
    step("evaluate", [&] {
        if (tree) {
            value = Ref<IObject>(host.engine.Evaluate(tree.Get(), error.Slot()));
        }
    });
    std::puts(NameOfOutcome(construct, size, value.Get(), error));
    step("text", [&] {
        if (value) {
            value->ToString(shown, nullptr);
        }
    });
    std::puts("");
    step("release", [&] {
        tree.Reset();
        value.Reset();
        error.Clear();
        shown = OrvStringT();
    });
    std::puts("");
}

} // namespace
} // namespace OrvUQL::Tests

int main(int argc, char** argv) {
    using namespace OrvUQL::Tests;
    const int step = argc == 4 ? std::atoi(argv[2]) : 0;
    if (step < 1) {
        std::fputs(usage, stderr);
        return 2;
    }
    RunOnThread(greatStack, [&] {
        for (auto index = static_cast<std::size_t>(std::atoi(argv[1])); index < Constructs().size();
             index += static_cast<std::size_t>(step)) {
            const Construct& construct = Constructs()[index];
            RunConstruct(construct, 10); // whatever is only done once
            for (const int factor : {1, 2, 4}) {
                Count(construct, factor * (construct.isLinear ? std::atoi(argv[3]) : fewInstead));
            }
        }
    });
    return 0;
}
