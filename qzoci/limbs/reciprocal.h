/* Repeated division by one limb as a multiplication. */
#ifndef QZOCI_LIMBS_RECIPROCAL_H
#define QZOCI_LIMBS_RECIPROCAL_H

#include "qzoci/limbs/limbs.h"
#include "qzoci/limbs/wide.h"

#include <bit>
#include <cstdint>

namespace qzoci::limbs {

/* floor(v / d) = high_product(v, M) >> l for v < 2^55, where l = floor(log2 d) and M = ceil(2^(64 + l) / d):
 * with e = M * d - 2^(64 + l) < d < 2^(l + 1), v * M / 2^(64 + l) exceeds v / d by v * e / (d * 2^(64 + l)) <
 * 1 / d, too little to reach the next integer. A power of two, whose M would not fit, takes 2^63 and one
 * shift less. Precondition: 2 <= divisor < base. */
struct Reciprocal {
    explicit Reciprocal(Limb divisor) {
        const int l = static_cast<int>(std::bit_width(divisor)) - 1;
        if (std::has_single_bit(divisor)) {
            multiplier = std::uint64_t{1} << 63;
            shift = l - 1;
            return;
        }
        /* ceil(2^(64 + l) / divisor) from two 64-bit divisions: 2^(64 + l) = 2^32 * 2^(32 + l). */
        const std::uint64_t upper = (std::uint64_t{1} << (32 + l)) / divisor;
        const std::uint64_t rest = (std::uint64_t{1} << (32 + l)) % divisor;
        multiplier = (upper << 32) + (rest << 32) / divisor + 1;
        shift = l;
    }

    std::uint64_t quotient(std::uint64_t v) const { return high_product(v, multiplier) >> shift; }

    std::uint64_t multiplier = 0;
    int shift = 0;
};

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_RECIPROCAL_H */
