#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;

std::string mod(const std::string& operands) {
    return "QZCICalcNumMod " + operands;
}

std::string remainder(const std::string& operands) {
    return result_of(mod(operands));
}

/* What the operation writes between its entry and its exit trace. */
Lines steps(const std::string& operands) {
    const Lines lines = lines_of(mod(operands));
    EXPECT_EQ(lines.front(), "2|call function QZCICalcNumMod with modend:A, modor:B, result:R");
    EXPECT_EQ(lines.back(), "2|function QZCICalcNumMod return with status 0");
    return {lines.begin() + 1, lines.end() - 1};
}

/* ---- Zero and infinity ---- */

TEST(Modulo, OfZeroIsZero) {
    EXPECT_EQ(remainder("D:0 D:3"), unsigned_zero);
    EXPECT_EQ(remainder("D:-0 D:-2.5"), unsigned_zero);
    EXPECT_EQ(remainder("D:0 D:inf"), unsigned_zero);
    EXPECT_EQ(steps("D:0 D:inf"),
              (Lines{"2|QZCICalcNumMod dividend is zero", "2|call function QZCICalcNumToZero with num:S",
                     "2|function QZCICalcNumToZero return with status 0"}));
}

TEST(Modulo, ByZeroIsAnErrorForEveryDividend) {
    for (const char* const operands : {"D:5 D:0", "D:0 D:0", "D:inf D:-0", "D:-inf D:0"}) {
        expect_failure(mod(operands), OCI_ERROR, {"5|QZCICalcNumMod: the divisor is zeor"});
        EXPECT_EQ(lines_of(mod(operands)).back(), "2|function QZCICalcNumMod return with status -1");
    }
}

TEST(Modulo, OfAnInfinityIsPositiveZero) {
    for (const char* const operands :
         {"D:inf D:3", "D:-inf D:3", "D:inf D:inf", "D:-inf D:-inf", "D:-inf D:2.5"}) {
        EXPECT_EQ(remainder(operands), positive_zero) << operands;
        EXPECT_EQ(steps(operands), (Lines{"2|QZCICalcNumMod modend is infinity"})) << operands;
    }
}

TEST(Modulo, ByAnInfinityIsTheDividend) {
    EXPECT_EQ(remainder("D:-7.25 D:inf"), "-1,0,19,20,0,z19.7.25000000.z19");
    EXPECT_EQ(remainder("D:7.25 D:-inf"), "1,0,19,20,0,z19.7.25000000.z19");
    EXPECT_EQ(steps("D:7.25 D:-inf"), (Lines{"2|QZCICalcNumMod modor is infinity",
                                             "2|call function QZCICalcNumAssign with num:A, opt:S",
                                             "2|function QZCICalcNumAssign return with status 0"}));
}

/* A flag of 2 is no infinity here, but one for the comparison of magnitudes. */
TEST(Modulo, InfinityFlagIsOneExactly) {
    EXPECT_EQ(steps("D:5 R:1,2,-1,-1,0,z40").front(), "2|QZCICalcNumMod modor big than modend");
    EXPECT_EQ(steps("R:1,2,-1,-1,0,z40 R:1,2,-1,-1,0,z40").front(),
              "2|QZCICalcNumMod modor is equal to modend");
}

/* ---- Comparison of the operands ---- */

TEST(Modulo, OfEqualMagnitudesIsPositiveZero) {
    for (const char* const operands : {"D:5 D:5", "D:-5 D:5", "D:5 D:-5", "D:-5 D:-5", "D:-7.5 D:7.5"}) {
        EXPECT_EQ(remainder(operands), positive_zero) << operands;
        EXPECT_EQ(steps(operands), (Lines{"2|QZCICalcNumMod modor is equal to modend"})) << operands;
    }
}

