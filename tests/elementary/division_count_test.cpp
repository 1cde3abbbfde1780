/* How many divisions one call makes, whatever its operands: counted on the traced side, where each writes its entry
 * line. The fast side makes the same calls, or fewer, but for one step more a root, which the bounds allow for. */
#include "tests/limbs/random_records.h"
#include "tests/support/log_capture.h"
#include "tests/support/operations.h"
#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace qzoci::test {
namespace {

/* What the guards of the loops leave possible. A root has 4097 guesses, and the fast side tries one step before.
 */
constexpr long root_bound = 1 + 4097;
constexpr long series_bound = 4096;
constexpr long sine_bound = 1 + series_bound;
constexpr long tangent_bound = 2 * sine_bound + 1;
/* Reductions by a root and a division; the last one that is begun ends the operation. */
constexpr long arctangent_bound = std::max(31 * (root_bound + 1) + series_bound, 32 * (root_bound + 1));
constexpr long arcsine_bound = root_bound + 1 + arctangent_bound;
constexpr long exponential_bound = 1 + std::max(4096 + series_bound, 4097L);
constexpr long hyperbolic_bound = 2 * exponential_bound;
constexpr long whole_logarithm_bound = 30 * root_bound + 1 + series_bound;
constexpr long logarithm_bound = std::max(whole_logarithm_bound, 31 * root_bound);
constexpr long power_bound = whole_logarithm_bound + exponential_bound;

struct Bound {
    std::string_view name;
    long divisions;
};

/* Operations that are not named make none. */
constexpr Bound bounds[] = {
    {"QZCICalcNumDiv", 1},
    {"QZCICalcNumMod", 1},
    {"QZCICalcNumSqrt", root_bound},
    {"QZCICalcNumSin", sine_bound},
    {"QZCICalcNumCos", sine_bound},
    {"QZCICalcNumTan", tangent_bound},
    {"QZCICalcNumSinWithRound", sine_bound},
    {"QZCICalcNumCosWithRound", sine_bound},
    {"QZCICalcNumTanWithRound", tangent_bound},
    {"QZCICalcNumAtan", arctangent_bound},
    {"QZCICalcNumAsin", arcsine_bound},
    {"QZCICalcNumAcos", arcsine_bound},
    {"QZCICalcNumAtan2", 1 + arctangent_bound},
    {"QZCICalcNumExp", exponential_bound},
    {"QZCICalcNumSinh", hyperbolic_bound},
    {"QZCICalcNumCosh", hyperbolic_bound},
    {"QZCICalcNumTanh", hyperbolic_bound},
    {"QZCICalcNumLn", logarithm_bound},
    {"QZCICalcNumIntPower", 1},
    {"QZCICalcNumPower", power_bound},
};

static_assert(std::max_element(std::begin(bounds), std::end(bounds), [](const Bound& a, const Bound& b) {
                  return a.divisions < b.divisions;
              })->divisions == QZCI_MAX_DIVISIONS);

long bound_of(std::string_view name) {
    const auto* const found = std::find_if(std::begin(bounds), std::end(bounds),
                                           [name](const Bound& bound) { return bound.name == name; });
    return found == std::end(bounds) ? 0 : found->divisions;
}

long divisions = 0;

/* Counts and keeps nothing. Ends the test where a call has gone beyond every bound, as it might not end. */
bool count_division(log_level /* level */, const char* format) {
    const std::string_view line(format);
    if (line.starts_with("call function QZCICalcNumDiv with") ||
        line.starts_with("call function QZCICalcNumMod with")) {
        ++divisions;
        if (divisions > QZCI_MAX_DIVISIONS) {
            std::fputs("more divisions than any call may make\n", stderr);
            std::abort();
        }
    }
    return false;
}

struct Call {
    QZCICalcNumber first;
    QZCICalcNumber second;
    sb8 integer;
};

long divisions_of(const Operation& operation, const Call& call) {
    QZCICalcNumber result = call.first;
    OCINumber stored_result{};
    char text[512];
    Arguments arguments;
    arguments.first = &call.first;
    arguments.second = &call.second;
    arguments.result = &result;
    arguments.integer = call.integer;
    arguments.stored_result = &stored_result;
    arguments.text = text;
    arguments.text_size = sizeof text;
    divisions = 0;
    const LogCapture capture({}, count_division);
    operation.call(Side::traced, arguments);
    return divisions;
}

bool takes_records(Form form) {
    return form != Form::from_stored && form != Form::integer_function && form != Form::long_division;
}

/* Every operation on records keeps to its bound and to the limit. */
void expect_bounds(const Call& call, long limit) {
    for (const Operation& operation : all_operations()) {
        if (takes_records(operation.form)) {
            ASSERT_LE(divisions_of(operation, call), std::min(bound_of(operation.name), limit))
                << operation.name << ' ' << fields_text(call.first) << ' ' << fields_text(call.second) << ' '
                << call.integer;
        }
    }
}

/* Far above what records in normal form need, far below the guards. */
constexpr long normal_form_limit = 2000;

TEST(DivisionCount, IsBoundedForNumbersWhoseRootsDoNotSettle) {
    const std::string just_below_four = "3." + std::string(160, '9');
    for (const std::string& text :
         {std::string("16571451719703040000000000000001"), std::string("1.00000004000000060000000400000001"),
          just_below_four, std::string("4e15"), std::string("1e159"), std::string("9e151"),
          std::string("1e-160"), std::string("2e-160"), std::string("368.9"), std::string("-368.9"),
          std::string("-331.6"), std::string("0.99999999999999999999"), std::string("-1"), std::string("inf"),
          std::string("-inf"), std::string("0")}) {
        for (const char* const second : {"2e-160", "1.00000004000000060000000400000001", "-3", "1e-80"}) {
            const Call call = {record_from_decimal(text), record_from_decimal(second), -2147483648};
            expect_bounds(call, normal_form_limit);
        }
    }
}

TEST(DivisionCount, IsBoundedForRandomNumbers) {
    RandomRecords records(5);
    for (int i = 0; i < 60; ++i) {
        expect_bounds({records.any(), records.any(), static_cast<sb8>(records.below(100)) - 50},
                      normal_form_limit);
        expect_bounds({records.radicand(), records.of_turning_pairs(), 3}, normal_form_limit);
    }
}

TEST(DivisionCount, IsBoundedForMalformedRecords) {
    RandomRecords records(6);
    for (int i = 0; i < 150; ++i) {
        expect_bounds({records.malformed(), records.malformed(), -3}, QZCI_MAX_DIVISIONS);
    }
}

TEST(DivisionCount, IsBoundedForAnyLimbs) {
    RandomRecords records(7);
    const auto any_limbs = [&records] {
        QZCICalcNumber record = records.any();
        for (int i = std::max<int>(record.start_pos, 0); i <= record.end_pos; ++i) {
            record.data_part[i] = static_cast<ub4>(records.below(3) == 0 ? 99999998 + records.below(4)
                                                                         : records.below(ub8{1} << 32));
        }
        record.num_signed = 1;
        return record;
    };
    for (int i = 0; i < 100; ++i) {
        expect_bounds({any_limbs(), any_limbs(), 7}, QZCI_MAX_DIVISIONS);
    }
}

/* Loops that would not end run into their guards, after exactly so many divisions. */
TEST(DivisionCount, OfALoopWithoutProgressIsThatOfItsGuard) {
    const QZCICalcNumber one = record_from_decimal("1");
    const Call halving = {record_from_fields("1,1,19,19,0,z19.1.z20"), one, 0};
    EXPECT_EQ(divisions_of(*find_operation("QZCICalcNumExp"), halving), 1 + 4097);
    EXPECT_EQ(divisions_of(*find_operation("QZCICalcNumSinh"), halving), 1 + 4097);
}

TEST(DivisionCount, OfADivisionIsOne) {
    const Call call = {record_from_decimal("4"), record_from_decimal("2.03"), 0};
    EXPECT_EQ(divisions_of(*find_operation("QZCICalcNumDiv"), call), 1);
    EXPECT_EQ(divisions_of(*find_operation("QZCICalcNumMod"), call), 1);
    EXPECT_EQ(divisions_of(*find_operation("QZCICalcNumMul"), call), 0);
}

} // namespace
} // namespace qzoci::test
