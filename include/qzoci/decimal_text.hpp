/* Decimal text of records and stored numbers, in and out. No digit is ever cut on the way in, and on the way out only
 * where a format asks for a number of digits. */
#ifndef QZOCI_DECIMAL_TEXT_HPP
#define QZOCI_DECIMAL_TEXT_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/expected.hpp>
#include <qzoci/hex_text.hpp>
#include <qzoci/number_bytes.hpp>
#include <qzoci/record_operations.hpp>
#include <qzoci/text_error.hpp>
#include <qzoci/text_format.hpp>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace qzoci {

/* ---- Text in ----
 *
 *     number   = [sign] (decimal [exponent] | "inf")
 *     decimal  = digits ["." [digits]] | "." digits
 *     exponent = "e" [sign] digits
 *     sign     = "+" | "-"
 *
 * Digits are the ASCII ones; letters count in either case. No blanks, no digit separators, no other names of
 * infinity. Text and exponent may be of any length. Zero digits may stand anywhere; the other ones must fit what the
 * number goes into.
 *
 * What breaks the grammar comes first (number_expected, digit_expected, exponent_digit_expected,
 * trailing_characters), then the first digit that does not fit. */

/* The whole text as one record, in normal form. A non-zero digit must have a weight of 10^159 to 10^-160. A zero keeps
 * the sign written before it, so "-0" is a zero with sign -1.
 * Errors: the grammar; digit_too_high, digit_too_low. */
constexpr expected<QZCICalcNumber, text_error> parse_record(std::string_view text);

/* A record read from the start of a text, and where it ended. */
struct record_prefix {
    /* The number, in normal form. */
    QZCICalcNumber record;
    std::size_t length; /* characters consumed, at least 1 */
};

/* The longest number at the start of the text; whatever follows is not looked at: "1e" and "1ex" give 1 and
 * the length 1, "1.5.2" gives 1.5 and 3, "infinite" gives an infinity and 3. A sign is part of the number: a
 * caller with unary operators of its own takes the sign first. Errors: number_expected, digit_expected; a
 * number with a digit that does not fit is digit_too_high or digit_too_low, never a shorter number. */
constexpr expected<record_prefix, text_error> parse_record_prefix(std::string_view text);

/* ---- Out to text ---- */

/* The value of any record: limbs above 99999999 carry, so there can be 162 digits before the point. Looks at limbs,
 * sign and infinity flag alone, as QZCICalcNumInit does: positions and the zero flag are not trusted, a sign other than
 * -1 counts as positive, an infinity flag other than 0 hides the limbs. */
inline std::string format_record(const QZCICalcNumber& record, const text_format& format = {});

/* The value of well-formed bytes, also of pairs below 10^-160, which the engine would drop. Not canonical is not wrong
 * here. Errors: those of validate. */
inline expected<std::string, number_error> format_number(const OCINumber& number,
                                                         const text_format& format = {});

/* The value the engine reads from any bytes: format_record of what QZCICalcNumFromNumber makes of them.
 * Error: a bad length byte alone. The bytes are unpacked by the engine, which may write log lines about it.
 */
inline expected<std::string, number_error> format_number_as_read(const OCINumber& number,
                                                                 const text_format& format = {});

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

/* The text as one number, to its end. */
constexpr expected<scanned_number, text_error> scan_whole_number(std::string_view text) {
    const auto number = scan_number(text);
    if (number && (*number).end != text.size()) {
        return unexpected(continuation_error(text, *number));
    }
    return number;
}

/* 10^weight is what a one at this position of the text counts. */
constexpr sb8 digit_weight(const scanned_number& number, std::size_t position) {
    const auto distance = static_cast<sb8>(number.point) - static_cast<sb8>(position);
    return number.exponent + (distance > 0 ? distance - 1 : distance);
}

/* ---- Into a record ---- */

/* Adds digit * 10^weight. Precondition: weight inside the record, the digit's place still zero. */
constexpr void place_digit(QZCICalcNumber& record, int digit, int weight) {
    const int place = highest_weight - weight;
    ub4 value = static_cast<ub4>(digit);
    for (int i = place % limb_digits; i < limb_digits - 1; ++i) {
        value *= 10;
    }
    record.data_part[place / limb_digits] += value;
}

