/* The record, its normal form, constants, comparisons, stored form in and out, rounding and text, with the
 * trace value handed inward. Each function is the public operation of the same name; contracts stand in
 * oci_calc_number.h. */
#ifndef QZOCI_OCI_CALC_NUMBER_MODEL_H
#define QZOCI_OCI_CALC_NUMBER_MODEL_H

#include "qzoci/limbs/limbs.h"
#include "qzoci/oci_calc_number_internal.h"
#include "qzoci/oci_calc_number_trace.h"

namespace qzoci::engine {

inline constexpr ub4 limb_base = 100000000;
inline constexpr int limb_count = QZCI_CALC_LIMBS;
/* The decimal point stands between these two limbs. */
inline constexpr int units_limb = 19;
inline constexpr int first_fraction_limb = 20;

/* True when first..last is empty or lies inside the record: a walk over these limbs stays in memory. */
constexpr bool is_walkable(int first, int last) {
    return first > last || (first >= 0 && last < limb_count);
}

constexpr bool is_limb_index(int position) {
    return position >= 0 && position < limb_count;
}

/* All limbs, the sign and the infinity flag cleared, positions -1, zero flag 1. */
constexpr QZCICalcNumber canonical_zero() {
    return {{}, 1, 0, -1, -1, 1};
}

/* An infinity set by hand, in normal form, without a line. */
constexpr QZCICalcNumber infinity_of_sign(sb1 sign) {
    return {{}, sign, 1, -1, -1, 0};
}

/* The product of two sign bytes, in 8 bits. */
constexpr sb1 sign_product(const QZCICalcNumber& a, const QZCICalcNumber& b) {
    return static_cast<sb1>(a.num_signed * b.num_signed);
}

inline bool has_sign(const QZCICalcNumber& num) {
    return num.num_signed == 1 || num.num_signed == -1;
}

/* ---- For the fast side ---- */

/* True for a finite, non-zero record whose positions a kernel may read between; the kernel itself tests the
 * limbs. */
inline bool is_ordinary(const QZCICalcNumber& num) {
    return num.is_zero == 0 && num.num_infinity == 0 && num.start_pos >= 0 && num.start_pos <= num.end_pos &&
           num.end_pos < limb_count;
}

inline limbs::Magnitude magnitude(const QZCICalcNumber& num) {
    return {num.data_part, num.start_pos, num.end_pos};
}

/* Sets the fields as the normaliser does for limbs of this extent in a finite record. */
inline void set_fields(QZCICalcNumber& num, limbs::Extent extent, sb1 sign) {
    num.num_signed = sign == -1 ? sb1{-1} : sb1{1};
    num.num_infinity = 0;
    num.start_pos = static_cast<sb1>(extent.first);
    num.end_pos = static_cast<sb1>(extent.last);
    num.is_zero = extent.first < 0 ? sb1{1} : sb1{0};
}

/* result = num truncated toward zero, its magnitude greater by one where add_unit is set, or false with
 * nothing written: for an infinity or where the kernel declines. */
bool try_truncated(Trace t, const QZCICalcNumber& num, bool add_unit, QZCICalcNumber& result);

sword assign(Trace t, const QZCICalcNumber* num, QZCICalcNumber* opt);
sword neg(Trace t, QZCICalcNumber* num);
sword to_zero(Trace t, QZCICalcNumber* num);
sword to_infinity(Trace t, QZCICalcNumber* num, sb1 nsigned);

sword from_number(Trace t, QZCICalcNumber* num, const OCINumber* number);
sword to_number(Trace t, const QZCICalcNumber* nump, OCINumber* number);
sword to_round(Trace t, QZCICalcNumber* num);
sword to_round_to_oci_number(Trace t, QZCICalcNumber* num);
sword to_str(Trace t, const QZCICalcNumber* num, char* buf, size_t buf_len);

} // namespace qzoci::engine

#endif /* QZOCI_OCI_CALC_NUMBER_MODEL_H */
