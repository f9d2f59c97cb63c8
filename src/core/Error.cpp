#include "OrvUQL/Error.h"

#include "core/Failure.h"

namespace OrvUQL {

namespace {

/// By the numbers that the standard libraries of g++ and Microsoft share; 13 and 14 are Microsoft's, and this
/// library's own where it knows better than g++ which mistake a pattern makes.
constexpr const wchar_t* regexTexts[] = {
    L"the expression contained an invalid collating element name",
    L"the expression contained an invalid character class name",
    L"the expression contained an invalid escape sequence",
    L"the expression contained an invalid back reference",
    L"the expression contained an unmatched '[' or ']'",
    L"the expression contained an unmatched '(' or ')'",
    L"the expression contained an unmatched '{' or '}'",
    L"the expression contained an invalid count in a { } expression",
    L"the expression contained an invalid character range specifier",
    L"parsing a regular expression failed because there were not enough resources available",
    L"a repeat expression (one of '*', '?', '+', '{' in most contexts) was not preceded by an expression",
    L"an attempted match failed because it was too complex",
    L"an attempted match failed because there was not enough memory available",
    L"unable to parse the expression",
    L"the expression contained a syntax error",
};

constexpr int regexTextCount = static_cast<int>(sizeof(regexTexts) / sizeof(regexTexts[0]));

} // namespace

Error::Error(const wchar_t* text) : message(text) {}

Error::Error(OrvStringT text) noexcept : message(std::move(text)) {}

Error::~Error() = default;

OrvStringT Error::GetMessageW() const { return message; }

IError* Error::CreateFormatted(const wchar_t* format, const wchar_t* const* inserts, int count) noexcept {
    try {
        OrvStringT text;
        text.FormatInserts(format, inserts, count);
        return new Error(std::move(text));
    } catch (...) {
        return nullptr;
    }
}

IError* Error::CreateRegexError(int code) noexcept {
    try {
        OrvStringT text(ORV_TEXT(L"Error in regular expression: "));
        text += code >= 0 && code < regexTextCount ? regexTexts[code] : L"unknown error";
        return new Error(std::move(text));
    } catch (...) {
        return nullptr;
    }
}

} // namespace OrvUQL
