/* How much stack an operation takes: each is run on a painted stack, over well-formed and malformed operands,
 * with its lines written and without, and the deepest byte that lost its paint counts. The C library's
 * functions that the engine calls are included; the logging function here takes next to nothing. */
#include "qzoci/oci_calc_number.h"
#include "tests/support/operations.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using qzoci::test::Arguments;
using qzoci::test::Form;
using qzoci::test::Operation;
using qzoci::test::Side;

/* What a host must have left on the stack when it calls an operation, its own logging function not counted.
 */
constexpr size_t max_stack_bytes = 16384;

bool debug_lines_kept = true;

/* Runs body(argument) on the given stack. */
class OtherStack {
public:
    static void run(void* lowest, size_t size, void (*body)(void*), void* argument) {
        job = {body, argument};
        ucontext_t outside{};
        ucontext_t inside{};
        getcontext(&inside);
        inside.uc_stack.ss_sp = lowest;
        inside.uc_stack.ss_size = size;
        inside.uc_link = &outside;
        makecontext(&inside, run_job, 0);
        swapcontext(&outside, &inside);
        job = {};
    }

private:
    struct Job {
        void (*body)(void*) = nullptr;
        void* argument = nullptr;
    };

    static void run_job() { job.body(job.argument); }

    static Job job; /* makecontext hands over nothing but integers */
};

OtherStack::Job OtherStack::job;

/* A stack whose every word holds a value that depends on its place, so that no write can go unnoticed but by
 * a coincidence of 64 bits. */
class PaintedStack {
public:
    PaintedStack() {
        for (size_t i = 0; i < words_.size(); ++i) {
            words_[i] = paint(i);
        }
    }

    /* Runs body(argument) here; returns how many bytes of this stack have been written since its making. */
    size_t depth_after(void (*body)(void*), void* argument) {
        OtherStack::run(words_.data(), words_.size() * sizeof(words_[0]), body, argument);
        size_t untouched = 0;
        while (untouched < words_.size() && words_[untouched] == paint(untouched)) {
            ++untouched;
        }
        return (words_.size() - untouched) * sizeof(words_[0]);
    }

private:
    static std::uint64_t paint(size_t i) { return (i + 1) * 0x9E3779B97F4A7C15U; }

    std::vector<std::uint64_t> words_ = std::vector<std::uint64_t>(size_t{1} << 16U);
};

/* A stack of the bound and what the test's own frames take, with the pages below it closed: the first byte beyond
 * ends the process. */
class BoundedStack {
public:
    BoundedStack()
        : memory_(mmap(nullptr, guard_bytes + stack_bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)),
          lowest_(static_cast<std::byte*>(memory_) + guard_bytes) {
        if (memory_ == MAP_FAILED || mprotect(lowest_, stack_bytes, PROT_READ | PROT_WRITE) != 0) {
            std::abort();
        }
    }

    ~BoundedStack() { munmap(memory_, guard_bytes + stack_bytes); }

    BoundedStack(const BoundedStack&) = delete;
    BoundedStack& operator=(const BoundedStack&) = delete;

    /* frames: what run_all and the functions between it and the operation take, at least. */
    void run(size_t frames, void (*body)(void*), void* argument) const {
        constexpr size_t alignment = 16;
        OtherStack::run(lowest_, (max_stack_bytes + frames) / alignment * alignment, body, argument);
    }

private:
    static constexpr size_t guard_bytes = size_t{1} << 20U; /* wider than any frame that could leap over it */
    static constexpr size_t stack_bytes = size_t{1} << 16U;

    void* memory_;
    std::byte* lowest_;
};

/* Lets the engine's lines on standard output go nowhere. */
class StandardOutputDropped {
public:
    StandardOutputDropped() : kept_(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }

    ~StandardOutputDropped() {
        std::fflush(stdout);
        dup2(kept_, STDOUT_FILENO);
        close(kept_);
    }

