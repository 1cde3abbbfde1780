/** @file
 * Numbers as text, both ways and exactly: parse, from_chars, "1.5"_qz; to_chars, to_string.
 *
 * The text of a number, as it is read, letters in either case:
 *
 *     number   = [sign] (decimal [exponent] | "inf")
 *     decimal  = digits ["." [digits]] | "." digits
 *     exponent = "e" [sign] digits
 *     sign     = "+" | "-"
 *
 * No blanks, no separators, no other names of infinity, no locale. Leading and trailing zeros, exponents and texts may be
 * of any length; the value decides whether a number holds it, and a number that does not hold it exactly is an error:
 *   - all digits other than 0 must fit into 20 base-100 pairs: 39 digits always do, 40 where the first one's weight is an
 *     odd power of ten (10, 1000, 0.1 ...);
 *   - the first pair is at most 100^62, so magnitudes are below 10^126;
 *   - the first pair is at least 100^-64 (negative numbers: 100^-65). Values nearer to zero have 00 pairs before their
 *     digits and room for fewer, down to 10^-166 (10^-168).
 * Digits below 10^-160 are kept, though the engine drops them when it reads the number.
 *
 * What is written is the number's exact value unless the format asks for a number of digits, so that without such a
 * request parse(to_string(n)) == n for every well-formed n.
 *
 * Nothing here uses the engine. All but to_string, which allocates, is constexpr and allocates nothing.
 */
#ifndef QZOCI_NUMBER_TEXT_HPP
#define QZOCI_NUMBER_TEXT_HPP

#include <qzoci/decimal_text.hpp>
#include <qzoci/number.hpp>
#include <qzoci/text_error.hpp>
#include <qzoci/text_format.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <exception>
#include <string>
#include <string_view>
#include <system_error>

