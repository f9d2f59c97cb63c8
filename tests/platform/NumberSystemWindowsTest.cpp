// The three readers of numbers that there are on Windows: OLE Automation itself, the library's own reader, and the one
// that asks the former or the latter. Whether a text is a number, and of which type, all three say alike; what its
// value is, the library's two.

#include <OrvUQL/OrvUQL.h>

#include "platform/NumberReader.h"
#include "platform/NumberTextGenerator.h"
#include "support/Ref.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include <windows.h>

#include <oleauto.h>

using namespace OrvUQL::platform;
using OrvUQL::Tests::NumberTextGenerator;
using OrvUQL::Tests::Ref;

namespace {

constexpr int textCount = 100'000;

/// What one of the library's readers makes of a text.
struct Answer {
    bool isDouble = false;
    double value = 0;
    NumberKind kind = NumberKind::None;
    int intNumber = 0;
    double doubleNumber = 0;

    bool operator==(const Answer& other) const {
        return isDouble == other.isDouble && std::memcmp(&value, &other.value, sizeof value) == 0 &&
               kind == other.kind && intNumber == other.intNumber &&
               std::memcmp(&doubleNumber, &other.doubleNumber, sizeof doubleNumber) == 0;
    }
};

void PrintTo(const Answer& answer, std::ostream* out) {
    *out << (answer.isDouble ? "double " + std::to_string(answer.value) : "no double");
    *out << ", kind " << static_cast<int>(answer.kind) << ", " << answer.intNumber << ", " << answer.doubleNumber;
}

Answer Own(const std::wstring& text) {
    Answer answer;
    answer.isDouble = ReadDouble(text, answer.value);
    answer.kind = ReadNumber(text, answer.intNumber, answer.doubleNumber);
    return answer;
}

Answer Asking(const std::wstring& text) {
    Answer answer;
    answer.isDouble = ParseDouble(text, answer.value);
    answer.kind = ParseNumber(text, answer.intNumber, answer.doubleNumber);
    return answer;
}

/// The system's results as it gives them.
struct SystemAnswer {
    HRESULT doubleResult;
    double value = 0;
    HRESULT parseResult;
    HRESULT numberResult = E_FAIL;
    NUMPARSE number = {};
    VARIANT variant;

    explicit SystemAnswer(std::wstring text) {
        doubleResult = VarR8FromStr(text.data(), LOCALE_INVARIANT, LOCALE_NOUSEROVERRIDE, &value);
        BYTE digits[100];
        number.cDig = 100;
        number.dwInFlags = NUMPRS_STD;
        parseResult = VarParseNumFromStr(text.data(), LOCALE_INVARIANT, LOCALE_NOUSEROVERRIDE, &number, digits);
        VariantInit(&variant);
        if (SUCCEEDED(parseResult)) {
            numberResult = VarNumFromParseNum(&number, digits, VTBIT_I4 | VTBIT_R8, &variant);
        }
    }
};

/// The system need not round correctly, but has to mean the same number. Near the ends of the doubles' range its way
/// to the value goes astray first.
bool IsNear(double system, double own) {
    constexpr double smallest = std::numeric_limits<double>::min();
    return system == own || std::abs(system - own) <= std::abs(own) * 1e-13 || std::abs(own) < smallest * 1e16 ||
           (std::isinf(system) && std::abs(own) > 1e307);
}

/// An empty text if the system and the library's own reader agree.
std::string Difference(const std::wstring& text, const SystemAnswer& system, const Answer& own) {
    const bool isPattern = (system.number.dwOutFlags & NUMPRS_HEX_OCT) != 0;
    const bool isAccepted = SUCCEEDED(system.doubleResult) || system.doubleResult == DISP_E_OVERFLOW;
    if (isAccepted != SUCCEEDED(system.parseResult)) {
        return "the system does not agree with itself";
    }
    if ((system.number.dwOutFlags & NUMPRS_PARENS) != 0 && text.find(L')') == std::wstring::npos) {
        return own.isDouble || own.kind != NumberKind::None ? "an open parenthesis" : "";
    }
    if (!isAccepted) {
        return own.isDouble || own.kind != NumberKind::None ? "the system takes no number" : "";
    }
    if (own.isDouble != (own.kind != NumberKind::None)) {
        return "a double and no number, or the reverse";
    }
    if (!own.isDouble) {
        const bool isTooGreat = system.doubleResult == DISP_E_OVERFLOW || std::isinf(system.value);
        return isTooGreat ? "" : "the system takes a number";
    }
    // Bit patterns above 2^31 are negative to the one conversion of the system's and too great to the other.
    if (!(isPattern && own.value < 0) && (FAILED(system.doubleResult) || !IsNear(system.value, own.value))) {
        const bool isAtTheEnd = system.doubleResult == DISP_E_OVERFLOW && std::abs(own.value) > 1e307;
        return isAtTheEnd ? "" : "another double";
    }
    const bool isInt = SUCCEEDED(system.numberResult) && V_VT(&system.variant) == VT_I4 &&
                       (system.number.dwOutFlags & NUMPRS_DECIMAL) == 0;
    if (isInt != (own.kind == NumberKind::Int)) {
        return "another type";
    }
    return isInt && V_I4(&system.variant) != own.intNumber ? "another int" : "";
}

} // namespace

