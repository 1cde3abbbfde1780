/* qznum map. */
#include "tests/qznum/tool.h"
#include "tools/qznum/progress.hpp"

#include "qzoci/oci_calc_number.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <qzoci/hex_text.hpp>

#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/* ---- Against the C calls ---- */

constexpr int row_count = 10000;

/* Well-formed numbers of every length and either sign, their exponents around that of 1. */
std::vector<OCINumber> any_numbers() {
    std::mt19937_64 random(20261121);
    const auto up_to = [&random](int limit) { return std::uniform_int_distribution<int>(0, limit)(random); };
    std::vector<OCINumber> numbers;
    for (int i = 0; i < row_count; ++i) {
        const bool negative = up_to(1) == 1;
        const int pairs = 1 + up_to(19);
        const auto byte_of_pair = [negative](int pair) {
            return static_cast<ub1>(negative ? 101 - pair : pair + 1);
        };
        OCINumber number = {};
        const int exponent = 193 - 10 + up_to(20);
        number.OCINumberPart[1] = static_cast<ub1>(negative ? 255 - exponent : exponent);
        for (int p = 0; p < pairs; ++p) {
            const bool at_an_end = p == 0 || p == pairs - 1;
            number.OCINumberPart[2 + p] = byte_of_pair(at_an_end ? 1 + up_to(98) : up_to(99));
        }
        int length = pairs + 1;
        if (negative && pairs < 20) {
            number.OCINumberPart[++length] = 102;
        }
        number.OCINumberPart[0] = static_cast<ub1>(length);
        numbers.push_back(number);
    }
    return numbers;
}

QZCICalcNumber unpacked(const OCINumber& number) {
    QZCICalcNumber record;
    EXPECT_EQ(QZCICalcNumFromNumber(&record, &number), OCI_SUCCESS);
    return record;
}

OCINumber packed(const QZCICalcNumber& record) {
    OCINumber number = {};
    EXPECT_EQ(QZCICalcNumToNumber(&record, &number), OCI_SUCCESS);
    return number;
}

/* 1.19 */
constexpr OCINumber factor = {{3, 193, 2, 20}};

struct Mapping {
    const char* expression;
    QZCICalcNumber (*calls)(const QZCICalcNumber& x);
};

QZCICalcNumber product(const QZCICalcNumber& x) {
    const QZCICalcNumber f = unpacked(factor);
    QZCICalcNumber result;
    EXPECT_EQ(QZCICalcNumMul(&x, &f, &result), OCI_SUCCESS);
    return result;
}

QZCICalcNumber product_less_third(const QZCICalcNumber& x) {
    const QZCICalcNumber p = product(x);
    QZCICalcNumber three;
    QZCICalcNumber quotient;
    QZCICalcNumber result;
    initCalcNumberFromInt(&three, 3);
    EXPECT_EQ(QZCICalcNumDiv(&x, &three, &quotient), OCI_SUCCESS);
    EXPECT_EQ(QZCICalcNumSub(&p, &quotient, &result), OCI_SUCCESS);
    return result;
}

QZCICalcNumber long_quotient(const QZCICalcNumber& x) {
    const QZCICalcNumber f = unpacked(factor);
    QZCICalcNumber quotient;
    QZCICalcNumber result;
    EXPECT_EQ(QZCICalcNumDiv(&f, &x, &quotient), OCI_SUCCESS);
    EXPECT_EQ(QZCICalcNumMod(&x, &quotient, &result), OCI_SUCCESS);
    return result;
}

QZCICalcNumber rounded_up_negated(const QZCICalcNumber& x) {
    QZCICalcNumber result;
    EXPECT_EQ(QZCICalcNumCeil(&x, &result), OCI_SUCCESS);
    EXPECT_EQ(QZCICalcNumNeg(&result), OCI_SUCCESS);
    return result;
}

QZCICalcNumber root_of_square(const QZCICalcNumber& x) {
    QZCICalcNumber square;
    QZCICalcNumber result;
    EXPECT_EQ(QZCICalcNumMul(&x, &x, &square), OCI_SUCCESS);
    EXPECT_EQ(QZCICalcNumSqrt(&square, &result), OCI_SUCCESS);
    return result;
}

constexpr Mapping mappings[] = {{"x * 1.19", product},
                                {"x * 1.19 - x / 3", product_less_third},
                                {"x % (1.19 / x)", long_quotient},
                                {"-ceil(x)", rounded_up_negated},
                                {"sqrt(x * x)", root_of_square}};

