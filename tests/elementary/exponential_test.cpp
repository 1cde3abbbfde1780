#include "tests/elementary/reference.h"
#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
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

std::string exponential_of(const std::string& operand) {
    return result_of("QZCICalcNumExp " + operand);
}

std::string halvings_line(int halvings) {
    return "2|QZCICalcNumExp:times_exponent_div_2:" + std::to_string(halvings);
}

/* The relative error of the result for an argument that was halved so often: each of the squarings doubles
 * that of e^x', which is a few units of 10^-160 off. */
double relative_bound(int halvings) {
    return 100e-160 * (1 << halvings);
}

/* ---- Exponential: saturation ---- */

TEST(Exponential, From369OnIsInfinite) {
    for (const char* const number : {"369", "369.5", "99999999", "100000000", "1e9", "1e159", "inf"}) {
        EXPECT_EQ(exponential_of(std::string("D:") + number), positive_infinity) << number;
        EXPECT_EQ(lines_of(std::string("QZCICalcNumExp D:") + number),
                  (Lines{"2|call function QZCICalcNumExp with number:A, result:R",
                         "2|call function QZCICalcNumToInfinity with num:S",
                         "2|function QZCICalcNumToInfinity return with status 0",
                         "2|function QZCICalcNumSqrt return with status 0"}));
    }
}

TEST(Exponential, FromMinus369DownIsAZeroWithoutSign) {
    for (const char* const number : {"-369", "-369.5", "-100000000", "-1e159", "-inf"}) {
        EXPECT_EQ(exponential_of(std::string("D:") + number), unsigned_zero) << number;
        EXPECT_EQ(lines_of(std::string("QZCICalcNumExp D:") + number),
                  (Lines{"2|call function QZCICalcNumExp with number:A, result:R",
                         "2|call function QZCICalcNumToZero with num:S",
                         "2|function QZCICalcNumToZero return with status 0",
                         "2|function QZCICalcNumSqrt return with status 0"}));
    }
}

/* e^368.99... is 1.78 * 10^160, beyond the record; it takes the series and the squarings to find out. */
TEST(Exponential, JustBelow369TakesTheSeries) {
    const std::string request = "QZCICalcNumExp D:368." + std::string(160, '9');
    EXPECT_THAT(lines_of(request), Contains(halvings_line(12)));
    EXPECT_THAT(lines_of(request), Not(Contains("2|call function QZCICalcNumToInfinity with num:S")));
}

TEST(Exponential, SaturatesByThePositionsWhateverTheSignAndLeavesOneForOthers) {
    EXPECT_EQ(exponential_of("R:5,0,18,18,0,z18.1.z21"), value("1"));
    EXPECT_EQ(exponential_of("R:0,0,19,19,0,z19.369.z20"), value("1"));
    EXPECT_EQ(exponential_of("R:1,0,-128,18,0,z40"), positive_infinity);
}

/* ---- Exponential: values ---- */

TEST(Exponential, OfZeroIsOneAfterASeriesOfOneTerm) {
    for (const std::string operand : {"D:0", "D:-0", "O:0180"}) {
        EXPECT_EQ(exponential_of(operand), value("1")) << operand;
    }
    EXPECT_EQ(lines_of("QZCICalcNumExp D:0"),
              (Lines{"2|call function QZCICalcNumExp with number:A, result:R",
                     "2|call function QZCICalcNumDiv with dividend:S, divisor:S, result:S",
                     "2|QZCICalcNumDiv dividend' length is 1",
                     "2|call function QZCICaclNumDivOneDivisor with dividend:S, divisor:S, result:S",
                     "2|QZCICaclNumDivOneDivisor S / S, value[0]: 0..100000000",
                     "2|QZCICaclNumDivOneDivisor S / S, value[1]: 10000000..0",
                     "2|QZCICaclNumDivOneDivisor dividend:S, divisor:S, exp_pow:0, len:2 - 1",
                     "2|function QZCICaclNumDivOneDivisor return with status 0",
                     "2|call function QZCICalcNumAssign with num:A, opt:S",
                     "2|function QZCICalcNumAssign return with status 0",
                     "2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
                     "2|call function QZCICalcNumToZero with num:S",
                     "2|function QZCICalcNumToZero return with status 0",
                     "2|function QZCICalcNumMul return with status 0",
                     "2|call function QZCICalcNumDiv with dividend:S, divisor:S, result:S",
                     "2|QZCICalcNumDiv dividend is zero",
                     "2|call function QZCICalcNumToZero with num:S",
                     "2|function QZCICalcNumToZero return with status 0",
                     "2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S",
                     "2|call function QZCICalcNumAssign with num:S, opt:S",
                     "2|function QZCICalcNumAssign return with status 0",
                     "2|function QZCICalcNumAdd return with status 0",
                     "2|function QZCICalcNumSqrt return with status 0"}));
}

