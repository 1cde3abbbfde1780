#include "exact_sum.hpp"

#include "engine.hpp"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

namespace qznum {

namespace {

constexpr int highest_exponent = 62;
constexpr int lowest_positive_exponent = -64;
constexpr int lowest_negative_exponent = -65;
constexpr std::size_t stored_pairs = 20;

/* Without zero pairs at either end. */
ExactDecimal trimmed_decimal(bool negative, int exponent, std::vector<ub1> pairs) {
    const auto first = std::find_if(pairs.begin(), pairs.end(), [](ub1 pair) { return pair != 0; });
    exponent -= static_cast<int>(first - pairs.begin());
    pairs.erase(pairs.begin(), first);
    while (!pairs.empty() && pairs.back() == 0) {
        pairs.pop_back();
    }
    return pairs.empty() ? ExactDecimal{} : ExactDecimal{negative, exponent, std::move(pairs)};
}

/* The record of the value divided by 100^exponent: pairs below the record's last one, far behind those that decide
 * about the rounding, stay away. */
QZCICalcNumber scaled_record(const ExactDecimal& value) {
    constexpr std::size_t units_limb = 19;
    constexpr std::size_t pairs_of_limb = 4;
    constexpr std::size_t record_pairs = (QZCI_CALC_LIMBS - units_limb - 1) * pairs_of_limb + 1;
    QZCICalcNumber record;
    initNullValue(&record);
    for (std::size_t i = 0; i < std::min(value.pairs.size(), record_pairs); ++i) {
        const std::size_t place = units_limb * pairs_of_limb + (pairs_of_limb - 1) + i;
        ub4 limb = value.pairs[i];
        for (std::size_t j = place % pairs_of_limb; j < pairs_of_limb - 1; ++j) {
            limb *= 100;
        }
        record.data_part[place / pairs_of_limb] += limb;
    }
    record.num_signed = value.negative ? sb1{-1} : sb1{1};
    QZCICalcNumInit(&record);
    return record;
}

Packed infinite(bool negative) {
    return {negative ? OCINumber{{1, 0}} : OCINumber{{2, 255, 101}},
            "too large for the stored form, which keeps an infinity"};
}

} // namespace

/* ---- Exact decimals ---- */

std::string ExactDecimal::text() const {
    if (pairs.empty()) {
        return "0";
    }
    std::string digits;
    for (const ub1 pair : pairs) {
        digits += static_cast<char>('0' + pair / 10);
        digits += static_cast<char>('0' + pair % 10);
    }
    const int integer_digits = 2 * (exponent + 1);
    if (integer_digits <= 0) {
        digits.insert(0, static_cast<std::size_t>(-integer_digits), '0');
    }
    const auto point = static_cast<std::size_t>(std::max(integer_digits, 0));
    digits.resize(std::max(digits.size(), point), '0');
    std::string integer = digits.substr(0, point);
    integer.erase(0, integer.find_first_not_of('0'));
    std::string fraction = digits.substr(point);
    fraction.erase(fraction.find_last_not_of('0') + 1);
    return (negative ? "-" : "") + (integer.empty() ? "0" : integer) + (fraction.empty() ? "" : ".") +
           fraction;
}

Packed pack_exact(const ExactDecimal& value) {
    if (value.pairs.empty()) {
        return {OCINumber{{1, 128}}, {}};
    }
    OCINumber number = pack(scaled_record(value));
    const int exponent_byte_of_one = value.negative ? 62 : 193;
    const int direction = value.negative ? -1 : 1;
    const int carry = (number.OCINumberPart[1] - exponent_byte_of_one) * direction;
    const int exponent = value.exponent + carry;
    if (exponent > highest_exponent) {
        return infinite(value.negative);
    }
    if (exponent < (value.negative ? lowest_negative_exponent : lowest_positive_exponent)) {
        return {OCINumber{{1, 128}}, "too small for the stored form, which keeps a zero"};
    }
    number.OCINumberPart[1] = static_cast<ub1>(exponent_byte_of_one + direction * exponent);
    return {number, value.pairs.size() > stored_pairs ? "rounded to the stored form" : ""};
}

Packed pack_mean(const ExactDecimal& sum, std::size_t count) {
    /* A quotient starts up to 9 pairs after its sum; 20 are kept, and one more decides. */
    constexpr std::size_t enough_pairs = 9 + stored_pairs + 1;
    std::vector<ub1> quotient;
    std::size_t remainder = 0;
    for (std::size_t i = 0; i < std::max(sum.pairs.size(), enough_pairs); ++i) {
        remainder = remainder * 100 + (i < sum.pairs.size() ? sum.pairs[i] : 0U);
        quotient.push_back(static_cast<ub1>(remainder / count));
        remainder %= count;
    }
    Packed mean = pack_exact(trimmed_decimal(sum.negative, sum.exponent, std::move(quotient)));
    if (remainder != 0 && mean.change.empty()) {
        mean.change = "rounded to the stored form";
    }
    return mean;
}

/* ---- The sum ---- */

void ExactSum::add(const qzoci::number_layout& number) {
    const bool negative = number.kind == qzoci::number_kind::negative;
    for (const qzoci::number_byte& byte : number.bytes) {
        if (byte.role == qzoci::byte_role::pair) {
            units_[static_cast<std::size_t>(byte.weight - lowest_weight)] +=
                negative ? -byte.pair : byte.pair;
        }
    }
}

void ExactSum::merge(const ExactSum& other) {
    std::transform(units_.begin(), units_.end(), other.units_.begin(), units_.begin(), std::plus<>());
}

/* Brings all counts to 0..99, from the lowest up. True when the whole is negative, and then they are not its digits. */
bool ExactSum::carry(Units& units) {
    sb8 carried = 0;
    for (sb8& count : units) {
        count += carried;
        carried = count >= 0 ? count / 100 : -((99 - count) / 100);
        count -= carried * 100;
    }
    return carried < 0;
}

ExactDecimal ExactSum::value() const {
    Units units = units_;
    const bool negative = carry(units);
    if (negative) {
        std::transform(units_.begin(), units_.end(), units.begin(), std::negate<>());
        carry(units);
    }
    std::vector<ub1> pairs;
    std::transform(units.rbegin(), units.rend(), std::back_inserter(pairs),
                   [](sb8 count) { return static_cast<ub1>(count); });
    return trimmed_decimal(negative, highest_weight, std::move(pairs));
}

} // namespace qznum
