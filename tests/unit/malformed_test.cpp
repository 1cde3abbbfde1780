/* Records that no well-formed calculation makes: positions outside the limbs, limbs above 99999999, signs and
 * flags out of step. What can still be computed is computed literally; what cannot is an error, and nothing
 * outside memory is touched (the sanitizer builds see to that). */
#include "qzoci/oci_calc_number_internal.h"
#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;
using Array = std::vector<ub4>;

/* The value 5 with positions that lead outside the record. */
const std::string before_the_first_limb = "R:1,0,-1,19,0,z19.5.z20";
const std::string after_the_last_limb = "R:1,0,19,40,0,z19.5.z20";
const std::string far_outside = "R:1,0,-128,127,0,z19.5.z20";
const std::string all_outside[] = {before_the_first_limb, after_the_last_limb, far_outside};

std::string malformed(const std::string& operation) {
    return "5|" + operation + " get a malformed record";
}

void expect_malformed(const std::string& operation, const std::string& operands) {
    expect_failure(operation + " " + operands, OCI_ERROR, {malformed(operation)});
}

/* ---- Positions outside the limbs ---- */

TEST(MalformedPositions, AreAnErrorOfASum) {
    for (const std::string& outside : all_outside) {
        expect_malformed("QZCICalcNumAdd", outside + " D:1");
        expect_malformed("QZCICalcNumAdd", "D:1 " + outside);
    }
    EXPECT_EQ(lines_of("QZCICalcNumAdd D:1 " + far_outside),
              (Lines{"2|call function QZCICalcNumAdd with augend:A, addend:B, sum:R",
                     malformed("QZCICalcNumAdd"), "2|function QZCICalcNumAdd return with status -1"}));
}

TEST(MalformedPositions, AreAnErrorOfADifference) {
    for (const std::string& outside : all_outside) {
        expect_malformed("QZCICalcNumSub", outside + " D:1");
        expect_malformed("QZCICalcNumSub", "D:1 " + outside);
        expect_malformed("QZCICalcNumSub", outside + " D:5");
    }
    EXPECT_EQ(lines_of("QZCICalcNumSub D:1 " + far_outside).back(),
              "2|function QZCICalcNumSub return with status -1");
}

TEST(MalformedPositions, FailTheSumAndTheDifferenceThatHandOver) {
    expect_failure("QZCICalcNumAdd D:-1 " + far_outside, OCI_ERROR,
                   {malformed("QZCICalcNumSub"), "5|augend:A - (-addend):B QZCICalcNumSub error:-1"});
    expect_failure("QZCICalcNumSub D:-1 " + far_outside, OCI_ERROR,
                   {malformed("QZCICalcNumAdd"), "5|minuend:A - (-addend):B QZCICalcNumSub error:-1"});
}

TEST(MalformedPositions, AreAnErrorOfAProduct) {
    for (const std::string& outside : {before_the_first_limb, after_the_last_limb}) {
        expect_malformed("QZCICalcNumMul", outside + " D:2");
        expect_malformed("QZCICalcNumMul", "D:2.5 " + outside);
    }
    /* The count of limbs wraps in a signed byte, here to 2, and the positions cross. */
    expect_malformed("QZCICalcNumMul", "R:1,0,127,-128,0,z19.5.z20 D:2");
    expect_malformed("QZCICalcNumMul", "D:2.5 R:1,0,127,-128,0,z19.5.z20");
    EXPECT_EQ(lines_of("QZCICalcNumMul D:2 " + after_the_last_limb).back(),
              "2|function QZCICalcNumMul return with status -1");
}

TEST(MalformedPositions, AreAnErrorOfAnIntegerProduct) {
    for (const std::string& outside : all_outside) {
        expect_malformed("QZCICalcNumMulWhitInterge", outside + " 2");
    }
    EXPECT_EQ(lines_of("QZCICalcNumMulWhitInterge " + far_outside + " 2").back(),
              "2|function QZCICalcNumMulWhitInterge return with status -1");
}

