#include "tests/support/records.h"
#include "tests/text/exact_value.h"

#include <qzoci/decimal_text.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <random>

namespace qzoci::test {
namespace {

TEST(FormatRecord, WritesPlainDecimals) {
    EXPECT_EQ(format_record(record_from_limbs({{19, 1}})), "1");
    EXPECT_EQ(format_record(record_from_limbs({{18, 1}, {20, 50000000}}, -1)), "-100000000.5");
    EXPECT_EQ(format_record(record_from_limbs({{20, 1}})), "0.00000001");
    EXPECT_EQ(format_record(record_from_limbs({{0, 99999999}})), "99999999" + std::string(152, '0'));
    EXPECT_EQ(format_record(record_from_limbs({{39, 10}})), "0." + std::string(158, '0') + "1");
}

TEST(FormatRecord, ZeroHasNoSign) {
    QZCICalcNumber zero;
    initNullValue(&zero);
    EXPECT_EQ(format_record(zero), "0");
    zero.num_signed = -1;
    EXPECT_EQ(format_record(zero), "0");
    zero.num_signed = 0;
    EXPECT_EQ(format_record(zero), "0");
}

TEST(FormatRecord, NamesInfinities) {
    QZCICalcNumber infinity = poison_record();
    infinity.num_signed = 1;
    EXPECT_EQ(format_record(infinity), "inf");
    infinity.num_signed = -1;
    EXPECT_EQ(format_record(infinity), "-inf");
    infinity.num_signed = 0;
    EXPECT_EQ(format_record(infinity), "inf");
}

TEST(FormatRecord, CarriesLimbsAboveTheBase) {
    constexpr ub4 largest = std::numeric_limits<ub4>::max();
    EXPECT_EQ(format_record(record_from_limbs({{19, 100000000}})), "100000000");
    EXPECT_EQ(format_record(record_from_limbs({{20, 100000000}}, -1)), "-1");
    EXPECT_EQ(format_record(record_from_limbs({{21, largest}})), "0.0000004294967295");
    EXPECT_EQ(format_record(record_from_limbs({{0, largest}})), "4294967295" + std::string(152, '0'));
}

TEST(FormatRecord, TrustsNeitherPositionsNorTheZeroFlag) {
    QZCICalcNumber record = record_from_limbs({{19, 12}, {20, 50000000}});
    for (const sb1 position : {sb1{-128}, sb1{-1}, sb1{0}, sb1{39}, sb1{40}, sb1{127}}) {
        record.start_pos = position;
        record.end_pos = static_cast<sb1>(-position - 1);
        record.is_zero = position;
        EXPECT_EQ(format_record(record), "12.5") << int{position};
    }
}

TEST(FormatRecord, OnlyMinusOneIsANegativeSign) {
    QZCICalcNumber record = record_from_limbs({{19, 7}});
    for (int sign = -128; sign <= 127; ++sign) {
        record.num_signed = static_cast<sb1>(sign);
        EXPECT_EQ(format_record(record), sign == -1 ? "-7" : "7") << sign;
    }
}

TEST(ExactValue, OnlyTheOneFormOfAPlainDecimalIsTaken) {
    for (const std::string_view text : {"0", "1", "-1", "10", "0.5", "-0.05", "10.01"}) {
        EXPECT_TRUE(is_plain_decimal(text)) << text;
    }
    for (const std::string_view text : {"", "-", "-0", "00", "01", "0.", ".5", "0.0", "0.50", "1.", "-00.5",
                                        "+1", "1e5", "1.2.3", "--1", "inf"}) {
        EXPECT_FALSE(is_plain_decimal(text)) << text;
    }
}

/* A quotient whose limbs are not below the base. */
TEST(FormatRecord, AddsUpLimbsThatADivisionLeaves) {
    EXPECT_EQ(format_record(record_from_limbs({{19, 1}, {20, 97044335}, {21, 145320199}, {22, 100000003}})),
              "1.970443364532020000000003");
}

QZCICalcNumber random_record(std::mt19937_64& random) {
    constexpr ub4 largest = std::numeric_limits<ub4>::max();
    QZCICalcNumber record = poison_record();
    record.num_infinity = 0;
    record.num_signed = random() % 2 == 0 ? sb1{1} : sb1{-1};
    const auto start = random() % QZCI_CALC_LIMBS;
    const auto end = start + random() % (QZCI_CALC_LIMBS - start);
    for (std::size_t i = 0; i < QZCI_CALC_LIMBS; ++i) {
        ub4& limb = record.data_part[i];
        const auto any = static_cast<ub4>(random());
        switch (i < start || i > end ? 0 : random() % 6) {
        case 0:
            limb = 0;
            break;
        case 1:
            limb = 99999999;
            break;
        case 2:
            limb = 100000000;
            break;
        case 3:
            limb = largest - any % 3;
            break;
        case 4:
            limb = any;
            break;
        default:
            limb = any % 100000000;
            break;
        }
    }
    return record;
}

TEST(FormatRecord, RandomLimbsHaveTheirExactValue) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 50000; ++i) {
        const QZCICalcNumber record = random_record(random);
        const std::string text = format_record(record);
        ASSERT_TRUE(is_plain_decimal(text)) << text << ' ' << fields_text(record);
        ASSERT_EQ(value_of_plain_decimal(text), value_of_limbs(record)) << fields_text(record);
    }
}

TEST(FormatRecord, AllLimbsAtTheirLargestHaveTheirExactValue) {
    QZCICalcNumber record = poison_record();
    record.num_infinity = 0;
    record.num_signed = -1;
    std::fill(std::begin(record.data_part), std::end(record.data_part), std::numeric_limits<ub4>::max());
    const std::string text = format_record(record);
    EXPECT_TRUE(is_plain_decimal(text)) << text;
    EXPECT_EQ(value_of_plain_decimal(text), value_of_limbs(record));
    EXPECT_EQ(text.find('.'), std::string("-").size() + 162);
}

} // namespace
} // namespace qzoci::test
