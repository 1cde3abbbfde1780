/* Truncation, ceiling, floor and the rounding to 38 fraction digits against exact integers. */
#include "tests/independent/sides.h"

#include <gtest/gtest.h>

namespace qzoci::test {
namespace {

namespace rule = contract::rule;

/* A number with digits all around the 39th fraction digit. */
Operand operand_across_digit_39(Random& random) {
    constexpr int pairs_below = 80 - 19;
    const int lowest = random.between(0, pairs_below + 2);
    const int highest = random.between(lowest + 1, random.one_in(4) ? 160 : pairs_below + 4);
    return signed_operand(random, integer_of_pairs(random, highest - lowest) * power(100, lowest));
}

void check_roundings(const OperandPair& pair, const Operand& operand, Tally& tally) {
    const contract::Expected ceiling = contract::ceiling(operand);
    const contract::Expected floor = contract::floor(operand);
    const contract::Expected truncated = contract::truncated(operand);
    const contract::Expected rounded = contract::rounded_to_38_digits(operand);
    check(pair, "QZCICalcNumCeil", ceiling, operand);
    check(pair, "QZCICalcNumFloor", floor, operand);
    check(pair, "QZCICalcNumToRound", truncated, operand);
    check(pair, "QZCICalcNumToRoundToOCINumber", rounded, operand);
    for (const contract::Expected& expected : {ceiling, floor, truncated, rounded}) {
        tally.count(expected.rule);
    }
}

TEST(AgainstExactIntegers, Roundings) {
    Tally roundings("ceilings, floors, truncations and roundings");
    for_each_index(pair_count, [&roundings](ub8 index) {
        const OperandPair pair = operand_pair(index);
        Random random(~pair.seed); /* not the numbers the pair was made of */
        check_roundings(pair, random.one_in(2) ? pair.a : operand_across_digit_39(random), roundings);
    });
    roundings.expect_all({rule::ordinary, rule::zero_operand, rule::infinite_operand, rule::stepped,
                          rule::early_infinity, rule::too_large});
}

} // namespace
} // namespace qzoci::test
