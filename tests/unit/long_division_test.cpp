#include "qzoci/oci_calc_number_internal.h"
#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;
using Array = std::vector<ub4>;

std::string div(const std::string& operands) {
    return "QZCICalcNumDiv " + operands;
}

std::string quotient(const std::string& operands) {
    return result_of(div(operands));
}

bool goes_through_long_division(const std::string& operands) {
    const Lines lines = lines_of(div(operands));
    return std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        return line.rfind("2|Donald Knuth Algo D. start:", 0) == 0;
    });
}

/* ---- Zero and infinity ---- */

TEST(Division, ByZeroIsAnErrorForEveryDividend) {
    for (const char* const operands : {"D:0 D:0", "D:inf D:0", "D:-inf D:-0", "D:5 D:0"}) {
        expect_failure(div(operands), OCI_ERROR, {"5|QZCICalcNumDiv: the divisor is zeor"});
    }
}

TEST(Division, OfZeroIsZeroOfSignZero) {
    EXPECT_EQ(quotient("D:0 D:inf"), unsigned_zero);
    EXPECT_EQ(quotient("D:-0 D:-3"), unsigned_zero);
    EXPECT_EQ(quotient("D:0 D:1.5"), unsigned_zero);
    EXPECT_EQ(lines_of(div("D:0 D:inf")),
              (Lines{"2|call function QZCICalcNumDiv with dividend:A, divisor:B, result:R",
                     "2|QZCICalcNumDiv dividend is zero", "2|call function QZCICalcNumToZero with num:S",
                     "2|function QZCICalcNumToZero return with status 0"}));
}

TEST(Division, OfInfinityIsInfiniteWithTheProductOfTheSigns) {
    EXPECT_EQ(quotient("D:inf D:2"), positive_infinity);
    EXPECT_EQ(quotient("D:inf D:-2"), negative_infinity);
    EXPECT_EQ(quotient("D:inf D:inf"), positive_infinity);
    EXPECT_EQ(quotient("D:inf D:-inf"), negative_infinity);
    EXPECT_EQ(quotient("D:-inf D:-inf"), positive_infinity);
    EXPECT_EQ(lines_of(div("D:inf D:2")),
              (Lines{"2|call function QZCICalcNumDiv with dividend:A, divisor:B, result:R",
                     "2|dividend:A / divisor:B meet infinity",
                     "5|dividend:A / divisor:B all are infinity numbers"}));
}

TEST(Division, OfANumberByInfinityIsZeroOfSignZero) {
    EXPECT_EQ(quotient("D:2 D:inf"), unsigned_zero);
    EXPECT_EQ(quotient("D:-2 D:inf"), unsigned_zero);
    EXPECT_EQ(lines_of(div("D:2 D:inf")),
              (Lines{"2|call function QZCICalcNumDiv with dividend:A, divisor:B, result:R",
                     "2|dividend:A / divisor:B meet infinity", "2|call function QZCICalcNumToZero with num:S",
                     "2|function QZCICalcNumToZero return with status 0"}));
}

/* ---- Which division ---- */

TEST(Division, BySingleLimbTakesTheSingleLimbSteps) {
    EXPECT_EQ(quotient("D:1 D:3"), "1,0,20,39,0,z20." + repeated("33333333", 20));
    const Lines lines = lines_of(div("D:1 D:2"));
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_EQ(lines[1], "2|QZCICalcNumDiv dividend' length is 1");
    EXPECT_EQ(lines[2], "2|call function QZCICaclNumDivOneDivisor with dividend:A, divisor:B, result:S");
    EXPECT_EQ(lines[6], "2|function QZCICaclNumDivOneDivisor return with status 0");
    /* The threshold of the single-limb steps: a dropped limb of exactly half is cut. */
    EXPECT_EQ(quotient(limbs({{39, 1}}) + " D:2"), positive_zero);
}

TEST(Division, ByTwoLimbsTakesTheLongSteps) {
    EXPECT_TRUE(goes_through_long_division("D:1 D:1.5"));
    EXPECT_FALSE(goes_through_long_division("D:1 D:3"));
    EXPECT_EQ(quotient("D:1 D:1.5"), "1,0,20,39,0,z20." + repeated("66666666", 19) + ".66666667");
}

