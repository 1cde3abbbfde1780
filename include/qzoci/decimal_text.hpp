/* Exact decimal text of records and stored numbers, in and out. No digit is ever cut, in either direction. */
#ifndef QZOCI_DECIMAL_TEXT_HPP
#define QZOCI_DECIMAL_TEXT_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/expected.hpp>
#include <qzoci/hex_text.hpp>
#include <qzoci/number_bytes.hpp>
#include <qzoci/text_error.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace qzoci {

/* ---- Text to record ----
 *
 *     number   = [sign] (decimal [exponent] | "inf")
 *     decimal  = digits ["." [digits]] | "." digits
 *     exponent = "e" [sign] digits
 *     sign     = "+" | "-"
 *
 * Digits are the ASCII ones; letters count in either case. No blanks, no digit separators, no other names of
 * infinity. Text and exponent may be of any length. Zero digits may stand anywhere; a non-zero digit must fit
 * the record, that is have a weight of 10^159 to 10^-160.
 *
 * The record is in normal form. A zero keeps the sign written before it, so "-0" is a zero with sign -1. */

/* The whole text as one number.
 * Errors: what breaks the grammar comes first (number_expected, digit_expected, exponent_digit_expected,
 * trailing_characters), then the first digit that does not fit (digit_too_high, digit_too_low). */
constexpr expected<QZCICalcNumber, text_error> parse_record(std::string_view text);

struct record_prefix {
    QZCICalcNumber record;
    std::size_t length; /* characters consumed, at least 1 */
};

/* The longest number at the start of the text; whatever follows is not looked at: "1e" and "1ex" give 1 and
 * the length 1, "1.5.2" gives 1.5 and 3, "infinite" gives an infinity and 3. A sign is part of the number: a
 * caller with unary operators of its own takes the sign first. Errors: number_expected, digit_expected; a
 * number with a digit that does not fit is digit_too_high or digit_too_low, never a shorter number. */
constexpr expected<record_prefix, text_error> parse_record_prefix(std::string_view text);

/* ---- Out to text ----
 *
 * Plain decimal: "-12.5", "0.001", "100000". No exponent, no plus sign, no zeros at the end of a fraction, no
 * point without a fraction, one zero before the point of a fraction, "0" for a zero of either sign, "inf",
 * "-inf". */

/* The exact value of any record: limbs above 99999999 carry, so there can be 162 digits before the point.
 * Looks at limbs, sign and infinity flag alone, as QZCICalcNumInit does: positions and the zero flag are not
 * trusted, a sign other than -1 counts as positive, an infinity flag other than 0 hides the limbs. */
std::string format_record(const QZCICalcNumber& record);

/* The exact value of well-formed bytes, also of pairs below 10^-160, which the engine would drop. Not
 * canonical is not wrong here. Errors: those of validate. */
expected<std::string, number_error> format_number(const OCINumber& number);

/* The value the engine reads from any bytes: format_record of what QZCICalcNumFromNumber makes of them.
 * Error: a bad length byte alone. The bytes are unpacked by the engine, which may write log lines about it.
 */
expected<std::string, number_error> format_number_as_read(const OCINumber& number);

} // namespace qzoci

#endif /* QZOCI_DECIMAL_TEXT_HPP */
