/* Values as big integers: an independent way from limbs, from pairs and from plain decimal text to one
 * number. */
#ifndef QZOCI_TESTS_TEXT_EXACT_VALUE_H
#define QZOCI_TESTS_TEXT_EXACT_VALUE_H

#include "qzoci/oci_calc_number.h"

#include <gmpxx.h>

#include <span>
#include <string_view>

namespace qzoci::test {

/* Every value here is counted in units of 10^-200, below the last digit of any record or stored number. */
inline constexpr int unit_digits = 200;

mpz_class power_of_ten(int exponent);

/* sign * sum of limb[i] * 10^(8 * (19 - i)), whatever the other fields say. */
mpz_class value_of_limbs(const QZCICalcNumber& record);

/* sum of pair[i] * 100^(exponent - i). */
mpz_class value_of_pairs(std::span<const int> pairs, int exponent);

/* Whether the text is a plain decimal in its only form: no needless zero, sign or point. */
bool is_plain_decimal(std::string_view text);

/* The value of a plain decimal. */
mpz_class value_of_plain_decimal(std::string_view text);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_TEXT_EXACT_VALUE_H */
