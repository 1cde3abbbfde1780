#include "tests/elementary/reference.h"
#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::Contains;
using testing::Not;

using Lines = std::vector<std::string>;

/* The sum of up to 262 terms of an argument that two square roots and two quotients reduced, doubled twice.
 */
constexpr double series_units = 1000;

constexpr const char* half_pi =
    "1."
    "57079632679489661923132169163975144209858469968755291048747229615390820314310449931401741267105853399107"
    "40432566411533235469223047752911158626797040642405587251";

constexpr const char* large_number = "2|QZCICalcNumAtan get a large number, result is pi/2";

std::string value(std::string_view decimal) {
    return fields_text(record_from_decimal(decimal));
}

std::string negated(const std::string& fields) {
    return "-" + fields;
}

std::string arctangent_of(const std::string& operand) {
    return result_of("QZCICalcNumAtan " + operand);
}

size_t reductions_of(const std::string& operand) {
    return count_of(lines_of("QZCICalcNumAtan " + operand), "2|call function QZCICalcNumSqrt ");
}

/* The multiplier of the last step, 2 to the number of reductions. */
void expect_scaling_by(const std::string& operand, const std::string& factor) {
    EXPECT_THAT(lines_of("QZCICalcNumAtan " + operand),
                Contains("2|call function QZCICalcNumMulWhitInterge with multiplicand:S, multiplier:" +
                         factor + ", product:S"));
}

/* ---- Arctangent ---- */

/* The sum begins as a copy of the zero, whose sign the scaling keeps. */
TEST(Arctangent, OfZeroIsThatZeroWithoutReductionOrTerms) {
    EXPECT_EQ(arctangent_of("D:0"), positive_zero);
    EXPECT_EQ(arctangent_of("D:-0"), negative_zero);
    EXPECT_EQ(arctangent_of("O:0180"), unsigned_zero);
    EXPECT_EQ(reductions_of("D:0"), 0U);
    EXPECT_EQ(count_of(lines_of("QZCICalcNumAtan D:0"), "2|call function QZCICalcNumDiv "), 0U);
}

TEST(Arctangent, IsThatOfTheRealNumber) {
    for (const char* const number : {"0.25", "0.5", "0.6", "1", "-1", "3", "-1000.5", "1e40", "1e-100"}) {
        expect_near(std::string("QZCICalcNumAtan D:") + number, accuracy::of<mpfr_atan>(real_of(number)),
                    series_units);
    }
}

TEST(Arctangent, OfAHalfIsNotReduced) {
    EXPECT_EQ(reductions_of("D:0.5"), 0U);
    EXPECT_EQ(reductions_of("D:-0.5"), 0U);
    expect_scaling_by("D:0.5", "1");
}

TEST(Arctangent, OfOneUnitAboveAHalfIsReducedOnce) {
    EXPECT_EQ(reductions_of("R:" + fields_of_units(power_of_ten(160) / 2 + 1)), 1U);
}

TEST(Arctangent, OfThreeFifthsIsReducedOnceAndDoubled) {
    EXPECT_EQ(reductions_of("D:0.6"), 1U);
    EXPECT_EQ(reductions_of("D:-0.6"), 1U);
    expect_scaling_by("D:0.6", "2");
}

/* The first reduction leaves nearly 1, the second nearly sqrt 2 - 1. */
TEST(Arctangent, OfALargeNumberIsReducedTwiceAndQuadrupled) {
    EXPECT_EQ(reductions_of("D:1e30"), 2U);
    expect_scaling_by("D:1e30", "4");
}

/* 0.5^523 / 523 is 0.7 * 10^-160 and 0.5^525 / 525 is 0.2 * 10^-160: after the first term 261 that are not
 * zero, and the zero one that ends the loop. */
TEST(Arctangent, OfAHalfTakes261TermsAndTheZeroOneAfterThem) {
    EXPECT_EQ(count_of(lines_of("QZCICalcNumAtan D:0.5"), "2|call function QZCICalcNumDiv "), 262U);
}

