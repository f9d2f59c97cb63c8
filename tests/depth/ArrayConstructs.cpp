#include "depth/Constructs.h"

namespace OrvUQL::Tests {

namespace {

/// A query about an array of so many texts 'a'.
std::function<std::wstring(int)> OfArray(const wchar_t* query) {
    return [query](int size) {
        const std::wstring array = L"'a'.Repeat(" + std::to_wstring(size) + L").ToCharArray()";
        std::wstring text;
        for (const wchar_t unit : std::wstring_view(query)) {
            text += unit == L'#' ? array : std::wstring(1, unit);
        }
        return text;
    };
}

// What compares each with each, or copies for each item all that is there already.
constexpr bool quadratic = false;
constexpr int few = 1000;

} // namespace

std::vector<Construct> ArrayConstructs() {
    return {
        {"the text of an array", "A.ToString().Length()", OfArray(L"#.ToString().Length()"), Int(2, 1)},
        {"Join", "A.Join(', ').Length()", OfArray(L"#.Join(', ').Length()"), Int(3, -2)},
        {"Item", "A.Item(A.Count())", OfArray(L"#.Item(#.Count())"), Always("string a")},
        {"Add", "A.Add(1).Count()", OfArray(L"#.Add(1).Count()"), Int(1, 1)},
        {"AddArray", "A.AddArray(A).Count()", OfArray(L"#.AddArray(#).Count()"), Int(2)},
        {"Filter", "A.Filter($item = 'a').Count()", OfArray(L"#.Filter($item = 'a').Count()"), Int(1)},
        {"Convert", "A.Convert($index).Last()", OfArray(L"#.Convert($index).Last()"), Int(1)},
        {"Convert to arrays", "A.Convert($item.ToCharArray()).Count()",
         OfArray(L"#.Convert($item.ToCharArray()).Count()"), Int(1)},
        {"Convert by an inner fold", "A.Convert(array(1, 2).ForEach(0, $lasteval + $item)).Last()",
         OfArray(L"#.Convert(array(1, 2).ForEach(0, $lasteval + $item)).Last()"), Always("int 3")},
        {"ForEach", "A.ForEach(0, $lasteval + 1)", OfArray(L"#.ForEach(0, $lasteval + 1)"), Int(1)},
        {"ForEach that fails at the end", "A.ForEach(N, 1 \\ ($index - N))",
         [](int size) {
             const std::wstring count = std::to_wstring(size);
             return L"'a'.Repeat(" + count + L").ToCharArray().ForEach(0, 1 \\ ($index - " + count + L"))";
         },
         Always("! Division By Zero")},
        {"Contains, with an expression", "A.Contains($item = 'b')", OfArray(L"#.Contains($item = 'b')"),
         Always("bool false")},
        {"Find", "A.Find('b')", OfArray(L"#.Find('b')"), Always("bool false")},
        {"IndexOf, of an array", "A.IndexOf('b')", OfArray(L"#.IndexOf('b')"), Always("int 0")},
        {"Unique, all equal", "A.Unique().Count()", OfArray(L"#.Unique().Count()"), Always("int 1")},
        {"Unique, all different", "A.Convert($index).Unique().Count()", OfArray(L"#.Convert($index).Unique().Count()"),
         Int(1)},
        {"Unique of units, all different", "A.Convert({1 mm} * $index).Unique().Count()",
         OfArray(L"#.Convert({1 mm} * $index).Unique().Count()"), Int(1), Ends::Never, few, quadratic},
        {"a text made longer, again and again",
         "A.ForEach('', $lasteval + 'thirty-two units of text, or more').Length()",
         OfArray(L"#.ForEach('', $lasteval + 'thirty-two units of text, or more').Length()"), Int(33), Ends::Never, few,
         quadratic},
        {"Add, again and again", "A.ForEach(array(), $lasteval.Add($item)).Count()",
         OfArray(L"#.ForEach(array(), $lasteval.Add($item)).Count()"), Int(1), Ends::Never, few, quadratic},
    };
}

} // namespace OrvUQL::Tests
