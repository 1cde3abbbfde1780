/** @file
 * Numbers, records and doubles, by name only: nothing converts by itself.
 *
 * Needs a standard library with std::from_chars and std::to_chars of floating-point numbers.
 */
#ifndef QZOCI_DOUBLE_HPP
#define QZOCI_DOUBLE_HPP

#include <qzoci/calc.hpp>
#include <qzoci/decimal_text.hpp>
#include <qzoci/expected.hpp>
#include <qzoci/number.hpp>
#include <qzoci/number_text.hpp>
#include <qzoci/text_format.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace qzoci {

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<double>::digits == 53);

/** Why a double has no number, or a number no double. */
enum class double_fault : std::uint8_t {
    not_a_number,    /**< a NaN */
    too_large,       /**< a magnitude of 10^126 or above, finite */
    too_small,       /**< all its digits are below those of a stored number; not zero */
    too_many_digits, /**< more digits than 20 base-100 pairs hold */
    malformed        /**< bytes of a number that have no value; see validate */
};

/** The fault in words. */
constexpr std::string_view describe(double_fault fault);

/** The error in words, for value_or_throw. */
inline std::string message(double_fault fault);

/** The double nearest to the number; of two equally near ones the one whose last bit is 0. Infinities stay; zero is +0.
 * No other number is too large or too small for a double, or loses bits for being near zero.
 * Error: malformed. */
inline expected<double, double_fault> to_double(const number& value);

/** The double nearest to the record, as that of a number. Every record has one. */
template <std::same_as<calc> Calc>
double to_double(const Calc& value);

/** The value of the double, to its last bit, in canonical form: 0.1 has 55 digits and is too_many_digits, 0.5 and 2^120
 * are numbers. Nothing is ever rounded. A zero of either sign is 0, infinities stay.
 * Errors: not_a_number, too_large, too_small, too_many_digits. */
inline expected<number, double_fault> from_double_exact(double value);

/** The decimal with the fewest digits that is nearer to this double than to any other: the number that was meant where
 * the double was read from a decimal of up to 15 digits. 0.1 is "0.1". to_double gives the double back. A zero of either
 * sign is 0, infinities stay.
 * Errors: not_a_number, too_large, too_small; too_many_digits below 10^-149 only, where numbers have fewer. */
inline expected<number, double_fault> from_double_shortest(double value);

/* ---- Definitions ---- */

namespace detail {

constexpr double_fault double_fault_of(text_fault fault) {
    switch (fault) {
    case text_fault::number_too_large:
        return double_fault::too_large;
    case text_fault::number_too_small:
        return double_fault::too_small;
    default:
        return double_fault::too_many_digits;
    }
}

inline double nearest_double(decimal_value value) {
    /* A sign, all digits and a point, "e-160". */
    std::array<char, max_decimal_digits + 8> text{};
    const text_layout layout(value, {.notation = text_notation::scientific});
    const char* const end = layout.write(text.data());
    double nearest = 0;
    std::from_chars(text.data(), end, nearest);
    return nearest;
}

/* The number in the text of a double. */
inline expected<number, double_fault> number_in(std::string_view text) {
    const auto value = parse(text);
    if (!value) {
        return unexpected(double_fault_of(value.error().fault));
    }
    return *value;
}

} // namespace detail

constexpr std::string_view describe(double_fault fault) {
    switch (fault) {
    case double_fault::not_a_number:
        return "not a number";
    case double_fault::too_large:
        return "at or above 10^126, too large to be stored";
    case double_fault::too_small:
        return "nearer to zero than any number that can be stored";
    case double_fault::too_many_digits:
        return "more digits than the 20 digit pairs that can be stored";
    case double_fault::malformed:
        return "malformed bytes";
    }
    return "unknown fault";
}

inline std::string message(double_fault fault) {
    return std::string(describe(fault));
}

inline expected<double, double_fault> to_double(const number& value) {
    if (!detail::is_well_formed(value.oci())) {
        return unexpected(double_fault::malformed);
    }
    return detail::nearest_double(detail::decimal_of_well_formed(value.oci()));
}

template <std::same_as<calc> Calc>
double to_double(const Calc& value) {
    return detail::nearest_double(detail::decimal_of(value.record()));
}

inline expected<number, double_fault> from_double_exact(double value) {
    if (std::isnan(value)) {
        return unexpected(double_fault::not_a_number);
    }
    /* The smallest doubles have 767 digits, the first of them before the point. */
    constexpr int all_digits = 766;
    std::array<char, all_digits + 16> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::scientific, all_digits);
    return detail::number_in({text.data(), static_cast<std::size_t>(end.ptr - text.data())});
}

inline expected<number, double_fault> from_double_shortest(double value) {
    if (std::isnan(value)) {
        return unexpected(double_fault::not_a_number);
    }
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific);
    return detail::number_in({text.data(), static_cast<std::size_t>(end.ptr - text.data())});
}

} // namespace qzoci

#endif /* QZOCI_DOUBLE_HPP */
