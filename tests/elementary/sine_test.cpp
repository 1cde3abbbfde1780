#include "tests/elementary/reference.h"
#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::Contains;
using testing::Not;

using Lines = std::vector<std::string>;

/* The sum of up to 66 terms, each rounded three times, of an argument that is itself right to one unit. */
constexpr double series_units = 100;

std::string value(std::string_view decimal) {
    return fields_text(record_from_decimal(decimal));
}

std::string sine_of(const std::string& operand) {
    return result_of("QZCICalcNumSin " + operand);
}

/* Multiples of the stored pi, which is cut to 160 digits: exact, as operands. */
mpz_class pi_units() {
    static const mpz_class units =
        units_of("3."
                 "14159265358979323846264338327950288419716939937510582097494459230781"
                 "64062862089986280348253421170679821480865132823066470938446095505822"
                 "317253594081284811174502");
    return units;
}

std::string operand_of(const mpz_class& units, sb1 sign = 1) {
    return "R:" + fields_of_units(units, sign);
}

/* ---- Special values ---- */

TEST(Sine, OfZeroAndOfInfinitiesIsZero) {
    for (const std::string operand : {"D:0", "D:-0", "D:inf", "D:-inf", "O:0180"}) {
        EXPECT_EQ(sine_of(operand), positive_zero) << operand;
        EXPECT_EQ(lines_of("QZCICalcNumSin " + operand),
                  (Lines{"2|call function QZCICalcNumSin with number:A, result:R",
                         "2|function QZCICalcNumSin return with status 0"}));
    }
}

TEST(Cosine, OfZeroAndOfInfinitiesIsOne) {
    for (const std::string operand : {"D:0", "D:-0", "D:inf", "D:-inf"}) {
        EXPECT_EQ(result_of("QZCICalcNumCos " + operand), value("1")) << operand;
        EXPECT_EQ(lines_of("QZCICalcNumCos " + operand),
                  (Lines{"2|call function QZCICalcNumCos with number:A, result:R",
                         "2|function QZCICalcNumCos return with status 0"}));
    }
}

TEST(Tangent, OfZeroAndOfInfinitiesIsAZeroWithoutSign) {
    for (const std::string operand : {"D:0", "D:-0", "D:inf", "D:-inf"}) {
        EXPECT_EQ(result_of("QZCICalcNumTan " + operand), unsigned_zero) << operand;
        EXPECT_EQ(result_of("QZCICalcNumTanWithRound " + operand), unsigned_zero) << operand;
    }
}

/* ---- Values ---- */

TEST(Sine, IsThatOfTheRemainderByTwiceTheStoredPi) {
    const mpz_class two_pi = 2 * pi_units();
    const std::vector<std::string> numbers = {
        "0.5", "1", "3", "4", "6", "7", "20", "1000.125", "99999999", "1" + std::string(50, '0')};
    for (const std::string& number : numbers) {
        const mpz_class remainder = units_of(number) % two_pi;
        const Real exact = Real(remainder) / Real(power_of_ten(160));
        expect_near("QZCICalcNumSin D:" + number, accuracy::of<mpfr_sin>(exact), series_units);
    }
}

TEST(Sine, OfALargeNumberIsNotTheMathematicalOne) {
    const std::string number = "1" + std::string(50, '0');
    const Real exact = accuracy::of<mpfr_sin>(real_of(number));
    EXPECT_GT(distance_in_units(record_of("QZCICalcNumSin D:" + number), exact), 1e40);
}

TEST(Sine, OfTheNegativeIsTheNegativeSine) {
    for (const char* const number : {"0.5", "3", "4", "6", "7", "20", "1000.125", "99999999", "1e50"}) {
        QZCICalcNumber negated = record_of(std::string("QZCICalcNumSin D:") + number);
        negated.num_signed = static_cast<sb1>(-negated.num_signed);
        EXPECT_EQ(sine_of(std::string("D:-") + number), fields_text(negated)) << number;
    }
}

TEST(Cosine, IsTheSineOfTheSumWithHalfPi) {
    const mpz_class half_pi = pi_units() / 2;
    for (const char* const number : {"0.5", "1", "3", "7", "99999999.5"}) {
        EXPECT_EQ(result_of(std::string("QZCICalcNumCos D:") + number),
                  sine_of(operand_of(units_of(number) + half_pi)))
            << number;
        expect_near(std::string("QZCICalcNumCos D:") + number, accuracy::of<mpfr_cos>(real_of(number)), 1e10);
    }
}

