#include "tests/log/log_test_tools.h"

#include <climits>
#include <gtest/gtest.h>
#include <string>

namespace {

using qzoci::test::Collector;
using qzoci::test::pointer_text;

class LogFormat : public testing::Test {
protected:
    LogFormat() {
        qzoci_log_set_level(LOG_LEVEL_DEBUG);
        qzoci_log_to_callback(Collector::receive, &collector);
    }

    ~LogFormat() override { qzoci_log_to_none(); }

    /* The text of the only line. */
    std::string text() const {
        const std::vector<std::string> texts = collector.texts();
        return texts.size() == 1 ? texts.front() : "not one line";
    }

    Collector collector;
};

TEST_F(LogFormat, TakesTheSixConversions) {
    qzoci_log_inner(LOG_LEVEL_DEBUG, "file", 1, "%p %d %u %i %ld %s", static_cast<void*>(&collector), -5,
                    4000000000U, INT_MIN, LONG_MIN, "word");
    EXPECT_EQ(text(), pointer_text(&collector) + " -5 4000000000 -2147483648 -9223372036854775808 word");
}

TEST_F(LogFormat, LeavesBracesAndPercentSignsAlone) {
    qzoci_log_inner(LOG_LEVEL_DEBUG, "file", 1, "{} {0} 100%% %s", "%d %n {}");
    EXPECT_EQ(text(), "{} {0} 100% %d %n {}");
}

TEST_F(LogFormat, KeepsAnEmptyLine) {
    qzoci_log_inner(LOG_LEVEL_DEBUG, "file", 1, "%s", "");
    EXPECT_EQ(text(), "");
    EXPECT_EQ(collector.lines().size(), 1U);
}

TEST_F(LogFormat, KeepsLinesOfEveryLengthWhole) {
    for (std::size_t length = 1; length <= 100000; length += length < 1100 ? 1 : length / 3) {
        const std::string word(length, 'x');
        qzoci_log_inner(LOG_LEVEL_DEBUG, "file", 1, "%s>", word.c_str());
        ASSERT_EQ(collector.last_text(), word + ">");
    }
}

TEST_F(LogFormat, ShowsTheFormatWhenItCannotBeFilled) {
    const wchar_t no_character[] = {static_cast<wchar_t>(0xd800), 0};
    qzoci_log_inner(LOG_LEVEL_DEBUG, "file", 1, "wide %ls", no_character);
    EXPECT_EQ(text(), "wide %ls");
}

} // namespace
