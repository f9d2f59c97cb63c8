#include "support/QueryPrinter.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cwchar>
#include <limits>
#include <string>
#include <string_view>

namespace OrvUQL::Tests {

namespace {

/// What a part of a query is to its surroundings: each place takes everything from its own level on, and the rest in
/// parentheses.
enum Level {
    ConditionLevel,
    LogicLevel,
    NegationLevel, ///< an operand of "and", but not of "="
    ComparisonLevel,
    SumLevel,
    SignLevel, ///< an operand of "+", but not of "*"
    TermLevel,
    PowerLevel,
    PrimaryLevel,
};

/// How far a primary's chain of groups and members has gone.
enum Chain {
    AcceptsAll,     ///< a value: a group, members, a group
    AcceptsMembers, ///< has had its first group: members, a group
    AcceptsGroup,   ///< has members: more of them, a group
    AcceptsNothing, ///< has had its last group
};

bool IsOneOf(std::wstring_view text, std::wstring_view units) {
    return text.size() == 1 && units.find(text[0]) != std::wstring_view::npos;
}

Level LevelOfBinary(std::wstring_view op) {
    if (op == L"^") {
        return PowerLevel;
    }
    if (IsOneOf(op, L"*/\\")) {
        return TermLevel;
    }
    if (IsOneOf(op, L"+-")) {
        return SumLevel;
    }
    return op.find_first_of(L"<>=") == std::wstring_view::npos ? LogicLevel : ComparisonLevel;
}

Level LevelOf(const IQueryElement& node) {
    if (const auto* const binary = dynamic_cast<const OperatorBinary*>(&node)) {
        return LevelOfBinary(binary->GetOperator().View());
    }
    if (const auto* const unary = dynamic_cast<const OperatorUnary*>(&node)) {
        return IsOneOf(unary->GetOperator().View(), L"+-") ? SignLevel : NegationLevel;
    }
    return dynamic_cast<const OperatorTernary*>(&node) != nullptr ? ConditionLevel : PrimaryLevel;
}

/// What may stand on the right of an operator without parentheses.
Level RightOf(Level level) {
    switch (level) {
    case LogicLevel:
        return NegationLevel;
    case ComparisonLevel:
        return SumLevel;
    case SumLevel:
        return SignLevel;
    case TermLevel:
        return PowerLevel;
    default:
        return PrimaryLevel;
    }
}

/// The number by which a unit literal of this base value was written, or one that gives the same.
std::optional<double> FindMagnitude(double base, double factor) {
    const auto gives = [&](double magnitude) {
        const double product = magnitude * factor;
        return std::isnan(base) ? std::isnan(product) : product == base;
    };
    for (const double magnitude : {base, 0.0, 1.0, DBL_MAX, -1.0}) {
        if (gives(magnitude) && std::isfinite(magnitude)) {
            return magnitude;
        }
    }
    double below = base / factor;
    double above = below;
    for (int distance = 0; distance < 8 && std::isfinite(base / factor); ++distance) {
        if (gives(below)) {
            return below;
        }
        if (gives(above)) {
            return above;
        }
        below = std::nextafter(below, -DBL_MAX);
        above = std::nextafter(above, DBL_MAX);
    }
    return std::nullopt;
}

class Printer {
public:
    bool Print(const IQueryElement* node, Level place) {
        if (node == nullptr) {
            return false;
        }
        if (LevelOf(*node) >= place) {
            return PrintBare(*node);
        }
        text += L'(';
        const bool printed = PrintBare(*node);
        text += L')';
        return printed;
    }

    std::wstring text;

private:
    bool PrintBare(const IQueryElement& node) {
        if (const auto* const unary = dynamic_cast<const OperatorUnary*>(&node)) {
            text += unary->GetOperator().View();
            text += L' ';
            return Print(unary->GetOperand(), LevelOf(node) == SignLevel ? TermLevel : ComparisonLevel);
        }
        if (const auto* const binary = dynamic_cast<const OperatorBinary*>(&node)) {
            const Level level = LevelOf(node);
            return Print(binary->GetLeft(), level) && Put(L" ") && Put(binary->GetOperator().View()) && Put(L" ") &&
                   Print(binary->GetRight(), RightOf(level));
        }
        if (const auto* const ternary = dynamic_cast<const OperatorTernary*>(&node)) {
            return Print(ternary->GetCondition(), LogicLevel) && Put(L" ? ") &&
                   Print(ternary->GetFirst(), ConditionLevel) && Put(L" : ") &&
                   Print(ternary->GetSecond(), ConditionLevel);
        }
        Chain chain = AcceptsAll;
        return PrintPrimary(node, chain);
    }

    bool Put(std::wstring_view piece) {
        text += piece;
        return true;
    }