TEST(Tangent, IsTheQuotient) {
    for (const char* const number : {"0.5", "1", "-2", "100"}) {
        expect_near(std::string("QZCICalcNumTan D:") + number, accuracy::of<mpfr_tan>(real_of(number)), 1e4);
    }
}

/* ---- Folding ---- */

/* What follows the reduction: a subtraction, or the squaring at once. */
std::string line_after_reduction(const std::string& operand) {
    const Lines lines = lines_of("QZCICalcNumSin " + operand);
    const auto reduced =
        std::find(lines.begin(), lines.end(), "2|function QZCICalcNumMod return with status 0");
    return reduced == lines.end() ? "" : *std::next(reduced);
}

constexpr const char* squaring =
    "2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S";
constexpr const char* folding = "2|call function QZCICalcNumSub with minuend:S, subtrahend:S, remainder:S";

TEST(Sine, OfExactlyPiIsNotFolded) {
    for (const sb1 sign : {sb1{1}, sb1{-1}}) {
        const std::string operand = operand_of(pi_units(), sign);
        const QZCICalcNumber sine = record_of("QZCICalcNumSin " + operand);
        EXPECT_EQ(sine.num_signed, sign);
        EXPECT_LE(distance_in_units(sine, real_of("0")), series_units);
        EXPECT_EQ(line_after_reduction(operand), squaring);
    }
}

/* The folded argument is 10^-160, whose square is zero: the series ends with its first term. */
TEST(Sine, OfOneUnitAbovePiIsFolded) {
    EXPECT_EQ(sine_of(operand_of(pi_units() + 1)), value("-1e-160"));
    EXPECT_EQ(sine_of(operand_of(pi_units() + 1, -1)), value("1e-160"));
    EXPECT_EQ(sine_of("D:1e-160"), value("1e-160"));
    EXPECT_EQ(sine_of("D:-1e-160"), value("-1e-160"));
    EXPECT_EQ(line_after_reduction(operand_of(pi_units() + 1)), folding);
    EXPECT_EQ(line_after_reduction(operand_of(pi_units() + 1, -1)), folding);
}

/* A dividend equal to the divisor has the remainder zero of sign 1; one that is a multiple keeps its sign. */
TEST(Sine, OfAMultipleOfTwicePiIsAZeroWithTheRemaindersSign) {
    EXPECT_EQ(sine_of(operand_of(2 * pi_units())), positive_zero);
    EXPECT_EQ(sine_of(operand_of(2 * pi_units(), -1)), positive_zero);
    EXPECT_EQ(sine_of(operand_of(4 * pi_units())), positive_zero);
    EXPECT_EQ(sine_of(operand_of(4 * pi_units(), -1)), negative_zero);
}

/* ---- Series ---- */

size_t divisions_of(const std::string& request) {
    return count_of(lines_of(request), "2|call function QZCICalcNumDiv ");
}

/* t66 = pi^133 / 133! is 0.9 * 10^-160 and t67 below 10^-163: 66 terms and the zero one that ends the loop.
 */
TEST(Sine, OfPiTakes66TermsAndTheZeroOneAfterThem) {
    EXPECT_EQ(divisions_of("QZCICalcNumSin " + operand_of(pi_units())), 67U);
}

/* t10 = 10^-126 / 21! is 2 * 10^-146, and t11 = 10^-138 / 23! is 0.4 * 10^-160, which rounds to zero. */
TEST(Sine, OfASmallNumberTakesFewerTerms) {
    EXPECT_EQ(divisions_of("QZCICalcNumSin D:0.000001"), 11U);
}

