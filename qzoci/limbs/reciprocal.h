/* Division by one limb. */
#ifndef QZOCI_LIMBS_RECIPROCAL_H
#define QZOCI_LIMBS_RECIPROCAL_H

#include "qzoci/limbs/limbs.h"
#include "qzoci/limbs/wide.h"

#include <bit>
#include <cstdint>

namespace qzoci::limbs {

/* floor(v / d) for v < 2^62. With l = floor(log2(d - 1)), so that 2^l < d <= 2^(l + 1), and M the integer for
 * which e = M * d - 2^(63 + l) is 0..d, v * M / 2^(63 + l) exceeds v / d by v * e / (d * 2^(63 + l)) < 1 / d, too
 * little to reach the next integer. M is below 2^63; twice that goes into the product.
 *
 * The first M is the floating-point quotient, whose error stays below 2^13 in any rounding mode; its exact e,
 * below 2^40, tells by how much to correct it, where an e near a multiple of d may go either way.
 * Precondition: 2 <= divisor < base. */
struct Reciprocal {
    constexpr explicit Reciprocal(Limb divisor) {
        const double inverse = 1.0 / divisor;
        shift = static_cast<int>(std::bit_width(divisor - 1)) - 1;
        const auto power = std::bit_cast<double>(static_cast<std::uint64_t>(1023 + 63 + shift) << 52);
        const auto rough = static_cast<std::int64_t>(power * inverse);
        const std::uint64_t power_modulo_word = shift == 0 ? std::uint64_t{1} << 63 : 0;
        const auto e =
            static_cast<std::int64_t>(static_cast<std::uint64_t>(rough) * divisor - power_modulo_word);
        constexpr std::int64_t positive = 1 << 14;
        const auto excess =
            static_cast<std::int64_t>(static_cast<double>(e) * inverse + static_cast<double>(positive)) -
            positive;
        multiplier = 2 * static_cast<std::uint64_t>(rough - excess);
    }

    constexpr std::uint64_t quotient(std::uint64_t v) const { return high_product(v, multiplier) >> shift; }

    std::uint64_t multiplier = 0;
    int shift = 0;
};

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_RECIPROCAL_H */
