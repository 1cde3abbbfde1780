/* Square root to power, with the trace value handed inward. Each function is the public operation of the same
 * name; contracts stand in oci_calc_number.h. */
#ifndef QZOCI_OCI_CALC_NUMBER_ELEMENTARY_H
#define QZOCI_OCI_CALC_NUMBER_ELEMENTARY_H

#include "qzoci/oci_calc_number_arithmetic.h"

namespace qzoci::engine {

sword sqrt(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword sin(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword cos(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword tan(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword sin_with_round(Trace t, const QZCICalcNumber* number, QZCICalcNumber* result);
sword cos_with_round(Trace t, const QZCICalcNumber* number, QZCICalcNumber* result);
sword tan_with_round(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword atan(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword asin(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword acos(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword atan2(Trace t, const QZCICalcNumber* number1, const QZCICalcNumber* number2, QZCICalcNumber* resultp);
sword exp(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword sinh(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword cosh(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword tanh(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword ln(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp);
sword int_power(Trace t, const QZCICalcNumber* base, sword exp, QZCICalcNumber* resultp);
sword power(Trace t, const QZCICalcNumber* base, const QZCICalcNumber* exp, QZCICalcNumber* resultp);

} // namespace qzoci::engine

#endif /* QZOCI_OCI_CALC_NUMBER_ELEMENTARY_H */