TEST(Sine, TracesItsStepsInOrder) {
    const Lines lines = lines_of("QZCICalcNumSin D:-1e-100");
    EXPECT_EQ(lines, (Lines{"2|call function QZCICalcNumSin with number:A, result:R",
                            "2|call function QZCICalcNumMod with modend:A, modor:S, result:S",
                            "2|QZCICalcNumMod modor big than modend",
                            "2|call function QZCICalcNumAssign with num:A, opt:S",
                            "2|function QZCICalcNumAssign return with status 0",
                            "2|function QZCICalcNumMod return with status 0",
                            "2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
                            "2|QZCICalcNumMul:S x S result:0, 0",
                            "2|QZCICalcNumMul new_len:1 exp_sum: -26",
                            "2|exceed min precision to calc in QZCICalcNumMul :need -26 * -1 <= 20",
                            "2|function QZCICalcNumMul return with status 0",
                            "2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
                            "2|call function QZCICalcNumToZero with num:S",
                            "2|function QZCICalcNumToZero return with status 0",
                            "2|function QZCICalcNumMul return with status 0",
                            "2|call function QZCICalcNumDiv with dividend:S, divisor:S, result:S",
                            "2|QZCICalcNumDiv dividend is zero",
                            "2|call function QZCICalcNumToZero with num:S",
                            "2|function QZCICalcNumToZero return with status 0",
                            "2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S",
                            "2|call function QZCICalcNumAssign with num:S, opt:S",
                            "2|function QZCICalcNumAssign return with status 0",
                            "2|function QZCICalcNumAdd return with status 0",
                            "2|function QZCICalcNumSin return with status 0"}));
}

TEST(Cosine, CopiesAddsAndHandsTheCallersRecordToTheSine) {
    const Lines lines = lines_of("QZCICalcNumCos D:1");
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + 6),
              (Lines{"2|call function QZCICalcNumCos with number:A, result:R",
                     "2|call function QZCICalcNumAssign with num:A, opt:S",
                     "2|function QZCICalcNumAssign return with status 0",
                     "2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S",
                     "2|function QZCICalcNumAdd return with status 0",
                     "2|call function QZCICalcNumSin with number:S, result:R"}));
    EXPECT_EQ(Lines(lines.end() - 2, lines.end()), (Lines{"2|function QZCICalcNumSin return with status 0",
                                                          "2|function QZCICalcNumCos return with status 0"}));
}

TEST(Tangent, HandsTheCallersRecordToTheDivision) {
    const Lines lines = lines_of("QZCICalcNumTan D:1");
    EXPECT_EQ(lines[0], "2|call function QZCICalcNumTan with number:A, result:R");
    EXPECT_EQ(lines[1], "2|call function QZCICalcNumSin with number:A, result:S");
    EXPECT_THAT(lines, Contains("2|call function QZCICalcNumCos with number:A, result:S"));
    EXPECT_EQ(count_of(lines, "2|call function QZCICalcNumDiv with dividend:S, divisor:S, result:R"), 1U);
    EXPECT_EQ(lines.back(), "2|function QZCICalcNumTan return with status 0");
}

/* ---- Rounded variants ---- */

TEST(RoundedSine, KeepsThirtyEightFractionDigits) {
    const mpz_class unrounded = units_of(record_of("QZCICalcNumSin D:1"));
    const mpz_class step = power_of_ten(122);
    const mpz_class rounded = (unrounded + step / 2) / step * step;
    EXPECT_EQ(result_of("QZCICalcNumSinWithRound D:1"), fields_of_units(rounded));
    EXPECT_EQ(result_of("QZCICalcNumSinWithRound D:-1"), fields_of_units(rounded, -1));
}

/* sin x is x - x^3/6, here just below x: 0.0...0049(99...) against 0.0...0050(99...). */
TEST(RoundedSine, BelowHalfAUnitOfThe38thDigitIsZero) {
    EXPECT_EQ(result_of("QZCICalcNumSinWithRound D:4.9e-39"), positive_zero);
    EXPECT_EQ(result_of("QZCICalcNumSinWithRound D:5e-39"), positive_zero);
    EXPECT_EQ(result_of("QZCICalcNumSinWithRound D:5.1e-39"), value("1e-38"));
    EXPECT_EQ(result_of("QZCICalcNumSinWithRound D:-4.9e-39"), negative_zero);
}

TEST(RoundedCosine, OfHalfPiIsZero) {
    EXPECT_EQ(units_of(record_of("QZCICalcNumCosWithRound " + operand_of(pi_units() / 2))), 0);
    EXPECT_NE(units_of(record_of("QZCICalcNumCos " + operand_of(pi_units() / 2))), 0);
}

