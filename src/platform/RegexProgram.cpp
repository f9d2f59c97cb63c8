#include "platform/RegexProgram.h"

#include "platform/RegexTraits.h"
#include "platform/SwitchedStack.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace OrvUQL::platform {

namespace {

// What the standard library's code takes of the stack at most, in any build: with sanitizers, which take most.
constexpr std::size_t stackPerTerm = 640;
constexpr std::size_t stackPerNesting = 4096;
constexpr std::size_t stackPerUnguardedFrame = 512;

template <bool fold> class Program final : public RegexProgram {
public:
    explicit Program(const RegexSyntax& syntax, std::regex_constants::syntax_option_type options)
        : RegexProgram(syntax) {
        expression.imbue(RegexLocale());
        expression.assign(syntax.pattern, options);
    }

    bool Execute(const RegexIterator& first, const RegexIterator& last, std::match_results<RegexIterator>& results,
                 std::regex_constants::match_flag_type flags, bool wholeText) const override {
        return wholeText ? std::regex_match(first, last, results, expression, flags)
                         : std::regex_search(first, last, results, expression, flags);
    }

private:
    std::basic_regex<wchar_t, RegexTraits<fold>> expression;
};

class SequenceProgram final : public RegexProgram {
public:
    SequenceProgram(const RegexSyntax& syntax, RegexSequence read) : RegexProgram(syntax), sequence(std::move(read)) {}

    const RegexSequence* Sequence() const noexcept override { return &sequence; }

    bool Execute(const RegexIterator&, const RegexIterator&, std::match_results<RegexIterator>&,
                 std::regex_constants::match_flag_type, bool) const override {
        return false;
    }

private:
    RegexSequence sequence;
};

const RegexProgram* CompileHere(const RegexSyntax& syntax, RegexOptions options) {
    using namespace std::regex_constants;
    const syntax_option_type common = options.withoutGroups ? ECMAScript | nosubs : ECMAScript;
    if (options.ignoreCase) {
        // With collate, ranges compare what the traits make of units; without, they ask a locale for both cases of
        // each.
        return new Program<true>(syntax, common | icase | collate);
    }
    return new Program<false>(syntax, common);
}

} // namespace

RegexProgram::RegexProgram(const RegexSyntax& syntax) noexcept
    : states(syntax.states),
      frameReserve(syntax.unguarded * stackPerUnguardedFrame),
      stepPrice(syntax.stepPrice),
      startPrice(syntax.startPrice) {}

RegexProgram::~RegexProgram() = default;

const RegexProgram* RegexProgram::Compile(std::wstring_view pattern, RegexOptions options) {
    const RegexSyntax syntax = ReadRegexSyntax(pattern, options);
    if (std::optional<RegexSequence> sequence = RegexSequence::Read(pattern, options)) {
        return new SequenceProgram(syntax, std::move(*sequence));
    }
    const std::size_t needed = syntax.terms * stackPerTerm + syntax.nesting * stackPerNesting;
    if (RegexGuard::StackPointer() > GetUsableStackLow() + needed) {
        return CompileHere(syntax, options);
    }
    SwitchedStack stack;
    const std::size_t size = needed + stackReserve;
    if (!stack.Open(size, size)) {
        throw std::regex_error(std::regex_constants::error_stack);
    }
    const RegexProgram* program = nullptr;
    stack.Run([&] { program = CompileHere(syntax, options); });
    return program;
}

std::uintptr_t GetUsableStackLow() noexcept {
    const std::uintptr_t frame = RegexGuard::StackPointer();
    if (!HasStack()) { // which also finds out what stack this is
        return frame;
    }
    const StackBounds stack = KnownStack();
    if (frame - stack.low < stack.size) {
        return stack.low + stackReserve;
    }
    return CurrentThread().foreignLow + foreignStackReserve;
}

} // namespace OrvUQL::platform
