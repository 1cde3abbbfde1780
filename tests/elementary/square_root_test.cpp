#include "qzoci/oci_calc_number_internal.h"
#include "tests/elementary/reference.h"
#include "tests/support/log_capture.h"
#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::Contains;
using testing::Not;

using Lines = std::vector<std::string>;

constexpr const char* get_a_guess = "2|QZCICalcNumSqrt: Get a guess";

std::string root_of(const std::string& operand) {
    return result_of("QZCICalcNumSqrt " + operand);
}

std::string value(std::string_view decimal) {
    return fields_text(record_from_decimal(decimal));
}

/* ---- Special values ---- */

TEST(SquareRoot, OfZeroIsAZeroWithoutSignWhateverItsOwn) {
    const Lines lines = {"2|call function QZCICalcNumSqrt with number:A, result:R",
                         "2|QZCICalcNumSqrt number is zero", "2|call function QZCICalcNumToZero with num:S",
                         "2|function QZCICalcNumToZero return with status 0",
                         "2|function QZCICalcNumSqrt return with status 0"};
    for (const std::string operand : {"D:0", "D:-0"}) {
        EXPECT_EQ(root_of(operand), unsigned_zero) << operand;
        EXPECT_EQ(lines_of("QZCICalcNumSqrt " + operand), lines) << operand;
    }
}

TEST(SquareRoot, OfANegativeNumberIsZeroWithOneErrorLine) {
    const Lines lines = {"2|call function QZCICalcNumSqrt with number:A, result:R",
                         "5|QZCICalcNumSqrt: the number is negitive",
                         "2|function QZCICalcNumSqrt return with status 0"};
    for (const std::string operand : {"D:-4", "D:-1e-160", "D:-inf"}) {
        EXPECT_EQ(root_of(operand), positive_zero) << operand;
        EXPECT_EQ(lines_of("QZCICalcNumSqrt " + operand), lines) << operand;
    }
}

/* The lines show that the caller's record, R, was set to infinity before the zero came over it. */
TEST(SquareRoot, OfPositiveInfinityIsZeroWrittenOverAnInfinity) {
    EXPECT_EQ(root_of("D:inf"), positive_zero);
    EXPECT_EQ(lines_of("QZCICalcNumSqrt D:inf"),
              (Lines{"2|call function QZCICalcNumSqrt with number:A, result:R",
                     "5|QZCICalcNumSqrt: the number is positive infinity",
                     "2|call function QZCICalcNumToInfinity with num:R",
                     "2|function QZCICalcNumToInfinity return with status 0",
                     "2|function QZCICalcNumSqrt return with status 0"}));
}

/* ---- First guess ---- */

std::string first_guess(const std::string& operand) {
    return result_of("QZCICalcNumSqrtFirst " + operand);
}

TEST(FirstGuess, IsTheRoundedRootOfTheLeadingLimbInItsPlace) {
    EXPECT_EQ(first_guess("D:2"), value("1"));
    EXPECT_EQ(first_guess("D:3"), value("2"));
    EXPECT_EQ(first_guess("D:6"), value("2"));
    EXPECT_EQ(first_guess("D:7"), value("3"));
    EXPECT_EQ(first_guess("D:99999999"), value("10000"));
    EXPECT_EQ(first_guess("D:10000000000000000"), value("10000000000000000"));
    EXPECT_EQ(first_guess("D:0.0004"), value("0.000002"));
    EXPECT_EQ(first_guess("D:1e-160"), value("1e-160"));
}

TEST(FirstGuess, ReadsTheLeadingLimbAlone) {
    EXPECT_EQ(first_guess("D:-9.99999999"), value("3"));
    EXPECT_EQ(first_guess("D:900000000.99"), value("300000000"));
}

