// Comparisons as rows of verdicts, one for each code that there is and for one beyond at either end.
#pragma once

#include "eval/Witness.h"

#include <string>

namespace OrvUQL::Tests {

/// Opens what is for derived engines only.
class OpenEngine : public QueryEngine {
public:
    using QueryEngine::CompareDoubles;
    using QueryEngine::CompareInts;
    using QueryEngine::CompareStrings;
};

class VerdictTest : public WitnessTest {
protected:
    OpenEngine engine;

    /// The verdicts of the codes -1 to 8 as ten characters, "T" and "f".
    template <class Compare> static std::string Verdicts(Compare compare) {
        std::string verdicts;
        for (int op = -1; op <= 8; ++op) {
            verdicts += compare(static_cast<EOperType>(op)) ? 'T' : 'f';
        }
        return verdicts;
    }

    std::string Ints(int a, int b) {
        return Verdicts([&](EOperType op) { return engine.CompareInts(op, a, b); });
    }
    std::string Doubles(double a, double b, double tolerance) {
        return Verdicts([&](EOperType op) { return engine.CompareDoubles(op, a, b, tolerance); });
    }
    std::string Strings(const wchar_t* a, const wchar_t* b) {
        return Verdicts([&](EOperType op) { return engine.CompareStrings(op, OrvStringT(a), OrvStringT(b)); });
    }

    /// The same for objects, "!" where no verdict is reached. Errors must not depend on the code; the last is kept.
    std::string Objects(IObject& a, IObject& b) {
        std::string verdicts;
        message.clear();
        for (int op = -1; op <= 8; ++op) {
            bool result = true;
            bool quietResult = true;
            ErrorSlot error;
            const bool reached = engine.CompareObjects(static_cast<EOperType>(op), &a, &b, result, error.Slot());
            EXPECT_EQ(engine.CompareObjects(static_cast<EOperType>(op), &a, &b, quietResult, nullptr), reached);
            EXPECT_EQ(result, quietResult);
            if (reached) {
                EXPECT_TRUE(error.IsEmpty()) << error.Message();
            } else if (!error.IsEmpty()) {
                message = error.Message();
            }
            verdicts += !reached ? '!' : result ? 'T' : 'f';
        }
        return verdicts;
    }

    std::string message;
};

// In the order of the codes: -1, none, >, >=, <, <=, =, ==, <>, 8.
inline constexpr const char* intGreater = "ffTTffffTf";
inline constexpr const char* intLess = "ffffTTffTf";
inline constexpr const char* intEqual = "fffTfTTTff";
inline constexpr const char* unordered = "ffffffffff";

} // namespace OrvUQL::Tests
