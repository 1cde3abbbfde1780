/** @file
 * Records as text, both ways and exactly: parse_calc, from_chars, to_chars, to_string.
 *
 * The text is that of number_text.hpp. A record holds every digit of weight 10^159 to 10^-160.
 */
#ifndef QZOCI_CALC_TEXT_HPP
#define QZOCI_CALC_TEXT_HPP

#include <qzoci/calc.hpp>
#include <qzoci/decimal_text.hpp>
#include <qzoci/number_text.hpp>
#include <qzoci/text_error.hpp>
#include <qzoci/text_format.hpp>

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>

namespace qzoci {

/** The record that the whole text is, in normal form. "-0" is a zero with sign -1.
 * Errors, with the offset of the first bad character: the grammar's, then digit_too_high, digit_too_low. */
constexpr expected<calc, text_error> parse_calc(std::string_view text);

/** As from_chars of numbers; result_out_of_range where a digit other than 0 lies outside the record. */
constexpr std::from_chars_result from_chars(const char* first, const char* last, calc& value);

/** As to_chars of numbers. Every record has a text: see format_record. */
template <std::same_as<calc> Calc>
constexpr std::to_chars_result to_chars(char* first, char* last, const Calc& value,
                                        const text_format& format = {});

/** The record as text: its exact value unless the format asks for a number of digits. */
template <std::same_as<calc> Calc>
std::string to_string(const Calc& value, const text_format& format = {});

/* ---- Definitions ---- */

constexpr expected<calc, text_error> parse_calc(std::string_view text) {
    const auto record = parse_record(text);
    if (!record) {
        return unexpected(record.error());
    }
    return calc(*record);
}

constexpr std::from_chars_result from_chars(const char* first, const char* last, calc& value) {
    return detail::read_prefix(first, last, value.record(), detail::record_of);
}

template <std::same_as<calc> Calc>
constexpr std::to_chars_result to_chars(char* first, char* last, const Calc& value,
                                        const text_format& format) {
    return detail::write_within(first, last, detail::decimal_of(value.record()), format);
}

template <std::same_as<calc> Calc>
std::string to_string(const Calc& value, const text_format& format) {
    return format_record(value.record(), format);
}

} // namespace qzoci

#endif /* QZOCI_CALC_TEXT_HPP */