/* Quotient limb 41 stands in limb 19, so limb 21 is left to round by. */
TEST(Division, LongStepsWriteTheirStartAndTheirRounding) {
    EXPECT_EQ(lines_of(div("D:1 D:1.5")),
              (Lines{"2|call function QZCICalcNumDiv with dividend:A, divisor:B, result:R",
                     "2|Donald Knuth Algo D. start: dividend:A divisor:B, m:41, n:2",
                     "2|QZCICalcNumDiv k:20, and quotient[k]:66666666, i:40"}));
    EXPECT_EQ(lines_of(div("D:1e144 D:1.5"))[2], "2|QZCICalcNumDiv k:2, and quotient[k]:66666666, i:40");
    /* Nothing is placed: the quotient would begin below limb 39. */
    EXPECT_EQ(lines_of(div("D:1e-160 D:1.5e16"))[2], "2|QZCICalcNumDiv k:41, and quotient[k]:0, i:41");
}

TEST(Division, HasTheProductOfTheSigns) {
    EXPECT_EQ(quotient("D:-3 D:1.5"), "-1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(quotient("D:3 D:-1.5"), "-1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(quotient("D:-3 D:-1.5"), "1,0,19,19,0,z19.2.z20");
}

/* ---- Range ---- */

TEST(Division, QuotientFromLimb1OnIsComputed) {
    EXPECT_EQ(quotient("D:1e144 D:1.5"), "1,0,2,39,0,z2." + repeated("66666666", 37) + ".66666667");
}

/* The quotient 6.67 * 10^151 would fit, but its leading limb, a zero, would land in limb 0. */
TEST(Division, QuotientFromLimb0OnIsInfinite) {
    EXPECT_EQ(quotient("D:1e152 D:1.5"), positive_infinity);
    EXPECT_EQ(quotient("D:-1e152 D:1.5"), negative_infinity);
    EXPECT_EQ(quotient("D:1e152 D:1.00000001"), positive_infinity);
    EXPECT_EQ(lines_of(div("D:1e152 D:1.5")),
              (Lines{"2|call function QZCICalcNumDiv with dividend:A, divisor:B, result:R",
                     "5|dividend:A / divisor:B QZCICalcNumDiv exceed set to num_infinity:0"}));
}

/* 75000000 / 1.5 is 50000000 in the limb below limb 39. */
TEST(Division, QuotientThatBeginsBelowLimb39RoundsUpFromHalf) {
    EXPECT_EQ(quotient(limbs({{39, 75000000}}) + " D:1.5e8"), "1,0,39,39,0,z39.1");
    EXPECT_EQ(quotient(limbs({{39, 75000000}}, -1) + " D:1.5e8"), "-1,0,39,39,0,z39.1");
    EXPECT_EQ(quotient(limbs({{39, 74999999}}) + " D:1.5e8"), positive_zero);
}

TEST(Division, QuotientThatBeginsFurtherBelowIsZero) {
    EXPECT_EQ(quotient(limbs({{39, 99999999}}) + " " + limbs({{17, 1}, {18, 1}})), positive_zero);
    EXPECT_EQ(quotient(limbs({{39, 99999999}}, -1) + " " + limbs({{17, 1}, {18, 1}})), negative_zero);
}

/* The dividend is three times the divisor and one unit of the last limb. */
TEST(Division, BothOperandsMayFillAllLimbs) {
    EXPECT_EQ(quotient("R:1,0,0,39,0," + repeated("3", 39) + ".4 R:1,0,0,39,0," + repeated("1", 40)),
              "1,0,19,19,0,z19.3.z20");
}

/* 5 * -1 is -5, which the normaliser turns into 1. */
TEST(Division, OfOddSignBytesIsPositiveUnlessTheirProductIsMinusOne) {
    EXPECT_EQ(quotient("R:5,0,19,19,0,z19.6.z20 D:-3"), "1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(quotient("R:5,0,19,19,0,z19.3.z20 D:-1.5"), "1,0,19,19,0,z19.2.z20");
}

/* ---- Rounding ---- */

/* (2.5 - 10^-160) / 2.5 = 1 - 0.4 * 10^-160: twenty limbs of 99999999 and then 60000000. */
TEST(Division, RoundingCarriesThroughFullLimbs) {
    EXPECT_EQ(quotient("R:1,0,19,39,0,z19.2.49999999." + repeated("99999999", 19) + " D:2.5"),
              "1,0,19,19,0,z19.1.z20");
}

/* In units of 10^-160 the quotient is 375000000 / 150000000 = 2.5: the single-limb steps would cut it. */
TEST(Division, DroppedLimbOfExactlyHalfRoundsUp) {
    EXPECT_EQ(quotient(limbs({{38, 3}, {39, 75000000}}) + " D:1.5e8"), "1,0,39,39,0,z39.3");
    EXPECT_EQ(quotient(limbs({{38, 3}, {39, 74999999}}) + " D:1.5e8"), "1,0,39,39,0,z39.2");
}

/* ---- Trial digits ---- */

/* 10^16 / 5000000099999999: the first estimate 10^8 / 50000000 = 2 is one too large. */
TEST(TrialDigit, IsRefinedFromThreeLimbsOn) {
    Array u = {0, 0, 1};
    Array v = {99999999, 50000000};
    EXPECT_EQ(knuth_calc_delta(0, 2, u.data(), v.data()), 2U);
    Array longer_u = {0, 0, 0, 1};
    Array longer_v = {0, 99999999, 50000000};
    EXPECT_EQ(knuth_calc_delta(0, 3, longer_u.data(), longer_v.data()), 1U);
}

TEST(TrialDigit, OfAnEqualTopLimbIs99999999) {
    Array u = {0, 0, 50000000};
    Array v = {1, 50000000};
    EXPECT_EQ(knuth_calc_delta(0, 2, u.data(), v.data()), 99999999U);
}

TEST(TrialDigit, IsNotBoundedByTheBase) {
    Array u = {0, 5, 2};
    Array v = {0, 1};
    EXPECT_EQ(knuth_calc_delta(0, 2, u.data(), v.data()), 200000005U);
}

/* Each refinement takes 1 off the estimate q and adds 1 to the rest: with a second divisor limb of 99999999 that
 * ends after q / 2 of them. */
TEST(TrialDigit, IsRefinedAThousandTimesAtMost) {
    Array v = {0, 99999999, 1};
    Array settles = {0, 0, 2000, 0};
    EXPECT_EQ(knuth_calc_delta(0, 3, settles.data(), v.data()), 1000U);
    Array does_not = {0, 0, 2002, 0};
    EXPECT_EQ(knuth_calc_delta(0, 3, does_not.data(), v.data()), 0U);
}

TEST(TrialDigit, LooksAtItsPosition) {
    Array u = {7, 0, 0, 1, 9};
    Array v = {99999999, 50000000};
    EXPECT_EQ(knuth_calc_delta(1, 2, u.data(), v.data()), 2U);
}

/* 10^16 - 1 * 5000000099999999 = 4999999900000001 */
TEST(TrialDigit, OneTooLargeIsAddedBack) {
    Array u = {0, 0, 1};
    Array v = {99999999, 50000000, 0};
    ub8 digit = 2;
    knuth_probe_quotient(0, 2, u.data(), v.data(), &digit);
    EXPECT_EQ(digit, 1U);
    EXPECT_EQ(u, (Array{1, 49999999, 0}));
    EXPECT_EQ(v, (Array{99999999, 50000000, 0}));
}

TEST(TrialDigit, ThatFitsIsSubtracted) {
    Array u = {7, 0, 0, 1, 9};
    Array v = {99999999, 50000000, 0};
    ub8 digit = 1;
    knuth_probe_quotient(1, 2, u.data(), v.data(), &digit);
    EXPECT_EQ(digit, 1U);
    EXPECT_EQ(u, (Array{7, 1, 49999999, 0, 9}));
}

/* The digit 99999999 is about twice too large for 10^16 / 199999999; it is lowered by one, and
 * u = 10^16 - 99999998 * 199999999 is left modulo 10^24. */
TEST(TrialDigit, FarTooLargeIsAddedBackOnceOnly) {
    Array u = {0, 0, 1};
    Array v = {99999999, 1, 0};
    ub8 digit = knuth_calc_delta(0, 2, u.data(), v.data());
    ASSERT_EQ(digit, 99999999U);
    knuth_probe_quotient(0, 2, u.data(), v.data(), &digit);
    EXPECT_EQ(digit, 99999998U);
    /* 10^24 + 10^16 - 19999999500000002 = 99999999 | 00000004 | 99999998 */
    EXPECT_EQ(u, (Array{99999998, 4, 99999999}));
}

/* ---- Strange quotients ---- */

/* The estimates are up to two too large and corrected by one: the limb 97044335 is one too large, and what is
 * then left over is more than the divisor, so that the limbs after it exceed 99999999. The true quotient is
 * 1.970443349753... Limb by limb from the steps, on big integers. */
TEST(Division, ByTwoLimbsCanBeWrong) {
    EXPECT_EQ(quotient("D:4 D:2.03"),
              "1,0,19,39,0,z19.1.97044335.145320199.100000003.143349759.60591138.91625622.115270944.82758629."
              "55665033.49753703.44827595.7389171.42857151.72413802.144827597.102955677.132512329.104926123."
              "15270950.73891640");
}

/* 4 / 2.0300000000000001 = 1.97044334 97536944 84214613 31262588 ... : the refined digits are the true ones.
 */
TEST(Division, ByThreeLimbsIsRefined) {
    EXPECT_EQ(quotient("D:4 D:2.0300000000000001"),
              "1,0,19,39,0,z19.1.97044334.97536944.84214613.31262588.74771126.44698232.14398459.87833383."
              "18030315.33087003.35945657.47247781.59632681.4804048.47471585.69062045.8634686.85191110."
              "79490302.4339354");
}

/* The first digit 2 is one too large, and the next trial digit goes below zero: 4294967294 is 2^32 - 2. */
TEST(Division, QuotientLimbCanWrap) {
    EXPECT_EQ(quotient("D:1 D:50000000.5"),
              "1,0,20,39,0,z20.2.4294967294." + repeated("10065409.89934590", 9));
}

/* The divisor's limbs are 50000000 | 25000000 | 12500000. The digit 4 times 25000000 is exactly 10^8, which
 * stays in its limb; taking it from 0 with a borrow leaves -1, and the digits after it are wrong. Limb by
 * limb from the steps, on big integers. */
TEST(Division, ByThreeLimbsIsWrongWhereALimbOf100000000Arises) {
    EXPECT_EQ(quotient("D:2.00000002 D:50000000.25000000125"),
              "1,0,20,39,0,z20.4.86.4094967210.5032704.50000021.23741813.25629088.6250002.65467726.65703636."
              "781250.33183465.83212954.50097656.29147933.22901619.31262207.3643491.65362702.41407776");
}

TEST(Division, ResultMayBeAnOperand) {
    EXPECT_EQ(result_of("alias12:QZCICalcNumDiv D:2.5 D:2.5"), "1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(result_of("alias12:QZCICalcNumDiv D:123456789.25 D:123456789.25"), "1,0,19,19,0,z19.1.z20");
    for (const char* const alias : {"alias:", "alias2:"}) {
        EXPECT_EQ(result_of(alias + div("D:3 D:1.5")), "1,0,19,19,0,z19.2.z20") << alias;
        EXPECT_EQ(result_of(alias + div("D:7.5 D:3")), "1,0,19,20,0,z19.2.50000000.z19") << alias;
        EXPECT_EQ(result_of(alias + div("D:1e152 D:1.5")), positive_infinity) << alias;
    }
}

/* ---- The division of limb arrays ---- */

/* 250000000 has the factor 10^8 / (2 + 1) = 33333333. 730000000 = 2 * 250000000 + 230000000. */
TEST(LimbDivision, LeavesTheScaledDivisorAndGivesTheTrueRemainder) {
    /* 33333333 * 250000000 = 83333332 | 50000000 */
    EXPECT_EQ(out_of("qzci_knuth_div 1 2 30000000.7.z1 50000000.2"), "2.0/30000000.2/50000000.83333332");
}

/* 10^24 + 7 = 99999999 * (10^16 + 2) + 9999999800000009. The factor is 10^8 / (1 + 1) = 50000000, and the
 * divisor's last limb 2 becomes 100000000, which stays in its limb. The arrays have one spare limb each. */
TEST(LimbDivision, TakesArraysOfExactlyTheLimbsItNeeds) {
    EXPECT_EQ(out_of("qzci_knuth_div 1 3 7.z2.1 2.z1.1"), "99999999.0/9.99999998.0/100000000.0.50000000");
}

/* ---- The limb routines ---- */

TEST(LimbSum, DropsTheLastCarry) {
    Array a = {99999999, 99999999};
    Array b = {1};
    Array sum = {7, 7, 7};
    calc_add(a.data(), 2, b.data(), 1, sum.data());
    EXPECT_EQ(sum, (Array{0, 0, 7}));
    calc_add(b.data(), 1, a.data(), 2, sum.data());
    EXPECT_EQ(sum, (Array{0, 0, 7}));
}

TEST(LimbSum, OfNoLimbsDoesNothing) {
    Array sum = {7};
    calc_add(nullptr, 0, nullptr, 0, sum.data());
    calc_add(nullptr, -1, nullptr, -5, sum.data());
    EXPECT_EQ(sum, (Array{7}));
}

/* 100000000 + 100000000 = 200000000, less 10^8 once. */
TEST(LimbSum, TakesTheBaseOffOnce) {
    Array a = {100000000};
    Array sum = {7};
    calc_add(a.data(), 1, a.data(), 1, sum.data());
    EXPECT_EQ(sum, (Array{100000000}));
}

TEST(LimbDifference, TellsWhetherItWentBelowZero) {
    Array a = {5, 1};
    Array b = {6};
    Array difference = {7, 7, 7};
    boolean negative = 7;
    calc_sub(a.data(), 2, b.data(), 1, &negative, difference.data());
    EXPECT_EQ(difference, (Array{99999999, 0, 7}));
    EXPECT_EQ(negative, 0);
    calc_sub(b.data(), 1, a.data(), 2, &negative, difference.data());
    EXPECT_EQ(difference, (Array{1, 99999999, 7}));
    EXPECT_EQ(negative, 1);
}

TEST(LimbDifference, OfNoLimbsIsNotNegative) {
    Array difference = {7};
    boolean negative = 7;
    calc_sub(nullptr, 0, nullptr, -3, &negative, difference.data());
    EXPECT_EQ(negative, 0);
    EXPECT_EQ(difference, (Array{7}));
}

/* 0 - 100000000 - 1 + 10^8 is -1. */
TEST(LimbDifference, OfALimbOf100000000CanLeaveMinusOne) {
    Array a = {0, 0};
    Array b = {1, 100000000};
    Array difference = {7, 7};
    boolean negative = 0;
    calc_sub(a.data(), 2, b.data(), 2, &negative, difference.data());
    EXPECT_EQ(difference, (Array{99999999, 4294967295}));
    EXPECT_EQ(negative, 1);
}

TEST(LimbProduct, KeepsALimbOfExactly100000000) {
    Array exact = {50000000, 1, 7};
    calc_mul(exact.data(), 2, 2);
    EXPECT_EQ(exact, (Array{100000000, 2, 7}));
    Array above = {50000001, 1, 7};
    calc_mul(above.data(), 2, 2);
    EXPECT_EQ(above, (Array{2, 3, 7}));
}

TEST(LimbProduct, StoresItsLastCarryAboveTheLimbs) {
    Array num = {1, 50000000, 7};
    calc_mul(num.data(), 2, 3);
    EXPECT_EQ(num, (Array{3, 50000000, 1}));
}

TEST(LimbProduct, WithoutALastCarryLeavesTheLimbAbove) {
    Array num = {3, 7};
    calc_mul(num.data(), 1, 2);
    EXPECT_EQ(num, (Array{6, 7}));
    calc_mul(num.data(), 0, 2);
    EXPECT_EQ(num, (Array{6, 7}));
}

TEST(LimbQuotient, DividesFromTheTopLimbDown) {
    /* 1 | 00000007 = 3 * 33333335 + 2 */
    Array num = {7, 1};
    ub8 reminder = 9;
    calc_div(num.data(), 2, 3, &reminder);
    EXPECT_EQ(num, (Array{33333335, 0}));
    EXPECT_EQ(reminder, 2U);
}

TEST(LimbQuotient, OfNoLimbsLeavesTheRemainderZero) {
    ub8 reminder = 9;
    calc_div(nullptr, 0, 3, &reminder);
    EXPECT_EQ(reminder, 0U);
    reminder = 9;
    calc_div(nullptr, -1, 3, &reminder);
    EXPECT_EQ(reminder, 0U);
}

} // namespace
} // namespace qzoci::test
