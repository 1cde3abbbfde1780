/* What the elementary functions are measured against: exact integers and real numbers of MPFR. */
#ifndef QZOCI_TESTS_ELEMENTARY_REFERENCE_H
#define QZOCI_TESTS_ELEMENTARY_REFERENCE_H

#include "qzoci/oci_calc_number.h"
#include "tests/accuracy/real.h"

#include <gmpxx.h>

#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {

/* ---- Exact integers ---- */

mpz_class power_of_ten(unsigned exponent);

/* The magnitude of a finite record in units of 10^-160. */
mpz_class units_of(const QZCICalcNumber& record);

/* Of a plain decimal with at most 160 fraction digits. */
mpz_class units_of(std::string_view decimal);

/* The fields of the record of this magnitude, 0 <= units < 10^320, in normal form. */
std::string fields_of_units(const mpz_class& units, sb1 sign = 1);

/* Heron's iteration new = (number / guess + guess) / 2 with quotients and halvings that are exact but for
 * rounding half-up to 10^-160. */
struct Heron {
    mpz_class root; /* the guess that a step leaves unchanged */
    int steps;      /* taken until then, that one included */
};

/* From the given guess on, all in units of 10^-160. */
Heron heron(const mpz_class& number, const mpz_class& guess);

/* The only g (the smaller of two) with g^2 - 1.5 g <= T < g^2 + 0.5 g for T = number * 10^160, number and g
 * counted in units of 10^-160: where Heron's iteration can rest. */
mpz_class resting_guess(const mpz_class& number);

/* ---- Real numbers ---- */

using accuracy::Real;

/* Of a finite record, or of a decimal as record_from_decimal takes it; exact. */
Real real_of(const QZCICalcNumber& record);
Real real_of(std::string_view decimal);

/* |record - exact| * 10^160. */
double distance_in_units(const QZCICalcNumber& record, const Real& exact);

/* |record - exact| / |exact|. */
double relative_distance(const QZCICalcNumber& record, const Real& exact);

/* ---- Requests ---- */

/* The result record of a request that succeeds on every side. */
QZCICalcNumber record_of(const std::string& request);

/* Expects the request to succeed, on every side, within so many units of 10^-160 of the exact value. */
void expect_near(const std::string& request, const Real& exact, double units);

/* How many of the lines start so. */
size_t count_of(const std::vector<std::string>& lines, std::string_view start);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_ELEMENTARY_REFERENCE_H */
