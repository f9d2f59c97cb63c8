// Unit literals: {2.54 cm}, {10 mm²}, {1 in^-2}.

#include "OrvUQL/ObjectString.h"
#include "OrvUQL/ObjectUnit.h"

#include "parser/Parser.h"

namespace OrvUQL {

namespace {

/// A power's digits are read as long as the power stays below this.
constexpr int powerLimit = 100;

std::wstring_view ReadLetters(ParseCursor& cursor) noexcept {
    const wchar_t* const begin = cursor.text + cursor.position;
    const wchar_t* end = begin;
    while (IsNameLetter(*end)) {
        ++end;
    }
    cursor.position = static_cast<int>(end - cursor.text);
    return std::wstring_view(begin, static_cast<std::size_t>(end - begin));
}

} // namespace

Parser::Element Parser::ParseUnit() {
    const int position = cursor.position;
    ++cursor.position;
    SkipSpaces(cursor);
    const int numberPosition = cursor.position;
    const std::wstring_view number = ReadNumberView(cursor);
    if (number.empty()) {
        return Report(message::unitValueExpected);
    }
    SkipSpaces(cursor);
    const int namePosition = cursor.position;
    const OrvStringT name(ReadLetters(cursor));
    if (name.IsEmpty()) {
        return Report(message::unitNameExpected);
    }
    SkipSpaces(cursor);
    const int power = ReadUnitPower();
    SkipSpaces(cursor);
    if (cursor.text[cursor.position] != L'}') {
        return Report(message::braceExpected);
    }
    const int end = cursor.position + 1;
    const Reference<IUnitDefinition> unit(engine->FindUnit(name.GetString()));
    if (!unit) {
        cursor.position = namePosition;
        return Report(message::unknownUnit, name);
    }
    const Reference<ObjectString> text(new ObjectString(OrvStringT(number)));
    double value = 0;
    if (!text->ToDouble(value, err)) {
        cursor.position = numberPosition;
        return Element();
    }
    Reference<IObject> object(new ObjectUnit(unit.Get(), value, power, true));
    Element literal(new ElementObject(object.Get(), position, false));
    object.Detach();
    MoveTo(end);
    return literal;
}

/// The power's mark or digits, 1 if there are none. "^" alone is power 0, deliberately.
int Parser::ReadUnitPower() noexcept {
    const wchar_t mark = cursor.text[cursor.position];
    if (mark == L'\u00b2' || mark == L'\u00b3') {
        ++cursor.position;
        return mark == L'\u00b2' ? 2 : 3;
    }
    if (mark != L'^' && !IsDigit(mark)) {
        return 1;
    }
    bool negative = false;
    if (mark == L'^') {
        ++cursor.position;
        SkipSpaces(cursor);
        negative = cursor.text[cursor.position] == L'-';
        cursor.position += negative ? 1 : 0;
    }
    int power = 0;
    for (; IsDigit(cursor.text[cursor.position]); ++cursor.position) {
        power = power * 10 + static_cast<int>(cursor.text[cursor.position] - L'0');
        if (power >= powerLimit) {
            break; // the digit stays, and the closing brace is missed there
        }
    }
    return negative ? -power : power;
}

} // namespace OrvUQL
