#include "tests/text/exact_value.h"

#include <regex>

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

bool is_plain_decimal(const std::string& text) {
    static const std::regex form("0|-?(0\\.[0-9]*[1-9]|[1-9][0-9]*(\\.[0-9]*[1-9])?)");
    return std::regex_match(text, form);
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
