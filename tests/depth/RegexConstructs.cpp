#include "depth/Constructs.h"

namespace OrvUQL::Tests {

std::vector<Construct> RegexConstructs() {
    const auto truth = Always("bool true");
    return {
        {"a long expression", "'a'.Repeat(N).RegMatch('a'.Repeat(N))", Sized(L"'a'.Repeat(#).RegMatch('a'.Repeat(#))"),
         truth, Ends::WithExpression},
        {"nested groups", "'a'.RegMatch('((...a...))')", Sized(L"'a'.RegMatch('('.Repeat(#) + 'a' + ')'.Repeat(#))"),
         truth, Ends::WithExpression},
        {"nested groups that repeat", "'a'.RegMatch('(((...a...)*)*)*')",
         Sized(L"'a'.RegMatch('('.Repeat(#) + 'a' + ')*'.Repeat(#))"), truth, Ends::WithExpression},
        {"groups in a row", "'a'.RegMatchEx('(a?)(a?)...').Count()", Sized(L"'a'.RegMatchEx('(a?)'.Repeat(#)).Count()"),
         Int(1, 1), Ends::WithExpression},
        {"alternatives", "'b'.RegMatch('a|a|...|b')", Sized(L"'b'.RegMatch('a|'.Repeat(#) + 'b')"), truth,
         Ends::WithExpression, 1000000, false},
        {"a class of many characters", "'a'.RegMatch('[bb...ba]')", Sized(L"'a'.RegMatch('[' + 'b'.Repeat(#) + 'a]')"),
         truth, Ends::WithExpression},
        {"a counted repetition", "'a'.Repeat(N).RegMatch('a{N}')", Sized(L"'a'.Repeat(#).RegMatch('a{#}')"), truth,
         Ends::WithExpression},
        {"an expression without an end", "'a'.RegMatch('((...(a')", Sized(L"'a'.RegMatch('('.Repeat(#) + 'a')"),
         Always("! Error in regular expression: the expression contained an unmatched '(' or ')'"),
         Ends::WithExpression},

        {"a*", "'a'.Repeat(N).RegMatch('a*')", Sized(L"'a'.Repeat(#).RegMatch('a*')"), truth, Ends::WithExpression},
        {"(a|b)*", "'a'.Repeat(N).RegMatch('(a|b)*')", Sized(L"'a'.Repeat(#).RegMatch('(a|b)*')"), truth,
         Ends::WithExpression},
        {".*b, searched for in vain", "'a'.Repeat(N).RegContains('.*b')", Sized(L"'a'.Repeat(#).RegContains('.*b')"),
         Always("bool false"), Ends::WithExpression, 1000000, false},
        {"RegContains in vain", "'a'.Repeat(N).RegContains('b')", Sized(L"'a'.Repeat(#).RegContains('b')"),
         Always("bool false"), Ends::WithExpression},
        {"RegReplace", "'a1'.Repeat(N).RegReplace('\\d', '<$&>').Length()",
         Sized(L"'a1'.Repeat(#).RegReplace('\\d', '<$&>').Length()"), Int(4), Ends::WithExpression},
        {"RegReplace by a long text", "'a'.RegReplace('a', '$&'.Repeat(N)).Length()",
         Sized(L"'a'.RegReplace('a', '$&'.Repeat(#)).Length()"), Int(1), Ends::WithExpression},
        {"RegReplaceEx", "'a1'.Repeat(N).RegReplaceEx('\\d', $Item(1) + '!').Length()",
         Sized(L"'a1'.Repeat(#).RegReplaceEx('\\d', $Item(1) + '!').Length()"), Int(3), Ends::WithExpression},
        {"RegSplit", "'a,'.Repeat(N).RegSplit(',').Count()", Sized(L"'a,'.Repeat(#).RegSplit(',').Count()"), Int(1),
         Ends::WithExpression},
        {"RegFind", "'a1'.Repeat(N).RegFind('(\\w)\\d').Count()", Sized(L"'a1'.Repeat(#).RegFind('(\\w)\\d').Count()"),
         Int(1), Ends::WithExpression},
    };
}

} // namespace OrvUQL::Tests
