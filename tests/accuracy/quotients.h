/* The quotients that are formed on the way to a result, each once: not those of a series, whose divisors are
 * integers, nor those of a root, whose errors the iteration heals. */
#ifndef QZOCI_TESTS_ACCURACY_QUOTIENTS_H
#define QZOCI_TESTS_ACCURACY_QUOTIENTS_H

#include "tests/accuracy/arguments.h"

#include <vector>

namespace qzoci::test::accuracy {

struct Quotient {
    QZCICalcNumber dividend;
    QZCICalcNumber divisor;
};

using Quotients = std::vector<Quotient>;

Quotients tangent_quotients(const Arguments& arguments);
Quotients rounded_tangent_quotients(const Arguments& arguments);
Quotients arctangent_quotients(const Arguments& arguments);
Quotients arcsine_quotients(const Arguments& arguments);
Quotients angle_quotients(const Arguments& arguments);
Quotients hyperbolic_quotients(const Arguments& arguments);
Quotients hyperbolic_tangent_quotients(const Arguments& arguments);
Quotients logarithm_quotients(const Arguments& arguments);
Quotients power_quotients(const Arguments& arguments);
Quotients integer_power_quotients(const Arguments& arguments);

/* True when the engine's division gives a finite quotient more than one unit of 10^-160 from the exact one:
 * one of the divisors whose quotients are deliberately not the mathematical ones. */
bool is_unlucky(const Quotient& quotient);

} // namespace qzoci::test::accuracy

#endif /* QZOCI_TESTS_ACCURACY_QUOTIENTS_H */
