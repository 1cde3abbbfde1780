/* Integer square root on limb arrays, base 10^8, least significant limb first. */
#ifndef QZOCI_LIMBS_EXACT_ROOT_H
#define QZOCI_LIMBS_EXACT_ROOT_H

#include <cstdint>

namespace qzoci::limbs {

/* Root limbs that exact_root can form. */
inline constexpr int max_root_limbs = 32;

/* root[0..n-1] = floor(sqrt(S)) for the integer S in square[0..2n-1]; true when S - root^2 >= root / 2, that
 * is when root + 1 and not root is the g with g^2 - 1.5 g <= S < g^2 + 0.5 g (where both are, root). Limbs of
 * square are 0..99999999; 1 <= n <= max_root_limbs; root does not overlap square. */
bool exact_root(const std::uint32_t* square, int n, std::uint32_t* root);

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_EXACT_ROOT_H */
