/* Where a fast kernel declines: each condition from both sides at every level, with a tally that shows which
 * way was taken, and the plain steps' digits either way. */
#include "qzoci/limbs/long_division.h"
#include "qzoci/limbs/square_root.h"
#include "qzoci/oci_calc_number_elementary.h"
#include "tests/limbs/levels.h"
#include "tests/limbs/random_records.h"
#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qzoci::test {
namespace {

using engine::Stretch;
using engine::Tally;
using engine::Trace;

using Binary = sword (*)(Trace, const QZCICalcNumber*, const QZCICalcNumber*, QZCICalcNumber*);

using FastKernels = Levels;
using FastSum = Levels;
using FastDifference = Levels;
using FastProduct = Levels;
using FastQuotientByLimb = Levels;
using FastQuotient = Levels;
using FastRemainder = Levels;
using FastSeries = Levels;
using FastRoot = Levels;
using FastTruncation = Levels;
using FastUnpacking = Levels;
using FastPacking = Levels;

enum class Taken { not_tried, finished, declined };

Taken taken_of(const Tally& tally, Stretch stretch) {
    const auto i = static_cast<int>(stretch);
    return tally.tried[i] == 0      ? Taken::not_tried
           : tally.declined[i] == 0 ? Taken::finished
                                    : Taken::declined;
}

/* Runs the operation on the plain and the fast side, expects one result, and tells what the kernel of the
 * stretch did. */
Taken taken(Binary operation, Stretch stretch, const QZCICalcNumber& a, const QZCICalcNumber& b) {
    QZCICalcNumber plain = poison_record();
    QZCICalcNumber fast = poison_record();
    Tally tally = {};
    const sword status = operation({false, false}, &a, &b, &plain);
    EXPECT_EQ(operation({false, true, &tally}, &a, &b, &fast), status);
    EXPECT_EQ(fast, plain);
    return taken_of(tally, stretch);
}

/* The same for the truncation inside ceiling and floor. */
Taken taken_for(sword (*rounding)(Trace, const QZCICalcNumber*, QZCICalcNumber*),
                const QZCICalcNumber& number) {
    QZCICalcNumber plain = poison_record();
    QZCICalcNumber fast = poison_record();
    Tally tally = {};
    const sword status = rounding({false, false}, &number, &plain);
    EXPECT_EQ(rounding({false, true, &tally}, &number, &fast), status);
    EXPECT_EQ(fast, plain);
    return taken_of(tally, Stretch::truncation);
}

Taken taken_for_unpacking(std::string_view hex) {
    const OCINumber number = stored_from_hex(hex);
    QZCICalcNumber plain = poison_record();
    QZCICalcNumber fast = poison_record();
    Tally tally = {};
    const sword status = engine::from_number({false, false}, &plain, &number);
    EXPECT_EQ(engine::from_number({false, true, &tally}, &fast, &number), status);
    EXPECT_EQ(fast, plain);
    return taken_of(tally, Stretch::unpacking);
}

Taken taken_for_packing(const QZCICalcNumber& number) {
    OCINumber plain = stored_from_hex("a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5");
    OCINumber fast = plain;
    Tally tally = {};
    const sword status = engine::to_number({false, false}, &number, &plain);
    EXPECT_EQ(engine::to_number({false, true, &tally}, &number, &fast), status);
    EXPECT_EQ(fast, plain);
    return taken_of(tally, Stretch::packing);
}

Taken taken_for_root(const QZCICalcNumber& number) {
    const auto root = [](Trace t, const QZCICalcNumber* a, const QZCICalcNumber*, QZCICalcNumber* result) {
        return engine::sqrt(t, a, result);
    };
    return taken(root, Stretch::root, number, number);
}

QZCICalcNumber decimal(const char* text) {
    return record_from_decimal(text);
}

/* 4 / 2.03 has limbs above 99999999. */
QZCICalcNumber record_with_large_limbs() {
    const QZCICalcNumber four = decimal("4");
    const QZCICalcNumber divisor = decimal("2.03");
    QZCICalcNumber quotient;
    engine::div({false, false}, &four, &divisor, &quotient);
    return quotient;
}

/* Limbs of an integer, least significant first. */
using LimbString = std::vector<ub4>;

/* None of them near 0, 10^8 or a small part of it. */
LimbString ordinary_limbs(RandomRecords& random, size_t count) {
    LimbString limbs(count);
    for (ub4& limb : limbs) {
        limb = static_cast<ub4>(60000000 + random.below(20000000));
    }
    return limbs;
}

LimbString product(const LimbString& a, const LimbString& b) {
    LimbString limbs(a.size() + b.size());
    for (size_t i = 0; i < a.size(); ++i) {
        ub8 carry = 0;
        for (size_t j = 0; j < b.size(); ++j) {
            carry += limbs[i + j] + ub8{a[i]} * b[j];
            limbs[i + j] = static_cast<ub4>(carry % limbs::base);
            carry /= limbs::base;
        }
        limbs[i + b.size()] = static_cast<ub4>(carry);
    }
    return limbs;
}

/* The record whose limb last_limb - i is limbs[i], those beyond limb 39 cut off. */
QZCICalcNumber record_from_string(const LimbString& limbs, int last_limb) {
    QZCICalcNumber record;
    initNullValue(&record);
    for (size_t i = 0; i < limbs.size(); ++i) {
        const int position = last_limb - static_cast<int>(i);
        if (position >= 0 && position < QZCI_CALC_LIMBS) {
            record.data_part[position] = limbs[i];
        }
    }
    QZCICalcNumInit(&record);
    return record;
}

TEST_P(FastKernels, DeclineLimbsAbove99999999) {
    const QZCICalcNumber large = record_with_large_limbs();
    const QZCICalcNumber wide = decimal("1.0000000200000003");
    EXPECT_EQ(taken(engine::add, Stretch::sum, large, wide), Taken::declined);
    EXPECT_EQ(taken(engine::sub, Stretch::difference, large, wide), Taken::declined);
    EXPECT_EQ(taken(engine::mul, Stretch::product, large, wide), Taken::declined);
    EXPECT_EQ(taken(engine::mul, Stretch::product, wide, large), Taken::declined);
    EXPECT_EQ(taken(engine::div, Stretch::quotient, large, wide), Taken::declined);
    EXPECT_EQ(taken(engine::div, Stretch::quotient_by_limb, large, decimal("3")), Taken::declined);
    EXPECT_EQ(taken_for_root(large), Taken::declined);
    EXPECT_EQ(taken(engine::add, Stretch::sum, wide, wide), Taken::finished);
}

/* A comparison takes all 40 limbs, everything else those from start_pos to end_pos. */
TEST_P(FastKernels, TreatStrayLimbsAsThePlainStepsDo) {
    const QZCICalcNumber number = decimal("1234.5");
    const QZCICalcNumber other = decimal("1234.50000000000007");
    for (const int limb : {0, 3, 18, 21, 25, 39}) {
        QZCICalcNumber stray = number;
        stray.data_part[limb] = 77;
        for (const auto& [a, b] :
             {std::pair(stray, other), std::pair(other, stray), std::pair(stray, stray)}) {
            EXPECT_NE(taken(engine::add, Stretch::sum, a, b), Taken::not_tried) << limb;
            EXPECT_NE(taken(engine::sub, Stretch::difference, a, b), Taken::not_tried) << limb;
            EXPECT_NE(taken(engine::mul, Stretch::product, a, b), Taken::not_tried) << limb;
        }
    }
}

TEST_P(FastKernels, LeaveZerosAndInfinitiesToThePlainSteps) {
    const QZCICalcNumber two = decimal("2");
    for (const char* special : {"0", "-0", "inf", "-inf"}) {
        EXPECT_EQ(taken(engine::add, Stretch::sum, decimal(special), two), Taken::not_tried) << special;
        EXPECT_EQ(taken(engine::mul, Stretch::product, two, decimal(special)), Taken::not_tried) << special;
        EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal(special), decimal("1.5")), Taken::not_tried)
            << special;
    }
}

