#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;

/* The 22 bytes of a stored number that begins with these; those after its length are as before the call. */
std::string stored(const std::string& bytes) {
    return bytes + times("ee", QZOCI_NUMBER_SIZE - static_cast<int>(bytes.size()) / 2);
}

std::string packed(const std::string& operand) {
    return out_of("QZCICalcNumToNumber " + operand);
}

/* ---- Packing ---- */

TEST(StoredOut, SmallNumbers) {
    EXPECT_EQ(packed("D:1"), stored("02c102"));
    EXPECT_EQ(packed("D:-1"), stored("033e6466"));
    EXPECT_EQ(packed("D:0.01"), stored("02c002"));
}

TEST(StoredOut, ZerosOfEverySignAreOneForm) {
    EXPECT_EQ(packed("D:0"), stored("0180"));
    EXPECT_EQ(packed("D:-0"), stored("0180"));
    EXPECT_EQ(packed("R:" + std::string(unsigned_zero)), stored("0180"));
}

TEST(StoredOut, Infinities) {
    EXPECT_EQ(packed("D:inf"), stored("02ff65"));
    EXPECT_EQ(packed("D:-inf"), stored("0100"));
}

TEST(StoredOut, AnySignOtherThanOneTakesTheNegativeForm) {
    for (const char* const sign : {"0", "5", "-1", "-128"}) {
        EXPECT_EQ(packed("R:" + std::string(sign) + ",0,19,19,0,z19.1.z20"), stored("033e6466")) << sign;
        EXPECT_EQ(packed("R:" + std::string(sign) + ",1,-1,-1,0,z40"), stored("0100")) << sign;
    }
}

TEST(StoredOut, BytesAfterTheLengthAreLeftAsTheyWere) {
    EXPECT_EQ(packed("D:-25"), "033e4c66" + times("ee", 18));
}

TEST(StoredOut, LeadingZeroPairsOfTheFirstLimbAreSkipped) {
    EXPECT_EQ(packed("D:99"), stored("02c164"));
    EXPECT_EQ(packed("D:100"), stored("02c202"));
    EXPECT_EQ(packed("D:10000"), stored("02c302"));
    EXPECT_EQ(packed("D:1000000"), stored("02c402"));
    EXPECT_EQ(packed("D:100000000"), stored("02c502"));
    EXPECT_EQ(packed("D:0.00000001"), stored("02bd02"));
}

TEST(StoredOut, TrailingZeroPairsAreSkippedAndInnerOnesKept) {
    EXPECT_EQ(packed("D:1000001"), stored("05c402010102"));
    EXPECT_EQ(packed("D:10200"), stored("03c30203"));
}

/* ---- Twenty pairs ---- */

TEST(StoredOut, TwentyPairsAreStoredUnroundedAndANegativeGetsNoTerminator) {
    const std::string digits = "1234567890123456789012345678901234567891";
    EXPECT_EQ(packed("D:" + digits), "15d4" + times("0d23394f5b", 3) + "0d23394f5c");
    EXPECT_EQ(packed("D:-" + digits), "152b" + times("59432d170b", 3) + "59432d170a");
}

TEST(StoredOut, NineteenPairsOfANegativeGetATerminator) {
    EXPECT_EQ(packed("D:-12345678901234567890123456789012345678"),
              "152c" + times("59432d170b", 3) + "59432d1766");
}

TEST(StoredOut, A21stPairOf50RoundsUp) {
    const std::string twenty_pairs = "1." + times("01", 19);
    EXPECT_EQ(packed("D:" + twenty_pairs + "50"), "15c1" + times("02", 19) + "03");
    EXPECT_EQ(packed("D:-" + twenty_pairs + "50"), "153e" + times("64", 19) + "63");
}

TEST(StoredOut, A21stPairOf49IsTruncatedWhateverFollows) {
    const std::string twenty_pairs = "1." + times("01", 19);
    EXPECT_EQ(packed("D:" + twenty_pairs + "49"), "15c1" + times("02", 20));
    EXPECT_EQ(packed("D:-" + twenty_pairs + "49"), "153e" + times("64", 20));
    EXPECT_EQ(packed("D:" + twenty_pairs + "49" + times("99", 40)), "15c1" + times("02", 20));
    EXPECT_EQ(packed("D:-" + twenty_pairs + "49" + times("99", 40)), "153e" + times("64", 20));
}

TEST(StoredOut, RoundingCarryDropsTheZeroPairsBehindIt) {
    /* 1.00 99..99 | 50 becomes 1.01 */
    const std::string number = "1.00" + times("99", 18) + "50";
    EXPECT_EQ(packed("D:" + number), stored("03c10202"));
    EXPECT_EQ(packed("D:-" + number), stored("043e646466"));
}

TEST(StoredOut, TwentyPairsOf99AndHalfBecomeOnePairWithTheNextExponent) {
    const std::string number = "99." + times("99", 19) + "50";
    EXPECT_EQ(packed("D:" + number), stored("02c202"));
    EXPECT_EQ(packed("D:-" + number), stored("033d6466"));
}

