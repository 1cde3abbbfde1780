#include "qzoci/limbs/binary_digits.h"

#include "qzoci/limbs/limb_pairs.h"

#include <algorithm>
#include <array>

namespace qzoci::limbs {
namespace {

using std::int64_t;

constexpr int fraction_pairs = (limb_count - units_limb - 1) / 2;

/* 10^-160 is below 2^-480: its first eight digits after the point are zero. */
constexpr int zero_digits = 8;
constexpr int unit_digits = integer_digits + 2;

/* 10^-160 as a binary fraction, its digits after the first eight, cut off. By twenty divisions by 10^8, in half
 * digits; their errors stay in the guard digits. */
constexpr std::array<int64_t, unit_digits + 1> unit_fraction() {
    constexpr int guard_digits = 2;
    constexpr int half_bits = digit_bits / 2;
    std::array<int64_t, 2 * (zero_digits + unit_digits + guard_digits) + 1> half = {1};
    for (int division = 0; division < limb_count - units_limb - 1; ++division) {
        int64_t rest = 0;
        for (int64_t& h : half) {
            const int64_t value = (rest << half_bits) + h;
            h = value / base;
            rest = value % base;
        }
    }
    std::array<int64_t, unit_digits + 1> digits = {};
    for (int i = 1; i <= unit_digits; ++i) {
        const auto j = static_cast<std::size_t>(2 * (zero_digits + i) - 1);
        digits[static_cast<std::size_t>(i)] = (half[j] << half_bits) + half[j + 1];
    }
    return digits;
}

constexpr std::array<int64_t, unit_digits + 1> unit = unit_fraction();

/* digits[0..Count-1] = digits * 10^16 + addend; the carry out. */
template <int Count>
int64_t next_pair(int64_t* digits, int64_t addend) {
    int64_t carry = addend;
    for (int i = 0; i < Count; ++i) {
        const Wide product = Wide::product(digits[i], pair_base) + Wide(carry);
        digits[i] = product.low() & (digit_base - 1);
        carry = product.shifted(digit_bits);
    }
    return carry;
}

/* Digits of an integer below 10^(8 + 16 * pairs), 10^8 < 2^27 and 10^16 < 2^53.2. */
constexpr int digits_for(int pairs) {
    return (27 + pairs * 532 / 10 + 1 + digit_bits - 1) / digit_bits;
}

/* Takes in the pairs of limbs from limb 20 + 2 * Pair on. */
template <int Pair, typename LimbAt>
void take_pairs(LimbAt limb_at, int64_t* digits) {
    if constexpr (Pair < fraction_pairs) {
        constexpr int i = units_limb + 1 + 2 * Pair;
        constexpr int count = digits_for(Pair);
        const int64_t carry = next_pair<count>(digits, limb_at(i) * base + limb_at(i + 1));
        if constexpr (digits_for(Pair + 1) > count) {
            digits[count] = carry;
        }
        take_pairs<Pair + 1>(limb_at, digits);
    }
}

/* Brings out the pairs of limbs from limb 20 + 2 * Pair on of a fraction, most significant digit last. What is
 * left matters to 532 - 53 * Pair bits. */
template <int Pair>
void bring_out_pairs(int64_t* ascending, Limb* limbs) {
    if constexpr (Pair < fraction_pairs) {
        constexpr int bits_left = 532 - 53 * Pair;
        constexpr int count = std::min(fraction_digits, (bits_left + digit_bits - 1) / digit_bits + 1);
        const int64_t pair = next_pair<count>(ascending + fraction_digits - count, 0);
        limbs[units_limb + 1 + 2 * Pair] = static_cast<Limb>(pair / base);
        limbs[units_limb + 2 + 2 * Pair] = static_cast<Limb>(pair % base);
        bring_out_pairs<Pair + 1>(ascending, limbs);
    }
}

} // namespace

void to_binary(const Magnitude& a, Integer& integer) {
    std::fill(integer, integer + integer_digits, int64_t{0});
    const auto limb_at = [&](int i) -> int64_t { return i >= a.first && i <= a.last ? a.limbs[i] : 0; };
    integer[0] = limb_at(units_limb);
    take_pairs<0>(limb_at, integer);
}

BinaryFraction over_unit(const Integer& integer) {
    /* A zero digit below makes the product a digit longer: value * 2^540. */
    constexpr int shifted_digits = integer_digits + 1;
    int64_t shifted[shifted_digits] = {};
    std::copy(integer, integer + integer_digits, shifted + 1);
    int64_t product[shifted_digits + 1];
    fraction_product<shifted_digits>(shifted, unit.data(), product);
    BinaryFraction fraction = {};
    std::reverse_copy(product, product + fraction_digits + 1, fraction.digit);
    return fraction;
}

/* The fraction is raised by 2^-580, so that it lies above the true one, by less than a unit of 10^-160; each
 * round brings out two limbs. What a round drops, below the digits that it counts, is worth less than what the
 * rounds before it, each a factor of 10^16 > 2^53, have made of that raise. */
void to_limbs(const Integer& integer, Limb* limbs) {
    BinaryFraction fraction = over_unit(integer);
    int64_t ascending[fraction_digits];
    std::reverse_copy(fraction.digit + 1, fraction.digit + 1 + fraction_digits, ascending);
    int64_t carry = int64_t{1} << 20;
    for (int64_t& digit : ascending) {
        digit += carry;
        carry = digit >> digit_bits;
        digit &= digit_base - 1;
    }
    std::fill(limbs, limbs + units_limb, 0U);
    limbs[units_limb] = static_cast<Limb>(fraction.digit[0] + carry);
    bring_out_pairs<0>(ascending, limbs);
}

} // namespace qzoci::limbs
