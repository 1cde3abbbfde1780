#include "tests/support/records.h"
#include "tests/text/exact_value.h"
#include "tests/text/stored_shapes.h"

#include <qzoci/number_text.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

/* What parse_record says of a text: the error's message, or the record's fields. */
std::string parsed(std::string_view text) {
    const auto record = parse_record(text);
    return record ? fields_text(*record) : message(record.error());
}

std::string error_text(std::size_t position, text_fault fault) {
    return message(text_error{position, fault});
}

/* ---- Values ---- */

TEST(ParseRecord, PlacesDigitsAroundThePoint) {
    EXPECT_EQ(parsed("1"), "1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(parsed("-12345678901.5"), "-1,0,18,20,0,z18.123.45678901.50000000.z19");
    EXPECT_EQ(parsed("+0.00000001"), "1,0,20,20,0,z20.1.z19");
    EXPECT_EQ(parsed("0.000000001"), "1,0,21,21,0,z21.10000000.z18");
}

TEST(ParseRecord, NeedsADigitOnOneSideOfThePointOnly) {
    EXPECT_EQ(parsed("1."), parsed("1"));
    EXPECT_EQ(parsed(".5"), parsed("0.5"));
    EXPECT_EQ(parsed("-.5e1"), parsed("-5"));
    EXPECT_EQ(parsed("5.e-1"), parsed("0.5"));
}

TEST(ParseRecord, ExponentMovesThePoint) {
    EXPECT_EQ(parsed("1.25e3"), parsed("1250"));
    EXPECT_EQ(parsed("1.25E+3"), parsed("1250"));
    EXPECT_EQ(parsed("125e-2"), parsed("1.25"));
    EXPECT_EQ(parsed("7e000000000000000000000000000000000001"), parsed("70"));
}

TEST(ParseRecord, TakesTheFirstAndTheLastDigitOfARecord) {
    EXPECT_EQ(parsed("1e159"), "1,0,0,0,0,10000000.z39");
    EXPECT_EQ(parsed("1e-160"), "1,0,39,39,0,z39.1");
    EXPECT_EQ(parsed("1" + std::string(159, '0')), parsed("1e159"));
    EXPECT_EQ(parsed("0." + std::string(159, '0') + "1"), parsed("1e-160"));
}

TEST(ParseRecord, ZeroKeepsItsSign) {
    EXPECT_EQ(parsed("0"), "1,0,-1,-1,1,z40");
    EXPECT_EQ(parsed("+0"), "1,0,-1,-1,1,z40");
    EXPECT_EQ(parsed("-0"), "-1,0,-1,-1,1,z40");
    EXPECT_EQ(parsed("-.000"), "-1,0,-1,-1,1,z40");
}

TEST(ParseRecord, ZeroDigitsMayStandAnywhere) {
    EXPECT_EQ(parsed("0e999999999999999999999999"), parsed("0"));
    EXPECT_EQ(parsed("-0.0e-999999999999999999999999"), parsed("-0"));
    EXPECT_EQ(parsed(std::string(1000, '0') + "7." + std::string(1000, '0')), parsed("7"));
    EXPECT_EQ(parsed("000" + std::string(500, '0') + "e500"), parsed("0"));
}

TEST(ParseRecord, LongTextAndLongExponentCancel) {
    EXPECT_EQ(parsed("0." + std::string(100000, '0') + "1e100001"), parsed("1"));
    EXPECT_EQ(parsed("1" + std::string(100000, '0') + "e-100000"), parsed("1"));
}

TEST(ParseRecord, InfinityInEitherCase) {
    EXPECT_EQ(parsed("inf"), "1,1,-1,-1,0,z40");
    EXPECT_EQ(parsed("+InF"), "1,1,-1,-1,0,z40");
    EXPECT_EQ(parsed("-INF"), "-1,1,-1,-1,0,z40");
}

TEST(ParseRecord, IsConstant) {
    static constexpr auto half = parse_record("-0.5");
    static_assert((*half).data_part[20] == 50000000 && (*half).num_signed == -1 && (*half).start_pos == 20);
    static_assert(parse_record("1e160").error() == text_error{0, text_fault::digit_too_high});
    static_assert(parse_record_prefix("2)").value().length == 1);
}

/* ---- Errors ---- */

struct BadText {
    std::string_view text;
    std::size_t position;
    text_fault fault;
};

void PrintTo(const BadText& bad, std::ostream* out) {
    *out << testing::PrintToString(bad.text) << ' ' << error_text(bad.position, bad.fault);
}

class ParseRecordRefuses : public testing::TestWithParam<BadText> {};

TEST_P(ParseRecordRefuses, WithPositionAndFault) {
    EXPECT_EQ(parsed(GetParam().text), error_text(GetParam().position, GetParam().fault));
}

using enum text_fault;

INSTANTIATE_TEST_SUITE_P(NoNumber, ParseRecordRefuses,
                         testing::Values(BadText{"", 0, number_expected}, BadText{"+", 1, number_expected},
                                         BadText{"-", 1, number_expected}, BadText{"+-1", 1, number_expected},
                                         BadText{" 1", 0, number_expected}, BadText{"x", 0, number_expected},
                                         BadText{"-e5", 1, number_expected},
                                         BadText{"nan", 0, number_expected},
                                         BadText{std::string_view("\0001", 2), 0, number_expected},
                                         BadText{"\xd9\xa1", 0, number_expected}));
INSTANTIATE_TEST_SUITE_P(HalfInfinity, ParseRecordRefuses,
                         testing::Values(BadText{"i", 1, number_expected}, BadText{"-in", 3, number_expected},
                                         BadText{"ing", 2, number_expected},
                                         BadText{"+i1", 2, number_expected}));
INSTANTIATE_TEST_SUITE_P(PointAlone, ParseRecordRefuses,
                         testing::Values(BadText{".", 1, digit_expected}, BadText{"-.", 2, digit_expected},
                                         BadText{".e5", 1, digit_expected},
                                         BadText{"..5", 1, digit_expected}));
INSTANTIATE_TEST_SUITE_P(HalfExponent, ParseRecordRefuses,
                         testing::Values(BadText{"1e", 2, exponent_digit_expected},
                                         BadText{"1E+", 3, exponent_digit_expected},
                                         BadText{"1.5e-", 5, exponent_digit_expected},
                                         BadText{"1ex", 2, exponent_digit_expected},
                                         BadText{"1e--5", 3, exponent_digit_expected},
                                         BadText{"1e 5", 2, exponent_digit_expected}));
INSTANTIATE_TEST_SUITE_P(
    Trailing, ParseRecordRefuses,
    testing::Values(BadText{"1 ", 1, trailing_characters}, BadText{"1.2.3", 3, trailing_characters},
                    BadText{"1,5", 1, trailing_characters}, BadText{"1_000", 1, trailing_characters},
                    BadText{"1e5.0", 3, trailing_characters}, BadText{"1e5e3", 3, trailing_characters},
                    BadText{"infinity", 3, trailing_characters}, BadText{"infe5", 3, trailing_characters},
                    BadText{"0x10", 1, trailing_characters}, BadText{"1+", 1, trailing_characters},
                    BadText{std::string_view("1\0", 2), 1, trailing_characters}));
INSTANTIATE_TEST_SUITE_P(DigitTooHigh, ParseRecordRefuses,
                         testing::Values(BadText{"1e160", 0, digit_too_high},
                                         BadText{"-1e160", 1, digit_too_high},
                                         BadText{"0.05e162", 3, digit_too_high},
                                         BadText{"10e159", 0, digit_too_high},
                                         BadText{"1e999999999999", 0, digit_too_high},
                                         BadText{"1e99999999999999999999999999999999", 0, digit_too_high},
                                         BadText{"1e9223372036854775807", 0, digit_too_high},
                                         BadText{"1e9223372036854775808", 0, digit_too_high},
                                         BadText{"1e18446744073709551616", 0, digit_too_high}));
INSTANTIATE_TEST_SUITE_P(DigitTooLow, ParseRecordRefuses,
                         testing::Values(BadText{"1e-161", 0, digit_too_low},
                                         BadText{"10.05e-159", 4, digit_too_low},
                                         BadText{"-0.1e-160", 3, digit_too_low},
                                         BadText{"1e-999999999999", 0, digit_too_low},
                                         BadText{"1e-18446744073709551616", 0, digit_too_low}));

TEST(ParseRecord, TheFirstDigitThatDoesNotFitIsTheOneNamed) {
    const std::string both = "10" + std::string(159, '0') + "." + std::string(160, '0') + "1";
    EXPECT_EQ(parsed(both), error_text(0, digit_too_high));
    EXPECT_EQ(parsed("0." + std::string(160, '0') + "99"), error_text(162, digit_too_low));
}

TEST(ParseRecord, GrammarComesBeforeDigitsThatDoNotFit) {
    EXPECT_EQ(parsed("1e160x"), error_text(5, trailing_characters));
    EXPECT_EQ(parsed("1e160.5"), error_text(5, trailing_characters));
}

TEST(TextError, MessageNamesPositionAndFault) {
    EXPECT_EQ(message({3, digit_too_low}), "at position 3: digit below 10^-160, too small");
    EXPECT_EQ(message({0, number_expected}), "at position 0: number expected");
}

/* ---- Prefix ---- */

TEST(ParseRecordPrefix, TakesTheLongestNumber) {
    const auto consumed = [](std::string_view text) {
        const auto prefix = parse_record_prefix(text);
        return prefix ? std::to_string(prefix->length) + ' ' + decimal_text(prefix->record)
                      : message(prefix.error());
    };
    EXPECT_EQ(consumed("1.5 + 2"), "3 1.5");
    EXPECT_EQ(consumed("1.5.2"), "3 1.5");
    EXPECT_EQ(consumed("1."), "2 1");
    EXPECT_EQ(consumed("1e"), "1 1");
    EXPECT_EQ(consumed("1e+"), "1 1");
    EXPECT_EQ(consumed("1ex"), "1 1");
    EXPECT_EQ(consumed("1e2e3"), "3 100");
    EXPECT_EQ(consumed("-2-3"), "2 -2");
    EXPECT_EQ(consumed("infinite"), "3 inf");
    EXPECT_EQ(consumed("-inf"), "4 -inf");
    EXPECT_EQ(consumed("7"), "1 7");
}

TEST(ParseRecordPrefix, RefusesWhatDoesNotStartWithANumber) {
    EXPECT_EQ(parse_record_prefix("(1)").error(), (text_error{0, number_expected}));
    EXPECT_EQ(parse_record_prefix("").error(), (text_error{0, number_expected}));
    EXPECT_EQ(parse_record_prefix("-.)").error(), (text_error{2, digit_expected}));
}

TEST(ParseRecordPrefix, NeverShortensANumberThatDoesNotFit) {
    EXPECT_EQ(parse_record_prefix("3e200+1").error(), (text_error{0, digit_too_high}));
    EXPECT_EQ(parse_record_prefix("12e-161)").error(), (text_error{1, digit_too_low}));
}

/* ---- Random numbers, against integers ---- */

struct RandomNumber {
    std::string text;
    bool negative;
    std::string integer_digits;
    std::string fraction_digits;
    long exponent;
};

class RandomNumbers {
public:
    explicit RandomNumbers(std::size_t most_digits = 200) : most_digits_(most_digits) {}

    RandomNumber next() {
        RandomNumber number{"", one_in(2), digits(up_to(most_digits_)), digits(up_to(most_digits_)), 0};
        if (number.integer_digits.empty() && number.fraction_digits.empty()) {
            number.integer_digits = "0";
        }
        number.text = number.negative ? "-" : one_in(4) ? "+" : "";
        number.text += number.integer_digits;
        if (!number.fraction_digits.empty() || one_in(8)) {
            number.text += '.' + number.fraction_digits;
        }
        if (one_in(2)) {
            number.exponent = static_cast<long>(up_to(400)) - 200;
            number.text += one_in(2) ? "e" : "E";
            number.text += number.exponent >= 0 && one_in(2) ? "+" : "";
            number.text += std::to_string(number.exponent);
        }
        return number;
    }

private:
    std::size_t up_to(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit)(random_);
    }

    bool one_in(std::size_t n) { return up_to(n - 1) == 0; }

    /* Zeros, other digits, zeros: so that many numbers fit and many just do not. */
    std::string digits(std::size_t count) {
        std::string text(count, '0');
        const std::size_t begin = up_to(count);
        const std::size_t end = begin + up_to(count - begin);
        for (std::size_t i = begin; i < end; ++i) {
            text[i] = one_in(4) ? '9' : static_cast<char>('0' + up_to(9));
        }
        return text;
    }

    std::size_t most_digits_;
    std::mt19937_64 random_{20240229};
};