TEST(Arctangent, OfANumberWhoseSquareOverflowsIsHalfPiWithItsSign) {
    for (const char* const number : {"1e80", "3e80", "1e159", "inf"}) {
        EXPECT_EQ(arctangent_of(std::string("D:") + number), value(half_pi)) << number;
        EXPECT_EQ(arctangent_of(std::string("D:-") + number), negated(value(half_pi))) << number;
        EXPECT_THAT(lines_of(std::string("QZCICalcNumAtan D:") + number), Contains(large_number));
        EXPECT_EQ(reductions_of(std::string("D:") + number), 0U);
    }
}

TEST(Arctangent, OfANumberWhoseSquareFitsIsComputed) {
    EXPECT_THAT(lines_of("QZCICalcNumAtan D:9e79"), Not(Contains(large_number)));
    expect_near("QZCICalcNumAtan D:9e79", accuracy::of<mpfr_atan>(real_of("9e79")), series_units);
}

TEST(Arctangent, TracesItsStepsInOrder) {
    EXPECT_EQ(
        lines_of("QZCICalcNumAtan D:1e90"),
        (Lines{"2|call function QZCICalcNumAtan with number:A, result:R",
               "2|call function QZCICalcNumAssign with num:A, opt:S",
               "2|function QZCICalcNumAssign return with status 0",
               "2|call function QZCICalcNumAssign with num:S, opt:S",
               "2|function QZCICalcNumAssign return with status 0",
               "2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
               "2|QZCICalcNumMul:S x S result:0, 10000",
               "2|QZCICalcNumMul new_len:1 exp_sum: 22",
               "2|exceed max precision to calc in QZCICalcNumMul :need 1 + 22 < 20, set to infinity number",
               "2|function QZCICalcNumMul return with status 0",
               large_number,
               "2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
               "2|call function QZCICalcNumToZero with num:S",
               "2|function QZCICalcNumToZero return with status 0",
               "2|function QZCICalcNumMul return with status 0",
               "2|call function QZCICalcNumAssign with num:S, opt:S",
               "2|function QZCICalcNumAssign return with status 0",
               "2|call function QZCICalcNumAssign with num:S, opt:S",
               "2|function QZCICalcNumAssign return with status 0",
               "2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S",
               "2|call function QZCICalcNumAssign with num:S, opt:S",
               "2|function QZCICalcNumAssign return with status 0",
               "2|function QZCICalcNumAdd return with status 0",
               "2|call function QZCICalcNumMulWhitInterge with multiplicand:S, multiplier:1, product:S",
               "2|function QZCICalcNumMulWhitInterge return with status 0",
               "2|function QZCICalcNumAtan return with status 0"}));
}

/* The square roots inside are of numbers whose guesses repeat: 1 + z^2 one above a square. */
TEST(Arctangent, ThroughASquareRootWhoseGuessesRepeatEnds) {
    for (const char* const number : {"4000000000000000", "-4000000000000000", "4070804800000000"}) {
        expect_near(std::string("QZCICalcNumAtan D:") + number, accuracy::of<mpfr_atan>(real_of(number)),
                    series_units);
    }
}

/* z^2 is so close below 10^160 that adding 1 overflows; the square root of +infinity is zero, and z is
 * divided by 1 without end. */
TEST(Arctangent, OfANumberThatTheReductionLeavesAsItIsEndsWithAnError) {
    const mpz_class number = power_of_ten(240) - 4 * power_of_ten(79);
    const Outcome outcome = on_all_sides("QZCICalcNumAtan R:" + fields_of_units(number));
    EXPECT_EQ(outcome.effect.status, OCI_ERROR);
    EXPECT_EQ(outcome.effect.result, poison_record());
    const Lines lines = rendered(without_debug(outcome.lines));
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + 3),
              (Lines{"out|add set infinity to one with carry", "5|augend:S + addend:S has overflow:1",
                     "5|QZCICalcNumSqrt: the number is positive infinity"}));
    EXPECT_EQ(lines.back(), "5|QZCICalcNumAtan call NumSqrt error");
}

