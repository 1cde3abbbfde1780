/* The results as tables, as the page docs/performance.md, and as the data of its pictures. */
#ifndef QZOCI_BENCH_PAGE_H
#define QZOCI_BENCH_PAGE_H

#include "bench/results.h"

#include <filesystem>
#include <ostream>

namespace qzoci::bench {

/* What else there is to say about a run. */
struct Circumstances {
    double load_before;
    double load_after;
};

void write_tables(std::ostream& out, const Results& results);

void write_page(std::ostream& out, const Results& results, const Circumstances& circumstances);

/* Writes what docs/performance/plots.gp reads into the folder: ratios of each group, and times against limbs. */
void write_plot_data(const std::filesystem::path& folder, const Results& results);

} // namespace qzoci::bench

#endif /* QZOCI_BENCH_PAGE_H */
