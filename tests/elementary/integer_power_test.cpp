#include "tests/elementary/reference.h"
#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::Contains;
using testing::Not;
using testing::StartsWith;

using Lines = std::vector<std::string>;

std::string value(std::string_view decimal) {
    return fields_text(record_from_decimal(decimal));
}

std::string request_of(const std::string& base, int exponent) {
    return "QZCICalcNumIntPower D:" + base + " " + std::to_string(exponent);
}

std::string power(const std::string& base, int exponent) {
    return result_of(request_of(base, exponent));
}

size_t products_of(const std::string& request) {
    return count_of(lines_of(request), "2|call function QZCICalcNumMul ");
}

/* ---- Exponents ---- */

TEST(IntegerPower, WithExponentZeroIsOneForEveryBase) {
    for (const std::string base : {"5", "0", "-0", "-2.5", "inf", "-inf"}) {
        EXPECT_EQ(power(base, 0), value("1")) << base;
    }
    EXPECT_EQ(lines_of(request_of("0", 0)),
              (Lines{"2|call function QZCICalcNumLn with base:A, exp:0, result:R",
                     "2|function QZCICalcNumIntPower return with status 0"}));
}

TEST(IntegerPower, FormsTheHighestPowerOfTwoAlone) {
    EXPECT_EQ(power("2", 2), value("4"));
    EXPECT_EQ(power("2", 3), value("8"));
    EXPECT_EQ(power("2", 4), value("16"));
    EXPECT_EQ(power("2", 5), value("32"));
    EXPECT_EQ(power("2", 6), value("16"));
    EXPECT_EQ(power("2", 7), value("32"));
    EXPECT_EQ(power("2", 8), value("256"));
    EXPECT_EQ(power("2", 9), value("512"));
    EXPECT_EQ(power("2", 12), value("256"));
    EXPECT_EQ(power("2", 16), value("65536"));
    EXPECT_EQ(power("2", 17), value("131072"));
}

/* base^(2^k), k the bits of the exponent below its highest, times the base when it is odd. */
TEST(IntegerPower, OfEveryExponentIsThatPowerOfTwo) {
    for (int exponent = 2; exponent <= 129; ++exponent) {
        int highest = 1;
        while (2 * highest <= exponent) {
            highest *= 2;
        }
        mpz_class expected;
        mpz_ui_pow_ui(expected.get_mpz_t(), 3, static_cast<unsigned>(highest + exponent % 2));
        EXPECT_EQ(power("3", exponent), fields_of_units(expected * power_of_ten(160))) << exponent;
    }
}

TEST(IntegerPower, TracesItsStepsInOrder) {
    EXPECT_EQ(lines_of(request_of("2", 3)),
              (Lines{"2|call function QZCICalcNumLn with base:A, exp:3, result:R",
                     "2|call function QZCICalcNumAssign with num:A, opt:S",
                     "2|function QZCICalcNumAssign return with status 0",
                     "2|call function QZCICalcNumAssign with num:S, opt:S",
                     "2|function QZCICalcNumAssign return with status 0",
                     "2|call function QZCICalcNumAssign with num:A, opt:S",
                     "2|function QZCICalcNumAssign return with status 0",
                     "2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
                     "2|QZCICalcNumMul:S x S result:0, 4", "2|QZCICalcNumMul new_len:1 exp_sum: 0",
                     "2|function QZCICalcNumMul return with status 0",
                     "2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
                     "2|QZCICalcNumMul:S x S result:0, 8", "2|QZCICalcNumMul new_len:1 exp_sum: 0",
                     "2|function QZCICalcNumMul return with status 0",
                     "2|function QZCICalcNumIntPower return with status 0"}));
}

TEST(IntegerPower, OfAnEvenExponentAddsThePowerToZero) {
    EXPECT_EQ(products_of(request_of("2", 4)), 2U);
    EXPECT_THAT(lines_of(request_of("2", 4)),
                Contains("2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S"));
}

TEST(IntegerPower, KeepsTheSignOfAnOddPower) {
    EXPECT_EQ(power("-2", 3), value("-8"));
    EXPECT_EQ(power("-2", 2), value("4"));
    EXPECT_EQ(power("-1.5", 5), value("-7.59375"));
}

TEST(IntegerPower, OfANegativeExponentIsTheReciprocal) {
    EXPECT_EQ(power("2", -2), value("0.25"));
    EXPECT_EQ(power("-2", -3), value("-0.125"));
    EXPECT_EQ(power("2", -6), value("0.0625"));
    EXPECT_EQ(power("0.5", -4), value("16"));
}

/* ---- Exponents of magnitude 1: no squaring ---- */

const Lines three_copies = {"2|call function QZCICalcNumAssign with num:A, opt:S",
                            "2|function QZCICalcNumAssign return with status 0",
                            "2|call function QZCICalcNumAssign with num:S, opt:S",
                            "2|function QZCICalcNumAssign return with status 0",
                            "2|call function QZCICalcNumAssign with num:A, opt:S",
                            "2|function QZCICalcNumAssign return with status 0"};

TEST(IntegerPower, WithExponentOneIsTheBaseAsItStands) {
    for (const std::string base : {"5", "-2.5", "0", "-0", "inf", "-inf", "1e-160"}) {
        EXPECT_EQ(power(base, 1), value(base)) << base;
    }
    EXPECT_EQ(result_of("QZCICalcNumIntPower R:0,0,-1,-1,1,z40 1"), unsigned_zero);
    Lines expected = three_copies;
    expected.insert(expected.begin(), "2|call function QZCICalcNumLn with base:A, exp:1, result:R");
    expected.push_back("2|function QZCICalcNumIntPower return with status 0");
    EXPECT_EQ(lines_of(request_of("5", 1)), expected);
}

