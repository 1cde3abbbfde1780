/* The host of the engine that is timed: it drops every line, and says whether it wants them. */
#ifndef QZOCI_BENCH_HOST_H
#define QZOCI_BENCH_HOST_H

namespace qzoci::bench {

/* What qzoci_log_is_on answers from now on. */
void keep_debug_lines(bool kept);

} // namespace qzoci::bench

#endif /* QZOCI_BENCH_HOST_H */
