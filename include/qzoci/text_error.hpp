/* What is wrong with a text, and where. */
#ifndef QZOCI_TEXT_ERROR_HPP
#define QZOCI_TEXT_ERROR_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qzoci {

/* What is wrong with a text. */
enum class text_fault : std::uint8_t {
    number_expected,         /* neither a digit nor a point nor a letter of "inf" where a number must go on */
    digit_expected,          /* a point with no digit before it and none after it */
    exponent_digit_expected, /* an exponent mark, or its sign, without a digit after it */
    trailing_characters,     /* a whole number, and then something else */
    digit_too_high,          /* a non-zero digit of weight 10^160 or above: no record holds it */
    digit_too_low,           /* a non-zero digit of weight below 10^-160: no record holds it */
    number_too_large,        /* a magnitude of 10^126 or above: no stored number holds it */
    number_too_small,        /* not zero, but below 10^-166 in magnitude (negative numbers: 10^-168) */
    too_many_digits,         /* a non-zero digit below the 20 digit pairs of a stored number */
    hex_digit_expected,      /* not a hex digit; or no digit at all */
    half_byte,               /* an odd number of hex digits */
    too_many_bytes,          /* more than 22 bytes */
    fewer_bytes_than_length  /* the length byte promises more bytes than the text has */
};

/* Where a text is wrong, and why. */
struct text_error {
    std::size_t position; /* byte offset of the first bad character; the text's size when it ends too early */
    /* What is wrong there. */
    text_fault fault;

    friend constexpr bool operator==(const text_error&, const text_error&) = default;
};

/* The fault in words, without the position: "digit expected". */
constexpr std::string_view describe(text_fault fault);

/* The error in words, positions from 0: "at position 3: digit expected". */
inline std::string message(const text_error& error);

/* ---- Definitions ---- */

constexpr std::string_view describe(text_fault fault) {
    switch (fault) {
    case text_fault::number_expected:
        return "number expected";
    case text_fault::digit_expected:
        return "digit expected";
    case text_fault::exponent_digit_expected:
        return "digit of the exponent expected";
    case text_fault::trailing_characters:
        return "characters after the number";
    case text_fault::digit_too_high:
        return "digit at or above 10^160, too large";
    case text_fault::digit_too_low:
        return "digit below 10^-160, too small";
    case text_fault::number_too_large:
        return "number at or above 10^126, too large to be stored";
    case text_fault::number_too_small:
        return "number nearer to zero than any that can be stored";
    case text_fault::too_many_digits:
        return "digit beyond the 20 digit pairs that can be stored";
    case text_fault::hex_digit_expected:
        return "hex digit expected";
    case text_fault::half_byte:
        return "second hex digit of the byte expected";
    case text_fault::too_many_bytes:
        return "more than 22 bytes";
    case text_fault::fewer_bytes_than_length:
        return "fewer bytes than the length byte promises";
    }
    return "unknown fault";
}

namespace detail {

inline std::string at_position(std::size_t position, std::string_view what) {
    std::string text = "at position ";
    text += std::to_string(position);
    text += ": ";
    text += what;
    return text;
}

} // namespace detail

inline std::string message(const text_error& error) {
    return detail::at_position(error.position, describe(error.fault));
}

} // namespace qzoci

#endif /* QZOCI_TEXT_ERROR_HPP */
