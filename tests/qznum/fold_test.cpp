/* qznum sum, stats, profile and digest: against exact integers, in any order and with any threads. */
#include "tests/qznum/model.h"
#include "tests/qznum/tool.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xxhash.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::HasSubstr;

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

/* A plain decimal of any length, exactly. */
std::string decimal_of_ratio(const mpq_class& value) {
    mpz_class scale = 1;
    int places = 0;
    while (mpq_class(value * scale).get_den() != 1) {
        scale *= 10;
        ++places;
    }
    const mpq_class scaled = value * scale;
    std::string digits = mpz_class(abs(scaled.get_num())).get_str();
    if (digits.size() <= static_cast<std::size_t>(places)) {
        digits.insert(0, static_cast<std::size_t>(places) + 1 - digits.size(), '0');
    }
    if (places > 0) {
        digits.insert(digits.size() - static_cast<std::size_t>(places), 1, '.');
    }
    return (sgn(value) < 0 ? "-" : "") + digits;
}

/* Up to 37 digits anywhere in the range of stored numbers, also where the engine's record ends. */
std::vector<std::string> random_decimals(std::size_t count, unsigned seed) {
    std::mt19937_64 random(seed);
    const auto up_to = [&random](int limit) { return std::uniform_int_distribution<int>(0, limit)(random); };
    std::vector<std::string> decimals;
    for (std::size_t i = 0; i < count; ++i) {
        const int more_digits = up_to(36);
        std::string digits = up_to(1) == 0 ? "-" : "";
        digits += static_cast<char>('1' + up_to(8));
        for (int j = 0; j < more_digits; ++j) {
            digits += static_cast<char>('0' + up_to(9));
        }
        const int first_power = up_to(127 + 124) - 127;
        decimals.push_back(digits + "e" + std::to_string(first_power - more_digits));
    }
    return decimals;
}

mpq_class sum_of(const std::vector<std::string>& decimals) {
    mpq_class sum = 0;
    for (const std::string& decimal : decimals) {
        sum += rational_of_decimal(decimal);
    }
    return sum;
}

/* ---- sum ---- */