TEST_P(FastSum, DeclinesACarryIntoLimb0) {
    const QZCICalcNumber limb_1_full = record_from_limbs({{1, 99999999}});
    EXPECT_EQ(taken(engine::add, Stretch::sum, limb_1_full, record_from_limbs({{1, 1}})), Taken::declined);
    EXPECT_EQ(
        taken(engine::add, Stretch::sum, record_from_limbs({{0, 99999999}}), record_from_limbs({{0, 1}})),
        Taken::declined);
    EXPECT_EQ(taken(engine::add, Stretch::sum, limb_1_full, record_from_limbs({{2, 1}})), Taken::finished);
    EXPECT_EQ(
        taken(engine::add, Stretch::sum, record_from_limbs({{2, 99999999}}), record_from_limbs({{2, 1}})),
        Taken::finished);
}

/* Where an operand has a limb 0 of its own, a carry from limb 1 is an ordinary one. */
TEST_P(FastSum, CarriesWithinTheOperandsIntoLimb0) {
    const QZCICalcNumber sum_of_7 = record_from_limbs({{0, 7}, {1, 99999999}, {2, 5}});
    EXPECT_EQ(taken(engine::add, Stretch::sum, sum_of_7, record_from_limbs({{1, 1}})), Taken::finished);
    EXPECT_EQ(taken(engine::add, Stretch::sum, record_from_limbs({{0, 99999999}, {1, 99999999}}),
                    record_from_limbs({{1, 1}})),
              Taken::declined);
}

TEST_P(FastSum, CarriesThroughFullLimbs) {
    const QZCICalcNumber nines = decimal("99999999999999999999999999999999.99999999999999999999999999999999");
    EXPECT_EQ(taken(engine::add, Stretch::sum, nines, decimal("0.00000000000000000000000000000001")),
              Taken::finished);
    EXPECT_EQ(taken(engine::sub, Stretch::difference, decimal("1e32"), decimal("1e-160")), Taken::finished);
}

TEST_P(FastDifference, DeclinesEqualMagnitudes) {
    EXPECT_EQ(taken(engine::sub, Stretch::difference, decimal("5.25"), decimal("5.25")), Taken::declined);
    EXPECT_EQ(taken(engine::add, Stretch::difference, decimal("5.25"), decimal("-5.25")), Taken::declined);
    EXPECT_EQ(taken(engine::sub, Stretch::difference, decimal("5.25"), decimal("5.24")), Taken::finished);
}

/* The product by 1 + 10^-160 has in column c >= 39 the limb a_(c - 20), and a_19 more in column 39. */
QZCICalcNumber one_and_the_last_place() {
    return record_from_limbs({{19, 1}, {39, 1}});
}

TEST_P(FastProduct, DeclinesAnInconclusiveDecidingLimb) {
    const auto product_of = [](ub4 limb_40, ub4 limb_41) {
        return taken(engine::mul, Stretch::product,
                     record_from_limbs({{19, 3}, {20, limb_40}, {21, limb_41}, {30, 7}, {39, 5}}),
                     one_and_the_last_place());
    };
    EXPECT_EQ(product_of(49999999, 99999999), Taken::declined);
    EXPECT_EQ(product_of(49999999, 99999958), Taken::declined);
    EXPECT_EQ(product_of(49999999, 99999957), Taken::finished);
    EXPECT_EQ(product_of(49999998, 99999999), Taken::finished);
    EXPECT_EQ(product_of(50000000, 99999999), Taken::finished);
}

