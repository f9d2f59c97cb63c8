// The text of a query that is being typed: its tokens, what is still open, and what stands before a place. Nothing here
// says whether the query is right; that is the parser's.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

struct QueryToken {
    enum EKind { Word, Number, String, Sign };

    EKind kind;
    std::size_t begin; ///< in bytes
    std::size_t end;
    bool isOpen = false; ///< a string without its closing quote
};

class QueryScan {
public:
    /// Of UTF-8, which is borrowed.
    explicit QueryScan(std::string_view query);

    const std::vector<QueryToken>& GetTokens() const { return tokens; }
    std::string_view GetText(const QueryToken& token) const {
        return text.substr(token.begin, token.end - token.begin);
    }

    /// True if a bracket, a brace or a quote waits for its end.
    bool IsOpen() const;
    /// True if the text ends inside of a string.
    bool EndsInString() const { return !tokens.empty() && tokens.back().isOpen; }

    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    /// The first token of the chain of names, calls and groups that the token before `end` ends: of `1 + a.b(2).c` that
    /// of `a`. None if that token ends no such thing. A chain inside of a group may begin with its dot.
    std::size_t FindChain(std::size_t end) const;
    /// The innermost bracket that is open before the token `end`; none if there is none.
    std::size_t FindOpenBracket(std::size_t end) const;
    /// What the chain from `begin` to before `end` stands for, as a query of its own: one that begins with a dot is put
    /// behind the source of its group. Nothing if it has none.
    std::optional<std::string> GetChainText(std::size_t begin, std::size_t end) const;

    bool IsSign(std::size_t token, char sign) const;
    bool IsName(std::size_t token) const;
    /// True if a value may end before the token `end`: no sign or word that asks for another.
    bool EndsValue(std::size_t end) const;

private:
    std::size_t FindOpening(std::size_t closing) const;

    std::string_view text;
    std::vector<QueryToken> tokens;
};

} // namespace OrvUQL::Tool
