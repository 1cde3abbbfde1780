/* The engine's operations writing through the logging library. */
#include "qzoci/oci_calc_number.h"
#include "tests/log/log_test_tools.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {

using qzoci::test::Collector;
using qzoci::test::pointer_text;
using qzoci::test::ReceivedLine;

class EngineLog : public testing::Test {
protected:
    EngineLog() {
        initCalcNumberFromInt(&one, 1);
        initNullValue(&zero);
        initNullValue(&result);
        qzoci_log_to_callback(Collector::receive, &collector);
    }

    ~EngineLog() override { qzoci_log_to_none(); }

    QZCICalcNumber one{};
    QZCICalcNumber zero{};
    QZCICalcNumber result{};
    Collector collector;
};

TEST_F(EngineLog, AtDebugLevelGetsEveryLineOfAnOperation) {
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_DEBUG), 0);
    ASSERT_EQ(QZCICalcNumNeg(&one), OCI_SUCCESS);
    const std::vector<ReceivedLine> lines = collector.lines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].text, "call function QZCICalcNumNeg with num:" + pointer_text(&one));
    EXPECT_EQ(lines[1].text, "function QZCICalcNumNeg return with status 0");
    for (const ReceivedLine& line : lines) {
        EXPECT_EQ(line.level, LOG_LEVEL_DEBUG);
        EXPECT_EQ(line.file, "qzoci/oci_calc_number_model.cpp");
        EXPECT_GT(line.line, 0);
    }
}

TEST_F(EngineLog, AtErrorLevelGetsNoLineOfASuccess) {
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_ERROR), 0);
    ASSERT_EQ(QZCICalcNumNeg(&one), OCI_SUCCESS);
    ASSERT_EQ(QZCICalcNumDiv(&zero, &one, &result), OCI_SUCCESS);
    EXPECT_TRUE(collector.lines().empty());
}

TEST_F(EngineLog, AtErrorLevelGetsTheErrorLineAlone) {
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_ERROR), 0);
    ASSERT_EQ(QZCICalcNumDiv(&one, &zero, &result), OCI_ERROR);
    const std::vector<ReceivedLine> lines = collector.lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, LOG_LEVEL_ERROR);
    EXPECT_EQ(lines[0].text, "QZCICalcNumDiv: the divisor is zeor");
}

TEST_F(EngineLog, WithoutADestinationComputesTheSame) {
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_DEBUG), 0);
    ASSERT_EQ(qzoci_log_to_none(), 0);
    ASSERT_EQ(QZCICalcNumNeg(&one), OCI_SUCCESS);
    EXPECT_EQ(one.num_signed, -1);
    EXPECT_TRUE(collector.lines().empty());
}

/* Negates a record of its own for each entry trace it gets from outside. */
struct Negator {
    Collector collector;
    int depth = 0;
    QZCICalcNumber number{};

    static void receive(void* user, log_level level, const char* file, long line, const char* text) {
        auto* const self = static_cast<Negator*>(user);
        Collector::receive(&self->collector, level, file, line,
                           std::to_string(self->depth).append(text).c_str());
        if (self->depth == 0) {
            ++self->depth;
            QZCICalcNumNeg(&self->number);
            --self->depth;
        }
    }
};

TEST_F(EngineLog, CallbackMayCallOperationsThatLog) {
    Negator negator;
    initCalcNumberFromInt(&negator.number, 1);
    const std::string outer = "0call function QZCICalcNumNeg with num:" + pointer_text(&one);
    const std::string inner = "1call function QZCICalcNumNeg with num:" + pointer_text(&negator.number);
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_DEBUG), 0);
    ASSERT_EQ(qzoci_log_to_callback(Negator::receive, &negator), 0);
    ASSERT_EQ(QZCICalcNumNeg(&one), OCI_SUCCESS);
    const std::string returned = "function QZCICalcNumNeg return with status 0";
    EXPECT_EQ(negator.collector.texts(), (std::vector<std::string>{outer, inner, "1" + returned,
                                                                   "0" + returned, inner, "1" + returned}));
}

TEST_F(EngineLog, OperationsOnSeveralThreadsWriteTheirLines) {
    constexpr int thread_count = 4;
    constexpr int calls = 500;
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_DEBUG), 0);
    {
        std::array<std::jthread, thread_count> threads;
        std::ranges::generate(threads, [] {
            return std::jthread([] {
                QZCICalcNumber number;
                initCalcNumberFromInt(&number, 1);
                for (int call = 0; call < calls; ++call) {
                    QZCICalcNumNeg(&number);
                }
            });
        });
    }
    EXPECT_EQ(collector.lines().size(), 2U * thread_count * calls);
}

} // namespace
