#include "depth/DepthTable.h"

#include "depth/Outcome.h"
#include "depth/Sizes.h"
#include "support/StackThread.h"

#include <cstdio>
#include <iterator>

namespace OrvUQL::Tests {

namespace {

std::string ShownSize(int size) {
    int exponent = 0;
    for (; size >= 10; size /= 10) {
        ++exponent;
    }
    return "10^" + std::to_string(exponent);
}

/// "10^6", or "10^3, then Internal error".
std::string Cell(const Construct& construct, const Stack& stack, bool& good) {
    std::string shown = "none";
    for (const int size : tableSizes) {
        if (size > construct.largest) {
            return shown + ", more takes long";
        }
        Outcome outcome{};
        RunOnThread(stack.bytes, [&] { outcome = RunConstruct(construct, size); });
        if (outcome.verdict != Verdict::Answer) {
            good = good && MayEnd(construct, outcome.verdict);
            return shown + ", then " + NameOf(outcome.verdict);
        }
        shown = ShownSize(size);
    }
    return shown;
}

/// What a cell of a table may hold.
std::string Escaped(const char* text) {
    std::string escaped;
    for (; *text != '\0'; ++text) {
        escaped += *text == '|' ? "\\|" : std::string(1, *text);
    }
    return escaped;
}

} // namespace

bool PrintDepthTable() {
    bool good = true;
    std::string largest; // what is answered at the largest size on all stacks
    std::printf("| what | query |");
    for (const Stack& stack : stacks) {
        std::printf(" %s |", stack.name);
    }
    std::printf("\n|---|---|---|---|---|\n");
    for (const Construct& construct : Constructs()) {
        std::string cells;
        bool isLargest = true;
        for (const Stack& stack : stacks) {
            const std::string cell = Cell(construct, stack, good);
            cells += " " + cell + " |";
            isLargest = isLargest && cell == ShownSize(*std::rbegin(tableSizes));
        }
        if (isLargest) {
            largest += std::string(largest.empty() ? "" : ", ") + "`" + construct.shown + "`";
        } else {
            std::printf("| %s | `%s` |%s\n", Escaped(construct.name).c_str(), Escaped(construct.shown).c_str(),
                        cells.c_str());
            std::fflush(stdout);
        }
    }
    std::printf("\nAnswered at %s on each of these stacks: %s.\n", ShownSize(*std::rbegin(tableSizes)).c_str(),
                largest.c_str());
    return good;
}

} // namespace OrvUQL::Tests
