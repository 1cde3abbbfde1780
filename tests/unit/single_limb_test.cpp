#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;

std::string divide(const std::string& operands) {
    return "QZCICaclNumDivOneDivisor " + operands;
}

std::string quotient(const std::string& operands) {
    return result_of(divide(operands));
}

std::string remainder(const std::string& operands) {
    return result_of("QZCICaclNumModOneDivsor " + operands);
}

/* ---- Quotients ---- */

TEST(SingleLimbQuotient, OneThirdIsNotRounded) {
    EXPECT_EQ(quotient("D:1 D:3"), "1,0,20,39,0,z20." + repeated("33333333", 20));
}

TEST(SingleLimbQuotient, TwoThirdsRoundUpInTheLastLimb) {
    EXPECT_EQ(quotient("D:2 D:3"), "1,0,20,39,0,z20." + repeated("66666666", 19) + ".66666667");
}

TEST(SingleLimbQuotient, OneHalfEndsAfterTwoLimbs) {
    EXPECT_EQ(quotient("D:1 D:2"), "1,0,20,20,0,z20.50000000.z19");
    EXPECT_EQ(lines_of(divide("D:1 D:2")),
              (Lines{"2|call function QZCICaclNumDivOneDivisor with dividend:A, divisor:B, result:R",
                     "2|QZCICaclNumDivOneDivisor A / B, value[0]: 0..100000000",
                     "2|QZCICaclNumDivOneDivisor A / B, value[1]: 50000000..0",
                     "2|QZCICaclNumDivOneDivisor dividend:A, divisor:B, exp_pow:0, len:2 - 1",
                     "2|function QZCICaclNumDivOneDivisor return with status 0"}));
}

TEST(SingleLimbQuotient, AnEndlessOneTakesFortyLimbs) {
    const Lines lines = lines_of(divide("D:7 D:3"));
    ASSERT_EQ(lines.size(), 43U);
    EXPECT_EQ(lines[1], "2|QZCICaclNumDivOneDivisor A / B, value[0]: 2..100000000");
    EXPECT_EQ(lines[40], "2|QZCICaclNumDivOneDivisor A / B, value[39]: 33333333..100000000");
    EXPECT_EQ(lines[41], "2|QZCICaclNumDivOneDivisor dividend:A, divisor:B, exp_pow:1, len:40 - 0");
}

/* By 10^16 the limbs move down by two: limb 38 of the dividend is the first one dropped. */
TEST(SingleLimbQuotient, DroppedLimbOf50000000IsNotRoundedUpWhateverFollows) {
    EXPECT_EQ(quotient(limbs({{37, 7}, {38, 50000000}}) + " D:1e16"), "1,0,39,39,0,z39.7");
    EXPECT_EQ(quotient(limbs({{37, 7}, {38, 50000000}, {39, 99999999}}) + " D:1e16"), "1,0,39,39,0,z39.7");
}

/* By 10^8 forty limbs of 99999999 move down by one, from limb 1 on. */
TEST(SingleLimbQuotient, RoundingCarryReachesLimb0) {
    EXPECT_EQ(quotient("R:1,0,0,39,0," + repeated("99999999", 40) + " D:1e8"), "1,0,0,0,0,1.z39");
}

TEST(SingleLimbQuotient, DroppedLimbAbove50000000IsRoundedUp) {
    EXPECT_EQ(quotient(limbs({{37, 7}, {38, 50000001}}) + " D:1e16"), "1,0,39,39,0,z39.8");
}

TEST(SingleLimbQuotient, RoundingCarriesThroughFullLimbs) {
    EXPECT_EQ(quotient(limbs({{35, 7}, {36, 99999999}, {37, 99999999}, {38, 50000001}}) + " D:1e16"),
              "1,0,37,37,0,z37.8.z2");
}

/* Limb 0 is never filled: the limit is one limb early. */
TEST(SingleLimbQuotient, LeadingLimbInLimb0IsInfinite) {
    EXPECT_EQ(quotient("D:1e152 D:1"), positive_infinity);
    EXPECT_EQ(quotient("D:-1e152 D:1"), negative_infinity);
    EXPECT_EQ(quotient("D:3e152 D:3"), positive_infinity);
    EXPECT_EQ(quotient("D:1e144 D:1e-8"), positive_infinity);
    EXPECT_EQ(quotient("D:9e159 D:1e-160"), positive_infinity);
    const Lines lines = lines_of(divide("D:1e152 D:1"));
    EXPECT_EQ(lines[2], "2|QZCICaclNumDivOneDivisor dividend:A, divisor:B, exp_pow:20, len:1 - 0");
    EXPECT_EQ(lines[3], "2|QZCICaclNumDivOneDivisor exceed max precesion");
}

TEST(SingleLimbQuotient, LeadingLimbInLimb1IsKept) {
    EXPECT_EQ(quotient("D:1e151 D:1"), "1,0,1,1,0,z1.10000000.z38");
}