TEST(StoredOut, TruncatedPositiveLosesItsTrailingZeroPairsAndNegativeKeepsThem) {
    const std::string number = "1." + times("00", 19) + "49";
    EXPECT_EQ(packed("D:" + number), stored("02c102"));
    EXPECT_EQ(packed("D:-" + number), "153e64" + times("65", 19));
}

/* ---- The ends of the exponent range ---- */

TEST(StoredOut, SmallestMagnitudeIsHigherForPositiveNumbers) {
    EXPECT_EQ(packed("D:1e-128"), stored("028102"));
    EXPECT_EQ(packed("D:1e-130"), stored("0180"));
    EXPECT_EQ(packed("D:99e-130"), stored("0180"));
    EXPECT_EQ(packed("D:-1e-130"), stored("037f6466"));
    EXPECT_EQ(packed("D:-99e-132"), stored("0180"));
    EXPECT_EQ(packed("D:1e-160"), stored("0180"));
    EXPECT_EQ(packed("D:-1e-160"), stored("0180"));
}

TEST(StoredOut, LargestExponentIs62AndAboveIsInfinity) {
    EXPECT_EQ(packed("D:99e124"), stored("02ff64"));
    EXPECT_EQ(packed("D:-99e124"), stored("03000266"));
    EXPECT_EQ(packed("D:1e126"), stored("02ff65"));
    EXPECT_EQ(packed("D:-1e126"), stored("0100"));
    EXPECT_EQ(packed("D:9e159"), stored("02ff65"));
    EXPECT_EQ(packed("D:-9e159"), stored("0100"));
}

/* 193 + 63 is 256 and 62 - 63 is -1: the byte wraps instead of becoming an infinity. */
TEST(StoredOut, RoundingCarryAtTheLargestExponentWrapsTheExponentByte) {
    const std::string number = times("99", 20) + "50e84";
    EXPECT_EQ(packed("D:" + number), stored("020002"));
    EXPECT_EQ(packed("D:-" + number), stored("03ff6466"));
}

/* ---- Flags, and records no operation makes ---- */

TEST(StoredOut, ZeroFlagIsOneExactly) {
    EXPECT_EQ(packed("R:1,0,19,19,1,z19.5.z20"), stored("0180"));
    EXPECT_EQ(packed("R:1,0,19,19,2,z19.5.z20"), stored("02c106"));
}

TEST(StoredOut, InfinityFlagIsOneExactly) {
    EXPECT_EQ(packed("R:1,1,19,19,0,z19.5.z20"), stored("02ff65"));
    EXPECT_EQ(packed("R:1,2,19,19,0,z19.5.z20"), stored("02c106"));
}

TEST(StoredOut, InfinityFlagDecidesBeforeTheZeroFlag) {
    EXPECT_EQ(packed("R:-1,1,-1,-1,1,z40"), stored("0100"));
}

TEST(StoredOut, NoSignificantPairGivesTheZeroForm) {
    /* 10^8 and 3 * 10^8 have four zero pairs. */
    EXPECT_EQ(packed("R:1,0,19,19,0,z19.100000000.z20"), stored("0180"));
    EXPECT_EQ(packed("R:-1,0,19,20,0,z19.100000000.300000000.z19"), stored("0180"));
    EXPECT_EQ(packed("R:1,0,19,20,0,z40"), stored("0180"));
    EXPECT_EQ(packed("R:1,0,20,19,0,z19.5.6.z19"), stored("0180"));
}

TEST(StoredOut, LimbAbove99999999LosesWhatDoesNotFitFourPairs) {
    /* 1 | 45320199: the exponent is that of a full limb, the pairs are 45 32 01 99 */
    EXPECT_EQ(packed("R:1,0,19,19,0,z19.145320199.z20"), stored("05c42e210264"));
}

TEST(StoredOut, QuotientOfTheLongDivisionIsPackedPairByPair) {
    /* 4 / 2.03 has the limbs 1, 97044335, 145320199, 100000003, 143349759, 60591138: pairs
     * 1 | 97 04 43 35 | 45 32 01 99 | 00 00 00 03 | 43 34 97 59 | 60 59 11, and 38 does not round up. */
    EXPECT_EQ(packed("R:1,0,19,24,0,z19.1.97044335.145320199.100000003.143349759.60591138.z15"), "15c102"
                                                                                                 "62052c24"
                                                                                                 "2e210264"
                                                                                                 "01010104"
                                                                                                 "2c23623c"
                                                                                                 "3d3c0c");
}

TEST(StoredOut, PackingWorksOnAPrivateCopy) {
    EXPECT_EQ(lines_of("QZCICalcNumToNumber D:1"),
              (Lines{"2|call function QZCICalcNumToNumber with num:S, number:O",
                     "2|call function QZCICalcNumAssign with num:A, opt:S",
                     "2|function QZCICalcNumAssign return with status 0",
                     "2|function QZCICalcNumToNumber return with status 0"}));
}

