/* Stored numbers as hex digits. */
#ifndef QZOCI_HEX_TEXT_HPP
#define QZOCI_HEX_TEXT_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/expected.hpp>
#include <qzoci/text_error.hpp>

#include <string>
#include <string_view>

namespace qzoci {

/* The bytes written as hex digit pairs, upper or lower case, with or without 0x (0X) before them; nothing
 * else. Fewer than 22 bytes are filled up with 00 as long as the bytes that the length byte counts are all
 * there. The bytes need not be well-formed: see validate. Errors: hex_digit_expected, half_byte,
 * too_many_bytes (position of the first digit too many), fewer_bytes_than_length; the first from the left. */
constexpr expected<OCINumber, text_error> parse_hex(std::string_view text);

/* The length byte and the bytes it counts, lower case, without 0x; all 22 when the length byte is above 21.
 */
std::string format_hex(const OCINumber& number);

/* All 22 bytes, lower case, without 0x. */
std::string format_hex_all(const OCINumber& number);

} // namespace qzoci

#endif /* QZOCI_HEX_TEXT_HPP */
