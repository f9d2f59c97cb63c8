// Powers against their exact values. What a C library leaves open here shows in the digits of results, and these are to
// be the same on every platform.

#include "platform/Power.h"
#include "support/Effort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

using namespace OrvUQL::platform;

namespace {

/// A positive binary number of any length: an integer times a power of two.
class Exact {
public:
    /// The leading bits of a number from 1 up to 2, lowest words first.
    using Mantissa = std::array<std::uint32_t, 5>;

    explicit Exact(std::uint64_t integer, int exponent = 0)
        : words{static_cast<std::uint32_t>(integer), static_cast<std::uint32_t>(integer >> 32)}, scale(exponent) {
        Trim();
    }

    /// A positive finite double is one.
    static Exact Of(double value) {
        int exponent = 0;
        const double fraction = std::frexp(value, &exponent);
        return Exact(static_cast<std::uint64_t>(std::ldexp(fraction, 53)), exponent - 53);
    }

    Exact operator*(const Exact& other) const {
        Exact product(0, scale + other.scale);
        product.words.assign(words.size() + other.words.size(), 0);
        for (std::size_t i = 0; i < words.size(); ++i) {
            std::uint64_t carry = 0;
            for (std::size_t k = 0; k < other.words.size(); ++k) {
                carry += std::uint64_t{words[i]} * other.words[k] + product.words[i + k];
                product.words[i + k] = static_cast<std::uint32_t>(carry);
                carry >>= 32;
            }
            product.words[i + other.words.size()] = static_cast<std::uint32_t>(carry);
        }
        product.Trim();
        return product;
    }

    Exact ToThe(int exponent) const {
        Exact power(1);
        for (int i = 0; i < exponent; ++i) {
            power = power * *this;
        }
        return power;
    }

    Exact operator+(const Exact& other) const {
        Exact sum(0, std::min(scale, other.scale));
        sum.words = Shifted(scale - sum.scale);
        std::vector<std::uint32_t> others = other.Shifted(other.scale - sum.scale);
        const std::size_t size = std::max(sum.words.size(), others.size()) + 1;
        sum.words.resize(size);
        others.resize(size);
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < size; ++i) {
            carry += std::uint64_t{sum.words[i]} + others[i];
            sum.words[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        sum.Trim();
        return sum;
    }

    bool operator<(const Exact& other) const {
        const int common = std::min(scale, other.scale);
        const std::vector<std::uint32_t> mine = Shifted(scale - common);
        const std::vector<std::uint32_t> others = other.Shifted(other.scale - common);
        if (mine.size() != others.size()) {
            return mine.size() < others.size();
        }
        return std::lexicographical_compare(mine.rbegin(), mine.rend(), others.rbegin(), others.rend());
    }

    /// A positive number that is not too long as mantissa * 2^exponent.
    std::pair<Mantissa, int> Leading() const {
        Mantissa mantissa{};
        const int bits = static_cast<int>(32 * (words.size() - 1)) + std::bit_width(words.back());
        const int wanted = static_cast<int>(32 * mantissa.size());
        const std::vector<std::uint32_t> shifted = Shifted(wanted - bits);
        std::copy(shifted.begin(), shifted.end(), mantissa.begin());
        return {mantissa, scale + bits - 1};
    }

private:
    std::vector<std::uint32_t> words; ///< the integer, from its lowest bits up, with no zeros at the end
    int scale;

    void Trim() {
        while (words.size() > 1 && words.back() == 0) {
            words.pop_back();
        }
    }

    std::vector<std::uint32_t> Shifted(int bits) const {
        std::vector<std::uint32_t> shifted(static_cast<std::size_t>(bits / 32), 0);
        std::uint64_t carry = 0;
        for (const std::uint32_t word : words) {
            carry |= std::uint64_t{word} << bits % 32;
            shifted.push_back(static_cast<std::uint32_t>(carry));
            carry >>= 32;
        }
        shifted.push_back(static_cast<std::uint32_t>(carry));
        while (shifted.size() > 1 && shifted.back() == 0) {
            shifted.pop_back();
        }
        return shifted;
    }
};

/// The middle between a positive `value` and the double next to it in that direction.
Exact Middle(double value, double direction) {
    const double distance = std::abs(std::nextafter(value, direction) - value); // a power of two
    const int exponent = std::ilogb(distance);
    const auto units = static_cast<std::uint64_t>(std::ldexp(value, -exponent));
    return Exact(direction < value ? 2 * units - 1 : 2 * units + 1, exponent - 1);
}

/// Whether a positive `result` is the double nearest to base^(numerator/denominator), which is to the even one of two.
bool IsPower(double result, double base, int numerator, int denominator) {
    if (!(result > 0) || std::isinf(result)) {
        return false;
    }
    // Both sides are raised to the denominator and multiplied by what makes them whole.
    const Exact one = Exact::Of(std::abs(base)).ToThe(std::abs(numerator));
    const bool isEven = (std::bit_cast<std::uint64_t>(result) & 1) == 0;
    const auto isBeyond = [&](double direction) {
        const Exact bound = Middle(result, direction).ToThe(denominator);
        const Exact left = numerator < 0 ? bound * one : bound;
        const Exact right = numerator < 0 ? Exact(1) : one;
        const bool isAbove = left < right;
        const bool isBelow = right < left;
        return direction < result ? isBelow || (!isAbove && !isEven) : isAbove || (!isBelow && !isEven);
    };
    return !isBeyond(0.0) && !isBeyond(INFINITY);
}

/// The binary logarithm of a positive number, by definition: each time that a number between 1 and 2 is squared, the
/// next digit of its logarithm is whether that makes 2 or more. The fraction is too small by less than 2^-120.
struct BinaryLog {
    int whole;
    Exact fraction;

