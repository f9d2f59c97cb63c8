#include "depth/Constructs.h"

namespace OrvUQL::Tests {

std::vector<Construct> ChainConstructs() {
    const auto units = [](int size) { return "unit " + std::to_string(size) + " mm"; };
    return {
        {"+", "1 + 1 + ...", Chain(L"1", L" + "), Int(1)},
        {"+ of doubles", "0.5 + 0.5 + ...", Chain(L"0.5", L" + "),
         [](int size) { return "double " + std::to_string(size / 2); }},
        {"+ of texts", "'a' + 'a' + ...", Chain(L"'a'", L" + "), Text("string ", "a", "")},
        {"+ of a text and numbers", "'' + 1 + 1 + ...", Row(L"''", L" + 1", L""), Text("string ", "1", "")},
        {"+ of units", "{1 mm} + {1 mm} + ...", Chain(L"{1 mm}", L" + "), units},
        {"+ of signed terms", "0 + -1 + -1 + ...", Row(L"0", L" + -1", L""), Int(-1)},
        {"-", "0 - 1 - 1 - ...", Row(L"0", L" - 1", L""), Int(-1)},
        {"*", "1 * 1 * ...", Chain(L"1", L" * "), Always("int 1")},
        {"* of units", "({1 mm} * {1 mm} * ...).Power",
         [](int size) { return L'(' + Chain(L"{1 mm}", L" * ")(size) + L").Power"; }, Int(1)},
        {"/", "1 / 1 / ...", Chain(L"1", L" / "), Always("double 1")},
        {"/ of units", "({1 mm} / {1 mm} / ...).Power",
         [](int size) { return L'(' + Chain(L"{1 mm}", L" / ")(size) + L").Power"; }, Int(-1, 2)},
        {"\\", "1 \\ 1 \\ ...", Chain(L"1", L" \\ "), Always("int 1")},
        {"^", "1 ^ 1 ^ ...", Chain(L"1", L" ^ "), Always("double 1")},
        {"^ of units", "{1 mm} ^ 1 ^ 1 ^ ...", Row(L"{1 mm}", L" ^ 1", L""), Always("unit 1 mm")},
        {"and", "true and true and ...", Chain(L"true", L" and "), Always("bool true")},
        {"or", "false or false or ...", Chain(L"false", L" or "), Always("bool false")},
        {"and, or", "true and 1 or true and 1 or ...", Chain(L"true and 1", L" or "), Always("bool true")},
        {"and of comparisons", "1 < 2 and 1 < 2 and ...", Chain(L"1 < 2", L" and "), Always("bool true")},
        {"=", "1 = 1 = ...", Chain(L"1", L" = "), Always("bool true")},
        {"==", "1 == 1 == ...", Chain(L"1", L" == "), Always("bool true")},
        {"= of texts", "'true' = 'true' = ...", Chain(L"'true'", L" = "), Always("bool true")},
        {"<", "0 < 1 < 1 < ...", Row(L"0", L" < 1 < 1", L""), Always("bool false")},
        {"not", "not 1 = 1 = ...", [](int size) { return L"not " + Chain(L"1", L" = ")(size); }, Always("bool false")},
        {"else-if", "1 > 2 ? 8 : 1 > 2 ? 8 : ...7", Row(L"", L"1 > 2 ? 8 : ", L"7"), Always("int 7")},
        {"methods", "'a'.Trim().Trim()...", Row(L"'a'", L".Trim()", L""), Always("string a")},
        {"properties", "'a'.This.This...", Row(L"'a'", L".This", L""), Always("string a")},
        {"members of null", "null.a.a...", Row(L"null", L".a", L""), Always("null null")},
        {"members in a group", "7[.This.This...]", Row(L"7[", L".This", L"]"), Always("int 7")},
        {"a failure at the end", "1 + 1 + ... + 1 \\ 0", Row(L"", L"1 + ", L"1 \\ 0"), Always("! Division By Zero")},
        {"a failure at the beginning", "1 \\ 0 + 1 + 1 + ...", Row(L"1 \\ 0", L" + 1", L""),
         Always("! Division By Zero")},
    };
}

} // namespace OrvUQL::Tests