TEST(FirstGuess, OfNoLeadingLimbIsAMalformedRecord) {
    for (const std::string operand : {"D:0", "D:inf", "R:1,0,40,40,0,z40", "R:1,0,-128,39,0,z40"}) {
        expect_failure("QZCICalcNumSqrtFirst " + operand, OCI_ERROR,
                       {"5|QZCICalcNumSqrtFirst get a malformed record"});
    }
}

TEST(FirstGuess, OfANullPointerIsRefusedSilently) {
    expect_failure("QZCICalcNumSqrtFirst N", OCI_INVALID_HANDLE, {});
    expect_failure("nullres:QZCICalcNumSqrtFirst D:2", OCI_INVALID_HANDLE, {});
}

/* ---- Iteration ---- */

/* One step of the iteration and what it writes, for a guess of one limb and a sum of one limb. */
TEST(SquareRoot, OfOneIsReproducedByTheFirstStep) {
    EXPECT_EQ(root_of("D:1"), value("1"));
    EXPECT_EQ(lines_of("QZCICalcNumSqrt D:1"),
              (Lines{"2|call function QZCICalcNumSqrt with number:A, result:R",
                     "2|call function QZCICalcNumDiv with dividend:A, divisor:S, result:S",
                     "2|QZCICalcNumDiv dividend' length is 1",
                     "2|call function QZCICaclNumDivOneDivisor with dividend:A, divisor:S, result:S",
                     "2|QZCICaclNumDivOneDivisor A / S, value[0]: 1..0",
                     "2|QZCICaclNumDivOneDivisor dividend:A, divisor:S, exp_pow:1, len:1 - 0",
                     "2|function QZCICaclNumDivOneDivisor return with status 0",
                     "2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S",
                     "2|function QZCICalcNumAdd return with status 0",
                     "2|call function QZCICalcNumMul with multiplicand:S, multiplier:S, product:S",
                     "2|QZCICalcNumMul:S x S result:0, 0", "2|QZCICalcNumMul new_len:1 exp_sum: -1",
                     "2|function QZCICalcNumMul return with status 0", get_a_guess,
                     "2|call function QZCICalcNumAssign with num:S, opt:S",
                     "2|function QZCICalcNumAssign return with status 0",
                     "2|function QZCICalcNumSqrt return with status 0"}));
}

