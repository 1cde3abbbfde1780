#include "tests/independent/exact.h"

#include <algorithm>
#include <climits>
#include <stdexcept>

namespace qzoci::test {
namespace {

/* Two limbs at a time halve the number of multiplications and divisions of large integers. */
constexpr unsigned long squared_base = 10000000000000000;
static_assert(ULONG_MAX / squared_base >= 1);

constexpr int table_size = 83;

std::vector<mpz_class> powers() {
    std::vector<mpz_class> table{1};
    while (table.size() < table_size) {
        table.push_back(table.back() * static_cast<unsigned long>(base));
    }
    return table;
}

QZCICalcNumber record_of_limbs(const Limbs& limbs, sb1 sign) {
    const auto is_set = [](ub4 limb) { return limb != 0; };
    const auto first = std::find_if(limbs.begin(), limbs.end(), is_set);
    if (first == limbs.end()) {
        return zero_record(sign);
    }
    const auto behind_last = std::find_if(limbs.rbegin(), limbs.rend(), is_set).base();
    QZCICalcNumber record{};
    std::copy(limbs.begin(), limbs.end(), record.data_part);
    record.num_signed = sign;
    record.start_pos = static_cast<sb1>(first - limbs.begin());
    record.end_pos = static_cast<sb1>(behind_last - limbs.begin() - 1);
    return record;
}

} // namespace

const mpz_class& power_of_base(int exponent) {
    static const std::vector<mpz_class> table = powers();
    return table.at(static_cast<size_t>(exponent));
}

Operand operand_of_limbs(const Limbs& limbs, sb1 sign) {
    Limbs reversed = limbs;
    std::reverse(reversed.begin(), reversed.end());
    return {record_of_limbs(limbs, sign), integer_of(reversed)};
}

Operand operand_of_units(const mpz_class& units, sb1 sign) {
    return {record_of_units(units, sign), units};
}

Operand zero_operand(sb1 sign) {
    return {zero_record(sign), 0};
}

Operand infinite_operand(sb1 sign) {
    return {infinite_record(sign), 0};
}

Operand negated(Operand operand) {
    operand.record.num_signed = static_cast<sb1>(-operand.record.num_signed);
    return operand;
}

QZCICalcNumber record_of_units(const mpz_class& units, sb1 sign) {
    const std::vector<ub4> least_first = limbs_of(units, QZCI_CALC_LIMBS);
    if (least_first.size() > QZCI_CALC_LIMBS) {
        throw std::out_of_range("a magnitude beyond the record");
    }
    Limbs limbs;
    std::copy(least_first.rbegin(), least_first.rend(), limbs.begin());
    return record_of_limbs(limbs, sign);
}

QZCICalcNumber zero_record(sb1 sign) {
    QZCICalcNumber record{};
    record.num_signed = sign;
    record.start_pos = -1;
    record.end_pos = -1;
    record.is_zero = 1;
    return record;
}

QZCICalcNumber infinite_record(sb1 sign) {
    QZCICalcNumber record = zero_record(sign);
    record.is_zero = 0;
    record.num_infinity = 1;
    return record;
}

int leading_exponent(const mpz_class& units) {
    int exponent = 0;
    int beyond = table_size;
    while (beyond - exponent > 1) {
        const int middle = (exponent + beyond) / 2;
        (units < power_of_base(middle) ? beyond : exponent) = middle;
    }
    return exponent;
}

mpz_class integer_of(std::span<const ub4> limbs) {
    mpz_class sum;
    size_t i = limbs.size();
    if (i % 2 == 1) {
        sum = static_cast<unsigned long>(limbs[--i]);
    }
    for (; i > 0; i -= 2) {
        sum *= squared_base;
        sum += static_cast<unsigned long>(limbs[i - 1]) * base + limbs[i - 2];
    }
    return sum;
}

std::vector<ub4> limbs_of(mpz_class integer, size_t count) {
    std::vector<ub4> limbs;
    limbs.reserve(count + 2);
    while (integer != 0) {
        const unsigned long low = mpz_tdiv_q_ui(integer.get_mpz_t(), integer.get_mpz_t(), squared_base);
        limbs.push_back(static_cast<ub4>(low % base));
        limbs.push_back(static_cast<ub4>(low / base));
    }
    while (limbs.size() > count && limbs.back() == 0) {
        limbs.pop_back();
    }
    limbs.resize(std::max(limbs.size(), count));
    return limbs;
}

} // namespace qzoci::test