    bool PrintPrimary(const IQueryElement& node, Chain& chain) {
        chain = AcceptsAll;
        if (const auto* const literal = dynamic_cast<const ElementObject*>(&node)) {
            return PrintLiteral(literal->GetValue());
        }
        if (const auto* const method = dynamic_cast<const ElementMethod*>(&node)) {
            return PrintMethod(*method, chain);
        }
        const auto* const group = dynamic_cast<const ElementGroup*>(&node);
        if (group == nullptr) {
            return false;
        }
        Chain source = AcceptsAll;
        if (!PrintSource(group->GetSource(), AcceptsGroup, source)) {
            return false;
        }
        // The first group after a value may be followed by members; any other is the last.
        chain = source == AcceptsAll ? AcceptsMembers : AcceptsNothing;
        return Put(L"[") && Print(group->GetInner(), ConditionLevel) && Put(L"]");
    }

    /// Prints what stands before a member or a group, in parentheses if its own chain has ended.
    bool PrintSource(const IQueryElement* node, Chain atMost, Chain& chain) {
        if (node == nullptr) {
            return false;
        }
        const std::size_t begin = text.size();
        if (LevelOf(*node) == PrimaryLevel) {
            if (!PrintPrimary(*node, chain)) {
                return false;
            }
            if (chain <= atMost) {
                return true;
            }
        }
        // Whether a chain has ended is known only when it is printed.
        text.resize(begin);
        chain = AcceptsAll;
        return Put(L"(") && PrintBare(*node) && Put(L")");
    }

    bool PrintMethod(const ElementMethod& method, Chain& chain) {
        if (method.GetParent() != nullptr &&
            (!method.IsMember() || !PrintSource(method.GetParent(), AcceptsGroup, chain))) {
            return false;
        }
        if (method.IsMember()) {
            text += L'.';
            chain = AcceptsGroup;
        }
        text += method.GetName().View();
        if (method.GetArguments().empty()) {
            return true;
        }
        text += L'(';
        for (std::size_t index = 0; index < method.GetArguments().size(); ++index) {
            if (index > 0) {
                text += L", ";
            }
            // Only the first argument can be left out.
            const IQueryElement* const argument = method.GetArguments()[index];
            if ((argument != nullptr || index > 0) && !Print(argument, ConditionLevel)) {
                return false;
            }
        }
        return Put(L")");
    }

    bool PrintLiteral(const IObject* value) {
        if (value == nullptr) {
            return false;
        }
        OrvStringT shown;
        value->ToString(shown, nullptr);
        switch (value->GetType()) {
        case IObject::TypeNull:
            return Put(L"null");
        case IObject::TypeBool:
            return Put(shown.View());
        case IObject::TypeInt: {
            int number = 0;
            return value->ToInt(number, nullptr) && PrintInt(number);
        }
        case IObject::TypeDouble: {
            double number = 0;
            return value->ToDouble(number, nullptr) && !std::signbit(number) && PrintDouble(number);
        }
        case IObject::TypeString:
            return PrintText(shown.View());
        case IObject::TypeUnit:
            return PrintUnit(*value->GetUnitInterface());
        default:
            return false;
        }
    }

    /// Negative ones are written as the bit patterns that they are: a sign would be an operator.
    bool PrintInt(int number) {
        if (number >= 0) {
            return Put(std::to_wstring(number));
        }
        wchar_t pattern[16];
        std::swprintf(pattern, std::size(pattern), L"0x%X", static_cast<unsigned>(number));
        return Put(pattern);
    }

    bool PrintDouble(double number) {
        if (!std::isfinite(number)) {
            return false;
        }
        const OrvStringT digits = OrvUtils::String::ToStringW(number);
        text += digits.View();
        // Without a point a whole number would be an int.
        if (digits.View().find_first_not_of(L"0123456789") == std::wstring_view::npos) {
            text += L".0";
        }
        return true;
    }

    bool PrintText(std::wstring_view value) {
        text += L'\'';
        for (const wchar_t unit : value) {
            if (unit == 0) {
                return false;
            }
            text.append(unit == L'\'' ? 2 : 1, unit);
        }
        return Put(L"'");
    }

    bool PrintUnit(const IUnit& unit) {
        const std::optional<double> magnitude = FindMagnitude(unit.GetValue(), unit.GetFactorValue());
        const bool isNegative = magnitude && std::signbit(*magnitude);
        if (!magnitude || (isNegative && (*magnitude < std::numeric_limits<int>::min() || *magnitude == 0))) {
            return false;
        }
        text += L'{';
        if (!(isNegative ? PrintInt(static_cast<int>(*magnitude)) : PrintDouble(*magnitude))) {
            return false;
        }
        text += L' ';
        text += unit.GetName().View();
        text += L'^';
        return Put(std::to_wstring(unit.GetPower())) && Put(L"}");
    }
};

} // namespace

std::optional<OrvStringT> PrintQuery(const IQueryElement& tree) {
    Printer printer;
    if (!printer.Print(&tree, ConditionLevel)) {
        return std::nullopt;
    }
    return OrvStringT(printer.text);
}

} // namespace OrvUQL::Tests
