/** @file
 * Whether a quotient is the mathematical one.
 *
 * The engine's division by a divisor of more than one limb of eight digits gives some quotients that are deliberately not
 * the mathematical ones (docs/where-results-differ.md says which, and how often). This multiplies back in exact integers,
 * without the engine, and tells:
 *
 *     const number quotient = dividend / divisor;
 *     if (check_division(dividend, divisor, quotient) == division_check::different) {
 *         ...
 *     }
 *
 * Constant expressions; no heap, no exceptions, any bytes and any record. A check of stored numbers takes about three
 * microseconds, of records about two.
 */
#ifndef QZOCI_DIVISION_HPP
#define QZOCI_DIVISION_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/calc.hpp>
#include <qzoci/number.hpp>
#include <qzoci/record_operations.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qzoci {

/** How a quotient q relates to the mathematical a / b. The unit is that of the last digit q can have: of the 20th pair for a
 * stored number, 10^-160 for a record. */
enum class division_check : std::uint8_t {
    exact,             /**< q * b is a */
    correctly_rounded, /**< q is a / b rounded half-up in magnitude to its last digit; or the infinity or the zero that
                            take the place of a quotient beyond the form's range */
    last_digit, /**< not that, but nearer to a / b than one unit */
    different,  /**< farther off */
    undefined   /**< there is no a / b: b is zero, or a or b is infinite or malformed */
};

/** In words: "exact", "correctly rounded", "off in the last digit", "different", "undefined". */
constexpr std::string_view describe(division_check check);

/** Checks a quotient of stored numbers.
 *
 * Correctly rounded is what packing would make of the mathematical quotient, all its digits before it: 20 pairs, an
 * infinity from 10^126 on, a zero below 10^-128 (negative: 10^-130). Quotients below 10^-120 the engine computes to fewer
 * than 20 pairs, as its record ends at 10^-160; most of them are `different`. A q of malformed bytes is
 * `different`. */
constexpr division_check check_division(const number& a, const number& b, const number& q) noexcept;

/** Checks a quotient of records; limbs above 99999999 count with their value.
 *
 * Correctly rounded is the mathematical quotient rounded half-up to 10^-160, and an infinity from 10^152 on. A divisor of one
 * limb rounds up only above 50000000 in the first dropped limb, which can be off in the last digit. */
constexpr division_check check_division(const calc& a, const calc& b, const calc& q) noexcept;

/** Whether q * b is a, exactly. Precondition: a kind of value that check_division takes. */
template <exact_value Value>
constexpr bool quotient_is_exact(const Value& a, const Value& b, const Value& q) noexcept {
    return check_division(a, b, q) == division_check::exact;
}

/* ---- Definitions ---- */

namespace detail {

/* The sum of digits[i] * base^(exponent - i). */
template <std::size_t capacity>
struct digit_string {
    std::array<ub4, capacity> digits;
    int exponent;
};

/* Exact sums of digit strings, their multiples and products: a column for every power of the base from base^lowest on.
 * Columns are signed and may hold more than a digit. */
template <std::int64_t base, int lowest, int highest>
class exact_sum {
public:
    /* + multiple * a * base^shift */
    template <std::size_t capacity>
    constexpr void add(const digit_string<capacity>& a, int shift, std::int64_t multiple) {
        for (std::size_t i = 0; i < capacity; ++i) {
            column(a.exponent + shift - static_cast<int>(i)) += multiple * a.digits[i];
        }
    }

    /* + multiple * a * b */
    template <std::size_t capacity>
    constexpr void add_product(const digit_string<capacity>& a, const digit_string<capacity>& b,
                               std::int64_t multiple) {
        for (std::size_t i = 0; i < capacity; ++i) {
            add(b, a.exponent - static_cast<int>(i), multiple * a.digits[i]);
        }
    }

