/* Well-formed stored numbers of every sign, exponent and number of pairs. */
#ifndef QZOCI_TESTS_TEXT_STORED_SHAPES_H
#define QZOCI_TESTS_TEXT_STORED_SHAPES_H

#include "qzoci/oci_calc_number.h"

#include <gmpxx.h>

#include <functional>
#include <vector>

namespace qzoci::test {

struct Shape {
    bool negative;
    int exponent; /* base-100, of the first pair: -64 (negative: -65) to 62 */
    std::vector<int> pairs;
};

/* The bytes, EE in those after the length. */
OCINumber encode(const Shape& shape);

/* In the units of exact_value.h. */
mpz_class value_of(const Shape& shape);

/* The value of bytes, in the same units, the infinities beyond every finite one: a reading of the format that has nothing
 * in common with the layer's. Precondition: well-formed. */
mpz_class value_of_well_formed(const OCINumber& number);

/* Every sign, exponent and number of pairs, with seven patterns of pairs each: 01, 99, 10, 00, 01 before 00,
 * random ones, 00 and 99 in turn. 255 * 20 * 7 in all, the same in every run.
 * The one pair of bytes that reads as an infinity cannot come up: 101 encodes no positive pair. */
void for_every_shape(const std::function<void(const Shape&)>& visit);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_TEXT_STORED_SHAPES_H */