TEST(MalformedPositions, AreAnErrorOfASingleLimbQuotient) {
    const std::string operation = "QZCICaclNumDivOneDivisor";
    for (const std::string& outside : all_outside) {
        expect_malformed(operation, outside + " D:2");
    }
    for (const char* const divisor : {"R:1,0,-1,-1,0,z19.5.z20", "R:1,0,40,40,0,z19.5.z20"}) {
        expect_malformed(operation, std::string("D:1 ") + divisor);
    }
    EXPECT_EQ(lines_of(operation + " D:1 D:0").back(),
              "2|function QZCICaclNumDivOneDivisor return with status -1");
}

TEST(MalformedPositions, AreAnErrorOfASingleLimbRemainder) {
    const std::string operation = "QZCICaclNumModOneDivsor";
    for (const std::string& outside : all_outside) {
        expect_malformed(operation, outside + " D:2");
    }
    for (const char* const divisor : {"R:1,0,-1,-1,0,z19.5.z20", "R:1,0,40,40,0,z19.5.z20"}) {
        expect_malformed(operation, std::string("D:1 ") + divisor);
    }
    EXPECT_EQ(lines_of(operation + " D:1 D:0").back(),
              "2|function QZCICaclNumModOneDivsor return with status -1");
}

TEST(MalformedPositions, AreAnErrorOfALongQuotient) {
    expect_malformed("QZCICalcNumDiv", before_the_first_limb + " " + limbs({{0, 1}, {1, 5}}));
    expect_malformed("QZCICalcNumDiv", after_the_last_limb + " D:1.5");
    for (const std::string& outside : all_outside) {
        expect_malformed("QZCICalcNumDiv", "D:1 " + outside);
    }
    /* A divisor that ends before it starts has no top limb. */
    expect_malformed("QZCICalcNumDiv", "D:1 R:1,0,20,19,0,z19.2.5.z19");
}

TEST(MalformedPositions, FailTheQuotientThatTakesTheSingleLimbSteps) {
    const Lines kept = {malformed("QZCICaclNumDivOneDivisor"),
                        "5|multiplicand:A / multiplier:B QZCICaclNumDivOneDivisor error:-1"};
    expect_failure("QZCICalcNumDiv " + far_outside + " D:2", OCI_ERROR, kept);
    expect_failure("QZCICalcNumDiv D:1 R:1,0,-1,-1,0,z19.5.z20", OCI_ERROR, kept);
}

TEST(MalformedPositions, AreAnErrorOfALongRemainder) {
    /* The divisor ends before it starts. */
    expect_malformed("QZCICalcNumMod", "D:7 R:1,0,20,19,0,z19.2.5.z19");
    EXPECT_EQ(lines_of("QZCICalcNumMod D:7 R:1,0,20,19,0,z19.2.5.z19").back(),
              "2|function QZCICalcNumMod return with status -1");
}

/* Limb 19 tells the magnitudes apart; limb 40 is only met when the dividend's lower limbs are taken over. */
TEST(MalformedPositions, OfADividendThatEndsOutsideFailTheRemainder) {
    const std::string dividend = "R:1,0,19,40,0,z19.7.z20";
    expect_failure("QZCICalcNumMod " + dividend + " D:3", OCI_ERROR,
                   {malformed("QZCICaclNumModOneDivsor"),
                    "5|multiplicand:A mod multiplier:B QZCICaclNumModOneDivsor error:-1"});
    expect_malformed("QZCICalcNumMod", dividend + " D:2.5");
}

TEST(MalformedPositions, AreAnErrorOfPacking) {
    expect_malformed("QZCICalcNumToNumber", before_the_first_limb);
    expect_malformed("QZCICalcNumToNumber", after_the_last_limb);
    expect_malformed("QZCICalcNumToNumber", "R:1,0,40,40,0,z19.5.z20");
    /* An infinity flag of 2 is none here. */
    expect_malformed("QZCICalcNumToNumber", "R:1,2,-1,-1,0,z40");
    EXPECT_EQ(lines_of("QZCICalcNumToNumber " + far_outside).back(),
              "2|function QZCICalcNumToNumber return with status -1");
}