TEST(QznumMap, GivesTheBytesThatTheCallsGive) {
    const auto numbers = any_numbers();
    const TemporaryFolder folder;
    {
        std::ofstream hex(folder.file("numbers.txt"));
        std::ofstream raw(folder.file("numbers.raw"), std::ios::binary);
        for (const OCINumber& number : numbers) {
            hex << format_hex_all(number) << '\n';
            raw.write(reinterpret_cast<const char*>(number.OCINumberPart), sizeof number.OCINumberPart);
        }
    }
    for (const Mapping& mapping : mappings) {
        std::string hex;
        std::string raw;
        for (const OCINumber& number : numbers) {
            const OCINumber result = packed(mapping.calls(unpacked(number)));
            hex += format_hex_all(result) + "\n";
            raw.append(reinterpret_cast<const char*>(result.OCINumberPart), sizeof result.OCINumberPart);
        }
        const Outcome as_hex = qznum({"map", mapping.expression, "--hex", "--to", "hex", "--threads", "2",
                                      "--file", folder.file("numbers.txt")});
        EXPECT_TRUE(as_hex.results == hex) << mapping.expression;
        EXPECT_EQ(as_hex.messages, "");
        EXPECT_EQ(as_hex.status, 0);
        const Outcome as_raw = qznum({"map", mapping.expression, "--from", "raw", "--to", "raw", "--file",
                                      folder.file("numbers.raw")});
        EXPECT_TRUE(as_raw.results == raw) << mapping.expression;
    }
}

/* ---- Order ---- */

TEST(QznumMap, KeepsTheOrderOfRowsWhateverTheThreads) {
    constexpr int count = 200000;
    std::string rows;
    std::string doubled;
    for (int i = 0; i < count; ++i) {
        rows += std::to_string(i) + "\n";
        doubled += std::to_string(2 * i) + "\n";
    }
    for (const char* const threads : {"1", "2", "5"}) {
        const Outcome outcome = qznum({"map", "x * 2", "--threads", threads}, rows);
        EXPECT_TRUE(outcome.results == doubled) << threads;
        EXPECT_EQ(outcome.messages, "") << threads;
    }
}

/* ---- Names ---- */

constexpr const char* table = "id,net,rate,unit price,pi\n"
                              "a,25,0.19,3,4\n"
                              "b,,0.07,5,6\n"
                              "c,10,0.07,\"7\",8\n";

Outcome map_table(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "map");
    arguments.insert(arguments.end(), {"--from", "csv", "--column", "net"});
    return qznum(std::move(arguments), table);
}

TEST(QznumMap, KnowsTheColumnsByTheirNames) {
    EXPECT_EQ(map_table({"x * (1 + rate)"}).results, "29.75\n\n10.7\n");
    EXPECT_EQ(map_table({"net + \"unit price\" + \"pi\" + more", "--set", "more=100"}).results,
              "132\n\n125\n");
    EXPECT_EQ(map_table({"rate"}).results, "0.19\n0.07\n0.07\n");
}

TEST(QznumMap, PutsResultsInAColumn) {
    EXPECT_EQ(map_table({"x * 2", "--to", "csv"}).results, "id,net,rate,unit price,pi\n"
                                                           "a,50,0.19,3,4\n"
                                                           "b,,0.07,5,6\n"
                                                           "c,20,0.07,7,8\n");
    EXPECT_THAT(map_table({"x * 2", "--to", "csv", "--output-column", "twice"}).results,
                StartsWith("id,net,rate,unit price,pi,twice\na,25,0.19,3,4,50\nb,,0.07,5,6,\n"));
}

