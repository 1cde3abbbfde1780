/* The central property: with fast kernels of every level, operations give the digits, flags, status and error
 * lines of the plain steps. */
#include "qzoci/limbs/limbs.h"
#include "qzoci/oci_calc_number_elementary.h"
#include "tests/limbs/levels.h"
#include "tests/limbs/random_records.h"
#include "tests/support/side_effect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace qzoci::test {
namespace {

constexpr engine::Trace plain = {false, false};

testing::AssertionResult agrees(const Operation& o, const QZCICalcNumber& a, const QZCICalcNumber& b,
                                const OCINumber& stored = poison_stored()) {
    const Operands operands = {a, b, stored};
    const SideEffect expected = effect_of(o, Side::plain, operands);
    const SideEffect actual = effect_of(o, Side::fast, operands);
    if (expected == actual) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << difference_text(o, operands, expected, actual);
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
        case 2: { /* a remainder that is one unit of the last place, or one less than the divisor */
            const QZCICalcNumber unit = record_from_limbs({{QZCI_CALC_LIMBS - 1, 1}});
            engine::mul(plain, &a, &b, &a);
            engine::add(plain, &a, &unit, &a);
            break;
        }
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

TEST_P(Levels, UnpackAsThePlainSteps) {
    RandomRecords records(400 + static_cast<ub8>(GetParam()));
    const QZCICalcNumber none = poison_record();
    for (int i = 0; i < 200000; ++i) {
        ASSERT_TRUE(agrees(operation("QZCICalcNumFromNumber"), none, none, records.stored()))
            << "number " << i;
    }
}

TEST_P(Levels, PackAndTruncateAsThePlainSteps) {
    RandomRecords records(500 + static_cast<ub8>(GetParam()));
    const std::array operations = {&operation("QZCICalcNumToNumber"), &operation("QZCICalcNumToRound"),
                                   &operation("QZCICalcNumCeil"), &operation("QZCICalcNumFloor")};
    for (int i = 0; i < 60000; ++i) {
        const QZCICalcNumber record = i % 3 == 0   ? records.any()
                                      : i % 3 == 1 ? records.of_turning_pairs()
                                                   : records.malformed();
        for (const Operation* o : operations) {
            ASSERT_TRUE(agrees(*o, record, record)) << "number " << i;
        }
    }
}

/* Every length at every exponent, so that the pairs begin and end at every place of every limb. */
TEST_P(Levels, UnpackEveryLengthAtEveryExponent) {
    RandomRecords records(600 + static_cast<ub8>(GetParam()));
    const QZCICalcNumber none = poison_record();
    for (int exponent = 0; exponent < 256; ++exponent) {
        for (int length = 1; length <= 21; ++length) {
            OCINumber number = poison_stored();
            number.OCINumberPart[0] = static_cast<ub1>(length);
            number.OCINumberPart[1] = static_cast<ub1>(exponent);
            for (int i = 2; i <= length; ++i) {
                number.OCINumberPart[i] = static_cast<ub1>(2 + records.below(99));
            }
            ASSERT_TRUE(agrees(operation("QZCICalcNumFromNumber"), none, none, number));
        }
    }
}

/* The comparisons and the normal form write no lines and are one function on every side. */
TEST_P(Levels, CompareLimbByLimb) {
    RandomRecords records(700 + static_cast<ub8>(GetParam()));
    for (int i = 0; i < 60000; ++i) {
        QZCICalcNumber a = records.below(3) == 0 ? records.malformed() : records.any();
        QZCICalcNumber b = records.below(2) == 0 ? a : records.any();
        if (records.below(2) == 0) {
            b.data_part[records.below(QZCI_CALC_LIMBS)] += 1;
        }
        a.num_signed = b.num_signed = 1;
        a.num_infinity = b.num_infinity = a.is_zero = b.is_zero = 0;
        int expected = 0;
        for (int k = std::min(a.start_pos, b.start_pos); k <= std::max(a.end_pos, b.end_pos); ++k) {
            if (k < 0 || k >= QZCI_CALC_LIMBS) {
                break;
            }
            if (a.data_part[k] != b.data_part[k]) {
                expected = a.data_part[k] > b.data_part[k] ? 1 : -1;
                break;
            }
        }
        ASSERT_EQ(QZCICalcNumCompare(&a, &b), expected) << fields_text(a) << '\n' << fields_text(b);
        ASSERT_EQ(QZCICalcNumAbsCompare(&b, &a), -expected) << fields_text(a) << '\n' << fields_text(b);
        ASSERT_EQ(QZCICalcNumCompareAbs(&a, &b), expected) << fields_text(a) << '\n' << fields_text(b);
    }
}

TEST_P(Levels, NormaliseByTheOutermostLimbs) {
    for (int first = 0; first < QZCI_CALC_LIMBS; ++first) {
        for (int last = first; last < QZCI_CALC_LIMBS; ++last) {
            QZCICalcNumber record = poison_record();
            std::fill(std::begin(record.data_part), std::end(record.data_part), 0U);
            record.data_part[first] = 0x80000000;
            record.data_part[last] = 1;
            record.num_infinity = 0;
            QZCICalcNumInit(&record);
            ASSERT_EQ(record.start_pos, first);
            ASSERT_EQ(record.end_pos, last);
            ASSERT_EQ(record.is_zero, 0);
            ASSERT_EQ(record.num_signed, 1);
        }
    }
    for (const sb1 infinity : {sb1{0}, sb1{1}}) {
        QZCICalcNumber record = poison_record();
        std::fill(std::begin(record.data_part), std::end(record.data_part), infinity == 1 ? 5U : 0U);
        record.num_infinity = infinity;
        record.num_signed = -1;
        QZCICalcNumInit(&record);
        EXPECT_EQ(record, record_from_fields(infinity == 1 ? "-1,1,-1,-1,0,z40" : "-1,0,-1,-1,1,z40"));
    }
}

/* Arguments of usual size, whose series have their full length. */
TEST_P(Levels, GiveThePlainFunctionsNearTheUnit) {
    constexpr int numbers = 25;
    RandomRecords records(700 + static_cast<ub8>(GetParam()));
    const std::array functions = {"QZCICalcNumSin", "QZCICalcNumCos", "QZCICalcNumTan", "QZCICalcNumAtan",
                                  "QZCICalcNumExp", "QZCICalcNumLn",  "QZCICalcNumTanh"};
    for (int i = 0; i < numbers; ++i) {
        QZCICalcNumber a = records.any();
        std::fill(a.data_part, a.data_part + 19, 0U);
        a.data_part[19] %= 20;
        a.data_part[20] = static_cast<ub4>(records.below(100000000));
        QZCICalcNumInit(&a);
        for (const char* name : functions) {
            ASSERT_TRUE(agrees(operation(name), a, a)) << "number " << i;
        }
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
