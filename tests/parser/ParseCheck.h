// Parsing for tables: what a query becomes, as one line of text. Queries are written in UTF-8.
#pragma once

#include "parser/TreeDump.h"
#include "support/Host.h"

#include <string>
#include <string_view>

namespace OrvUQL::Tests {

/// The tree's dump, or "! message". What must hold for every query is checked by the way: no tree and no error or
/// both at once; the same outcome where nobody asks for the error; where the engine says the error is.
inline std::string ParseDump(std::string_view utf8, DumpPositions positions = DumpPositions::No) {
    Host host;
    const OrvStringT query = OrvStringT::FromUtf8(utf8);
    const Ref<IQueryElement> quiet(host.engine.ParseQuery(query.GetString(), nullptr));
    const int quietPosition = host.engine.GetErrorPosition();
    ErrorSlot error;
    const Ref<IQueryElement> tree(host.engine.ParseQuery(query.GetString(), error.Slot()));
    EXPECT_EQ(static_cast<bool>(tree), static_cast<bool>(quiet)) << utf8;
    EXPECT_EQ(static_cast<bool>(tree), error.IsEmpty()) << utf8 << ": " << error.Message();
    EXPECT_EQ(host.engine.GetErrorPosition(), quietPosition) << utf8;
    if (tree) {
        EXPECT_EQ(host.engine.GetErrorPosition(), -1) << utf8;
        EXPECT_EQ(Dump(tree.Get()), Dump(quiet.Get())) << utf8;
        return Dump(tree.Get(), positions);
    }
    EXPECT_GE(host.engine.GetErrorPosition(), 0) << utf8;
    EXPECT_LE(host.engine.GetErrorPosition(), query.GetLength()) << utf8;
    return "! " + error.Message();
}

/// The message of a parse error at a 0-based position, as ParseDump tells it.
inline std::string ParseError(std::string_view message, int position) {
    return "! Error parsing query: " + std::string(message) + " at position " + std::to_string(position + 1);
}

/// Where the engine says that parsing stopped.
inline int ParseErrorPosition(std::string_view utf8) {
    Host host;
    const Ref<IQueryElement> tree(host.engine.ParseQuery(OrvStringT::FromUtf8(utf8).GetString(), nullptr));
    return host.engine.GetErrorPosition();
}

} // namespace OrvUQL::Tests
