#include "tests/support/records.h"

#include <qzoci/hex_text.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using enum text_fault;

std::string parsed(std::string_view text) {
    const auto number = parse_hex(text);
    return number ? hex_text(*number) : message(number.error());
}

std::string padded(std::string hex) {
    hex.resize(std::size_t{2} * QZOCI_NUMBER_SIZE, '0');
    return hex;
}

std::string error_text(std::size_t position, text_fault fault) {
    return message(text_error{position, fault});
}

TEST(ParseHex, FillsUpWithZeros) {
    EXPECT_EQ(parsed("02c102"), padded("02c102"));
    EXPECT_EQ(parsed("02c10299"), padded("02c10299"));
}

TEST(ParseHex, TakesBothCasesAndAPrefix) {
    EXPECT_EQ(parsed("0x02C102"), padded("02c102"));
    EXPECT_EQ(parsed("0X02c1fF"), padded("02c1ff"));
}

TEST(ParseHex, TakesAllBytes) {
    const std::string all = "15c1" + std::string(40, '2');
    EXPECT_EQ(parsed(all), all);
    EXPECT_EQ(parsed("0x" + all), all);
}

TEST(ParseHex, LeavesAMalformedLengthToTheReader) {
    EXPECT_EQ(parsed("00"), padded("00"));
    EXPECT_EQ(parsed("ff" + std::string(42, '1')), "ff" + std::string(42, '1'));
}

TEST(ParseHex, IsConstant) {
    static_assert(parse_hex("0180").value().OCINumberPart[1] == 128);
    static_assert(parse_hex("018").error() == text_error{3, half_byte});
}

TEST(ParseHex, RefusesWhatIsNoHexDigit) {
    EXPECT_EQ(parsed(""), error_text(0, hex_digit_expected));
    EXPECT_EQ(parsed("0x"), error_text(2, hex_digit_expected));
    EXPECT_EQ(parsed(" 0180"), error_text(0, hex_digit_expected));
    EXPECT_EQ(parsed("01 80"), error_text(2, hex_digit_expected));
    EXPECT_EQ(parsed("0x01g0"), error_text(4, hex_digit_expected));
    EXPECT_EQ(parsed("0x0x01"), error_text(3, hex_digit_expected));
    EXPECT_EQ(parsed("x0180"), error_text(0, hex_digit_expected));
    EXPECT_EQ(parsed("0180\n"), error_text(4, hex_digit_expected));
    for (const char c : {'/', ':', '@', 'G', '`', 'g', '\0', '\x80'}) {
        EXPECT_EQ(parsed(std::string("018") + c), error_text(3, hex_digit_expected)) << c;
    }
}

TEST(ParseHex, RefusesHalfAByte) {
    EXPECT_EQ(parsed("0"), error_text(1, half_byte));
    EXPECT_EQ(parsed("0x018"), error_text(5, half_byte));
}

TEST(ParseHex, RefusesMoreThan22Bytes) {
    EXPECT_EQ(parsed(std::string(45, '1')), error_text(44, too_many_bytes));
    EXPECT_EQ(parsed("0x" + std::string(46, '1')), error_text(46, too_many_bytes));
    EXPECT_EQ(parsed(std::string(44, '1') + "g"), error_text(44, hex_digit_expected));
}

TEST(ParseHex, RefusesFewerBytesThanTheLengthByteCounts) {
    EXPECT_EQ(parsed("02c1"), error_text(4, fewer_bytes_than_length));
    EXPECT_EQ(parsed("0x15" + std::string(40, '1')), error_text(44, fewer_bytes_than_length));
    EXPECT_EQ(parsed("ff" + std::string(40, '1')), error_text(42, fewer_bytes_than_length));
}

/* The digits alone, in lower case. */
std::string plain_digits(std::string_view text) {
    std::string digits(text.starts_with("0x") ? text.substr(2) : text);
    for (char& c : digits) {
        c = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return digits;
}

TEST(ParseHex, AnyTextIsANumberOrAnErrorInsideIt) {
    constexpr std::string_view alphabet = "00001234567890abcdefABCDEFx ";
    std::mt19937_64 random(23);
    int numbers = 0;
    for (int i = 0; i < 100000; ++i) {
        std::vector<char> characters(random() % 50); /* with nothing readable behind the text */
        const std::size_t usable = random() % 2 == 0 ? alphabet.size() : 8;
        std::generate(characters.begin(), characters.end(), [&] { return alphabet[random() % usable]; });
        const std::string_view text(characters.data(), characters.size());
        if (const auto number = parse_hex(text)) {
            ++numbers;
            ASSERT_EQ(padded(plain_digits(text)), hex_text(*number)) << text;
        } else {
            ASSERT_LE(number.error().position, text.size()) << text;
        }
    }
    EXPECT_GT(numbers, 1000);
}

TEST(FormatHex, WritesTheBytesThatCount) {
    EXPECT_EQ(format_hex(stored_from_hex("02c10299")), "02c102");
    EXPECT_EQ(format_hex(stored_from_hex("0180")), "0180");
    EXPECT_EQ(format_hex(stored_from_hex("00")), "00");
    EXPECT_EQ(format_hex(stored_from_hex("16ab")), padded("16ab"));
    EXPECT_EQ(format_hex(stored_from_hex("ff")), padded("ff"));
}

TEST(FormatHex, WritesAllBytesWhenAsked) {
    EXPECT_EQ(format_hex_all(stored_from_hex("02c10299")), padded("02c10299"));
}

TEST(FormatHex, RandomBytesComeBack) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 10000; ++i) {
        OCINumber number;
        for (ub1& byte : number.OCINumberPart) {
            byte = static_cast<ub1>(random());
        }
        ASSERT_EQ(format_hex_all(number), hex_text(number));
        ASSERT_EQ(parse_hex(format_hex_all(number)).value(), number) << hex_text(number);
        ASSERT_EQ(parse_hex(format_hex(number)).value().OCINumberPart[0], number.OCINumberPart[0]);
    }
}

} // namespace
} // namespace qzoci::test
