#include "tests/support/records.h"
#include "tests/text/exact_value.h"
#include "tests/text/reference_text.h"
#include "tests/text/stored_shapes.h"

#include <qzoci/number_text.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

/* ---- Formats ---- */

std::string formatted(std::string_view text, const text_format& format) {
    return to_string(parse(text).value(), format);
}

constexpr text_format scientific{.notation = text_notation::scientific};
constexpr text_format engineering{.notation = text_notation::engineering};

TEST(TextFormat, PlainHasAllDigitsAndNoExponent) {
    EXPECT_EQ(formatted("12345.678", {}), "12345.678");
    EXPECT_EQ(formatted("1e20", {}), "100000000000000000000");
    EXPECT_EQ(formatted("-1e-5", {}), "-0.00001");
}

TEST(TextFormat, ScientificHasOneDigitBeforeThePoint) {
    EXPECT_EQ(formatted("12345.678", scientific), "1.2345678e4");
    EXPECT_EQ(formatted("-0.00123", scientific), "-1.23e-3");
    EXPECT_EQ(formatted("1e125", scientific), "1e125");
    EXPECT_EQ(formatted("7", scientific), "7e0");
    EXPECT_EQ(formatted("0", scientific), "0e0");
}

TEST(TextFormat, EngineeringHasAnExponentThatThreeDivides) {
    EXPECT_EQ(formatted("1", engineering), "1e0");
    EXPECT_EQ(formatted("12345.678", engineering), "12.345678e3");
    EXPECT_EQ(formatted("123456", engineering), "123.456e3");
    EXPECT_EQ(formatted("1e5", engineering), "100e3");
    EXPECT_EQ(formatted("0.1", engineering), "100e-3");
    EXPECT_EQ(formatted("0.01", engineering), "10e-3");
    EXPECT_EQ(formatted("0.001", engineering), "1e-3");
    EXPECT_EQ(formatted("0.00012", engineering), "120e-6");
    EXPECT_EQ(formatted("0", engineering), "0e0");
}

TEST(TextFormat, FractionDigitsAreExactlyThatMany) {
    EXPECT_EQ(formatted("1.5", {.digits = fraction_digits(2)}), "1.50");
    EXPECT_EQ(formatted("1.565", {.digits = fraction_digits(2)}), "1.57");
    EXPECT_EQ(formatted("1.5", {.digits = fraction_digits(0)}), "2");
    EXPECT_EQ(formatted("0", {.digits = fraction_digits(2)}), "0.00");
    EXPECT_EQ(formatted("0.0004", {.digits = fraction_digits(3)}), "0.000");
    EXPECT_EQ(formatted("0.0005", {.digits = fraction_digits(3)}), "0.001");
    EXPECT_EQ(formatted("999.995", {.digits = fraction_digits(2)}), "1000.00");
    EXPECT_EQ(formatted("999.96", {.notation = text_notation::scientific, .digits = fraction_digits(2)}),
              "1.00e3");
    EXPECT_EQ(formatted("999.96", {.notation = text_notation::engineering, .digits = fraction_digits(1)}),
              "1.0e3");
}

TEST(TextFormat, SignificantDigitsCountFromTheFirstThatIsNotZero) {
    EXPECT_EQ(formatted("12345", {.digits = significant_digits(2)}), "12000");
    EXPECT_EQ(formatted("0.0012345", {.digits = significant_digits(2)}), "0.0012");
    EXPECT_EQ(formatted("1.5", {.digits = significant_digits(4)}), "1.500");
    EXPECT_EQ(formatted("9.996", {.digits = significant_digits(3)}), "10.0");
    EXPECT_EQ(formatted("0", {.digits = significant_digits(3)}), "0.00");
    EXPECT_EQ(formatted("123456", {.notation = text_notation::engineering, .digits = significant_digits(1)}),
              "100e3");
}

TEST(TextFormat, ACountBelowTheLeastIsTheLeast) {
    EXPECT_EQ(formatted("2.5", {.digits = fraction_digits(-3)}), "3");
    EXPECT_EQ(formatted("25", {.digits = significant_digits(0)}), "30");
    EXPECT_EQ(formatted("25", {.digits = significant_digits(-5)}), "30");
    constexpr int least = std::numeric_limits<int>::min();
    EXPECT_EQ(formatted("2.5", {.digits = fraction_digits(least)}), "3");
}

TEST(TextFormat, GroupsTheDigitsBeforeThePoint) {
    EXPECT_EQ(formatted("1234567.1234567", {.group_separator = ','}), "1,234,567.1234567");
    EXPECT_EQ(formatted("-123456", {.group_separator = '_'}), "-123_456");
    EXPECT_EQ(formatted("123", {.group_separator = ','}), "123");
    EXPECT_EQ(formatted("0.1234", {.group_separator = ','}), "0.1234");
    EXPECT_EQ(formatted("123456789", {.group_separator = ' ', .group_size = 4}), "1 2345 6789");
    EXPECT_EQ(formatted("1234", {.group_separator = ',', .group_size = 0}), "1234");
    EXPECT_EQ(formatted("1e6", {.group_separator = '\''}), "1'000'000");
}

