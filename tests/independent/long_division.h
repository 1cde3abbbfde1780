/* The long division a second time, and a proof of when its digits are those of mathematics.
 *
 * Limb arrays are base B = 100000000, LEAST significant limb first. A division of an (m+n)-limb u by an
 * n-limb v makes the m+1 digits m, m-1, ..., 0 and an n-limb remainder. */
#ifndef QZOCI_TESTS_INDEPENDENT_LONG_DIVISION_H
#define QZOCI_TESTS_INDEPENDENT_LONG_DIVISION_H

#include "tests/independent/exact.h"

#include <span>
#include <vector>

namespace qzoci::test {

struct DivisionResult {
    std::vector<ub4> quotient;       /* m + 1 limbs */
    std::vector<ub4> remainder;      /* n limbs */
    std::vector<ub4> scaled_divisor; /* n limbs: v times the normalising factor */
};

/* The operands as one long division sees them. */
struct Division {
    std::vector<ub4> u; /* m + n limbs */
    std::vector<ub4> v; /* n limbs, the top one not 0 */

    int digits() const { return static_cast<int>(u.size() - v.size()) + 1; }
};

/* Step by step as the engine has to do it: the unrefined trial digit of short divisors, the single add-back,
 * limbs of exactly B left in place by the scaling, 32-bit limbs and 64-bit intermediates that wrap. Throws
 * std::logic_error where these steps would divide by zero or not settle; operands with limbs below B never
 * lead there. */
DivisionResult literal_division(const Division& operands);

/* Why the literal digits are certain to be the true ones, or what stands in the way. */
enum class Certainty {
    certain,
    limb_in_dividend, /* scaling leaves a limb of exactly B in u */
    limb_in_divisor,  /* the same in v */
    limb_in_product,  /* a trial product may get such a limb */
    two_limb_estimate /* the unrefined trial digit may be 2 too large */
};

/* Looks at the operands alone: nothing here runs the literal division. Covers the first used_digits digits
 * and, when these are all, the remainder. True digits are those of the integer quotient of u and v. */
Certainty certainty(const Division& operands, int used_digits);

/* The division that makes dividend / divisor, both finite, the divisor of several limbs, and how many of its
 * 42 digits (placed limbs and the rounding digit) the record depends on. */
Division quotient_division(const Operand& dividend, const Operand& divisor);
int quotient_digits_used(const Operand& dividend, const Operand& divisor);

/* The record made of the digits of quotient_division. Precondition: contract::quotient_is_long. */
QZCICalcNumber record_of_quotient(const DivisionResult& division, const Operand& dividend,
                                  const Operand& divisor);

/* The same for the remainder, all digits of which count. Precondition: contract::remainder_is_long. */
Division remainder_division(const Operand& dividend, const Operand& divisor);
QZCICalcNumber record_of_remainder(const DivisionResult& division, const Operand& dividend,
                                   const Operand& divisor);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_INDEPENDENT_LONG_DIVISION_H */
