/* The engine refers to qzoci_log_is_on weakly, and a weak reference pulls nothing out of an archive: the
 * question is asked only if the object file that qzoci_log_inner brings in answers it. */
#include "tests/log/log_test_tools.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using qzoci::test::CommandOutcome;
using qzoci::test::parse_line;
using qzoci::test::run_command;
using qzoci::test::run_with_level;

/* The binary itself, or the members of an archive as "<archive>:<member>". */
std::vector<std::string> files_defining(const std::string& binary, const std::string& symbol) {
    const CommandOutcome nm = run_command("'" QZOCI_NM "' --print-file-name --defined-only '" + binary + "'");
    EXPECT_EQ(nm.exit_status, 0);
    std::vector<std::string> files;
    for (const std::string& line : nm.out) {
        if (line.ends_with(" T " + symbol)) {
            files.push_back(line.substr(0, line.rfind(':')));
        }
    }
    return files;
}

TEST(LogArchive, DefinesBothFunctionsInOneMember) {
    const std::vector<std::string> line = files_defining(QZOCI_LOG_ARCHIVE, "qzoci_log_inner");
    ASSERT_EQ(line.size(), 1U);
    EXPECT_EQ(files_defining(QZOCI_LOG_ARCHIVE, "qzoci_log_is_on"), line);
}

class LogArchiveHost : public testing::TestWithParam<const char*> {};

TEST_P(LogArchiveHost, HasTheQuestionAnswered) {
    EXPECT_EQ(files_defining(GetParam(), "qzoci_log_inner").size(), 1U);
    EXPECT_EQ(files_defining(GetParam(), "qzoci_log_is_on").size(), 1U);
}

TEST_P(LogArchiveHost, WritesErrorLinesAloneByDefault) {
    const CommandOutcome outcome = run_with_level(GetParam(), std::nullopt);
    EXPECT_EQ(outcome.exit_status, 0);
    ASSERT_EQ(outcome.err.size(), 1U);
    const auto line = parse_line(outcome.err.front());
    ASSERT_TRUE(line) << outcome.err.front();
    EXPECT_EQ(line->level, "error");
    EXPECT_EQ(line->file, "qzoci/oci_calc_number_arithmetic.cpp");
    EXPECT_EQ(line->text, "QZCICalcNumDiv: the divisor is zeor");
}

TEST_P(LogArchiveHost, WritesTheEntryTraceAtDebugLevel) {
    const CommandOutcome outcome = run_with_level(GetParam(), "debug");
    EXPECT_EQ(outcome.exit_status, 0);
    ASSERT_EQ(outcome.err.size(), 2U);
    const auto entry = parse_line(outcome.err[0]);
    ASSERT_TRUE(entry) << outcome.err[0];
    EXPECT_EQ(entry->level, "debug");
    EXPECT_TRUE(entry->text.starts_with("call function QZCICalcNumDiv with dividend:0x")) << entry->text;
    EXPECT_EQ(parse_line(outcome.err[1])->level, "error");
}

INSTANTIATE_TEST_SUITE_P(EngineInAnArchive, LogArchiveHost, testing::Values(QZOCI_HOST_OF_STATIC_ENGINE));
INSTANTIATE_TEST_SUITE_P(EngineInASharedLibrary, LogArchiveHost,
                         testing::Values(QZOCI_HOST_OF_SHARED_ENGINE));

} // namespace