/* The leading pair alone decides; the last position is not looked at. */
TEST(MalformedPositions, OfTheLastLimbDoNotMatterWhereTheExponentIsOutOfRange) {
    EXPECT_EQ(out_of("QZCICalcNumToNumber R:1,0,0,45,0,1.z39"), "02ff65" + times("ee", 19));
    EXPECT_EQ(out_of("QZCICalcNumToNumber R:-1,0,0,45,0,1.z39"), "0100" + times("ee", 20));
    EXPECT_EQ(out_of("QZCICalcNumToNumber R:1,0,39,45,0,z39.1"), "0180" + times("ee", 20));
}

TEST(MalformedPositions, AreAnErrorOfTheTextForm) {
    for (const std::string& outside : {before_the_first_limb, after_the_last_limb}) {
        expect_malformed("QZCICalcNumToStr", outside + " 512");
    }
    EXPECT_EQ(lines_of("QZCICalcNumToStr " + after_the_last_limb + " 512"),
              (Lines{"2|call function QZCICalcNumToStr with num:A, buf:T, buf_len:512",
                     malformed("QZCICalcNumToStr"),
                     "2|num:A to_str is:", "2|function QZCICalcNumToStr return with status -1"}));
}

TEST(MalformedPositions, CompareEqualWhereTheComparisonWouldLeaveTheRecord) {
    const std::string operands[] = {before_the_first_limb + " D:1", "D:1 " + before_the_first_limb,
                                    far_outside + " D:1", after_the_last_limb + " D:5",
                                    "D:5 " + after_the_last_limb};
    for (const char* const operation :
         {"QZCICalcNumCompare ", "QZCICalcNumAbsCompare ", "QZCICalcNumCompareAbs "}) {
        for (const std::string& both : operands) {
            EXPECT_EQ(status_of(operation + both), 0) << operation << both;
        }
    }
    EXPECT_EQ(result_of("QZCICalcNumMod " + before_the_first_limb + " D:3"), positive_zero);
}

TEST(MalformedPositions, DoNotMatterToAComparisonDecidedBeforeThem) {
    const std::string larger_first = after_the_last_limb + " D:1";
    const std::string larger_second = "D:1 " + after_the_last_limb;
    for (const char* const operation :
         {"QZCICalcNumCompare ", "QZCICalcNumAbsCompare ", "QZCICalcNumCompareAbs "}) {
        EXPECT_EQ(status_of(operation + larger_first), 1) << operation;
        EXPECT_EQ(status_of(operation + larger_second), -1) << operation;
    }
}