/* ---- Arctangent: failing steps ---- */

/* Positions in the wrong order, which the comparison can walk between: 0.6 and 0.4. */
constexpr const char* crossed_above_a_half = "R:1,0,30,10,0,z20.60000000.z19";
constexpr const char* crossed_below_a_half = "R:1,0,30,10,0,z20.40000000.z19";

TEST(Arctangent, FailingInTheReductionFails) {
    expect_failure(std::string("QZCICalcNumAtan ") + crossed_above_a_half, OCI_ERROR,
                   {"5|QZCICalcNumMul get a malformed record", "5|QZCICalcNumAtan call NumMul error"});
}

TEST(Arctangent, FailingInTheReductionsSquareRootFails) {
    const std::string request = "QZCICalcNumAtan R:1,0,17,18,0,z17.2487606477.2734287795.z21";
    expect_failure(request, OCI_ERROR,
                   {"5|QZCICalcNumDiv get a malformed record", "5|QZCICalcNumSqrt: QZCICalcNumDiv error",
                    "5|QZCICalcNumAtan call NumSqrt error"});
}

/* The sum is still the zero it began with. */
TEST(Arctangent, FailingBeforeTheSeriesSucceedsWithWhatThereIs) {
    const std::string request = std::string("QZCICalcNumAtan ") + crossed_below_a_half;
    EXPECT_EQ(kept_lines_of(request),
              (Lines{"5|QZCICalcNumMul get a malformed record", "5|QZCICalcNumAtan call NumMul error"}));
    EXPECT_EQ(result_of(request), positive_zero);
    const Lines lines = lines_of(request);
    EXPECT_EQ(Lines(lines.end() - 5, lines.end()),
              (Lines{"2|call function QZCICalcNumMulWhitInterge with multiplicand:S, multiplier:1, product:S",
                     "2|call function QZCICalcNumToZero with num:S",
                     "2|function QZCICalcNumToZero return with status 0",
                     "2|function QZCICalcNumMulWhitInterge return with status 0",
                     "2|function QZCICalcNumAtan return with status 0"}));
}

/* 10^-50 with the sign 5: the sum is a copy of it, to which nothing can be added. z^3 / 3 is not zero, and
 * the pass is made again with the same divisor: z^5 / 3 is zero, which can be added. */
TEST(Arctangent, FailingInTheSeriesTriesTheNextPowerAndSucceeds) {
    const std::string request = "QZCICalcNumAtan R:5,0,26,26,0,z26.1000000.z13";
    EXPECT_EQ(kept_lines_of(request),
              (Lines{"5|QZCICalcNumAdd get a error format", "5|QZCICalcNumAtan call NumAdd error"}));
    EXPECT_EQ(result_of(request), "5,0,26,26,0,z26.1000000.z13");
    EXPECT_EQ(count_of(lines_of(request), "2|call function QZCICalcNumDiv "), 2U);
}

/* ---- Arcsine ---- */

TEST(Arcsine, OfOneIsHalfPiWithItsSign) {
    EXPECT_EQ(result_of("QZCICalcNumAsin D:1"), value(half_pi));
    EXPECT_EQ(result_of("QZCICalcNumAsin D:-1"), negated(value(half_pi)));
    EXPECT_EQ(lines_of("QZCICalcNumAsin D:-1"),
              (Lines{"2|call function QZCICalcNumAsin with number:A, result:R",
                     "2|function QZCICalcNumAsin return with status 0"}));
}

TEST(Arcsine, AboveOneFails) {
    for (const char* const number : {"1.0000001", "-1.0000001", "2", "inf", "-inf"}) {
        expect_failure(std::string("QZCICalcNumAsin D:") + number, OCI_ERROR,
                       {"5|input number is too large"});
    }
    expect_failure("QZCICalcNumAsin R:" + fields_of_units(power_of_ten(160) + 1), OCI_ERROR,
                   {"5|input number is too large"});
    EXPECT_EQ(lines_of("QZCICalcNumAsin D:2"),
              (Lines{"2|call function QZCICalcNumAsin with number:A, result:R", "5|input number is too large",
                     "2|function QZCICalcNumAsin return with status -1"}));
}