TEST(RoundedSine, TracesTheRoundingUnderItsTwoNames) {
    const Lines lines = lines_of("QZCICalcNumSinWithRound D:1");
    EXPECT_EQ(lines[0], "2|call QZCICalcNumSinWithRound with params number:A, result:R");
    EXPECT_EQ(lines[1], "2|call function QZCICalcNumSin with number:A, result:R");
    EXPECT_EQ(Lines(lines.end() - 4, lines.end()),
              (Lines{"2|function QZCICalcNumSin return with status 0",
                     "2|call function QZCICalcNumToRoundToOCINumber with num:R",
                     "2|function QZCICalcNumToRoundToFiveAfterDot return with status 0",
                     "2|function QZCICalcNumSinWithRound return with status 0"}));
}

TEST(RoundedCosine, TracesTheRoundingUnderItsTwoNames) {
    const Lines lines = lines_of("QZCICalcNumCosWithRound D:inf");
    EXPECT_EQ(lines, (Lines{"2|call QZCICalcNumCosWithRound with params number:A, result:R",
                            "2|call function QZCICalcNumCos with number:A, result:R",
                            "2|function QZCICalcNumCos return with status 0",
                            "2|call function QZCICalcNumToRoundToOCINumber with num:R",
                            "2|function QZCICalcNumToRoundToFiveAfterDot return with status 0",
                            "2|function QZCICalcNumCosWithRound return with status 0"}));
}

/* The quotient of two numbers of 38 fraction digits has the full 160, half-up. */
TEST(RoundedTangent, IsTheUnroundedQuotientOfRoundedSineAndCosine) {
    for (const char* const number : {"0.5", "1", "1.5"}) {
        const std::string operand = std::string(" D:") + number;
        const mpz_class sine = units_of(record_of("QZCICalcNumSinWithRound" + operand));
        const mpz_class cosine = units_of(record_of("QZCICalcNumCosWithRound" + operand));
        const mpz_class quotient = (2 * sine * power_of_ten(160) + cosine) / (2 * cosine);
        EXPECT_EQ(result_of("QZCICalcNumTanWithRound" + operand), fields_of_units(quotient)) << number;
        EXPECT_NE(quotient % power_of_ten(122), 0);
    }
}

/* ---- Zero cosines ---- */

/* -pi/2 + pi/2, and 3 pi/2 + pi/2 modulo 2 pi. The poison in the result record's limbs does not survive the
 * normaliser. */
TEST(Tangent, WhereTheCosineIsZeroIsACleanInfinityWithTheSinesSign) {
    for (const std::string& operand : {operand_of(pi_units() / 2, -1), operand_of(3 * (pi_units() / 2))}) {
        EXPECT_EQ(result_of("QZCICalcNumCos " + operand).substr(2), positive_zero.substr(2)) << operand;
        EXPECT_EQ(result_of("QZCICalcNumTan " + operand), negative_infinity) << operand;
        EXPECT_EQ(result_of("alias:QZCICalcNumTan " + operand), negative_infinity) << operand;
        const Lines lines = lines_of("QZCICalcNumTan " + operand);
        EXPECT_EQ(Lines(lines.end() - 2, lines.end()),
                  (Lines{"2|QZCICalcNumTan get cos(number) is zero, set infinity",
                         "2|function QZCICalcNumTan return with status 0"}));
    }
}

TEST(RoundedTangent, WhereTheRoundedCosineIsZeroIsAnInfinityWithTheSinesSign) {
    for (const sb1 sign : {sb1{1}, sb1{-1}}) {
        const std::string operand = operand_of(pi_units() / 2, sign);
        EXPECT_EQ(result_of("QZCICalcNumTanWithRound " + operand),
                  sign == 1 ? positive_infinity : negative_infinity);
        const Lines lines = lines_of("QZCICalcNumTanWithRound " + operand);
        EXPECT_EQ(Lines(lines.end() - 4, lines.end()),
                  (Lines{"2|QZCICalcNumTanWithRound get cos(number) is zero, set infinity",
                         "2|call function QZCICalcNumToInfinity with num:R",
                         "2|function QZCICalcNumToInfinity return with status 0",
                         "2|function QZCICalcNumTanWithRound return with status 0"}));
    }
}

/* pi/2 itself has a cosine of about 10^-160, which is not zero. */
TEST(Tangent, OfHalfPiIsNotTheInfinityOfAZeroCosine) {
    EXPECT_THAT(lines_of("QZCICalcNumTan " + operand_of(pi_units() / 2)),
                Not(Contains("2|QZCICalcNumTan get cos(number) is zero, set infinity")));
}

