/* The engine and the libraries that could be used instead, side by side.
 *
 * What is compared. Every row is one operation on 64 operands, or pairs of them, of one class: the same values
 * for all contenders, positive, made from a fixed seed. A contender holds them in its own number type, prepared
 * before the clock runs, except in the rows between bytes, where unpacking and packing belong to the call. Each
 * peer works at the precision at which the row's results have 160 digits after the point, rounded up to what it
 * can do: binary peers get the bits of these digits and of three more, so that operands rounded to binary do not
 * show. Where a peer offers a cheaper and a dearer way (cutting or rounding, preallocated or fresh results), it
 * goes the cheaper one. The engine's silent side runs on every instruction set that it has kernels for here, its
 * traced side with a host that drops every line; each call checks its status, as callers do. The C++ layer makes the
 * same calls by operators, whose results are new objects.
 *
 * What must hold before a time counts. Every contender's 64 results are compared with MPFR's at 2048 bits. The
 * peers may be off by a unit of the 160th digit in arithmetic and a hundred of them in functions, packed results
 * by half a unit of the last pair; the engine by what its row says. Quotients and remainders that the engine
 * deliberately makes otherwise are held, digit for digit, to a second transcription of its long division
 * (tests/independent) and counted; they stay among the operands, since the engine pays for them. A contender with
 * a wrong result is not timed, its column says so, and the exit status is 1.
 *
 * How it is timed. The program stays on one processor. A batch calls a contender on all 64 operands as often as
 * fills the least time of a batch (--benchmark_min_time), always on whole permutations of them: every batch has
 * the same mixture, and the order never repeats within what a branch predictor remembers (1024 random
 * permutations). Operands and results stay in the first-level cache, as a caller's recent numbers do. The batches
 * of all contenders take place in random order (--benchmark_enable_random_interleaving), so that whatever slows
 * the machine down for a while slows all alike. The time of a batch is processor time, which leaves out time
 * that other programs had; the time of a call is that of the batch by the number of calls. Reported are the
 * fastest batch, which other programs disturbed least, and the median, whose distance from it says how much they
 * did. Calls follow each other without depending on each other, so this is what a loop over rows pays. The loop
 * itself is timed as a call that does nothing, and not taken off.
 *
 * Cycles. A chain of dependent 64-bit multiplications is timed among the others. One takes three cycles on every
 * x86-64 processor of the last fifteen years, so a third of its time is a cycle at the clock rate the processor
 * really had: no counter needed, which a virtual machine may not have. On other processors these figures are
 * wrong where that latency is another. */
#include "bench/machine.h"
#include "bench/page.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace qzoci::bench {
namespace {

constexpr int status_well = 0;
constexpr int status_wrong_result = 1;
constexpr int status_usage = 2;
constexpr int status_failed = 3;

/* A busy machine's figures are too high. */
constexpr double highest_fair_load = 1.5;

/* What the benchmark library is told unless the caller tells it otherwise. */
std::vector<std::string> with_defaults(int argc, char** argv) {
    std::vector<std::string> arguments = {argv[0], "--benchmark_enable_random_interleaving=true",
                                          "--benchmark_repetitions=31", "--benchmark_min_time=0.003"};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    return arguments;
}

std::vector<Participant> all_participants() {
    std::vector<Participant> participants = silent_engines();
    for (Participant (*participant)() : {traced_engine, cpp_layer, mpfr, gmp, arb, cpp_dec_float}) {
        participants.push_back(participant());
    }
    return participants;
}

void write_documents(const std::filesystem::path& docs, const std::filesystem::path& plot_data,
                     const Results& results, const Circumstances& circumstances) {
    std::ofstream page(docs / "performance.md");
    write_page(page, results, circumstances);
    page.close();
    if (!page) {
        throw std::runtime_error("cannot write " + (docs / "performance.md").string());
    }
    write_plot_data(plot_data, results);
}

/* paths: none, or those of the documents and of the plot data. */
int run(const std::vector<std::string>& paths) {
    stay_on_this_processor();
    Circumstances circumstances{load(), 0};
    if (circumstances.load_before > highest_fair_load) {
        std::cerr << fmt::format(
            "bench: other programs are running (load {:.2f}); the times will be too long\n",
            circumstances.load_before);
    }
    std::cerr << "bench: checking every result\n";
    Results results = checked_results(all_rows(), all_participants());
    const std::vector<std::string> wrong = complaints(results);
    for (const std::string& complaint : wrong) {
        std::cerr << "bench: " << complaint << '\n';
    }
    std::cerr << "bench: measuring\n";
    measure(results);
    circumstances.load_after = load();
    write_tables(std::cout, results);
    if (!paths.empty()) {
        write_documents(paths[0], paths[1], results, circumstances);
    }
    return wrong.empty() ? status_well : status_wrong_result;
}

} // namespace
} // namespace qzoci::bench

int main(int argc, char** argv) {
    using namespace qzoci::bench;
    try {
        std::vector<std::string> arguments = with_defaults(argc, argv);
        std::vector<char*> pointers(arguments.size());
        std::transform(arguments.begin(), arguments.end(), pointers.begin(),
                       [](std::string& argument) { return argument.data(); });
        int count = static_cast<int>(pointers.size());
        benchmark::Initialize(&count, pointers.data());
        const std::vector<std::string> paths(pointers.begin() + 1, pointers.begin() + count);
        if (paths.size() != 0 && paths.size() != 2) {
            std::cerr << "usage: qzoci_bench [--benchmark_...] [DOCS_FOLDER PLOT_DATA_FOLDER]\n";
            return status_usage;
        }
        return run(paths);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return status_failed;
    }
}
