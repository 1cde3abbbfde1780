/* What the host's logging function does changes no result: it may be slow, keep nothing, call operations from
 * within a line, and be entered by many threads at once. */
#include "tests/faults/operands.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <barrier>
#include <chrono>
#include <cstddef>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace qzoci::test {
namespace {

std::string name_of(const testing::TestParamInfo<const Operation*>& info) {
    return std::string(info.param->name);
}

class LoggingFunction : public testing::TestWithParam<const Operation*> {
protected:
    const Operation& operation_ = *GetParam();
    std::vector<Operands> operands_ = random_operands(in_sample(8), 20261122);
};

TEST_P(LoggingFunction, MayBeSlow) {
    for (const Operands& operands : operands_) {
        const CallEffect expected = effect_of_call(operation_, Side::traced, operands);
        int slow_lines = 40; /* the others at full speed, as some operations write thousands */
        const LineAction action([&slow_lines] {
            if (slow_lines > 0) {
                --slow_lines;
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            }
        });
        EXPECT_EQ(effect_of_call(operation_, Side::public_function, operands), expected);
    }
}

/* Without a capture the tests' logging function drops every line. */
TEST_P(LoggingFunction, MayKeepNothing) {
    for (const Operands& operands : operands_) {
        const CallEffect expected = effect_of_call(operation_, Side::plain, operands);
        QZCICalcNumber result;
        OCINumber stored;
        std::array<char, max_text_size> text;
        const CallPlaces places = {&operands.a, &operands.b, &operands.stored, &result, &stored, text.data()};
        prepare_results(operation_, operands, places);
        Arguments arguments;
        arguments.first = &operands.a;
        arguments.second = &operands.b;
        arguments.result = &result;
        arguments.integer = operands.integer;
        arguments.stored_operand = &operands.stored;
        arguments.stored_result = &stored;
        arguments.text = text.data();
        arguments.text_size = operands.text_size;
        EXPECT_EQ(operation_.call(Side::public_function, arguments), expected.status);
        EXPECT_EQ(result, expected.result);
        EXPECT_EQ(stored, expected.stored);
        EXPECT_EQ(std::string(text.data(), arguments.text_size), expected.text);
    }
}

/* From within its first line the very same operation runs on other operands, and from within its first few every
 * operation in its turn; all give what they give otherwise. */
TEST_P(LoggingFunction, MayCallTheEngine) {
    const std::vector<const Operation*> operations = operations_on_numbers();
    const std::vector<Operands> inner_operands = random_operands(12, 20261123);
    const auto expect_effect_of_traced = [&](const Operation& operation, size_t number) {
        const Operands& operands = inner_operands[number % inner_operands.size()];
        EXPECT_EQ(effect_of_call(operation, Side::public_function, operands),
                  effect_of_call(operation, Side::traced, operands));
    };
    constexpr size_t inner_calls = 4;
    /* Each test goes on with the operations after its own. */
    auto turn = static_cast<size_t>(std::find(operations.begin(), operations.end(), &operation_) -
                                    operations.begin());
    for (const Operands& operands : operands_) {
        const CallEffect expected = effect_of_call(operation_, Side::traced, operands);
        size_t lines_of_call = 0;
        const LineAction action([&] {
            if (lines_of_call == 0) {
                expect_effect_of_traced(operation_, 0);
            }
            if (lines_of_call < inner_calls) {
                const size_t i = turn % operations.size();
                expect_effect_of_traced(*operations[i], i);
                ++turn;
            }
            ++lines_of_call;
        });
        EXPECT_EQ(effect_of_call(operation_, Side::public_function, operands), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, LoggingFunction, testing::ValuesIn(operations_on_numbers()), name_of);

/* All threads stand inside the logging function before any goes on, at the first line of every call. Of the series,
 * which write thousands of lines, as many as the build can afford. */
TEST(LoggingFunctionThreads, MayBeEnteredBySixteenAtOnce) {
    constexpr int thread_count = 16;
    const QZCICalcNumber dividend = record_from_decimal("4");
    const Operands operands = {dividend, record_from_decimal("2.03"), stored_from_hex("02c105"), 3};
    const std::vector<const Operation*> operations = operations_on_numbers();
    const auto is_slow = [](const Operation* operation) { return is_series(*operation); };
    int slow_ones_left = in_sample(static_cast<int>(std::ranges::count_if(operations, is_slow)));
    std::vector<std::pair<const Operation*, CallEffect>> expected;
    for (const Operation* const operation : operations) {
        if (is_slow(operation) && slow_ones_left-- <= 0) {
            continue;
        }
        CallEffect effect = effect_of_call(*operation, Side::traced, operands);
        if (!effect.lines.empty()) {
            expected.emplace_back(operation, std::move(effect));
        }
    }
    ASSERT_FALSE(expected.empty());
    std::barrier inside(thread_count);
    const auto call_all = [&] {
        for (const auto& [operation, effect] : expected) {
            bool first_line = true;
            const LineAction action([&] {
                if (std::exchange(first_line, false)) {
                    inside.arrive_and_wait();
                }
            });
            EXPECT_EQ(effect_of_call(*operation, Side::public_function, operands), effect) << operation->name;
        }
    };
    std::vector<std::jthread> threads;
    threads.reserve(thread_count);
    for (int i = 0; i < thread_count; ++i) {
        threads.emplace_back(call_all);
    }
}

} // namespace
} // namespace qzoci::test
