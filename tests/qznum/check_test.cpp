/* qznum check and canon. */
#include "tests/qznum/tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace qzoci::test {
namespace {

using testing::HasSubstr;

struct Verdict {
    const char* hex;
    const char* verdict;
    int status;
};

void PrintTo(const Verdict& verdict, std::ostream* out) {
    *out << verdict.hex;
}

class QznumCheck : public testing::TestWithParam<Verdict> {};

TEST_P(QznumCheck, SaysWhatIsWrongAndWhere) {
    const Outcome outcome = qznum({"check", GetParam().hex});
    EXPECT_EQ(outcome.results, "'" + std::string(GetParam().hex) + "': " + GetParam().verdict + "\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    All, QznumCheck,
    testing::Values(
        Verdict{"03c10233", "canonical", 0}, Verdict{"0180", "canonical", 0},
        Verdict{"02ff65", "canonical", 0}, Verdict{"03c10201", "not canonical: byte 3: trailing 00 pair", 0},
        Verdict{"04c1010201", "not canonical: byte 2: leading 00 pair, byte 4: trailing 00 pair", 0},
        Verdict{"028055", "not canonical: byte 2: bytes after the exponent byte of a zero", 0},
        Verdict{"02c10277", "not canonical: bytes other than 00 after the length", 0},
        Verdict{"00", "malformed: byte 0: length outside 1..21", 1},
        Verdict{"03c10266", "malformed: byte 3: digit pair out of range", 1},
        Verdict{"033e6464", "malformed: byte 3: terminator 102 missing", 1},
        Verdict{"04c102", "malformed: at position 6: fewer bytes than the length byte promises", 1},
        Verdict{"xyz", "malformed: at position 0: hex digit expected", 1}));

TEST(QznumCheckStrict, TakesWhatIsNotCanonicalForAnError) {
    EXPECT_EQ(qznum({"check", "--strict", "03c10201"}).status, 1);
    EXPECT_EQ(qznum({"check", "--strict", "03c10233"}).status, 0);
}

TEST(QznumCheckQuiet, PrintsOnlyWhatIsNotCanonical) {
    const Outcome outcome = qznum({"check", "--quiet"}, "a: 02c102\nb: 03c10201\n\nc: 02c100\n");
    EXPECT_EQ(outcome.results, "standard input:2: '03c10201': not canonical: byte 3: trailing 00 pair\n"
                               "standard input:4: '02c100': malformed: byte 2: digit pair out of range\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumCheckOfATable, AddsItsVerdictsAsAColumn) {
    const Outcome outcome =
        qznum({"check", "--from", "csv", "-c", "n", "--to", "csv"}, "n,m\n02c102,x\n,y\n02c100,z\n");
    EXPECT_EQ(outcome.results,
              "n,m,check\n02c102,x,canonical\n,y,null\n02c100,z,malformed: byte 2: digit pair "
              "out of range\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(qznum({"check", "--json", "02c102"}).results,
              "[\n{\"argument\":1,\"value\":\"02c102\",\"check\":\"canonical\"}\n]\n");
    EXPECT_EQ(qznum({"check", "--to", "raw", "02c102"}).status, 2);
}

TEST(QznumCheckOfRawRecords, ShowsThemInHex) {
    EXPECT_EQ(shell("qznum encode 1 --to raw | qznum check --from raw --to csv").results,
              "record,value,check\n1," + all_bytes("02c102") + ",canonical\n");
}

TEST(QznumCanon, WritesTheOneFormOfEqualValues) {
    const Outcome outcome = qznum(
        {"canon", "03c10201", "03c20102", "02c10277", "028055", "043e646566", "0100", "02ff65", "02c101"});
    EXPECT_EQ(outcome.results, all_bytes("02c102") + "\n" + all_bytes("02c102") + "\n" + all_bytes("02c102") +
                                   "\n" + all_bytes("0180") + "\n" + all_bytes("033e6466") + "\n" +
                                   all_bytes("0100") + "\n" + all_bytes("02ff65") + "\n" + all_bytes("0180") +
                                   "\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumCanon, KeepsMalformedBytesOutOfItsResults) {
    const Outcome outcome = qznum({"canon", "02c102", "02c100"});
    EXPECT_EQ(outcome.results, all_bytes("02c102") + "\n");
    EXPECT_EQ(outcome.messages, "qznum: '02c100': malformed: byte 2: digit pair out of range\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumCanon, CheckFindsNothingIn) {
    const Outcome outcome = shell("qznum canon 03c10201 028055 --to raw | qznum check --from raw --strict");
    EXPECT_EQ(outcome.results, "standard input:record 1: canonical\nstandard input:record 2: canonical\n");
    EXPECT_EQ(outcome.status, 0);
}

} // namespace
} // namespace qzoci::test
