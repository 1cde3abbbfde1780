/** @file
 * How numbers are written: notation, digits, rounding, grouping; and the writing itself, for numbers and records.
 */
#ifndef QZOCI_TEXT_FORMAT_HPP
#define QZOCI_TEXT_FORMAT_HPP

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace qzoci {

/** With or without an exponent. */
enum class text_notation : std::uint8_t {
    plain,      /**< 12345.678, never an exponent */
    scientific, /**< 1.2345678e4: one digit before the point */
    engineering /**< 12.345678e3: one to three digits before the point, an exponent that 3 divides */
};

/** Which of the two neighbours a value takes that has more digits than are asked for. A value that has not stays as it
 * is in every mode. The examples are rounded to an integer. */
enum class rounding_mode : std::uint8_t {
    ceiling,   /**< the greater one:                     1.1 -> 2,  -1.9 -> -1 */
    floor,     /**< the smaller one:                     1.9 -> 1,  -1.1 -> -2 */
    up,        /**< the one away from zero:              1.1 -> 2,  -1.1 -> -2 */
    down,      /**< the one toward zero:                 1.9 -> 1,  -1.9 -> -1 */
    half_up,   /**< the nearest; away from zero if both: 2.5 -> 3,  -2.5 -> -3; as the engine packs records */
    half_down, /**< the nearest; toward zero if both:    2.5 -> 2,  -2.5 -> -2 */
    half_even, /**< the nearest; the even one if both:   2.5 -> 2,   3.5 -> 4 */
    zero_five_up /**< toward zero, but away from it where the last digit kept would be 0 or 5: 1.9 -> 1, 5.1 -> 6,
                      0.1 -> 1; a result that is rounded again, to fewer digits, is then as if rounded once */
};

/** How many digits a text has: exactly that many, with zeros at the end where the value has fewer. */
struct digit_request {
    /** Which digits are counted. */
    enum class counting : std::uint8_t {
        all, /**< as many as the value needs: nothing is rounded, no zeros at the end of a fraction */
        fraction, /**< the digits after the point; in scientific and engineering notation those before the exponent */
        significant /**< the digits from the first one that is not 0; integers keep their place: 12345 -> 12000 */
    };

    /** Which digits count says the number of. */
    counting counted = counting::all;
    int count = 0; /**< at least 0, or 1 for significant digits; a smaller count counts as that */

    friend constexpr bool operator==(const digit_request&, const digit_request&) = default;
};

/** Exactly count digits after the point. */
constexpr digit_request fraction_digits(int count) {
    return {digit_request::counting::fraction, count};
}

/** Exactly count digits from the first one that is not 0. */
constexpr digit_request significant_digits(int count) {
    return {digit_request::counting::significant, count};
}

/** How a number is written. The default is its exact value in plain notation: "-12.5", "0.001", "100000".
 *
 *     to_string(price, {.digits = fraction_digits(2), .rounding = rounding_mode::half_even, .group_separator = ','})
 *
 * In every format: one digit at least stands before the point, no point without a digit behind it, no plus sign (of
 * the exponent neither), "0" has no minus sign, a value rounded to zero neither; "inf" and "-inf" are the
 * infinities. */
struct text_format {
    /** With or without an exponent. */
    text_notation notation = text_notation::plain;
    /** How many digits; all that the value needs unless asked for. */
    digit_request digits{};
    rounding_mode rounding = rounding_mode::half_up; /**< looked at only where digits have to go */
    char group_separator = '\0'; /**< between groups of digits before the point; NUL: none */
    int group_size = 3;          /**< digits in a group; below 1: no groups */
    bool upper_case = false;     /**< "1E5" and "INF" */

    friend constexpr bool operator==(const text_format&, const text_format&) = default;
};

/* ---- Definitions ---- */

namespace detail {

/* A record with limbs above its base has that many digits, a carry out of its first limb included. */
inline constexpr std::size_t max_decimal_digits = 328;

/* A value taken apart: 0.DIGITS * 10^point. Between calls neither the first nor the last digit is 0; a zero has no
 * digits. */
struct decimal_value {
    bool negative = false;
    bool infinite = false;
    std::ptrdiff_t point = 0;
    std::size_t first = 0; /* where in the buffer the digits begin */
    std::size_t count = 0;
    std::array<char, max_decimal_digits> buffer; /* beyond the digits: indeterminate */

    constexpr decimal_value() {
        if (std::is_constant_evaluated()) { /* where indeterminate characters cannot be copied */
            buffer.fill('0');
        }
    }

    constexpr std::string_view digits() const { return {buffer.data() + first, count}; }

    constexpr bool is_zero() const { return count == 0 && !infinite; }
};

constexpr void drop_trailing_zeros(decimal_value& value) {
    while (value.count > 0 && value.buffer[value.first + value.count - 1] == '0') {
        --value.count;
    }
}

/* Establishes what holds between calls, from any digits. */
constexpr void trim(decimal_value& value) {
    while (value.count > 0 && value.buffer[value.first] == '0') {
        ++value.first;
        --value.count;
        --value.point;
    }
    drop_trailing_zeros(value);
}

/* ---- Rounding ---- */

/* What decides about a rounding. */
struct rounding_case {
    bool negative;
    char last_kept; /* the digit before those dropped */
    char first_dropped;
    bool more_dropped; /* whether a digit other than 0 follows the first one dropped */
};

/* Whether the magnitude takes its upper neighbour. Precondition: a digit other than 0 is dropped. */
constexpr bool rounds_away(rounding_mode mode, const rounding_case& dropped) {
    const bool above_half =
        dropped.first_dropped > '5' || (dropped.first_dropped == '5' && dropped.more_dropped);
    const bool half = dropped.first_dropped == '5' && !dropped.more_dropped;
    switch (mode) {
    case rounding_mode::ceiling:
        return !dropped.negative;
    case rounding_mode::floor:
        return dropped.negative;
    case rounding_mode::up:
        return true;
    case rounding_mode::down:
        return false;
    case rounding_mode::half_up:
        return above_half || half;
    case rounding_mode::half_down:
        return above_half;
    case rounding_mode::half_even:
        return above_half || (half && (dropped.last_kept - '0') % 2 != 0);
    case rounding_mode::zero_five_up:
        return dropped.last_kept == '0' || dropped.last_kept == '5';
    }
    return false;
}

/* Adds 1 at the last digit, or at the place behind the point where there is none. */
constexpr void add_one_at_end(decimal_value& value) {
    while (value.count > 0 && value.buffer[value.first + value.count - 1] == '9') {
        --value.count;
    }
    if (value.count == 0) {
        value.buffer[value.first] = '1';
        value.count = 1;
        ++value.point;
    } else {
        ++value.buffer[value.first + value.count - 1];
    }
}

/* Rounds to the first `kept` digits; to a multiple of 10^(point - kept) where that is 0 or less. */
constexpr void round_to(decimal_value& value, std::ptrdiff_t kept, rounding_mode mode) {
    if (kept >= static_cast<std::ptrdiff_t>(value.count)) {
        return;
    }
    if (kept < 0) { /* the first place dropped is left of all digits: let it hold a 0 of theirs */
        const rounding_case dropped{value.negative, '0', '0', true};
        value.count = 0;
        value.point -= kept;
        if (rounds_away(mode, dropped)) {
            add_one_at_end(value);
        }
    } else {
        const auto cut = static_cast<std::size_t>(kept);
        const std::string_view digits = value.digits();
        const rounding_case dropped{value.negative, cut == 0 ? '0' : digits[cut - 1], digits[cut],
                                    cut + 1 < value.count};
        value.count = cut;
        if (rounds_away(mode, dropped)) {
            add_one_at_end(value);
        } else {
            drop_trailing_zeros(value);
        }
    }
    value.negative = value.negative && value.count > 0;
}

/* ---- Layout: where the digits, the point and the exponent stand ---- */

/* 3 * floor(exponent / 3). */
constexpr std::ptrdiff_t engineering_exponent(std::ptrdiff_t exponent) {
    const std::ptrdiff_t remainder = exponent % 3;
    return exponent - (remainder < 0 ? remainder + 3 : remainder);
}

/* The exponent written behind the digits; 0 in plain notation. */
constexpr std::ptrdiff_t exponent_of(const decimal_value& value, text_notation notation) {
    if (notation == text_notation::plain || value.count == 0) {
        return 0;
    }
    const std::ptrdiff_t exponent = value.point - 1;
    return notation == text_notation::scientific ? exponent : engineering_exponent(exponent);
}

/* The digits before the point; 0 or less for a value whose first digit stands behind it. A zero is a single digit. */
constexpr std::ptrdiff_t integer_digits_of(const decimal_value& value, text_notation notation) {
    return value.count == 0 ? 1 : value.point - exponent_of(value, notation);
}

/* Rounds as the format asks. */
constexpr void round_as(decimal_value& value, const text_format& format) {
    const std::ptrdiff_t count = format.digits.count;
    if (value.count == 0 || format.digits.counted == digit_request::counting::all) {
        return;
    }
    const bool significant = format.digits.counted == digit_request::counting::significant;
    const std::ptrdiff_t kept =
        significant ? std::max<std::ptrdiff_t>(count, 1)
                    : integer_digits_of(value, format.notation) + std::max<std::ptrdiff_t>(count, 0);
    round_to(value, kept, format.rounding);
}

/* The digits behind the point, of a value already rounded. */
constexpr std::ptrdiff_t fraction_digits_of(const decimal_value& value, const text_format& format) {
    const std::ptrdiff_t integer_digits = integer_digits_of(value, format.notation);
    std::ptrdiff_t count = format.digits.count;
    switch (format.digits.counted) {
    case digit_request::counting::fraction:
        break;
    case digit_request::counting::significant:
        count = std::max<std::ptrdiff_t>(count, 1) - integer_digits;
        break;
    case digit_request::counting::all:
        count = static_cast<std::ptrdiff_t>(value.count) - integer_digits;
        break;
    }
    return std::max<std::ptrdiff_t>(count, 0);
}

constexpr std::size_t decimal_length(std::size_t number) {
    std::size_t length = 1;
    for (; number >= 10; number /= 10) {
        ++length;
    }
    return length;
}

/* A value ready to be written: rounded, its size known. */
class text_layout {
public:
    /* Rounds the value, which must live as long as the layout. */
    constexpr text_layout(decimal_value& value, const text_format& format) : value_(value), format_(format) {
        round_as(value, format);
        integer_digits_ = integer_digits_of(value, format.notation);
        fraction_digits_ = static_cast<std::size_t>(fraction_digits_of(value, format));
        exponent_ = exponent_of(value, format.notation);
    }

    constexpr bool negative() const { return value_.negative; }

    constexpr bool infinite() const { return value_.infinite; }

    /* Characters without the minus sign. */
    constexpr std::size_t magnitude_size() const {
        if (value_.infinite) {
            return infinity_name.size();
        }
        const std::size_t fraction = fraction_digits_ > 0 ? 1 + fraction_digits_ : 0;
        return integer_places() + group_separators() + fraction + exponent_size();
    }

    constexpr std::size_t size() const { return (value_.negative ? 1U : 0U) + magnitude_size(); }

    /* Writes magnitude_size() characters. */
    template <typename Output>
    constexpr Output write_magnitude(Output out) const {
        if (value_.infinite) {
            return std::copy_n(format_.upper_case ? "INF" : infinity_name.data(), infinity_name.size(), out);
        }
        out = write_integer(out);
        if (fraction_digits_ > 0) {
            *out++ = '.';
            out = write_places(out, integer_digits_, fraction_digits_);
        }
        return format_.notation == text_notation::plain ? out : write_exponent(out);
    }

    /* Writes size() characters. */
    template <typename Output>
    constexpr Output write(Output out) const {
        if (value_.negative) {
            *out++ = '-';
        }
        return write_magnitude(out);
    }

private:
    static constexpr std::string_view infinity_name = "inf";

    constexpr std::size_t integer_places() const {
        return static_cast<std::size_t>(std::max<std::ptrdiff_t>(integer_digits_, 1));
    }

    constexpr bool is_grouped() const { return format_.group_separator != '\0' && format_.group_size > 0; }

    constexpr std::size_t group_separators() const {
        return is_grouped() ? (integer_places() - 1) / static_cast<std::size_t>(format_.group_size) : 0;
    }

    constexpr std::size_t exponent_magnitude() const {
        return static_cast<std::size_t>(exponent_ < 0 ? -exponent_ : exponent_);
    }

    constexpr std::size_t exponent_size() const {
        if (format_.notation == text_notation::plain) {
            return 0;
        }
        return 1U + (exponent_ < 0 ? 1U : 0U) + decimal_length(exponent_magnitude());
    }

    /* Writes the count places from the given one on, places counted from the first digit: zeros left of all digits and
     * behind them. */
    template <typename Output>
    constexpr Output write_places(Output out, std::ptrdiff_t from, std::size_t count) const {
        const std::size_t left = from < 0 ? std::min(count, static_cast<std::size_t>(-from)) : 0;
        out = std::fill_n(out, left, '0');
        const std::size_t begin =
            std::min(value_.count, static_cast<std::size_t>(std::max<std::ptrdiff_t>(from, 0)));
        const std::size_t digits = std::min(value_.count - begin, count - left);
        out = std::copy_n(value_.digits().data() + begin, digits, out);
        return std::fill_n(out, count - left - digits, '0');
    }

    template <typename Output>
    constexpr Output write_integer(Output out) const {
        const std::size_t places = integer_places();
        if (integer_digits_ <= 0) {
            *out++ = '0';
            return out;
        }
        if (!is_grouped()) {
            return write_places(out, 0, places);
        }
        const auto group = static_cast<std::size_t>(format_.group_size);
        std::size_t end = places - (places - 1) / group * group; /* of the first group */
        out = write_places(out, 0, end);
        for (; end < places; end += group) {
            *out++ = format_.group_separator;
            out = write_places(out, static_cast<std::ptrdiff_t>(end), group);
        }
        return out;
    }

    template <typename Output>
    constexpr Output write_exponent(Output out) const {
        *out++ = format_.upper_case ? 'E' : 'e';
        if (exponent_ < 0) {
            *out++ = '-';
        }
        std::array<char, 20> digits{};
        std::size_t begin = digits.size();
        std::size_t rest = exponent_magnitude();
        do {
            digits[--begin] = static_cast<char>('0' + rest % 10);
            rest /= 10;
        } while (rest > 0);
        return std::copy_n(digits.data() + begin, digits.size() - begin, out);
    }

    const decimal_value& value_;
    text_format format_;
    std::ptrdiff_t integer_digits_ = 0;
    std::size_t fraction_digits_ = 0;
    std::ptrdiff_t exponent_ = 0;
};

} // namespace detail

} // namespace qzoci

#endif /* QZOCI_TEXT_FORMAT_HPP */
