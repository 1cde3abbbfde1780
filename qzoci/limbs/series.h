/* The sum of a series whose terms come from one another by a product and a division by a small integer. */
#ifndef QZOCI_LIMBS_SERIES_H
#define QZOCI_LIMBS_SERIES_H

#include "qzoci/limbs/limbs.h"

#include <cstdint>

namespace qzoci::limbs {

/* Each pass of a series, with the index n counting up from first_index:
 *     power = power * factor;  term = power / divisor(n);  sum = sum + term
 * until a term is zero. */
struct SeriesRule {
    std::int64_t first_index;
    std::int64_t (*divisor)(std::int64_t index);
    /* The sign of a term, from that of the power it comes from. */
    bool (*term_is_negative)(std::int64_t index, bool power_is_negative);
    /* The term becomes the next power; otherwise the power stays as it is before the division. */
    bool term_is_power;
};

struct SignedMagnitude {
    Magnitude magnitude;
    bool negative;
};

/* Runs the series to its end, every product, quotient and sum rounded at limb 39 as the kernels of those names
 * do. result may be an operand's array. False, with nothing written, where an operand has limbs outside limbs
 * 19..39 or above 99999999, or a units limb above 15; where a divisor leaves 1..2^16 or the terms grow; where
 * a kernel that a rare step needs declines; and where the sum is zero. */
bool sum_series(const SeriesRule& rule, const SignedMagnitude& power, const SignedMagnitude& factor,
                const SignedMagnitude& sum, Limb* result, Extent& extent, bool& negative);

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_SERIES_H */
