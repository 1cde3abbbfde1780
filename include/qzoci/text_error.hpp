/* What is wrong with a text, and where. */
#ifndef QZOCI_TEXT_ERROR_HPP
#define QZOCI_TEXT_ERROR_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qzoci {

enum class text_fault : std::uint8_t {
    number_expected,         /* neither a digit nor a point nor a letter of "inf" where a number must go on */
    digit_expected,          /* a point with no digit before it and none after it */
    exponent_digit_expected, /* an exponent mark, or its sign, without a digit after it */
    trailing_characters,     /* a whole number, and then something else */
    digit_too_high,          /* a non-zero digit of weight 10^160 or above */
    digit_too_low,           /* a non-zero digit of weight below 10^-160 */
    hex_digit_expected,      /* not a hex digit; or no digit at all */
    half_byte,               /* an odd number of hex digits */
    too_many_bytes,          /* more than 22 bytes */
    fewer_bytes_than_length  /* the length byte promises more bytes than the text has */
};

struct text_error {
    std::size_t position; /* byte offset of the first bad character; the text's size when it ends too early */
    text_fault fault;

    friend constexpr bool operator==(const text_error&, const text_error&) = default;
};

/* The fault in words, without the position: "digit expected". */
constexpr std::string_view describe(text_fault fault);

/* The error in words, positions from 0: "at position 3: digit expected". */
std::string message(const text_error& error);

} // namespace qzoci

#endif /* QZOCI_TEXT_ERROR_HPP */
