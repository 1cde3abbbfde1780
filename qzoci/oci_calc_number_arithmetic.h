/* Addition to floor, with the trace value handed inward. Each function is the public operation of the same
 * name; contracts stand in oci_calc_number.h. */
#ifndef QZOCI_OCI_CALC_NUMBER_ARITHMETIC_H
#define QZOCI_OCI_CALC_NUMBER_ARITHMETIC_H

#include "qzoci/oci_calc_number_model.h"

namespace qzoci::engine {

/* quotient = dividend / divisor as div gives it for the integer divisor, or false with nothing written: where
 * the fast side may not be taken, its kernel declines, or divisor is not in 1..99999999. */
bool try_quotient_by_integer(Trace t, const QZCICalcNumber& dividend, sb8 divisor, QZCICalcNumber& quotient);

/* num = num * 0.5 as mul gives it, or false with nothing written: where the fast side may not be taken or its
 * kernel declines. */
bool try_half(Trace t, QZCICalcNumber& num);

sword add(Trace t, const QZCICalcNumber* augend, const QZCICalcNumber* addend, QZCICalcNumber* sump);
sword sub(Trace t, const QZCICalcNumber* minuend, const QZCICalcNumber* subtrahend,
          QZCICalcNumber* remainderp);
sword mul(Trace t, const QZCICalcNumber* multiplicand, const QZCICalcNumber* multiplier,
          QZCICalcNumber* productp);
sword mul_integer(Trace t, const QZCICalcNumber* multiplicand, ub4 multiplier, QZCICalcNumber* productp);
sword div_one_limb(Trace t, const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                   QZCICalcNumber* resultp);
sword mod_one_limb(Trace t, const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                   QZCICalcNumber* resultp);
sword div(Trace t, const QZCICalcNumber* dividend, const QZCICalcNumber* divisor, QZCICalcNumber* resultp);
sword mod(Trace t, const QZCICalcNumber* modend, const QZCICalcNumber* modor, QZCICalcNumber* resultp);
sword ceil(Trace t, const QZCICalcNumber* number, QZCICalcNumber* result);
sword floor(Trace t, const QZCICalcNumber* number, QZCICalcNumber* result);

} // namespace qzoci::engine

#endif /* QZOCI_OCI_CALC_NUMBER_ARITHMETIC_H */
