/* One bit a limb, limb 0 the lowest: what the vector kernels of all levels form from comparisons. */
#ifndef QZOCI_LIMBS_LIMB_MASK_H
#define QZOCI_LIMBS_LIMB_MASK_H

#include "qzoci/limbs/limbs.h"

#include <cstdint>

namespace qzoci::limbs {

using LimbMask = std::uint64_t;

constexpr LimbMask bit(int limb) {
    return LimbMask{1} << limb;
}

constexpr LimbMask bits(int first, int last) {
    return bit(last + 1) - bit(first);
}

/* The limbs that a carry or borrow leaves, from those that make one and those that pass one on (limbs of
 * 99999999 in a sum, equal limbs in a difference): C_i = makes_i | (passes_i & C_(i+1)), by doubling. */
constexpr LimbMask carries_out(LimbMask makes, LimbMask passes) {
    if ((passes & makes >> 1) == 0) {
        return makes;
    }
    for (int distance = 1; distance < limb_count; distance *= 2) {
        makes |= passes & makes >> distance;
        passes &= passes >> distance;
    }
    return makes;
}

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_LIMB_MASK_H */
