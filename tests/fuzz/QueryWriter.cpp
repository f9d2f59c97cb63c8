#include "fuzz/QueryWriter.h"

#include <cwctype>
#include <iterator>

namespace OrvUQL::Tests {

const QueryWriter::Method QueryWriter::methods[] = {
    {L'*', L"ToBool", L"", L'B'},
    {L'*', L"ToInt", L"", L'I'},
    {L'*', L"ToDouble", L"", L'D'},
    {L'*', L"ToString", L"", L'S'},
    {L'*', L"TypeName", L"", L'S'},
    {L'*', L"This", L"", L'?'},
    {L'*', L"IsNumeric", L"", L'B'},
    {L'*', L"IsNull", L"", L'B'},
    {L'I', L"Abs", L"", L'I'},
    {L'D', L"Abs", L"", L'D'},
    {L'D', L"Round", L"i", L'D'},
    {L'I', L"Radix", L"Ii", L'S'},
    {L'D', L"ToRadians", L"", L'D'},
    {L'D', L"ToDegrees", L"", L'D'},
    {L'S', L"Length", L"", L'I'},
    {L'S', L"Empty", L"", L'B'},
    {L'S', L"ToUpper", L"", L'S'},
    {L'S', L"ToLower", L"", L'S'},
    {L'S', L"ToTitle", L"", L'S'},
    {L'S', L"CharCode", L"", L'I'},
    {L'S', L"SubStr", L"Ii", L'S'},
    {L'S', L"Delete", L"Ii", L'S'},
    {L'S', L"Trim", L"s", L'S'},
    {L'S', L"LTrim", L"s", L'S'},
    {L'S', L"RTrim", L"s", L'S'},
    {L'S', L"Repeat", L"I", L'S'},
    {L'S', L"StartsWith", L"Sb", L'B'},
    {L'S', L"EndsWith", L"Sb", L'B'},
    {L'S', L"Contains", L"Sb", L'B'},
    {L'S', L"Replace", L"SSb", L'S'},
    {L'S', L"Split", L"S", L'A'},
    {L'S', L"CharAt", L"I", L'S'},
    {L'S', L"CharCodeAt", L"I", L'I'},
    {L'S', L"IndexOf", L"S", L'I'},
    {L'S', L"LastIndexOf", L"S", L'I'},
    {L'S', L"ToCharArray", L"", L'A'},
    {L'S', L"ParseInt", L"i", L'I'},
    {L'S', L"RegMatch", L"Rb", L'B'},
    {L'S', L"RegMatchEx", L"Rb", L'A'},
    {L'S', L"RegContains", L"Rb", L'B'},
    {L'S', L"RegContainsEx", L"Rb", L'A'},
    {L'S', L"RegReplace", L"RSb", L'S'},
    {L'S', L"RegReplaceEx", L"REb", L'S'},
    {L'S', L"RegSplit", L"Rb", L'A'},
    {L'S', L"RegFind", L"Rb", L'I'},
    {L'A', L"Count", L"", L'I'},
    {L'A', L"Empty", L"", L'B'},
    {L'A', L"Add", L"O", L'A'},
    {L'A', L"Item", L"I", L'?'},
    {L'A', L"Join", L"S", L'S'},
    {L'A', L"ForEach", L"OEo", L'?'},
    {L'A', L"Filter", L"Eo", L'A'},
    {L'A', L"Convert", L"Eo", L'A'},
    {L'A', L"Find", L"O", L'?'},
    {L'A', L"IndexOf", L"O", L'I'},
    {L'A', L"First", L"", L'?'},
    {L'A', L"Last", L"", L'?'},
    {L'A', L"Contains", L"Eo", L'B'},
    {L'A', L"AddArray", L"A", L'A'},
    {L'A', L"Unique", L"", L'A'},
    {L'U', L"Category", L"", L'S'},
    {L'U', L"Power", L"", L'I'},
    {L'U', L"Unit", L"", L'S'},
    {L'U', L"DisplayUnit", L"", L'S'},
    {L'U', L"Value", L"", L'D'},
    {L'U', L"BaseValue", L"", L'D'},
    {L'U', L"Convert", L"S", L'U'},
    {L'U', L"Round", L"i", L'U'},
    {L'g', L"pi", L"", L'D'},
    {L'g', L"e", L"", L'D'},
    {L'g', L"min", L"Dddd", L'?'},
    {L'g', L"max", L"IIid", L'?'},
    {L'g', L"sqrt", L"D", L'D'},
    {L'g', L"sin", L"D", L'D'},
    {L'g', L"exp", L"D", L'D'},
    {L'g', L"log", L"D", L'D'},
    {L'g', L"iif", L"BOO", L'?'},
    {L'g', L"array", L"oooooo", L'A'},
    {L'g', L"array", L"", L'A'},
    {L'g', L"chr", L"I", L'S'},
    {L'g', L"radix", L"IIi", L'S'},
    {L'g', L"round", L"Di", L'D'},
    {L'g', L"int", L"", L'I'},
    {L'g', L"string", L"", L'S'},
};
const std::size_t QueryWriter::methodCount = std::size(QueryWriter::methods);

std::wstring QueryWriter::Write() {
    text.clear();
    Kinded(AnyKind(), 5);
    return text;
}

wchar_t QueryWriter::AnyKind() { return L"BIDSSAAU"[choices.Below(8)]; }

void QueryWriter::Literal(wchar_t kind) {
    switch (kind) {
    case L'B':
        return Put({L"true", L"false", L"@b1", L"@vb", L"$b0", L"null"});
    case L'I':
        return Put({L"0", L"1", L"2", L"3", L"7", L"10", L"16", L"100", L"2147483647", L"0x80000000", L"@i", L"@i3",
                    L"@i5", L"(-1)", L"@n", L"@vi", L"@vv", L"@vi", L"@vn"});
    case L'D':
        return Put({L"0.0", L"1.5", L"2.0", L"0.1", L"1e300", L"1e-5", L"12345.678", L"@d1", L"@d3", L"@d6", L"@d7",
                    L"@vd", L"@vv"});
    case L'A':
        return Put({L"array(1, 2, 3)", L"array('a', 'b', 'a')", L"array(2, 1.0, true, null, '2')", L"@a", L"@a1",
                    L"@a2", L"@a3", L"@va", L"array(array(1), array())", L"array({1 cm}, {10 mm}, {1 in^2})"});
    case L'U':
        return Put({L"{1 cm}", L"{2.54 mm^2}", L"{0 in}", L"{1 km^-3}", L"@u", L"@u1", L"@u3", L"{7 pt^0}"});
    case L'R':
        return Put({L"'a'", L"'.'", L"'^a+$'", L"'[a-c]*'", L"'(a)|(b)'", L"'\\d+'", L"'(x?)(y?)'", L"'\\s*,\\s*'",
                    L"'[^,]+'", L"'\\w{2,3}?'", L"'(?=a)a'", L"'('", L"''", L"'\\b'", L"'(.)\\1'", L"'[[:alpha:]]+'"});
    default:
        return Put({L"''", L"'a'", L"'abc'", L"'12'", L"' x '", L"'true'", L"'1.5e3'", L"'a,b,c'", L"'it''s'", L"'mm'",
                    L"'$1$&'", L"'\u00e4\u00df\u0130'", L"@s", L"@s3", L"@s5", L"@s7", L"@vs", L"@vv"});
    }
}

/// What stands for the item inside of an expression over items.
void QueryWriter::Item(wchar_t kind) {
    if (groupDepth > 0 && choices.Below(2) == 0) {
        return Put({L".This", L".ToString()", L".i1", L".vi", L".vv", L".s2", L".Length", L".Item(1)"});
    }
    if (kind == L'I' && choices.Below(2) == 0) {
        return Put({L"$index", L"$item.ToInt", L"$item.Count"});
    }
    return Put({L"$item", L"$lasteval", L"$data", L"$item.This", L"$Item(1)", L"$index"});
}

void QueryWriter::Kinded(wchar_t kind, int depth) {
    if (kind == L'O' || kind == L'?') {
        kind = AnyKind();
    }
    if (kind == L'R' && choices.OneIn(8)) {
        kind = L'S';
    }
    if (depth <= 0 || kind == L'R' || choices.IsAtEnd()) {
        return Literal(kind);
    }
    switch (choices.Below(8)) {
    case 0:
        return Literal(kind);
    case 1:
        if (itemDepth + groupDepth > 0) {
            return Item(kind);
        }
        return Literal(kind);
    case 2:
    case 3:
    case 4:
        if (Call(kind, depth)) {
            return;
        }
        return Literal(kind);
    case 5:
        text += L'(';
        Kinded(L'B', depth - 1);
        text += L" ? ";
        Kinded(kind, depth - 1);
        text += L" : ";
        Kinded(choices.OneIn(8) ? AnyKind() : kind, depth - 1);
        text += L')';
        return;
    case 6:
        if (choices.Below(3) == 0) {
            text += L'(';
            Kinded(AnyKind(), depth - 1);
            text += L")[";
            ++groupDepth;
            Kinded(kind, depth - 1);
            --groupDepth;
            text += L']';
            return;
        }
        [[fallthrough]];
    default:
        return Operator(kind, depth);
    }
}

void QueryWriter::Operator(wchar_t kind, int depth) {
    text += L'(';
    if (kind == L'B' && choices.Below(4) == 0) {
        Put({L"not ", L"!"});
        Kinded(L'B', depth - 1);
    } else if (kind != L'B' && kind != L'S' && choices.Below(6) == 0) {
        Put({L"-", L"+"});
        Kinded(kind, depth - 1);
    } else {
        const wchar_t left = kind == L'B' && choices.Below(2) == 0 ? AnyKind() : kind;
        const bool isLogic = kind == L'B' && left == L'B' && choices.Below(2) == 0;
        Kinded(left, depth - 1);
        if (isLogic) {
            Put({L" and ", L" or ", L" & ", L" | "});
        } else if (kind == L'B') {
            Put({L" = ", L" == ", L" <> ", L" < ", L" > ", L" <= ", L" >= ", L" != ", L" => ", L" << "});
        } else if (kind == L'S' || kind == L'A') {
            text += L" + ";
        } else {
            Put({L" + ", L" - ", L" * ", L" / ", L" \\ ", L" ^ "});
        }
        text += L'(';
        Kinded(choices.OneIn(6) ? AnyKind() : left, depth - 1);
        text += L')';
        // A chain: one more operand on the same level.
        while (!choices.IsAtEnd() && choices.OneIn(3)) {
            isLogic ? Put({L" or ", L" and "}) : Put({L" + ", L" - ", L" * "});
            text += L'(';
            Kinded(left, depth - 2);
            text += L')';
        }
    }
    text += L')';
}

/// A call whose result is of this kind. False if the method picked gives another.
bool QueryWriter::Call(wchar_t result, int depth) {
    std::size_t index = choices.Below(methodCount);
    for (std::size_t tries = 0; methods[index].result != result && methods[index].result != L'?'; ++tries) {
        index = (index + 1) % methodCount;
        if (tries == methodCount) {
            return false;
        }
    }
    const Method& method = methods[index];
    if (method.kind != L'g') {
        text += L'(';
        const bool isOdd = choices.OneIn(16);
        Kinded(method.kind == L'*' || isOdd ? AnyKind() : method.kind, depth - 1);
        text += L").";
    }
    text += method.name;
    Arguments(method.arguments, depth);
    return true;
}

void QueryWriter::Arguments(const wchar_t* kinds, int depth) {
    text += L'(';
    for (const wchar_t* kind = kinds; *kind != 0; ++kind) {
        const bool isOptional = std::iswlower(static_cast<wint_t>(*kind)) != 0;
        if (isOptional && choices.Below(3) == 0) {
            break;
        }
        if (kind != kinds) {
            text += L", ";
        }
        const wchar_t upper = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(*kind)));
        if (upper == L'E') {
            ++itemDepth;
            Kinded(AnyKind(), depth - 1);
            --itemDepth;
        } else {
            Kinded(upper, depth - 1);
        }
    }
    text += L')';
}

} // namespace OrvUQL::Tests
