/* qznum decode. */
#include "tests/qznum/tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <qzoci/decimal_text.hpp>

#include <ostream>
#include <string>

namespace qzoci::test {
namespace {

using testing::HasSubstr;

const std::string all_bytes_of_1 = std::string("02c102").append(38, '0');

struct Decoded {
    std::string hex;
    std::string decimal;
};

void PrintTo(const Decoded& decoded, std::ostream* out) {
    *out << decoded.hex;
}

class QznumDecodes : public testing::TestWithParam<Decoded> {};

TEST_P(QznumDecodes, ExactlyAndSilently) {
    const Outcome outcome = qznum({"decode", GetParam().hex});
    EXPECT_EQ(outcome.results, GetParam().decimal + "\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
}

INSTANTIATE_TEST_SUITE_P(
    All, QznumDecodes,
    testing::Values(
        Decoded{"02c102", "1"}, Decoded{"0x02c102", "1"}, Decoded{"02C102", "1"}, Decoded{"033e6466", "-1"},
        Decoded{"02c002", "0.01"}, Decoded{"02c00b", "0.1"}, Decoded{"02c264", "9900"}, Decoded{"0180", "0"},
        Decoded{"02ff65", "inf"}, Decoded{"0100", "-inf"}, Decoded{"04c1020433", "1.035"},
        Decoded{"02ff02", std::string("1").append(124, '0')},
        /* Trailing 00 pairs and bytes after the length are not part of the value. */
        Decoded{"04c2020101", "100"}, Decoded{"02c102ffffff", "1"}, Decoded{all_bytes_of_1, "1"},
        /* The last of twenty pairs counts, as the engine's own records do not, down to 10^-168. */
        Decoded{"157f6565656565656565656565656565656565656564",
                std::string("-0.").append(167, '0').append("1")}));

TEST(QznumDecode, PrintsOneLineForEachArgumentInTheirOrder) {
    const Outcome outcome = qznum({"decode", "02c104", "02c102", "02c103"});
    EXPECT_EQ(outcome.results, "3\n1\n2\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumDecode, NamesEveryByteOfAPositiveNumber) {
    const Outcome outcome = qznum({"decode", "-v", "04c20204330102"});
    EXPECT_EQ(outcome.results, "103.5\n"
                               "      0  04  length: 4 bytes follow\n"
                               "      1  c2  exponent byte: positive, first pair * 100^1\n"
                               "      2  02  pair 01 * 100^1\n"
                               "      3  04  pair 03 * 100^0\n"
                               "      4  33  pair 50 * 100^-1\n"
                               "   5-21  0102000000000000000000000000000000  ignored\n");
    EXPECT_EQ(outcome.messages, "");
}

TEST(QznumDecode, NamesEveryByteOfANegativeNumber) {
    EXPECT_EQ(qznum({"decode", "--verbose", "043e643366"}).results,
              "-1.5\n"
              "      0  04  length: 4 bytes follow\n"
              "      1  3e  exponent byte: negative, first pair * 100^0\n"
              "      2  64  pair 01 * 100^0\n"
              "      3  33  pair 50 * 100^-1\n"
              "      4  66  terminator\n"
              "   5-21  0000000000000000000000000000000000  ignored\n");
}

TEST(QznumDecode, NamesEveryByteOfASpecialValue) {
    EXPECT_EQ(qznum({"decode", "-v", "0180"}).results, "0\n"
                                                       "      0  01  length: 1 byte follows\n"
                                                       "      1  80  exponent byte: zero\n"
                                                       "   2-21  0000000000000000000000000000000000000000  "
                                                       "ignored\n");
    EXPECT_THAT(qznum({"decode", "-v", "02ff65"}).results, HasSubstr("mark of the infinity"));
    EXPECT_THAT(qznum({"decode", "-v", "0100"}).results, HasSubstr("negative infinity"));
}

TEST(QznumDecode, NamesAllTwentyPairsWithoutARangeOfIgnoredBytes) {
    const Outcome outcome = qznum({"decode", "-v", "15c102030405060708090a0b0c0d0e0f101112131415"});
    const auto lines = lines_of(outcome.results);
    ASSERT_EQ(lines.size(), 23U);
    EXPECT_EQ(lines.back(), "     21  15  pair 20 * 100^-19");
}

TEST(QznumDecode, NotesWhatIsNotCanonical) {
    EXPECT_THAT(qznum({"decode", "-v", "03c10201"}).results, HasSubstr("note: byte 3: trailing 00 pair"));
    EXPECT_THAT(qznum({"decode", "-v", "03c10102"}).results, HasSubstr("note: byte 2: leading 00 pair"));
}

struct Rejected {
    std::string hex;
    std::string reason;
};

void PrintTo(const Rejected& rejected, std::ostream* out) {
    *out << rejected.hex;
}

Rejected no_bytes(const std::string& hex, std::size_t position, text_fault fault) {
    return {hex, "at position " + std::to_string(position) + ": " + std::string(describe(fault))};
}

Rejected malformed(const std::string& hex, std::size_t offset, number_fault fault) {
    return {hex, "malformed: byte " + std::to_string(offset) + ": " + std::string(describe(fault))};
}

class QznumDecodeRejects : public testing::TestWithParam<Rejected> {};

TEST_P(QznumDecodeRejects, WithTheOffset) {
    const Outcome outcome = qznum({"decode", GetParam().hex});
    EXPECT_EQ(outcome.results, "");
    EXPECT_EQ(outcome.messages, "qznum: '" + GetParam().hex + "': " + GetParam().reason + "\n");
    EXPECT_EQ(outcome.status, 1);
}

INSTANTIATE_TEST_SUITE_P(Text, QznumDecodeRejects,
                         testing::Values(no_bytes("", 0, text_fault::hex_digit_expected),
                                         no_bytes("02c1x2", 4, text_fault::hex_digit_expected),
                                         no_bytes("02c10", 5, text_fault::half_byte),
                                         no_bytes("04c10233", 8, text_fault::fewer_bytes_than_length),
                                         no_bytes(all_bytes_of_1 + "00", 44, text_fault::too_many_bytes)));

INSTANTIATE_TEST_SUITE_P(Bytes, QznumDecodeRejects,
                         testing::Values(malformed("00", 0, number_fault::length),
                                         malformed(std::string("16").append(42, '0'), 0,
                                                   number_fault::length),
                                         malformed("01c1", 2, number_fault::pair_missing),
                                         malformed("03c10266", 3, number_fault::pair_out_of_range),
                                         malformed("03c10200", 3, number_fault::pair_out_of_range),
                                         malformed("033e6464", 3, number_fault::terminator_missing),
                                         malformed("043e646565", 4, number_fault::terminator_missing),
                                         malformed("043e646666", 4, number_fault::bytes_after_terminator)));

TEST(QznumDecode, GoesOnAfterAValueInError) {
    const Outcome outcome = qznum({"decode", "02c102", "zz", "02c103"});
    EXPECT_EQ(outcome.results, "1\n2\n");
    EXPECT_THAT(outcome.messages, HasSubstr("'zz'"));
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumDecode, ShowsTheBytesOfAMalformedNumberAmongTheMessages) {
    const Outcome outcome = qznum({"decode", "-v", "03c10266"});
    EXPECT_EQ(outcome.results, "");
    EXPECT_THAT(outcome.messages, HasSubstr("3  66  pair 101 * 100^-1, malformed"));
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumDecodeForced, AddsUpWhatTheBytesSay) {
    const Outcome outcome = qznum({"decode", "--force", "03c102ff"});
    EXPECT_EQ(outcome.results, "3.54\n"); /* 1 + 254 / 100 */
    EXPECT_THAT(outcome.messages, HasSubstr("byte 3: digit pair out of range"));
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumDecodeForced, SkipsTheLastByteOfANegativeNumberWhateverItIs) {
    EXPECT_EQ(qznum({"decode", "--force", "033e6464"}).results, "-1\n");
}

TEST(QznumDecodeForced, WrapsALimbThatGoesBelowZero) {
    /* The pair -1 alone in limb 19 is 2^32 - 1 there. */
    EXPECT_EQ(qznum({"decode", "--force", "02c100"}).results, "4294967295\n");
}

TEST(QznumDecodeForced, MarksTheBytesThatAreMalformed) {
    const Outcome outcome = qznum({"decode", "--force", "-v", "03c102ff"});
    EXPECT_THAT(outcome.results, HasSubstr("3  ff  pair 254 * 100^-1, malformed"));
}

TEST(QznumDecodeForced, CannotDecodeABadLength) {
    const Outcome outcome = qznum({"decode", "--force", "00"});
    EXPECT_EQ(outcome.results, "");
    EXPECT_THAT(outcome.messages, HasSubstr("byte 0: length outside 1..21"));
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumDecodeForced, LeavesWellFormedNumbersAsTheyAre) {
    const Outcome outcome = qznum({"decode", "--force", "02c102"});
    EXPECT_EQ(outcome.results, "1\n");
    EXPECT_EQ(outcome.messages, "");
}

} // namespace
} // namespace qzoci::test