    /* -1, 0 or 1. Carries from the lowest column up until each holds one digit; what is left decides. */
    constexpr int sign() const {
        std::int64_t carry = 0;
        bool any_digit = false;
        for (const std::int64_t column : columns_) {
            const std::int64_t sum = column + carry;
            std::int64_t digit = sum % base;
            carry = sum / base;
            if (digit < 0) {
                digit += base;
                --carry;
            }
            any_digit = any_digit || digit != 0;
        }
        if (carry != 0) {
            return carry < 0 ? -1 : 1;
        }
        return any_digit ? 1 : 0;
    }

private:
    constexpr std::int64_t& column(int exponent) {
        return columns_[static_cast<std::size_t>(exponent - lowest)];
    }

    std::array<std::int64_t, highest - lowest + 1> columns_{};
};

/* Judges q > 0 against a / b > 0, all by magnitude. One unit is base^unit at q and above it, base^unit_below directly
 * below it. No quotient below q is rounded to q where it is the smallest there is. */
template <typename Sum, std::size_t capacity>
constexpr division_check judge(const digit_string<capacity>& a, const digit_string<capacity>& b,
                               const digit_string<capacity>& q, int unit, int unit_below, bool smallest) {
    Sum twice_rest; /* 2 (a - q b) */
    twice_rest.add(a, 0, 2);
    twice_rest.add_product(q, b, -2);
    const int rest_sign = twice_rest.sign();
    if (rest_sign == 0) {
        return division_check::exact;
    }
    const auto sign_beyond = [&](int shift, int units) {
        Sum sum = twice_rest;
        sum.add(b, shift, units);
        return sum.sign();
    };
    const bool rounded_down = rest_sign > 0 && sign_beyond(unit, -1) < 0;
    const bool rounded_up = rest_sign < 0 && !smallest && sign_beyond(unit_below, 1) >= 0;
    if (rounded_down || rounded_up) {
        return division_check::correctly_rounded;
    }
    const bool near = rest_sign > 0 ? sign_beyond(unit, -2) < 0 : sign_beyond(unit_below, 2) > 0;
    return near ? division_check::last_digit : division_check::different;
}

/* ---- Stored numbers: base 100 ---- */

using pair_string = digit_string<max_pairs>;

/* From the unit below the smallest quotient times the last pair of the smallest divisor, to the product of the first pairs. */
using pair_sum =
    exact_sum<100, lowest_exponent(true) - int{max_pairs} + lowest_exponent(true) - int{max_pairs},
              2 * highest_exponent + 1>;

/* The magnitude of a number with pairs. */
constexpr pair_string pairs_of(const number_layout& layout) {
    pair_string pairs{{}, layout.exponent};
    const std::size_t count = pair_count(layout);
    for (std::size_t i = 0; i < count; ++i) {
        pairs.digits[i] = static_cast<ub4>(layout.bytes[first_pair_offset + i].pair);
    }
    return pairs;
}

/* Whether a / b is at or above 100^exponent. */
constexpr bool quotient_reaches(const pair_string& a, const pair_string& b, int exponent) {
    pair_sum difference;
    difference.add(a, 0, 1);
    difference.add(b, exponent, -1);
    return difference.sign() >= 0;
}

/* 1 alone: directly below it the last pair has a hundredth of its weight. */
constexpr bool is_power_of_base(const pair_string& pairs) {
    return pairs.digits[0] == 1 &&
           std::all_of(pairs.digits.begin() + 1, pairs.digits.end(), [](ub4 pair) { return pair == 0; });
}

constexpr bool is_negative(number_kind kind) {
    return kind == number_kind::negative || kind == number_kind::negative_infinity;
}

/* Neither a nor b is zero. */
constexpr division_check check_pairs(const number_layout& a, const number_layout& b, const number_layout& q) {
    const bool negative = is_negative(a.kind) != is_negative(b.kind);
    const pair_string dividend = pairs_of(a);
    const pair_string divisor = pairs_of(b);
    if (q.kind == number_kind::zero) {
        return quotient_reaches(dividend, divisor, lowest_exponent(negative))
                   ? division_check::different
                   : division_check::correctly_rounded;
    }
    if (is_negative(q.kind) != negative) {
        return division_check::different;
    }
    if (!has_pairs(q.kind)) {
        return quotient_reaches(dividend, divisor, highest_exponent + 1) ? division_check::correctly_rounded
                                                                         : division_check::different;
    }
    const pair_string quotient = pairs_of(q);
    const int unit = quotient.exponent - static_cast<int>(max_pairs) + 1;
    const bool only_one = is_power_of_base(quotient);
    const bool smallest = only_one && quotient.exponent == lowest_exponent(negative);
    const division_check check =
        judge<pair_sum>(dividend, divisor, quotient, unit, only_one ? unit - 1 : unit, smallest);
    /* A first pair of 00 has the lowest exponent, and packing makes zero of such a quotient. */
    const bool is_packed = quotient.digits[0] != 0 || check == division_check::exact;
    return is_packed ? check : division_check::different;
}

constexpr bool is_finite_and_well_formed(const number& value) {
    return validate(value).has_value() && !is_infinite(value);
}

/* ---- Records: base 10^8 ---- */

using limb_string = digit_string<QZCI_CALC_LIMBS + 1>;
inline constexpr int lowest_limb = units_limb + 1 - QZCI_CALC_LIMBS;
using limb_sum = exact_sum<record_base, 2 * lowest_limb, 2 * (units_limb + 1)>;

constexpr limb_string limbs_of(const QZCICalcNumber& record) {
    const carried_limbs carried(record);
    limb_string limbs{{}, units_limb + 1};
    for (std::size_t i = 0; i < carried.size(); ++i) {
        limbs.digits[i] = carried[i];
    }
    return limbs;
}

/* Neither a nor b is zero or infinite. */
constexpr division_check check_limbs(const calc& a, const calc& b, const calc& q) {
    const bool negative = (a.record().num_signed == -1) != (b.record().num_signed == -1);
    const limb_string dividend = limbs_of(a.record());
    const limb_string divisor = limbs_of(b.record());
    if (!is_zero(q) && (q.record().num_signed == -1) != negative) {
        return division_check::different;
    }
    if (is_infinite(q)) {
        limb_sum difference;
        difference.add(dividend, 0, 1);
        difference.add(divisor, units_limb, -1);
        return difference.sign() >= 0 ? division_check::correctly_rounded : division_check::different;
    }
    return judge<limb_sum>(dividend, divisor, limbs_of(q.record()), lowest_limb, lowest_limb, false);
}

} // namespace detail

