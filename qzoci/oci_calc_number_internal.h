/* Internal routines of the engine under their laid-down names, for the engine and its tests; not installed,
 * and hidden in the shared library.
 *
 * Limb arrays here are base 10^8, LEAST significant limb first (a record's data_part is the other way round).
 * Nothing is checked or logged: lengths must fit the arrays. */
#ifndef QZOCI_OCI_CALC_NUMBER_INTERNAL_H
#define QZOCI_OCI_CALC_NUMBER_INTERNAL_H

#include "qzoci/oci_calc_number.h"

#ifdef __cplusplus
extern "C" {
#endif

/* 100 to the power exp, modulo 2^32. */
ub4 pow_100(ub4 exp);

/* Rounds a record in place to 38 fraction digits, half-up in magnitude by the 39th; zeros and infinities stay
 * as they are. Its exit trace names "QZCICalcNumToRoundToFiveAfterDot". */
sword QZCICalcNumToRoundToOCINumber(QZCICalcNumber* num);

/* Writes the first guess of the square root: the rounded root of the leading limb, at that limb's position;
 * the scale is the iteration's to repair. Only number's leading limb is read, not its sign. OCI_ERROR: number
 * has no leading limb. */
sword QZCICalcNumSqrtFirst(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* result = augend + addend over max(len1, len2) limbs; the carry out of the top limb is dropped. */
void calc_add(ub4* augend, sb1 len1, ub4* addend, sb1 len2, ub4* result);

/* result = minuend - subtrahend over max(len1, len2) limbs; the borrow out of the top limb goes to
 * negative. */
void calc_sub(ub4* minuend, sb1 len1, ub4* subtrahend, sb1 len2, boolean* negative, ub4* result);

/* num = num * multiplier in place over len limbs; a non-zero final carry is stored in num[len]. A limb value
 * of exactly 100000000 stays in its limb without a carry: callers rely on it. */
void calc_mul(ub4* num, sb1 len, ub8 multiplier);

/* num = num / divisor in place over len limbs; the remainder goes to reminder. Precondition: divisor not
 * 0. */
void calc_div(ub4* num, sb1 len, ub8 divisor, ub8* reminder);

/* The trial quotient limb at position j for an n-limb divisor; unrefined for n <= 2. Reads u[j+n], u[j+n-1],
 * v[n-1] and, for n > 2, u[j+n-2], v[n-2]. Returns 0 where it would divide by zero or not settle. */
ub8 knuth_calc_delta(ub8 j, ub8 n, ub4* u, ub4* v);

/* Subtracts qq * v from u[j..j+n] and corrects qq once if that went below zero. v must have n + 1 limbs. */
void knuth_probe_quotient(sb1 j, sb1 n, ub4* u, ub4* v, ub8* qq);

/* Divides the (m+n)-limb u by the n-limb v: m + 1 quotient limbs, n remainder limbs. u must have room for
 * m + n + 1 limbs and v for n + 1; both are left multiplied by the normalising factor. m >= 0, 1 <= n,
 * m + n <= 81. */
void qzci_knuth_div(ub4* u, ub4* v, sb1 m, sb1 n, ub4* quotient, ub4* remainder);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* QZOCI_OCI_CALC_NUMBER_INTERNAL_H */
