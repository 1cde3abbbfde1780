/* qznum diff. */
#include "tests/qznum/tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace qzoci::test {
namespace {

using testing::HasSubstr;

/* diff of two files with these contents. */
Outcome diff(const std::string& a, const std::string& b, const std::string& options) {
    return shell("folder=$(mktemp --directory) && cd \"$folder\" && trap 'rm -r \"$folder\"' EXIT\n"
                 "printf '" +
                 a + "' >a; printf '" + b + "' >b\nqznum diff a b " + options);
}

TEST(QznumDiff, ComparesValuesRowByRow) {
    const Outcome same = diff("1.5\\n-0\\n1e2\\n", "1.50\\n0\\n\\n100 # the same\\n", "");
    EXPECT_EQ(same.results + same.messages, "");
    EXPECT_EQ(same.status, 0);
    const Outcome other = diff("1\\n2\\n3\\n", "1\\n2.5\\n3\\n4\\n", "");
    EXPECT_EQ(other.results, "2: 2 -> 2.5\n4: missing -> 4\n");
    EXPECT_EQ(other.messages, "");
    EXPECT_EQ(other.status, 1);
    EXPECT_EQ(diff("1\\n2\\n", "1\\n", "").results, "2: 2 -> missing\n");
    EXPECT_EQ(diff("02c102\\n", "03c10201\\n", "--hex").status, 0);
}

TEST(QznumDiff, ComparesRowsWithEqualKeys) {
    const std::string a = "k,v\\nx,1\\ny,2\\n\"z\",\\nw,4\\n";
    const std::string b = "k,v\\nw,4.0\\nz,3\\nx,1\\nq,5\\n";
    const Outcome outcome = diff(a, b, "--from csv --column v --key k");
    EXPECT_EQ(outcome.results, "z: null -> 3\nq: missing -> 5\ny: 2 -> missing\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(diff(a, b, "--from csv --column v --key k --to csv").results,
              "k,a,b\nz,null,3\nq,missing,5\ny,2,missing\n");
    EXPECT_EQ(lines_of(diff(a, b, "--from csv --column v --key k --jsonl").results)[0],
              R"({"k":"z","a":"null","b":"3"})");
    EXPECT_EQ(diff(a, b, "--from csv --column v --key nothing").status, 2);
}

TEST(QznumDiff, ReportsKeysThatComeTwiceAndValuesInError) {
    const Outcome twice = diff("k,v\\nx,1\\nx,2\\n", "k,v\\nx,1\\n", "--from csv --column v --key k");
    EXPECT_EQ(twice.results, "");
    EXPECT_EQ(twice.messages, "qznum: a:3: '2': its key came before\n");
    EXPECT_EQ(twice.status, 1);
    const Outcome error = diff("1\\nx\\n3\\n", "1\\n2\\n4\\n", "");
    EXPECT_EQ(error.results, "3: 3 -> 4\n");
    EXPECT_EQ(error.messages, "qznum: a:2: 'x': at position 0: number expected\n");
    EXPECT_EQ(error.status, 1);
}

TEST(QznumDiffExact, FindsTheQuotientsThatAreNotThoseOfMathematics) {
    /* 4 / 2.03 as the engine gives it and as it is; and where nothing can be said. */
    const std::string table =
        "a,b,q\\n1,4,0.25\\n4,2.03,1.97044335453201990000000343349759605911\\n"
        "4,2.03,1.97044334975369458128078817733990147783\\n1,3,0.3\\n1,,\\n1,0,5\\n2,x,1\\n";
    const std::string command = "printf '" + table + "' | qznum diff - --from csv --exact a b q";
    const Outcome outcome = shell(command);
    EXPECT_EQ(outcome.results, "3: 4 / 2.03 = 1.97044335453201990000000343349759605911: different\n"
                               "5: 1 / 3 = 0.3: different\n"
                               "7: 1 / 0 = 5: undefined\n");
    EXPECT_EQ(outcome.messages, "qznum: standard input:8: 'x': at position 0: number expected\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(lines_of(shell(command + " --jsonl").results)[1],
              R"({"a":"1","b":"3","q":"0.3","quotient is":"different"})");
    EXPECT_EQ(shell("printf 'a,b,q\\n1,4,0.25\\n' | qznum diff - --from csv --exact a b q").status, 0);
}

TEST(QznumDiffExact, NeedsOneTableAndItsColumns) {
    EXPECT_EQ(shell("printf 'a,b,q\\n' | qznum diff - - --from csv --exact a b q").status, 2);
    EXPECT_EQ(shell("printf 'a,b,q\\n' | qznum diff - --from csv --exact a b c").status, 2);
    EXPECT_EQ(shell("printf '1\\n' | qznum diff - --exact a b q").status, 2);
}

TEST(QznumDiff, ReadsStandardInput) {
    EXPECT_EQ(shell("echo 1 | qznum diff - <(echo 2)").results, "1: 1 -> 2\n");
    EXPECT_EQ(shell("qznum diff /nonexistent /dev/null").status, 3);
    EXPECT_EQ(shell("qznum diff /dev/null").status, 2);
}

} // namespace
} // namespace qzoci::test