struct HalvingCase {
    std::string name;
    std::string number;
    int halvings;
};

void PrintTo(const HalvingCase& halving, std::ostream* out) {
    *out << halving.number;
}

std::string name_of_halving(const testing::TestParamInfo<HalvingCase>& info) {
    return info.param.name;
}

class Halving : public testing::TestWithParam<HalvingCase> {};

/* The series multiplies once a pass, before the line; after it come the squarings alone. */
TEST_P(Halving, IsDoneUntilBelowATenthAndUndoneBySquaring) {
    const auto& [name, number, halvings] = GetParam();
    const std::string request = "QZCICalcNumExp D:" + number;
    const QZCICalcNumber result = record_of(request);
    EXPECT_EQ(result.num_infinity, 0);
    EXPECT_LE(relative_distance(result, accuracy::of<mpfr_exp>(real_of(number))), relative_bound(halvings));
    const Lines lines = lines_of(request);
    if (halvings == 0) {
        EXPECT_THAT(lines, Not(Contains(StartsWith("2|QZCICalcNumExp:times"))));
        return;
    }
    const auto line = std::find(lines.begin(), lines.end(), halvings_line(halvings));
    ASSERT_NE(line, lines.end());
    EXPECT_EQ(count_of(Lines(line, lines.end()), "2|call function QZCICalcNumMul "),
              static_cast<size_t>(halvings));
}

const std::vector<HalvingCase> halving_cases = {
    {"NotBelowATenth", "0.09", 0},
    {"NotJustBelowATenth", "0.09999999", 0},
    {"OnceAtATenth", "0.1", 1},
    {"OnceAtMinusATenth", "-0.1", 1},
    {"OnceJustBelowTwoTenths", "0.19999999", 1},
    {"TwiceAtTwoTenths", "0.2", 2},
    {"FourTimesAtOne", "1", 4},
    {"ElevenTimesJustBelow204", "204.7", 11},
    {"TwelveTimesAt368", "368", 12},
};

INSTANTIATE_TEST_SUITE_P(Exponential, Halving, testing::ValuesIn(halving_cases), name_of_halving);

/* The square of 0.1 - 10^-160 has the last limb 99999999, which the product rounds up to 1: the term x^2 / 2
 * is half of 10^-152 short. */
TEST(Exponential, ShowsTheProductsRoundingOfALastLimbOfNines) {
    const std::string number = "0.0" + std::string(159, '9');
    const Real exact = accuracy::of<mpfr_exp>(real_of(number));
    const double distance = distance_in_units(record_of("QZCICalcNumExp D:" + number), exact);
    EXPECT_GT(distance, 0.5e8);
    EXPECT_LT(distance, 0.6e8);
}

TEST(Exponential, OfANegativeNumberIsThatOfTheRealNumber) {
    for (const char* const number : {"-0.05", "-1", "-10.5", "-300"}) {
        expect_near(std::string("QZCICalcNumExp D:") + number, accuracy::of<mpfr_exp>(real_of(number)), 1e4);
    }
}

