/* The kernels without vector instructions, and what the kernels of every level share. */
#ifndef QZOCI_LIMBS_PORTABLE_H
#define QZOCI_LIMBS_PORTABLE_H

#include "qzoci/limbs/limbs.h"

namespace qzoci::limbs {

/* True when every limb of the operand is at most 99999999. Divisions leave larger ones, and so do malformed
 * bytes; the plain steps then do something definite that no kernel reproduces. */
bool is_canonical(const Magnitude& a);

/* The extent of a result whose limbs outside first..last are zero. */
Extent extent_within(const Limb* limbs, int first, int last);

bool sum_portable(const Aligned& operands, Limb* result, Extent& extent);
bool difference_portable(const Aligned& operands, Limb* result, Extent& extent, bool& a_is_larger);
bool product_portable(const Magnitude& a, const Magnitude& b, Limb* result, Extent& extent);
bool half_portable(const Magnitude& a, Limb* result, Extent& extent);
bool quotient_by_limb_portable(const Magnitude& dividend, Limb divisor, int shift, Limb* result,
                               Extent& extent);
Extent remainder_by_limb_portable(const Magnitude& dividend, Limb divisor, int last, Limb* result);
bool truncate_portable(const Limb* limbs, bool add_unit, Limb* result, Extent& extent);
Extent extent_portable(const Limb* limbs);
int compare_portable(const Aligned& operands);
bool quotient_portable(const Magnitude& dividend, const Magnitude& divisor, Limb* result, Extent& extent);
bool remainder_portable(const Magnitude& dividend, const Magnitude& divisor, Limb* result, Extent& extent);

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_PORTABLE_H */
