/* Magnitudes in units of 10^-160 as binary integers, and binary fractions. Where decimal limbs are only wanted
 * at the end of many steps, these need a fifth of the multiplications. */
#ifndef QZOCI_LIMBS_BINARY_DIGITS_H
#define QZOCI_LIMBS_BINARY_DIGITS_H

#include "qzoci/limbs/limbs.h"
#include "qzoci/limbs/wide.h"

#include <cstdint>
#include <utility>

namespace qzoci::limbs {

/* Digits of 60 bits: sixteen products of two of them add up in 128 bits without a carry. */
inline constexpr int digit_bits = 60;
inline constexpr std::int64_t digit_base = std::int64_t{1} << digit_bits;

/* An integer below 2^600, least significant digit first. 10^160 lies between 2^531 and 2^532. */
inline constexpr int integer_digits = 10;

using Integer = std::int64_t[integer_digits];

/* An integer digit, and ten digits after the point, most significant first; an eleventh stays zero. */
inline constexpr int fraction_digits = 10;

struct BinaryFraction {
    std::int64_t digit[fraction_digits + 2];
};

/* The limbs 19..39 of the operand as an integer in units of 10^-160. Preconditions: first >= 19, limbs below
 * 10^8. */
void to_binary(const Magnitude& a, Integer& integer);

/* integer / 10^160, from below with an error of less than 16 units of 2^-600. Precondition: integer below
 * 10^168. */
BinaryFraction over_unit(const Integer& integer);

/* The inverse of to_binary: all 40 limbs are written. Precondition: below 10^168. */
void to_limbs(const Integer& integer, Limb* limbs);

/* Forms a product from its lowest column up. */
template <int L>
class ColumnProduct {
public:
    ColumnProduct(const std::int64_t* t, const std::int64_t* g, std::int64_t* product)
        : t_(t), g_(g), product_(product) {}

    template <int Column>
    void columns_from(Wide carry) const {
        constexpr int first = Column + 1 > 0 ? Column + 1 : 0;
        const Wide sum = carry + column<Column, first>(std::make_integer_sequence<int, L - first>());
        if constexpr (Column >= -1) {
            product_[Column + 1] = sum.low() & (digit_base - 1);
        }
        if constexpr (Column < L - 2) {
            columns_from<Column + 1>(sum >> digit_bits);
        } else {
            product_[L] = sum.shifted(digit_bits);
        }
    }

private:
    /* The sum of the products t[i] * g[i - Column]. */
    template <int Column, int First, int... K>
    Wide column(std::integer_sequence<int, K...>) const {
        return (Wide::product(t_[First + K], g_[First + K - Column]) + ...);
    }

    const std::int64_t* t_;
    const std::int64_t* g_;
    std::int64_t* product_;
};

/* product[0..L], in units of 2^-60, = t * (g[1] / 2^60 + ... + g[L + 1] / 2^(60 (L + 1))) for t[0..L-1], from
 * below: the columns below 2^-120 that are left out, and the digit of 2^-120 that is dropped. Digits of t are
 * below 2^60, those of g below 2^63, so that what is left out is less than 16 L units. L <= 11. The last digit of
 * the product takes whatever the others leave. */
template <int L>
void fraction_product(const std::int64_t* t, const std::int64_t* g, std::int64_t* product) {
    ColumnProduct<L>(t, g, product).template columns_from<-2>(Wide());
}

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_BINARY_DIGITS_H */
