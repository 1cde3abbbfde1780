#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;

std::string sum(const std::string& augend, const std::string& addend) {
    return result_of("QZCICalcNumAdd " + augend + " " + addend);
}

std::string difference(const std::string& minuend, const std::string& subtrahend) {
    return result_of("QZCICalcNumSub " + minuend + " " + subtrahend);
}

/* ---- Sums ---- */

TEST(Addition, CarriesAcrossThePoint) {
    EXPECT_EQ(sum("D:99999999.99999999", "D:0.00000001"), "1,0,18,18,0,z18.1.z21");
}

TEST(Addition, CoversTheLimbsOfBothOperands) {
    EXPECT_EQ(sum("D:1e136", "D:-1e-160"), "1,0,3,39,0,z3." + repeated("99999999", 37));
    EXPECT_EQ(sum("D:1e136", "D:1e-160"), "1,0,2,39,0,z2.1.z36.1");
    EXPECT_EQ(sum("D:-2.5", "D:-3.75"), "-1,0,19,20,0,z19.6.25000000.z19");
}

TEST(Addition, OfOppositeSignsSubtracts) {
    EXPECT_EQ(sum("D:2", "D:-7"), "-1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(sum("D:-2", "D:7"), "1,0,19,19,0,z19.5.z20");
    /* x + (-x) is x - x, a zero with the sign opposite to x's. */
    EXPECT_EQ(sum("D:5", "D:-5"), negative_zero);
    EXPECT_EQ(sum("D:-5", "D:5"), positive_zero);
}

TEST(Addition, CarryIntoLimb1IsNotAnOverflow) {
    EXPECT_EQ(sum(limbs({{2, 99999999}}), limbs({{2, 1}})), "1,0,1,1,0,z1.1.z38");
}

TEST(Addition, CarryIntoLimb0IsAnOverflow) {
    const std::string request = "QZCICalcNumAdd " + limbs({{1, 99999999}}) + " " + limbs({{1, 1}});
    EXPECT_EQ(result_of(request), positive_infinity);
    EXPECT_EQ(kept_lines_of(request),
              (Lines{"out|add set infinity to one with carry", "5|augend:A + addend:B has overflow:1"}));
}

TEST(Addition, CarryOutOfLimb0IsAnOverflow) {
    const std::string request = "QZCICalcNumAdd " + limbs({{0, 99999999}}, -1) + " " + limbs({{0, 1}}, -1);
    EXPECT_EQ(result_of(request), negative_infinity);
    EXPECT_EQ(kept_lines_of(request),
              (Lines{"out|add set infinity to one with carry", "5|augend:A + addend:B has overflow:1"}));
}

TEST(Addition, Limb0WithoutACarryIsASum) {
    EXPECT_EQ(sum("D:4e159", "D:5e159"), "1,0,0,0,0,90000000.z39");
}

TEST(Addition, CarryIntoAnOccupiedLimb0IsASum) {
    EXPECT_EQ(sum(limbs({{0, 7}, {1, 99999999}}), limbs({{1, 1}})), "1,0,0,0,0,8.z39");
}

/* ---- Zero operands ---- */

TEST(Addition, ZeroPlusANumberIsTheNumberAsItStands) {
    EXPECT_EQ(sum("D:0", "D:-3.5"), "-1,0,19,20,0,z19.3.50000000.z19");
    EXPECT_EQ(sum("D:0", "D:inf"), positive_infinity);
    EXPECT_EQ(sum("D:0", "D:-inf"), negative_infinity);
    EXPECT_EQ(sum("D:0", "R:5,4,100,-100,0,1.z38.1"), "5,4,100,-100,0,1.z38.1");
    EXPECT_EQ(sum("R:5,4,100,-100,0,1.z38.1", "D:0"), "5,4,100,-100,0,1.z38.1");
}

TEST(Addition, OfTwoZerosIsTheSecond) {
    EXPECT_EQ(sum("D:0", "D:-0"), negative_zero);
    EXPECT_EQ(sum("D:-0", "D:0"), positive_zero);
    EXPECT_EQ(sum("D:-0", "R:" + std::string(unsigned_zero)), unsigned_zero);
}

TEST(Addition, ZeroFlagOtherThanOneIsAZero) {
    EXPECT_EQ(sum("R:1,0,19,19,5,z19.9.z20", "D:3"), "1,0,19,19,0,z19.3.z20");
}

TEST(Addition, ZeroOfSignZeroIsAccepted) {
    EXPECT_EQ(sum("R:" + std::string(unsigned_zero), "D:3"), "1,0,19,19,0,z19.3.z20");
    EXPECT_EQ(sum("D:3", "R:" + std::string(unsigned_zero)), "1,0,19,19,0,z19.3.z20");
    EXPECT_EQ(difference("D:3", "R:" + std::string(unsigned_zero)), "1,0,19,19,0,z19.3.z20");
}

TEST(Addition, CopyOfAZeroOperandsPartnerIsTraced) {
    EXPECT_EQ(lines_of("QZCICalcNumAdd D:0 D:3"),
              (Lines{"2|call function QZCICalcNumAdd with augend:A, addend:B, sum:R",
                     "2|call function QZCICalcNumAssign with num:B, opt:S",
                     "2|function QZCICalcNumAssign return with status 0",
                     "2|function QZCICalcNumAdd return with status 0"}));
}

/* ---- Infinite operands ---- */

TEST(Addition, InfinityPlusANumberKeepsTheSign) {
    EXPECT_EQ(sum("D:inf", "D:3"), positive_infinity);
    EXPECT_EQ(sum("D:3", "D:inf"), positive_infinity);
    EXPECT_EQ(sum("D:-3", "D:-inf"), negative_infinity);
    EXPECT_EQ(sum("D:inf", "D:inf"), positive_infinity);
    EXPECT_EQ(sum("D:-inf", "D:-inf"), negative_infinity);
    EXPECT_EQ(lines_of("QZCICalcNumAdd D:inf D:3")[1], "2|augend:A + addend:B meet infinity");
}

/* Not symmetric. */
TEST(Addition, OppositeInfinitiesGiveZeroOrMinusInfinity) {
    EXPECT_EQ(sum("D:inf", "D:-inf"), positive_zero);
    EXPECT_EQ(sum("D:-inf", "D:inf"), negative_infinity);
}

/* ---- Signs that are none ---- */

TEST(Addition, SignByteOfANonZeroOperandMustBeOneOrMinusOne) {
    const std::string no_sign = "R:0,0,19,19,0,z19.5.z20";
    const std::string infinite = "R:7,1,-1,-1,0,z40";
    for (const std::string& operands : {no_sign + " D:1", "D:1 " + no_sign, infinite + " D:1"}) {
        expect_failure("QZCICalcNumAdd " + operands, OCI_ERROR, {"5|QZCICalcNumAdd get a error format"});
        expect_failure("QZCICalcNumSub " + operands, OCI_ERROR, {"5|QZCICalcNumSub get a error format"});
    }
}

/* ---- Differences ---- */

TEST(Subtraction, OfANumberFromItselfIsAZeroOfTheOppositeSign) {
    EXPECT_EQ(difference("D:5", "D:5"), negative_zero);
    EXPECT_EQ(difference("D:-5", "D:-5"), positive_zero);
}

TEST(Subtraction, OfEqualNumbersClearsThroughToZero) {
    EXPECT_EQ(lines_of("QZCICalcNumSub D:5 D:5"),
              (Lines{"2|call function QZCICalcNumSub with minuend:A, subtrahend:B, remainder:R",
                     "2|call function QZCICalcNumToZero with num:S",
                     "2|function QZCICalcNumToZero return with status 0",
                     "2|function QZCICalcNumSub return with status 0"}));
}

TEST(Subtraction, FromZeroTurnsTheSignOfACopy) {
    EXPECT_EQ(difference("D:0", "D:3"), "-1,0,19,19,0,z19.3.z20");
    EXPECT_EQ(difference("D:0", "D:-inf"), positive_infinity);
    EXPECT_EQ(difference("D:0", "R:5,4,100,-100,0,1.z38.1"), "-5,4,100,-100,0,1.z38.1");
    EXPECT_EQ(
        lines_of("QZCICalcNumSub D:0 D:3"),
        (Lines{"2|call function QZCICalcNumSub with minuend:A, subtrahend:B, remainder:R",
               "2|call function QZCICalcNumAssign with num:B, opt:S",
               "2|function QZCICalcNumAssign return with status 0",
               "2|call function QZCICalcNumNeg with num:S", "2|function QZCICalcNumNeg return with status 0",
               "2|function QZCICalcNumSub return with status 0"}));
}

TEST(Subtraction, OfZeroCopiesTheMinuend) {
    EXPECT_EQ(difference("D:3", "D:0"), "1,0,19,19,0,z19.3.z20");
    EXPECT_EQ(difference("D:-inf", "D:0"), negative_infinity);
}

TEST(Subtraction, OfZerosFlipsTheSignOfTheSecond) {
    EXPECT_EQ(difference("D:0", "D:0"), negative_zero);
    EXPECT_EQ(difference("D:0", "D:-0"), positive_zero);
    EXPECT_EQ(difference("D:-0", "R:" + std::string(unsigned_zero)), unsigned_zero);
}

TEST(Subtraction, SmallerMinuendTurnsTheSign) {
    EXPECT_EQ(difference("D:2", "D:7"), "-1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(difference("D:-2", "D:-7"), "1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(difference("D:7", "D:2"), "1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(difference("D:-7", "D:-2"), "-1,0,19,19,0,z19.5.z20");
}

TEST(Subtraction, BorrowsAcrossThePoint) {
    EXPECT_EQ(difference("D:100000000", "D:0.00000001"), "1,0,19,20,0,z19.99999999.99999999.z19");
}

TEST(Subtraction, OfOppositeSignsAddsAndCanOverflow) {
    EXPECT_EQ(difference("D:2", "D:-7"), "1,0,19,19,0,z19.9.z20");
    EXPECT_EQ(difference("D:-2", "D:7"), "-1,0,19,19,0,z19.9.z20");
    const std::string request = "QZCICalcNumSub " + limbs({{1, 99999999}}) + " " + limbs({{1, 1}}, -1);
    EXPECT_EQ(result_of(request), positive_infinity);
    EXPECT_EQ(kept_lines_of(request),
              (Lines{"out|add set infinity to one with carry", "5|augend:A + addend:S has overflow:1"}));
}

TEST(Subtraction, InfinitiesOfEqualSignGiveZeroOrMinusInfinity) {
    EXPECT_EQ(difference("D:inf", "D:inf"), positive_zero);
    EXPECT_EQ(difference("D:-inf", "D:-inf"), negative_infinity);
    EXPECT_EQ(kept_lines_of("QZCICalcNumSub D:inf D:inf"),
              (Lines{"5|minuend:A - (-addend):B all are infinity numbers"}));
    EXPECT_EQ(lines_of("QZCICalcNumSub D:-inf D:-inf"),
              (Lines{"2|call function QZCICalcNumSub with minuend:A, subtrahend:B, remainder:R",
                     "2|minuend:A - subtrahend:B meet infinity",
                     "5|minuend:A - (-addend):B all are infinity numbers",
                     "2|call function QZCICalcNumToInfinity with num:S",
                     "2|function QZCICalcNumToInfinity return with status 0",
                     "2|function QZCICalcNumSub return with status 0"}));
}

TEST(Subtraction, OneInfiniteOperandGivesAnInfinity) {
    EXPECT_EQ(difference("D:3", "D:inf"), negative_infinity);
    EXPECT_EQ(difference("D:-3", "D:-inf"), positive_infinity);
    EXPECT_EQ(difference("D:inf", "D:3"), positive_infinity);
    EXPECT_EQ(difference("D:-inf", "D:-3"), negative_infinity);
    EXPECT_EQ(kept_lines_of("QZCICalcNumSub D:3 D:inf"), Lines{});
    EXPECT_EQ(lines_of("QZCICalcNumSub D:3 D:inf")[1], "2|minuend:A - subtrahend:B meet infinity");
}

TEST(Subtraction, OppositeInfinitiesAdd) {
    EXPECT_EQ(difference("D:inf", "D:-inf"), positive_infinity);
    EXPECT_EQ(difference("D:-inf", "D:inf"), negative_infinity);
}

/* ---- One record in two places ---- */

TEST(Addition, ResultMayBeAnOperand) {
    for (const char* const alias : {"", "alias:", "alias2:"}) {
        const std::string add = std::string(alias) + "QZCICalcNumAdd ";
        const std::string sub = std::string(alias) + "QZCICalcNumSub ";
        EXPECT_EQ(result_of(add + "D:2.5 D:3.75"), "1,0,19,20,0,z19.6.25000000.z19") << alias;
        EXPECT_EQ(result_of(add + "D:2.5 D:-3.75"), "-1,0,19,20,0,z19.1.25000000.z19") << alias;
        EXPECT_EQ(result_of(add + "D:0 D:3.75"), "1,0,19,20,0,z19.3.75000000.z19") << alias;
        EXPECT_EQ(result_of(add + "D:inf D:-inf"), positive_zero) << alias;
        EXPECT_EQ(result_of(sub + "D:2.5 D:3.75"), "-1,0,19,20,0,z19.1.25000000.z19") << alias;
        EXPECT_EQ(result_of(sub + "D:2.5 D:-3.75"), "1,0,19,20,0,z19.6.25000000.z19") << alias;
        EXPECT_EQ(result_of(sub + "D:0 D:3.75"), "-1,0,19,20,0,z19.3.75000000.z19") << alias;
        EXPECT_EQ(result_of(sub + "D:-inf D:3.75"), negative_infinity) << alias;
    }
    EXPECT_EQ(result_of("alias12:QZCICalcNumAdd D:2.5 D:2.5"), "1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(result_of("alias12:QZCICalcNumSub D:2.5 D:2.5"), negative_zero);
}

} // namespace
} // namespace qzoci::test
