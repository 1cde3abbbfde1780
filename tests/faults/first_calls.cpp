/* The first calls of the engine in a process, made by eight threads at once, each of another operation: they give
 * what they give later. Then again and again with the kernels to be found out anew. Exit status 0: they agree,
 * 1: they do not, or the kernels were found out before. */
#include "qzoci/limbs/limbs.h"
#include "tests/faults/operands.h"
#include "tests/support/calls.h"
#include "tests/support/log_capture.h"

#include <cstdio>
#include <latch>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using namespace qzoci::test;

constexpr std::string_view names[] = {"QZCICalcNumAdd",        "QZCICalcNumSub",     "QZCICalcNumMul",
                                      "QZCICalcNumDiv",        "QZCICalcNumSqrt",    "QZCICalcNumExp",
                                      "QZCICalcNumFromNumber", "QZCICalcNumToNumber"};

/* What each thread gets. The operands are plain initialisers: no call of the engine makes them. */
std::vector<CallEffect> effects_of_threads() {
    Operands operands = {{{}, 1, 0, 19, 20, 0}, {{}, 1, 0, 19, 21, 0}, {{3, 193, 20, 100}}};
    operands.a.data_part[19] = 4;
    operands.a.data_part[20] = 3000000;
    operands.b.data_part[19] = 2;
    operands.b.data_part[21] = 7;
    std::vector<CallEffect> effects(std::size(names));
    std::latch start(std::ssize(names));
    std::vector<std::jthread> threads;
    for (size_t i = 0; i < std::size(names); ++i) {
        threads.emplace_back([&, i] {
            const DebugLinesKept kept(false);
            start.arrive_and_wait();
            effects[i] = effect_of_call(*find_operation(names[i]), Side::public_function, operands);
        });
    }
    threads.clear();
    return effects;
}

} // namespace

int main() {
    constexpr int rounds = in_sample(500);
    if (qzoci::limbs::kernels_in_use.load() != nullptr) {
        std::puts("the kernels were found out before the first call");
        return 1;
    }
    const std::vector<CallEffect> first = effects_of_threads();
    const std::vector<CallEffect> later = effects_of_threads();
    bool agree = first == later;
    for (int round = 0; round < rounds; ++round) {
        qzoci::limbs::kernels_in_use.store(nullptr);
        agree = agree && effects_of_threads() == later;
    }
    std::puts(agree ? "the first calls agree with later ones" : "the first calls differ from later ones");
    return agree ? 0 : 1;
}
