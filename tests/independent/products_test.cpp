/* Products against exact integers. */
#include "tests/independent/sides.h"

#include <gtest/gtest.h>

namespace qzoci::test {
namespace {

namespace rule = contract::rule;

TEST(AgainstExactIntegers, Products) {
    Tally products("products");
    for_each_index(pair_count, [&products](ub8 index) {
        const OperandPair pair = operand_pair(index);
        const contract::Expected product = contract::product(pair.a, pair.b);
        check(pair, "QZCICalcNumMul", product, pair.a, &pair.b);
        products.count(product.rule);
        if (is_squared(pair)) {
            check_on_one(pair, "QZCICalcNumMul", contract::product(pair.a, pair.a), pair.a);
        }
    });
    products.expect_all({rule::ordinary, rule::zero_operand, rule::infinite_operand, rule::too_large,
                         rule::top_limb_lost, rule::last_limb_becomes_one});
}

TEST(AgainstExactIntegers, IntegerMultiples) {
    Tally products("multiples by an integer");
    for_each_index(pair_count, [&products](ub8 index) {
        const OperandPair pair = operand_pair(index);
        const contract::Expected product = contract::integer_multiple(pair.a, pair.factor);
        check(pair, "QZCICalcNumMulWhitInterge", product, pair.a);
        products.count(product.rule);
    });
    products.expect_all({rule::ordinary, rule::zero_operand, rule::infinite_operand, rule::too_large});
}

} // namespace
} // namespace qzoci::test
