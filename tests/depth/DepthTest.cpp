// Whatever nests or grows, at sizes from ten to a hundred thousand (the table goes on to a million), on small stacks
// and large ones: the answer, or the error that the documentation names for it; never the end of the process.

#include "depth/Outcome.h"
#include "depth/Sizes.h"
#include "support/Host.h"
#include "support/QueryPrinter.h"
#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <cctype>

namespace OrvUQL::Tests {
namespace {

class Depth : public ::testing::TestWithParam<Construct> {};

TEST_P(Depth, EndsInAnAnswerOrAnError) {
    const Construct& construct = GetParam();
    for (const int size : testSizes) {
        if (size > construct.largest) {
            break;
        }
        const std::wstring query = construct.query(size);
        for (const Stack& stack : stacks) {
            Outcome outcome{};
            RunOnThread(stack.bytes, [&] { outcome = RunQuery(construct, size, query, Memory::Enough); });
            EXPECT_TRUE(MayEnd(construct, outcome.verdict)) << construct.shown << ", " << size << ", " << stack.name
                                                            << ": " << NameOf(outcome.verdict) << " " << outcome.fault;
            if (size == testSizes[0]) {
                EXPECT_EQ(outcome.verdict, Verdict::Answer) << construct.shown << ": nothing that small may fail";
            }
        }
    }
}

// What the parser made of it says the same as the query.
TEST_P(Depth, IsWhatWasWritten) {
    const Construct& construct = GetParam();
    Host host;
    // (The time that the printer takes doubles with each group that stands before a group.)
    const Ref<IQueryElement> tree(host.engine.ParseQuery(construct.query(testSizes[0]).c_str(), nullptr));
    if (!tree) {
        EXPECT_EQ(construct.answer(testSizes[0]).compare(0, 2, "! "), 0) << construct.shown;
        return;
    }
    const std::optional<OrvStringT> printed = PrintQuery(*tree);
    ASSERT_TRUE(printed) << construct.shown;
    const Ref<IQueryElement> again = host.Parse(printed->GetString());
    ASSERT_TRUE(again) << construct.shown;
    EXPECT_EQ(PrintQuery(*again), printed) << construct.shown;
}

std::string NameOfTest(const ::testing::TestParamInfo<Construct>& construct) {
    std::string name = std::to_string(construct.index);
    for (const char* next = construct.param.name; *next != '\0'; ++next) {
        name += std::isalnum(static_cast<unsigned char>(*next)) ? *next : '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Constructs, Depth, ::testing::ValuesIn(Constructs()), NameOfTest);

} // namespace

// In the messages of failed tests.
void PrintTo(const Construct& construct, std::ostream* out) { *out << construct.shown; }

} // namespace OrvUQL::Tests
