#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <string>

namespace qzoci::test {
namespace {

std::string normalised(const std::string& fields) {
    return result_of("QZCICalcNumInit R:" + fields);
}

std::string from_int(const std::string& integer) {
    return result_of("initCalcNumberFromInt " + integer);
}

sb8 compare(const std::string& num1, const std::string& num2) {
    return status_of("QZCICalcNumCompare " + num1 + " " + num2);
}

sb8 abs_compare(const std::string& num1, const std::string& num2) {
    return status_of("QZCICalcNumAbsCompare " + num1 + " " + num2);
}

sb8 compare_abs(const std::string& num1, const std::string& num2) {
    return status_of("QZCICalcNumCompareAbs " + num1 + " " + num2);
}

/* ---- Normal form ---- */

TEST(Normaliser, SignBytesOtherThanMinusOneBecomeOne) {
    for (const char* const sign : {"0", "5", "1", "-2", "127"}) {
        EXPECT_EQ(normalised(std::string(sign) + ",0,0,0,0,z19.3.z20"), "1,0,19,19,0,z19.3.z20") << sign;
        EXPECT_EQ(normalised(std::string(sign) + ",0,0,0,0,z40"), positive_zero) << sign;
    }
}

TEST(Normaliser, KeepsTheSignMinusOne) {
    EXPECT_EQ(normalised("-1,0,0,0,0,z19.3.z20"), "-1,0,19,19,0,z19.3.z20");
}

TEST(Normaliser, KeepsTheSignMinusOneOfAZero) {
    EXPECT_EQ(normalised("-1,0,0,0,0,z40"), negative_zero);
}

TEST(Normaliser, ClearsStrayLimbsOfAnInfinity) {
    EXPECT_EQ(normalised("1,1,3,7,1,z3.1.2.3.4.5.z31.6"), positive_infinity);
    EXPECT_EQ(normalised("-1,1,3,7,1,z3.1.2.3.4.5.z31.6"), negative_infinity);
}

TEST(Normaliser, InfinityFlagOtherThanOneIsAnInfinityAndIsKept) {
    EXPECT_EQ(normalised("1,2,3,7,1,z3.1.z36"), "1,2,-1,-1,0,z40");
    EXPECT_EQ(normalised("1,-1,3,7,1,z40"), "1,-1,-1,-1,0,z40");
}

TEST(Normaliser, FindsThePositionsOfTheOutermostLimbs) {
    EXPECT_EQ(normalised("1,0,9,9,1,1.z39"), "1,0,0,0,0,1.z39");
    EXPECT_EQ(normalised("1,0,9,9,1,z39.1"), "1,0,39,39,0,z39.1");
    EXPECT_EQ(normalised("1,0,9,9,1,z2.7.z30.8.z6"), "1,0,2,33,0,z2.7.z30.8.z6");
}

TEST(Normaliser, LeavesLimbsAbove99999999) {
    EXPECT_EQ(normalised("1,0,0,0,0,z20.4294967295.z18.100000000"),
              "1,0,20,39,0,z20.4294967295.z18.100000000");
}

TEST(Normaliser, TakesANullPointer) {
    QZCICalcNumInit(nullptr);
}

/* ---- Creation ---- */

TEST(NullValue, IsTheCanonicalZero) {
    EXPECT_EQ(result_of("initNullValue"), positive_zero);
}

TEST(NullValue, TakesANullPointer) {
    initNullValue(nullptr);
}

TEST(FromInt, SplitsANegativeIntegerIntoLimbs) {
    EXPECT_EQ(from_int("-123456789012"), "-1,0,18,19,0,z18.1234.56789012.z20");
}

TEST(FromInt, ZeroIsTheCanonicalZero) {
    EXPECT_EQ(from_int("0"), positive_zero);
}

TEST(FromInt, TrailingZeroLimbsAreNotSignificant) {
    EXPECT_EQ(from_int("100000000"), "1,0,18,18,0,z18.1.z21");
}

TEST(FromInt, TakesTheWholeRange) {
    /* 2^63 - 1 = 922 33720368 54775807 */
    EXPECT_EQ(from_int("9223372036854775807"), "1,0,17,19,0,z17.922.33720368.54775807.z20");
    EXPECT_EQ(from_int("-9223372036854775807"), "-1,0,17,19,0,z17.922.33720368.54775807.z20");
}

TEST(FromInt, MostNegativeIntegerHasItsTrueValue) {
    EXPECT_EQ(from_int("-9223372036854775808"), "-1,0,17,19,0,z17.922.33720368.54775808.z20");
}

TEST(FromInt, TakesANullPointer) {
    initCalcNumberFromInt(nullptr, 5);
}

/* ---- Copy, sign, zero, infinity ---- */

TEST(Assign, CopiesEveryFieldWithoutNormalising) {
    EXPECT_EQ(result_of("QZCICalcNumAssign R:5,-3,100,-100,9,1.z38.4294967295"),
              "5,-3,100,-100,9,1.z38.4294967295");
}

TEST(Neg, TurnsOneIntoMinusOneAndBack) {
    EXPECT_EQ(result_of("QZCICalcNumNeg D:5"), "-1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(result_of("QZCICalcNumNeg D:-5"), "1,0,19,19,0,z19.5.z20");
}

TEST(Neg, LeavesASignOfZero) {
    EXPECT_EQ(result_of("QZCICalcNumNeg R:0,0,19,19,0,z19.5.z20"), "0,0,19,19,0,z19.5.z20");
}

TEST(Neg, ChangesNothingButTheSign) {
    EXPECT_EQ(result_of("QZCICalcNumNeg R:3,4,100,-100,6,1.z38.7"), "-3,4,100,-100,6,1.z38.7");
}

TEST(Neg, OfAZeroIsAZeroOfSignMinusOneThatComparesEqual) {
    EXPECT_EQ(result_of("QZCICalcNumNeg D:0"), negative_zero);
    const std::string turned = "R:" + result_of("QZCICalcNumNeg D:0");
    const std::string canonical = "R:" + result_of("initNullValue");
    EXPECT_EQ(compare(turned, canonical), 0);
    EXPECT_EQ(compare(canonical, turned), 0);
}

TEST(Neg, TurnsAnInfinity) {
    EXPECT_EQ(result_of("QZCICalcNumNeg D:inf"), negative_infinity);
    EXPECT_EQ(result_of("QZCICalcNumNeg D:-inf"), positive_infinity);
}

TEST(ToZero, LeavesSignZeroThatTheNormaliserTurnsIntoOne) {
    EXPECT_EQ(result_of("QZCICalcNumToZero D:-5.25"), unsigned_zero);
    EXPECT_EQ(normalised(result_of("QZCICalcNumToZero D:-5.25")), positive_zero);
}

TEST(ToZero, CopiesKeepTheSignZero) {
    EXPECT_EQ(result_of("QZCICalcNumAssign R:" + result_of("QZCICalcNumToZero D:7")), unsigned_zero);
}

TEST(ToZero, ClearsEveryField) {
    EXPECT_EQ(result_of("QZCICalcNumToZero R:7,7,7,7,7," + repeated("77777777", 40)), unsigned_zero);
}

TEST(ToInfinity, ClearsEveryField) {
    EXPECT_EQ(result_of("QZCICalcNumToInfinity R:7,7,7,7,7," + repeated("77777777", 40) + " 1"),
              positive_infinity);
    EXPECT_EQ(result_of("QZCICalcNumToInfinity D:0 -1"), negative_infinity);
}

TEST(ToInfinity, StoresAnySignByteAsItIs) {
    EXPECT_EQ(result_of("QZCICalcNumToInfinity D:1 0"), "0,1,-1,-1,0,z40");
    EXPECT_EQ(result_of("QZCICalcNumToInfinity D:1 5"), "5,1,-1,-1,0,z40");
    EXPECT_EQ(result_of("QZCICalcNumToInfinity D:1 -128"), "-128,1,-1,-1,0,z40");
}

/* ---- Constants ---- */

TEST(Constants, PiIsTruncatedTo160FractionDigits) {
    /* The digits of pi after the 160th are 8410...: rounded, the last limb would be 11174503. */
    EXPECT_EQ(
        result_of("QZCICalcNumSetPi"),
        "1,0,19,39,0,z19.3.14159265.35897932.38462643.38327950.28841971.69399375.10582097.49445923.7816406."
        "28620899.86280348.25342117.6798214.80865132.82306647.9384460.95505822.31725359.40812848.11174502");
}

TEST(Constants, DoublePiIsTwiceTheTruncatedPiAndEndsIn22349004) {
    EXPECT_EQ(result_of("QZCICalcNumSetPiDouble"),
              "1,0,19,39,0,z19.6.28318530.71795864.76925286.76655900.57683943.38798750.21164194.98891846."
              "15632812.57241799.72560696.50684234.13596429.61730265.64613294.18768921.91011644.63450718."
              "81625696.22349004");
}

TEST(Constants, HalfPiIsHalfTheTruncatedPi) {
    EXPECT_EQ(result_of("QZCICalcNumSetPiHalf"),
              "1,0,19,39,0,z19.1.57079632.67948966.19231321.69163975.14420985.84699687.55291048.74722961."
              "53908203.14310449.93140174.12671058.53399107.40432566.41153323.54692230.47752911.15862679."
              "70406424.5587251");
}

/* Limb by limb from the last one, with the carry of schoolbook doubling. */
TEST(Constants, TwiceHalfPiIsPiAndTwicePiIsDoublePi) {
    const auto doubled = [](QZCICalcNumber num) {
        ub4 carry = 0;
        for (int i = QZCI_CALC_LIMBS - 1; i >= 0; --i) {
            const ub4 value = 2 * num.data_part[i] + carry;
            num.data_part[i] = value % 100000000;
            carry = value / 100000000;
        }
        return num;
    };
    QZCICalcNumber half;
    QZCICalcNumber whole;
    QZCICalcNumber two;
    QZCICalcNumSetPiHalf(&half);
    QZCICalcNumSetPi(&whole);
    QZCICalcNumSetPiDouble(&two);
    EXPECT_EQ(doubled(half), whole);
    EXPECT_EQ(doubled(whole), two);
}

TEST(Constants, TakeANullPointer) {
    QZCICalcNumSetPi(nullptr);
    QZCICalcNumSetPiDouble(nullptr);
    QZCICalcNumSetPiHalf(nullptr);
}

TEST(Pow100, IsTheWeightOfEachPairOfALimb) {
    EXPECT_EQ(status_of("pow_100 0"), 1);
    EXPECT_EQ(status_of("pow_100 1"), 100);
    EXPECT_EQ(status_of("pow_100 2"), 10000);
    EXPECT_EQ(status_of("pow_100 3"), 1000000);
}

/* ---- Comparison ---- */

TEST(Comparison, InfinitiesOfEqualSignAreEqual) {
    EXPECT_EQ(compare("D:inf", "D:inf"), 0);
    EXPECT_EQ(compare("D:-inf", "D:-inf"), 0);
}

TEST(Comparison, NegativeInfinityIsBelowMinusFive) {
    EXPECT_EQ(compare("D:-inf", "D:-5"), -1);
    EXPECT_EQ(compare("D:-5", "D:-inf"), 1);
}

TEST(Comparison, ZeroIsAboveMinusThree) {
    EXPECT_EQ(compare("D:0", "D:-3"), 1);
    EXPECT_EQ(compare("D:-3", "D:0"), -1);
}

TEST(Comparison, MagnitudeOfZeroIsBelowThatOfMinusThree) {
    EXPECT_EQ(abs_compare("D:0", "D:-3"), -1);
    EXPECT_EQ(abs_compare("D:-3", "D:0"), 1);
    EXPECT_EQ(compare_abs("D:0", "D:-3"), -1);
    EXPECT_EQ(compare_abs("D:-3", "D:0"), 1);
}

TEST(Comparison, NullArgumentComparesEqual) {
    for (const char* const operation :
         {"QZCICalcNumCompare", "QZCICalcNumAbsCompare", "QZCICalcNumCompareAbs"}) {
        for (const char* const arguments : {" N D:3", " D:3 N", " N N"}) {
            EXPECT_EQ(status_of(std::string(operation) + arguments), 0) << operation << arguments;
        }
    }
}

TEST(Comparison, SignsDecideBeforeMagnitudes) {
    EXPECT_EQ(compare("D:1", "D:-100"), 1);
    EXPECT_EQ(compare("D:-100", "D:1"), -1);
    EXPECT_EQ(compare("D:-inf", "D:inf"), -1);
    EXPECT_EQ(compare("D:inf", "D:-inf"), 1);
}

TEST(Comparison, MagnitudesOrderWithinOneSign) {
    EXPECT_EQ(compare("D:2", "D:3"), -1);
    EXPECT_EQ(compare("D:-2", "D:-3"), 1);
    EXPECT_EQ(compare("D:1e-160", "D:2e-160"), -1);
    EXPECT_EQ(compare("D:100000000", "D:99999999.99999999"), 1);
    EXPECT_EQ(compare("D:7.25", "D:7.25"), 0);
}

TEST(Comparison, InfinityIsAboveEveryFiniteMagnitude) {
    EXPECT_EQ(compare("D:inf", "D:9e159"), 1);
    EXPECT_EQ(compare("D:9e159", "D:inf"), -1);
    EXPECT_EQ(abs_compare("D:-inf", "D:9e159"), 1);
    EXPECT_EQ(abs_compare("D:9e159", "D:-inf"), -1);
    EXPECT_EQ(abs_compare("D:inf", "D:-inf"), 0);
    EXPECT_EQ(compare_abs("D:inf", "D:-inf"), 0);
}

TEST(Comparison, MagnitudesIgnoreSigns) {
    EXPECT_EQ(abs_compare("D:-3", "D:3"), 0);
    EXPECT_EQ(abs_compare("D:-3", "D:2"), 1);
    EXPECT_EQ(abs_compare("D:2", "D:-3"), -1);
    EXPECT_EQ(compare_abs("D:-3", "D:3"), 0);
    EXPECT_EQ(compare_abs("D:-3", "D:2"), 1);
    EXPECT_EQ(compare_abs("D:2", "D:-3"), -1);
}

/* The one difference between the two comparisons of magnitudes. */
TEST(Comparison, CompareAbsReturnsTheInfinityFlagItself) {
    const std::string flag_of_three = "R:1,3,-1,-1,0,z40";
    EXPECT_EQ(compare_abs(flag_of_three, "D:5"), 3);
    EXPECT_EQ(compare_abs("D:5", flag_of_three), -3);
    EXPECT_EQ(abs_compare(flag_of_three, "D:5"), 1);
    EXPECT_EQ(abs_compare("D:5", flag_of_three), -1);
}

TEST(Comparison, CompareMultipliesTheInfinityFlagByTheSign) {
    EXPECT_EQ(compare("R:1,3,-1,-1,0,z40", "D:5"), 3);
    EXPECT_EQ(compare("D:5", "R:1,3,-1,-1,0,z40"), -3);
    EXPECT_EQ(compare("R:-1,3,-1,-1,0,z40", "D:-5"), -3);
    EXPECT_EQ(compare("D:-5", "R:-1,3,-1,-1,0,z40"), 3);
}

TEST(Comparison, ZeroFlagDecidesBeforeTheInfinityFlagAndTheLimbs) {
    EXPECT_EQ(compare("R:1,1,-1,-1,1,z40", "D:0"), 0);
    EXPECT_EQ(abs_compare("R:1,1,19,19,2,z19.9.z20", "D:5"), -1);
    EXPECT_EQ(abs_compare("D:5", "R:1,1,19,19,2,z19.9.z20"), 1);
}

TEST(Comparison, AgainstAZeroTheSignByteOfTheOtherIsTheResult) {
    EXPECT_EQ(compare("D:0", "R:5,0,19,19,0,z19.3.z20"), -5);
    EXPECT_EQ(compare("R:5,0,19,19,0,z19.3.z20", "D:0"), 5);
}

TEST(Comparison, DifferentSignBytesGiveTheFirst) {
    EXPECT_EQ(compare("R:5,0,19,19,0,z19.3.z20", "D:3"), 5);
    EXPECT_EQ(compare("R:0,0,19,19,0,z19.3.z20", "D:3"), 0);
}

TEST(Comparison, LimbsCompareUnsigned) {
    EXPECT_EQ(compare("R:1,0,19,19,0,z19.4294967295.z20", "D:1"), 1);
    EXPECT_EQ(abs_compare("D:1", "R:1,0,19,19,0,z19.4294967295.z20"), -1);
}

TEST(Comparison, LimbsOutsideThePositionsAreNotSeen) {
    EXPECT_EQ(compare("R:1,0,20,20,0,z19.9.5.7.z18", "R:1,0,20,20,0,z20.5.z19"), 0);
}

} // namespace
} // namespace qzoci::test