TEST(NumberSystem, TheLibrarysReaderAcceptsWhatTheSystemDoes) {
    NumberTextGenerator generator(20261121);
    int counts[3] = {};
    for (int i = 0; i < textCount; ++i) {
        const std::wstring text = generator.Text();
        const Answer own = Own(text);
        ++counts[static_cast<int>(own.kind)];
        const SystemAnswer system(text);
        const std::string difference = Difference(text, system, own);
        EXPECT_EQ(difference, "") << OrvStringT(text).ToUtf8() << "\nlibrary: " << testing::PrintToString(own)
                                  << "\nsystem: " << std::hex << system.doubleResult << " " << system.value << ", "
                                  << system.parseResult << " " << system.numberResult << " " << V_VT(&system.variant);
    }
    for (const int count : counts) {
        EXPECT_GT(count, textCount / 10) << "texts of each kind are needed for the test to mean anything";
    }
}

TEST(NumberSystem, AskingTheSystemGivesTheSameNumbers) {
    NumberTextGenerator generator(20261122);
    for (int i = 0; i < textCount; ++i) {
        const std::wstring text = i % 8 == 0 ? generator.LongText() : generator.Text();
        EXPECT_EQ(Asking(text), Own(text)) << OrvStringT(text).ToUtf8();
    }
}

TEST(NumberSystem, ValuesConvertLikeTheLibrarysReader) {
    NumberTextGenerator generator(20261123);
    for (int i = 0; i < textCount / 4; ++i) {
        const std::wstring text = generator.Text();
        if (text.find_first_of(L"xX") != std::wstring::npos) {
            continue; // 0x is a prefix to ToNumeric alone
        }
        const Answer own = Own(text);
        const Ref<OrvUQL::ObjectString> string(new OrvUQL::ObjectString(OrvStringT(text)));
        SCOPED_TRACE(OrvStringT(text).ToUtf8());

        double asDouble = 0;
        EXPECT_EQ(string->ToDouble(asDouble, nullptr), own.isDouble);
        EXPECT_EQ(asDouble, own.value);
        bool asBool = false;
        EXPECT_EQ(string->ToBool(asBool, nullptr), own.isDouble);
        EXPECT_EQ(asBool, own.value != 0);
        int asInt = 0;
        const bool isInRange = own.isDouble && own.value <= 2147483647.0 && own.value >= -2147483648.0;
        EXPECT_EQ(string->ToInt(asInt, nullptr), isInRange);
        EXPECT_TRUE(!isInRange || asInt == std::llround(own.value));

        const Ref<OrvUQL::IObject> number(string->ToNumeric(nullptr));
        EXPECT_EQ(static_cast<bool>(number), own.kind != NumberKind::None);
        if (number) {
            const bool isInt = number->GetType() == OrvUQL::IObject::TypeInt;
            EXPECT_EQ(isInt, own.kind == NumberKind::Int);
            EXPECT_TRUE(number->ToDouble(asDouble, nullptr));
            EXPECT_EQ(asDouble, isInt ? own.intNumber : own.doubleNumber);
        }
    }
}
