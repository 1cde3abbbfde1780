/* What the tool has to print, from exact integers alone. */
#ifndef QZOCI_TESTS_QZNUM_MODEL_H
#define QZOCI_TESTS_QZNUM_MODEL_H

#include "tests/independent/contract.h"

#include <gmpxx.h>

#include <string>
#include <string_view>

namespace qzoci::test {

/* A plain decimal of at most 160 digits on either side of the point, or "inf", "-inf". */
Operand operand_of_decimal(std::string_view decimal);

/* A decimal with an exponent or without, exactly. */
mpq_class rational_of_decimal(std::string_view decimal);

/* The operand whose record this is. Precondition: normal form, limbs below 100000000. */
Operand operand_of_record(const QZCICalcNumber& record);

/* As a caller reads it who unpacks what was stored. Precondition: storing does not wrap the exponent byte. */
Operand stored(const Operand& operand);

/* Its exact value as a plain decimal. */
std::string decimal_of(const Operand& operand);

/* Its stored form: all 22 bytes in hex, those after the length 00. */
std::string stored_hex(const Operand& operand);

/* The exact value of its stored form, as a plain decimal. Precondition: as for stored. */
std::string stored_decimal(const Operand& operand);

/* The value rounded to the nearest 10^-160, a half away from zero. */
Operand nearest_operand(const mpq_class& value);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_QZNUM_MODEL_H */
