#include "tests/log/level_number.h"
#include "tests/log/log_test_tools.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace {

using qzoci::test::Collector;
using qzoci::test::CommandOutcome;
using qzoci::test::run_child;

constexpr std::array line_levels = {LOG_LEVEL_TRACE, LOG_LEVEL_DEBUG, LOG_LEVEL_INFO,   LOG_LEVEL_WARN,
                                    LOG_LEVEL_ERROR, LOG_LEVEL_FATAL, LOG_LEVEL_SLOWSQL};

/* The log writes to `collector`. */
class LogLevel : public testing::Test {
protected:
    LogLevel() { qzoci_log_to_callback(Collector::receive, &collector); }

    ~LogLevel() override { qzoci_log_to_none(); }

    Collector collector;
};

TEST_F(LogLevel, IsTheOneSetLast) {
    for (int level = LOG_LEVEL_TRACE; level <= QZOCI_LOG_OFF; ++level) {
        EXPECT_EQ(qzoci_log_set_level(level), 0);
        EXPECT_EQ(qzoci_log_get_level(), level);
    }
}

TEST_F(LogLevel, OutsideTheRangeIsRefusedAndChangesNothing) {
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_INFO), 0);
    for (const int level : {-1, 0, QZOCI_LOG_OFF + 1, 1000}) {
        EXPECT_EQ(qzoci_log_set_level(level), EINVAL) << level;
        EXPECT_EQ(qzoci_log_get_level(), LOG_LEVEL_INFO);
    }
}

TEST_F(LogLevel, KeepsLinesOfTheLevelAndAboveAndAnswersSo) {
    for (int threshold = LOG_LEVEL_TRACE; threshold <= QZOCI_LOG_OFF; ++threshold) {
        ASSERT_EQ(qzoci_log_set_level(threshold), 0);
        for (const log_level level : line_levels) {
            const std::size_t before = collector.lines().size();
            qzoci_log_inner(level, "file", 1, "a line");
            EXPECT_EQ(collector.lines().size() - before, level >= threshold ? 1U : 0U)
                << threshold << ' ' << level;
            EXPECT_EQ(qzoci_log_is_on(level) != 0, level >= threshold) << threshold << ' ' << level;
        }
    }
}

TEST_F(LogLevel, LinesOfNoLevelAreDropped) {
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_TRACE), 0);
    for (const int number : {-1, 0, 8, 99}) {
        write_line_of_level_number(number);
        EXPECT_EQ(is_level_number_on(number), 0) << number;
    }
    ASSERT_EQ(qzoci_log_set_level(QZOCI_LOG_OFF), 0);
    write_line_of_level_number(QZOCI_LOG_OFF);
    EXPECT_TRUE(collector.lines().empty());
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_TRACE), 0);
    write_line_of_level_number(LOG_LEVEL_TRACE);
    EXPECT_EQ(collector.lines().size(), 1U);
}

/* A page that ends the process when it is read. */
class UnreadablePage {
public:
    UnreadablePage() : page_(mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {}

    ~UnreadablePage() { munmap(page_, size_); }

    UnreadablePage(const UnreadablePage&) = delete;
    UnreadablePage& operator=(const UnreadablePage&) = delete;

    const char* text() const { return static_cast<const char*>(page_); }

private:
    static constexpr std::size_t size_ = 4096;
    void* page_;
};

TEST_F(LogLevel, BelowItNeitherFormatNorArgumentsAreRead) {
    const UnreadablePage page;
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_ERROR), 0);
    qzoci_log_inner(LOG_LEVEL_DEBUG, page.text(), 1, "text %s", page.text());
    qzoci_log_inner(LOG_LEVEL_WARN, page.text(), 1, page.text(), 1);
    EXPECT_TRUE(collector.lines().empty());
}

using LogLevelDeathTest = LogLevel;

TEST_F(LogLevelDeathTest, AtItArgumentsAreRead) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const UnreadablePage page;
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_DEBUG), 0);
    EXPECT_DEATH(qzoci_log_inner(LOG_LEVEL_DEBUG, "file", 1, "text %s", page.text()), "");
}

/* What the child prints as the level it took from QZOCI_LOG_LEVEL, without any complaint. */
std::string level_without_complaint(const std::string& mode, const std::optional<std::string>& level) {
    const CommandOutcome outcome = run_child(mode, level);
    EXPECT_EQ(outcome.exit_status, 0);
    EXPECT_TRUE(outcome.err.empty()) << outcome.err.front();
    return outcome.out.size() == 1 ? outcome.out.front() : "";
}

TEST(LogLevelOfEnvironment, IsErrorWhenUnsetOrEmpty) {
    EXPECT_EQ(level_without_complaint("level", std::nullopt), "5");
    EXPECT_EQ(level_without_complaint("level", ""), "5");
}

struct NameOfLevel {
    const char* text;
    const char* number;
};

class LogLevelName : public testing::TestWithParam<NameOfLevel> {};

TEST_P(LogLevelName, IsKnown) {
    EXPECT_EQ(level_without_complaint("level", GetParam().text), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(LowerCase, LogLevelName,
                         testing::Values(NameOfLevel{"trace", "1"}, NameOfLevel{"debug", "2"},
                                         NameOfLevel{"info", "3"}, NameOfLevel{"warn", "4"},
                                         NameOfLevel{"error", "5"}, NameOfLevel{"fatal", "6"},
                                         NameOfLevel{"slowsql", "7"}, NameOfLevel{"off", "8"}));
INSTANTIATE_TEST_SUITE_P(AnyCase, LogLevelName,
                         testing::Values(NameOfLevel{"TRACE", "1"}, NameOfLevel{"Debug", "2"},
                                         NameOfLevel{"iNFO", "3"}, NameOfLevel{"SlowSQL", "7"},
                                         NameOfLevel{"OFF", "8"}));
INSTANTIATE_TEST_SUITE_P(Number, LogLevelName,
                         testing::Values(NameOfLevel{"1", "1"}, NameOfLevel{"2", "2"}, NameOfLevel{"7", "7"},
                                         NameOfLevel{"8", "8"}));

class LogLevelUnknown : public testing::TestWithParam<const char*> {};

TEST_P(LogLevelUnknown, IsComplainedOfOnceAndErrorIsUsed) {
    const CommandOutcome outcome = run_child("level", GetParam());
    EXPECT_EQ(outcome.exit_status, 0);
    EXPECT_EQ(outcome.out, std::vector<std::string>{"5"});
    ASSERT_EQ(outcome.err.size(), 1U);
    EXPECT_EQ(outcome.err.front(),
              std::string("QZOCI_LOG_LEVEL: unknown level \"") + GetParam() +
                  "\" (known: trace, debug, info, warn, error, fatal, slowsql, off, or 1 to 8); "
                  "using error");
}

INSTANTIATE_TEST_SUITE_P(Texts, LogLevelUnknown,
                         testing::Values("verbose", "err", "debug ", " debug", "warning", "0", "9", "-1",
                                         "+5", "5x", "0x5", "99999999999999999999"));

TEST(LogLevelOfEnvironment, IsReadByTheFirstQuestionToo) {
    EXPECT_EQ(level_without_complaint("first-question", "info"), "3");
}

TEST(LogLevelOfEnvironment, IsReadOnce) {
    EXPECT_EQ(level_without_complaint("changed-environment", "fatal"), "6");
}

TEST(LogLevelOfEnvironment, GivesWayToACall) {
    EXPECT_EQ(level_without_complaint("level-set", "debug"), "4");
}

} // namespace