namespace qzoci {

/* ---- Text in ---- */

/** The number that the whole text is, in canonical form. "-0" is 0.
 *
 * Errors, with the offset of the first bad character. What breaks the grammar comes first: number_expected,
 * digit_expected, exponent_digit_expected, trailing_characters. Then the first digit that is not held: number_too_large,
 * number_too_small, too_many_digits.
 *
 *     if (const auto price = parse(field)) { use(*price); } else { complain(message(price.error())); }
 */
constexpr expected<number, text_error> parse(std::string_view text);

/** As std::from_chars: reads the longest number at the start of the text, as parse does, and leaves value as it was on
 * an error. "1e" and "1ex" give 1 and stop before the e.
 *
 * @return ptr and ec: the first character that is not part of the number, and no error; first, and invalid_argument where
 *     no number stands; the first character behind it, and result_out_of_range where a number does not hold it exactly:
 *     too large, too small or too many digits (parse tells which, and where). */
constexpr std::from_chars_result from_chars(const char* first, const char* last, number& value);

/* ---- Text out ---- */

/** The length of the longest text of a number in the default format: a minus sign, "0." and 168 digits. */
inline constexpr std::size_t max_plain_text_size = 171;

/** As std::to_chars: writes the number, without a NUL behind it, and nothing beyond last.
 *
 * @return ptr and ec: the character behind the text, and no error; last, and value_too_large where the text is longer
 *     than the buffer, which is then as it was; first, and invalid_argument for malformed bytes (see validate). */
constexpr std::to_chars_result to_chars(char* first, char* last, const number& value,
                                        const text_format& format = {});

/** The number as text, for reading: malformed bytes, which have no value, are written as "malformed(02c100)", the hex
 * digits of the length byte and the bytes it counts. Callers who want an error for those use format_number or
 * to_chars. */
inline std::string to_string(const number& value, const text_format& format = {});

/* ---- Text in programs ---- */

inline namespace literals {

/** "1.5"_qz is the number that parse gives, at compile time; a text that parse refuses does not compile. */
consteval number operator""_qz(const char* text, std::size_t size);

} // namespace literals

/* ---- Definitions ---- */

namespace detail {

/* floor(weight / 2): the base-100 exponent of the pair that a digit of this weight belongs to. */
constexpr sb8 pair_exponent(sb8 weight) {
    return weight >= 0 ? weight / 2 : -((1 - weight) / 2);
}

constexpr OCINumber stored_infinity(bool negative) {
    return negative ? OCINumber{{1, 0}} : OCINumber{{2, 255, infinity_mark_byte}};
}

/* The first digit that is neither 0 nor the point; digits_end where there is none. */
constexpr std::size_t first_nonzero_digit(std::string_view text, const scanned_number& scanned) {
    std::size_t i = scanned.digits;
    while (i < scanned.digits_end && (text[i] == '0' || text[i] == '.')) {
        ++i;
    }
    return i;
}

/* The number of a scanned text, or its first digit that does not fit. */
constexpr expected<number, text_error> number_of(std::string_view text, const scanned_number& scanned) {
    if (scanned.infinite) {
        return number(stored_infinity(scanned.negative));
    }
    const std::size_t first = first_nonzero_digit(text, scanned);
    if (first == scanned.digits_end) {
        return number();
    }
    const sb8 exponent =
        std::max<sb8>(pair_exponent(digit_weight(scanned, first)), lowest_exponent(scanned.negative));
    if (exponent > highest_exponent) {
        return unexpected(text_error{first, text_fault::number_too_large});
    }
    std::array<ub1, max_pairs> pairs{};
    for (std::size_t i = first; i < scanned.digits_end; ++i) {
        if (text[i] == '0' || text[i] == '.') {
            continue;
        }
        const sb8 weight = digit_weight(scanned, i);
        const sb8 index = exponent - pair_exponent(weight);
        if (index >= static_cast<sb8>(max_pairs)) {
            return unexpected(
                text_error{i, i == first ? text_fault::number_too_small : text_fault::too_many_digits});
        }
        const int digit = text[i] - '0';
        ub1& pair = pairs[static_cast<std::size_t>(index)];
        pair = static_cast<ub1>(pair + (weight % 2 == 0 ? digit : 10 * digit));
    }
    return number(store_canonical(scanned.negative, static_cast<int>(exponent), pairs));
}

/* from_chars of any value: of_scanned makes it of a scanned text, or tells what does not fit. */
template <typename Value, typename OfScanned>
constexpr std::from_chars_result read_prefix(const char* first, const char* last, Value& value,
                                             OfScanned of_scanned) {
    const std::string_view text(first, static_cast<std::size_t>(last - first));
    const auto scan = scan_number(text);
    if (!scan) {
        return {first, std::errc::invalid_argument};
    }
    const auto parsed = of_scanned(text, *scan);
    if (parsed) {
        value = *parsed;
    }
    return {first + (*scan).end, parsed ? std::errc{} : std::errc::result_out_of_range};
}

/* to_chars of any value. */
constexpr std::to_chars_result write_within(char* first, char* last, decimal_value value,
                                            const text_format& format) {
    const text_layout layout(value, format);
    if (layout.size() > static_cast<std::size_t>(last - first)) {
        return {last, std::errc::value_too_large};
    }
    return {layout.write(first), std::errc{}};
}

/* Not constexpr: a literal that comes here does not compile, and the compiler names this function. */
[[noreturn]] inline void literal_is_not_a_number() {
    std::terminate();
}

} // namespace detail

constexpr expected<number, text_error> parse(std::string_view text) {
    const auto scan = detail::scan_whole_number(text);
    if (!scan) {
        return unexpected(scan.error());
    }
    return detail::number_of(text, *scan);
}

constexpr std::from_chars_result from_chars(const char* first, const char* last, number& value) {
    return detail::read_prefix(first, last, value, detail::number_of);
}

constexpr std::to_chars_result to_chars(char* first, char* last, const number& value,
                                        const text_format& format) {
    if (!detail::is_well_formed(value.oci())) {
        return {first, std::errc::invalid_argument};
    }
    return detail::write_within(first, last, detail::decimal_of_well_formed(value.oci()), format);
}

inline std::string to_string(const number& value, const text_format& format) {
    const auto text = format_number(value.oci(), format);
    return text ? *text : "malformed(" + format_hex(value.oci()) + ")";
}

inline namespace literals {

consteval number operator""_qz(const char* text, std::size_t size) {
    const auto value = parse({text, size});
    if (!value) {
        detail::literal_is_not_a_number();
    }
    return *value;
}

} // namespace literals

} // namespace qzoci

#endif /* QZOCI_NUMBER_TEXT_HPP */
