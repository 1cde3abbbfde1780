/* Random records for comparing the sides: uniform limbs, and those at which carries, thresholds and the
 * oddities of the long division turn. */
#ifndef QZOCI_TESTS_LIMBS_RANDOM_RECORDS_H
#define QZOCI_TESTS_LIMBS_RANDOM_RECORDS_H

#include "qzoci/oci_calc_number.h"

#include <random>

namespace qzoci::test {

class RandomRecords {
public:
    explicit RandomRecords(ub8 seed) : engine_(seed) {}

    /* Finite, of either sign, of any extent, zero now and then. */
    QZCICalcNumber any();

    /* Finite and positive: any, the square of a short one, or a unit of the last place beside such a square.
     */
    QZCICalcNumber radicand();

    /* As any, but of digit pairs that roundings and carries turn at. */
    QZCICalcNumber of_turning_pairs();

    /* As either, with one to three fields or limbs that no operation would leave so. */
    QZCICalcNumber malformed();

    /* Twenty-two bytes: a number of any length and exponent, one time in four with bytes outside the format. */
    OCINumber stored();

    /* 0 .. count-1. */
    ub8 below(ub8 count) { return engine_() % count; }

private:
    ub4 limb(ub8 style);
    ub1 turning_pair();

    std::mt19937_64 engine_;
};

} // namespace qzoci::test

#endif /* QZOCI_TESTS_LIMBS_RANDOM_RECORDS_H */