TEST_P(FastProduct, DeclinesALastLimbOf99999999WhereColumnsAreLeftOut) {
    const auto product_of = [](ub4 limb_39) {
        return taken(engine::mul, Stretch::product,
                     record_from_limbs({{20, 99999999}, {30, 7}, {39, limb_39}}), one_and_the_last_place());
    };
    EXPECT_EQ(product_of(99999999), Taken::declined);
    EXPECT_EQ(product_of(99999998), Taken::finished);
}

TEST_P(FastProduct, RoundsALastLimbOf99999999UpTo1) {
    const QZCICalcNumber a = record_from_limbs({{30, 99999999}, {31, 50000000}});
    const QZCICalcNumber b = record_from_limbs({{28, 1}});
    EXPECT_EQ(taken(engine::mul, Stretch::product, a, b), Taken::finished);
    QZCICalcNumber product;
    engine::mul({false, true}, &a, &b, &product);
    EXPECT_EQ(product, record_from_limbs({{39, 1}}));
}

TEST_P(FastProduct, RoundsUpFromACarryIntoLimb40) {
    const QZCICalcNumber a = record_from_limbs({{30, 99999999}});
    EXPECT_EQ(taken(engine::mul, Stretch::product, a, a), Taken::finished);
    QZCICalcNumber product;
    engine::mul({false, true}, &a, &a, &product);
    EXPECT_EQ(product, record_from_limbs({{39, 1}}));
}

TEST_P(FastProduct, IsNotTriedWhereTheProductIsInfinite) {
    EXPECT_EQ(taken(engine::mul, Stretch::product, decimal("1e80"), decimal("1e80")), Taken::not_tried);
    /* 10^79 * 10^81 loses its top limb and is zero. */
    EXPECT_EQ(taken(engine::mul, Stretch::product, decimal("1e79"), decimal("1e81")), Taken::finished);
}

TEST_P(FastQuotientByLimb, IsNotTriedOutsideTheRecord) {
    EXPECT_EQ(taken(engine::div, Stretch::quotient_by_limb, decimal("1e152"), decimal("1")),
              Taken::not_tried);
    EXPECT_EQ(taken(engine::div, Stretch::quotient_by_limb, decimal("6e-153"), decimal("1e8")),
              Taken::not_tried);
    EXPECT_EQ(taken(engine::div, Stretch::quotient_by_limb, decimal("1e151"), decimal("1")), Taken::finished);
    EXPECT_EQ(taken(engine::div, Stretch::quotient_by_limb, decimal("6e-153"), decimal("7")),
              Taken::finished);
}

TEST_P(FastQuotientByLimb, IsNotTriedForADivisorAbove99999999) {
    QZCICalcNumber divisor = decimal("99999999");
    EXPECT_EQ(taken(engine::div, Stretch::quotient_by_limb, decimal("5"), divisor), Taken::finished);
    ++divisor.data_part[19];
    EXPECT_EQ(taken(engine::div, Stretch::quotient_by_limb, decimal("5"), divisor), Taken::not_tried);
}

TEST_P(FastQuotient, DeclinesADivisorThatScalesToALimbOf100000000) {
    /* The leading limb 1 gives the factor 50000000, and 2 * 50000000 is 10^8. */
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("7"), decimal("1.0000000300000002")),
              Taken::declined);
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("7"), decimal("1.0000000300000005")),
              Taken::finished);
    /* A carry into that limb makes it 10^8 and more, which carries as usual. */
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("7"), decimal("1.000000020000000700000009")),
              Taken::finished);
}

TEST_P(FastQuotient, TakesADividendThatScalesToALimbOf100000000WhereDigitsStayInside) {
    const QZCICalcNumber divisor = decimal("1.414213562373095048801688724209698078569671875376948073176679");
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("3.00000002"), divisor), Taken::finished);
    /* The quotient by 1.00000000... has the dividend's own limb 2 among its digits. */
    EXPECT_EQ(
        taken(engine::div, Stretch::quotient, decimal("3.00000002"), decimal("1.000000000000000100000007")),
        Taken::declined);
    /* As the leading limb it does no harm, whatever the digits: these are 1, 99999996, 0 ... */
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("2"), decimal("1.000000020000000400000007")),
              Taken::finished);
}

TEST_P(FastQuotient, HasTheLaidDownDigitsOfATwoLimbDivisor) {
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("4"), decimal("2.03")), Taken::finished);
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("7"), decimal("12.5")), Taken::finished);
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("7.25"), decimal("1.99999999")), Taken::finished);
}

TEST_P(FastQuotient, DeclinesATwoLimbDivisorThatMayMakeALimbOf100000000) {
    /* Leading scaled limbs of 50000000, twice which is 10^8, and of 50000001. */
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("7"), decimal("1.00000001")), Taken::declined);
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("7"), decimal("50000000.5")), Taken::declined);
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("7"), decimal("1.00000003")), Taken::finished);
    /* The factor 20000000 makes the lower limb 5 one of 10^8. */
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("7"), decimal("4.00000005")), Taken::declined);
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("7"), decimal("4.00000006")), Taken::finished);
}

TEST_P(FastQuotient, DeclinesALaterLimbThatScalesTo100000000UnderATwoLimbDivisor) {
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("3.00000002"), decimal("1.5")), Taken::declined);
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("3.00000003"), decimal("1.5")), Taken::finished);
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("2"), decimal("1.5")), Taken::finished);
}

TEST_P(FastQuotient, DeclinesADigitWhoseProductMayHoldALimbOf100000000) {
    /* Leading limb 50000000: factor 1. The quotient's leading digit 4 meets the divisor limb 25000000 = 10^8
     * / 4. */
    const QZCICalcNumber divisor = decimal("50000000.250000000000000700000003");
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("200000001.1"), divisor), Taken::declined);
    EXPECT_EQ(taken(engine::div, Stretch::quotient, decimal("371234567.1"), divisor), Taken::finished);
}

