// Well-formed queries, each choice made by a byte of the fuzzer's.
#pragma once

#include "fuzz/Fuzzing.h"

#include <string>

namespace OrvUQL::Tests {

/// Writes queries over a FuzzRecord as property source and variable that mostly call methods which the value has, with
/// arguments of the kinds that they take.
class QueryWriter {
public:
    QueryWriter(const std::uint8_t* data, std::size_t size) : choices(data, size) {}

    std::wstring Write();

private:
    /// A method of a kind of value. Of the result "?" is anything.
    struct Method {
        wchar_t kind; ///< B, I, D, S, A, U as in Kinded(), X an iterator, "*" any, "g" a global function
        const wchar_t* name;
        const wchar_t* arguments; ///< kinds; E an expression over an item; lower case may be left out
        wchar_t result;
    };
    static const Method methods[];
    static const std::size_t methodCount;

    void Kinded(wchar_t kind, int depth);
    void Literal(wchar_t kind);
    bool Call(wchar_t result, int depth);
    void Operator(wchar_t kind, int depth);
    void Arguments(const wchar_t* kinds, int depth);
    void Item(wchar_t kind);
    wchar_t AnyKind();
    template <std::size_t N> void Put(const wchar_t* const (&texts)[N]) { text += choices.Pick(texts); }

    Choices choices;
    std::wstring text;
    int itemDepth = 0; ///< how many expressions over items are around
    int groupDepth = 0;
};

} // namespace OrvUQL::Tests
