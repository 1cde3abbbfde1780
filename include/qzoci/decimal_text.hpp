/* Exact decimal text of records and stored numbers, in and out. No digit is ever cut, in either direction. */
#ifndef QZOCI_DECIMAL_TEXT_HPP
#define QZOCI_DECIMAL_TEXT_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/expected.hpp>
#include <qzoci/hex_text.hpp>
#include <qzoci/number_bytes.hpp>
#include <qzoci/text_error.hpp>

#include <array>
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
inline std::string format_record(const QZCICalcNumber& record);

/* The exact value of well-formed bytes, also of pairs below 10^-160, which the engine would drop. Not
 * canonical is not wrong here. Errors: those of validate. */
inline expected<std::string, number_error> format_number(const OCINumber& number);

/* The value the engine reads from any bytes: format_record of what QZCICalcNumFromNumber makes of them.
 * Error: a bad length byte alone. The bytes are unpacked by the engine, which may write log lines about it.
 */
inline expected<std::string, number_error> format_number_as_read(const OCINumber& number);

/* ---- Definitions ---- */

namespace detail {

inline constexpr ub4 limb_base = 100000000;
inline constexpr int limb_digits = 8;
inline constexpr int highest_weight = 159;
inline constexpr int lowest_weight = -160;

/* An exponent that has reached this keeps its size: no text has so many digits that it could make up for it,
 * and weights computed from it stay far inside sb8. */
inline constexpr sb8 exponent_ceiling = 100000000000000000;

constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool is_letter(char c, char lower_case) {
    return c == lower_case || c == lower_case - 'a' + 'A';
}

/* A character sequence with a character for every position: NUL after its end. */
constexpr char character_at(std::string_view text, std::size_t position) {
    return position < text.size() ? text[position] : '\0';
}

constexpr std::size_t after_sign(std::string_view text, std::size_t position) {
    const char c = character_at(text, position);
    return c == '+' || c == '-' ? position + 1 : position;
}

constexpr std::size_t after_digits(std::string_view text, std::size_t position) {
    while (is_digit(character_at(text, position))) {
        ++position;
    }
    return position;
}

/* Where the parts of a number stand in its text. */
struct scanned_number {
    bool negative = false;
    bool infinite = false;
    bool has_exponent = false;
    std::size_t digits = 0;     /* the first digit, or the point before it */
    std::size_t point = 0;      /* the point; digits_end when there is none */
    std::size_t digits_end = 0; /* after the last digit, or after the point behind it */
    sb8 exponent = 0;           /* up to exponent_ceiling as written, at least that beyond */
    std::size_t end = 0;        /* after the number */
};

constexpr sb8 exponent_value(std::string_view digits, bool negative) {
    sb8 magnitude = 0;
    for (const char c : digits) {
        if (magnitude < exponent_ceiling) {
            magnitude = magnitude * 10 + (c - '0');
        }
    }
    return negative ? -magnitude : magnitude;
}

/* Takes the exponent at number.end, if one stands there whole. */
constexpr void scan_exponent(std::string_view text, scanned_number& number) {
    if (!is_letter(character_at(text, number.end), 'e')) {
        return;
    }
    const std::size_t sign = number.end + 1;
    const std::size_t begin = after_sign(text, sign);
    const std::size_t end = after_digits(text, begin);
    if (begin != end) {
        number.has_exponent = true;
        number.exponent = exponent_value(text.substr(begin, end - begin), text[sign] == '-');
        number.end = end;
    }
}

constexpr expected<scanned_number, text_error> scan_infinity(std::string_view text, scanned_number number) {
    for (const char letter : std::string_view("inf")) {
        if (!is_letter(character_at(text, number.end), letter)) {
            return unexpected(text_error{number.end, text_fault::number_expected});
        }
        ++number.end;
    }
    number.infinite = true;
    return number;
}

constexpr expected<scanned_number, text_error> scan_decimal(std::string_view text, scanned_number number) {
    number.digits = number.end;
    number.point = after_digits(text, number.digits);
    number.digits_end = number.point;
    if (character_at(text, number.point) == '.') {
        number.digits_end = after_digits(text, number.point + 1);
        if (number.digits_end - number.digits == 1) {
            return unexpected(text_error{number.digits_end, text_fault::digit_expected});
        }
    }
    if (number.digits_end == number.digits) {
        return unexpected(text_error{number.digits, text_fault::number_expected});
    }
    number.end = number.digits_end;
    scan_exponent(text, number);
    return number;
}

/* The longest number at the start of the text. */
constexpr expected<scanned_number, text_error> scan_number(std::string_view text) {
    scanned_number number;
    number.negative = character_at(text, 0) == '-';
    number.end = after_sign(text, 0);
    return is_letter(character_at(text, number.end), 'i') ? scan_infinity(text, number)
                                                          : scan_decimal(text, number);
}

/* The error of a text that goes on at number.end, where the number has ended. */
constexpr text_error continuation_error(std::string_view text, const scanned_number& number) {
    const bool exponent_begun = !number.infinite && !number.has_exponent && is_letter(text[number.end], 'e');
    if (exponent_begun) {
        return {after_sign(text, number.end + 1), text_fault::exponent_digit_expected};
    }
    return {number.end, text_fault::trailing_characters};
}

/* Adds digit * 10^weight. Precondition: weight inside the record, the digit's place still zero. */
constexpr void place_digit(QZCICalcNumber& record, int digit, int weight) {
    const int place = highest_weight - weight;
    ub4 value = static_cast<ub4>(digit);
    for (int i = place % limb_digits; i < limb_digits - 1; ++i) {
        value *= 10;
    }
    record.data_part[place / limb_digits] += value;
}

/* Sets positions and zero flag of a finite record from its limbs. */
constexpr void locate_limbs(QZCICalcNumber& record) {
    record.start_pos = -1;
    record.end_pos = -1;
    for (int i = 0; i < QZCI_CALC_LIMBS; ++i) {
        if (record.data_part[i] != 0) {
            record.start_pos = record.start_pos < 0 ? static_cast<sb1>(i) : record.start_pos;
            record.end_pos = static_cast<sb1>(i);
        }
    }
    record.is_zero = record.start_pos < 0 ? 1 : 0;
}

/* 10^weight is what a one at this position of the text counts. */
constexpr sb8 digit_weight(const scanned_number& number, std::size_t position) {
    const auto distance = static_cast<sb8>(number.point) - static_cast<sb8>(position);
    return number.exponent + (distance > 0 ? distance - 1 : distance);
}

/* The record of a scanned number, or its first digit that does not fit. */
constexpr expected<QZCICalcNumber, text_error> record_of(std::string_view text,
                                                         const scanned_number& number) {
    QZCICalcNumber record{{}, number.negative ? sb1{-1} : sb1{1}, 0, -1, -1, 1};
    if (number.infinite) {
        record.num_infinity = 1;
        record.is_zero = 0;
        return record;
    }
    for (std::size_t i = number.digits; i < number.digits_end; ++i) {
        if (i == number.point || text[i] == '0') {
            continue;
        }
        const sb8 weight = digit_weight(number, i);
        if (weight > highest_weight) {
            return unexpected(text_error{i, text_fault::digit_too_high});
        }
        if (weight < lowest_weight) {
            return unexpected(text_error{i, text_fault::digit_too_low});
        }
        place_digit(record, text[i] - '0', static_cast<int>(weight));
    }
    locate_limbs(record);
    return record;
}

/* The digits of value, filled up with leading zeros, into the characters before end. Returns where they
 * begin. */
constexpr char* write_digits_before(char* end, ub4 value, int count) {
    for (int i = 0; i < count; ++i) {
        *--end = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    return end;
}

/* The plain decimal text of 0.DIGITS * 10^integer_digits. */
inline std::string plain_decimal(bool negative, std::string_view digits, std::ptrdiff_t integer_digits) {
    const std::size_t first = digits.find_first_not_of('0');
    if (first == std::string_view::npos) {
        return "0";
    }
    digits = digits.substr(first, digits.find_last_not_of('0') + 1 - first);
    integer_digits -= static_cast<std::ptrdiff_t>(first);

    std::string text = negative ? "-" : "";
    if (integer_digits <= 0) {
        text += "0.";
        text.append(static_cast<std::size_t>(-integer_digits), '0');
        text += digits;
        return text;
    }
    const auto point = static_cast<std::size_t>(integer_digits);
    text += digits.substr(0, point);
    if (digits.size() > point) {
        text += '.';
        text += digits.substr(point);
    } else {
        text.append(point - digits.size(), '0');
    }
    return text;
}

inline std::string infinity_text(bool negative) {
    return negative ? "-inf" : "inf";
}

/* The value of the pairs of a well-formed positive or negative number. */
inline std::string format_pairs(const number_layout& layout) {
    std::array<char, 2 * max_pairs> digits{};
    char* end = digits.data();
    for (const number_byte& byte : layout.bytes) {
        if (byte.role == byte_role::pair) {
            end += 2;
            write_digits_before(end, static_cast<ub4>(byte.pair), 2);
        }
    }
    const auto count = static_cast<std::size_t>(end - digits.data());
    const std::ptrdiff_t integer_pairs = layout.exponent + 1;
    return plain_decimal(layout.kind == number_kind::negative, {digits.data(), count}, 2 * integer_pairs);
}

} // namespace detail

constexpr expected<QZCICalcNumber, text_error> parse_record(std::string_view text) {
    const auto scan = detail::scan_number(text);
    if (!scan) {
        return unexpected(scan.error());
    }
    const detail::scanned_number& number = *scan;
    if (number.end != text.size()) {
        return unexpected(detail::continuation_error(text, number));
    }
    return detail::record_of(text, number);
}

constexpr expected<record_prefix, text_error> parse_record_prefix(std::string_view text) {
    const auto scan = detail::scan_number(text);
    if (!scan) {
        return unexpected(scan.error());
    }
    const detail::scanned_number& number = *scan;
    const auto record = detail::record_of(text, number);
    if (!record) {
        return unexpected(record.error());
    }
    return record_prefix{*record, number.end};
}

inline std::string format_record(const QZCICalcNumber& record) {
    const bool negative = record.num_signed == -1;
    if (record.num_infinity != 0) {
        return detail::infinity_text(negative);
    }
    constexpr std::size_t groups = 1 + QZCI_CALC_LIMBS; /* the carry out of limb 0, then the limbs */
    std::array<char, groups * detail::limb_digits> digits{};
    char* end = digits.data() + digits.size();
    ub8 carry = 0;
    for (int i = QZCI_CALC_LIMBS - 1; i >= 0; --i) {
        const ub8 limb = record.data_part[i] + carry;
        carry = limb / detail::limb_base;
        end =
            detail::write_digits_before(end, static_cast<ub4>(limb % detail::limb_base), detail::limb_digits);
    }
    detail::write_digits_before(end, static_cast<ub4>(carry), detail::limb_digits);
    return detail::plain_decimal(negative, {digits.data(), digits.size()},
                                 detail::limb_digits + detail::highest_weight + 1);
}

inline expected<std::string, number_error> format_number(const OCINumber& number) {
    const auto notes = validate(number);
    if (!notes) {
        return unexpected(notes.error());
    }
    const number_layout layout = layout_of(number);
    switch (layout.kind) {
    case number_kind::positive_infinity:
    case number_kind::negative_infinity:
        return detail::infinity_text(layout.kind == number_kind::negative_infinity);
    case number_kind::positive:
    case number_kind::negative:
        return detail::format_pairs(layout);
    case number_kind::zero:
    case number_kind::bad_length:
        break;
    }
    return "0";
}

inline expected<std::string, number_error> format_number_as_read(const OCINumber& number) {
    QZCICalcNumber record;
    if (QZCICalcNumFromNumber(&record, &number) != OCI_SUCCESS) {
        return unexpected(number_error{0, number_fault::length});
    }
    return format_record(record);
}

} // namespace qzoci

#endif /* QZOCI_DECIMAL_TEXT_HPP */