    explicit BinaryLog(const Exact& number) : whole(0), fraction(0) {
        constexpr int digits = 128;
        auto [mantissa, exponent] = number.Leading();
        whole = exponent;
        for (int i = 1; i <= digits; ++i) {
            if (Square(mantissa)) {
                fraction = fraction + Exact(1, -i);
            }
        }
    }

private:
    /// A number from 1 up to 2, from its lowest bits up, and the highest of them set.
    using Mantissa = Exact::Mantissa;

    /// Halves the square if it is 2 or more.
    static bool Square(Mantissa& mantissa) {
        constexpr std::size_t size = std::tuple_size_v<Mantissa>;
        std::array<std::uint32_t, 2 * size> square{};
        for (std::size_t i = 0; i < size; ++i) {
            std::uint64_t carry = 0;
            for (std::size_t k = 0; k < size; ++k) {
                carry += std::uint64_t{mantissa[i]} * mantissa[k] + square[i + k];
                square[i + k] = static_cast<std::uint32_t>(carry);
                carry >>= 32;
            }
            square[i + size] = static_cast<std::uint32_t>(carry);
        }
        const bool isTwo = square.back() >> 31 != 0;
        for (std::size_t i = 0; i < size; ++i) {
            mantissa[i] = isTwo ? square[i + size] : square[i + size] << 1 | square[i + size - 1] >> 31;
        }
        return isTwo;
    }
};

/// Whether a positive `result` is the double nearest to base^exponent, for a base above 0 and any exponent up to some
/// millions, but not for results in the very middle.
bool IsGeneralPower(double result, double base, double exponent) {
    if (!(result > 0) || std::isinf(result)) {
        return false;
    }
    const BinaryLog log(Exact::Of(base));
    const auto isMore = [&](const Exact& bound) { // whether exponent * log(base) > log(bound)
        Exact left(0);
        Exact right(0);
        const auto add = [&](bool toLeft, const Exact& term) {
            Exact& side = toLeft ? left : right;
            side = side + term;
        };
        const Exact factor = Exact::Of(std::abs(exponent));
        const BinaryLog boundLog(bound);
        add(exponent > 0, factor * log.fraction);
        add((exponent > 0) == (log.whole > 0), factor * Exact(static_cast<std::uint64_t>(std::abs(log.whole))));
        add(false, boundLog.fraction);
        add(boundLog.whole < 0, Exact(static_cast<std::uint64_t>(std::abs(boundLog.whole))));
        return right < left;
    };
    return isMore(Middle(result, 0.0)) && !isMore(Middle(result, INFINITY));
}

void ExpectGeneralPower(double base, double exponent) {
    const double result = Power(base, exponent);
    EXPECT_TRUE(IsGeneralPower(result, base, exponent))
        << std::hexfloat << base << " ^ " << exponent << " is not " << result;
}

void ExpectPower(double base, int numerator, int denominator = 1) {
    const double exponent = static_cast<double>(numerator) / denominator;
    const double log = std::log2(std::abs(base)) * exponent;
    if (log < -1021 || log > 1023) {
        return;
    }
    const double result = Power(base, exponent);
    EXPECT_EQ(result < 0, base < 0 && numerator % 2 != 0);
    EXPECT_TRUE(IsPower(std::abs(result), base, numerator, denominator))
        << base << " ^ " << exponent << " is not " << result << " (" << std::hexfloat << base << ", " << result << ")";
}

} // namespace

TEST(PowerDigits, OfIntegers) {
    for (int base = -120; base <= 120; ++base) {
        for (int exponent = -20; exponent <= 60; ++exponent) {
            if (base != 0) {
                ExpectPower(base, exponent);
            }
        }
    }
}

TEST(PowerDigits, OfDecimals) {
    for (int base = 1; base <= 1000; ++base) {
        for (int exponent = -3; exponent <= 6; ++exponent) {
            ExpectPower(base / 10.0, exponent);
            ExpectPower(base / 1000.0, exponent);
        }
    }
}

TEST(PowerDigits, OfTheFactorsOfUnits) {
    for (const double factor : {10.0, 100.0, 1000.0, 10000.0, 10000000.0, 254000.0, 3048000.0, 9144000.0, 16093440000.0,
                                254000.0 / 72, 254000.0 / 6, 254000.0 / 300, 0.1, 1e-4}) {
        for (int power = -12; power <= 12; ++power) {
            ExpectPower(factor, power);
        }
    }
}

TEST(PowerDigits, OfRoots) {
    for (int base = 1; base <= 1000; ++base) {
        for (const int numerator : {-3, -1, 1, 3, 5}) {
            for (const int denominator : {2, 4, 8}) {
                ExpectPower(base, numerator, denominator);
                ExpectPower(base / 100.0, numerator, denominator);
            }
        }
    }
}

// Odd integers of 54 bits lie in the very middle between two doubles, of which the even one is taken.
TEST(PowerDigits, InTheMiddleBetweenTwoDoubles) {
    const int rounds = OrvUQL::Tests::Effort(3'000);
    for (int i = 0; i < rounds; ++i) {
        const double root = 208'065.0 + 18 * i;
        ASSERT_LT(root, 0x1p18);
        ExpectPower(root * root, 3, 2);
    }
    for (double root = 1553; root <= 1781; root += 2) {
        ExpectPower(root * root, 5, 2);
        ExpectPower(root * root * root * root, 5, 4);
    }
}

TEST(PowerDigits, OfAnyDoubles) {
    std::mt19937_64 random(1729);
    const int rounds = OrvUQL::Tests::Effort(10'000);
    for (int i = 0; i < rounds; ++i) {
        const double base = std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 60) - 80);
        const int numerator = static_cast<int>(random() % 61) - 30;
        ExpectPower(base, numerator, 1 << random() % 3);
        ExpectPower(-base, numerator);
    }
}

// Exponents with all digits. One result in a thousand is so near to the middle between two doubles that the power of a
// good C library takes the wrong one of them: glibc's fails these runs.

TEST(PowerDigits, OfAnyExponents) {
    std::mt19937_64 random(271828);
    const int rounds = OrvUQL::Tests::Effort(10'000);
    for (int i = 0; i < rounds; ++i) {
        const double base = std::ldexp(static_cast<double>(random() >> 11) + 1, static_cast<int>(random() % 30) - 60);
        const double exponent = std::ldexp(static_cast<double>(random() >> 11), -53) * 40 - 20;
        ExpectGeneralPower(base, exponent);
    }
}

// With great exponents what the logarithm is off counts.
TEST(PowerDigits, OfAnyExponentsOverTheWholeRange) {
    std::mt19937_64 random(314159);
    const int rounds = OrvUQL::Tests::Effort(6'000);
    for (int i = 0; i < rounds; ++i) {
        const double base =
            i % 3 == 0
                ? std::ldexp(static_cast<double>(random() >> 11) + 1, static_cast<int>(random() % 2000) - 1052)
                : 1 + std::ldexp(static_cast<double>(random() >> 11) - 0x1p52, -53 - static_cast<int>(random() % 12));
        if (base != 1) {
            const double log =
                std::ldexp(static_cast<double>(random() >> 11), -53) * 2096 - 1073; // subnormal results too
            ExpectGeneralPower(base, log / std::log2(base));
        }
    }
}

// The check itself: the neighbours of a power are none.
TEST(PowerDigits, AreNotThoseOfTheNeighbours) {
    for (const double base : {3.0, 10.0, 1.1, 25.4, 1e-3}) {
        for (const int exponent : {-2, -1, 2, 3, 7, 22}) {
            const double exact = Power(base, exponent);
            EXPECT_TRUE(IsPower(exact, base, exponent, 1));
            EXPECT_FALSE(IsPower(std::nextafter(exact, 0.0), base, exponent, 1)) << base << " ^ " << exponent;
            EXPECT_FALSE(IsPower(std::nextafter(exact, INFINITY), base, exponent, 1)) << base << " ^ " << exponent;
        }
    }
    for (const double exponent : {-20.3, -1.7, 0.1, 0.7, 3.3, 117.9}) {
        const double exact = Power(1.1, exponent);
        EXPECT_TRUE(IsGeneralPower(exact, 1.1, exponent));
        EXPECT_FALSE(IsGeneralPower(std::nextafter(exact, 0.0), 1.1, exponent)) << exponent;
        EXPECT_FALSE(IsGeneralPower(std::nextafter(exact, INFINITY), 1.1, exponent)) << exponent;
    }
    EXPECT_FALSE(IsPower(1024, 2, 9, 1));
    EXPECT_FALSE(IsPower(std::nextafter(1024.0, 0.0), 2, 10, 1));
}
