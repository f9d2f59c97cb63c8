// The grammar of queries, and its parser.
//
//   query      = condition END
//   condition  = logic [ "?" condition ":" condition ]
//   logic      = comparison { ( "and" | "&" | "or" | "|" ) comparison }         one precedence for all four
//   comparison = [ "not" | "!" ] sum { compare sum }                            the negation is of the whole comparison
//   compare    = ( "<" | ">" | "=" ) [ "=" | "<" | ">" ] | "!="
//   sum        = signed { ( "+" | "-" ) signed }
//   signed     = [ "+" | "-" ] term                                             the sign is of the whole term
//   term       = power { ( "*" | "/" | "\" ) power }
//   power      = primary { "^" primary }
//   primary    = value [ group ] { member } [ group ] | member { member } [ group ]
//   value      = "(" condition ")" | STRING | NUMBER | unit | "true" | "false" | "null" | call
//   group      = "[" condition "]"
//   member     = "." call                                                       no white space behind the "."
//   call       = NAME [ "(" [ "," ] [ condition { "," condition } ] ")" ]
//   unit       = "{" NUMBER LETTERS [ "²" | "³" | [ "^" [ "-" ] ] DIGITS ] "}"
//
// All binary operators associate to the left, "^" and the comparisons included. Keywords have any letter case. A
// leading comma in a call stands for an omitted first argument and needs another argument behind it.
//
// Levels are functions, and the levels of binary operators one function with a table. An operand without a sign or a
// negation in front begins with a primary on all of its levels: it is parsed once, and then the levels' loops follow
// each other from the tightest on. The loops of a level never recurse, and neither do the last branches of
// conditionals, so chains of any length parse on a small stack; what does nest passes through ParseCondition(), which
// looks at the stack first.
#pragma once

#include "OrvUQL/Elements.h"
#include "OrvUQL/QueryEngine.h"

#include "core/Failure.h"
#include "parser/Token.h"

namespace OrvUQL {

class Parser {
public:
    using Element = Reference<IQueryElement>;

    /// `text` is NUL-terminated, consists of code units, and outlives the parser.
    Parser(QueryEngine* engine, const wchar_t* text, IError** err) noexcept;

    /// The tree with one reference, or null after an error was reported. May throw std::bad_alloc.
    IQueryElement* Parse();

    /// Where the parser stopped: after an error its 0-based position.
    int GetPosition() const noexcept { return cursor.position; }

private:
    /// A level of left-associative binary operators.
    struct Level {
        Element (Parser::*parseOperand)();
        std::uint32_t operators; ///< its own operators
        std::uint32_t stop;      ///< tokens at which the chain ends; any other than these is unexpected
    };
    /// From the tightest to the loosest.
    enum LevelNumber : std::uint8_t { PowerLevel, TermLevel, SumLevel, ComparisonLevel, LogicLevel };
    static const Level levels[];

    Element ParseCondition();
    Element ParseDecisions(Element condition);
    Element ParseComparison();
    Element ParseSum();
    Element ParseSigned();
    Element ParsePower();
    Element ParsePrefixed(std::uint32_t prefixes, LevelNumber level);
    Element ParseChain(LevelNumber level);
    Element ParseChainRest(Element left, const Level& level);
    Element ParsePrimary();
    Element ParseValue();
    Element ParseString();
    Element ParseNumber();
    Element ParseParenthesis();
    Element ParseUnit();
    Element ParseGroup(Element source);
    Element ParseMembers(Element source);
    Element ParseMethod(Element parent, bool member);
    bool ParseArguments(QueryElementList& arguments);
    int ReadUnitPower() noexcept;
    OrvStringT ReadOperator();

    /// Moves behind the token and looks at the next.
    void Advance() noexcept { MoveTo(cursor.position + token.size); }
    void MoveTo(int position) noexcept;
    bool Is(std::uint32_t kinds) const noexcept { return (token.kind & kinds) != 0; }

    template <class... Inserts> Element Report(const wchar_t* format, const Inserts&... inserts) {
        ReportParseError(cursor, err, format, inserts...);
        return Element();
    }
    /// The token at which a level cannot go on.
    Element ReportUnexpected();

    QueryEngine* engine;
    IError** err;
    ParseCursor cursor;
    Token token;
};

} // namespace OrvUQL
