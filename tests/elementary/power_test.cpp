#include "tests/elementary/reference.h"
#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::EndsWith;
using testing::StartsWith;

using Lines = std::vector<std::string>;

std::string value(std::string_view decimal) {
    return fields_text(record_from_decimal(decimal));
}

std::string request_of(const std::string& base, const std::string& exponent) {
    return "QZCICalcNumPower D:" + base + " D:" + exponent;
}

std::string power(const std::string& base, const std::string& exponent) {
    return result_of(request_of(base, exponent));
}

/* What the result becomes when it is stored and read again. */
std::string stored_power(const std::string& base, const std::string& exponent) {
    return result_of("QZCICalcNumFromNumber " + out_of("QZCICalcNumToNumber R:" + power(base, exponent)));
}

/* ---- Special cases ---- */

const Lines no_call = {};
const Lines call_of_infinity = {"2|call function QZCICalcNumToInfinity with num:S",
                                "2|function QZCICalcNumToInfinity return with status 0"};

struct SpecialCase {
    std::string name;
    std::vector<std::string> bases;
    std::vector<std::string> exponents;
    std::string result;
};

void PrintTo(const SpecialCase& special, std::ostream* out) {
    *out << special.result;
}

std::string name_of(const testing::TestParamInfo<SpecialCase>& info) {
    return info.param.name;
}

class SpecialPower : public testing::TestWithParam<SpecialCase> {};

/* Zero and one are built silently, infinities by the operation. */
TEST_P(SpecialPower, NeedsNoLogarithm) {
    const auto& [name, bases, exponents, result] = GetParam();
    const bool infinite = result == positive_infinity || result == negative_infinity;
    Lines lines = infinite ? call_of_infinity : no_call;
    lines.insert(lines.begin(), "2|call function QZCICalcNumPower with number:A, exp:B, result:R");
    lines.push_back("2|function QZCICalcNumPower return with status 0");
    for (const std::string& base : bases) {
        for (const std::string& exponent : exponents) {
            EXPECT_EQ(power(base, exponent), result) << base << " ^ " << exponent;
            EXPECT_EQ(lines_of(request_of(base, exponent)), lines) << base << " ^ " << exponent;
        }
    }
}

const std::string one = "1,0,19,19,0,z19.1.z20";
const std::string zero(positive_zero);
const std::string plus_infinity(positive_infinity);
const std::string minus_infinity(negative_infinity);

const std::vector<std::string> zeros = {"0", "-0"};
const std::vector<std::string> non_zeros = {"5", "-5", "0.001", "-1e100", "inf", "-inf"};
const std::vector<std::string> infinities = {"inf", "-inf"};
const std::vector<std::string> above_one = {"2", "1.00000001", "1e159"};
const std::vector<std::string> below_one = {"0.5", "0.99999999", "1e-160"};

const std::vector<SpecialCase> special_cases = {
    {"ZeroToZeroIsOne", zeros, zeros, one},
    {"ZeroToANegativeIsPositiveInfinity", zeros, {"-1", "-0.5", "-1e-160", "-inf"}, plus_infinity},
    {"ZeroToAPositiveIsZero", zeros, {"2", "0.5", "1e100", "inf"}, zero},
    {"NonZeroToZeroIsOne", non_zeros, zeros, one},
    {"PositiveInfinityToPositiveInfinityIsPositiveInfinity", {"inf"}, {"inf"}, plus_infinity},
    {"PositiveInfinityToNegativeInfinityIsZero", {"inf"}, {"-inf"}, zero},
    {"InfinityToANegativeIsZero", infinities, {"-2", "-3", "-0.5", "-1e-160"}, zero},
    {"NegativeInfinityToAnEvenIsPositiveInfinity",
     {"-inf"},
     {"2", "4", "100", "99999998", "100000002"},
     plus_infinity},
    {"NegativeInfinityToAnOddIsNegativeInfinity",
     {"-inf"},
     {"1", "3", "99999999", "100000001"},
     minus_infinity},
    {"NegativeInfinityToAnIntegerThatEndsAboveTheUnitsLimbIsNegativeInfinity",
     {"-inf"},
     {"100000000", "200000000", "1e100"},
     minus_infinity},
    {"NegativeInfinityToAFractionIsNegativeInfinity", {"-inf"}, {"0.5", "2.5", "2.00000001"}, minus_infinity},
    {"PositiveInfinityToAPositiveIsPositiveInfinity", {"inf"}, {"2", "3", "0.5", "1e-160"}, plus_infinity},
    {"ANegativeToInfinityIsNegativeInfinity", {"-2", "-1", "-0.5", "-1e100"}, infinities, minus_infinity},
    {"OneToInfinityIsOne", {"1"}, infinities, one},
    {"AboveOneToPositiveInfinityIsZero", above_one, {"inf"}, zero},
    {"BelowOneToPositiveInfinityIsPositiveInfinity", below_one, {"inf"}, plus_infinity},
    {"AboveOneToNegativeInfinityIsPositiveInfinity", above_one, {"-inf"}, plus_infinity},
    {"BelowOneToNegativeInfinityIsZero", below_one, {"-inf"}, zero},
};