/* The record of a scanned number, or its first digit that does not fit. */
constexpr expected<QZCICalcNumber, text_error> record_of(std::string_view text,
                                                         const scanned_number& number) {
    const sb1 sign = number.negative ? sb1{-1} : sb1{1};
    if (number.infinite) {
        return infinite_record(sign);
    }
    QZCICalcNumber record = zero_record;
    record.num_signed = sign;
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
    normalise(record);
    return record;
}

/* ---- Out to text ---- */

/* Writes the last `count` digits of value, filled up with leading zeros. */
constexpr void write_digits(char* out, ub4 value, int count) {
    for (int i = count - 1; i >= 0; --i) {
        out[i] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
}

/* See format_record for what it looks at. */
constexpr decimal_value decimal_of(const QZCICalcNumber& record) {
    decimal_value value;
    value.negative = record.num_signed == -1;
    value.infinite = record.num_infinity != 0;
    if (value.infinite) {
        return value;
    }
    value.count = max_decimal_digits;
    value.point = limb_digits + highest_weight + 1;
    char* out = value.buffer.data() + value.count;
    ub8 carry = 0;
    for (int i = QZCI_CALC_LIMBS - 1; i >= 0; --i) {
        const ub8 limb = record.data_part[i] + carry;
        carry = limb / limb_base;
        out -= limb_digits;
        write_digits(out, static_cast<ub4>(limb % limb_base), limb_digits);
    }
    write_digits(value.buffer.data(), static_cast<ub4>(carry), limb_digits);
    trim(value);
    value.negative = value.negative && value.count > 0;
    return value;
}

/* Precondition: the bytes are well-formed. */
constexpr decimal_value decimal_of_well_formed(const OCINumber& number) {
    decimal_value value;
    const number_kind kind = kind_of(number);
    value.negative = kind == number_kind::negative || kind == number_kind::negative_infinity;
    value.infinite = kind == number_kind::positive_infinity || kind == number_kind::negative_infinity;
    if (!has_pairs(kind)) {
        return value;
    }
    const auto& bytes = number.OCINumberPart;
    const int end = bytes[0] + (value.negative && ends_in_terminator(number) ? 0 : 1);
    char* out = value.buffer.data();
    for (int offset = first_pair_offset; offset < end; ++offset) {
        const int byte = bytes[offset];
        write_digits(out, static_cast<ub4>(value.negative ? 101 - byte : byte - 1), 2);
        out += 2;
    }
    value.count = static_cast<std::size_t>(out - value.buffer.data());
    value.point = 2 * (exponent_of(kind, bytes[1]) + 1);
    trim(value);
    value.negative = value.negative && value.count > 0;
    return value;
}

inline std::string text_of(decimal_value& value, const text_format& format) {
    const text_layout layout(value, format);
    std::string text(layout.size(), '\0');
    layout.write(text.data());
    return text;
}

} // namespace detail

constexpr expected<QZCICalcNumber, text_error> parse_record(std::string_view text) {
    const auto scan = detail::scan_whole_number(text);
    if (!scan) {
        return unexpected(scan.error());
    }
    return detail::record_of(text, *scan);
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

inline std::string format_record(const QZCICalcNumber& record, const text_format& format) {
    detail::decimal_value value = detail::decimal_of(record);
    return detail::text_of(value, format);
}

inline expected<std::string, number_error> format_number(const OCINumber& number, const text_format& format) {
    if (!detail::is_well_formed(number)) {
        return unexpected(validate(number).error());
    }
    detail::decimal_value value = detail::decimal_of_well_formed(number);
    return detail::text_of(value, format);
}

inline expected<std::string, number_error> format_number_as_read(const OCINumber& number,
                                                                 const text_format& format) {
    QZCICalcNumber record;
    if (QZCICalcNumFromNumber(&record, &number) != OCI_SUCCESS) {
        return unexpected(number_error{0, number_fault::length});
    }
    return format_record(record, format);
}

} // namespace qzoci

#endif /* QZOCI_DECIMAL_TEXT_HPP */
