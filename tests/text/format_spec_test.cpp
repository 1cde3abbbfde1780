#include "tests/support/records.h"
#include "tests/text/reference_text.h"
#include "tests/text/stored_shapes.h"

#include <qzoci/format.hpp>
#include <qzoci/format_spec.hpp>
#include <qzoci/ostream.hpp>

#include <gtest/gtest.h>

#include <array>
#include <iomanip>
#include <iterator>
#include <random>
#include <sstream>
#include <string>

namespace qzoci::test {
namespace {

using enum format_spec_fault;

constexpr number amount = "1234567.125"_qz;
constexpr number infinity = "inf"_qz;

/* What a specification from outside makes of a number, or its error's message. */
std::string in_field(const number& value, std::string_view spec) {
    const auto parsed = parse_format_spec(spec);
    return parsed ? to_field(value, *parsed) : message(parsed.error());
}

std::string refused(std::string_view spec) {
    return in_field(amount, spec);
}

std::string error_text(std::size_t position, format_spec_fault fault) {
    return message(format_spec_error{position, fault});
}

/* ---- What a format may say ---- */

TEST(FormatSpec, EmptyIsExactAndPlain) {
    EXPECT_EQ(parse_format_spec("").value(), format_spec());
    EXPECT_EQ(in_field(amount, ""), "1234567.125");
}

TEST(FormatSpec, DigitsTypesAndSeparators) {
    EXPECT_EQ(in_field(amount, ",.2"), "1,234,567.13");
    EXPECT_EQ(in_field(amount, ",.2/down"), "1,234,567.12");
    EXPECT_EQ(in_field(amount, "~3e"), "1.23e6");
    EXPECT_EQ(in_field(amount, "p"), "1234567.125");
    EXPECT_EQ(in_field(amount, "_"), "1_234_567.125");
    EXPECT_EQ(in_field(amount, "'"), "1'234'567.125");
    EXPECT_EQ(in_field(amount, "E"), "1.234567125E6");
    EXPECT_EQ(in_field(parse("1e4").value(), "n"), "10e3");
    EXPECT_EQ(in_field(parse("1e4").value(), "N"), "10E3");
    EXPECT_EQ(in_field(amount, "~2"), "1200000");
}

TEST(FormatSpec, FieldsAndFill) {
    EXPECT_EQ(in_field(amount, "*>+12.1n"), "******+1.2e6");
    EXPECT_EQ(in_field(7, "4"), "   7");
    EXPECT_EQ(in_field(7, "<4"), "7   ");
    EXPECT_EQ(in_field(7, "^4"), " 7  ");
    EXPECT_EQ(in_field(7, "-^4"), "-7--");
    EXPECT_EQ(in_field(-7, "<<4"), "-7<<");
    EXPECT_EQ(in_field(7, "\u00b7>3"), "\u00b7\u00b77");
    EXPECT_EQ(in_field(7, "\U0001F4B6^3"), "\U0001F4B67\U0001F4B6");
    EXPECT_EQ(in_field(amount, "3"), "1234567.125");
}

TEST(FormatSpec, Signs) {
    EXPECT_EQ(in_field(7, "+"), "+7");
    EXPECT_EQ(in_field(7, " "), " 7");
    EXPECT_EQ(in_field(7, "-"), "7");
    EXPECT_EQ(in_field(-7, "+"), "-7");
    EXPECT_EQ(in_field(-7, " "), "-7");
    EXPECT_EQ(in_field(0, "+"), "+0");
    EXPECT_EQ(in_field(infinity, "+"), "+inf");
}

TEST(FormatSpec, ZerosStandBehindTheSign) {
    EXPECT_EQ(in_field(-7, "06"), "-00007");
    EXPECT_EQ(in_field(7, "+06.1"), "+007.0");
    EXPECT_EQ(in_field(7, "0"), "7");
    EXPECT_EQ(in_field(7, "<06"), "7     ");
    EXPECT_EQ(in_field(infinity, "06"), "   inf");
    EXPECT_EQ(in_field(infinity, "+06E"), "  +INF");
}

TEST(FormatSpec, EveryRoundingHasItsName) {
    constexpr std::array names = {"ceiling", "floor",     "up",        "down",
                                  "half_up", "half_down", "half_even", "zero_five_up"};
    for (std::size_t mode = 0; mode < names.size(); ++mode) {
        const auto spec = parse_format_spec(std::string(".1/") + names[mode]);
        ASSERT_TRUE(spec) << names[mode];
        EXPECT_EQ(static_cast<std::size_t>(spec->format.rounding), mode);
    }
    EXPECT_EQ(parse_format_spec(".1")->format.rounding, rounding_mode::half_up);
}

TEST(FormatSpec, RefusesWithPositionAndFault) {
    EXPECT_EQ(refused("x"), error_text(0, unexpected_character));
    EXPECT_EQ(refused(".2f"), error_text(2, unexpected_character));
    EXPECT_EQ(refused("P"), error_text(0, unexpected_character));
    EXPECT_EQ(refused("5}"), error_text(1, unexpected_character));
    EXPECT_EQ(refused("ep"), error_text(1, unexpected_character));
    EXPECT_EQ(refused(std::string_view("\0", 1)), error_text(0, unexpected_character));
    EXPECT_EQ(refused("{>5"), error_text(0, fill_not_allowed));
    EXPECT_EQ(refused("\xff>5"), error_text(0, fill_not_allowed));
    EXPECT_EQ(refused("."), error_text(1, number_expected));
    EXPECT_EQ(refused("5~e"), error_text(2, number_expected));
    EXPECT_EQ(refused("1000000"), error_text(0, number_too_large));
    EXPECT_EQ(refused(".99999999999999999999999999"), error_text(1, number_too_large));
    EXPECT_EQ(refused("{}"), error_text(0, arguments_not_available));
    EXPECT_EQ(refused(".{0}"), error_text(1, arguments_not_available));
    EXPECT_EQ(refused(".2/"), error_text(3, rounding_expected));
    EXPECT_EQ(refused(".2/half"), error_text(3, rounding_expected));
    EXPECT_EQ(refused(".2/half_evenx"), error_text(3, rounding_expected));
    EXPECT_EQ(refused("e/down"), error_text(1, rounding_without_digits));
    EXPECT_EQ(refused("+010,"), error_text(1, zeros_with_separator));
    EXPECT_EQ(error_text(2, number_expected), "at position 2: number expected");
}

/* A code point cut short is followed by no alignment. */
TEST(FormatSpec, RefusesACodePointCutShort) {
    EXPECT_EQ(refused("\xe2\x82"), error_text(0, unexpected_character));
    EXPECT_EQ(refused("\xe2"), error_text(0, unexpected_character));
}

static_assert(parse_format_spec(">8.2").value().width == 8);
static_assert(parse_format_spec("!").error() == format_spec_error{0, unexpected_character});

/* ---- fmt ---- */

TEST(FmtFormatter, TakesTheSpecification) {
    EXPECT_EQ(fmt::format("{}", amount), "1234567.125");
    EXPECT_EQ(fmt::format("[{:>14,.2/half_even}]", amount), "[  1,234,567.12]");
    EXPECT_EQ(fmt::format("{0:~3e} {0:.0}", amount), "1.23e6 1234567");
    EXPECT_EQ(fmt::format("{:06}|{:<6}|{:^6}|", number(-7), number(8), infinity), "-00007|8     | inf  |");
}

TEST(FmtFormatter, TakesWidthAndDigitsFromArguments) {
    EXPECT_EQ(fmt::format("{:{}.{}}", amount, 12, 1), "   1234567.1");
    EXPECT_EQ(fmt::format("{0:>{2}~{1}e}", amount, 2U, 8LL), "   1.2e6");
    EXPECT_EQ(fmt::format("{:{}}{:{}}", number(1), 2, number(3), 4), " 1   3");
}

TEST(FmtFormatter, ThrowsForArgumentsThatAreNoCounts) {
    EXPECT_THROW((void)fmt::format(fmt::runtime("{:{}}"), amount, -1), fmt::format_error);
    EXPECT_THROW((void)fmt::format(fmt::runtime("{:{}}"), amount, 1000000), fmt::format_error);
    EXPECT_THROW((void)fmt::format(fmt::runtime("{:.{}}"), amount, 18446744073709551615U), fmt::format_error);
    EXPECT_THROW((void)fmt::format(fmt::runtime("{:{}}"), amount, "x"), fmt::format_error);
    EXPECT_THROW((void)fmt::format(fmt::runtime("{:{}}"), amount, true), fmt::format_error);
    EXPECT_THROW((void)fmt::format(fmt::runtime("{:{}}"), amount, 1.5), fmt::format_error);
    EXPECT_THROW((void)fmt::format(fmt::runtime("{:{}}"), amount), fmt::format_error);
    EXPECT_THROW((void)fmt::format(fmt::runtime("{0:{}}"), amount, 1), fmt::format_error);
    EXPECT_THROW((void)fmt::format(fmt::runtime("{:{x}}"), amount, 1), fmt::format_error);
    EXPECT_THROW((void)fmt::format(fmt::runtime("{:{0"), amount), fmt::format_error);
}

TEST(FmtFormatter, ThrowsTheFaultInWords) {
    try {
        (void)fmt::format(fmt::runtime("{:.2/half}"), amount);
        FAIL() << "no exception";
    } catch (const fmt::format_error& error) {
        EXPECT_STREQ(error.what(), "name of a rounding mode expected");
    }
}

TEST(FmtFormatter, ShowsMalformedBytesInTheirField) {
    const number malformed(stored_from_hex("02c100"));
    EXPECT_EQ(fmt::format("{}", malformed), "malformed(02c100)");
    EXPECT_EQ(fmt::format("{:>19}", malformed), "  malformed(02c100)");
    EXPECT_EQ(fmt::format("{:<+018.2}", malformed), "malformed(02c100) ");
    EXPECT_EQ(fmt::format("{:018}", malformed), " malformed(02c100)");
}

TEST(FmtFormatter, TakesRecordsToo) {
    const calc third = parse_calc("0.3333333333333333333333333333333333333333333333").value();
    EXPECT_EQ(fmt::format("{:>8.3}|{:~2e/up}", third, third), "   0.333|3.4e-1");
    EXPECT_EQ(fmt::format("{}", third), "0.3333333333333333333333333333333333333333333333");
    EXPECT_EQ(to_field(third, parse_format_spec("+.1").value()), "+0.3");
}

TEST(FmtFormatter, WritesIntoAnyBuffer) {
    std::array<char, 4> buffer{'#', '#', '#', '#'};
    const auto written = fmt::format_to_n(buffer.data(), 3, "{}", amount);
    EXPECT_EQ(written.size, 11U);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "123#");
    EXPECT_EQ(fmt::formatted_size("{:20}", amount), 20U);
}

/* ---- Every part of a specification at once, against texts put together from integers ---- */

struct RandomSpec {
    std::string text;
    text_format format;
    std::size_t width = 0;
    std::string fill = " ";
    char alignment = '>';
    std::string sign;
    bool zeros = false;
};

RandomSpec random_spec(std::mt19937_64& random) {
    constexpr std::array rounding_names = {"ceiling", "floor",     "up",        "down",
                                           "half_up", "half_down", "half_even", "zero_five_up"};
    constexpr std::array fills = {"*", "\u20ac", "<", "0", "/"};
    RandomSpec spec;
    spec.format = random_format(random);
    spec.format.group_size = 3;
    spec.format.group_separator = ",_'\0"[random() % 4];
    spec.format.upper_case = spec.format.upper_case && spec.format.notation != text_notation::plain;
    if (random() % 2 == 0) {
        if (random() % 2 == 0) {
            spec.fill = fills[random() % fills.size()];
            spec.text += spec.fill;
        }
        spec.alignment = "<>^"[random() % 3];
        spec.text += spec.alignment;
    } else if (spec.format.group_separator == '\0' && random() % 2 == 0) {
        spec.zeros = true;
    }
    switch (random() % 4) {
    case 0:
        spec.sign = "+";
        spec.text += '+';
        break;
    case 1:
        spec.sign = " ";
        spec.text += ' ';
        break;
    case 2:
        spec.text += '-';
        break;
    default:
        break;
    }
    spec.text += spec.zeros ? "0" : "";
    if (random() % 2 == 0) {
        spec.width = 1 + random() % 60;
        spec.text += std::to_string(spec.width);
    }
    if (spec.format.group_separator != '\0') {
        spec.text += spec.format.group_separator;
    }
    const bool all_digits = spec.format.digits.counted == digit_request::counting::all;
    if (!all_digits) {
        spec.text += spec.format.digits.counted == digit_request::counting::fraction ? '.' : '~';
        spec.text += std::to_string(spec.format.digits.count);
    }
    const auto notation = static_cast<std::size_t>(spec.format.notation);
    if (notation > 0 || random() % 2 == 0) {
        spec.text += (spec.format.upper_case ? "PEN" : "pen")[notation];
    }
    if (all_digits || random() % 4 == 0) {
        spec.format.rounding = rounding_mode::half_up;
    } else {
        spec.text += std::string("/") + rounding_names[static_cast<std::size_t>(spec.format.rounding)];
    }
    return spec;
}

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string reference_field(const mpz_class& value, const RandomSpec& spec) {
    std::string text = reference_text(value, spec.format);
    std::string sign = spec.sign;
    if (text.front() == '-') {
        sign = "-";
        text.erase(0, 1);
    }
    const std::size_t size = sign.size() + text.size();
    const std::size_t missing = spec.width > size ? spec.width - size : 0;
    if (spec.zeros) {
        return sign + std::string(missing, '0') + text;
    }
    const std::size_t before = spec.alignment == '<' ? 0 : spec.alignment == '>' ? missing : missing / 2;
    return repeated(spec.fill, before) + sign + text + repeated(spec.fill, missing - before);
}

TEST(FmtFormatter, EveryShapeInAnySpecificationAgreesWithIntegers) {
    std::mt19937_64 random(31);
    for_every_shape([&random](const Shape& shape) {
        const RandomSpec spec = random_spec(random);
        const number value(encode(shape));
        const std::string expected_text = reference_field(value_of(shape), spec);
        ASSERT_EQ(fmt::format(fmt::runtime("{:" + spec.text + "}"), value), expected_text) << spec.text;
        ASSERT_EQ(in_field(value, spec.text), expected_text) << spec.text;
    });
}

/* ---- Streams ---- */

template <exact_value Value, typename... Manipulators>
std::string streamed(const Value& value, Manipulators... manipulators) {
    std::ostringstream out;
    (out << ... << manipulators) << value;
    EXPECT_EQ(out.width(), 0);
    return out.str();
}

TEST(Stream, WritesTheExactValueWhateverThePrecision) {
    EXPECT_EQ(streamed(amount), "1234567.125");
    EXPECT_EQ(streamed(amount, std::setprecision(2)), "1234567.125");
    EXPECT_EQ(streamed(infinity), "inf");
    EXPECT_EQ(streamed(number(stored_from_hex("02c100"))), "malformed(02c100)");
}

TEST(Stream, FixedAndScientificRoundToThePrecision) {
    EXPECT_EQ(streamed(amount, std::fixed, std::setprecision(2)), "1234567.13");
    EXPECT_EQ(streamed(amount, std::fixed), "1234567.125000");
    EXPECT_EQ(streamed(amount, std::scientific, std::setprecision(3)), "1.235e6");
    EXPECT_EQ(streamed(amount, std::fixed, std::setprecision(-1)), "1234567");
    EXPECT_EQ(streamed(amount, std::hexfloat), "1234567.125");
}

TEST(Stream, FlagsMeanWhatTheyDoForOtherNumbers) {
    EXPECT_EQ(streamed(number(-7), std::setw(5)), "   -7");
    EXPECT_EQ(streamed(number(-7), std::setw(5), std::left), "-7   ");
    EXPECT_EQ(streamed(number(-7), std::setw(5), std::internal, std::setfill('0')), "-0007");
    EXPECT_EQ(streamed(calc(7), std::showpos), "+7");
    EXPECT_EQ(streamed(amount, std::scientific, std::setprecision(0), std::uppercase), "1E6");
    EXPECT_EQ(streamed(amount, std::setw(3)), "1234567.125");
}

} // namespace
} // namespace qzoci::test
