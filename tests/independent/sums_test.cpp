/* Sums, differences and comparisons against exact integers. */
#include "tests/independent/sides.h"

#include <gtest/gtest.h>

namespace qzoci::test {
namespace {

namespace rule = contract::rule;

TEST(AgainstExactIntegers, SumsAndDifferences) {
    Tally sums("sums and differences");
    for_each_index(pair_count, [&sums](ub8 index) {
        const OperandPair pair = operand_pair(index);
        const contract::Expected sum = contract::sum(pair.a, pair.b);
        const contract::Expected difference = contract::difference(pair.a, pair.b);
        check(pair, "QZCICalcNumAdd", sum, pair.a, &pair.b);
        check(pair, "QZCICalcNumSub", difference, pair.a, &pair.b);
        sums.count(sum.rule);
        sums.count(difference.rule);
        if (is_squared(pair)) {
            check_on_one(pair, "QZCICalcNumAdd", contract::sum(pair.a, pair.a), pair.a);
            check_on_one(pair, "QZCICalcNumSub", contract::difference(pair.a, pair.a), pair.a);
        }
    });
    sums.expect_all({rule::ordinary, rule::zero_operand, rule::infinite_operand, rule::opposite_infinities,
                     rule::cancelled, rule::too_large, rule::early_infinity});
}

TEST(AgainstExactIntegers, Comparisons) {
    Tally outcomes("comparisons");
    for_each_index(pair_count, [&outcomes](ub8 index) {
        const OperandPair pair = operand_pair(index);
        const int order = contract::comparison(pair.a, pair.b);
        const int order_of_magnitudes = contract::magnitude_comparison(pair.a, pair.b);
        check_value(pair, "QZCICalcNumCompare", order, pair.a, pair.b);
        check_value(pair, "QZCICalcNumAbsCompare", order_of_magnitudes, pair.a, pair.b);
        check_value(pair, "QZCICalcNumCompareAbs", order_of_magnitudes, pair.a, pair.b);
        outcomes.count(order == 0 ? "equal" : order > 0 ? "above" : "below");
        if (is_squared(pair)) {
            check_value(pair, "QZCICalcNumCompare", 0, pair.a, pair.a);
        }
    });
    outcomes.expect_all({"equal", "above", "below"});
}

} // namespace
} // namespace qzoci::test