/* The position of the first digit other than 0 whose weight is above or below those given, or npos. */
std::size_t first_digit_outside(const RandomNumber& number, long highest, long lowest) {
    const std::size_t begin = number.text.find_first_of(".0123456789");
    const auto weight_of_first = static_cast<long>(number.integer_digits.size()) - 1 + number.exponent;
    const std::string all = number.integer_digits + number.fraction_digits;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const long weight = weight_of_first - static_cast<long>(i);
        if (all[i] != '0' && (weight > highest || weight < lowest)) {
            return begin + i + (i >= number.integer_digits.size() ? 1 : 0);
        }
    }
    return std::string::npos;
}

/* The value, which must fit the record. */
mpz_class value_of(const RandomNumber& number) {
    const mpz_class digits("0" + number.integer_digits + number.fraction_digits, 10);
    const long shift = unit_digits + number.exponent - static_cast<long>(number.fraction_digits.size());
    mpz_class value = number.negative ? mpz_class(-digits) : digits;
    if (shift >= 0) {
        value *= power_of_ten(static_cast<int>(shift));
    } else {
        value /= power_of_ten(static_cast<int>(-shift));
    }
    return value;
}

TEST(ParseRecord, RandomNumbersHaveTheirValueOrTheirFirstBadDigit) {
    RandomNumbers numbers;
    int fitting = 0;
    constexpr int count = 100000;
    for (int i = 0; i < count; ++i) {
        const RandomNumber number = numbers.next();
        const std::size_t bad = first_digit_outside(number, 159, -160);
        const auto record = parse_record(number.text);
        if (bad != std::string::npos) {
            ASSERT_FALSE(record) << number.text;
            ASSERT_EQ(record.error().position, bad) << number.text;
            continue;
        }
        ++fitting;
        ASSERT_TRUE(record) << number.text << ' ' << message(record.error());
        ASSERT_EQ(value_of_limbs(*record), value_of(number)) << number.text;
        ASSERT_EQ(record->num_signed, number.negative ? -1 : 1) << number.text;
    }
    EXPECT_GT(fitting, count / 4);
    EXPECT_LT(fitting, count - count / 4);
}

