/* Any number of threads may call at once, each on result records of its own, on operands that they share. */
#include "tests/faults/operands.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace qzoci::test {
namespace {

constexpr int thread_count = 8;

/* What every operation gives for every operand, in the public function's two ways. */
class Effects {
public:
    explicit Effects(bool lines_kept) : lines_kept_(lines_kept) {
        const DebugLinesKept kept(lines_kept_);
        for (const Operation* const operation : operations_) {
            for (const Operands& operands : operands_) {
                expected_.push_back(effect_of_call(*operation, Side::public_function, operands));
            }
        }
    }

    /* Runs all of them, beginning with some other one than the threads beside it. */
    void expect_again(int thread) const {
        const DebugLinesKept kept(lines_kept_);
        const size_t start = expected_.size() / thread_count * static_cast<size_t>(thread);
        for (size_t i = 0; i < expected_.size(); ++i) {
            const size_t one = (start + i) % expected_.size();
            const Operation& operation = *operations_[one / operands_.size()];
            const Operands& operands = operands_[one % operands_.size()];
            EXPECT_EQ(effect_of_call(operation, Side::public_function, operands), expected_[one])
                << operation.name << " on thread " << thread;
        }
    }

private:
    const bool lines_kept_;
    const std::vector<const Operation*> operations_ = operations_on_numbers();
    const std::vector<Operands> operands_ =
        random_operands(lines_kept_ ? in_sample(5) : in_sample(500), 20261124);
    std::vector<CallEffect> expected_;
};

class Threads : public testing::TestWithParam<bool> {};

TEST_P(Threads, GiveTheEffectsOfOneThreadOnSharedOperands) {
    const Effects effects(GetParam());
    std::latch start(thread_count);
    std::vector<std::jthread> threads;
    threads.reserve(thread_count);
    for (int thread = 0; thread < thread_count; ++thread) {
        threads.emplace_back([&effects, &start, thread] {
            start.arrive_and_wait();
            effects.expect_again(thread);
        });
    }
}

std::string name_of(const testing::TestParamInfo<bool>& info) {
    return info.param ? "Traced" : "Silent";
}

INSTANTIATE_TEST_SUITE_P(Faults, Threads, testing::Bool(), name_of);

} // namespace
} // namespace qzoci::test
