#include "tests/qznum/model.h"

#include "tests/text/exact_value.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace qzoci::test {

namespace {

constexpr int fraction_digits = 160;

Operand operand_of_signed_units(const mpz_class& units) {
    return operand_of_units(abs(units), units < 0 ? sb1{-1} : sb1{1});
}

std::string hex_of(const std::vector<ub1>& bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string hex;
    for (const ub1 byte : bytes) {
        hex += digits[byte >> 4U];
        hex += digits[byte & 0xfU];
    }
    return hex;
}

} // namespace

Operand operand_of_decimal(std::string_view decimal) {
    if (decimal.ends_with("inf")) {
        return infinite_operand(decimal.starts_with('-') ? sb1{-1} : sb1{1});
    }
    const mpz_class scale = power_of_ten(unit_digits - fraction_digits);
    return operand_of_signed_units(value_of_plain_decimal(decimal) / scale);
}

mpq_class rational_of_decimal(std::string_view decimal) {
    const std::size_t mark = decimal.find('e');
    mpq_class value(value_of_plain_decimal(decimal.substr(0, mark)), power_of_ten(unit_digits));
    if (mark != std::string_view::npos) {
        const int exponent = std::stoi(std::string(decimal.substr(mark + 1)));
        value *= exponent < 0 ? mpq_class(1, power_of_ten(-exponent)) : mpq_class(power_of_ten(exponent));
    }
    value.canonicalize();
    return value;
}

Operand operand_of_record(const QZCICalcNumber& record) {
    if (record.num_infinity != 0) {
        return infinite_operand(record.num_signed);
    }
    if (record.is_zero != 0) {
        return zero_operand(record.num_signed);
    }
    Limbs limbs;
    std::copy(std::begin(record.data_part), std::end(record.data_part), limbs.begin());
    return operand_of_limbs(limbs, record.num_signed);
}

Operand stored(const Operand& operand) {
    return operand_of_record(contract::unpacked(contract::packed(operand).bytes).record);
}

std::string decimal_of(const Operand& operand) {
    std::string text = operand.sign() == -1 && !operand.is_zero() ? "-" : "";
    if (operand.is_infinite()) {
        return text.append("inf");
    }
    if (operand.is_zero()) {
        return text.append("0");
    }
    const mpz_class& one = power_of_base(units_exponent);
    text += mpz_class(operand.units / one).get_str();
    /* A digit before the fraction keeps the zeros that it begins with. */
    std::string fraction = mpz_class(operand.units % one + one).get_str().substr(1);
    fraction.erase(fraction.find_last_not_of('0') + 1);
    return fraction.empty() ? text : text.append(".").append(fraction);
}

std::string stored_hex(const Operand& operand) {
    std::vector<ub1> bytes = contract::packed(operand).bytes;
    bytes.resize(QZOCI_NUMBER_SIZE);
    return hex_of(bytes);
}

std::string stored_decimal(const Operand& operand) {
    return decimal_of(stored(operand));
}

Operand nearest_operand(const mpq_class& value) {
    const mpz_class scale = power_of_ten(fraction_digits);
    const mpz_class doubled = 2 * abs(value.get_num()) * scale + value.get_den();
    const mpz_class units = doubled / (2 * value.get_den());
    return operand_of_units(units, value < 0 ? sb1{-1} : sb1{1});
}

} // namespace qzoci::test
