/* Files of any size in bounded memory. */
#include "tests/qznum/tool.h"

#include <gtest/gtest.h>

#include <string>

namespace qzoci::test {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int row_count = 100000;
constexpr long largest_kilobytes = 4000000; /* sanitizers take what they take */
#else
constexpr int row_count = 5000000;
constexpr long largest_kilobytes = 60000; /* less than half of the file */
#endif

/* A script that finds a table of so many rows in the file $table. */
Outcome with_large_table(const std::string& script) {
    return shell("table=$(mktemp) && trap 'rm \"$table\"' EXIT\n"
                 "{ echo number,note; seq " +
                 std::to_string(row_count) + " | sed 's/$/,a note to fill the file/'; } >\"$table\"\n" +
                 script);
}

TEST(QznumLargeFile, IsSummedInBoundedMemory) {
    const Outcome outcome =
        with_large_table("qznum sum --from csv --column number --file \"$table\" --threads 2");
    const long count = row_count;
    EXPECT_EQ(lines_of(outcome.results).at(0), std::to_string(count * (count + 1) / 2));
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_LT(outcome.peak_kilobytes, largest_kilobytes);
}

TEST(QznumLargeFile, IsEncodedAndDecodedInBoundedMemory) {
    const Outcome outcome = with_large_table(
        "set -o pipefail\n"
        "qznum encode --from csv --column number --to csv --threads 2 <\"$table\" |\n"
        "    qznum decode --from csv --column number --to csv --threads 2 | cmp - \"$table\"");
    EXPECT_EQ(outcome.results + outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_LT(outcome.peak_kilobytes, largest_kilobytes);
}

TEST(QznumLargeFile, IsComparedInBoundedMemory) {
    const Outcome outcome = with_large_table(
        "qznum diff --from csv --column number \"$table\" <(sed 's/^77777,/77777.5,/' \"$table\")");
    EXPECT_EQ(outcome.results, "77778: 77777 -> 77777.5\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_LT(outcome.peak_kilobytes, largest_kilobytes);
}

} // namespace
} // namespace qzoci::test
