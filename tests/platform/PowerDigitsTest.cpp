// Powers against their exact values. What a C library leaves open here shows in the digits of results, and these are to
// be the same on every platform.

#include "platform/Power.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

using namespace OrvUQL::platform;

namespace {

/// A positive binary number of any length: an integer times a power of two.
class Exact {
public:
    explicit Exact(std::uint64_t integer, int exponent = 0)
        : words{static_cast<std::uint32_t>(integer), static_cast<std::uint32_t>(integer >> 32)}, scale(exponent) {}

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

    bool operator<(const Exact& other) const {
        const int common = std::min(scale, other.scale);
        const std::vector<std::uint32_t> mine = Shifted(scale - common);
        const std::vector<std::uint32_t> others = other.Shifted(other.scale - common);
        if (mine.size() != others.size()) {
            return mine.size() < others.size();
        }
        return std::lexicographical_compare(mine.rbegin(), mine.rend(), others.rbegin(), others.rend());
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

/// How far a result may be from the exact value, in thousandths of the distance to its neighbour. One that is rounded
/// correctly is at most 500 away. Those that lie so close to the middle between two doubles that a C library may choose
/// either are about one in a thousand, and a power that is a double itself is never off.
constexpr std::uint64_t greatestError = 520;

/// Whether a positive `result` is base^(numerator/denominator), with a denominator that is a power of two.
bool IsPower(double result, double base, int numerator, int denominator) {
    if (!(result > 0) || std::isinf(result)) {
        return false;
    }
    // Both sides are raised to the denominator and multiplied by what makes them whole.
    const Exact one = Exact::Of(std::abs(base)).ToThe(std::abs(numerator));
    const auto isLess = [&](double value, double neighbour, bool below) {
        const double distance = std::abs(neighbour - value);
        const int exponent = std::ilogb(distance); // the distance is a power of two
        const auto units = static_cast<std::uint64_t>(std::ldexp(value, -exponent));
        const Exact bound(units * 1000 + (below ? 0 - greatestError : greatestError), exponent);
        const Exact bounds = bound.ToThe(denominator);
        const Exact thousands = Exact(1000).ToThe(denominator);
        const Exact left = numerator < 0 ? bounds * one : bounds;
        const Exact right = numerator < 0 ? thousands : thousands * one;
        return below ? left < right : right < left;
    };
    return isLess(result, std::nextafter(result, 0.0), true) && isLess(result, std::nextafter(result, INFINITY), false);
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

TEST(PowerDigits, OfAnyDoubles) {
    std::mt19937_64 random(1729);
    for (int i = 0; i < 10'000; ++i) {
        const double base = std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 60) - 80);
        const int numerator = static_cast<int>(random() % 61) - 30;
        ExpectPower(base, numerator, 1 << random() % 3);
        ExpectPower(-base, numerator);
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
    EXPECT_FALSE(IsPower(1024, 2, 9, 1));
    EXPECT_FALSE(IsPower(std::nextafter(1024.0, 0.0), 2, 10, 1));
}