constexpr std::string_view describe(division_check check) {
    switch (check) {
    case division_check::exact:
        return "exact";
    case division_check::correctly_rounded:
        return "correctly rounded";
    case division_check::last_digit:
        return "off in the last digit";
    case division_check::different:
        return "different";
    case division_check::undefined:
        return "undefined";
    }
    return "unknown";
}

constexpr division_check check_division(const number& a, const number& b, const number& q) noexcept {
    if (!detail::is_finite_and_well_formed(a) || !detail::is_finite_and_well_formed(b) || is_zero(b)) {
        return division_check::undefined;
    }
    if (!validate(q)) {
        return division_check::different;
    }
    if (is_zero(a)) {
        return is_zero(q) ? division_check::exact : division_check::different;
    }
    return detail::check_pairs(layout_of(canonical(a).oci()), layout_of(canonical(b).oci()),
                               layout_of(canonical(q).oci()));
}

constexpr division_check check_division(const calc& a, const calc& b, const calc& q) noexcept {
    if (is_infinite(a) || is_infinite(b) || is_zero(b)) {
        return division_check::undefined;
    }
    if (is_zero(a)) {
        return is_zero(q) ? division_check::exact : division_check::different;
    }
    return detail::check_limbs(a, b, q);
}

} // namespace qzoci

#endif /* QZOCI_DIVISION_HPP */
