/* The machine that a run takes place on. */
#ifndef QZOCI_BENCH_MACHINE_H
#define QZOCI_BENCH_MACHINE_H

#include <string>

namespace qzoci::bench {

/* Keeps this thread on the processor it runs on. */
void stay_on_this_processor();

std::string processor_model();
std::string system_name();

/* Processes that wanted a processor during the last minute, on average. This program is one of them. */
double load();

unsigned processor_count();

} // namespace qzoci::bench

#endif /* QZOCI_BENCH_MACHINE_H */