TEST_P(FastQuotient, KnowsExactQuotients) {
    const QZCICalcNumber divisor = decimal("12345678.987654321234567898765");
    for (const char* factor : {"7", "1234.5", "0.0000000000000001", "99999999.99999999"}) {
        const QZCICalcNumber quotient = decimal(factor);
        QZCICalcNumber dividend;
        engine::mul({false, false}, &divisor, &quotient, &dividend);
        taken(engine::div, Stretch::quotient, dividend, divisor);
        QZCICalcNumber result;
        engine::div({false, true}, &dividend, &divisor, &result);
        EXPECT_EQ(result, quotient) << factor;
    }
}

/* Digits 5..99999997 after the first one, and a next one that is so whatever the error of its estimate. */
TEST(QuotientDigits, StayInsideUpToTheirBounds) {
    constexpr limbs::Limb inside[] = {0, 5, 99999997, 50000000};
    constexpr limbs::Limb below[] = {0, 4, 99999997, 50000000};
    constexpr limbs::Limb above[] = {0, 5, 99999998, 50000000};
    constexpr std::int64_t least = 6 * std::int64_t{limbs::base};
    constexpr std::int64_t bound = (std::int64_t{limbs::base} - 4) * limbs::base;
    EXPECT_TRUE(limbs::digits_stay_inside(inside, 4, 0, least));
    EXPECT_FALSE(limbs::digits_stay_inside(inside, 4, 0, least - 1));
    EXPECT_TRUE(limbs::digits_stay_inside(inside, 4, 0, bound - 1));
    EXPECT_FALSE(limbs::digits_stay_inside(inside, 4, 0, bound));
    EXPECT_TRUE(limbs::digits_stay_inside(inside, 3, 1, 0));
    for (const limbs::Limb* const digits : {below, above}) {
        EXPECT_FALSE(limbs::digits_stay_inside(digits, 3, 0, least));
        EXPECT_TRUE(limbs::digits_stay_inside(digits, 1, 0, least));
    }
    EXPECT_FALSE(limbs::digits_stay_inside(above, 2, 1, least));
}

/* An unrefined trial digit that is two too large leaves a rest that is not the true one, and here the digit after
 * it a rest of exactly -10^16, which counts as 0. */
TEST_P(FastQuotient, TakesARestOfAWholeWindowFor0) {
    struct Case {
        ub4 dividend[4];
        ub4 divisor[2];
    };

    const Case cases[] = {{{50000243, 43260731, 98038310, 21922236}, {50000244, 99999709}},
                          {{50000133, 45260105, 21336422, 8687546}, {50000134, 99996061}},
                          {{50000485, 27197588, 91615346, 71578056}, {50000486, 99999516}}};
    for (const auto& [u, v] : cases) {
        const QZCICalcNumber dividend = record_from_limbs(
            {{19, u[0]}, {20, u[1]}, {21, u[2]}, {22, u[3]}, {23, 12345678}, {24, 12345678}, {25, 12345678}});
        const QZCICalcNumber divisor = record_from_limbs({{19, v[0]}, {20, v[1]}});
        EXPECT_EQ(taken(engine::div, Stretch::quotient, dividend, divisor), Taken::finished);
    }
}

/* The quotient ends in half a unit of limb 39, or lacks next to nothing of it: what is left after its last digit
 * tells, and that shows beyond the end of both operands. */
TEST_P(FastQuotient, RoundsByWhatIsLeftBeyondTheOperands) {
    RandomRecords random(20261121);
    for (int i = 0; i < 20; ++i) {
        LimbString divisor = ordinary_limbs(random, QZCI_CALC_LIMBS);
        LimbString quotient = ordinary_limbs(random, 22);
        divisor.back() = 3;
        quotient.back() = 7;
        quotient.front() = 50000000;
        const QZCICalcNumber below = record_from_string(product(quotient, divisor), 60);
        const QZCICalcNumber by = record_from_string(divisor, 39);
        EXPECT_EQ(taken(engine::div, Stretch::quotient, below, by), Taken::finished);
        QZCICalcNumber above = below;
        ++above.data_part[39];
        EXPECT_EQ(taken(engine::div, Stretch::quotient, above, by), Taken::finished);
    }
}

TEST_P(FastRemainder, IsNotTriedWhereNothingIsDividedByTwoLimbs) {
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7"), decimal("3")), Taken::not_tried);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7.25"), decimal("-7.25")), Taken::not_tried);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7.25"), decimal("7.5")), Taken::not_tried);
    for (const char* special : {"0", "-0", "inf", "-inf"}) {
        EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal(special), decimal("1.5")), Taken::not_tried);
        EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("1.5"), decimal(special)), Taken::not_tried);
    }
}

/* One limb divides any limbs, and those below it stay as they are. */
TEST_P(FastRemainder, ByOneLimbTakesAnyLimbs) {
    const QZCICalcNumber large = record_with_large_limbs();
    QZCICalcNumber large_divisor = decimal("3");
    large_divisor.data_part[19] = 4294967295U;
    QZCICalcNumber cut = decimal("7.5");
    cut.end_pos = 19;
    const std::pair<QZCICalcNumber, QZCICalcNumber> cases[] = {
        {decimal("7"), decimal("3")},
        {decimal("-7.000000000000000000000000000000000000000000000000000000000000000009"), decimal("3")},
        {decimal("6"), decimal("-3")},
        {decimal("1e159"), decimal("7e-160")},
        {decimal("99999999e144"), decimal("99999999")},
        {large, decimal("1")},
        {large, decimal("3e-16")},
        {large, decimal("0.00000007")},
        {decimal("1e159"), large_divisor},
        {cut, decimal("3")},
        {cut, decimal("0.00000003")}};
    for (const auto& [modend, modor] : cases) {
        EXPECT_EQ(taken(engine::mod, Stretch::remainder_by_limb, modend, modor), Taken::finished);
        EXPECT_EQ(taken(engine::mod, Stretch::remainder, modend, modor), Taken::not_tried);
    }
}

