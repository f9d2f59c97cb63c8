#include "depth/Constructs.h"

namespace OrvUQL::Tests {

std::vector<Construct> LongConstructs() {
    return {
        {"a number with zeros before", "00...07", Row(L"", L"0", L"7"), Always("int 7")},
        {"a number with many decimals", "0.33...3", Row(L"0.", L"3", L""),
         [](int size) { return "double 0." + Times(size < 16 ? size : 16, "3"); }},
        {"an exponent with zeros before", "1e00...05", Row(L"1e", L"0", L"5"), Always("int 100000")},
        {"a hexadecimal number with zeros before", "0x00...07", Row(L"0x", L"0", L"7"), Always("int 7")},
        {"a hexadecimal number beyond the limits", "0xFF...F", Row(L"0x", L"F", L""), Always("int -1")},
        {"a text", "'aa...a'", Row(L"'", L"a", L"'"), Text("string ", "a", "")},
        {"a text of apostrophes", "''''...''", Row(L"'", L"''", L"'"), Text("string ", "'", "")},
        {"white space", "(   ...7   ...)",
         [](int size) {
             return L'(' + std::wstring(static_cast<std::size_t>(size), L' ') + L"7" +
                    std::wstring(static_cast<std::size_t>(size), L'\n') + L')';
         },
         Always("int 7")},
        {"a unit's number with zeros before", "{00...01 mm}", Row(L"{", L"0", L"1 mm}"), Always("unit 1 mm")},
        {"a unit's power with zeros before", "{1 mm^00...02}", Row(L"{1 mm^", L"0", L"2}"),
         Always("unit 1 mm\xc2\xb2")},
        {"arguments of array", "array(1, 1, ...).Count()",
         [](int size) { return L"array(" + Chain(L"1", L", ")(size) + L").Count()"; }, Int(1)},
        {"arguments of max", "max(1, 1, ...)", [](int size) { return L"max(" + Chain(L"1", L", ")(size) + L')'; },
         Always("int 1")},
        {"arguments that are too many", "'a'.Length(1, 1, ...)",
         [](int size) { return L"'a'.Length(" + Chain(L"1", L", ")(size) + L')'; },
         // (The method takes none. The message names the place of the last argument.)
         [](int size) {
             return "! Too many parameters specified for method Length. It expects only " + std::to_string(size - 1);
         }},

        {"a name that nobody knows", "aa...a", Row(L"", L"a", L""),
         Text("! Identifier '", "a",
              "' is not a method of "
              "'global'")},
        {"a member that nobody knows", "'x'.aa...a", Row(L"'x'.", L"a", L""),
         Text("! Identifier '", "a", "' is not a method of 'string'")},
        {"a variable without a value", "$aa...a", Row(L"$", L"a", L""),
         Text("! Invalid use of '$", "a", "' in the current context at position 0")},
        {"a property without a source", "@aa...a", Row(L"@", L"a", L""),
         Text("! Invalid use of '@", "a", "' in the current context at position 0")},
        {"a token where none may be", "1 aa...a", Row(L"1 ", L"a", L""),
         Text("! Error parsing query: Unexpected token '", "a", "' at position 3")},
        {"an unknown unit", "{1 aa...a}", Row(L"{1 ", L"a", L"}"),
         Text("! Error parsing query: Unknown unit name '", "a", "' at position 4")},
        {"a text without an end", "'aa...a", Row(L"'", L"a", L""),
         Always("! Error parsing query: Unterminated string constant at position 1")},
        {"a unit's power beyond the limits", "{1 mm^99...9}", Row(L"{1 mm^", L"9", L"}"),
         Always("! Error parsing query: Closing '}' expected at position 9")},
        {"a number beyond the limits", "1e99...9", Row(L"1e", L"9", L""),
         Text("! Cannot convert string '1e", "9", "' to a number")},
        {"a text that is no int", "'aa...a'.ToInt()", Sized(L"'a'.Repeat(#).ToInt()"),
         Text("! Cannot convert string '", "a", "' to Integer")},
        {"a text that is no truth", "'aa...a' ? 1 : 2", Sized(L"'a'.Repeat(#) ? 1 : 2"),
         Text("! Cannot convert string '", "a", "' to Boolean")},
        {"a text that is no number", "'aa...a' * 1", Sized(L"'a'.Repeat(#) * 1"),
         Text("! Cannot convert string '", "a", "' to a number")},
        {"an array that is no number", "array('a', 'a', ...).ToDouble()",
         Sized(L"'a'.Repeat(#).ToCharArray().ToDouble()"),
         [](int size) { return "! Cannot convert string '(a" + Times(size - 1, ",a") + ")' to Double"; }},
        {"a text that is no unit", "{1 mm} = 'aa...a'", Sized(L"{1 mm} = 'a'.Repeat(#)"),
         Text("! Cannot convert value '", "a", "' of type 'string' to type 'Unit'")},
        {"a unit's name that nobody knows", "{1 mm}.Convert('aa...a')", Sized(L"{1 mm}.Convert('a'.Repeat(#))"),
         Text("! Invalid unit name '", "a", "'")},
    };
}

} // namespace OrvUQL::Tests
