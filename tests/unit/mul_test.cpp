#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;

std::string mul(const std::string& operands) {
    return "QZCICalcNumMul " + operands;
}

std::string product(const std::string& operands) {
    return result_of(mul(operands));
}

std::string integer_product(const std::string& operands) {
    return result_of("QZCICalcNumMulWhitInterge " + operands);
}

bool contains(const Lines& lines, const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

/* ---- Zero and infinity ---- */

TEST(Product, OfZeroAndInfinityIsZero) {
    EXPECT_EQ(product("D:0 D:inf"), unsigned_zero);
    EXPECT_EQ(product("D:-inf D:0"), unsigned_zero);
}

TEST(Product, OfInfinityHasTheProductOfTheSigns) {
    EXPECT_EQ(product("D:inf D:2"), positive_infinity);
    EXPECT_EQ(product("D:inf D:-2"), negative_infinity);
    EXPECT_EQ(product("D:-2 D:-inf"), positive_infinity);
    EXPECT_EQ(product("D:-inf D:inf"), negative_infinity);
    EXPECT_EQ(lines_of(mul("D:inf D:2")),
              (Lines{"2|call function QZCICalcNumMul with multiplicand:A, multiplier:B, product:R",
                     "2|multiplicand:A + multiplier:B meet infinity",
                     "2|function QZCICalcNumMul return with status 0"}));
}

/* A zero operand gives the sign 0, which is not normalised away. */
TEST(Product, ZeroOperandGivesSignZero) {
    EXPECT_EQ(product("D:0 D:-2"), unsigned_zero);
    EXPECT_EQ(product("D:-0 D:2"), unsigned_zero);
    EXPECT_EQ(lines_of(mul("D:0 D:2")),
              (Lines{"2|call function QZCICalcNumMul with multiplicand:A, multiplier:B, product:R",
                     "2|call function QZCICalcNumToZero with num:S",
                     "2|function QZCICalcNumToZero return with status 0",
                     "2|function QZCICalcNumMul return with status 0"}));
}

TEST(Product, FlagsOtherThanZeroCount) {
    EXPECT_EQ(product("R:1,0,19,19,3,z19.9.z20 D:2"), unsigned_zero);
    EXPECT_EQ(product("R:-1,3,19,19,0,z19.9.z20 D:2"), negative_infinity);
}

/* ---- The steps ---- */

/* 2.5 * 3: 3 * 50000000 = 1 | 50000000, 3 * 2 + 1 = 7. The operand with fewer limbs is named first. */
TEST(Product, WritesALinePerLimbProduct) {
    EXPECT_EQ(product("D:2.5 D:3"), "1,0,19,20,0,z19.7.50000000.z19");
    EXPECT_EQ(
        lines_of(mul("D:2.5 D:3")),
        (Lines{"2|call function QZCICalcNumMul with multiplicand:A, multiplier:B, product:R",
               "2|QZCICalcNumMul:B x A result:0, 50000000", "2|QZCICalcNumMul:B x A result:1, 7",
               "2|QZCICalcNumMul new_len:2 exp_sum: -1", "2|function QZCICalcNumMul return with status 0"}));
    EXPECT_EQ(lines_of(mul("D:3 D:2.5"))[1], "2|QZCICalcNumMul:A x B result:0, 50000000");
}

TEST(Product, OfEqualLengthsNamesTheMultiplierFirst) {
    EXPECT_EQ(lines_of(mul("D:3 D:5"))[1], "2|QZCICalcNumMul:B x A result:0, 15");
}

/* 99999999.99999999^2 = 10^16 - 2 + 10^-16 */
TEST(Product, CarriesRippleUpward) {
    EXPECT_EQ(product("D:99999999.99999999 D:-99999999.99999999"),
              "-1,0,18,21,0,z18.99999999.99999998.z1.1.z18");
}

/* ---- Products that do not fit ---- */

TEST(Product, Of80ZerosEachIsInfinite) {
    EXPECT_EQ(product("D:1e80 D:1e80"), positive_infinity);
    EXPECT_EQ(product("D:-1e80 D:1e80"), negative_infinity);
    const std::string too_large =
        "2|exceed max precision to calc in QZCICalcNumMul :need 1 + 20 < 20, set to infinity number";
    EXPECT_EQ(lines_of(mul("D:1e80 D:1e80")),
              (Lines{"2|call function QZCICalcNumMul with multiplicand:A, multiplier:B, product:R",
                     "2|QZCICalcNumMul:B x A result:0, 1", "2|QZCICalcNumMul new_len:1 exp_sum: 20",
                     too_large, "2|function QZCICalcNumMul return with status 0"}));
}

/* The length counts one limb less than the product has when its top limb is occupied. */
TEST(Product, Of79And81ZerosLosesItsTopLimbAndIsZero) {
    EXPECT_EQ(product("D:1e79 D:1e81"), positive_zero);
    EXPECT_EQ(product("D:1e79 D:-1e81"), negative_zero);
    EXPECT_EQ(lines_of(mul("D:1e79 D:1e81"))[2], "2|QZCICalcNumMul new_len:1 exp_sum: 19");
}

/* (10^79 + 3) * 10^81 = 10^160 + 3 * 10^81: the limbs of 10^80 .. 10^87 hold 30. */
TEST(Product, WrapsModulo10ToThePower160) {
    EXPECT_EQ(product(limbs({{10, 10000000}, {19, 3}}) + " D:1e81"), "1,0,9,9,0,z9.30.z30");
}

/* ---- Products with digits below the last limb ---- */

TEST(Product, DroppedLimbOf50000000RoundsUp) {
    EXPECT_EQ(product("D:5e-81 D:1e-80"), "1,0,39,39,0,z39.1");
    EXPECT_EQ(product(limbs({{30, 50000000}}) + " " + limbs({{29, 1}})), "1,0,39,39,0,z39.1");
    EXPECT_EQ(lines_of(mul("D:5e-81 D:1e-80"))[3],
              "2|exceed min precision to calc in QZCICalcNumMul :need -21 * -1 <= 20");
}

TEST(Product, DroppedLimbBelow50000000IsCutWhateverFollows) {
    EXPECT_EQ(product(limbs({{30, 49999999}}) + " " + limbs({{29, 1}})), positive_zero);
    EXPECT_EQ(product(limbs({{30, 49999999}}) + " " + limbs({{29, 1}}, -1)), negative_zero);
    EXPECT_EQ(product(limbs({{29, 7}, {30, 49999999}, {31, 99999999}}) + " " + limbs({{29, 1}})),
              "1,0,39,39,0,z39.7");
}

/* The kept limb 99999999 becomes 1 and carries nothing into the limb before it. */
TEST(Product, LastLimbOf99999999RoundsUpToOne) {
    EXPECT_EQ(product(limbs({{30, 99999999}, {31, 50000000}}) + " " + limbs({{28, 1}})), "1,0,39,39,0,z39.1");
    EXPECT_EQ(product(limbs({{29, 7}, {30, 99999999}, {31, 50000000}}) + " " + limbs({{28, 1}})),
              "1,0,38,39,0,z38.7.1");
    EXPECT_EQ(product(limbs({{30, 99999998}, {31, 50000000}}) + " " + limbs({{28, 1}})),
              "1,0,39,39,0,z39.99999999");
}

TEST(Product, ThatReachesTheLastLimbExactlyIsNotRounded) {
    EXPECT_EQ(product("D:1e-80 D:1e-80"), "1,0,39,39,0,z39.1");
    const Lines lines = lines_of(mul("D:1e-80 D:1e-80"));
    EXPECT_FALSE(contains(lines, "2|exceed min precision to calc in QZCICalcNumMul :need -20 * -1 <= 20"));
    EXPECT_EQ(lines.size(), 4U);
    EXPECT_EQ(product(limbs({{20, 99999999}}) + " " + limbs({{19, 99999999}, {38, 99999999}})),
              "1,0,19,39,0,z19.99999998.1.z17.99999998.1");
}

TEST(Product, FarBelowTheLastLimbIsZero) {
    EXPECT_EQ(product("D:9e-160 D:9e-160"), positive_zero);
}

/* (1 - 10^-160)^2 = 1 - 2 * 10^-160 + 10^-320 */
TEST(Product, OfFullFractionsDropsTheLowerHalf) {
    const std::string nines = "R:1,0,20,39,0,z20." + repeated("99999999", 20);
    EXPECT_EQ(product(nines + " " + nines), "1,0,20,39,0,z20." + repeated("99999999", 19) + ".99999998");
}

/* 79 limbs are counted from 10^-320 on; the limb above the product's 80 is looked at. */
TEST(Product, OfFullRecordsIsInfinite) {
    const std::string full = "R:1,0,0,39,0," + repeated("1", 40);
    EXPECT_EQ(product(full + " " + full), positive_infinity);
    const Lines lines = lines_of(mul(full + " " + full));
    ASSERT_EQ(lines.size(), 1604U);
    EXPECT_EQ(lines[1602],
              "2|exceed max precision to calc in QZCICalcNumMul :need 79 + -40 < 20, set to infinity number");
}

/* 5 * -1 is -5, which the normaliser turns into 1. */
TEST(Product, OfOddSignBytesIsPositiveUnlessItIsMinusOne) {
    EXPECT_EQ(product("R:5,0,19,19,0,z19.3.z20 D:-2"), "1,0,19,19,0,z19.6.z20");
    EXPECT_EQ(product("R:0,0,19,19,0,z19.3.z20 D:-2"), "1,0,19,19,0,z19.6.z20");
    /* -1 in 8 bits: 15 * 17 = 255 */
    EXPECT_EQ(product("R:15,0,19,19,0,z19.3.z20 R:17,0,19,19,0,z19.2.z20"), "-1,0,19,19,0,z19.6.z20");
}

TEST(Product, ResultMayBeAnyOperand) {
    for (const char* const alias : {"", "alias:", "alias2:"}) {
        EXPECT_EQ(result_of(alias + mul("D:2.5 D:3")), "1,0,19,20,0,z19.7.50000000.z19") << alias;
        EXPECT_EQ(result_of(alias + mul("D:0 D:3")), unsigned_zero) << alias;
        EXPECT_EQ(result_of(alias + mul("D:-inf D:3")), negative_infinity) << alias;
    }
    EXPECT_EQ(result_of("alias12:QZCICalcNumMul D:2.5 D:2.5"), "1,0,19,20,0,z19.6.25000000.z19");
}

/* ---- Products with an integer ---- */

TEST(IntegerProduct, ZeroOfANegativeMultiplicandHasSignMinusOne) {
    EXPECT_EQ(integer_product("D:-3 0"), negative_zero);
    EXPECT_EQ(integer_product("D:3 0"), positive_zero);
    EXPECT_EQ(integer_product("D:-0 5"), negative_zero);
    EXPECT_EQ(integer_product("R:" + std::string(unsigned_zero) + " 5"), unsigned_zero);
}

TEST(IntegerProduct, IsExactForTheLargestInteger) {
    /* 12345678.9 * 4294967295 = 53024287110071575.5 */
    EXPECT_EQ(integer_product("D:12345678.9 4294967295"), "1,0,17,20,0,z17.5.30242871.10071575.50000000.z19");
    EXPECT_EQ(integer_product("D:-1e-160 4294967295"), "-1,0,38,39,0,z38.42.94967295");
}

TEST(IntegerProduct, NamesItsScratchRecordInTheEntryTrace) {
    EXPECT_EQ(lines_of("QZCICalcNumMulWhitInterge D:3 4294967295"),
              (Lines{"2|call function QZCICalcNumMulWhitInterge with multiplicand:A, multiplier:4294967295, "
                     "product:S",
                     "2|function QZCICalcNumMulWhitInterge return with status 0"}));
}

TEST(IntegerProduct, ZeroIsMadeByToZero) {
    EXPECT_EQ(lines_of("QZCICalcNumMulWhitInterge D:3 0"),
              (Lines{"2|call function QZCICalcNumMulWhitInterge with multiplicand:A, multiplier:0, product:S",
                     "2|call function QZCICalcNumToZero with num:S",
                     "2|function QZCICalcNumToZero return with status 0",
                     "2|function QZCICalcNumMulWhitInterge return with status 0"}));
}

TEST(IntegerProduct, CarriesUpToLimb0) {
    EXPECT_EQ(integer_product("D:1e158 10"), "1,0,0,0,0,10000000.z39");
    EXPECT_EQ(integer_product(limbs({{1, 99999999}}) + " 100000000"), "1,0,0,0,0,99999999.z39");
}

TEST(IntegerProduct, CarryBeyondLimb0IsAnInfinityWithOneErrorLine) {
    for (const char* const operands : {"D:1e159 10", "D:9e159 4294967295"}) {
        EXPECT_EQ(integer_product(operands), positive_infinity) << operands;
        EXPECT_EQ(kept_lines_of(std::string("QZCICalcNumMulWhitInterge ") + operands),
                  (Lines{"5|exceed max precision to calc in QZCICalcNumMulWithInterge"}))
            << operands;
    }
    EXPECT_EQ(integer_product("D:-1e159 10"), negative_infinity);
    EXPECT_EQ(lines_of("QZCICalcNumMulWhitInterge D:-1e159 10").back(),
              "2|function QZCICalcNumMulWhitInterge return with status 0");
}

TEST(IntegerProduct, InfinityStaysAndTimesZeroIsZero) {
    EXPECT_EQ(integer_product("D:inf 3"), positive_infinity);
    EXPECT_EQ(integer_product("D:-inf 3"), negative_infinity);
    EXPECT_EQ(integer_product("D:inf 0"), positive_zero);
    EXPECT_EQ(integer_product("D:-inf 0"), negative_zero);
    EXPECT_EQ(kept_lines_of("QZCICalcNumMulWhitInterge D:-inf 3"), Lines{});
}

TEST(IntegerProduct, KeepsAnOddSignByte) {
    EXPECT_EQ(integer_product("R:5,0,19,19,0,z19.3.z20 2"), "5,0,19,19,0,z19.6.z20");
}

TEST(IntegerProduct, ResultMayBeTheMultiplicand) {
    EXPECT_EQ(result_of("alias:QZCICalcNumMulWhitInterge D:2.5 3"), "1,0,19,20,0,z19.7.50000000.z19");
    EXPECT_EQ(result_of("alias:QZCICalcNumMulWhitInterge D:-2.5 0"), negative_zero);
}

} // namespace
} // namespace qzoci::test