/* ---- Failing steps ---- */

/* Sign bytes that no operation makes, with values that the reduction hands on as they are. */
constexpr const char* one_with_sign_5 = "R:5,0,19,19,0,z19.1.z20";
constexpr const char* one_without_sign = "R:0,0,19,19,0,z19.1.z20";
/* The reduction gives the seven a sign, the cosine's addition does not. */
constexpr const char* seven_with_sign_2 = "R:2,0,19,19,0,z19.7.z20";
/* Positions in the wrong order: the comparisons can walk between them, the product cannot. */
constexpr const char* crossed_positions = "R:1,0,30,10,0,z40";

TEST(Sine, FailsInTheSubtractionOfAForeignSign) {
    expect_failure(std::string("QZCICalcNumSin ") + one_with_sign_5, OCI_ERROR,
                   {"5|QZCICalcNumSub get a error format", "5|QZCICalcNumSin error in Sub"});
}

TEST(Sine, FailsInTheAdditionToARecordWithoutSign) {
    expect_failure(std::string("QZCICalcNumSin ") + one_without_sign, OCI_ERROR,
                   {"5|QZCICalcNumAdd get a error format", "5|QZCICalcNumSin error in Add"});
}

TEST(Sine, FailsInTheProductOfCrossedPositions) {
    expect_failure(std::string("QZCICalcNumSin ") + crossed_positions, OCI_ERROR,
                   {"5|QZCICalcNumMul get a malformed record", "5|QZCICalcNumSin error in Mul"});
}

TEST(Cosine, FailsInTheAdditionOfAForeignSign) {
    expect_failure(std::string("QZCICalcNumCos ") + seven_with_sign_2, OCI_ERROR,
                   {"5|QZCICalcNumAdd get a error format", "5|QZCICalcNumCos call QZCICalcNumAdd error"});
}

TEST(Tangent, FailsWithTheSine) {
    expect_failure(std::string("QZCICalcNumTan ") + one_with_sign_5, OCI_ERROR,
                   {"5|QZCICalcNumSub get a error format", "5|QZCICalcNumSin error in Sub",
                    "5|QZCICalcNumTan call QZCICalcNumSin error"});
}

TEST(Tangent, FailsWithTheCosine) {
    expect_failure(std::string("QZCICalcNumTan ") + seven_with_sign_2, OCI_ERROR,
                   {"5|QZCICalcNumAdd get a error format", "5|QZCICalcNumCos call QZCICalcNumAdd error",
                    "5|QZCICalcNumTan call QZCICalcNumCos error"});
}

TEST(RoundedSine, FailsWithTheSine) {
    expect_failure(std::string("QZCICalcNumSinWithRound ") + one_with_sign_5, OCI_ERROR,
                   {"5|QZCICalcNumSub get a error format", "5|QZCICalcNumSin error in Sub",
                    "5|QZCICalcNumSinWithRound error in QZCICalcNumSin"});
}

TEST(RoundedCosine, FailsWithTheCosine) {
    expect_failure(std::string("QZCICalcNumCosWithRound ") + seven_with_sign_2, OCI_ERROR,
                   {"5|QZCICalcNumAdd get a error format", "5|QZCICalcNumCos call QZCICalcNumAdd error",
                    "5|QZCICalcNumCosWithRound error in QZCICalcNumCos"});
}

TEST(RoundedTangent, FailsWithTheSine) {
    expect_failure(std::string("QZCICalcNumTanWithRound ") + one_with_sign_5, OCI_ERROR,
                   {"5|QZCICalcNumSub get a error format", "5|QZCICalcNumSin error in Sub",
                    "5|QZCICalcNumSinWithRound error in QZCICalcNumSin",
                    "5|QZCICalcNumTanWithRound call QZCICalcNumSin error"});
}

TEST(RoundedTangent, FailsWithTheCosine) {
    expect_failure(std::string("QZCICalcNumTanWithRound ") + seven_with_sign_2, OCI_ERROR,
                   {"5|QZCICalcNumAdd get a error format", "5|QZCICalcNumCos call QZCICalcNumAdd error",
                    "5|QZCICalcNumCosWithRound error in QZCICalcNumCos",
                    "5|QZCICalcNumTanWithRound call QZCICalcNumCos error"});
}

} // namespace
} // namespace qzoci::test
