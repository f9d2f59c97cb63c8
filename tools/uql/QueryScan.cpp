#include "QueryScan.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace OrvUQL::Tool {

namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool IsOperatorWord(std::string_view word) {
    std::string lower(word);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    constexpr std::array<std::string_view, 3> words = {"and", "or", "not"};
    return std::find(words.begin(), words.end(), lower) != words.end();
}

std::size_t EndOfString(std::string_view text, std::size_t begin, bool& isOpen) {
    for (std::size_t place = begin + 1; place < text.size(); ++place) {
        if (text[place] != '\'') {
            continue;
        }
        if (place + 1 < text.size() && text[place + 1] == '\'') {
            ++place; // two quotes are one in the string
        } else {
            isOpen = false;
            return place + 1;
        }
    }
    isOpen = true;
    return text.size();
}

std::size_t EndOfNumber(std::string_view text, std::size_t begin) {
    std::size_t place = begin;
    while (place < text.size()) {
        const bool isPoint = text[place] == '.' && place + 1 < text.size() && IsDigit(text[place + 1]);
        if (!IsDigit(text[place]) && !IsLetter(text[place]) && !isPoint) {
            break;
        }
        ++place;
    }
    return place;
}

char GetOpening(char closing) { return closing == ')' ? '(' : closing == ']' ? '[' : '{'; }

} // namespace

QueryScan::QueryScan(std::string_view query) : text(query) {
    for (std::size_t place = 0; place < text.size();) {
        const char c = text[place];
        QueryToken token{QueryToken::Sign, place, place + 1, false};
        if (IsBlank(c)) {
            ++place;
            continue;
        }
        if (c == '\'') {
            token.kind = QueryToken::String;
            token.end = EndOfString(text, place, token.isOpen);
        } else if (IsDigit(c)) {
            token.kind = QueryToken::Number;
            token.end = EndOfNumber(text, place);
        } else if (IsLetter(c) || c == '@' || c == '$') {
            token.kind = QueryToken::Word;
            while (token.end < text.size() && (IsLetter(text[token.end]) || IsDigit(text[token.end]))) {
                ++token.end;
            }
        }
        place = token.end;
        tokens.push_back(token);
    }
}

bool QueryScan::IsSign(std::size_t token, char sign) const {
    return token < tokens.size() && tokens[token].kind == QueryToken::Sign && text[tokens[token].begin] == sign;
}

bool QueryScan::IsName(std::size_t token) const {
    return token < tokens.size() && tokens[token].kind == QueryToken::Word && !IsOperatorWord(GetText(tokens[token]));
}

bool QueryScan::EndsValue(std::size_t end) const {
    if (end == 0) {
        return false;
    }
    const std::size_t last = end - 1;
    switch (tokens[last].kind) {
    case QueryToken::Sign:
        return IsSign(last, ')') || IsSign(last, ']') || IsSign(last, '}');
    case QueryToken::Word:
        return IsName(last);
    default:
        return true;
    }
}

bool QueryScan::IsOpen() const {
    std::string open;
    for (const QueryToken& token : tokens) {
        if (token.kind == QueryToken::String && token.isOpen) {
            return true;
        }
        const char c = token.kind == QueryToken::Sign ? text[token.begin] : '\0';
        if (c == '(' || c == '[' || c == '{') {
            open += c;
        } else if (c == ')' || c == ']' || c == '}') {
            if (open.empty() || open.back() != GetOpening(c)) {
                return false; // nothing that follows makes it right
            }
            open.pop_back();
        }
    }
    return !open.empty();
}

std::size_t QueryScan::FindOpenBracket(std::size_t end) const {
    std::size_t depth = 0;
    for (std::size_t token = end; token-- > 0;) {
        if (IsSign(token, ')') || IsSign(token, ']') || IsSign(token, '}')) {
            ++depth;
        } else if (IsSign(token, '(') || IsSign(token, '[') || IsSign(token, '{')) {
            if (depth == 0) {
                return token;
            }
            --depth;
        }
    }
    return none;
}

std::size_t QueryScan::FindOpening(std::size_t closing) const {
    const std::size_t opening = FindOpenBracket(closing);
    const bool fits = opening != none && IsSign(opening, GetOpening(text[tokens[closing].begin]));
    return fits ? opening : none;
}

std::size_t QueryScan::FindChain(std::size_t end) const {
    for (std::size_t begin = end; begin > 0;) {
        const std::size_t last = begin - 1;
        if (IsSign(last, ')') || IsSign(last, ']') || IsSign(last, '}')) {
            begin = FindOpening(last);
            if (begin == none) {
                return none;
            }
            if (IsSign(last, ']')) {
                continue; // a group stands behind its source
            }
            if (IsSign(last, ')') && begin > 0 && IsName(begin - 1)) {
                --begin;
            }
        } else if (tokens[last].kind == QueryToken::Sign || (tokens[last].kind == QueryToken::Word && !IsName(last))) {
            return none;
        } else {
            begin = last;
        }
        if (begin == 0 || !IsSign(begin - 1, '.')) {
            return begin;
        }
        --begin;
        if (!EndsValue(begin)) {
            return begin;
        }
    }
    return none;
}

std::optional<std::string> QueryScan::GetChainText(std::size_t begin, std::size_t end) const {
    std::string chain;
    if (begin < end) {
        chain = text.substr(tokens[begin].begin, tokens[end - 1].end - tokens[begin].begin);
    }
    if (begin < end && !IsSign(begin, '.')) {
        return chain;
    }
    std::size_t bracket = FindOpenBracket(begin);
    while (bracket != none && !IsSign(bracket, '[')) { // the arguments of a call know the same group
        bracket = FindOpenBracket(bracket);
    }
    const std::size_t source = bracket == none ? none : FindChain(bracket);
    if (source == none) {
        return std::nullopt;
    }
    const std::optional<std::string> sourceText = GetChainText(source, bracket);
    return sourceText ? std::optional<std::string>(*sourceText + chain) : std::nullopt;
}

} // namespace OrvUQL::Tool