TEST(Modulo, OfASmallerMagnitudeIsTheDividend) {
    EXPECT_EQ(remainder("D:-2 D:3"), "-1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(remainder("D:2 D:-3"), "1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(steps("D:2 D:-3"), (Lines{"2|QZCICalcNumMod modor big than modend",
                                        "2|call function QZCICalcNumAssign with num:A, opt:S",
                                        "2|function QZCICalcNumAssign return with status 0"}));
}

/* ---- Divisors of one limb ---- */

TEST(Modulo, HasTheSignOfTheDividend) {
    EXPECT_EQ(remainder("D:7 D:3"), "1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(remainder("D:7 D:-3"), "1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(remainder("D:-7 D:3"), "-1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(remainder("D:-7 D:-3"), "-1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(remainder("D:7.5 D:2"), "1,0,19,20,0,z19.1.50000000.z19");
}

TEST(Modulo, ByAFractionOfOneLimbTakesTheSingleLimbSteps) {
    EXPECT_EQ(remainder("D:7.3 D:0.25"), "1,0,20,20,0,z20.5000000.z19");
    EXPECT_EQ(steps("D:7.3 D:0.25"),
              (Lines{"2|QZCICalcNumMod dividend' length is 1",
                     "2|QZCICaclNumModOneDivsor A / B, value[19]: 7 mod 25000000 ..7",
                     "2|QZCICaclNumModOneDivsor A / B, value[20]: 730000000 mod 25000000 ..5000000",
                     "2|function QZCICaclNumModOneDivsor return with status 0"}));
}

TEST(Modulo, ExactDivisionOfANegativeIsAZeroOfSignMinusOne) {
    EXPECT_EQ(remainder("D:-6 D:3"), negative_zero);
    EXPECT_EQ(remainder("D:-12.5 D:2.5"), negative_zero);
    EXPECT_EQ(remainder("D:12.5 D:-2.5"), positive_zero);
}

/* ---- Divisors of several limbs ---- */

TEST(Modulo, KeepsTheLimbsBelowTheDivisors) {
    EXPECT_EQ(remainder("D:7.3000000000000005 D:2.5"), "1,0,19,21,0,z19.2.30000000.5.z18");
    EXPECT_EQ(remainder("D:-7.3000000000000005 D:2.5"), "-1,0,19,21,0,z19.2.30000000.5.z18");
    EXPECT_EQ(remainder(limbs({{19, 7}, {20, 30000000}, {39, 99999999}}) + " D:2.5"),
              "1,0,19,39,0,z19.2.30000000.z18.99999999");
}

TEST(Modulo, LongDivisionWritesNoLine) {
    EXPECT_EQ(steps("D:7.3 D:2.5"), Lines{});
}

TEST(Modulo, OperandsThatStartAtOneLimbDivide) {
    EXPECT_EQ(remainder("D:13 D:5.5"), "1,0,19,19,0,z19.2.z20");
}

/* A first step is taken even then. For a leading limb below 10^8 its digit is 0; here it is 1, and taking it by
 * itself leaves another remainder than one step for the whole quotient, which would leave 2 in limb 20. */
TEST(Modulo, OperandsThatStartAtOneLimbTakeTwoSteps) {
    EXPECT_EQ(remainder("R:1,0,19,19,0,z19.150000000.z20 D:1.00000002"), "1,0,20,20,0,z20.6.z19");
}

/* 10^8 + 10^-8 = 40000000 * 2.5 + 10^-8 */
TEST(Modulo, DividendMayStartAboveTheDivisor) {
    EXPECT_EQ(remainder("D:100000000.00000001 D:2.5"), "1,0,20,20,0,z20.1.z19");
}

TEST(Modulo, DividendMayEndAboveTheDivisorsLastLimb) {
    /* 10^8 = 30769230 * 3.25 + 2.5 */
    EXPECT_EQ(remainder("D:100000000 D:3.25"), "1,0,19,20,0,z19.2.50000000.z19");
}

/* 10^312 + 1 in units of 10^-160, by 7 * 10^8 + 1: the remainder by big integers. */
TEST(Modulo, SpansTheWholeRecord) {
    EXPECT_EQ(remainder(limbs({{0, 1}, {39, 1}}) + " " + limbs({{38, 7}, {39, 1}})),
              "1,0,39,39,0,z39.44031857");
    EXPECT_EQ(remainder(limbs({{0, 1}, {39, 1}}) + " D:2.5"), "1,0,39,39,0,z39.1");
}

/* The dividend is three times the divisor and one unit of the last limb. */
TEST(Modulo, BothOperandsMayFillAllLimbs) {
    EXPECT_EQ(remainder("R:1,0,0,39,0," + repeated("3", 39) + ".4 R:1,0,0,39,0," + repeated("1", 40)),
              "1,0,39,39,0,z39.1");
}

/* A trial digit of a two-limb divisor is one too large after its correction: the result is more than the
 * divisor. The true remainder is 1.91. Limb by limb from the steps, on big integers. */
TEST(Modulo, ByTwoLimbsCanBeWrong) {
    EXPECT_EQ(remainder("D:20000000000000000000000 D:2.03"), "1,0,19,20,0,z19.2.88000003.z19");
}

TEST(Modulo, NormalisesAnOddSignByteWhereItDivides) {
    EXPECT_EQ(remainder("R:5,0,19,19,0,z19.7.z20 D:3"), "1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(remainder("R:5,0,19,19,0,z19.7.z20 D:2.5"), "1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(remainder("R:5,0,19,19,0,z19.7.z20 D:9"), "5,0,19,19,0,z19.7.z20");
}

TEST(Modulo, ResultMayBeAnOperand) {
    for (const char* const alias : {"alias:", "alias2:"}) {
        EXPECT_EQ(result_of(alias + mod("D:7.25 D:3")), "1,0,19,20,0,z19.1.25000000.z19") << alias;
        EXPECT_EQ(result_of(alias + mod("D:7.3000000000000005 D:2.5")), "1,0,19,21,0,z19.2.30000000.5.z18")
            << alias;
        EXPECT_EQ(result_of(alias + mod("D:-2 D:3")), "-1,0,19,19,0,z19.2.z20") << alias;
    }
    EXPECT_EQ(result_of("alias12:QZCICalcNumMod D:-2.5 D:-2.5"), positive_zero);
}

} // namespace
} // namespace qzoci::test