TEST(QznumSum, IsExactAndThenItsStoredForm) {
    const Outcome outcome = qznum({"sum", "0.1", "0.2", "-0.3", "1.5"});
    EXPECT_EQ(outcome.results, "1.5\n" + all_bytes("03c10233") + "\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(qznum({"sum"}, "").results, "0\n" + all_bytes("0180") + "\n");
    EXPECT_EQ(qznum({"sum", "1", "-1"}).results, "0\n" + all_bytes("0180") + "\n");
    EXPECT_EQ(qznum({"sum", "0.01", "-100"}).results, "-99.99\n" + all_bytes("043e020266") + "\n");
    EXPECT_EQ(qznum({"sum", "--hex", "03c10233", "043e643366"}).results, "0\n" + all_bytes("0180") + "\n");
}

TEST(QznumSum, KeepsDigitsThatTheEnginesRecordDrops) {
    const Outcome outcome = qznum({"sum", "1." + std::string(37, '0') + "1e-127", "-1e-127"});
    EXPECT_EQ(outcome.results, "0." + std::string(164, '0') + "1\n" + all_bytes("0180") + "\n");
    EXPECT_EQ(outcome.messages, "qznum: the sum is too small for the stored form, which keeps a zero\n");
    EXPECT_EQ(lines_of(qznum({"sum", "1." + std::string(37, '0') + "1e-127", "1e-127"}).results)[0],
              "0." + std::string(126, '0') + "2" + std::string(37, '0') + "1");
}

TEST(QznumSum, OfRandomNumbersIsThatOfExactIntegersInAnyOrderWithAnyThreads) {
    std::vector<std::string> decimals = random_decimals(30000, 20261121);
    const mpq_class sum = sum_of(decimals);
    const std::string expected = decimal_of_ratio(sum) + "\n" + stored_hex(nearest_operand(sum)) + "\n";
    std::mt19937_64 random(7);
    for (const char* const threads : {"1", "2", "3", "8"}) {
        const Outcome outcome = qznum({"sum", "--threads", threads}, joined(decimals));
        EXPECT_EQ(outcome.results, expected);
        EXPECT_EQ(outcome.messages, "qznum: the sum is rounded to the stored form\n");
        EXPECT_EQ(outcome.status, 0);
        std::shuffle(decimals.begin(), decimals.end(), random);
    }
}

TEST(QznumSum, IsPackedAsTheEnginePacks) {
    for (unsigned seed = 0; seed < 8; ++seed) {
        const std::vector<std::string> decimals = random_decimals(2, seed);
        std::string expression = decimals[0] + " + " + decimals[1];
        expression = expression[0] == '-' ? "0 " + expression : expression;
        EXPECT_EQ(lines_of(qznum({"sum", decimals[0], decimals[1]}).results)[1],
                  lines_of(qznum({"eval", expression}).results)[1])
            << expression;
    }
}

TEST(QznumSum, ReportsWhatTheStoredFormCannotHold) {
    const Outcome large = qznum({"sum", "9e125", "9e125"});
    EXPECT_EQ(large.results, "18" + std::string(125, '0') + "\n" + all_bytes("02ff65") + "\n");
    EXPECT_EQ(large.messages, "qznum: the sum is too large for the stored form, which keeps an infinity\n");
    const Outcome rounded_up = qznum({"sum", std::string(40, '9') + "e86", "9e85"});
    EXPECT_EQ(lines_of(rounded_up.results)[1], all_bytes("02ff65"));
    const Outcome negative = qznum({"sum", "-9e125", "-9e125"});
    EXPECT_EQ(lines_of(negative.results)[1], all_bytes("0100"));
}

TEST(QznumSum, CountsInfinitiesApart) {
    const Outcome outcome = qznum({"sum", "1", "inf", "-inf", "inf", "2"});
    EXPECT_EQ(outcome.results, "3\n" + all_bytes("02c104") + "\n");
    EXPECT_EQ(outcome.messages, "qznum: infinities are not in the sum: 2 times inf, 1 times -inf\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumSum, InJsonSaysWhatWasCounted) {
    EXPECT_EQ(qznum({"sum", "--json", "--from", "csv", "-c", "a"}, "a,b\n1,x\n,y\ninf,z\n2.5,x\n").results,
              "{\"sum\":\"3.5\",\"stored\":\"" + all_bytes("03c10433") +
                  "\",\"count\":3,\"nulls\":1,\"inf\":1,\"-inf\":0}\n");
}

TEST(QznumSum, ReportsEachRowInErrorAndAddsTheOthers) {
    const Outcome outcome = qznum({"sum"}, "1\nx\n2\n");
    EXPECT_EQ(lines_of(outcome.results)[0], "3");
    EXPECT_EQ(outcome.messages, "qznum: standard input:2: 'x': at position 0: number expected\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(qznum({"sum", "--on-error", "stop"}, "1\nx\ny\n").messages, outcome.messages);
}

TEST(QznumSum, RoundsEachNumberToTheStoredFormFirst) {
    const std::string long_one = "1." + std::string(39, '0') + "7";
    const Outcome outcome = qznum({"sum", long_one, "1"});
    EXPECT_EQ(lines_of(outcome.results)[0], "2");
    EXPECT_THAT(outcome.messages, HasSubstr("rounded to the stored form, by -0.0000"));
}

/* ---- stats ---- */

TEST(QznumStats, CountsAndComparesFiniteNumbers) {
    const Outcome outcome = qznum({"stats", "--null", "-"}, "3\n-\n-1.5\ninf\n0\n-inf\n2.5\n-inf\n");
    EXPECT_EQ(outcome.results, "count: 7\nnulls: 1\nnegative: 1\nzero: 1\npositive: 2\ninf: 1\n-inf: 2\n"
                               "min: -1.5\nmax: 3\nsum: 4\nmean: 1\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(qznum({"stats", "inf"}).results,
              "count: 1\nnulls: 0\nnegative: 0\nzero: 0\npositive: 0\ninf: 1\n-inf: 0\n");
}

TEST(QznumStats, HasTheMathematicalMean) {
    EXPECT_THAT(qznum({"stats", "1", "1", "2"}).results,
                HasSubstr("\nmean: 1." + std::string(38, '3') + "\n"));
    EXPECT_THAT(qznum({"stats", "2", "2", "1"}).results,
                HasSubstr("\nmean: 1." + std::string(37, '6') + "7\n"));
    const std::vector<std::string> decimals = random_decimals(997, 3);
    const mpq_class mean = sum_of(decimals) / 997;
    const Outcome outcome = qznum({"stats"}, joined(decimals));
    EXPECT_THAT(outcome.results, HasSubstr("\nmean: " + stored_decimal(nearest_operand(mean)) + "\n"));
}

TEST(QznumStats, DoNotDependOnOrderOrThreads) {
    std::vector<std::string> decimals = random_decimals(30000, 5);
    decimals.emplace_back("inf");
    const Outcome first = qznum({"stats", "--threads", "1"}, joined(decimals));
    EXPECT_THAT(first.results, HasSubstr("count: 30001\n"));
    std::reverse(decimals.begin(), decimals.end());
    EXPECT_EQ(qznum({"stats", "--threads", "4"}, joined(decimals)).results, first.results);
}

/* ---- digest ---- */

TEST(QznumDigest, IsEqualForEqualValuesInAnyOrderAndAnyBytes) {
    const std::string digest = qznum({"digest", "--hex", "02c102", "03c10233", "02c102"}).results;
    EXPECT_EQ(qznum({"digest", "--hex", "03c10233", "03c10201", "04c20102ff"}).status, 1);
    EXPECT_EQ(qznum({"digest", "--hex", "03c10233", "03c10201", "03c20102"}).results, digest);
    EXPECT_EQ(qznum({"digest", "1.50", "1", "1e0"}).results, digest);
    EXPECT_THAT(digest, HasSubstr("\nsum: 3.5\ncount: 3\nnulls: 0\n"));
}

TEST(QznumDigest, DiffersWhereValuesDiffer) {
    const auto digest = [](const std::vector<std::string>& values) {
        std::vector<std::string> arguments = {"digest"};
        arguments.insert(arguments.end(), values.begin(), values.end());
        return lines_of(qznum(arguments).results)[0];
    };
    /* Equal sums and counts; twice the same is not nothing. */
    EXPECT_NE(digest({"1", "4"}), digest({"2", "3"}));
    EXPECT_NE(digest({"1", "1", "5"}), digest({"2", "2", "3"}));
    EXPECT_NE(digest({"1"}), digest({"-1"}));
    EXPECT_EQ(digest({}), "digest: " + std::string(32, '0'));
}

TEST(QznumDigest, IsTheHashOfTheCanonicalBytesUpToTheLength) {
    const std::array<unsigned char, 3> one = {0x02, 0xc1, 0x02};
    const XXH128_hash_t hash = XXH3_128bits(one.data(), one.size());
    EXPECT_EQ(lines_of(qznum({"digest", "1"}).results)[0],
              fmt::format("digest: {:016x}{:016x}", hash.high64, hash.low64));
    const mpz_class modulus = mpz_class(1) << 128;
    const mpz_class value(fmt::format("{:016x}{:016x}", hash.high64, hash.low64), 16);
    std::string sum = mpz_class(value * 3 % modulus).get_str(16);
    sum.insert(0, 32 - sum.size(), '0');
    EXPECT_EQ(lines_of(qznum({"digest", "1", "1", "1"}).results)[0], "digest: " + sum);
}

/* ---- profile ---- */

TEST(QznumProfile, CountsTheDigitsThatAColumnNeeds) {
    const Outcome outcome =
        qznum({"profile", "--decimal", "6,2"}, "1234.5\n-99\n0.25\n10000\n0.005\n0\ninf\n");
    EXPECT_THAT(outcome.results,
                testing::StartsWith("count: 7\nnulls: 0\ninf: 1\n-inf: 0\nnot canonical: 0\nmin: -99\n"
                                    "max: 10000\ndigits before the point: 5\ndigits after the point: 3\n"
                                    "do not fit decimal(6,2): 3\nfirst of them, line: 4\n"));
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumProfile, DrawsTheSizesOfTheNumbers) {
    const Outcome outcome = qznum({"profile"}, "1\n2\n3\n9.99\n10\n12\n0.001\n0\n");
    const auto lines = lines_of(outcome.results);
    ASSERT_GE(lines.size(), 4U);
    std::string forty;
    for (int i = 0; i < 40; ++i) {
        forty += "█";
    }
    const std::vector<std::string> drawn(lines.end() - 4, lines.end());
    EXPECT_EQ(drawn[0], "    10^1  " + forty.substr(0, forty.size() / 2) + " 2");
    EXPECT_EQ(drawn[1], "    10^0  " + forty + " 4");
    EXPECT_EQ(drawn[2], "     ...");
    EXPECT_EQ(drawn[3], "   10^-3  " + forty.substr(0, forty.size() / 4) + " 1");
    EXPECT_THAT(outcome.results, Not(HasSubstr("\x1b")));
}

TEST(QznumProfile, HasColourOnATerminalAlone) {
    const std::string command = "script --quiet --return --command 'qznum profile 1 2' /dev/null";
    EXPECT_THAT(shell("unset NO_COLOR; " + command).results, HasSubstr("\x1b[36m"));
    EXPECT_THAT(shell("export NO_COLOR=1; " + command).results, Not(HasSubstr("\x1b")));
}

TEST(QznumProfile, RefusesWhatIsNoDecimalColumn) {
    for (const char* const decimal : {"10", "10,", ",2", "2,10", "10,-1", "0,0", "10,2x", "x"}) {
        EXPECT_EQ(qznum({"profile", "--decimal", decimal, "1"}).status, 2) << decimal;
    }
}

TEST(QznumProfile, InJsonIsOneObject) {
    EXPECT_EQ(
        qznum({"profile", "--json", "--hex", "03c10201", "02c164"}).results,
        "{\"count\":2,\"nulls\":0,\"inf\":0,\"-inf\":0,\"not canonical\":1,\"min\":\"1\",\"max\":\"99\","
        "\"digits before the point\":2,\"digits after the point\":0}\n");
}

} // namespace
} // namespace qzoci::test