TEST(Exponential, ExitTraceNamesTheSquareRootOnEveryReturn) {
    for (const std::string request :
         {"QZCICalcNumExp D:1", "QZCICalcNumExp D:400", "QZCICalcNumExp N", "nullres:QZCICalcNumExp D:1",
          "QZCICalcNumExp R:1,0,19,60,0,z19.4.z20"}) {
        const Lines lines = lines_of(request);
        EXPECT_THAT(lines.back(), StartsWith("2|function QZCICalcNumSqrt return with status ")) << request;
        EXPECT_THAT(lines, Not(Contains(StartsWith("2|function QZCICalcNumExp return")))) << request;
    }
}

/* ---- Exponential: failing steps ---- */

TEST(Exponential, FailsInTheHalving) {
    expect_failure("QZCICalcNumExp R:1,0,19,60,0,z19.4.z20", OCI_ERROR,
                   {"5|QZCICaclNumDivOneDivisor get a malformed record",
                    "5|multiplicand:S / multiplier:S QZCICaclNumDivOneDivisor error:-1",
                    "5|QZCICalcNumExp: QZCICalcNumDiv error"});
}

TEST(Exponential, FailsInTheProductOfTheSeriesWithTheTextOfTheDivision) {
    const std::string request = "QZCICalcNumExp R:1,0,30,10,0,z40";
    expect_failure(request, OCI_ERROR,
                   {"5|QZCICalcNumMul get a malformed record", "5|QZCICalcNumExp: QZCICalcNumDiv error"});
}

/* An infinity flag with positions stays infinite however often it is halved. */
TEST(Exponential, OfAnInfinityThatIsNotNormalisedEndsWithAnError) {
    const Outcome outcome = on_all_sides("QZCICalcNumExp R:1,1,19,19,0,z19.1.z20");
    EXPECT_EQ(outcome.effect.status, OCI_ERROR);
    EXPECT_EQ(outcome.effect.result, poison_record());
    const Lines lines = rendered(without_debug(outcome.lines));
    EXPECT_EQ(lines.back(), "5|QZCICalcNumExp: QZCICalcNumDiv error");
}

/* ---- Hyperbolic functions ---- */

const std::vector<std::string> hyperbolic_names = {"QZCICalcNumSinh", "QZCICalcNumCosh", "QZCICalcNumTanh"};

constexpr const char* first_exponential = "2|call function QZCICalcNumExp with number:A, result:S";
constexpr const char* second_exponential = "2|call function QZCICalcNumExp with number:S, result:S";

TEST(HyperbolicFunctions, AreThoseOfTheRealNumber) {
    for (const char* const number : {"0.001", "1", "-1", "5.5", "-20"}) {
        const std::string operand = std::string(" D:") + number;
        const Real real = real_of(number);
        EXPECT_LE(relative_distance(record_of("QZCICalcNumSinh" + operand), accuracy::of<mpfr_sinh>(real)),
                  1e-135);
        EXPECT_LE(relative_distance(record_of("QZCICalcNumCosh" + operand), accuracy::of<mpfr_cosh>(real)),
                  1e-135);
        EXPECT_LE(relative_distance(record_of("QZCICalcNumTanh" + operand), accuracy::of<mpfr_tanh>(real)),
                  1e-135);
    }
}

TEST(HyperbolicFunctions, OfZeroAreZeroOneZero) {
    for (const std::string operand : {" D:0", " D:-0"}) {
        EXPECT_EQ(result_of("QZCICalcNumSinh" + operand), unsigned_zero);
        EXPECT_EQ(result_of("QZCICalcNumCosh" + operand), value("1"));
        EXPECT_EQ(result_of("QZCICalcNumTanh" + operand), unsigned_zero);
    }
}

