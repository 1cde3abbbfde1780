/* Series summed in binary against the laid-down passes, and the arithmetic beneath. */
#include "qzoci/limbs/binary_digits.h"
#include "qzoci/limbs/reciprocal.h"
#include "qzoci/limbs/series.h"
#include "qzoci/oci_calc_number_elementary.h"
#include "tests/limbs/random_records.h"
#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <random>

namespace qzoci::test {
namespace {

using limbs::SeriesRule;

constexpr engine::Trace plain = {false, false};

constexpr sb8 sine_divisor(sb8 index) {
    return 2 * index * (2 * index + 1);
}

constexpr sb8 index_itself(sb8 index) {
    return index;
}

constexpr sb8 odd_divisor(sb8 index) {
    return 2 * index - 1;
}

constexpr sb8 no_divisor(sb8) {
    return 1;
}

bool keeps_sign(sb8, bool negative) {
    return negative;
}

bool minus_at_odd(sb8 index, bool) {
    return index % 2 != 0;
}

bool turned_at_even(sb8 index, bool negative) {
    return negative != (index % 2 == 0);
}

using limbs::series_divisors;

const SeriesRule sine = {1, series_divisors<sine_divisor, 1, 120>, minus_at_odd, true};
const SeriesRule exponential = {1, series_divisors<index_itself, 1, 400>, keeps_sign, true};
const SeriesRule logarithm = {2, series_divisors<odd_divisor, 2, 272>, keeps_sign, false};
const SeriesRule arctangent = {2, series_divisors<odd_divisor, 2, 272>, turned_at_even, false};
const SeriesRule growing = {1, series_divisors<no_divisor, 1, 400>, keeps_sign, true};

/* The passes one by one, on records. */
QZCICalcNumber summed_by_steps(const SeriesRule& rule, QZCICalcNumber power, const QZCICalcNumber& factor,
                               QZCICalcNumber sum) {
    QZCICalcNumber term = power;
    for (sb8 index = rule.first_index; term.is_zero == 0; ++index) {
        QZCICalcNumber divisor;
        initCalcNumberFromInt(&divisor, rule.divisors[static_cast<size_t>(index - rule.first_index)].d());
        engine::mul(plain, &power, &factor, &power);
        engine::div(plain, &power, &divisor, &term);
        term.num_signed = rule.term_is_negative(index, power.num_signed == -1) ? -1 : 1;
        engine::add(plain, &sum, &term, &sum);
        if (rule.term_is_power) {
            power = term;
        }
    }
    return sum;
}

/* Nothing where the kernel declines. */
std::optional<QZCICalcNumber> summed_by_kernel(const SeriesRule& rule, const QZCICalcNumber& power,
                                               const QZCICalcNumber& factor, const QZCICalcNumber& sum) {
    const auto operand = [](const QZCICalcNumber& num) {
        return limbs::SignedMagnitude{{num.data_part, num.start_pos, num.end_pos}, num.num_signed == -1};
    };
    QZCICalcNumber result = poison_record();
    const QZCICalcNumber untouched = result;
    limbs::Extent extent = {};
    bool negative = false;
    if (!limbs::sum_series(rule, operand(power), operand(factor), operand(sum), result.data_part, extent,
                           negative)) {
        EXPECT_EQ(result, untouched);
        return std::nullopt;
    }
    result.num_signed = negative ? -1 : 1;
    result.num_infinity = 0;
    result.is_zero = 0;
    result.start_pos = static_cast<sb1>(extent.first);
    result.end_pos = static_cast<sb1>(extent.last);
    return result;
}

/* In limbs first.. to last, with the oddities of RandomRecords; below one, or below ten. */
QZCICalcNumber random_operand(RandomRecords& records, int first) {
    for (;;) {
        QZCICalcNumber number = records.any();
        std::fill(number.data_part, number.data_part + first, 0U);
        number.data_part[19] %= 10;
        number.num_infinity = 0;
        QZCICalcNumInit(&number);
        if (number.is_zero == 0) {
            return number;
        }
    }
}

TEST(Series, AreThoseOfTheSteps) {
    RandomRecords records(1);
    int finished = 0;
    constexpr int cases = 1500;
    for (int i = 0; i < cases; ++i) {
        /* The factors of the odd divisors are below a quarter, as the terms would not become zero otherwise. */
        const bool may_grow = records.below(2) != 0;
        const SeriesRule& rule = may_grow ? (records.below(2) != 0 ? sine : exponential)
                                          : (records.below(2) != 0 ? logarithm : arctangent);
        const QZCICalcNumber power = random_operand(records, 19);
        QZCICalcNumber factor = random_operand(records, may_grow ? 19 : 20);
        if (!may_grow) {
            factor.data_part[20] %= 25000000;
            factor.num_signed = 1;
            QZCICalcNumInit(&factor);
            if (factor.is_zero != 0) {
                continue;
            }
        }
        const QZCICalcNumber sum = records.below(2) != 0 ? power : random_operand(records, 19);
        const std::optional<QZCICalcNumber> result = summed_by_kernel(rule, power, factor, sum);
        if (result.has_value()) {
            ++finished;
            ASSERT_EQ(*result, summed_by_steps(rule, power, factor, sum)) << fields_text(power) << '\n'
                                                                          << fields_text(factor) << '\n'
                                                                          << fields_text(sum);
        }
    }
    EXPECT_GT(finished, cases * 9 / 10);
}

/* In units of the last place: 199999999 * 0.5 = 99999999.5, whose last limb rounds up to 1. Then 1 * 0.5 rounds
 * up to 1, and its half, not above one half, down to 0. */
TEST(Series, RoundALastLimbOf99999999UpTo1) {
    const QZCICalcNumber power = record_from_limbs({{38, 1}, {39, 99999999}});
    const QZCICalcNumber half = record_from_limbs({{20, 50000000}});
    EXPECT_EQ(summed_by_kernel(exponential, power, half, power), record_from_limbs({{38, 2}}));
    EXPECT_EQ(summed_by_steps(exponential, power, half, power), record_from_limbs({{38, 2}}));
}

/* A product of 100000000 in the last two limbs that is exact, or rounded to from above, is no such case. */
TEST(Series, KeepALastLimbOfZeroThatIsNotRoundedUp) {
    const QZCICalcNumber half = record_from_limbs({{20, 50000000}});
    const QZCICalcNumber exact = record_from_limbs({{38, 2}});
    const QZCICalcNumber third = record_from_limbs({{38, 3}});
    const QZCICalcNumber above = record_from_limbs({{20, 33333333}, {21, 33333334}});
    EXPECT_EQ(summed_by_kernel(exponential, exact, half, exact),
              summed_by_steps(exponential, exact, half, exact));
    EXPECT_EQ(summed_by_kernel(exponential, third, above, third),
              summed_by_steps(exponential, third, above, third));
}

/* Products of exactly n + 1/2, whose fraction binary digits cut from below cannot tell from less. */
TEST(Series, RoundTiesUp) {
    const QZCICalcNumber half = record_from_limbs({{20, 50000000}});
    for (ub4 last = 1; last < 400; last += 2) {
        const QZCICalcNumber power = record_from_limbs({{39, last}});
        EXPECT_EQ(summed_by_kernel(exponential, power, half, power),
                  summed_by_steps(exponential, power, half, power))
            << last;
        EXPECT_EQ(summed_by_kernel(logarithm, power, record_from_limbs({{20, 10000000}}), power),
                  summed_by_steps(logarithm, power, record_from_limbs({{20, 10000000}}), power))
            << last;
    }
}

TEST(Series, DeclineOperandsThatAreNotLetIn) {
    const QZCICalcNumber tenth = record_from_limbs({{20, 10000000}});
    const auto finishes = [](const SeriesRule& rule, const QZCICalcNumber& power,
                             const QZCICalcNumber& factor, const QZCICalcNumber& sum) {
        return summed_by_kernel(rule, power, factor, sum).has_value();
    };
    const QZCICalcNumber fifteen = record_from_decimal("15");
    const QZCICalcNumber sixteen = record_from_decimal("16");
    EXPECT_TRUE(finishes(exponential, fifteen, tenth, fifteen));
    EXPECT_FALSE(finishes(exponential, sixteen, tenth, fifteen));
    EXPECT_FALSE(finishes(exponential, fifteen, sixteen, fifteen));
    EXPECT_FALSE(finishes(exponential, fifteen, tenth, sixteen));
    EXPECT_FALSE(finishes(exponential, fifteen, tenth, record_from_decimal("1e8")));
    QZCICalcNumber oversized = tenth;
    oversized.data_part[20] = 100000000;
    EXPECT_FALSE(finishes(exponential, oversized, tenth, tenth));
    EXPECT_FALSE(finishes(exponential, tenth, oversized, tenth));
    EXPECT_FALSE(finishes(exponential, tenth, tenth, oversized));
    QZCICalcNumber limb_outside = tenth;
    limb_outside.data_part[30] = 1;
    EXPECT_FALSE(finishes(exponential, tenth, tenth, limb_outside));
    EXPECT_TRUE(finishes(exponential, limb_outside, tenth, tenth));
}

TEST(Series, DeclineWhatGrowsOrDoesNotEnd) {
    const QZCICalcNumber tenth = record_from_limbs({{20, 10000000}});
    EXPECT_EQ(summed_by_kernel(growing, tenth, record_from_decimal("15"), tenth), std::nullopt);
    EXPECT_EQ(summed_by_kernel(growing, tenth, record_from_decimal("1"), tenth), std::nullopt);
}

/* A tenth of it is left from pass to pass: one unit of the last place is made after 160, nothing in the next. */
TEST(Series, DeclineTooFewDivisors) {
    const QZCICalcNumber one = record_from_decimal("1");
    const QZCICalcNumber tenth = record_from_limbs({{20, 10000000}});
    const auto finishes_with = [&](size_t count) {
        const SeriesRule rule = {1, growing.divisors.first(count), keeps_sign, true};
        return summed_by_kernel(rule, one, tenth, one).has_value();
    };
    EXPECT_FALSE(finishes_with(0));
    EXPECT_FALSE(finishes_with(160));
    EXPECT_TRUE(finishes_with(164));
}

/* The largest divisor that is taken: 65536 * 0.50000001 = 32768.00065536 rounds to 1, one less to 0. */
TEST(Series, RoundAQuotientAboveOneHalf) {
    static constexpr auto largest = [] {
        std::array<limbs::SeriesDivisor, 4> divisors = {};
        divisors.fill(limbs::SeriesDivisor(limbs::max_series_divisor));
        return divisors;
    }();
    const SeriesRule rule = {1, largest, keeps_sign, true};
    const QZCICalcNumber one = record_from_decimal("1");
    const auto rounded = [&](ub4 units) {
        const QZCICalcNumber power = record_from_limbs({{39, units}});
        return summed_by_kernel(rule, power, one, power);
    };
    EXPECT_EQ(rounded(32768), record_from_limbs({{39, 32768}}));
    EXPECT_EQ(rounded(32769), record_from_limbs({{39, 32770}}));
}

TEST(Series, DeclineASumOfZero) {
    const QZCICalcNumber one = record_from_limbs({{39, 1}});
    QZCICalcNumber minus_one = one;
    minus_one.num_signed = -1;
    const QZCICalcNumber half = record_from_limbs({{20, 50000000}});
    /* The first term is one unit, the next zero. */
    EXPECT_EQ(summed_by_kernel(exponential, one, half, minus_one), std::nullopt);
    EXPECT_EQ(summed_by_kernel(exponential, one, half, one), record_from_limbs({{39, 2}}));
}

TEST(BinaryDigits, GiveTheLimbsBack) {
    std::mt19937_64 random(3);
    constexpr auto edges = std::to_array<ub4>({0, 1, 49999999, 50000000, 99999998, 99999999});
    for (int i = 0; i < 20000; ++i) {
        std::array<limbs::Limb, 40> number = {};
        const bool structured = random() % 2 == 0;
        for (size_t k = 19; k < number.size(); ++k) {
            number[k] = structured ? edges[random() % edges.size()] : static_cast<ub4>(random() % 100000000);
        }
        limbs::Integer integer;
        limbs::to_binary({number.data(), 19, 39}, integer);
        std::array<limbs::Limb, 40> back;
        limbs::to_limbs(integer, back.data());
        ASSERT_EQ(back, number);
    }
}

TEST(BinaryDigits, CountOnlyTheLimbsOfTheOperand) {
    std::array<limbs::Limb, 40> number;
    number.fill(77777777);
    number[39] = 5;
    limbs::Integer integer;
    limbs::to_binary({number.data(), 39, 39}, integer);
    EXPECT_EQ(integer[0], 5);
    EXPECT_TRUE(std::all_of(integer + 1, integer + limbs::integer_digits, [](sb8 d) { return d == 0; }));
}

TEST(Reciprocal, DividesLikeTheProcessor) {
    std::mt19937_64 random(4);
    constexpr ub8 limit = ub8{1} << 62;
    for (ub4 d = 2; d < limbs::base; d += d < 70000 ? 1 : 1 + static_cast<ub4>(random() % 50000)) {
        const limbs::Reciprocal reciprocal(d);
        const ub8 multiple = random() % (limit / d) * d;
        for (const ub8 v :
             {ub8{0}, ub8{d - 1}, ub8{d}, limit - 1, multiple, multiple + d - 1, random() % limit}) {
            ASSERT_EQ(reciprocal.quotient(v), v / d) << v << ' ' << d;
        }
    }
}

} // namespace
} // namespace qzoci::test