TEST(ParseRecord, RandomNumbersAreInTheEnginesNormalForm) {
    RandomNumbers numbers;
    int compared = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = numbers.next().text;
        if (const auto record = parse_record(text)) {
            QZCICalcNumber normalised = *record;
            QZCICalcNumInit(&normalised);
            ASSERT_EQ(*record, normalised) << text;
            ++compared;
        }
    }
    EXPECT_GT(compared, 5000);
    for (const std::string_view text : {"0", "-0", "inf", "-inf"}) {
        QZCICalcNumber normalised = *parse_record(text);
        QZCICalcNumInit(&normalised);
        EXPECT_EQ(*parse_record(text), normalised) << text;
    }
}

TEST(ParseRecord, TextOfARecordGivesTheRecordBack) {
    RandomNumbers numbers;
    int compared = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = numbers.next().text;
        if (const auto record = parse_record(text); record && record->is_zero == 0) {
            const std::string plain = format_record(*record);
            ASSERT_EQ(parsed(plain), fields_text(*record)) << text;
            ++compared;
        }
    }
    EXPECT_GT(compared, 5000);
}

/* ---- Random stored numbers, against integers ---- */

/* The weight of the first digit other than 0; none for a zero. */
std::optional<long> first_weight(const RandomNumber& number) {
    const std::string all = number.integer_digits + number.fraction_digits;
    const std::size_t first = all.find_first_not_of('0');
    if (first == std::string::npos) {
        return std::nullopt;
    }
    return static_cast<long>(number.integer_digits.size()) - 1 + number.exponent - static_cast<long>(first);
}