TEST(StoredOut, OverflowAndUnderflowWriteNoLineOfTheirOwn) {
    for (const char* const operand : {"D:1e126", "D:-1e126", "D:1e-130", "D:-99e-132", "D:0", "D:inf"}) {
        const Lines lines = lines_of(std::string("QZCICalcNumToNumber ") + operand);
        EXPECT_EQ(lines.size(), 4U) << operand;
        EXPECT_EQ(lines.back(), "2|function QZCICalcNumToNumber return with status 0") << operand;
    }
}

/* ---- Truncation to an integer ---- */

std::string truncated(const std::string& operand) {
    return result_of("QZCICalcNumToRound " + operand);
}

TEST(Truncation, GoesTowardZero) {
    EXPECT_EQ(truncated("D:2.7"), "1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(truncated("D:-2.7"), "-1,0,19,19,0,z19.2.z20");
}

TEST(Truncation, OfANegativeFractionIsAZeroOfSignMinusOne) {
    EXPECT_EQ(truncated("D:-0.7"), negative_zero);
    EXPECT_EQ(truncated("D:0.7"), positive_zero);
}

TEST(Truncation, FractionInTheLastLimbGoes) {
    EXPECT_EQ(truncated("R:1,0,0,39,0,5.z38.1"), "1,0,0,0,0,5.z39");
}

TEST(Truncation, NormalisesWhatItIsGiven) {
    EXPECT_EQ(truncated("R:0,0,7,99,9,z19.5.6.z19"), "1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(truncated("D:-inf"), negative_infinity);
    EXPECT_EQ(truncated("R:" + std::string(unsigned_zero)), positive_zero);
}

/* ---- Rounding to 38 fraction digits ---- */

std::string rounded(const std::string& operand) {
    return result_of("QZCICalcNumToRoundToOCINumber " + operand);
}

TEST(StorageRounding, FortyNinesAfterThePointBecomeOne) {
    EXPECT_EQ(rounded("D:0." + times("9", 40)), "1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(rounded("D:-0." + times("9", 40)), "-1,0,19,19,0,z19.1.z20");
}

TEST(StorageRounding, CarryOutOfTheIntegerLimbsIsAnInfinity) {
    EXPECT_EQ(rounded("R:1,0,0,24,0," + repeated("99999999", 25) + ".z15"), positive_infinity);
    EXPECT_EQ(rounded("R:-1,0,0,24,0," + repeated("99999999", 25) + ".z15"), negative_infinity);
}

TEST(StorageRounding, TheLastTwoDigitsOfLimb24Decide) {
    EXPECT_EQ(rounded(limbs({{19, 1}, {24, 12345649}, {25, 99999999}, {39, 99999999}})),
              "1,0,19,24,0,z19.1.z4.12345600.z15");
    EXPECT_EQ(rounded(limbs({{19, 1}, {24, 12345650}})), "1,0,19,24,0,z19.1.z4.12345700.z15");
    EXPECT_EQ(rounded(limbs({{19, 1}, {24, 12345649}}, -1)), "-1,0,19,24,0,z19.1.z4.12345600.z15");
    EXPECT_EQ(rounded(limbs({{19, 1}, {24, 12345650}}, -1)), "-1,0,19,24,0,z19.1.z4.12345700.z15");
}

TEST(StorageRounding, CarryStopsAtTheFirstLimbThatTakesIt) {
    EXPECT_EQ(rounded(limbs({{21, 5}, {22, 6}, {23, 99999999}, {24, 99999950}})), "1,0,21,22,0,z21.5.7.z17");
}

TEST(StorageRounding, CarryReachesLimb0) {
    EXPECT_EQ(rounded("R:1,0,0,24,0,5." + repeated("99999999", 24) + ".z15"), "1,0,0,0,0,6.z39");
}

TEST(StorageRounding, WhatIsBelowBecomesZero) {
    EXPECT_EQ(rounded(limbs({{25, 99999999}})), positive_zero);
    EXPECT_EQ(rounded(limbs({{24, 49}}, -1)), negative_zero);
    EXPECT_EQ(rounded(limbs({{24, 50}})), "1,0,24,24,0,z24.100.z15");
}

TEST(StorageRounding, ZeroAndInfinityAreLeftWithoutNormalising) {
    EXPECT_EQ(rounded("R:5,0,3,7,2,z24.77.5.z14"), "5,0,3,7,2,z24.77.5.z14");
    EXPECT_EQ(rounded("R:0,3,3,7,0,z24.77.5.z14"), "0,3,3,7,0,z24.77.5.z14");
}

TEST(StorageRounding, ExitTraceHasANameOfItsOwn) {
    const Lines expected = {"2|call function QZCICalcNumToRoundToOCINumber with num:R",
                            "2|function QZCICalcNumToRoundToFiveAfterDot return with status 0"};
    EXPECT_EQ(lines_of("QZCICalcNumToRoundToOCINumber D:1.5"), expected);
    EXPECT_EQ(lines_of("QZCICalcNumToRoundToOCINumber D:0"), expected);
    EXPECT_EQ(lines_of("QZCICalcNumToRoundToOCINumber D:inf"), expected);
}

} // namespace
} // namespace qzoci::test
