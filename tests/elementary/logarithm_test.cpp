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

using Lines = std::vector<std::string>;

std::string logarithm_of(const std::string& operand) {
    return result_of("QZCICalcNumLn " + operand);
}

size_t roots_of(const std::string& operand) {
    return count_of(lines_of("QZCICalcNumLn " + operand), "2|call function QZCICalcNumSqrt ");
}

/* The multiplier of the last step, 2 to the number of roots plus one. */
void expect_scaling_by(const std::string& operand, const std::string& factor) {
    EXPECT_THAT(lines_of("QZCICalcNumLn " + operand),
                Contains("2|call function QZCICalcNumMulWhitInterge with multiplicand:S, multiplier:" +
                         factor + ", product:S"))
        << operand;
}

/* ---- Special values ---- */

/* z = 1 - 1 is a zero of sign -1, and z / 2 one without sign, which is copied from record to record. */
TEST(Logarithm, OfOneIsAZeroWithoutSignAndTakesNoRoot) {
    EXPECT_EQ(logarithm_of("D:1"), unsigned_zero);
    EXPECT_EQ(roots_of("D:1"), 0U);
}

TEST(Logarithm, OfOneTracesItsStepsInOrder) {
    const Lines zero = {"2|call function QZCICalcNumToZero with num:S",
                        "2|function QZCICalcNumToZero return with status 0"};
    const Lines copy = {"2|call function QZCICalcNumAssign with num:S, opt:S",
                        "2|function QZCICalcNumAssign return with status 0"};
    const Lines zero_product = {"2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
                                zero[0], zero[1], "2|function QZCICalcNumMul return with status 0"};
    const Lines zero_quotient = {"2|call function QZCICalcNumDiv with dividend:S, divisor:S, result:S",
                                 "2|QZCICalcNumDiv dividend is zero", zero[0], zero[1]};
    Lines expected = {"2|call function QZCICalcNumLn with number:A, result:R",
                      "2|call function QZCICalcNumAssign with num:A, opt:S",
                      "2|function QZCICalcNumAssign return with status 0",
                      "2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S",
                      "2|function QZCICalcNumAdd return with status 0",
                      "2|call function QZCICalcNumSub with minuend:S, subtrahend:S, remainder:S",
                      zero[0],
                      zero[1],
                      "2|function QZCICalcNumSub return with status 0"};
    for (const Lines& part :
         {zero_quotient, zero_product, copy, copy, zero_product, zero_quotient,
          Lines{"2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S", copy[0], copy[1],
                "2|function QZCICalcNumAdd return with status 0",
                "2|call function QZCICalcNumMulWhitInterge with multiplicand:S, multiplier:2, product:S",
                zero[0], zero[1], "2|function QZCICalcNumMulWhitInterge return with status 0",
                "2|function QZCICalcNumLn return with status 0"}}) {
        expected.insert(expected.end(), part.begin(), part.end());
    }
    EXPECT_EQ(lines_of("QZCICalcNumLn D:1"), expected);
}

constexpr const char* logarithm_of_zero = "-1,1,-1,-1,1,z40";

TEST(Logarithm, OfZeroIsNegativeInfinityWithTheZeroFlag) {
    for (const std::string operand : {"D:0", "O:0180"}) {
        EXPECT_EQ(logarithm_of(operand), logarithm_of_zero) << operand;
        EXPECT_EQ(lines_of("QZCICalcNumLn " + operand),
                  (Lines{"2|call function QZCICalcNumLn with number:A, result:R",
                         "2|function QZCICalcNumLn return with status 0"}));
    }
}

TEST(Logarithm, OfZeroIsAZeroToWhatTestsZeroFirstAndElseAnInfinity) {
    const std::string operand = std::string("R:") + logarithm_of_zero;
    EXPECT_EQ(result_of("QZCICalcNumAdd " + operand + " D:3"), fields_text(record_from_decimal("3")));
    EXPECT_EQ(result_of("QZCICalcNumMul " + operand + " D:3"), unsigned_zero);
    EXPECT_EQ(out_of("QZCICalcNumToNumber " + operand).substr(0, 4), "0100");
    EXPECT_EQ(result_of("QZCICalcNumTanh " + operand), fields_text(record_from_decimal("-1")));
}

TEST(Logarithm, OfANegativeSignFailsForZeroAndInfinityToo) {
    for (const std::string operand : {"D:-1", "D:-0", "D:-inf", "D:-1e-160"}) {
        expect_failure("QZCICalcNumLn " + operand, OCI_ERROR,
                       {"5|QZCICalcNumLn with error number:A, negitive"});
        EXPECT_EQ(lines_of("QZCICalcNumLn " + operand),
                  (Lines{"2|call function QZCICalcNumLn with number:A, result:R",
                         "5|QZCICalcNumLn with error number:A, negitive",
                         "2|function QZCICalcNumLn return with status -1"}));
    }
}