template <typename Case>
std::string name_of(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

struct RootCase {
    std::string name;
    std::string number;
    std::string guess;
};

void PrintTo(const RootCase& root_case, std::ostream* out) {
    *out << root_case.number;
}

class SquareRootOf : public testing::TestWithParam<RootCase> {};

TEST_P(SquareRootOf, RestsWhereExactQuotientsWouldAndAfterAsManySteps) {
    const auto& [name, number, guess] = GetParam();
    const Heron expected = heron(units_of(number), units_of(guess));
    EXPECT_EQ(first_guess("D:" + number), value(guess));
    const Outcome outcome = on_all_sides("QZCICalcNumSqrt D:" + number);
    EXPECT_EQ(outcome.effect.status, OCI_SUCCESS);
    EXPECT_EQ(fields_text(outcome.effect.result.value()), fields_of_units(expected.root));
    const Lines lines = rendered(outcome.lines);
    EXPECT_EQ(count_of(lines, "2|call function QZCICalcNumDiv "), static_cast<size_t>(expected.steps));
    EXPECT_EQ(count_of(lines, get_a_guess), 1U);
    EXPECT_EQ(expected.root, resting_guess(units_of(number)));
}

const std::vector<RootCase> root_cases = {
    {"Two", "2", "1"},
    {"Four", "4", "2"},
    {"AQuarter", "0.25", "0.00005"},
    {"ALargeNumberFromFarAbove", "10000000000000000", "10000000000000000"},
    {"ASmallNumberFromFarBelow", "0.0004", "0.000002"},
    {"ALongNumber", "12345678901234567890.0987654321", "350000000000000000"},
    {"TheSmallestNumber", "0." + std::string(159, '0') + "1", "0." + std::string(159, '0') + "1"},
};

INSTANTIATE_TEST_SUITE_P(Numbers, SquareRootOf, testing::ValuesIn(root_cases), name_of<RootCase>);

TEST(SquareRoot, OfPerfectSquaresIsExact) {
    for (const int root : {2, 3, 7, 12, 99, 1000, 10001, 99999999}) {
        const std::string square = std::to_string(static_cast<sb8>(root) * root);
        EXPECT_EQ(root_of("D:" + square), value(std::to_string(root))) << square;
    }
    EXPECT_EQ(root_of("D:0.0004"), value("0.02"));
    EXPECT_EQ(root_of("D:1e-160"), value("1e-80"));
    EXPECT_EQ(root_of("D:1e158"), value("1e79"));
}

TEST(SquareRoot, OfTwoHasAllFractionDigits) {
    const QZCICalcNumber root = record_of("QZCICalcNumSqrt D:2");
    EXPECT_EQ(root.start_pos, 19);
    EXPECT_EQ(root.end_pos, 39);
    EXPECT_LE(distance_in_units(root, accuracy::of<mpfr_sqrt>(real_of("2"))), 1);
}

/* ---- Numbers where a wrong quotient is a resting place too ---- */

struct RootAbove {
    const char* number;
    ub4 last_limb; /* of the result */
};

constexpr RootAbove above_the_root[] = {
    {"3."
     "9483830425408999426010337851420136641506409211218232974945224810449471745082516706084711236717707734"
     "206413648184133600498949746975858676740138817488979834455918",
     72441857},
    {"3."
     "9483822477193956729177685181737840251985207309049283460838002701612698638348822673695794507938394685"
     "575917680478229466263893627042040745370364194920513426890430",
     7062596},
    {"3."
     "9483820887551046508404825005569032524664195223427447654587111070984489198291652512966382654750104142"
     "396225766388636559094422344134892635479177082600073562830514",
     28265326},
    {"3."
     "9483820887551045475852898728870171819282714357797491994388601968375955363655741456929057172338436434"
     "185212887893653477455037516048896008320277807278687424149867",
     8905266},
};

/* The division of these numbers by a guess 21 units above the root wraps a limb, and comes out 43 units above
 * the true quotient: the guess is left unchanged, 22 units above the root that is cut to 160 digits. */
TEST(SquareRoot, RestsAboveTheRootWhereAWrappedQuotientLeavesTheGuessUnchanged) {
    constexpr int units_above = 22;
    for (const auto& [number, last_limb] : above_the_root) {
        const mpz_class cut_root = sqrt(units_of(number) * power_of_ten(160));
        const QZCICalcNumber root = record_of(std::string("QZCICalcNumSqrt D:") + number);
        EXPECT_EQ(root.data_part[QZCI_CALC_LIMBS - 1], last_limb) << number;
        EXPECT_EQ(fields_text(root), fields_of_units(cut_root + units_above)) << number;
        EXPECT_NE(units_of(root), resting_guess(units_of(number))) << number;
    }
}

TEST(SquareRoot, OfTheFirstOfThoseNumbersLimbByLimb) {
    EXPECT_EQ(root_of(std::string("D:") + above_the_root[0].number),
              "1,0,19,39,0,z19.1.98705386.z1.86208290.74687034.55859725.2885299.38894829.61687932.29365293."
              "10000.20000.10001.31285065.74204556.66547792.58773277.29755951.70818221.3898788.72441857");
}

/* ---- Numbers with two resting places ---- */

/* The smallest g with T = g^2 + (g - 1) / 2 a multiple of 10^160, so that T is the square of no g but belongs
 * to a number of 160 fraction digits: 2 g = 1 modulo 5^160 and g = -1 modulo 2^161. The step leaves g
 * unchanged, and g + 1 too. */
mpz_class smaller_of_two_resting_places() {
    mpz_class fives;
    mpz_ui_pow_ui(fives.get_mpz_t(), 5, 160);
    mpz_class twos;
    mpz_ui_pow_ui(twos.get_mpz_t(), 2, 161);
    const mpz_class residue = (fives + 1) / 2;
    mpz_class inverse;
    mpz_invert(inverse.get_mpz_t(), fives.get_mpz_t(), twos.get_mpz_t());
    mpz_class multiple = (-1 - residue) * inverse;
    mpz_mod(multiple.get_mpz_t(), multiple.get_mpz_t(), twos.get_mpz_t());
    return residue + fives * multiple;
}

/* Guesses fall towards the root from above and meet the larger of the two first. */
TEST(SquareRoot, RestsAtTheLargerOfTwoRestingPlaces) {
    const mpz_class smallest = smaller_of_two_resting_places();
    for (const int more : {0, 2, 4, 10, 100}) {
        const mpz_class g = smallest + more * power_of_ten(160);
        const mpz_class square = g * g + (g - 1) / 2;
        ASSERT_EQ(square % power_of_ten(160), 0);
        const mpz_class number = square / power_of_ten(160);
        const std::string operand = "R:" + fields_of_units(number);
        EXPECT_EQ(root_of(operand), fields_of_units(g + 1)) << operand;
    }
}

TEST(SquareRoot, OfANumberWithTwoRestingPlacesDigitByDigit) {
    const std::string number =
        "0."
        "6494390268178102043571188067675760361088132618182479018502298125488492686407875719025215689535028404"
        "439403410823941189675875514073587611226924320309633094962877";
    const mpz_class g = smaller_of_two_resting_places();
    EXPECT_EQ((g * g + (g - 1) / 2) / power_of_ten(160), units_of(number));
    EXPECT_EQ(root_of("D:" + number), fields_of_units(g + 1));
}

/* ---- Numbers whose guesses repeat ---- */

/* Whether Heron's iteration comes to rest within so many steps of the engine's own arithmetic. */
bool comes_to_rest(const QZCICalcNumber& number, int steps) {
    const DebugLinesKept silent(false);
    const LogCapture outside_of_any_capture;
    const QZCICalcNumber half = record_from_decimal("0.5");
    QZCICalcNumber guess;
    QZCICalcNumber next;
    EXPECT_EQ(QZCICalcNumSqrtFirst(&number, &guess), OCI_SUCCESS);
    for (int i = 0; i < steps; ++i) {
        EXPECT_EQ(QZCICalcNumDiv(&number, &guess, &next), OCI_SUCCESS);
        EXPECT_EQ(QZCICalcNumAdd(&next, &guess, &next), OCI_SUCCESS);
        EXPECT_EQ(QZCICalcNumMul(&next, &half, &next), OCI_SUCCESS);
        if (QZCICalcNumCompare(&next, &guess) == 0) {
            return true;
        }
        guess = next;
    }
    return false;
}

struct RepeatingCase {
    std::string name;
    std::string number;
    std::string root; /* empty: as exact integers say */
};

void PrintTo(const RepeatingCase& repeating, std::ostream* out) {
    *out << repeating.number;
}

class RepeatingGuesses : public testing::TestWithParam<RepeatingCase> {};

TEST_P(RepeatingGuesses, EndWithTheRootByExactArithmetic) {
    const auto& [name, number, root] = GetParam();
    ASSERT_FALSE(comes_to_rest(record_from_decimal(number), 5000));
    const mpz_class exact = resting_guess(units_of(number));
    if (!root.empty()) {
        EXPECT_EQ(exact, units_of(root));
    }
    const Outcome outcome = on_all_sides("QZCICalcNumSqrt D:" + number);
    EXPECT_EQ(outcome.effect.status, OCI_SUCCESS);
    EXPECT_EQ(fields_text(outcome.effect.result.value()), fields_of_units(exact));
    const Lines lines = rendered(outcome.lines);
    EXPECT_EQ(count_of(lines, get_a_guess), 1U);
    EXPECT_LT(count_of(lines, "2|call function QZCICalcNumDiv "), 4096U) << "the repetition was not noticed";
    const Lines end = {get_a_guess, "2|call function QZCICalcNumAssign with num:S, opt:S",
                       "2|function QZCICalcNumAssign return with status 0",
                       "2|function QZCICalcNumSqrt return with status 0"};
    EXPECT_EQ(Lines(lines.end() - 4, lines.end()), end);
    EXPECT_EQ(result_of("alias:QZCICalcNumSqrt D:" + number), fields_of_units(exact));
}

/* 1.00000004000000060000000400000001 is (1 + 10^-8)^4; of 4 - 10^-160 both T >= g^2 - 1.5 g and
 * T < g^2 + 0.5 g hold for g = 2 * 10^160. */
const std::vector<RepeatingCase> repeating_cases = {
    {"OneAboveASquare", "16571451719703040000000000000001", ""},
    {"OneAboveFourtimesTenToThe15Squared", "16000000000000000000000000000001", ""},
    {"ASquareOfThreeLimbs", "1.00000004000000060000000400000001", "1.0000000200000001"},
    {"JustBelowFour", "3." + std::string(160, '9'), "2"},
};

INSTANTIATE_TEST_SUITE_P(SquareRoot, RepeatingGuesses, testing::ValuesIn(repeating_cases),
                         name_of<RepeatingCase>);

/* ---- Failing steps ---- */

/* The leading position of the record points at a zero limb: the guess is zero, and so is the one after the
 * failed step. */
TEST(SquareRoot, OfARecordWithAZeroLeadingLimbFailsInTheDivision) {
    const std::string request = "QZCICalcNumSqrt R:1,0,18,19,0,z19.4.z20";
    expect_failure(request, OCI_ERROR,
                   {"5|QZCICalcNumDiv: the divisor is zeor", "5|QZCICalcNumSqrt: QZCICalcNumDiv error"});
    EXPECT_EQ(lines_of(request),
              (Lines{"2|call function QZCICalcNumSqrt with number:A, result:R",
                     "2|call function QZCICalcNumDiv with dividend:A, divisor:S, result:S",
                     "5|QZCICalcNumDiv: the divisor is zeor", "5|QZCICalcNumSqrt: QZCICalcNumDiv error",
                     get_a_guess, "2|function QZCICalcNumSqrt return with status -1"}));
}

/* A failed division leaves the next guess as it was: zero after the first one. It becomes the guess, and the
 * division by it fails too. */
TEST(SquareRoot, WithAFailingDivisionGoesOnToTheNextGuess) {
    const std::string request = "QZCICalcNumSqrt R:1,0,19,60,0,z19.4.z20";
    expect_failure(request, OCI_ERROR,
                   {"5|QZCICaclNumDivOneDivisor get a malformed record",
                    "5|multiplicand:A / multiplier:S QZCICaclNumDivOneDivisor error:-1",
                    "5|QZCICalcNumSqrt: QZCICalcNumDiv error", "5|QZCICalcNumDiv: the divisor is zeor",
                    "5|QZCICalcNumSqrt: QZCICalcNumDiv error"});
    EXPECT_THAT(lines_of(request), Contains(get_a_guess));
}

TEST(SquareRoot, WithoutALeadingLimbIsRefusedByTheFirstGuess) {
    const std::string request = "QZCICalcNumSqrt R:1,0,-1,39,0,z19.4.z20";
    expect_failure(request, OCI_ERROR, {"5|QZCICalcNumSqrtFirst get a malformed record"});
    EXPECT_THAT(lines_of(request), Not(Contains(get_a_guess)));
    EXPECT_EQ(lines_of(request).back(), "2|function QZCICalcNumSqrt return with status -1");
}

} // namespace
} // namespace qzoci::test
