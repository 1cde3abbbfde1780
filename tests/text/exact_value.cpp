#include "tests/text/exact_value.h"

#include <algorithm>
#include <string>

namespace qzoci::test {

mpz_class power_of_ten(int exponent) {
    mpz_class power;
    mpz_ui_pow_ui(power.get_mpz_t(), 10, static_cast<unsigned long>(exponent));
    return power;
}

mpz_class value_of_limbs(const QZCICalcNumber& record) {
    mpz_class value = 0;
    for (const ub4 limb : record.data_part) {
        value = value * 100000000 + limb;
    }
    return value * power_of_ten(unit_digits - 160) * record.num_signed;
}

mpz_class value_of_pairs(std::span<const int> pairs, int exponent) {
    mpz_class value = 0;
    int weight = exponent;
    for (const int pair : pairs) {
        value += pair * power_of_ten(unit_digits + 2 * weight);
        --weight;
    }
    return value;
}

bool is_plain_decimal(std::string_view text) {
    if (text == "0") {
        return true;
    }
    if (text.starts_with('-')) {
        text.remove_prefix(1);
    }
    const auto all_digits = [](std::string_view part) {
        return !part.empty() &&
               std::all_of(part.begin(), part.end(), [](char c) { return c >= '0' && c <= '9'; });
    };
    const std::string_view integer = text.substr(0, text.find('.'));
    const std::string_view fraction = integer.size() < text.size() ? text.substr(integer.size() + 1) : "";
    const bool fraction_is_short = integer == text || (all_digits(fraction) && !fraction.ends_with('0'));
    const bool integer_is_short = integer == "0" ? integer != text : !integer.starts_with('0');
    return all_digits(integer) && integer_is_short && fraction_is_short;
}

mpz_class value_of_plain_decimal(std::string_view text) {
    std::string digits(text);
    int fraction_digits = 0;
    if (const auto point = digits.find('.'); point != std::string::npos) {
        digits.erase(point, 1);
        fraction_digits = static_cast<int>(digits.size() - point);
    }
    return mpz_class(digits, 10) * power_of_ten(unit_digits - fraction_digits);
}

} // namespace qzoci::test
