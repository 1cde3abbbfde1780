#include "tests/text/reference_text.h"

#include "tests/text/exact_value.h"

#include <algorithm>
#include <cstddef>

namespace qzoci::test {

namespace {

using counting = digit_request::counting;

/* The greatest e with 10^e <= |value|, of a value in units of 10^-200; 0 for a zero. */
int decimal_exponent(const mpz_class& value) {
    const mpz_class magnitude = abs(value);
    return magnitude == 0 ? 0 : static_cast<int>(magnitude.get_str().size()) - 1 - unit_digits;
}

int shown_exponent(const mpz_class& value, text_notation notation) {
    int exponent = notation == text_notation::plain ? 0 : decimal_exponent(value);
    while (notation == text_notation::engineering && exponent % 3 != 0) {
        --exponent;
    }
    return exponent;
}

/* The lowest decimal weight that the format keeps. */
int lowest_kept_weight(const mpz_class& value, const text_format& format) {
    return format.digits.counted == counting::fraction
               ? shown_exponent(value, format.notation) - format.digits.count
               : decimal_exponent(value) - format.digits.count + 1;
}

std::string with_separators(std::string integer, const text_format& format) {
    if (format.group_separator != '\0' && format.group_size > 0) {
        const auto size = static_cast<std::size_t>(format.group_size);
        for (std::size_t end = integer.size(); end > size;) {
            end -= size;
            integer.insert(end, 1, format.group_separator);
        }
    }
    return integer;
}

void set_fraction_size(std::string& fraction, const mpz_class& value, const text_format& format,
                       int exponent) {
    switch (format.digits.counted) {
    case counting::all:
        fraction.erase(fraction.find_last_not_of('0') + 1);
        break;
    case counting::fraction:
        fraction.resize(static_cast<std::size_t>(format.digits.count), '0');
        break;
    case counting::significant:
        const int before_point = decimal_exponent(value) - exponent + 1;
        fraction.resize(static_cast<std::size_t>(std::max(format.digits.count - before_point, 0)), '0');
        break;
    }
}

} // namespace

mpz_class rounded(const mpz_class& value, const mpz_class& unit, rounding_mode mode) {
    mpz_class below;
    mpz_class rest;
    mpz_fdiv_qr(below.get_mpz_t(), rest.get_mpz_t(), value.get_mpz_t(), unit.get_mpz_t());
    if (rest == 0) {
        return value;
    }
    mpz_class above = below + 1;
    const mpz_class& outer = value < 0 ? below : above;
    const mpz_class& inner = value < 0 ? above : below;
    const auto nearest = [&](const mpz_class& when_both) {
        const mpz_class twice = 2 * rest;
        return twice == unit ? when_both : twice < unit ? below : above;
    };
    const auto chosen = [&]() -> mpz_class {
        switch (mode) {
        case rounding_mode::ceiling:
            return above;
        case rounding_mode::floor:
            return below;
        case rounding_mode::up:
            return outer;
        case rounding_mode::down:
            return inner;
        case rounding_mode::half_up:
            return nearest(outer);
        case rounding_mode::half_down:
            return nearest(inner);
        case rounding_mode::half_even:
            return nearest(mpz_even_p(below.get_mpz_t()) != 0 ? below : above);
        case rounding_mode::zero_five_up:
            break;
        }
        return mpz_divisible_ui_p(inner.get_mpz_t(), 5) != 0 ? outer : inner;
    };
    return chosen() * unit;
}

std::string reference_text(const mpz_class& exact, const text_format& format) {
    mpz_class value = exact;
    const int lowest = lowest_kept_weight(value, format);
    if (value != 0 && format.digits.counted != counting::all && lowest > -unit_digits) {
        value = rounded(value, power_of_ten(unit_digits + lowest), format.rounding);
    }
    const int exponent = shown_exponent(value, format.notation);
    std::string digits = mpz_class(abs(value)).get_str();
    const int behind_point = unit_digits + exponent;
    const auto places_behind_point = static_cast<std::size_t>(behind_point);
    if (digits.size() <= places_behind_point) {
        digits.insert(0, places_behind_point + 1 - digits.size(), '0');
    }
    std::string fraction = digits.substr(digits.size() - places_behind_point);
    set_fraction_size(fraction, value, format, exponent);
    std::string text = value < 0 ? "-" : "";
    text += with_separators(digits.substr(0, digits.size() - places_behind_point), format);
    text += fraction.empty() ? "" : "." + fraction;
    if (format.notation != text_notation::plain) {
        text += (format.upper_case ? "E" : "e") + std::to_string(exponent);
    }
    return text;
}

text_format random_format(std::mt19937_64& random) {
    text_format format;
    format.notation = static_cast<text_notation>(random() % 3);
    format.rounding = static_cast<rounding_mode>(random() % 8);
    switch (random() % 3) {
    case 0:
        format.digits = fraction_digits(static_cast<int>(random() % (random() % 4 == 0 ? 180 : 8)));
        break;
    case 1:
        format.digits = significant_digits(static_cast<int>(1 + random() % (random() % 4 == 0 ? 180 : 8)));
        break;
    default:
        break;
    }
    format.group_separator = ",\0_\0"[random() % 4];
    format.group_size = static_cast<int>(1 + random() % 4);
    format.upper_case = random() % 2 == 0;
    return format;
}

std::string description(const text_format& format) {
    return "notation " + std::to_string(static_cast<int>(format.notation)) + ", digits " +
           std::to_string(static_cast<int>(format.digits.counted)) + ":" +
           std::to_string(format.digits.count) + ", rounding " +
           std::to_string(static_cast<int>(format.rounding)) + ", group '" +
           (format.group_separator == '\0' ? ' ' : format.group_separator) + "' of " +
           std::to_string(format.group_size);
}

} // namespace qzoci::test
