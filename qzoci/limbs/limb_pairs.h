/* Two limbs as one digit of base 10^16, in columns of 128 bits. */
#ifndef QZOCI_LIMBS_LIMB_PAIRS_H
#define QZOCI_LIMBS_LIMB_PAIRS_H

#include "qzoci/limbs/limbs.h"
#include "qzoci/limbs/wide.h"

#include <cstdint>

namespace qzoci::limbs {

inline constexpr std::int64_t pair_base = std::int64_t{base} * base;

/* floor(column / 10^16), off by 2 at most. */
inline std::int64_t over_pair_base(Wide column) {
    constexpr std::int64_t reduced = 2076918743413931051; /* 2^114 / 10^16 */
    return Wide::product(column.shifted(50), reduced).shifted(64);
}

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_LIMB_PAIRS_H */
