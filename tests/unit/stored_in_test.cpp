#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;

/* bytes: the stored number in hex, filled up with 00. */
std::string unpacked(const std::string& bytes) {
    return result_of("QZCICalcNumFromNumber " + bytes);
}

/* ---- The format ---- */

TEST(StoredIn, OneAndOneHundredth) {
    EXPECT_EQ(unpacked("02c102"), "1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(unpacked("02c002"), "1,0,20,20,0,z20.1000000.z19");
}

TEST(StoredIn, MinusOneSkipsTheTerminator) {
    EXPECT_EQ(unpacked("033e6466"), "-1,0,19,19,0,z19.1.z20");
}

TEST(StoredIn, ZeroHasSignZero) {
    EXPECT_EQ(unpacked("0180"), unsigned_zero);
}

TEST(StoredIn, ExponentByte128IsZeroWhateverFollows) {
    EXPECT_EQ(unpacked("058011223344"), unsigned_zero);
    EXPECT_EQ(unpacked("1580" + times("64", 20)), unsigned_zero);
}

TEST(StoredIn, PositiveInfinityIsToldFrom100ToThePower62) {
    EXPECT_EQ(unpacked("02ff65"), positive_infinity);
    /* 10^124: limb 19 - floor(62 / 4) = 4, weight 100^2 */
    EXPECT_EQ(unpacked("02ff02"), "1,0,4,4,0,z4.10000.z35");
}

TEST(StoredIn, PositiveInfinityNeedsTheLengthTwo) {
    /* Byte 101 is the pair 100: 100 * 100^62, in limb 4 with weight 100^2; the second pair 1 has weight 100.
     */
    EXPECT_EQ(unpacked("03ff6502"), "1,0,4,4,0,z4.1000100.z35");
}

TEST(StoredIn, NegativeInfinity) {
    EXPECT_EQ(unpacked("0100"), negative_infinity);
}

TEST(StoredIn, NegativeInfinityNeedsTheLengthOne) {
    /* The only mantissa byte is taken for the terminator. */
    EXPECT_EQ(unpacked("026466"), negative_zero);
    EXPECT_EQ(unpacked("020064"), negative_zero);
}

TEST(StoredIn, NegativeWithoutDigitsIsAZeroOfSignMinusOne) {
    EXPECT_EQ(unpacked("0105"), negative_zero);
}

TEST(StoredIn, PositiveWithoutDigitsIsAZeroOfSignOne) {
    EXPECT_EQ(unpacked("01c1"), positive_zero);
    EXPECT_EQ(unpacked("02c101"), positive_zero);
}

TEST(StoredIn, PairsFillLimbsOnBothSidesOfThePoint) {
    /* e = 4: pairs 1 | 23 45 67 89 | 12 34 56 78 | 90, units pair 89 */
    EXPECT_EQ(unpacked("0bc502182e445a0d23394f5b"), "1,0,18,21,0,z18.1.23456789.12345678.90000000.z18");
    EXPECT_EQ(unpacked("0c3a644e38220c59432d170b66"), "-1,0,18,21,0,z18.1.23456789.12345678.90000000.z18");
}

TEST(StoredIn, BytesAfterTheLengthAreIgnored) {
    EXPECT_EQ(unpacked("02c102" + times("64", 19)), "1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(unpacked("033e6466" + times("02", 18)), "-1,0,19,19,0,z19.1.z20");
}

/* ---- Twenty pairs and the terminator ---- */

/* -1.01...01: exponent byte 62, byte 100 a pair of 1. */
TEST(StoredIn, NegativeOfLength21WithByte102AtItsEndHasNineteenPairs) {
    EXPECT_EQ(unpacked("153e" + times("64", 19) + "66"),
              "-1,0,19,24,0,z19.1." + repeated("1010101", 4) + ".1010000.z15");
}

TEST(StoredIn, NegativeOfLength21WithAnotherLastByteHasTwentyPairs) {
    EXPECT_EQ(unpacked("153e" + times("64", 20)),
              "-1,0,19,24,0,z19.1." + repeated("1010101", 4) + ".1010100.z15");
}

TEST(StoredIn, LastByteOfAShorterNegativeIsSkippedWithoutBeingChecked) {
    EXPECT_EQ(unpacked("033e6464"), "-1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(unpacked("143e" + times("64", 19)),
              "-1,0,19,24,0,z19.1." + repeated("1010101", 4) + ".1000000.z15");
}

/* ---- The ends of the exponent range ---- */

TEST(StoredIn, LargestExponentFillsTheFirstPairOfLimb4) {
    /* 99 * 100^62 */
    EXPECT_EQ(unpacked("02ff64"), "1,0,4,4,0,z4.990000.z35");
    EXPECT_EQ(unpacked("03000266"), "-1,0,4,4,0,z4.990000.z35");
}

TEST(StoredIn, SmallestExponents) {
    /* 100^-64 is 1 in limb 35, 100^-65 is 10^6 in limb 36. */
    EXPECT_EQ(unpacked("028102"), "1,0,35,35,0,z35.1.z4");
    EXPECT_EQ(unpacked("037f6466"), "-1,0,36,36,0,z36.1000000.z3");
}

TEST(StoredIn, DigitsBelowTheLastLimbAreDroppedWithoutRounding) {
    /* Twenty pairs of 99 from 100^-64 on: limb 35 takes one, limbs 36 to 39 sixteen, three are dropped. */
    EXPECT_EQ(unpacked("1581" + times("64", 20)), "1,0,35,39,0,z35.99." + repeated("99999999", 4));
    /* From 100^-65 on: limbs 36 to 39 take sixteen. */
    EXPECT_EQ(unpacked("157f" + times("02", 20)), "-1,0,36,39,0,z36." + repeated("99999999", 4));
}

/* ---- Bytes outside the format ---- */

/* (byte - 1) and (101 - byte) times the weight of the pair, modulo 2^32. */
TEST(StoredIn, BytesOutsideTheFormatGiveLimbsThatWrap) {
    EXPECT_EQ(unpacked("02c100"), "1,0,19,19,0,z19.4294967295.z20");
    EXPECT_EQ(unpacked("02c1ff"), "1,0,19,19,0,z19.254.z20");
    /* 2^32 - 1000000 */
    EXPECT_EQ(unpacked("02c000"), "1,0,20,20,0,z20.4293967296.z19");
    /* 101 - 255 = -154 */
    EXPECT_EQ(unpacked("033eff66"), "-1,0,19,19,0,z19.4294967142.z20");
    EXPECT_EQ(unpacked("033e0066"), "-1,0,19,19,0,z19.101.z20");
    /* Two pairs of one limb: -1 * 100 + 49 = -51 */
    EXPECT_EQ(unpacked("03c20032"), "1,0,19,19,0,z19.4294967245.z20");
    /* 254 pairs of each weight: 254 * 1010101 */
    EXPECT_EQ(unpacked("05c4ffffffff"), "1,0,19,19,0,z19.256565654.z20");
}

/* ---- Lengths ---- */

TEST(StoredIn, LengthZeroAndAbove21AreRejected) {
    for (const char* const bytes : {"00", "00c102", "16c102", "17", "80", "ffffff"}) {
        expect_failure(std::string("QZCICalcNumFromNumber ") + bytes, OCI_ERROR,
                       {"5|QZCICalcNumFromNumber get a invalid number"});
    }
}

TEST(StoredIn, RejectionWritesTheExitTrace) {
    EXPECT_EQ(lines_of("QZCICalcNumFromNumber 16c102"),
              (Lines{"2|call function QZCICalcNumFromNumber with num:R, number:O",
                     "5|QZCICalcNumFromNumber get a invalid number",
                     "2|function QZCICalcNumFromNumber return with status -1"}));
}

TEST(StoredIn, EveryReturnWritesTheExitTrace) {
    const Lines expected = {"2|call function QZCICalcNumFromNumber with num:R, number:O",
                            "2|function QZCICalcNumFromNumber return with status 0"};
    for (const char* const bytes : {"02ff65", "0100", "02c102", "033e6466"}) {
        EXPECT_EQ(lines_of(std::string("QZCICalcNumFromNumber ") + bytes), expected) << bytes;
    }
}

TEST(StoredIn, ZeroIsMadeByToZeroOnTheCallersRecord) {
    EXPECT_EQ(lines_of("QZCICalcNumFromNumber 0180"),
              (Lines{"2|call function QZCICalcNumFromNumber with num:R, number:O",
                     "2|call function QZCICalcNumToZero with num:R",
                     "2|function QZCICalcNumToZero return with status 0",
                     "2|function QZCICalcNumFromNumber return with status 0"}));
}

} // namespace
} // namespace qzoci::test
