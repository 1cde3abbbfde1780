/* The arguments at which each function is measured: special ones first, then those of arguments.h. Each is a
 * function of its index alone, so that a small sample is the beginning of every larger one. */
#ifndef QZOCI_TESTS_ACCURACY_SAMPLES_H
#define QZOCI_TESTS_ACCURACY_SAMPLES_H

#include "tests/accuracy/arguments.h"

namespace qzoci::test::accuracy::samples {

Arguments of_sqrt(ub8 index);
Arguments of_sine(ub8 index); /* for the tangent and the rounded variants too */
Arguments of_cosine(ub8 index);
Arguments of_atan(ub8 index);
Arguments of_asin(ub8 index); /* for the arc cosine too */
Arguments of_atan2(ub8 index);
Arguments of_exp(ub8 index); /* for the hyperbolic functions too */
Arguments of_ln(ub8 index);
Arguments of_ipow(ub8 index);
Arguments of_pow(ub8 index);

} // namespace qzoci::test::accuracy::samples

#endif /* QZOCI_TESTS_ACCURACY_SAMPLES_H */
