/* Stored numbers as hex digits. */
#ifndef QZOCI_HEX_TEXT_HPP
#define QZOCI_HEX_TEXT_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/expected.hpp>
#include <qzoci/number_bytes.hpp>
#include <qzoci/text_error.hpp>

#include <cstddef>
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
inline std::string format_hex(const OCINumber& number);

/* All 22 bytes, lower case, without 0x. */
inline std::string format_hex_all(const OCINumber& number);

/* ---- Definitions ---- */

namespace detail {

/* The value of a hex digit; -1 for any other character. */
constexpr int hex_digit_value(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

inline std::string hex_of_bytes(const OCINumber& number, std::size_t count) {
    constexpr std::string_view hex_digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * count);
    for (std::size_t i = 0; i < count; ++i) {
        text += hex_digits[number.OCINumberPart[i] >> 4U];
        text += hex_digits[number.OCINumberPart[i] & 15U];
    }
    return text;
}

} // namespace detail

constexpr expected<OCINumber, text_error> parse_hex(std::string_view text) {
    const std::size_t begin = text.starts_with("0x") || text.starts_with("0X") ? 2 : 0;
    const std::size_t digits = text.size() - begin;
    OCINumber number{};
    for (std::size_t i = 0; i < digits; ++i) {
        const int value = detail::hex_digit_value(text[begin + i]);
        if (value < 0) {
            return unexpected(text_error{begin + i, text_fault::hex_digit_expected});
        }
        if (i / 2 == QZOCI_NUMBER_SIZE) {
            return unexpected(text_error{begin + i, text_fault::too_many_bytes});
        }
        ub1& byte = number.OCINumberPart[i / 2];
        byte = static_cast<ub1>(byte * 16 + value);
    }
    if (digits == 0) {
        return unexpected(text_error{text.size(), text_fault::hex_digit_expected});
    }
    if (digits % 2 != 0) {
        return unexpected(text_error{text.size(), text_fault::half_byte});
    }
    if (digits / 2 < detail::significant_size(number.OCINumberPart[0])) {
        return unexpected(text_error{text.size(), text_fault::fewer_bytes_than_length});
    }
    return number;
}

inline std::string format_hex(const OCINumber& number) {
    return detail::hex_of_bytes(number, detail::significant_size(number.OCINumberPart[0]));
}

inline std::string format_hex_all(const OCINumber& number) {
    return detail::hex_of_bytes(number, QZOCI_NUMBER_SIZE);
}

} // namespace qzoci

#endif /* QZOCI_HEX_TEXT_HPP */
