#include "eval/OperatorCode.h"

#include "platform/CaseMap.h"

namespace OrvUQL::detail {

using namespace std::string_view_literals;

namespace {

struct ComparisonText {
    std::wstring_view text;
    EOperType type;
};

/// Whole texts only: "=!", "<<" and ">>" can be written and mean nothing.
constexpr ComparisonText comparisons[] = {
    {L"<"sv, OperLess},          {L"="sv, OperEqual},      {L">"sv, OperGreater},    {L">="sv, OperGreaterEqual},
    {L"=>"sv, OperGreaterEqual}, {L"<="sv, OperLessEqual}, {L"=<"sv, OperLessEqual}, {L"=="sv, OperStrictEqual},
    {L"<>"sv, OperNotEqual},     {L"><"sv, OperNotEqual},  {L"!="sv, OperNotEqual},
};

OperatorCode DecodeCharacter(wchar_t text) noexcept {
    switch (text) {
    case L'&':
        return OperatorCode::And;
    case L'|':
        return OperatorCode::Or;
    case L'+':
        return OperatorCode::Plus;
    case L'-':
        return OperatorCode::Minus;
    case L'*':
        return OperatorCode::Multiply;
    case L'/':
        return OperatorCode::Divide;
    case L'\\':
        return OperatorCode::IntDivide;
    case L'^':
        return OperatorCode::Power;
    case L'<':
        return OperatorCode::Less;
    case L'=':
        return OperatorCode::Equal;
    case L'>':
        return OperatorCode::Greater;
    default:
        return OperatorCode::Unknown;
    }
}

} // namespace

EOperType DecodeComparison(std::wstring_view text) noexcept {
    for (const ComparisonText& comparison : comparisons) {
        if (comparison.text == text) {
            return comparison.type;
        }
    }
    return OperNone;
}

OperatorCode DecodeUnary(std::wstring_view text) noexcept {
    if (text.size() == 1) {
        switch (text[0]) {
        case L'!':
            return OperatorCode::Not;
        case L'+':
            return OperatorCode::Plus;
        case L'-':
            return OperatorCode::Minus;
        default:
            return OperatorCode::Unknown;
        }
    }
    return platform::EqualsIgnoreCase(text, L"not"sv) ? OperatorCode::Not : OperatorCode::Unknown;
}

OperatorCode DecodeBinary(std::wstring_view text) noexcept {
    if (text.size() == 1) {
        return DecodeCharacter(text[0]);
    }
    if (platform::EqualsIgnoreCase(text, L"and"sv)) {
        return OperatorCode::And;
    }
    if (platform::EqualsIgnoreCase(text, L"or"sv)) {
        return OperatorCode::Or;
    }
    if (text.find_first_of(L"<>="sv) != std::wstring_view::npos) {
        return static_cast<OperatorCode>(DecodeComparison(text));
    }
    return OperatorCode::Unknown;
}

OperatorCode DecodeTernary(std::wstring_view text) noexcept {
    return text == L"?"sv ? OperatorCode::Conditional : OperatorCode::Unknown;
}

} // namespace OrvUQL::detail