TEST_P(FastRemainder, ByOneLimbIsNotTriedWhereNothingIsDivided) {
    for (const auto& [modend, modor] :
         {std::pair("3", "3"), std::pair("-3", "3"), std::pair("2.5", "3"), std::pair("0", "3"),
          std::pair("inf", "3"), std::pair("3", "0"), std::pair("3", "inf")}) {
        EXPECT_EQ(taken(engine::mod, Stretch::remainder_by_limb, decimal(modend), decimal(modor)),
                  Taken::not_tried);
    }
}

/* The result may be either operand. */
TEST_P(FastRemainder, ByOneLimbMayTakeThePlaceOfAnOperand) {
    const QZCICalcNumber modend = decimal("98765432109876543210.0123456789");
    const QZCICalcNumber modor = decimal("70000000");
    QZCICalcNumber expected;
    engine::mod({false, false}, &modend, &modor, &expected);
    QZCICalcNumber a = modend;
    engine::mod({false, true}, &a, &modor, &a);
    EXPECT_EQ(a, expected);
    QZCICalcNumber b = modor;
    engine::mod({false, true}, &modend, &b, &b);
    EXPECT_EQ(b, expected);
}

TEST_P(FastRemainder, TakesLimbsAfterTheDividendsEndPosition) {
    QZCICalcNumber cut = decimal("7.5");
    cut.end_pos = 19;
    for (const char* divisor : {"2.25", "1.4142135623730950488"}) {
        EXPECT_EQ(taken(engine::mod, Stretch::remainder, cut, decimal(divisor)), Taken::finished);
    }
}

TEST_P(FastRemainder, DeclinesLimbsAbove99999999) {
    const QZCICalcNumber large = record_with_large_limbs();
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, large, decimal("1.5")), Taken::declined);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7"), large), Taken::declined);
}

/* The true remainder, and one that the laid-down steps make of it. */
TEST_P(FastRemainder, HasTheLaidDownDigitsOfATwoLimbDivisor) {
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7.3000000000000005"), decimal("2.5")),
              Taken::finished);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("-13"), decimal("5.5")), Taken::finished);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("4e40"), decimal("2.03")), Taken::finished);
}

TEST_P(FastRemainder, DeclinesATwoLimbDivisorThatMayMakeALimbOf100000000) {
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7"), decimal("1.00000001")), Taken::declined);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7"), decimal("1.00000003")), Taken::finished);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7"), decimal("4.00000005")), Taken::declined);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7"), decimal("4.00000006")), Taken::finished);
}

TEST_P(FastRemainder, DeclinesALimbThatScalesTo100000000SaveTheLeadingDividendLimb) {
    const QZCICalcNumber divisor = decimal("1.0000000700000005");
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7"), decimal("1.0000000300000002")),
              Taken::declined);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("7"), divisor), Taken::finished);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("3.00000002"), divisor), Taken::declined);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("2"), divisor), Taken::finished);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("3.00000002"), decimal("1.5")), Taken::declined);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("2"), decimal("1.5")), Taken::finished);
    /* Limbs below the divisor's last one take no part. */
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("3.000000030000000000000002"), decimal("1.5")),
              Taken::finished);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("3.00000003000000000000000000000002"), divisor),
              Taken::finished);
}

TEST_P(FastRemainder, DeclinesADigitWhoseProductMayHoldALimbOf100000000) {
    const QZCICalcNumber divisor = decimal("50000000.250000000000000700000003");
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("200000001.1"), divisor), Taken::declined);
    EXPECT_EQ(taken(engine::mod, Stretch::remainder, decimal("371234567.1"), divisor), Taken::finished);
}

/* The first of the two digits is 0. A remainder by many digits before leaves others behind. */
TEST_P(FastRemainder, DeclinesASecondDigitWhoseProductMayHoldALimbOf100000000) {
    const QZCICalcNumber divisor = decimal("50000000.250000000000000700000003");
    const QZCICalcNumber many_digits = decimal("371234567123456789123456789123456789.1");
    const QZCICalcNumber two_digits = decimal("200000001.1");
    QZCICalcNumber remainder;
    Tally tally = {};
    engine::mod({false, true}, &many_digits, &divisor, &remainder);
    engine::mod({false, true, &tally}, &two_digits, &divisor, &remainder);
    EXPECT_EQ(taken_of(tally, Stretch::remainder), Taken::declined);
}

TEST_P(FastRemainder, OfAMultipleIsZeroOrTheDivisorLessOne) {
    const QZCICalcNumber divisor = decimal("12345678.987654321234567898765");
    const QZCICalcNumber last_place = decimal("1e-160");
    for (const char* factor : {"7", "123456789", "99999999", "9999999999999999", "12345678901234567890123"}) {
        const QZCICalcNumber quotient = decimal(factor);
        QZCICalcNumber multiple;
        QZCICalcNumber below;
        engine::mul({false, false}, &divisor, &quotient, &multiple);
        engine::sub({false, false}, &multiple, &last_place, &below);
        EXPECT_EQ(taken(engine::mod, Stretch::remainder, multiple, divisor), Taken::finished) << factor;
        EXPECT_EQ(taken(engine::mod, Stretch::remainder, below, divisor), Taken::finished) << factor;
        QZCICalcNumber rest;
        engine::mod({false, true}, &multiple, &divisor, &rest);
        EXPECT_EQ(rest.is_zero, 1) << factor;
    }
}

