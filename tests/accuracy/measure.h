/* One result against what it is to be. */
#ifndef QZOCI_TESTS_ACCURACY_MEASURE_H
#define QZOCI_TESTS_ACCURACY_MEASURE_H

#include "tests/accuracy/functions.h"

#include <optional>
#include <string>

namespace qzoci::test::accuracy {

/* How a result is counted. */
enum class Outcome {
    measured,         /* it has an error */
    excluded,         /* it is deliberately not the mathematical one, and is what the exclusion says */
    unlucky_quotient, /* so is a quotient on its way */
    wrong             /* a failure status, an infinity, or not what the exclusion says */
};

/* The packed result against the exact one. */
struct Stored {
    double error; /* in units of the last digit that a stored number of this size holds, the 39th or 40th */
    double record_error; /* of the record, in the same units */
    bool is_short;       /* below 10^-110: the record has not 50 significant digits to begin with */
};

struct Measurement {
    Outcome outcome;
    size_t place;                 /* of the range, or of the exclusion, in the function's table */
    double error;                 /* in units of 10^-160; infinite beyond the range of double */
    double scaled_error;          /* error / what it grows with */
    double right_digits;          /* of the record: -log10 of the relative error; infinite for none */
    double log_of_exact;          /* log10 of the exact result's magnitude */
    std::optional<Stored> stored; /* none: too large or too small to be stored */
};

/* Runs the engine on its silent, fast side. */
Measurement measure(const Function& function, const Arguments& arguments);

Point point_of(const Function& function, const Arguments& arguments);

/* The arguments as people type them, exactly. */
std::string text_of(const Function& function, const Arguments& arguments);

} // namespace qzoci::test::accuracy

#endif /* QZOCI_TESTS_ACCURACY_MEASURE_H */