    StandardOutputDropped(const StandardOutputDropped&) = delete;
    StandardOutputDropped& operator=(const StandardOutputDropped&) = delete;

private:
    int kept_;
};

using Random = std::mt19937_64;

template <typename Integer>
Integer any(Random& random) {
    return static_cast<Integer>(random());
}

size_t below(Random& random, size_t bound) {
    return random() % bound;
}

/* Limbs from first to last, finite and normalised. */
QZCICalcNumber well_formed(Random& random) {
    constexpr std::array<ub4, 5> edge_limbs = {99999999, 1, 50000000, 0, 10000000};
    QZCICalcNumber record{};
    const size_t first = below(random, QZCI_CALC_LIMBS);
    const size_t last = first + below(random, QZCI_CALC_LIMBS - first);
    for (size_t i = first; i <= last; ++i) {
        record.data_part[i] = below(random, 2) == 0 ? edge_limbs[below(random, edge_limbs.size())]
                                                    : static_cast<ub4>(below(random, 100000000));
    }
    record.num_signed = below(random, 2) == 0 ? sb1{1} : sb1{-1};
    QZCICalcNumInit(&record);
    return record;
}

QZCICalcNumber malformed(Random& random) {
    QZCICalcNumber record{};
    std::generate(std::begin(record.data_part), std::end(record.data_part), [&] { return any<ub4>(random); });
    record.num_signed = below(random, 8) == 0 ? any<sb1>(random) : sb1{1};
    record.num_infinity = below(random, 8) == 0 ? any<sb1>(random) : sb1{0};
    record.start_pos = static_cast<sb1>(below(random, 48) - 4);
    record.end_pos = static_cast<sb1>(below(random, 48) - 4);
    record.is_zero = below(random, 8) == 0 ? any<sb1>(random) : sb1{0};
    return record;
}

QZCICalcNumber any_record(Random& random) {
    constexpr size_t share_of_infinities = 16;
    if (below(random, 3) == 0) {
        return malformed(random);
    }
    QZCICalcNumber record = well_formed(random);
    if (below(random, share_of_infinities) == 0) {
        record.num_infinity = 1;
        QZCICalcNumInit(&record);
    }
    return record;
}

OCINumber any_stored(Random& random) {
    OCINumber number{};
    std::generate(std::begin(number.OCINumberPart), std::end(number.OCINumberPart),
                  [&] { return any<ub1>(random); });
    number.OCINumberPart[0] = static_cast<ub1>(below(random, QZOCI_NUMBER_SIZE + 1));
    return number;
}

sb8 any_integer(Random& random) {
    constexpr std::array<sb8, 6> edges = {0,
                                          1,
                                          -1,
                                          std::numeric_limits<sb8>::min(),
                                          std::numeric_limits<sb8>::max(),
                                          std::numeric_limits<sb4>::min()};
    return below(random, 2) == 0 ? edges[below(random, edges.size())] : any<sb8>(random);
}

struct Operands {
    QZCICalcNumber first;
    QZCICalcNumber second;
    OCINumber stored;
    sb8 integer;
};

std::vector<Operands> hostile_operands() {
    constexpr size_t count = 300;
    Random random(20261121);
    std::vector<Operands> operands(count);
    std::generate(operands.begin(), operands.end(), [&] {
        return Operands{any_record(random), any_record(random), any_stored(random), any_integer(random)};
    });
    return operands;
}

struct Run {
    const Operation* operation;
    const std::vector<Operands>* operands;
    Operands scratch;
    QZCICalcNumber result;
    OCINumber stored_result;
    std::array<char, 1024> text;
};

void run_all(void* argument) {
    auto& run = *static_cast<Run*>(argument);
    for (const Operands& operands : *run.operands) {
        run.scratch = operands;
        run.result = operands.second; /* the operand of the operations that work in place */
        Arguments arguments;
        arguments.first = &run.scratch.first;
        arguments.second = &run.scratch.second;
        arguments.result = &run.result;
        arguments.integer = operands.integer;
        arguments.stored_operand = &run.scratch.stored;
        arguments.stored_result = &run.stored_result;
        arguments.text = run.text.data();
        arguments.text_size = run.text.size();
        run.operation->call(Side::public_function, arguments);
    }
}

