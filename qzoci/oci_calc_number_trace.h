/* How an operation writes its lines, and whether it may compute by fast kernels. */
#ifndef QZOCI_OCI_CALC_NUMBER_TRACE_H
#define QZOCI_OCI_CALC_NUMBER_TRACE_H

#include "qzoci/oci_calc_number.h"

/* Weak here alone: a host that does not define the function still links, and then every line is kept. */
#pragma weak qzoci_log_is_on

namespace qzoci::engine {

/* The stretches of laid-down steps that a fast kernel may finish. */
enum class Stretch {
    sum,
    difference,
    product,
    half,
    quotient_by_limb,
    quotient,
    remainder,
    remainder_by_limb,
    series,
    root,
    truncation,
    unpacking,
    packing
};
inline constexpr int stretch_count = 13;

/* Counts how often fast kernels were tried and declined. The engine only adds to it; a test hands it in. */
struct Tally {
    long tried[stretch_count];
    long declined[stretch_count];
};

/* Decided once per public call and handed inward to every operation called.
 * Invariant: fast implies !lines. {false, false} is the plain side without lines, which tests compare with.
 */
struct Trace {
    bool lines; /* write debug lines */
    bool fast;  /* fast kernels may finish a stretch of the laid-down steps */
    Tally* tally = nullptr;

    /* Passes on whether a kernel finished the stretch. */
    bool counted(Stretch stretch, bool finished) const {
        if (tally != nullptr) {
            const int i = static_cast<int>(stretch);
            ++tally->tried[i];
            tally->declined[i] += finished ? 0 : 1;
        }
        return finished;
    }
};

inline Trace trace_of_this_call() {
    const bool lines = qzoci_log_is_on == nullptr || qzoci_log_is_on(LOG_LEVEL_DEBUG) != 0;
    return {lines, !lines};
}

/* A pointer as %p takes it. */
inline const void* ptr(const void* p) {
    return p;
}

} // namespace qzoci::engine

/* Macros, so that each line carries the place that writes it. */
#define QZOCI_DEBUG(trace, ...)                                                                              \
    do {                                                                                                     \
        if ((trace).lines) {                                                                                 \
            qzoci_log_inner(LOG_LEVEL_DEBUG, __FILE__, __LINE__, __VA_ARGS__);                               \
        }                                                                                                    \
    } while (false)

#define QZOCI_ERROR(...) qzoci_log_inner(LOG_LEVEL_ERROR, __FILE__, __LINE__, __VA_ARGS__)

/* The line of every step that a malformed record makes impossible: a position outside the limbs that the step
 * would index with, or limbs above 99999999 that would make it divide by zero or leave its array. */
#define QZOCI_MALFORMED(name) QZOCI_ERROR("%s get a malformed record", name)

/* Writes the exit trace and returns the status. */
#define QZOCI_LEAVE(trace, name, status)                                                                     \
    do {                                                                                                     \
        const sword qzoci_status = (status);                                                                 \
        QZOCI_DEBUG(trace, "function %s return with status %d", name, qzoci_status);                         \
        return qzoci_status;                                                                                 \
    } while (false)

/* Makes the call; where it fails, writes the given error line and returns its status. */
#define QZOCI_FORWARD(call, ...)                                                                             \
    do {                                                                                                     \
        const sword qzoci_status = (call);                                                                   \
        if (qzoci_status != OCI_SUCCESS) {                                                                   \
            QZOCI_ERROR(__VA_ARGS__);                                                                        \
            return qzoci_status;                                                                             \
        }                                                                                                    \
    } while (false)

#endif /* QZOCI_OCI_CALC_NUMBER_TRACE_H */