TEST_P(FastTruncation, LeavesInfinitiesToThePlainSteps) {
    EXPECT_EQ(taken_for(engine::ceil, decimal("inf")), Taken::not_tried);
    EXPECT_EQ(taken_for(engine::floor, decimal("-inf")), Taken::not_tried);
    EXPECT_EQ(taken_for(engine::ceil, decimal("-0")), Taken::finished);
}

TEST_P(FastTruncation, DeclinesACarryOutOfLimb19) {
    EXPECT_EQ(taken_for(engine::ceil, decimal("99999999.5")), Taken::declined);
    EXPECT_EQ(taken_for(engine::ceil, decimal("99999998.5")), Taken::finished);
    EXPECT_EQ(taken_for(engine::ceil, decimal("99999999")), Taken::finished);
    EXPECT_EQ(taken_for(engine::ceil, decimal("-99999999.5")), Taken::finished);
    EXPECT_EQ(taken_for(engine::floor, decimal("-99999999.5")), Taken::declined);
    EXPECT_EQ(taken_for(engine::floor, decimal("-0.5")), Taken::finished);
}

TEST_P(FastTruncation, DeclinesLimbsAbove99999999BeforeThePointAlone) {
    EXPECT_EQ(taken_for(engine::ceil, record_from_limbs({{18, 100000000}, {20, 1}})), Taken::declined);
    EXPECT_EQ(taken_for(engine::ceil, record_from_limbs({{18, 99999999}, {20, 100000000}})), Taken::finished);
}

TEST_P(FastUnpacking, IsNotTriedForSpecialValuesAndLengths) {
    EXPECT_EQ(taken_for_unpacking("0180"), Taken::not_tried);
    EXPECT_EQ(taken_for_unpacking("158001"), Taken::not_tried);
    EXPECT_EQ(taken_for_unpacking("0100"), Taken::not_tried);
    EXPECT_EQ(taken_for_unpacking("00c102"), Taken::not_tried);
    EXPECT_EQ(taken_for_unpacking("16c102"), Taken::not_tried);
    EXPECT_EQ(taken_for_unpacking("0105"), Taken::not_tried);
    EXPECT_EQ(taken_for_unpacking("01c1"), Taken::not_tried);
    EXPECT_EQ(taken_for_unpacking("0205"), Taken::finished);
    EXPECT_EQ(taken_for_unpacking("02ff65"), Taken::declined); /* positive infinity */
    EXPECT_EQ(taken_for_unpacking("02ff64"), Taken::finished);
}

TEST_P(FastUnpacking, TakesAnyNumberOfPairs) {
    for (int pairs = 1; pairs <= 20; ++pairs) {
        std::string positive = hex_text(std::array{static_cast<ub1>(pairs + 1)}) + "c1";
        std::string negative = hex_text(std::array{static_cast<ub1>(std::min(pairs + 2, 21))}) + "3e";
        for (int i = 0; i < pairs; ++i) {
            positive += "0d";
            negative += "59";
        }
        EXPECT_EQ(taken_for_unpacking(positive), Taken::finished) << pairs;
        EXPECT_EQ(taken_for_unpacking(negative + (pairs < 20 ? "66" : "")), Taken::finished) << pairs;
    }
}

TEST_P(FastUnpacking, DeclinesBytesThatAreNoPairs) {
    EXPECT_EQ(taken_for_unpacking("02c101"), Taken::finished);
    EXPECT_EQ(taken_for_unpacking("02c164"), Taken::finished);
    EXPECT_EQ(taken_for_unpacking("02c100"), Taken::declined);
    EXPECT_EQ(taken_for_unpacking("02c165"), Taken::declined);
    EXPECT_EQ(taken_for_unpacking("02c1ff"), Taken::declined);
    EXPECT_EQ(taken_for_unpacking("033e0266"), Taken::finished);
    EXPECT_EQ(taken_for_unpacking("033e6566"), Taken::finished);
    EXPECT_EQ(taken_for_unpacking("033e0166"), Taken::declined);
    EXPECT_EQ(taken_for_unpacking("033e6666"), Taken::declined);
    EXPECT_EQ(taken_for_unpacking("033e8266"), Taken::declined);
    /* The last byte of a short negative number is a terminator, unseen; bytes after the length do not count. */
    EXPECT_EQ(taken_for_unpacking("033e6500"), Taken::finished);
    EXPECT_EQ(taken_for_unpacking("02c10200ff"), Taken::finished);
}

TEST_P(FastPacking, IsNotTriedNearTheEndsOfTheExponents) {
    EXPECT_EQ(taken_for_packing(record_from_limbs({{4, 1}})), Taken::not_tried);
    EXPECT_EQ(taken_for_packing(record_from_limbs({{5, 99999999}})), Taken::finished);
    EXPECT_EQ(taken_for_packing(record_from_limbs({{35, 1}})), Taken::finished);
    EXPECT_EQ(taken_for_packing(record_from_limbs({{36, 99999999}}, -1)), Taken::not_tried);
    EXPECT_EQ(taken_for_packing(decimal("0")), Taken::not_tried);
    EXPECT_EQ(taken_for_packing(decimal("-inf")), Taken::not_tried);
}

TEST_P(FastPacking, DeclinesTwentyPairsOf99ThatRoundUp) {
    const std::string nines = "0." + std::string(40, '9');
    EXPECT_EQ(taken_for_packing(decimal((nines + "50").c_str())), Taken::declined);
    EXPECT_EQ(taken_for_packing(decimal((nines + "49").c_str())), Taken::finished);
    EXPECT_EQ(taken_for_packing(decimal(nines.c_str())), Taken::finished);
    EXPECT_EQ(taken_for_packing(decimal(("-0.98" + std::string(38, '9') + "50").c_str())), Taken::finished);
}

