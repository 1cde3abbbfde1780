/* The central property: with fast kernels of every level, operations give the digits, flags, status and error
 * lines of the plain steps. */
#include "qzoci/limbs/limbs.h"
#include "qzoci/oci_calc_number_elementary.h"
#include "tests/limbs/levels.h"
#include "tests/limbs/random_records.h"
#include "tests/support/log_capture.h"
#include "tests/support/operations.h"
#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

constexpr engine::Trace plain = {false, false};

struct Effect {
    sb8 status;
    QZCICalcNumber result;
    std::vector<std::string> lines;
};

Effect effect_of(const Operation& operation, Side side, const QZCICalcNumber& a, const QZCICalcNumber& b) {
    Effect effect = {0, poison_record(), {}};
    Arguments arguments;
    arguments.first = &a;
    arguments.second = &b;
    arguments.result = &effect.result;
    LogCapture capture(PointerNames({{&a, 'A'}, {&b, 'B'}, {&effect.result, 'R'}}));
    effect.status = operation.call(side, arguments);
    effect.lines = rendered(without_debug(capture.lines()));
    return effect;
}

testing::AssertionResult agrees(const Operation& operation, const QZCICalcNumber& a,
                                const QZCICalcNumber& b) {
    const Effect expected = effect_of(operation, Side::plain, a, b);
    const Effect actual = effect_of(operation, Side::fast, a, b);
    if (expected.status == actual.status && expected.result == actual.result &&
        expected.lines == actual.lines) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << operation.name << "\n a " << fields_text(a) << "\n b " << fields_text(b) << "\n plain "
           << expected.status << ' ' << fields_text(expected.result) << "\n fast  " << actual.status << ' '
           << fields_text(actual.result);
}

const Operation& operation(std::string_view name) {
    const Operation* const found = find_operation(name);
    if (found == nullptr) {
        throw std::invalid_argument(std::string(name));
    }
    return *found;
}

TEST_P(Levels, GiveThePlainSumsProductsAndQuotients) {
    constexpr int pairs = 40000;
    RandomRecords records(static_cast<ub8>(GetParam()));
    const std::array operations = {&operation("QZCICalcNumAdd"), &operation("QZCICalcNumSub"),
                                   &operation("QZCICalcNumMul"), &operation("QZCICalcNumDiv"),
                                   &operation("QZCICalcNumMod")};
    for (int i = 0; i < pairs; ++i) {
        QZCICalcNumber a = records.any();
        const QZCICalcNumber b = records.below(50) == 0 ? a : records.any();
        switch (records.below(20)) {
        case 0: /* an exact quotient, more often than chance would have one */
            engine::mul(plain, &a, &b, &a);
            break;
        case 1: /* limbs above 99999999, now and then */
            engine::div(plain, &a, &b, &a);
            break;
        default:
            break;
        }
        for (const Operation* o : operations) {
            ASSERT_TRUE(agrees(*o, a, b)) << "pair " << i;
        }
    }
}

TEST_P(Levels, GiveThePlainSquareRoots) {
    constexpr int numbers = 600;
    RandomRecords records(100 + static_cast<ub8>(GetParam()));
    for (int i = 0; i < numbers; ++i) {
        const QZCICalcNumber number = records.radicand();
        ASSERT_TRUE(agrees(operation("QZCICalcNumSqrt"), number, number)) << "number " << i;
    }
}

TEST_P(Levels, GiveThePlainElementaryFunctions) {
    constexpr int numbers = 12;
    RandomRecords records(200 + static_cast<ub8>(GetParam()));
    const std::array functions = {"QZCICalcNumSin",  "QZCICalcNumCos",  "QZCICalcNumTan", "QZCICalcNumAtan",
                                  "QZCICalcNumAsin", "QZCICalcNumAcos", "QZCICalcNumExp", "QZCICalcNumSinh",
                                  "QZCICalcNumCosh", "QZCICalcNumTanh", "QZCICalcNumLn"};
    for (int i = 0; i < numbers; ++i) {
        const QZCICalcNumber a = records.any();
        const QZCICalcNumber b = records.any();
        for (const char* name : functions) {
            ASSERT_TRUE(agrees(operation(name), a, b)) << "number " << i;
        }
        ASSERT_TRUE(agrees(operation("QZCICalcNumAtan2"), a, b)) << "number " << i;
        ASSERT_TRUE(agrees(operation("QZCICalcNumPower"), a, b)) << "number " << i;
    }
}

/* Halving has no operation of its own: it is the root's product by 0.5. */
TEST_P(Levels, HalveAsTheProductByOneHalf) {
    RandomRecords records(300 + static_cast<ub8>(GetParam()));
    const QZCICalcNumber half = record_from_decimal("0.5");
    for (int i = 0; i < 20000; ++i) {
        const QZCICalcNumber number = records.any();
        if (number.is_zero != 0) {
            continue;
        }
        QZCICalcNumber product;
        engine::mul(plain, &number, &half, &product);
        std::array<limbs::Limb, QZCI_CALC_LIMBS> halved;
        halved.fill(77777777);
        limbs::Extent extent = {};
        ASSERT_TRUE(limbs::kernels().half({number.data_part, number.start_pos, number.end_pos}, halved.data(),
                                          extent));
        ASSERT_TRUE(std::equal(halved.begin(), halved.end(), product.data_part)) << fields_text(number);
        ASSERT_EQ(extent.first, product.start_pos);
        ASSERT_EQ(extent.last, product.end_pos);
    }
}

TEST_P(Levels, AreTheLevelAskedForOrTheBestBelow) {
    EXPECT_LE(level_, GetParam());
    EXPECT_EQ(level_, std::min(GetParam(), limbs::best_level()));
}

TEST_P(Levels, HaveKernelsOfTheirOwn) {
    const limbs::Kernels& kernels = limbs::kernels();
    for (const limbs::Level level : all_levels) {
        const bool same_level = limbs::force_level(level) == level_;
        EXPECT_EQ(&limbs::kernels() == &kernels, same_level);
        EXPECT_EQ(limbs::kernels().sum == kernels.sum, same_level);
        EXPECT_EQ(limbs::kernels().difference == kernels.difference, same_level);
        EXPECT_EQ(limbs::kernels().product == kernels.product, same_level);
        EXPECT_EQ(limbs::kernels().half == kernels.half, same_level);
    }
}

INSTANTIATE_TEST_SUITE_P(Kernels, Levels, testing::ValuesIn(all_levels), level_name);

} // namespace
} // namespace qzoci::test
