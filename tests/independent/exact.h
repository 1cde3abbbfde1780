/* Numbers as exact integers: the side of these tests that shares nothing with the engine but the record's
 * layout. */
#ifndef QZOCI_TESTS_INDEPENDENT_EXACT_H
#define QZOCI_TESTS_INDEPENDENT_EXACT_H

#include "qzoci/oci_calc_number.h"

#include <gmpxx.h>

#include <array>
#include <span>
#include <vector>

namespace qzoci::test {

using Limbs = std::array<ub4, QZCI_CALC_LIMBS>; /* as data_part: most significant first */

inline constexpr ub4 base = 100000000;
/* The value 1 in units of 10^-160 is base to this power. */
inline constexpr int units_exponent = 20;

/* base to the power exponent, 0..82. */
const mpz_class& power_of_base(int exponent);

/* An operand twice over: the record the engine gets, and its magnitude in units of 10^-160 (0 of an
 * infinity). Invariant: the record is in normal form, save that a zero may have sign 0. */
struct Operand {
    QZCICalcNumber record;
    mpz_class units;

    bool is_zero() const { return record.is_zero != 0; }

    bool is_infinite() const { return record.num_infinity != 0; }

    bool is_finite_non_zero() const { return !is_zero() && !is_infinite(); }

    sb1 sign() const { return record.num_signed; }
};

/* limbs 0..99999999. */
Operand operand_of_limbs(const Limbs& limbs, sb1 sign);

/* 0 <= units < 10^320. */
Operand operand_of_units(const mpz_class& units, sb1 sign);

Operand zero_operand(sb1 sign);
Operand infinite_operand(sb1 sign);
Operand negated(Operand operand);

/* The record of this magnitude in normal form, sign as given; units as for operand_of_units. */
QZCICalcNumber record_of_units(const mpz_class& units, sb1 sign);

QZCICalcNumber zero_record(sb1 sign);
QZCICalcNumber infinite_record(sb1 sign);

/* The exponent of the leading limb: the largest e with base^e <= units. units > 0, below base^82. */
int leading_exponent(const mpz_class& units);

/* The number that these limbs spell, LEAST significant first. Limbs may have any value. */
mpz_class integer_of(std::span<const ub4> limbs);

/* The inverse: at least count limbs, LEAST significant first. */
std::vector<ub4> limbs_of(mpz_class integer, size_t count);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_INDEPENDENT_EXACT_H */