sb8 do_nothing(Side /* side */, const Arguments& /* arguments */) {
    return 0;
}

size_t depth_of(const Operation& operation, const std::vector<Operands>& operands) {
    const StandardOutputDropped dropped;
    PaintedStack stack;
    Run run{&operation, &operands, {}, {}, {}, {}};
    size_t depth = 0;
    for (const bool kept : {true, false}) {
        debug_lines_kept = kept;
        depth = stack.depth_after(run_all, &run);
    }
    return depth;
}

void run_on_bounded_stack(const Operation& operation, const std::vector<Operands>& operands) {
    const size_t frames = depth_of({"nothing", Form::create, do_nothing}, operands);
    const StandardOutputDropped dropped;
    const BoundedStack stack;
    Run run{&operation, &operands, {}, {}, {}, {}};
    for (const bool kept : {true, false}) {
        debug_lines_kept = kept;
        stack.run(frames, run_all, &run);
    }
}

/* The limb routines have contracts on their arrays, so that hostile operands are not theirs to bear. */
std::vector<std::string> operations_on_records() {
    std::vector<std::string> names;
    for (const Operation& operation : qzoci::test::all_operations()) {
        if (operation.form != Form::integer_function && operation.form != Form::long_division) {
            names.emplace_back(operation.name);
        }
    }
    return names;
}

std::string test_name(const testing::TestParamInfo<std::string>& info) {
    return info.param;
}

class StackTest : public testing::TestWithParam<std::string> {};

TEST_P(StackTest, StaysBelowItsBound) {
    const std::vector<Operands> operands = hostile_operands();
    const Operation nothing = {"nothing", Form::create, do_nothing};
    const size_t used =
        depth_of(*qzoci::test::find_operation(GetParam()), operands) - depth_of(nothing, operands);
    std::printf("%zu bytes of stack\n", used);
    EXPECT_GT(used, 0U);
    EXPECT_LE(used, max_stack_bytes);
}

TEST_P(StackTest, RunsOnAStackOfTheBoundBesideAGuardPage) {
    run_on_bounded_stack(*qzoci::test::find_operation(GetParam()), hostile_operands());
}

INSTANTIATE_TEST_SUITE_P(Operations, StackTest, testing::ValuesIn(operations_on_records()), test_name);

/* The measure itself: a function that writes a kilobyte is seen to write it. */
TEST(PaintedStackTest, SeesAKilobyte) {
    const Operation kilobyte = {"kilobyte", Form::create,
                                [](Side /* side */, const Arguments& /* arguments */) {
                                    std::array<volatile char, 1024> bytes{};
                                    return sb8{bytes[0]};
                                }};
    const Operation nothing = {"nothing", Form::create, do_nothing};
    const std::vector<Operands> operands(1);
    const size_t used = depth_of(kilobyte, operands) - depth_of(nothing, operands);
    EXPECT_GE(used, 1024U);
    EXPECT_LE(used, 1024U + 256U);
}

/* The guard itself: what takes more than the bound does not live. */
TEST(BoundedStackDeathTest, EndsWhatTakesMoreThanTheBound) {
    const auto take = [](void* argument) {
        std::array<volatile char, max_stack_bytes + 1024> bytes;
        for (volatile char& byte : bytes) {
            byte = *static_cast<char*>(argument);
        }
    };
    char value = 1;
    EXPECT_DEATH(BoundedStack().run(0, take, &value), "");
}

} // namespace

void qzoci_log_inner(log_level /* level */, const char* /* file */, const long /* line */,
                     const char* /* fmt */, ...) {}

int qzoci_log_is_on(log_level /* level */) {
    return debug_lines_kept ? 1 : 0;
}
