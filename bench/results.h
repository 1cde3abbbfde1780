/* The contenders of every row, checked and timed. */
#ifndef QZOCI_BENCH_RESULTS_H
#define QZOCI_BENCH_RESULTS_H

#include "bench/participants.h"

#include <optional>

namespace qzoci::bench {

/* Of one call, in nanoseconds, over the batches of a run. */
struct Times {
    double min;
    double median;
};

/* How far results are off, in the row's units, and how many are further off than they may be. */
struct Check {
    double largest_error = 0;
    size_t wrong = 0;
};

/* One participant in one row. */
struct Entry {
    std::unique_ptr<Contender> contender; /* null: does not compute this row */
    Check check;
    std::optional<Times> times; /* none: not computed, wrong, or left out of this run */
};

struct Results {
    std::vector<Row> rows;
    std::vector<Participant> participants;
    std::vector<std::vector<Entry>> entries; /* [row][participant] */
    size_t batches = 0;
    std::optional<Times> empty_call;
    std::optional<double> cycle; /* of the processor, in nanoseconds */
};

/* The first participant is the engine as users get it. */
Results checked_results(std::vector<Row> rows, std::vector<Participant> participants);

/* Times every contender that is right, as the benchmark library's flags say. */
void measure(Results& results);

/* For each wrong contender a line that says what is wrong. */
std::vector<std::string> complaints(const Results& results);

size_t unlucky_pairs(const Row& row);

} // namespace qzoci::bench

#endif /* QZOCI_BENCH_RESULTS_H */