INSTANTIATE_TEST_SUITE_P(Table, SpecialPower, testing::ValuesIn(special_cases), name_of);

TEST(Power, OfNegativeInfinityToAnInfinityFails) {
    for (const std::string& exponent : infinities) {
        expect_failure(request_of("-inf", exponent), OCI_ERROR,
                       {"5|QZCICalcNumPower meet error infinity number"});
        EXPECT_EQ(lines_of(request_of("-inf", exponent)),
                  (Lines{"2|call function QZCICalcNumPower with number:A, exp:B, result:R",
                         "5|QZCICalcNumPower meet error infinity number",
                         "2|function QZCICalcNumPower return with status -1"}));
    }
}

/* No row of the table matches: ln of the infinity is infinite, and so are its product and its exponential. */
TEST(Power, OfPositiveInfinityToAnInfinityWithoutSignIsComputed) {
    const std::string request = "QZCICalcNumPower D:inf R:0,1,-1,-1,0,z40";
    EXPECT_EQ(result_of(request), positive_infinity);
    EXPECT_EQ(count_of(lines_of(request), "2|call function QZCICalcNumLn with number:S, result:S"), 1U);
}

/* ---- Values ---- */

TEST(Power, IsThatOfTheRealNumbers) {
    struct Case {
        const char* base;
        const char* exponent;
    };

    const Case cases[] = {{"2", "0.5"},  {"10", "2.5"},  {"0.5", "-3.25"},
                          {"1.5", "20"}, {"1e10", "-2"}, {"16571451719703040000000000000001", "0.5"}};
    for (const auto& [base, exponent] : cases) {
        const Real exact = accuracy::of<mpfr_pow>(real_of(base), real_of(exponent));
        EXPECT_LE(relative_distance(record_of(request_of(base, exponent)), exact), 1e-135)
            << base << " ^ " << exponent;
    }
}

TEST(Power, OfANegativeBaseToAnOddIntegerIsNegativeAndExactOnlyWhenStored) {
    EXPECT_THAT(decimal_text(record_of(request_of("-2", "3"))), StartsWith("-7.99999999"));
    EXPECT_THAT(decimal_text(record_of(request_of("-2", "3"))), EndsWith("9879"));
    EXPECT_EQ(stored_power("-2", "3"), value("-8"));
    EXPECT_EQ(out_of("QZCICalcNumToNumber R:" + power("-2", "3")).substr(0, 8), "033e5d66");
}

TEST(Power, OfANegativeBaseToAnEvenIntegerIsPositiveAndExactOnlyWhenStored) {
    EXPECT_NE(power("-2", "2"), value("4"));
    EXPECT_EQ(power("-2", "2"), power("2", "2"));
    EXPECT_EQ(stored_power("-2", "2"), value("4"));
}

