/* qznum encode. */
#include "tests/qznum/model.h"
#include "tests/qznum/tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::HasSubstr;

struct Encoded {
    const char* decimal;
    const char* hex; /* up to the length */
};

void PrintTo(const Encoded& encoded, std::ostream* out) {
    *out << encoded.decimal;
}

class QznumEncodes : public testing::TestWithParam<Encoded> {};

TEST_P(QznumEncodes, AllBytesSilently) {
    const Outcome outcome = qznum({"encode", GetParam().decimal});
    EXPECT_EQ(outcome.results, all_bytes(GetParam().hex) + "\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
}

INSTANTIATE_TEST_SUITE_P(All, QznumEncodes,
                         testing::Values(Encoded{"1", "02c102"}, Encoded{"+1", "02c102"},
                                         Encoded{"-1", "033e6466"}, Encoded{"0.01", "02c002"},
                                         Encoded{".1", "02c00b"}, Encoded{"-.1", "033f5b66"},
                                         Encoded{"1e2", "02c202"}, Encoded{"-1E-2", "033f6466"},
                                         Encoded{"0", "0180"}, Encoded{"-0", "0180"},
                                         Encoded{"inf", "02ff65"}, Encoded{"-inf", "0100"},
                                         Encoded{"-123.45", "053d644e3866"}));

TEST(QznumEncode, TakesNegativeNumbersAmongOthersAndOptionsAfterTwoDashes) {
    EXPECT_EQ(qznum({"encode", "1", "-1"}).results,
              all_bytes("02c102") + "\n" + all_bytes("033e6466") + "\n");
    EXPECT_EQ(qznum({"encode", "--", "-1"}).results, all_bytes("033e6466") + "\n");
}

/* Short enough to be quoted whole in a message. */
std::string random_decimal(std::mt19937_64& random) {
    const auto up_to = [&random](unsigned long limit) {
        return std::uniform_int_distribution<unsigned long>(0, limit)(random);
    };
    std::string digits = std::to_string(1 + up_to(98));
    for (unsigned long count = up_to(55); count > 0; --count) {
        digits += static_cast<char>('0' + up_to(9));
    }
    if (const unsigned long fraction = up_to(digits.size() - 1); fraction > 0) {
        digits.insert(digits.size() - fraction, 1, '.');
        digits.erase(digits.find_last_not_of('0') + 1);
        digits += digits.ends_with('.') ? "5" : "";
    }
    return std::string(up_to(1) == 0 ? "-" : "").append(digits);
}

TEST(QznumEncode, PacksAsExactArithmeticSaysAndReportsExactlyWhatWasRounded) {
    std::mt19937_64 random(20261121);
    std::vector<std::string> command = {"encode"};
    std::vector<std::string> results;
    std::vector<std::string> messages;
    for (int i = 0; i < 2000; ++i) {
        const std::string decimal = random_decimal(random);
        const Operand operand = operand_of_decimal(decimal);
        command.push_back(decimal);
        results.push_back(stored_hex(operand));
        const Operand change = operand_of_record(contract::difference(stored(operand), operand).record);
        if (!change.is_zero()) {
            messages.push_back("qznum: '" + decimal + "': rounded to the stored form, by " +
                               decimal_of(change));
        }
    }
    EXPECT_GT(messages.size(), 100U);
    EXPECT_LT(messages.size(), 1900U);
    const Outcome outcome = qznum(command);
    EXPECT_TRUE(lines_of(outcome.results) == results) << outcome.results;
    EXPECT_TRUE(lines_of(outcome.messages) == messages) << outcome.messages;
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumEncode, DecodesToWhatWasEncoded) {
    std::mt19937_64 random(1);
    std::string decimals;
    for (int i = 0; i < 500; ++i) {
        const std::string decimal = random_decimal(random);
        if (decimal.size() <= 38) {
            decimals += decimal + "\n";
        }
    }
    ASSERT_GT(lines_of(decimals).size(), 100U);
    const Outcome encoded = qznum({"encode"}, decimals);
    EXPECT_EQ(qznum({"decode"}, encoded.results).results, decimals);
}

TEST(QznumEncode, RoundsTheTwentyFirstPairFromAHalfUp) {
    const std::string twenty_pairs = "12345678901234567890123456789012345678.12";
    EXPECT_THAT(qznum({"encode", twenty_pairs + "49"}).messages, HasSubstr(", by -0.0049\n"));
    EXPECT_THAT(qznum({"encode", twenty_pairs + "5"}).messages, HasSubstr(", by 0.005\n"));
    EXPECT_THAT(qznum({"encode", "-" + twenty_pairs + "5"}).messages, HasSubstr(", by -0.005\n"));
}

TEST(QznumEncode, SaysWhenANumberIsTooLarge) {
    const Outcome outcome = qznum({"encode", "1e126", "-1e159"});
    EXPECT_EQ(outcome.results, all_bytes("02ff65") + "\n" + all_bytes("0100") + "\n");
    EXPECT_EQ(lines_of(outcome.messages)[0],
              "qznum: '1e126': too large for the stored form, which keeps an infinity");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumEncode, SaysWhenANumberIsTooSmall) {
    const Outcome outcome = qznum({"encode", "1e-130"});
    EXPECT_EQ(outcome.results, all_bytes("0180") + "\n");
    EXPECT_EQ(outcome.messages,
              "qznum: '1e-130': rounded to the stored form, by -0." + std::string(129, '0') + "1\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumEncode, KeepsOnePairMoreOfASmallNegativeNumber) {
    EXPECT_EQ(qznum({"encode", "1e-128", "-1e-130"}).results,
              all_bytes("028102") + "\n" + all_bytes("037f6466") + "\n");
    EXPECT_EQ(qznum({"encode", "-1e-131"}).results, all_bytes("0180") + "\n");
}

TEST(QznumEncode, SaysWhenRoundingUpWrapsTheExponentByte) {
    const Outcome positive = qznum({"encode", std::string(44, '9') + "e82"});
    EXPECT_EQ(positive.results, all_bytes("020002") + "\n");
    EXPECT_THAT(positive.messages, HasSubstr("its stored form is malformed: byte 2"));
    EXPECT_EQ(positive.status, 1);
    const Outcome negative = qznum({"encode", "-" + std::string(44, '9') + "e82"});
    EXPECT_EQ(negative.results, all_bytes("03ff6466") + "\n");
    EXPECT_THAT(negative.messages, HasSubstr("its stored form is malformed: byte 3"));
    EXPECT_EQ(negative.status, 1);
}

struct Rejected {
    const char* decimal;
    const char* message;
};

void PrintTo(const Rejected& rejected, std::ostream* out) {
    *out << rejected.decimal;
}

class QznumEncodeRejects : public testing::TestWithParam<Rejected> {};

TEST_P(QznumEncodeRejects, WithThePosition) {
    const Outcome outcome = qznum({"encode", GetParam().decimal, "7"});
    EXPECT_EQ(outcome.results, all_bytes("02c108") + "\n");
    EXPECT_THAT(outcome.messages, testing::StartsWith("qznum: '" + std::string(GetParam().decimal) +
                                                      "': " + GetParam().message));
    EXPECT_EQ(outcome.status, 1);
}

INSTANTIATE_TEST_SUITE_P(
    All, QznumEncodeRejects,
    testing::Values(Rejected{"", "at position 0: "}, Rejected{"x", "at position 0: "},
                    Rejected{"1,5", "at position 1: "}, Rejected{"1.5.2", "at position 3: "},
                    Rejected{"1e", "at position 2: "}, Rejected{"--1", "at position 1: "},
                    Rejected{"-abc", "at position 1: "}, Rejected{".", "at position 1: "},
                    Rejected{"12 3", "at position 2: "}, Rejected{"1e160", "at position 0: "},
                    Rejected{"1.5e-160", "at position 2: "}));

} // namespace
} // namespace qzoci::test
