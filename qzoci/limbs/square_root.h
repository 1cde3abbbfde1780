/* The end of the square root's iteration, found without walking there. */
#ifndef QZOCI_LIMBS_SQUARE_ROOT_H
#define QZOCI_LIMBS_SQUARE_ROOT_H

#include "qzoci/limbs/limbs.h"

namespace qzoci::limbs {

/* The g with g^2 - 1.5 g <= number * 10^320 < g^2 + 0.5 g, in units of 10^-160: the one guess that a Heron
 * step with a true quotient leaves unchanged. False where limbs exceed 99999999, or where two such g could
 * be. Precondition: the leading limb is not zero. */
bool nearest_root(const Magnitude& number, Limb* root, Extent& extent);

/* True when the laid-down step, whatever its long division does, leaves the root of nearest_root unchanged
 * and no other guess within 10^4 units of it. About one random root in 200 fails. */
bool is_isolated_fixed_point(const Magnitude& number, const Magnitude& root);

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_SQUARE_ROOT_H */
