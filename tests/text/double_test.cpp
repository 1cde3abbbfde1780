#include "tests/support/records.h"
#include "tests/text/exact_value.h"
#include "tests/text/stored_shapes.h"

#include <qzoci/calc_text.hpp>
#include <qzoci/double.hpp>

#include <gmpxx.h>
#include <gtest/gtest.h>
#include <mpfr.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <type_traits>

namespace qzoci::test {
namespace {

using enum double_fault;

static_assert(!std::is_constructible_v<number, double> && !std::is_convertible_v<number, double>);

/* A quotient of integers rounded once, to 53 bits. */
double nearest_double(const mpq_class& value) {
    mpfr_t rounded;
    mpfr_init2(rounded, 53);
    mpfr_set_q(rounded, value.get_mpq_t(), MPFR_RNDN);
    const double nearest = mpfr_get_d(rounded, MPFR_RNDN);
    mpfr_clear(rounded);
    return nearest;
}

mpq_class quotient(const mpz_class& value, const mpz_class& divisor) {
    mpq_class exact(value, divisor);
    exact.canonicalize();
    return exact;
}

/* ---- To double ---- */

double double_of(std::string_view text) {
    return to_double(parse(text).value()).value();
}

TEST(ToDouble, GivesTheDoubleOfADecimal) {
    EXPECT_EQ(double_of("0.1"), 0.1);
    EXPECT_EQ(double_of("-1e125"), -1e125);
    EXPECT_EQ(double_of("3.14159265358979323846264338327950288"), 3.14159265358979323846264338327950288);
    EXPECT_EQ(double_of("1e-166"), 1e-166);
    EXPECT_EQ(double_of("inf"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(double_of("-inf"), -std::numeric_limits<double>::infinity());
    EXPECT_FALSE(std::signbit(double_of("-0")));
}

TEST(ToDouble, BreaksTiesToEven) {
    EXPECT_EQ(double_of("9007199254740993"), 9007199254740992.0);
    EXPECT_EQ(double_of("9007199254740993.00000000000000000000001"), 9007199254740994.0);
    EXPECT_EQ(double_of("9007199254740995"), 9007199254740996.0);
    EXPECT_EQ(double_of("9007199254740994.99999999999999999999999"), 9007199254740994.0);
}

TEST(ToDouble, RefusesMalformedBytes) {
    EXPECT_EQ(to_double(number(stored_from_hex("02c100"))).error(), malformed);
}

TEST(ToDouble, EveryShapeGoesToTheNearest) {
    const mpz_class unit = power_of_ten(unit_digits);
    int records = 0;
    for_every_shape([&unit, &records](const Shape& shape) {
        const number value(encode(shape));
        const double nearest = nearest_double(quotient(value_of(shape), unit));
        ASSERT_EQ(to_double(value).value(), nearest) << to_string(value);
        if (const auto record = parse_calc(to_string(value))) {
            ASSERT_EQ(to_double(*record), nearest) << to_string(value);
            ++records;
        }
    });
    EXPECT_GT(records, 30000); /* all but those with digits below 10^-160 */
}

TEST(ToDouble, TakesAllDigitsOfARecord) {
    const std::string middle = "9007199254740993" + std::string(143, '0');
    EXPECT_EQ(to_double(parse_calc(middle).value()), std::strtod(middle.c_str(), nullptr));
    const std::string above = "9007199254740993." + std::string(159, '0') + "1";
    EXPECT_EQ(to_double(parse_calc(above).value()), 9007199254740994.0);
    EXPECT_EQ(to_double(parse_calc("-inf").value()), -std::numeric_limits<double>::infinity());
}

/* Integers in the middle between two doubles, and one part in 10^39 or so beside it. */
TEST(ToDouble, MiddlesAndTheirNeighboursGoToTheNearest) {
    std::mt19937_64 random(37);
    int middles = 0;
    for (int i = 0; i < 5000; ++i) {
        const std::uint64_t odd = (random() >> 10U) | (std::uint64_t{1} << 53U) | 1U;
        mpz_class middle(std::to_string(odd));
        middle <<= random() % 60;
        const std::string digits = middle.get_str();
        const std::string zeros(38 - digits.size(), '0');
        const mpz_class scale = power_of_ten(static_cast<int>(zeros.size()) + 1);
        const mpz_class scaled = middle * scale;
        for (const int offset : {-1, 0, 1}) {
            const mpz_class beside = scaled + offset;
            const std::string text = beside.get_str() + "e-" + std::to_string(zeros.size() + 1);
            ASSERT_EQ(double_of(text), nearest_double(quotient(beside, scale))) << text;
        }
        ++middles;
    }
    EXPECT_EQ(middles, 5000);
}

/* ---- From double, exactly ---- */

std::string exact_text(double value) {
    const auto exact = from_double_exact(value);
    return exact ? to_string(*exact) : message(exact.error());
}

TEST(FromDoubleExact, GivesTheValueToItsLastBit) {
    EXPECT_EQ(exact_text(0.5), "0.5");
    EXPECT_EQ(exact_text(-1234.0625), "-1234.0625");
    EXPECT_EQ(exact_text(std::ldexp(1.0, 120)), "1329227995784915872903807060280344576");
    EXPECT_EQ(exact_text(std::ldexp(1.0, -50)), "0.00000000000000088817841970012523233890533447265625");
    EXPECT_EQ(exact_text(0.0), "0");
    EXPECT_EQ(exact_text(-0.0), "0");
    EXPECT_EQ(exact_text(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(exact_text(-std::numeric_limits<double>::infinity()), "-inf");
}

TEST(FromDoubleExact, NeverRounds) {
    EXPECT_EQ(exact_text(0.1), message(too_many_digits));
    EXPECT_EQ(exact_text(1.0 + std::numeric_limits<double>::epsilon()), message(too_many_digits));
    EXPECT_EQ(exact_text(std::ldexp(1.0, 140)), message(too_many_digits));
    EXPECT_EQ(exact_text(1e126), message(too_many_digits)); /* just below 10^126 */
    EXPECT_EQ(exact_text(std::nextafter(1e126, 1e127)), message(too_large));
    EXPECT_EQ(exact_text(-std::numeric_limits<double>::max()), message(too_large));
    EXPECT_EQ(exact_text(std::numeric_limits<double>::denorm_min()), message(too_small));
    EXPECT_EQ(exact_text(-1e-200), message(too_small));
    EXPECT_EQ(exact_text(std::nan("")), message(not_a_number));
}

/* Whether 20 base-100 pairs hold the value. */
bool is_held(const mpq_class& value) {
    const mpz_class magnitude = abs(value.get_num());
    for (int exponent = value < 0 ? -65 : -64; exponent <= 62; ++exponent) {
        const mpq_class last_pair = exponent < 19 ? quotient(1, power_of_ten(2 * (19 - exponent)))
                                                  : mpq_class(power_of_ten(2 * (exponent - 19)));
        const mpq_class pairs = mpq_class(magnitude, value.get_den()) / last_pair;
        if (pairs < power_of_ten(40)) {
            return pairs.get_den() == 1;
        }
    }
    return false;
}

/* odd * 2^exponent for odd numbers of any size: the share that is held changes with both. */
TEST(FromDoubleExact, RandomDoublesAreHeldOrRefusedAsIntegersSay) {
    std::mt19937_64 random(41);
    const mpz_class unit = power_of_ten(unit_digits);
    int held = 0;
    constexpr int count = 5000;
    for (int i = 0; i < count; ++i) {
        const auto odd = static_cast<std::int64_t>((random() >> (11U + random() % 53U)) | 1U);
        const int exponent = static_cast<int>(random() % 240) - 120;
        const double value = std::ldexp(static_cast<double>(random() % 2 == 0 ? odd : -odd), exponent);
        mpq_class exact;
        mpq_set_d(exact.get_mpq_t(), value);
        const auto stored = from_double_exact(value);
        ASSERT_EQ(stored.has_value(), is_held(exact)) << value;
        if (stored) {
            ++held;
            ASSERT_EQ(quotient(value_of_plain_decimal(to_string(*stored)), unit), exact) << value;
            ASSERT_TRUE(is_canonical(*stored)) << value;
            ASSERT_EQ(to_double(*stored).value(), value);
        } else {
            ASSERT_EQ(stored.error(), too_many_digits) << value;
        }
    }
    EXPECT_GT(held, count / 10);
    EXPECT_LT(held, count - count / 10);
}

/* ---- From double, shortest ---- */

std::string shortest_text(double value) {
    const auto shortest = from_double_shortest(value);
    return shortest ? to_string(*shortest, {.notation = text_notation::scientific})
                    : message(shortest.error());
}

TEST(FromDoubleShortest, GivesTheDecimalThatWasMeant) {
    EXPECT_EQ(shortest_text(0.1), "1e-1");
    EXPECT_EQ(shortest_text(0.1 + 0.2), "3.0000000000000004e-1");
    EXPECT_EQ(shortest_text(-19.99), "-1.999e1");
    EXPECT_EQ(shortest_text(1e125), "1e125");
    EXPECT_EQ(shortest_text(1e-128), "1e-128");
    EXPECT_EQ(shortest_text(-0.0), "0e0");
    EXPECT_EQ(shortest_text(-std::numeric_limits<double>::infinity()), "-inf");
}

TEST(FromDoubleShortest, RefusesWhatIsNotHeld) {
    EXPECT_EQ(shortest_text(std::nan("")), message(not_a_number));
    EXPECT_EQ(shortest_text(1e126), message(too_large));
    EXPECT_EQ(shortest_text(1e-170), message(too_small));
    EXPECT_EQ(shortest_text(1.25e-166), message(too_many_digits));
}

/* A double between 10^-128 and 10^125, not a power of two: those have a nearer neighbour below than above. */
double random_double(std::mt19937_64& random) {
    const double mantissa = 1.0 + static_cast<double>((random() >> 12U) | 1U) * 0x1p-52;
    const double value = std::ldexp(mantissa, static_cast<int>(random() % 840) - 425);
    return random() % 2 == 0 ? value : -value;
}

TEST(FromDoubleShortest, RandomDoublesComeBackAndFewerDigitsDoNot) {
    std::mt19937_64 random(43);
    for (int i = 0; i < 20000; ++i) {
        const double value = random_double(random);
        const auto stored = from_double_shortest(value);
        ASSERT_TRUE(stored) << value << ' ' << message(stored.error());
        ASSERT_EQ(to_double(*stored).value(), value);

        const std::string text = shortest_text(value);
        ASSERT_EQ(std::strtod(text.c_str(), nullptr), value);
        const std::size_t exponent = text.find('e');
        const std::size_t digits =
            exponent - (text.front() == '-' ? 1 : 0) - (text.find('.') < exponent ? 1 : 0);
        if (digits > 1) {
            std::array<char, 40> fewer{};
            std::snprintf(fewer.data(), fewer.size(), "%.*e", static_cast<int>(digits) - 2, value);
            ASSERT_NE(std::strtod(fewer.data(), nullptr), value) << text << ' ' << fewer.data();
        }
    }
}

} // namespace
} // namespace qzoci::test