/* The base-100 exponent that a stored number begins with when its first digit has this weight. */
int stored_exponent(long weight, bool negative) {
    const long exponent = weight >= 0 ? weight / 2 : (weight - 1) / 2;
    return static_cast<int>(std::max(exponent, negative ? -65L : -64L));
}

/* The canonical bytes of a value in the units of exact_value.h, 20 pairs of which hold it. */
OCINumber encode_value(const mpz_class& value, int exponent) {
    Shape shape{value < 0, exponent, {}};
    mpz_class rest = abs(value);
    for (int weight = exponent; rest != 0; --weight) {
        const mpz_class unit = power_of_ten(unit_digits + 2 * weight);
        shape.pairs.push_back(static_cast<int>(mpz_class(rest / unit).get_si()));
        rest %= unit;
    }
    return encode(shape);
}

TEST(Parse, RandomNumbersHaveTheirBytesOrTheirFirstBadDigit) {
    RandomNumbers numbers(45);
    std::map<text_fault, int> faults;
    int fitting = 0;
    for (int i = 0; i < 30000; ++i) {
        const RandomNumber random = numbers.next();
        const auto stored = parse(random.text);
        const auto weight = first_weight(random);
        if (!weight) {
            ASSERT_TRUE(stored && identical_bytes(*stored, 0)) << random.text;
            continue;
        }
        const int exponent = stored_exponent(*weight, random.negative);
        const std::size_t bad = first_digit_outside(random, 125, 2 * (exponent - 19));
        if (bad != std::string::npos) {
            ASSERT_FALSE(stored) << random.text;
            ASSERT_EQ(stored.error().position, bad) << random.text;
            const bool first = bad == first_digit_outside(random, -1000, 1000);
            ASSERT_EQ(stored.error().fault, *weight > 125 ? number_too_large
                                            : first       ? number_too_small
                                                          : too_many_digits)
                << random.text;
            ++faults[stored.error().fault];
            continue;
        }
        ++fitting;
        ASSERT_TRUE(stored) << random.text << ' ' << message(stored.error());
        ASSERT_EQ(format_hex(stored->oci()), format_hex(encode_value(value_of(random), exponent)))
            << random.text;
        ASSERT_TRUE(is_canonical(*stored)) << random.text;
    }
    EXPECT_GT(fitting, 3000);
    EXPECT_GT(faults[number_too_large], 300);
    EXPECT_GT(faults[number_too_small], 30);
    EXPECT_GT(faults[too_many_digits], 3000);
}