TEST(Arcsine, IsThatOfTheRealNumber) {
    for (const char* const number : {"0.1", "-0.5", "0.75", "0.99"}) {
        expect_near(std::string("QZCICalcNumAsin D:") + number, accuracy::of<mpfr_asin>(real_of(number)),
                    1e5);
    }
}

/* 1 - x^2 is 2 * 10^-160, whose root has 80 digits. */
TEST(Arcsine, OfOneUnitBelowOneIsRightToHalfTheDigits) {
    const mpz_class number = power_of_ten(160) - 1;
    const Real exact = accuracy::of<mpfr_asin>(real_of("0." + std::string(160, '9')));
    expect_near("QZCICalcNumAsin R:" + fields_of_units(number), exact, 1e80);
}

/* The quotient 0 / 1 has no sign, and it spreads by copying. */
TEST(Arcsine, OfZeroIsAZeroWithoutSign) {
    EXPECT_EQ(result_of("QZCICalcNumAsin D:0"), unsigned_zero);
    EXPECT_EQ(result_of("QZCICalcNumAsin D:-0"), unsigned_zero);
}

TEST(Arcsine, FailsInTheSquaring) {
    expect_failure(
        std::string("QZCICalcNumAsin ") + crossed_below_a_half, OCI_ERROR,
        {"5|QZCICalcNumMul get a malformed record", "5|QZCICalcNumAsin call QZCICalcNumMul error"});
}

TEST(Arcsine, FailsInTheSquareRoot) {
    expect_failure("QZCICalcNumAsin R:1,0,20,20,0,z20.3767486127.z19", OCI_ERROR,
                   {"5|QZCICalcNumDiv get a malformed record", "5|QZCICalcNumSqrt: QZCICalcNumDiv error",
                    "5|QZCICalcNumAsin call QZCICalcNumSqrt error"});
}

/* A limb above 99999999 makes a number above 1 compare as below 1. 1 - x^2 is negative, and its root zero. */
TEST(Arcsine, FailsInTheDivisionByTheRootOfANegativeNumber) {
    expect_failure("QZCICalcNumAsin R:1,0,20,21,0,z20.99999999.4294967295.z18", OCI_ERROR,
                   {"5|QZCICalcNumSqrt: the number is negitive", "5|QZCICalcNumDiv: the divisor is zeor",
                    "5|QZCICalcNumAsin call QZCICalcNumDiv error"});
}

/* ---- Arccosine ---- */

TEST(Arccosine, OfOneIsZero) {
    /* pi/2 - pi/2 is a zero with the sign opposite to pi/2's. */
    EXPECT_EQ(result_of("QZCICalcNumAcos D:1"), negative_zero);
}

TEST(Arccosine, OfMinusOneIsTwiceHalfPi) {
    EXPECT_EQ(result_of("QZCICalcNumAcos D:-1"), fields_of_units(2 * units_of(std::string_view(half_pi))));
}

TEST(Arccosine, OfZeroIsHalfPi) {
    EXPECT_EQ(result_of("QZCICalcNumAcos D:0"), value(half_pi));
}

TEST(Arccosine, IsThatOfTheRealNumber) {
    for (const char* const number : {"0.1", "-0.5", "0.75"}) {
        expect_near(std::string("QZCICalcNumAcos D:") + number, accuracy::of<mpfr_acos>(real_of(number)),
                    1e5);
    }
}

TEST(Arccosine, AboveOneFailsWithTheArcsine) {
    expect_failure("QZCICalcNumAcos D:-1.5", OCI_ERROR,
                   {"5|input number is too large", "5|QZCICalcNumAcos call QZCICalcNumAsin error"});
    EXPECT_EQ(lines_of("QZCICalcNumAcos D:1.5"),
              (Lines{"2|call function QZCICalcNumAcos with number:A, result:R",
                     "2|call function QZCICalcNumAsin with number:A, result:S", "5|input number is too large",
                     "2|function QZCICalcNumAsin return with status -1",
                     "5|QZCICalcNumAcos call QZCICalcNumAsin error",
                     "2|function QZCICalcNumAcos return with status -1"}));
}

