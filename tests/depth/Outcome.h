// A construct at one size: parsed, evaluated, written as text and released.
#pragma once

#include "depth/Constructs.h"

namespace OrvUQL::Tests {

enum class Verdict {
    Answer,         ///< the one that is right at any size
    StackInParsing, ///< the errors that a construct may end with
    StackInEvaluation,
    ExpressionTooDeep,
    ExpressionTooComplex,
    ExpressionTooLarge,
    OutOfMemory, ///< no value, with "Internal error" or, where not even that fits, without an error
    Fault,       ///< anything else
};

struct Outcome {
    Verdict verdict;
    std::string fault; ///< what came instead, in short
};

/// Whether "Internal error" and no error are an answer: where memory is limited.
enum class Memory { Enough, Limited };

/// Runs a query on the calling thread's stack. Nothing is thrown.
Outcome RunQuery(const Construct& construct, int size, const std::wstring& query, Memory memory) noexcept;

/// The same of the construct at that size, with memory enough.
Outcome RunConstruct(const Construct& construct, int size);

/// Whether the construct may come to that at any size.
bool MayEnd(const Construct& construct, Verdict verdict);

/// As a reader of a table is told it.
const char* NameOf(Verdict verdict);

} // namespace OrvUQL::Tests
