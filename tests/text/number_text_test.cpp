#include "tests/support/records.h"
#include "tests/text/stored_shapes.h"

#include <qzoci/calc_text.hpp>
#include <qzoci/number_text.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <system_error>

namespace qzoci::test {
namespace {

using enum text_fault;

/* The bytes that parse gives, or its error's message. */
std::string parsed(std::string_view text) {
    const auto value = parse(text);
    return value ? format_hex(value->oci()) : message(value.error());
}

std::string repeated(std::string_view text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string error_text(std::size_t position, text_fault fault) {
    return message(text_error{position, fault});
}

/* ---- Text in ---- */

TEST(Parse, GivesCanonicalBytes) {
    EXPECT_EQ(parsed("1"), "02c102");
    EXPECT_EQ(parsed("-1"), "033e6466");
    EXPECT_EQ(parsed("100.5"), "04c2020133");
    EXPECT_EQ(parsed("0.01"), "02c002");
    EXPECT_EQ(parsed("+00012.3400e+2"), "03c20d23");
    EXPECT_EQ(parsed("12345678901234567890123456789012345678.9"),
              "15d30d23394f5b0d23394f5b0d23394f5b0d23394f5b");
    EXPECT_EQ(parsed("inf"), "02ff65");
    EXPECT_EQ(parsed("-INF"), "0100");
}

TEST(Parse, AZeroHasNoSign) {
    for (const std::string_view text :
         {"0", "-0", "+0.000", "0e999999999999999999999", "-0e-5", ".0", "0."}) {
        EXPECT_EQ(parsed(text), "0180") << text;
    }
}

TEST(Parse, HoldsTwentyPairs) {
    const std::string forty(40, '9');
    EXPECT_EQ(parsed(forty), "15d4" + repeated("64", 20));
    EXPECT_EQ(parsed(forty + "9"), error_text(39, too_many_digits)); /* now a first pair of one digit */
    EXPECT_EQ(parsed("1" + std::string(38, '0') + "1"), parsed("1" + std::string(38, '0') + "1.0"));
    EXPECT_EQ(parsed("1" + std::string(38, '0') + ".1"), error_text(40, too_many_digits));
    EXPECT_EQ(parsed("1" + std::string(36, '0') + ".01"), "15d302" + repeated("01", 18) + "02");
}

TEST(Parse, HasARangeByMagnitude) {
    EXPECT_EQ(parsed("9.9e125"), "02ff64");
    EXPECT_EQ(parsed("1e126"), error_text(0, number_too_large));
    EXPECT_EQ(parsed("-1e126"), error_text(1, number_too_large));
    EXPECT_EQ(parsed("1e99999999999999999999999"), error_text(0, number_too_large));
    EXPECT_EQ(parsed("1e-128"), "028102");
    EXPECT_EQ(parsed("-1e-130"), "037f6466");
}

/* The exponent byte of zero is next to the lowest: smaller values keep it and have 00 pairs first. */
TEST(Parse, ValuesNearZeroHaveZeroPairsFirst) {
    EXPECT_EQ(parsed("1e-130"), "03810102");
    EXPECT_EQ(parsed("-1e-132"), "047f656466");
    EXPECT_EQ(parsed("1e-166"), "1581" + repeated("01", 19) + "02");
    EXPECT_EQ(parsed("1e-167"), error_text(0, number_too_small));
    EXPECT_EQ(parsed("-0.1e-167"), "157f" + repeated("65", 19) + "64");
    EXPECT_EQ(parsed("-1e-169"), error_text(1, number_too_small));
    EXPECT_EQ(parsed("1.01e-166"), error_text(3, too_many_digits));
    EXPECT_EQ(parsed("1e-99999999999999999999999"), error_text(0, number_too_small));
}

TEST(Parse, IsStrict) {
    EXPECT_EQ(parsed(""), error_text(0, number_expected));
    EXPECT_EQ(parsed(" 1"), error_text(0, number_expected));
    EXPECT_EQ(parsed("1 "), error_text(1, trailing_characters));
    EXPECT_EQ(parsed("1,000"), error_text(1, trailing_characters));
    EXPECT_EQ(parsed("1e"), error_text(2, exponent_digit_expected));
    EXPECT_EQ(parsed("."), error_text(1, digit_expected));
    EXPECT_EQ(parsed("nan"), error_text(0, number_expected));
    EXPECT_EQ(parsed("1e200x"), error_text(5, trailing_characters));
}

struct Consumed {
    std::ptrdiff_t length;
    std::errc error;
    std::string value; /* of a variable that was 7 before */

    friend bool operator==(const Consumed&, const Consumed&) = default;
};

std::ostream& operator<<(std::ostream& out, const Consumed& consumed) {
    return out << consumed.length << ", " << static_cast<int>(consumed.error) << ", " << consumed.value;
}

Consumed consumed(std::string_view text) {
    number value = 7;
    const auto result = from_chars(text.data(), text.data() + text.size(), value);
    return {result.ptr - text.data(), result.ec, to_string(value)};
}

TEST(FromChars, TakesTheLongestNumber) {
    EXPECT_EQ(consumed("1.5,2"), (Consumed{3, {}, "1.5"}));
    EXPECT_EQ(consumed("-2e3"), (Consumed{4, {}, "-2000"}));
    EXPECT_EQ(consumed("1e"), (Consumed{1, {}, "1"}));
    EXPECT_EQ(consumed("1e+x"), (Consumed{1, {}, "1"}));
    EXPECT_EQ(consumed("infinite"), (Consumed{3, {}, "inf"}));
}

TEST(FromChars, LeavesTheValueOnAnError) {
    EXPECT_EQ(consumed("x"), (Consumed{0, std::errc::invalid_argument, "7"}));
    EXPECT_EQ(consumed(""), (Consumed{0, std::errc::invalid_argument, "7"}));
    EXPECT_EQ(consumed("-."), (Consumed{0, std::errc::invalid_argument, "7"}));
    EXPECT_EQ(consumed("1e126 "), (Consumed{5, std::errc::result_out_of_range, "7"}));
    EXPECT_EQ(consumed("1e-200"), (Consumed{6, std::errc::result_out_of_range, "7"}));
    const std::string digits(41, '3');
    EXPECT_EQ(consumed(digits + ";"), (Consumed{41, std::errc::result_out_of_range, "7"}));
}

/* ---- Text out ---- */

TEST(ToChars, WritesNothingIntoABufferTooSmall) {
    const number value = parse("-1234.5").value();
    for (std::size_t size = 0; size < 10; ++size) {
        std::string buffer(12, '#');
        const auto result = to_chars(buffer.data(), buffer.data() + size, value);
        if (size < 7) {
            EXPECT_EQ(result.ec, std::errc::value_too_large) << size;
            EXPECT_EQ(result.ptr, buffer.data() + size);
            EXPECT_EQ(buffer, std::string(12, '#'));
        } else {
            EXPECT_EQ(result.ec, std::errc{}) << size;
            EXPECT_EQ(result.ptr, buffer.data() + 7);
            EXPECT_EQ(buffer, "-1234.5#####");
        }
    }
}

TEST(ToChars, RefusesMalformedBytes) {
    std::array<char, 8> buffer{};
    const number malformed(stored_from_hex("02c100"));
    const auto result = to_chars(buffer.data(), buffer.data() + buffer.size(), malformed);
    EXPECT_EQ(result.ec, std::errc::invalid_argument);
    EXPECT_EQ(result.ptr, buffer.data());
}

TEST(ToChars, NeedsAtMostTheLargestSize) {
    const number longest(stored_from_hex("157f" + std::string(40, '2')));
    EXPECT_EQ(to_string(longest).size(), max_plain_text_size);
    std::size_t largest = 0;
    for_every_shape([&largest](const Shape& shape) {
        largest = std::max(largest, to_string(number(encode(shape))).size());
    });
    EXPECT_EQ(largest, max_plain_text_size);
}

TEST(ToString, ShowsMalformedBytes) {
    EXPECT_EQ(to_string(number(stored_from_hex("02c100"))), "malformed(02c100)");
    EXPECT_EQ(to_string(number(stored_from_hex("00"))), "malformed(00)");
}

/* ---- There and back ---- */

std::string in_format(const number& value, const text_format& format) {
    std::array<char, 200> buffer{};
    const auto result = to_chars(buffer.data(), buffer.data() + buffer.size(), value, format);
    EXPECT_EQ(result.ec, std::errc{});
    return {buffer.data(), result.ptr};
}

TEST(RoundTrip, EveryShapeComesBackAsItsCanonicalFormInEveryNotation) {
    for_every_shape([](const Shape& shape) {
        const number value(encode(shape));
        for (const auto notation :
             {text_notation::plain, text_notation::scientific, text_notation::engineering}) {
            const std::string text = in_format(value, {.notation = notation});
            const auto again = parse(text);
            ASSERT_TRUE(again) << text << ' ' << message(again.error());
            ASSERT_TRUE(identical_bytes(*again, canonical(value))) << text << ' ' << hex_text(value.oci());
        }
    });
}

TEST(RoundTrip, InfinitiesAndZerosComeBack) {
    for (const std::string_view hex : {"02ff65", "0100", "0180", "058001ff0066"}) {
        const number value(stored_from_hex(hex));
        EXPECT_TRUE(identical_bytes(parse(to_string(value)).value(), canonical(value))) << hex;
    }
}

/* ---- At compile time ---- */

static_assert("1.5"_qz == parse("1.5").value());
static_assert(identical_bytes("-inf"_qz, number(OCINumber{{1, 0}})));
static_assert("19.99e-3"_qz < "0.02"_qz);
static_assert(parse("1..5").error() == text_error{2, trailing_characters});
static_assert("1e125"_qz > number(0));

template <std::size_t Size>
struct constant_text {
    std::array<char, Size> characters{};
    std::size_t size = 0;

    constexpr constant_text(const number& value, const text_format& format) {
        const auto result = to_chars(characters.data(), characters.data() + Size, value, format);
        size = static_cast<std::size_t>(result.ptr - characters.data());
    }

    constexpr std::string_view view() const { return {characters.data(), size}; }
};

static_assert(constant_text<20>("-1234567.125"_qz, {.digits = fraction_digits(2), .group_separator = ','})
                  .view() == "-1,234,567.13");

constexpr number from_prefix(std::string_view text) {
    number value;
    from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

static_assert(from_prefix("2.50 EUR") == "2.5"_qz);

TEST(Literal, IsANumber) {
    constexpr number price = "1.50"_qz;
    EXPECT_EQ(to_string(price), "1.5");
    EXPECT_EQ(format_hex("-0.01"_qz.oci()), "033f6466");
}

/* ---- Records ---- */

TEST(ParseCalc, HoldsWhatANumberDoesNot) {
    const std::string digits = "1" + std::string(159, '0') + "." + std::string(159, '0') + "1";
    EXPECT_EQ(to_string(parse_calc(digits).value()), digits);
    EXPECT_EQ(parse_calc("1e160").error(), (text_error{0, digit_too_high}));
    EXPECT_EQ(parse_calc("1 ").error(), (text_error{1, trailing_characters}));
    static_assert(parse_calc("-1.5").value().record().num_signed == -1);
}

TEST(CalcText, FromCharsAndToChars) {
    calc value = 7;
    const std::string_view text = "2.5;";
    EXPECT_EQ(from_chars(text.data(), text.data() + text.size(), value).ptr, text.data() + 3);
    EXPECT_EQ(to_string(value), "2.5");
    const std::string_view high = "1e160";
    EXPECT_EQ(from_chars(high.data(), high.data() + high.size(), value).ec, std::errc::result_out_of_range);
    EXPECT_EQ(to_string(value), "2.5");

    std::array<char, 5> buffer{};
    const auto written =
        to_chars(buffer.data(), buffer.data() + buffer.size(), value, {.digits = fraction_digits(3)});
    EXPECT_EQ(std::string(buffer.data(), written.ptr), "2.500");
    EXPECT_EQ(to_chars(buffer.data(), buffer.data() + 2, value).ec, std::errc::value_too_large);
}

} // namespace
} // namespace qzoci::test