TEST_P(FastPacking, DeclinesLimbsItWouldSplitAbove99999999) {
    EXPECT_EQ(taken_for_packing(record_from_limbs({{19, 100000000}})), Taken::declined);
    EXPECT_EQ(taken_for_packing(record_from_limbs({{19, 1}, {24, 100000000}, {25, 1}})), Taken::declined);
    EXPECT_EQ(taken_for_packing(record_from_limbs({{19, 1}, {30, 100000000}})), Taken::declined);
    /* A seventh limb tells only that there is one. */
    EXPECT_EQ(taken_for_packing(record_from_limbs({{19, 1}, {25, 100000000}, {30, 1}})), Taken::finished);
}

TEST_P(FastPacking, DeclinesPositionsAtZeroLimbs) {
    EXPECT_EQ(taken_for_packing(record_from_fields("1,0,18,20,0,z19.1.2.z19")), Taken::declined);
    EXPECT_EQ(taken_for_packing(record_from_fields("1,0,19,30,0,z19.1.2.z19")), Taken::declined);
    EXPECT_EQ(taken_for_packing(record_from_fields("1,0,19,20,0,z19.1.2.z19")), Taken::finished);
}

/* Twenty pairs and more than twenty, at each place of the first limb, round up and down. */
TEST_P(FastPacking, RoundsByThePairAfterTheTwentieth) {
    for (const char* leading : {"1", "12", "123", "1234", "12345", "1234567", "12345678"}) {
        for (const char* sign : {"", "-"}) {
            for (const char* after : {"", "49", "50", "4999", "0000000000000001", "99"}) {
                for (const char* last : {"00", "99", "37"}) {
                    const std::string zeros(36, '0');
                    const std::string number = std::string(sign) + leading + '.' + zeros + last + after;
                    EXPECT_EQ(taken_for_packing(decimal(number.c_str())), Taken::finished) << number;
                }
            }
        }
    }
}

template <sword (*function)(Trace, const QZCICalcNumber*, QZCICalcNumber*)>
Taken taken_for_series(const char* argument) {
    const auto call = [](Trace t, const QZCICalcNumber* a, const QZCICalcNumber*, QZCICalcNumber* result) {
        return function(t, a, result);
    };
    return taken(call, Stretch::series, decimal(argument), decimal(argument));
}

TEST_P(FastSeries, SumsTheFunctions) {
    EXPECT_EQ(taken_for_series<engine::sin>("1.25"), Taken::finished);
    EXPECT_EQ(taken_for_series<engine::sin>("-1e-80"), Taken::finished);
    EXPECT_EQ(taken_for_series<engine::exp>("-300.5"), Taken::finished);
    EXPECT_EQ(taken_for_series<engine::atan>("-0.3"), Taken::finished);
    EXPECT_EQ(taken_for_series<engine::ln>("2"), Taken::finished);
}

/* 0.03 / 2.03 has limbs above 99999999. */
TEST_P(FastSeries, DeclinesLimbsAbove99999999) {
    EXPECT_EQ(taken_for_series<engine::ln>("1.03"), Taken::declined);
    EXPECT_EQ(taken_for_series<engine::ln>("1.05"), Taken::finished);
}

TEST_P(FastRoot, JumpsToAnIsolatedRoot) {
    EXPECT_EQ(taken_for_root(decimal("3")), Taken::finished);
    EXPECT_EQ(taken_for_root(decimal("7.00000000000000000000000001")), Taken::finished);
}

/* The leading pair of limbs of the root is a power of two, where the inverse of the divisor is at its largest. */
TEST_P(FastRoot, JumpsToRootsJustAboveAPowerOfTwo) {
    constexpr engine::Trace plain = {false, false};
    const QZCICalcNumber root_of_two = decimal("1.4142135623730950488016887");
    for (int exponent = 27; exponent <= 53; ++exponent) {
        QZCICalcNumber power;
        initCalcNumberFromInt(&power, sb8{1} << exponent);
        QZCICalcNumber square;
        engine::mul(plain, &power, &power, &square);
        EXPECT_EQ(taken_for_root(square), Taken::finished) << exponent;
        QZCICalcNumber number;
        engine::mul(plain, &power, &root_of_two, &number);
        engine::add(plain, &square, &number, &number);
        EXPECT_EQ(taken_for_root(number), Taken::finished) << exponent;
    }
}

/* The root ends in a quarter of a unit of limb 39, where its rounding turns, but for less than 10^-9 of a unit. */
TEST_P(FastRoot, JumpsBesideAQuarterOfTheLastPlace) {
    RandomRecords random(20261122);
    int jumps = 0;
    constexpr int roots = 20;
    for (int i = 0; i < roots; ++i) {
        LimbString root = ordinary_limbs(random, 23);
        root.front() = 25000000;
        root.back() = 10;
        const QZCICalcNumber below = record_from_string(product(root, root), 61);
        QZCICalcNumber above = below;
        ++above.data_part[39];
        jumps += taken_for_root(below) == Taken::finished ? 1 : 0;
        jumps += taken_for_root(above) == Taken::finished ? 1 : 0;
    }
    EXPECT_GT(jumps, roots);
}

TEST_P(FastRoot, JumpsToAnExactRoot) {
    EXPECT_EQ(taken_for_root(decimal("1e100")), Taken::finished);
    EXPECT_EQ(taken_for_root(decimal("1e-80")), Taken::finished);
    EXPECT_EQ(taken_for_root(decimal("152415787532388367501905199875019052100")), Taken::finished);
}

/* 2 scales to a limb of 10^8, but as its leading one; in 3.00000002 another limb does. */
TEST_P(FastRoot, WalksWhereALaterLimbScalesTo100000000) {
    EXPECT_EQ(taken_for_root(decimal("2")), Taken::finished);
    EXPECT_EQ(taken_for_root(decimal("2.5")), Taken::finished);
    EXPECT_EQ(taken_for_root(decimal("3.00000002")), Taken::declined);
}