TEST(TextFormat, UpperCaseIsForTheExponentAndInfinity) {
    EXPECT_EQ(formatted("1e5", {.notation = text_notation::scientific, .upper_case = true}), "1E5");
    EXPECT_EQ(formatted("-inf", {.upper_case = true}), "-INF");
    EXPECT_EQ(formatted("inf", {.notation = text_notation::engineering, .digits = fraction_digits(2)}),
              "inf");
}

TEST(TextFormat, AValueRoundedToZeroHasNoSign) {
    EXPECT_EQ(formatted("-0.004", {.digits = fraction_digits(2)}), "0.00");
    EXPECT_EQ(formatted("-0.004", {.digits = fraction_digits(2), .rounding = rounding_mode::floor}), "-0.01");
}

struct RoundingRow {
    std::string_view value;
    std::array<std::string_view, 8> integers; /* in the order of the modes */
};

/* ceiling, floor, up, down, half_up, half_down, half_even, zero_five_up */
constexpr std::array rounding_table = {
    RoundingRow{"0.4", {"1", "0", "1", "0", "0", "0", "0", "1"}},
    RoundingRow{"0.5", {"1", "0", "1", "0", "1", "0", "0", "1"}},
    RoundingRow{"0.6", {"1", "0", "1", "0", "1", "1", "1", "1"}},
    RoundingRow{"1.1", {"2", "1", "2", "1", "1", "1", "1", "1"}},
    RoundingRow{"1.5", {"2", "1", "2", "1", "2", "1", "2", "1"}},
    RoundingRow{"1.51", {"2", "1", "2", "1", "2", "2", "2", "1"}},
    RoundingRow{"2.5", {"3", "2", "3", "2", "3", "2", "2", "2"}},
    RoundingRow{"2.50000001", {"3", "2", "3", "2", "3", "3", "3", "2"}},
    RoundingRow{"5.01", {"6", "5", "6", "5", "5", "5", "5", "6"}},
    RoundingRow{"9.5", {"10", "9", "10", "9", "10", "9", "10", "9"}},
    RoundingRow{"10.1", {"11", "10", "11", "10", "10", "10", "10", "11"}},
    RoundingRow{"-0.4", {"0", "-1", "-1", "0", "0", "0", "0", "-1"}},
    RoundingRow{"-1.1", {"-1", "-2", "-2", "-1", "-1", "-1", "-1", "-1"}},
    RoundingRow{"-2.5", {"-2", "-3", "-3", "-2", "-3", "-2", "-2", "-2"}},
    RoundingRow{"-3.5", {"-3", "-4", "-4", "-3", "-4", "-3", "-4", "-3"}},
    RoundingRow{"-5.5", {"-5", "-6", "-6", "-5", "-6", "-5", "-6", "-6"}},
    RoundingRow{"7", {"7", "7", "7", "7", "7", "7", "7", "7"}},
};

TEST(RoundingModes, RoundToIntegersAsTheirTableSays) {
    for (const RoundingRow& row : rounding_table) {
        for (std::size_t mode = 0; mode < row.integers.size(); ++mode) {
            const auto rounding = static_cast<rounding_mode>(mode);
            EXPECT_EQ(formatted(row.value, {.digits = fraction_digits(0), .rounding = rounding}),
                      row.integers[mode])
                << row.value << " by mode " << mode;
        }
    }
}

/* Every way a last digit, a first dropped digit and a rest can meet, at every place of the value. */
TEST(RoundingModes, EveryCaseAgreesWithExactIntegers) {
    int cases = 0;
    for (int leading = 0; leading < 1000; ++leading) {
        for (const std::string_view rest : {"", "0001", "9"}) {
            for (const char* sign : {"", "-"}) {
                const std::string text = sign + std::to_string(leading) + std::string(rest) + "e-3";
                const number value_read = parse(text).value();
                const mpz_class value =
                    value_of_plain_decimal(sign + std::to_string(leading) + std::string(rest)) / 1000;
                for (int digits = 1; digits < 3; ++digits) {
                    for (int mode = 0; mode < 8; ++mode) {
                        const text_format format{.digits = fraction_digits(digits),
                                                 .rounding = static_cast<rounding_mode>(mode)};
                        ASSERT_EQ(to_string(value_read, format), reference_text(value, format))
                            << text << ' ' << description(format);
                        ++cases;
                    }
                }
            }
        }
    }
    EXPECT_EQ(cases, 1000 * 3 * 2 * 2 * 8);
}

TEST(TextFormat, EveryShapeInAnyFormatAgreesWithIntegers) {
    std::mt19937_64 random(23);
    for_every_shape([&random](const Shape& shape) {
        const OCINumber number = encode(shape);
        const text_format format = random_format(random);
        ASSERT_EQ(format_number(number, format).value(), reference_text(value_of(shape), format))
            << hex_text(number) << ' ' << description(format);
    });
}

TEST(TextFormat, RandomRecordsInAnyFormatAgreeWithIntegers) {
    std::mt19937_64 random(29);
    for (int i = 0; i < 20000; ++i) {
        const QZCICalcNumber record = random_record(random);
        const text_format format = random_format(random);
        ASSERT_EQ(format_record(record, format), reference_text(value_of_limbs(record), format))
            << fields_text(record) << ' ' << description(format);
    }
}

} // namespace
} // namespace qzoci::test