TEST(HyperbolicSine, OfMinus400IsTheNegatedHalfOfAnInfinity) {
    EXPECT_EQ(result_of("QZCICalcNumSinh D:-400"), negative_infinity);
    EXPECT_EQ(
        lines_of("QZCICalcNumSinh D:-400"),
        (Lines{"2|call function QZCICalcNumSinh with number:A, result:R", first_exponential,
               "2|call function QZCICalcNumToZero with num:S",
               "2|function QZCICalcNumToZero return with status 0",
               "2|function QZCICalcNumSqrt return with status 0",
               "2|call function QZCICalcNumAssign with num:A, opt:S",
               "2|function QZCICalcNumAssign return with status 0",
               "2|call function QZCICalcNumNeg with num:S", "2|function QZCICalcNumNeg return with status 0",
               second_exponential, "2|call function QZCICalcNumToInfinity with num:S",
               "2|function QZCICalcNumToInfinity return with status 0",
               "2|function QZCICalcNumSqrt return with status 0",
               "2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
               "2|multiplicand:S + multiplier:S meet infinity",
               "2|function QZCICalcNumMul return with status 0", "2|call function QZCICalcNumNeg with num:S",
               "2|function QZCICalcNumNeg return with status 0",
               "2|function QZCICalcNumSinh return with status 0"}));
}

TEST(HyperbolicCosine, OfMinus400IsHalfOfAnInfinity) {
    EXPECT_EQ(result_of("QZCICalcNumCosh D:-400"), positive_infinity);
    EXPECT_EQ(count_of(lines_of("QZCICalcNumCosh D:-400"), "2|call function QZCICalcNumNeg "), 1U);
}

TEST(HyperbolicFunctions, FromThree69OnAreInfiniteTheTangentToo) {
    for (const std::string& name : hyperbolic_names) {
        for (const std::string number : {" D:369", " D:400", " D:1e100"}) {
            EXPECT_EQ(result_of(name + number), positive_infinity) << name << number;
        }
    }
    EXPECT_THAT(kept_lines_of("QZCICalcNumTanh D:400"),
                (Lines{"5|dividend:S / divisor:S all are infinity numbers"}));
}

TEST(HyperbolicFunctions, OfInfinities) {
    EXPECT_EQ(result_of("QZCICalcNumSinh D:inf"), positive_infinity);
    EXPECT_EQ(result_of("QZCICalcNumSinh D:-inf"), negative_infinity);
    EXPECT_EQ(result_of("QZCICalcNumCosh D:inf"), positive_infinity);
    EXPECT_EQ(result_of("QZCICalcNumCosh D:-inf"), positive_infinity);
}

TEST(HyperbolicTangent, OfInfinitiesIsOneWithTheirSign) {
    EXPECT_EQ(result_of("QZCICalcNumTanh D:inf"), value("1"));
    EXPECT_EQ(result_of("QZCICalcNumTanh D:-inf"), value("-1"));
    EXPECT_EQ(lines_of("QZCICalcNumTanh D:inf"),
              (Lines{"2|call function QZCICalcNumTanh with number:A, result:R",
                     "2|function QZCICalcNumTanh return with status 0"}));
    EXPECT_EQ(result_of("QZCICalcNumTanh R:0,1,-1,-1,0,z40"), value("-1"));
}

TEST(HyperbolicTangent, WhereTheExponentialIsZeroIsMinusOneAfterASecondExponential) {
    for (const std::string number : {"-369", "-400", "-1e100"}) {
        EXPECT_EQ(result_of("QZCICalcNumTanh D:" + number), value("-1")) << number;
        EXPECT_EQ(count_of(lines_of("QZCICalcNumTanh D:" + number), second_exponential), 1U);
    }
}

/* 1 / e^x is infinite when e^x begins below limb 37, that is below 10^-144. */
TEST(HyperbolicFunctions, WhereOnlyTheReciprocalOverflowsAreInfinite) {
    for (const std::string number : {" D:-331.58", " D:-340.5", " D:-350"}) {
        EXPECT_EQ(result_of("QZCICalcNumSinh" + number), negative_infinity) << number;
        EXPECT_EQ(result_of("QZCICalcNumCosh" + number), positive_infinity) << number;
        EXPECT_EQ(result_of("QZCICalcNumTanh" + number), negative_infinity) << number;
    }
    EXPECT_THAT(kept_lines_of("QZCICalcNumTanh D:-331.58"),
                (Lines{"5|dividend:S / divisor:S QZCICalcNumDiv exceed set to num_infinity:0",
                       "5|dividend:S / divisor:S all are infinity numbers"}));
}