/* The iteration ends 21 units of the last place above the root: a product limb of 10^8 meets a borrow and a
 * zero limb. A jump without the test of isolation would be wrong here. */
TEST_P(FastRoot, WalksToAnEndThatIsNotTheRoot) {
    const QZCICalcNumber number =
        decimal("3.948383042540899942601033785142013664150640921121823297494522481044947174508251"
                "6706084711236717707734206413648184133600498949746975858676740138817488979834455918");
    EXPECT_EQ(taken_for_root(number), Taken::declined);
    QZCICalcNumber root;
    engine::sqrt({false, true}, &number, &root);
    EXPECT_EQ(root.data_part[39], 72441857U);
}

/* Just below the squares of short numbers the iteration ends far from the root: a quotient at rest has a limb above
 * 99999999, or a halving turns a last limb of 99999999 into 1. */
TEST_P(FastRoot, WalksBelowTheSquaresOfShortNumbers) {
    for (const char* text : {"3.99999999999999999999992", "3.999999999999999999999999999999934",
                             "15.999999999999999999999999956", "0.999999999999999999999999999999981"}) {
        EXPECT_EQ(taken_for_root(decimal(text)), Taken::declined) << text;
    }
    const QZCICalcNumber number = decimal("24.999999999999997");
    EXPECT_EQ(taken_for_root(number), Taken::declined);
    QZCICalcNumber root;
    engine::sqrt({false, true}, &number, &root);
    EXPECT_EQ(root.data_part[38], 71853309U);
    EXPECT_EQ(root.data_part[39], 1U); /* of the true root, 99999997 */
}

/* 7 after the units and a root of limbs 23456789 are far from every condition; the factor of the long division is
 * 4, by which 25000000 becomes 100000000. */
struct RootBesideCondition {
    int limb; /* of the root, other than 23456789 */
    ub4 declined;
    ub4 taken;
};

bool is_isolated(ub4 number_limb, int limb, ub4 root_limb) {
    QZCICalcNumber number = decimal("2");
    number.data_part[20] = number_limb;
    QZCICalcNumber root = decimal("0");
    std::fill(root.data_part + 17, root.data_part + 40, 23456789U);
    root.data_part[limb] = root_limb;
    return limbs::is_isolated_fixed_point({number.data_part, 19, 20}, {root.data_part, 17, 39});
}

TEST(IsolatedFixedPoint, NeedsEachCondition) {
    constexpr RootBesideCondition conditions[] = {
        {39, 20003, 20004},       {39, 99989995, 99989994}, {39, 80664063, 80664062},
        {39, 80664064, 80664065}, {39, 24990000, 24989999}, {39, 25010000, 25010001},
        {38, 50003750, 50003751}, {38, 24998750, 24998749}, {30, 10000, 10001},
        {30, 50002500, 50002501},
    };
    for (const RootBesideCondition& condition : conditions) {
        EXPECT_FALSE(is_isolated(7, condition.limb, condition.declined)) << condition.declined;
        EXPECT_TRUE(is_isolated(7, condition.limb, condition.taken)) << condition.taken;
    }
    EXPECT_FALSE(is_isolated(25000000, 39, 23456789));
    EXPECT_TRUE(is_isolated(25000001, 39, 23456789));
}

TEST(IsolatedFixedPoint, NeedsThreeLimbsDownToTheLastOne) {
    const QZCICalcNumber number = decimal("2");
    QZCICalcNumber root = decimal("0");
    std::fill(root.data_part, root.data_part + 40, 23456789U);
    const auto is_isolated_from = [&](int first, int last) {
        return limbs::is_isolated_fixed_point({number.data_part, 19, 19}, {root.data_part, first, last});
    };
    EXPECT_TRUE(is_isolated_from(37, 39));
    EXPECT_FALSE(is_isolated_from(38, 39));
    EXPECT_FALSE(is_isolated_from(17, 38));
}

/* The factor is 50000000: each limb becomes half of the next one, the leading one 50000000 and half of the next. */
TEST(IsolatedFixedPoint, HasNoScaledLimbNearHalfTheBaseWhereTheRootStartsWithOne) {
    const QZCICalcNumber number = decimal("2");
    QZCICalcNumber root = decimal("0");
    std::fill(root.data_part + 19, root.data_part + 40, 40000000U);
    root.data_part[17] = 1;
    const auto is_isolated_with = [&](int limb, ub4 value) {
        QZCICalcNumber changed = root;
        changed.data_part[limb] = value;
        return limbs::is_isolated_fixed_point({number.data_part, 19, 19}, {changed.data_part, 17, 39});
    };
    EXPECT_FALSE(is_isolated_with(18, 10004));
    EXPECT_TRUE(is_isolated_with(18, 10006));
    root.data_part[18] = 10006;
    EXPECT_FALSE(is_isolated_with(30, 99989996));
    EXPECT_TRUE(is_isolated_with(30, 99989994));
}

/* Two neighbouring guesses satisfy the condition for an end. */
TEST_P(FastRoot, WalksWhereTwoEndsAreSideBySide) {
    const QZCICalcNumber number =
        decimal("0.649439026817810204357118806767576036108813261818247901850229812548849268640787"
                "5719025215689535028404439403410823941189675875514073587611226924320309633094962877");
    EXPECT_EQ(taken_for_root(number), Taken::declined);
}

INSTANTIATE_TEST_SUITE_P(Kernels, FastKernels, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastSum, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastDifference, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastProduct, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastQuotientByLimb, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastQuotient, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastRemainder, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastTruncation, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastUnpacking, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastPacking, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastSeries, testing::ValuesIn(all_levels), level_name);
INSTANTIATE_TEST_SUITE_P(Kernels, FastRoot, testing::ValuesIn(all_levels), level_name);

} // namespace
} // namespace qzoci::test