TEST(MalformedPositions, DoNotMatterWhereNoLimbIsReached) {
    const std::string fields = "1,0,-128,127,0,z19.5.z20";
    EXPECT_EQ(result_of("QZCICalcNumAssign R:" + fields), fields);
    EXPECT_EQ(result_of("QZCICalcNumNeg R:" + fields), "-1,0,-128,127,0,z19.5.z20");
    EXPECT_EQ(result_of("QZCICalcNumToZero R:" + fields), unsigned_zero);
    EXPECT_EQ(result_of("QZCICalcNumToInfinity R:" + fields + " 1"), positive_infinity);
    EXPECT_EQ(result_of("QZCICalcNumToRound R:" + fields), "1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(result_of("QZCICalcNumToRoundToOCINumber R:" + fields), "1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(result_of("QZCICalcNumAdd D:0 R:" + fields), fields);
    EXPECT_EQ(result_of("QZCICalcNumMul D:0 R:" + fields), unsigned_zero);
    EXPECT_EQ(result_of("QZCICalcNumMulWhitInterge R:" + fields + " 0"), positive_zero);
    EXPECT_EQ(result_of("QZCICalcNumDiv R:" + fields + " D:inf"), unsigned_zero);
    EXPECT_EQ(result_of("QZCICalcNumMod R:" + fields + " D:inf"), fields);
}

/* An end position above 19 is a fraction for ceiling and floor, which do not look further. */
TEST(MalformedPositions, OfALastLimbCountAsAFraction) {
    EXPECT_EQ(result_of("QZCICalcNumCeil " + after_the_last_limb), "1,0,19,19,0,z19.6.z20");
    EXPECT_EQ(result_of("QZCICalcNumFloor " + after_the_last_limb), "1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(result_of("QZCICalcNumFloor R:-1,0,19,40,0,z19.5.z20"), "-1,0,19,19,0,z19.6.z20");
}

/* The difference of the first positions alone decides that the quotient is out of range. */
TEST(MalformedPositions, FarEnoughApartMakeAQuotientInfinite) {
    EXPECT_EQ(result_of("QZCICalcNumDiv D:1e152 R:1,0,50,60,0,z40"), positive_infinity);
    EXPECT_EQ(kept_lines_of("QZCICalcNumDiv D:1e152 R:1,0,50,60,0,z40"),
              (Lines{"5|dividend:A / divisor:B QZCICalcNumDiv exceed set to num_infinity:0"}));
}

/* At most forty limbs of the dividend are read, from its first one on. */
TEST(MalformedPositions, BeyondTheFortiethQuotientLimbAreNotReached) {
    EXPECT_EQ(result_of("QZCICaclNumDivOneDivisor R:1,0,0,45,0,1.z39 D:1e152"), "1,0,19,19,0,z19.1.z20");
}

/* Without significant limbs the loops do not run. */
TEST(MalformedPositions, ThatCrossLeaveNothingToDo) {
    EXPECT_EQ(result_of("QZCICalcNumAdd R:1,0,20,19,0,z19.5.6.z19 R:1,0,20,19,0,z19.5.6.z19"), positive_zero);
    EXPECT_EQ(result_of("QZCICalcNumMulWhitInterge R:1,0,20,19,0,z19.5.6.z19 2"), positive_zero);
    EXPECT_EQ(result_of("QZCICaclNumDivOneDivisor R:1,0,20,19,0,z19.5.6.z19 D:2"), positive_zero);
}

/* The limb products' exponent counts from the last positions: 80 and more places below the last limb. */
TEST(MalformedPositions, FarBelowTheRecordMakeAProductInfinite) {
    const std::string operands = "R:1,0,100,99,0,z40 R:-1,0,100,99,0,z40";
    EXPECT_EQ(result_of("QZCICalcNumMul " + operands), negative_infinity);
    const Lines lines = lines_of("QZCICalcNumMul " + operands);
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[2], "2|exceed min precision to calc in QZCICalcNumMul :need -160 * -1 <= 20");
    EXPECT_EQ(
        lines[3],
        "2|exceed max precision to calc in QZCICalcNumMul :need -1 + -160 < 20, set to infinity number");
    EXPECT_EQ(result_of("QZCICalcNumMul R:1,0,70,69,0,z40 R:-1,0,70,69,0,z40"), negative_infinity);
    EXPECT_EQ(result_of("QZCICalcNumMul R:1,0,70,69,0,z40 R:-1,0,69,68,0,z40"), negative_zero);
}

/* ---- Limbs above 99999999 ---- */

TEST(OversizedLimbs, LoseTheBaseOnceInASum) {
    /* 2 * 4294967295 - 10^8 = 8489934590, of which the low 32 bits are 4194967294. */
    const std::string all_ones = "R:1,0,19,19,0,z19.4294967295.z20";
    EXPECT_EQ(result_of("QZCICalcNumAdd " + all_ones + " " + all_ones), "1,0,18,19,0,z18.1.4194967294.z20");
    EXPECT_EQ(result_of("QZCICalcNumAdd R:1,0,19,19,0,z19.250000000.z20 D:1"),
              "1,0,18,19,0,z18.1.150000001.z20");
}

TEST(OversizedLimbs, BorrowOnceInADifference) {
    EXPECT_EQ(result_of("QZCICalcNumSub R:1,0,19,19,0,z19.250000000.z20 D:1"),
              "1,0,19,19,0,z19.249999999.z20");
    /* 0 - 250000000 + 10^8 = -150000000, modulo 2^32. */
    EXPECT_EQ(result_of("QZCICalcNumSub D:100000000 R:1,0,19,19,0,z19.250000000.z20"),
              "1,0,19,19,0,z19.4144967296.z20");
}

/* The larger magnitude is found in limb 19, but the positions say that limb 20 is the only one. */
TEST(OversizedLimbs, AndLimbsOutsideThePositionsCanLeaveABorrow) {
    const std::string hidden = ",0,20,20,0,z19.1.z20 ";
    const std::string request = "QZCICalcNumSub R:1" + hidden + limbs({{20, 5}});
    EXPECT_EQ(result_of(request), positive_infinity);
    EXPECT_EQ(kept_lines_of(request),
              (Lines{"out|sub set infinity to one with carry", "5|minuend:A - addend:B has overflow:-1"}));
    EXPECT_EQ(result_of("QZCICalcNumSub R:-1" + hidden + limbs({{20, 5}}, -1)), negative_infinity);
}

/* 4294967295^2 is -8589934591 in 64 bits: quotient -85 and remainder -89934591 by 10^8, modulo 2^32. */
TEST(OversizedLimbs, WrapInAProduct) {
    const std::string all_ones = "R:1,0,19,19,0,z19.4294967295.z20";
    EXPECT_EQ(result_of("QZCICalcNumMul " + all_ones + " " + all_ones),
              "1,0,18,19,0,z18.4294967211.4205032705.z20");
    EXPECT_EQ(lines_of("QZCICalcNumMul " + all_ones + " " + all_ones)[1],
              "2|QZCICalcNumMul:B x A result:0, 4205032705");
    EXPECT_EQ(result_of("QZCICalcNumMulWhitInterge " + all_ones + " 4294967295"),
              "1,0,18,19,0,z18.4294967211.4205032705.z20");
}

/* 9 * 10^18: the carry 9 * 10^10 less 10^8 is 89900000000, 4000654080 modulo 2^32, and 1 goes on. The limb
 * above the product is then occupied and counts in its length. */
TEST(OversizedLimbs, CanFillTheLimbAboveAProduct) {
    const std::string three_billion = "R:1,0,19,19,0,z19.3000000000.z20";
    EXPECT_EQ(result_of("QZCICalcNumMul " + three_billion + " " + three_billion),
              "1,0,17,18,0,z17.1.4000654080.z21");
    EXPECT_EQ(lines_of("QZCICalcNumMul " + three_billion + " " + three_billion)[2],
              "2|QZCICalcNumMul new_len:2 exp_sum: 0");
}

TEST(OversizedLimbs, ThatCarryPastTheProductAreAnError) {
    const std::string full = "R:1,0,0,39,0,3000000000.z38.1";
    expect_malformed("QZCICalcNumMul", full + " " + full);
}

TEST(OversizedLimbs, DivideBySingleLimbs) {
    EXPECT_EQ(result_of("QZCICalcNumDiv R:1,0,19,19,0,z19.250000000.z20 D:2"),
              "1,0,19,19,0,z19.125000000.z20");
    /* 1 / 200000000: the digits 0, 0 and 50000000 */
    EXPECT_EQ(result_of("QZCICalcNumDiv D:1 R:1,0,19,19,0,z19.200000000.z20"),
              "1,0,21,21,0,z21.50000000.z18");
    /* The start of 4 / 2.03, halved: 0, 98522167 rest 1, (10^8 + 145320199) / 2 = 122660099 rest 1, 50000000
     */
    EXPECT_EQ(result_of("QZCICalcNumDiv R:1,0,19,21,0,z19.1.97044335.145320199.z18 D:2"),
              "1,0,20,22,0,z20.98522167.122660099.50000000.z17");
    EXPECT_EQ(result_of("QZCICalcNumMod R:1,0,19,19,0,z19.250000001.z20 D:2"), "1,0,19,19,0,z19.1.z20");
}

/* The first digit goes below zero; limb by limb from the steps, on big integers. */
TEST(OversizedLimbs, DivideByLongDivisionAsTheyStand) {
    EXPECT_EQ(result_of("QZCICalcNumDiv D:1 R:1,0,19,21,0,z19.1.4294967295.1.z18"),
              "1,0,19,39,0,z19.4294967295.48709346.35473093.32722010.45065997.69606481.71753114."
              "95393890.69457462.10720166.83896926.35003133.81330480.91474452.77255100.18757529."
              "16787864.24791127.57456134.24656105.74606303");
}

TEST(OversizedLimbs, ThatMakeTheNormalisingFactorZeroAreAnError) {
    expect_malformed("QZCICalcNumDiv", "D:1 R:1,0,19,20,0,z19.100000000.1.z19");
    expect_malformed("QZCICalcNumMod", "D:500000000 R:1,0,19,20,0,z19.100000000.1.z19");
}

/* More than two million refinements of the second digit would be due. */
TEST(OversizedLimbs, ThatRefineWithoutEndAreAnError) {
    expect_malformed("QZCICalcNumDiv", "D:1 R:1,0,19,21,0,z19.99999999.4294967295.1.z18");
}

TEST(OversizedLimbs, GiveNoTrialDigitWhereTheyDoNotSettle) {
    Array u = {0, 0, 0, 99999999};
    Array v = {0, 4294967295, 1};
    EXPECT_EQ(knuth_calc_delta(0, 3, u.data(), v.data()), 0U);
}

/* ---- Zero limbs where a divisor needs one ---- */

TEST(ZeroLimbs, OfASingleLimbDivisorAreAnError) {
    const std::string zero_limb = "R:1,0,19,19,0,z40";
    expect_malformed("QZCICaclNumDivOneDivisor", "D:1 " + zero_limb);
    expect_malformed("QZCICaclNumModOneDivsor", "D:1 " + zero_limb);
    expect_failure("QZCICalcNumMod D:7 " + zero_limb, OCI_ERROR,
                   {malformed("QZCICaclNumModOneDivsor"),
                    "5|multiplicand:A mod multiplier:B QZCICaclNumModOneDivsor error:-1"});
}

TEST(ZeroLimbs, OfASingleLimbDivisorDoNotMatterWhereNothingIsDivided) {
    EXPECT_EQ(result_of("QZCICaclNumDivOneDivisor R:1,0,20,19,0,z40 R:1,0,19,19,0,z40"), positive_zero);
    EXPECT_EQ(result_of("QZCICaclNumModOneDivsor D:0.25 R:1,0,19,19,0,z40"), "1,0,20,20,0,z20.25000000.z19");
}

TEST(ZeroLimbs, OnTopOfALongDivisorAreAnError) {
    expect_malformed("QZCICalcNumDiv", "D:1 R:1,0,19,21,0,z21.1.z18");
    expect_malformed("QZCICalcNumMod", "D:100000000 R:1,0,19,21,0,z21.1.z18");
}

/* Only a digit after the one that rounds meets the zero. */
TEST(ZeroLimbs, OnTopOfALongDivisorAreAnErrorHoweverLateTheyAreMet) {
    expect_malformed("QZCICalcNumDiv", "D:1e-160 R:1,0,5,7,0,z7.1.z32");
}

TEST(ZeroLimbs, OnTopOfADivisorGiveNoTrialDigit) {
    Array u = {0, 0, 1};
    Array v = {1, 0};
    EXPECT_EQ(knuth_calc_delta(0, 2, u.data(), v.data()), 0U);
}

} // namespace
} // namespace qzoci::test
