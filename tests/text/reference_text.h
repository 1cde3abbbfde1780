/* Formatted text a second time, by integers: the value as one big integer, rounded by division and compared with its
 * neighbours, its decimal string cut at the point. */
#ifndef QZOCI_TESTS_TEXT_REFERENCE_TEXT_H
#define QZOCI_TESTS_TEXT_REFERENCE_TEXT_H

#include <qzoci/text_format.hpp>

#include <gmpxx.h>

#include <random>
#include <string>

namespace qzoci::test {

/* The multiple of unit (above 0) that a value goes to. */
mpz_class rounded(const mpz_class& value, const mpz_class& unit, rounding_mode mode);

/* The text of a value in units of 10^-200. */
std::string reference_text(const mpz_class& value, const text_format& format);

/* Any notation, rounding, grouping and number of digits. */
text_format random_format(std::mt19937_64& random);

/* A format in words, for messages. */
std::string description(const text_format& format);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_TEXT_REFERENCE_TEXT_H */