/* (e^x - e^-x) / (e^x + e^-x) is 1 - 2 e^2x, with 287 nines before the first other digit. */
TEST(HyperbolicTangent, JustAboveThatIsMinusOne) {
    EXPECT_EQ(result_of("QZCICalcNumTanh D:-331.57"), value("-1"));
    EXPECT_EQ(result_of("QZCICalcNumTanh D:-331"), value("-1"));
    EXPECT_THAT(kept_lines_of("QZCICalcNumTanh D:-331.57"), testing::IsEmpty());
}

/* From the end of the first exponential on, and for the argument 0, where e^x is 1. */
Lines lines_after_exponential(const std::string& name) {
    const Lines lines = lines_of(name + " D:0");
    EXPECT_EQ(lines[0], "2|call function " + name + " with number:A, result:R");
    EXPECT_EQ(lines[1], first_exponential);
    const auto end = std::find(lines.begin(), lines.end(), "2|function QZCICalcNumSqrt return with status 0");
    return end == lines.end() ? Lines() : Lines(end + 1, lines.end());
}

Lines joined(std::initializer_list<Lines> parts) {
    Lines all;
    for (const Lines& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

const Lines one_by_one = {"2|call function QZCICalcNumDiv with dividend:S, divisor:S, result:S",
                          "2|QZCICalcNumDiv dividend' length is 1",
                          "2|call function QZCICaclNumDivOneDivisor with dividend:S, divisor:S, result:S",
                          "2|QZCICaclNumDivOneDivisor S / S, value[0]: 1..0",
                          "2|QZCICaclNumDivOneDivisor dividend:S, divisor:S, exp_pow:1, len:1 - 0",
                          "2|function QZCICaclNumDivOneDivisor return with status 0"};
const Lines to_zero = {"2|call function QZCICalcNumToZero with num:S",
                       "2|function QZCICalcNumToZero return with status 0"};
const Lines one_and_one = {"2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S",
                           "2|function QZCICalcNumAdd return with status 0"};
const Lines one_less_one =
    joined({{"2|call function QZCICalcNumSub with minuend:S, subtrahend:S, remainder:S"},
            to_zero,
            {"2|function QZCICalcNumSub return with status 0"}});

TEST(HyperbolicSine, TracesItsStepsInOrder) {
    EXPECT_EQ(lines_after_exponential("QZCICalcNumSinh"),
              joined({one_by_one,
                      one_less_one,
                      {"2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S"},
                      to_zero,
                      {"2|function QZCICalcNumMul return with status 0",
                       "2|function QZCICalcNumSinh return with status 0"}}));
}

TEST(HyperbolicCosine, TracesItsStepsInOrder) {
    EXPECT_EQ(lines_after_exponential("QZCICalcNumCosh"),
              joined({one_by_one,
                      one_and_one,
                      {"2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
                       "2|QZCICalcNumMul:S x S result:0, 0", "2|QZCICalcNumMul new_len:1 exp_sum: -1",
                       "2|function QZCICalcNumMul return with status 0",
                       "2|function QZCICalcNumCosh return with status 0"}}));
}

TEST(HyperbolicTangent, TracesItsStepsInOrder) {
    EXPECT_EQ(lines_after_exponential("QZCICalcNumTanh"),
              joined({one_by_one,
                      one_and_one,
                      one_less_one,
                      {"2|call function QZCICalcNumDiv with dividend:S, divisor:S, result:S",
                       "2|QZCICalcNumDiv dividend is zero"},
                      to_zero,
                      {"2|function QZCICalcNumTanh return with status 0"}}));
}

TEST(HyperbolicFunctions, FailWithTheExponential) {
    for (const std::string& name : hyperbolic_names) {
        expect_failure(name + " R:1,0,30,10,0,z40", OCI_ERROR,
                       {"5|QZCICalcNumMul get a malformed record", "5|QZCICalcNumExp: QZCICalcNumDiv error",
                        "5|" + name + " call QZCICalcNumExp error"});
    }
}

} // namespace
} // namespace qzoci::test