TEST(QznumMap, KnowsNoOtherNames) {
    const Outcome outcome = map_table({"x * (1 + raet)"});
    EXPECT_EQ(outcome.results, "");
    EXPECT_EQ(outcome.messages,
              "qznum: at position 9: unknown name 'raet'\n  x * (1 + raet)\n           ^\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(map_table({"x", "--set", "rate=1"}).messages, HasSubstr("have a value of this name"));
    EXPECT_EQ(map_table({"x", "--set", "x=1"}).status, 2);
}

/* ---- Errors ---- */

constexpr const char* rows_with_errors = "1\n0\nnonsense\n4\n";

TEST(QznumMapError, IsPassedOverWithItsLineAndCounted) {
    const Outcome outcome = qznum({"map", "8 / x"}, rows_with_errors);
    EXPECT_EQ(outcome.results, "8\n2\n");
    EXPECT_EQ(outcome.messages,
              "qznum: standard input:2: '0': engine error: QZCICalcNumDiv: the divisor is zeor; "
              "the operation returned status -1 at position 2\n"
              "qznum: standard input:3: 'nonsense': at position 0: number expected\n"
              "qznum: 2 of 4 rows in error\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumMapError, EndsTheWorkOnRequest) {
    const Outcome outcome = qznum({"map", "8 / x", "--on-error", "stop"}, rows_with_errors);
    EXPECT_EQ(outcome.results, "8\n");
    EXPECT_THAT(outcome.messages, testing::EndsWith("\nqznum: 1 of 2 rows in error\n"));
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumMapError, KeepsItsRowOnRequest) {
    const Outcome outcome = qznum({"map", "8 / x", "--on-error", "keep"}, rows_with_errors);
    EXPECT_EQ(outcome.results, "8\n\n\n2\n");
    EXPECT_THAT(outcome.messages, testing::EndsWith("\nqznum: 2 of 4 rows in error\n"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(qznum({"map", "8 / x", "--on-error=keep", "--jsonl"}, "0\n").results,
              "{\"line\":1,\"label\":\"\",\"value\":null}\n");
}

TEST(QznumMapError, OfAnotherColumnNamesIt) {
    const Outcome outcome = qznum({"map", "x * rate", "--from", "csv", "-c", "net"}, "net,rate\n1,2\n3,4?\n");
    EXPECT_EQ(outcome.results, "2\n");
    EXPECT_THAT(outcome.messages, StartsWith("qznum: standard input:3: '3': rate: "));
}

TEST(QznumMapError, IsATimeThatHasPassed) {
    const Outcome outcome = qznum({"map", "x + 1", "--time-limit", "0s"}, "1\n2\n");
    EXPECT_EQ(outcome.results, "");
    EXPECT_EQ(outcome.messages, "qznum: standard input:1: '1': the time limit has passed at position 2\n"
                                "qznum: standard input:2: '2': the time limit has passed at position 2\n"
                                "qznum: 2 of 2 rows in error\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(qznum({"map", "x + 1", "--time-limit", "60min"}, "1\n2\n").results, "2\n3\n");
}

TEST(QznumMapMessage, SaysWhatTheEngineSaysOfARowThatHasAResult) {
    const Outcome outcome = qznum({"map", "sqrt(x)"}, "4\n-4\n");
    EXPECT_EQ(outcome.results, "2\n0\n");
    EXPECT_THAT(outcome.messages,
                StartsWith("qznum: standard input:2: '-4': engine error: QZCICalcNumSqrt: the number is"));
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumMapMessage, TellsWhatRoundingChanged) {
    const Outcome outcome = qznum({"map", "x * 100"}, "0." + std::string(40, '1') + "2\n");
    EXPECT_EQ(outcome.results, "11." + std::string(38, '1') + "\n");
    EXPECT_THAT(outcome.messages, HasSubstr("rounded to the stored form, by"));
}

/* ---- Streams ---- */

TEST(QznumMapOutput, WithoutAReaderEndsTheWorkInSilence) {
    const Outcome outcome =
        shell("{ yes 1 | timeout 60 qznum map 'x + 1'; echo status ${PIPESTATUS[1]} >&2; } | head -n 1");
    EXPECT_EQ(outcome.results, "2\n");
    EXPECT_EQ(outcome.messages, "status 3\n");
}

TEST(QznumMapOutput, FullEndsTheWorkEarly) {
    const Outcome outcome = shell("yes 1 | timeout 60 qznum map 'x + 1' >/dev/full");
    EXPECT_EQ(outcome.messages, "qznum: cannot write results: No space left on device\n");
    EXPECT_EQ(outcome.status, 3);
}

/* ---- Progress ---- */

TEST(QznumProgress, IsAShareOfTheBytesWhereTheirNumberIsKnown) {
    EXPECT_EQ(qznum::progress_text(0, 200, 0), "[" + std::string(40, '.') + "]   0%  0 rows");
    EXPECT_EQ(qznum::progress_text(101, 200, 7),
              "[" + std::string(20, '#') + std::string(20, '.') + "]  50%  7 rows");
    EXPECT_EQ(qznum::progress_text(200, 200, 9), "[" + std::string(40, '#') + "] 100%  9 rows");
    EXPECT_EQ(qznum::progress_text(300, 200, 9), "[" + std::string(40, '#') + "] 100%  9 rows");
    EXPECT_EQ(qznum::progress_text(300, 0, 9), "9 rows");
    EXPECT_EQ(qznum::progress_text(300, std::nullopt, 9), "9 rows");
}

/* Rows until a key is typed: the line has to come, whenever that is. */
constexpr const char* rows_until_a_key =
    "PATH=" QZNUM_FOLDER ":$PATH; { while ! read -r -s -t 0.2 -n 1 </dev/tty; do echo 1; done; } | ";

TEST(QznumProgress, IsShownOnATerminalWhileItLastsAndThenGone) {
    const Outcome outcome =
        on_terminal({"bash", "-c", std::string(rows_until_a_key) + "qznum map 'x + 1' >/dev/null; echo done"},
                    {{" rows", "k"}});
    EXPECT_THAT(outcome.results, testing::EndsWith(" rows\x1b[Kdone\n"));
}

TEST(QznumProgress, IsNotShownElsewhere) {
    const Outcome outcome =
        on_terminal({"bash", "-c",
                     std::string(rows_until_a_key) + "qznum map 'x + 1' 2>/dev/null | head -c 6; echo done"},
                    {{"", "k"}});
    EXPECT_THAT(outcome.results, Not(HasSubstr(" rows")));
    EXPECT_EQ(shell("seq 100000 | qznum map 'x + 1' 2>&1 >/dev/null").results, "");
}

} // namespace
} // namespace qzoci::test
