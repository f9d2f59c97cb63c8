#include "depth/Constructs.h"

namespace OrvUQL::Tests {

namespace {

/// An array in an array and so on, made without a query that nests. It may be followed by a method or an operator.
std::wstring DeepArray(int size, const wchar_t* rest) {
    return L"'a'.Repeat(" + std::to_wstring(size) + L").ToCharArray().ForEach(7, array($lasteval))" + rest;
}

std::function<std::wstring(int)> OfDeepArray(const wchar_t* rest) {
    return [rest](int size) { return DeepArray(size, rest); };
}

/// By whether the size is even.
std::function<std::string(int)> ByTurns(const char* even, const char* odd) {
    return [=](int size) { return std::string(size % 2 == 0 ? even : odd); };
}

std::string DeepText(const std::string& begin, int size, const std::string& end) {
    return begin + Times(size, "(") + "7" + Times(size, ")") + end;
}

} // namespace

std::vector<Construct> NestedConstructs() {
    const auto deepArray = [](int size) { return DeepText("array ", size, ""); };
    return {
        {"parentheses", "((...7...))", Around(L"(", L"7", L")"), Always("int 7"), Ends::WithStack},
        {"signs", "-(-(...7...))", Around(L"-(", L"7", L")"), ByTurns("int 7", "int -7"), Ends::WithStack},
        {"negations", "not (not (...true...))", Around(L"not (", L"true", L")"), ByTurns("bool true", "bool false"),
         Ends::WithStack},
        {"conditions", "((...true... ? true : false) ? true : false)", Around(L"(", L"true", L" ? true : false)"),
         Always("bool true"), Ends::WithStack},
        {"first branches", "true ? true ? ...7... : 8 : 8", Around(L"true ? ", L"7", L" : 8"), Always("int 7"),
         Ends::WithStack},
        {"second branches", "false ? 8 : false ? 8 : ...7", Row(L"", L"false ? 8 : ", L"7"), Always("int 7")},
        {"right operands", "1 + (1 + (...0...))", Around(L"1 + (", L"0", L")"), Int(1), Ends::WithStack},
        {"right truths", "true and (true and (...true...))", Around(L"true and (", L"true", L")"), Always("bool true"),
         Ends::WithStack},
        {"groups in groups", "7[7[...7...]]", Around(L"7[", L"7", L"]"), Always("int 7"), Ends::WithStack},
        {"groups of groups", "((...7...[8])[8])", Around(L"(", L"7", L"[8])"), Always("int 8"), Ends::WithStack},
        {"units with groups", "{1 mm}[{1 mm}[....Power...]]", Around(L"{1 mm}[", L".Power", L"]"), Always("int 1"),
         Ends::WithStack},
        {"arguments", "max(max(...7...))", Around(L"max(", L"7", L")"), Always("int 7"), Ends::WithStack},
        {"second arguments", "max(1, max(1, ...7...))", Around(L"max(1, ", L"7", L")"), Always("int 7"),
         Ends::WithStack},
        {"chosen arguments", "iif(true, iif(true, ...7..., 8), 8)", Around(L"iif(true, ", L"7", L", 8)"),
         Always("int 7"), Ends::WithStack},
        {"arrays in arrays", "array(array(...7...))", Around(L"array(", L"7", L")"), deepArray, Ends::WithStack},
        {"expressions of Convert", "array(1).Convert(array(1).Convert(...7...))",
         Around(L"array(1).Convert(", L"7", L")"), deepArray, Ends::WithStack},
        {"expressions of Filter", "array(1).Filter(array(1).Filter(...true...).Count()).Count()",
         Around(L"array(1).Filter(", L"true", L").Count()"), Always("int 1"), Ends::WithStack},
        {"expressions of Contains", "array(1).Contains(array(1).Contains(...true...))",
         Around(L"array(1).Contains(", L"true", L")"), Always("bool true"), Ends::WithStack},
        {"expressions of ForEach", "array(1).ForEach(0, array(1).ForEach(0, ...7...))",
         Around(L"array(1).ForEach(0, ", L"7", L")"), Always("int 7"), Ends::WithStack},
        {"expressions of RegReplaceEx", "'a'.RegReplaceEx('a', 'a'.RegReplaceEx('a', ...7...))",
         Around(L"'a'.RegReplaceEx('a', ", L"7", L")"), Always("string 7"), Ends::WithStack},
        {"expressions of all these", "array(1).Filter(array(1).Convert(array(1).ForEach(0, ...)).Count()).Count()",
         Around(L"array(1).Filter(array(1).Convert(array(1).ForEach(0, ", L"true", L")).Count()).Count()"),
         Always("int 1"), Ends::WithStack},

        {"a deep value", "(A).ForEach(7, array($lasteval))", OfDeepArray(L""), deepArray},
        {"the text of a deep value", "(A).ForEach(7, array($lasteval)).ToString().Length()",
         OfDeepArray(L".ToString().Length()"), Int(2, 1)},
        {"a deep value joined", "(A).ForEach(7, array($lasteval)).Join(',').Length()",
         OfDeepArray(L".Join(',').Length()"), Int(2, -1)},
        {"a deep value as a number", "(A).ForEach(7, array($lasteval)) * 1", OfDeepArray(L" * 1"),
         [](int size) { return DeepText("! Cannot convert string '", size, "' to a number"); }},
        {"deep values compared", "array(D).Find(D), where D is (A).ForEach(7, array($lasteval))",
         [](int size) { return L"array(" + DeepArray(size, L"") + L").Find(" + DeepArray(size, L"") + L")"; },
         Always("! Cannot compare object 'array' to object 'array'. Incompatible types for this operation")},
    };
}

} // namespace OrvUQL::Tests
