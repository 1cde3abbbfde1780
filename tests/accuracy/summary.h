/* A sample of one function, measured and counted. */
#ifndef QZOCI_TESTS_ACCURACY_SUMMARY_H
#define QZOCI_TESTS_ACCURACY_SUMMARY_H

#include "tests/accuracy/measure.h"

#include <string>
#include <vector>

namespace qzoci::test::accuracy {

/* A largest value and the index of its arguments. */
struct Largest {
    double value = 0;
    ub8 index = 0;

    void take(double other, ub8 other_index);
};

/* Errors of packed results, in units of their last digit. */
struct StoredSummary {
    size_t count = 0;
    Largest error;
};

struct RangeSummary {
    const Range* range = nullptr;
    std::vector<double> errors;        /* in units of 10^-160, ascending */
    std::vector<double> scaled_errors; /* divided by what they grow with, ascending */
    Largest error;
    Largest scaled_error;
    StoredSummary stored;       /* results of at least 10^-110 */
    StoredSummary short_stored; /* smaller ones */

    size_t count() const { return errors.size(); }
};

struct Counted {
    size_t count = 0;
    ub8 first = 0; /* index of the first one */
};

struct Summary {
    const Function* function = nullptr;
    size_t count = 0;
    std::vector<RangeSummary> ranges; /* in the order of the function's table, as the next */
    std::vector<Counted> excluded;
    Counted unlucky;
    std::vector<ub8> wrong; /* indices */
};

/* measurements[i] is that of the function's arguments i. */
Summary summarise(const Function& function, const std::vector<Measurement>& measurements);

/* The value that so large a share of the values is not above. Precondition: ascending, not empty. */
double quantile(const std::vector<double>& ascending, double share);

/* Everything in the sample that breaks a bound or an exclusion, in words; empty: nothing does. */
std::vector<std::string> violations(const Summary& summary);

} // namespace qzoci::test::accuracy

#endif /* QZOCI_TESTS_ACCURACY_SUMMARY_H */