TEST(Logarithm, OfPositiveInfinityIsPositiveInfinity) {
    EXPECT_EQ(logarithm_of("D:inf"), positive_infinity);
    EXPECT_EQ(lines_of("QZCICalcNumLn D:inf"), (Lines{"2|call function QZCICalcNumLn with number:A, result:R",
                                                      "2|call function QZCICalcNumToInfinity with num:S",
                                                      "2|function QZCICalcNumToInfinity return with status 0",
                                                      "2|function QZCICalcNumLn return with status 0"}));
}

/* ---- Reduction ---- */

TEST(Logarithm, InsideTheIntervalIsSummedDirectly) {
    for (const std::string operand : {"D:0.95", "D:1.05", "D:0.90000001", "D:1.09999999"}) {
        EXPECT_EQ(roots_of(operand), 0U) << operand;
        expect_scaling_by(operand, "2");
    }
}

TEST(Logarithm, AtTheEndsOfTheIntervalIsReduced) {
    for (const std::string operand : {"D:0.9", "D:1.1"}) {
        EXPECT_EQ(roots_of(operand), 1U) << operand;
        expect_scaling_by(operand, "4");
    }
}

/* ln 10^159 / 2^12 is 0.0894, below ln 1.1 = 0.0953, and ln 10^-160 / 2^12 is -0.0899, above ln 0.9 =
 * -0.1054; half as many would not do. */
TEST(Logarithm, OfTheLargestAndSmallestPowersOfTenTakesTwelveRoots) {
    for (const std::string operand : {"D:1e159", "D:1e-160"}) {
        EXPECT_EQ(roots_of(operand), 12U) << operand;
        expect_scaling_by(operand, "8192");
    }
}

/* The error of the sum, a few units, and of the roots is multiplied with it. */
TEST(Logarithm, IsThatOfTheRealNumber) {
    for (const char* const number : {"0.9", "0.95", "1.05", "1.1", "2", "10", "0.001", "1e159", "1e-160"}) {
        expect_near(std::string("QZCICalcNumLn D:") + number, accuracy::of<mpfr_log>(real_of(number)), 1e6);
    }
}

TEST(Logarithm, ThroughASquareRootWhoseGuessesRepeatEnds) {
    for (const char* const number :
         {"16571451719703040000000000000001", "1.00000004000000060000000400000001"}) {
        expect_near(std::string("QZCICalcNumLn D:") + number, accuracy::of<mpfr_log>(real_of(number)), 1e6);
    }
}

/* ---- Failing steps ---- */

/* A sign byte that is neither 1 nor -1 passes the test of the sign, and its square root is zero, from which
 * no further root leads into the interval. */
TEST(Logarithm, OfAForeignSignFailsInTheSquareRoot) {
    for (const std::string sign : {"0", "2", "5", "127", "-2", "-128"}) {
        for (const std::string& fields :
             {sign + ",0,19,19,0,z19.2.z20", sign + ",0,20,20,0,z20.50000000.z19"}) {
            expect_failure(
                "QZCICalcNumLn R:" + fields, OCI_ERROR,
                {"5|QZCICalcNumSqrt: the number is negitive", "5|QZCICalcNumLn call QZCICalcNumSqrt error"});
        }
    }
}

TEST(Logarithm, WithoutALeadingLimbFailsInTheSquareRoot) {
    expect_failure(
        "QZCICalcNumLn R:1,0,-1,-1,0,z40", OCI_ERROR,
        {"5|QZCICalcNumSqrtFirst get a malformed record", "5|QZCICalcNumLn call QZCICalcNumSqrt error"});
}

TEST(Logarithm, OfLimbsThatNoDivisionTakesFailsInTheDivision) {
    expect_failure("QZCICalcNumLn R:1,0,20,21,0,z20.3512695500.500000000.z18", OCI_ERROR,
                   {"5|QZCICalcNumDiv get a malformed record", "5|QZCICalcNumLn call QZCICalcNumDiv error"});
}

/* A limb of 200000000 after the point makes 2, which compares as below 1.1: r - 1 wraps, z is -14, and the
 * series grows without end. */
TEST(Logarithm, OfASeriesThatGrowsEndsWithAnError) {
    const Outcome outcome = on_all_sides("QZCICalcNumLn R:1,0,20,20,0,z20.200000000.z19");
    EXPECT_EQ(outcome.effect.status, OCI_ERROR);
    EXPECT_EQ(outcome.effect.result, poison_record());
    EXPECT_EQ(without_debug(outcome.lines).back().rendered(), "5|QZCICalcNumLn call QZCICalcNumMul error");
}

} // namespace
} // namespace qzoci::test