/* Any text at all: a number and what follows it, or an error inside the text. */
TEST(ParseRecord, AnyTextIsANumberOrAnErrorInsideIt) {
    constexpr std::string_view alphabet = "0123456789+-..eEinfINFx \xff";
    std::mt19937_64 random(7);
    std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
    std::uniform_int_distribution<std::size_t> length(0, 8);
    int numbers = 0;
    for (int i = 0; i < 300000; ++i) {
        std::vector<char> characters(length(random)); /* with nothing readable behind the text */
        std::generate(characters.begin(), characters.end(), [&] { return alphabet[pick(random)]; });
        const std::string_view text(characters.data(), characters.size());
        const auto whole = parse_record(text);
        const auto prefix = parse_record_prefix(text);
        if (whole) {
            ++numbers;
            ASSERT_TRUE(prefix) << text;
            ASSERT_EQ(prefix->length, text.size()) << text;
            ASSERT_EQ(prefix->record, *whole) << text;
        } else {
            ASSERT_LE(whole.error().position, text.size()) << text;
        }
        if (prefix) {
            ASSERT_GE(prefix->length, 1U) << text;
            ASSERT_EQ(parse_record(text.substr(0, prefix->length)).value(), prefix->record) << text;
        } else {
            ASSERT_FALSE(whole) << text;
            ASSERT_LE(prefix.error().position, whole.error().position) << text;
        }
    }
    EXPECT_GT(numbers, 1000);
}

} // namespace
} // namespace qzoci::test