/* 10^152 / 3: the first quotient limb is 0, the other 39 fill limbs 1 to 39, and none is left to round by. */
TEST(SingleLimbQuotient, ThatPlacesAllItsLimbsIsNotRounded) {
    EXPECT_EQ(quotient("D:1e152 D:3"), "1,0,1,39,0,z1." + repeated("33333333", 39));
    EXPECT_EQ(quotient("D:2e152 D:3"), "1,0,1,39,0,z1." + repeated("66666666", 39));
    /* One limb lower there is one to round by. */
    EXPECT_EQ(quotient("D:2e144 D:3"), "1,0,2,39,0,z2." + repeated("66666666", 37) + ".66666667");
}

/* The true quotient is 6 * 10^-169. */
TEST(SingleLimbQuotient, FarBelowTheLastLimbBecomesItsUnitWhenItsLeadingLimbIsAboveHalf) {
    EXPECT_EQ(quotient(limbs({{39, 60000000}}) + " D:1e16"), "1,0,39,39,0,z39.1");
    EXPECT_EQ(quotient("D:6e-153 D:1e16"), "1,0,39,39,0,z39.1");
    EXPECT_EQ(quotient("D:6e-153 D:-1e152"), "-1,0,39,39,0,z39.1");
    /* 2 / 3: the leading limb 66666666 comes after a zero one. */
    EXPECT_EQ(quotient("D:2e-160 D:3e152"), "1,0,39,39,0,z39.1");
}

TEST(SingleLimbQuotient, FarBelowTheLastLimbIsZeroOtherwise) {
    EXPECT_EQ(quotient("D:5e-153 D:1e16"), positive_zero);
    EXPECT_EQ(quotient("D:-5e-153 D:1e16"), negative_zero);
}

TEST(SingleLimbQuotient, HasTheProductOfTheSigns) {
    EXPECT_EQ(quotient("D:-6 D:3"), "-1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(quotient("D:6 D:-3"), "-1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(quotient("D:-6 D:-3"), "1,0,19,19,0,z19.2.z20");
}

TEST(SingleLimbQuotient, DivisorsLimbMayStandAnywhere) {
    EXPECT_EQ(quotient("D:1 D:0.5"), "1,0,19,19,0,z19.2.z20");
    /* 10^-16 / (4 * 10^-160) = 25 * 10^142 */
    EXPECT_EQ(quotient("D:1e-16 D:4e-160"), "1,0,2,2,0,z2.25000000.z37");
    EXPECT_EQ(quotient("D:1e8 D:4e152"), "1,0,38,38,0,z38.25000000.z1");
}

TEST(SingleLimbQuotient, ResultMayBeAnOperand) {
    for (const char* const alias : {"alias:", "alias2:"}) {
        EXPECT_EQ(result_of(alias + divide("D:7.5 D:3")), "1,0,19,20,0,z19.2.50000000.z19") << alias;
    }
    EXPECT_EQ(result_of("alias12:QZCICaclNumDivOneDivisor D:7 D:7"), "1,0,19,19,0,z19.1.z20");
}

/* ---- Remainders ---- */

TEST(SingleLimbRemainder, HasTheDividendsSign) {
    EXPECT_EQ(remainder("D:-7 D:3"), "-1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(remainder("D:7 D:-3"), "1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(remainder("D:-7 D:-3"), "-1,0,19,19,0,z19.1.z20");
}

TEST(SingleLimbRemainder, LimbsBelowTheDivisorsPassThrough) {
    EXPECT_EQ(remainder("D:7.25 D:3"), "1,0,19,20,0,z19.1.25000000.z19");
    EXPECT_EQ(remainder("D:6.0000000000000001 D:3"), "1,0,21,21,0,z21.1.z18");
    EXPECT_EQ(remainder("D:0.25 D:3"), "1,0,20,20,0,z20.25000000.z19");
}

/* 100000007 = 33333335 * 3 + 2, limb by limb: 1 mod 3 is 1, 1 | 00000007 mod 3 is 2. There is no entry trace.
 */
TEST(SingleLimbRemainder, WritesALinePerLimb) {
    EXPECT_EQ(remainder("D:100000007 D:3"), "1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(lines_of("QZCICaclNumModOneDivsor D:100000007 D:3"),
              (Lines{"2|QZCICaclNumModOneDivsor A / B, value[18]: 1 mod 3 ..1",
                     "2|QZCICaclNumModOneDivsor A / B, value[19]: 100000007 mod 3 ..2",
                     "2|function QZCICaclNumModOneDivsor return with status 0"}));
}

/* 7.3 = 29 * 0.25 + 0.05 */
TEST(SingleLimbRemainder, DivisorMayBeAFraction) {
    EXPECT_EQ(remainder("D:7.3 D:0.25"), "1,0,20,20,0,z20.5000000.z19");
}

TEST(SingleLimbRemainder, ZeroKeepsTheDividendsSign) {
    EXPECT_EQ(remainder("D:-6 D:3"), negative_zero);
    EXPECT_EQ(remainder("D:6 D:-3"), positive_zero);
}

TEST(SingleLimbRemainder, ResultMayBeAnOperand) {
    for (const char* const alias : {"alias:", "alias2:"}) {
        EXPECT_EQ(result_of(alias + std::string("QZCICaclNumModOneDivsor D:7.25 D:3")),
                  "1,0,19,20,0,z19.1.25000000.z19")
            << alias;
    }
    EXPECT_EQ(result_of("alias12:QZCICaclNumModOneDivsor D:7 D:7"), positive_zero);
}

} // namespace
} // namespace qzoci::test