/* ---- Angle of a point ---- */

std::string request_of(const std::string& y, const std::string& x) {
    return "QZCICalcNumAtan2 D:" + y + " D:" + x;
}

std::string angle(const std::string& y, const std::string& x) {
    return result_of(request_of(y, x));
}

TEST(AngleOfAPoint, OfTheOriginIsZeroWithAnErrorLineAndSuccess) {
    for (const std::string x : {"0", "-0"}) {
        EXPECT_EQ(angle("0", x), positive_zero);
        EXPECT_EQ(lines_of("QZCICalcNumAtan2 D:0 D:" + x),
                  (Lines{"2|call function QZCICalcNumAtan with number:A, number2:B, result:R",
                         "5|QZCICalcNumAtan2 error with number1 is zero and number2 is zero",
                         "2|function QZCICalcNumAtan2 return with status 0"}));
    }
}

TEST(AngleOfAPoint, OnTheVerticalAxisIsHalfPiWithTheSignOfItsHeight) {
    for (const std::string y : {"1", "1e-160", "inf"}) {
        EXPECT_EQ(angle(y, "0"), value(half_pi));
        EXPECT_EQ(angle("-" + y, "0"), negated(value(half_pi)));
        EXPECT_EQ(angle(y, "-0"), value(half_pi));
    }
}

TEST(AngleOfAPoint, OnTheNegativeHorizontalAxisIsPi) {
    const std::string pi = fields_of_units(2 * units_of(std::string_view(half_pi)));
    EXPECT_EQ(angle("0", "-1"), pi);
    EXPECT_EQ(angle("-0", "-1"), pi);
    EXPECT_EQ(angle("0", "-1e-160"), pi);
}

TEST(AngleOfAPoint, OnThePositiveHorizontalAxisIsAZeroWithoutSign) {
    EXPECT_EQ(angle("0", "1"), unsigned_zero);
    EXPECT_EQ(angle("-0", "3"), unsigned_zero);
}

TEST(AngleOfAPoint, InEachQuadrantIsThatOfTheRealPoint) {
    for (const std::string y : {"1", "-1", "2.5", "-0.001"}) {
        for (const std::string x : {"1", "-1", "-7", "100"}) {
            expect_near(request_of(y, x), accuracy::of<mpfr_atan2>(real_of(y), real_of(x)), series_units);
        }
    }
}

TEST(AngleOfAPoint, InTheThirdQuadrantIsTheArctangentLessPi) {
    const mpz_class pi = 2 * units_of(std::string_view(half_pi));
    const mpz_class quarter = units_of(record_of("QZCICalcNumAtan D:1"));
    EXPECT_EQ(angle("-1", "-1"), fields_of_units(pi - quarter, -1));
    EXPECT_EQ(angle("1", "-1"), fields_of_units(pi - units_of(record_of("QZCICalcNumAtan D:-1"))));
}

TEST(AngleOfAPoint, FailsInTheDivision) {
    expect_failure(
        "QZCICalcNumAtan2 D:1 R:1,0,19,60,0,z19.4.z20", OCI_ERROR,
        {"5|QZCICalcNumDiv get a malformed record", "5|QZCICalcNumAtan2 call QZCICalcNumDiv error"});
}

TEST(AngleOfAPoint, FailsWithTheArctangent) {
    const mpz_class number = power_of_ten(240) - 4 * power_of_ten(79);
    const Outcome outcome = on_all_sides("QZCICalcNumAtan2 R:" + fields_of_units(number) + " D:1");
    EXPECT_EQ(outcome.effect.status, OCI_ERROR);
    EXPECT_EQ(outcome.effect.result, poison_record());
    EXPECT_THAT(rendered(outcome.lines), Contains("5|QZCICalcNumAtan2 call QZCICalcNumAtan error"));
}

} // namespace
} // namespace qzoci::test