TEST(Power, OfANegativeBaseTakesTheParityOfTheUnitsLimb) {
    EXPECT_EQ(record_of(request_of("-1.00000001", "100000000")).num_signed, 1);
    EXPECT_EQ(record_of(request_of("-1.00000001", "100000001")).num_signed, -1);
    EXPECT_EQ(record_of(request_of("-2", "-3")).num_signed, -1);
}

/* The sign is set on the finished zero, and nothing normalises it after that. */
TEST(Power, ThatVanishesIsAZeroWithTheSignOfItsParity) {
    EXPECT_EQ(power("-1e100", "-5"), negative_zero);
    EXPECT_EQ(power("-1e100", "-4"), positive_zero);
    EXPECT_EQ(power("1e100", "-5"), positive_zero);
}

TEST(Power, ThatOverflowsIsAnInfinityWithTheSignOfItsParity) {
    EXPECT_EQ(power("-1e100", "5"), negative_infinity);
    EXPECT_EQ(power("-1e100", "4"), positive_infinity);
}

TEST(Power, OfOneIsOne) {
    for (const char* const exponent : {"2", "-7.5", "1e100"}) {
        EXPECT_EQ(power("1", exponent), value("1")) << exponent;
    }
    EXPECT_EQ(power("-1", "3"), value("-1"));
}

TEST(Power, TracesItsStepsInOrder) {
    const Lines lines = lines_of(request_of("-1", "3"));
    EXPECT_EQ(
        Lines(lines.begin(), lines.begin() + 6),
        (Lines{"2|call function QZCICalcNumPower with number:A, exp:B, result:R",
               "2|call function QZCICalcNumAssign with num:A, opt:S",
               "2|function QZCICalcNumAssign return with status 0",
               "2|call function QZCICalcNumNeg with num:S", "2|function QZCICalcNumNeg return with status 0",
               "2|call function QZCICalcNumLn with number:S, result:S"}));
    const auto after_logarithm =
        std::find(lines.begin(), lines.end(), "2|function QZCICalcNumLn return with status 0") + 1;
    EXPECT_EQ(Lines(after_logarithm, after_logarithm + 5),
              (Lines{"2|call function QZCICalcNumMul with multiplicand:B, multiplier:S, product:S",
                     "2|call function QZCICalcNumToZero with num:S",
                     "2|function QZCICalcNumToZero return with status 0",
                     "2|function QZCICalcNumMul return with status 0",
                     "2|call function QZCICalcNumExp with number:S, result:S"}));
    EXPECT_EQ(Lines(lines.end() - 2, lines.end()),
              (Lines{"2|function QZCICalcNumSqrt return with status 0",
                     "2|function QZCICalcNumPower return with status 0"}));
}

/* ---- Failing steps ---- */

TEST(Power, OfANegativeBaseToAFractionFails) {
    for (const std::string exponent : {"0.5", "-0.5", "2.5", "1e-160"}) {
        expect_failure(request_of("-2", exponent), OCI_ERROR,
                       {"5|QZCICalcNumPower error in (-x)^t.001 is error"});
    }
    const Lines lines = lines_of(request_of("-2", "0.5"));
    EXPECT_EQ(lines.back(), "2|function QZCICalcNumPower return with status -1");
}

TEST(Power, OfAForeignSignFailsInTheLogarithmUnderTheLogarithmsName) {
    for (const std::string sign : {"0", "5", "-2"}) {
        expect_failure("QZCICalcNumPower R:" + sign + ",0,19,19,0,z19.2.z20 D:3", OCI_ERROR,
                       {"5|QZCICalcNumSqrt: the number is negitive",
                        "5|QZCICalcNumLn call QZCICalcNumSqrt error",
                        "5|QZCICalcNumLn error in QZCICalcNumLn"});
    }
}

TEST(Power, FailsInTheProductUnderTheLogarithmsName) {
    expect_failure("QZCICalcNumPower D:2 R:1,0,19,60,0,z19.4.z20", OCI_ERROR,
                   {"5|QZCICalcNumMul get a malformed record", "5|QZCICalcNumLn error in QZCICalcNumMul"});
}

} // namespace
} // namespace qzoci::test