TEST(IntegerPower, WithExponentMinusOneIsTheReciprocalOfTheBase) {
    EXPECT_EQ(power("5", -1), value("0.2"));
    EXPECT_EQ(power("-0.5", -1), value("-2"));
    EXPECT_EQ(power("inf", -1), unsigned_zero);
    Lines expected = three_copies;
    expected.insert(expected.begin(), "2|call function QZCICalcNumLn with base:A, exp:-1, result:R");
    for (const char* const line :
         {"2|call function QZCICalcNumDiv with dividend:S, divisor:S, result:S",
          "2|QZCICalcNumDiv dividend' length is 1",
          "2|call function QZCICaclNumDivOneDivisor with dividend:S, divisor:S, result:S",
          "2|QZCICaclNumDivOneDivisor S / S, value[0]: 0..100000000",
          "2|QZCICaclNumDivOneDivisor S / S, value[1]: 20000000..0",
          "2|QZCICaclNumDivOneDivisor dividend:S, divisor:S, exp_pow:0, len:2 - 1",
          "2|function QZCICaclNumDivOneDivisor return with status 0",
          "2|function QZCICalcNumIntPower return with status 0"}) {
        expected.push_back(line);
    }
    EXPECT_EQ(lines_of(request_of("5", -1)), expected);
}

TEST(IntegerPower, OfZeroWithExponentMinusOneFailsInTheDivision) {
    expect_failure(
        request_of("0", -1), OCI_ERROR,
        {"5|QZCICalcNumDiv: the divisor is zeor", "5|QZCICalcNumIntPower call QZCICalcNumDiv error"});
}

/* ---- The outermost exponents ---- */

constexpr int most_negative = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

TEST(IntegerPower, WithTheMostNegativeExponentSquares31Times) {
    EXPECT_EQ(power("1", most_negative), value("1"));
    EXPECT_EQ(power("-1", most_negative), value("1"));
    EXPECT_EQ(products_of(request_of("1", most_negative)), 31U);
    EXPECT_EQ(lines_of(request_of("1", most_negative)).front(),
              "2|call function QZCICalcNumLn with base:A, exp:-2147483648, result:R");
}

TEST(IntegerPower, WithTheMostNegativeExponentIsTheReciprocalOfAnInfinityOrOfZero) {
    EXPECT_EQ(power("2", most_negative), unsigned_zero);
    EXPECT_EQ(power("-2", most_negative), unsigned_zero);
    expect_failure(
        request_of("0.1", most_negative), OCI_ERROR,
        {"5|QZCICalcNumDiv: the divisor is zeor", "5|QZCICalcNumIntPower call QZCICalcNumDiv error"});
}

/* 2^31 - 1 is odd; 2^31 - 2 halves down to 1 in 30 steps. */
TEST(IntegerPower, WithTheLargestExponentSquares30Times) {
    EXPECT_EQ(power("-1", largest), value("-1"));
    EXPECT_EQ(products_of(request_of("1", largest)), 31U);
    EXPECT_EQ(power("2", largest), positive_infinity);
    EXPECT_EQ(power("-2", largest), negative_infinity);
}

/* ---- Zero and infinite bases ---- */

TEST(IntegerPower, OfZeroIsAZeroWithoutSignByTheAddition) {
    for (const std::string base : {"0", "-0"}) {
        EXPECT_EQ(power(base, 3), unsigned_zero);
        EXPECT_EQ(power(base, 2), unsigned_zero);
        EXPECT_THAT(lines_of(request_of(base, 3)),
                    Contains("2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S"));
        EXPECT_EQ(products_of(request_of(base, 3)), 1U);
    }
}

TEST(IntegerPower, OfZeroWithANegativeExponentFailsInTheDivision) {
    expect_failure(
        request_of("0", -2), OCI_ERROR,
        {"5|QZCICalcNumDiv: the divisor is zeor", "5|QZCICalcNumIntPower call QZCICalcNumDiv error"});
    EXPECT_EQ(lines_of(request_of("0", -2)).back(), "2|function QZCICalcNumIntPower return with status -1");
}

TEST(IntegerPower, OfAnInfinityFollowsTheProduct) {
    EXPECT_EQ(power("inf", 2), positive_infinity);
    EXPECT_EQ(power("-inf", 2), positive_infinity);
    EXPECT_EQ(power("-inf", 3), negative_infinity);
    EXPECT_EQ(power("-inf", -3), unsigned_zero);
}

/* ---- Failing steps ---- */

/* The squaring fails for ever: once is enough. */
TEST(IntegerPower, FailsInTheSquaringWithOneErrorLine) {
    const std::string request = "QZCICalcNumIntPower R:1,0,30,10,0,z40 4";
    expect_failure(
        request, OCI_ERROR,
        {"5|QZCICalcNumMul get a malformed record", "5|QZCICalcNumIntPower call QZCICalcNumMul error"});
    EXPECT_EQ(products_of(request), 1U);
    EXPECT_THAT(lines_of(request), Not(Contains(StartsWith("2|call function QZCICalcNumAdd"))));
}

} // namespace
} // namespace qzoci::test
