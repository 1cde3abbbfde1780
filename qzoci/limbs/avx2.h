/* Kernels in AVX2. To be called only where dispatch.cpp has found it. */
#ifndef QZOCI_LIMBS_AVX2_H
#define QZOCI_LIMBS_AVX2_H

#include "qzoci/limbs/limbs.h"

namespace qzoci::limbs {

bool sum_avx2(const Aligned& operands, Limb* result, Extent& extent);
bool difference_avx2(const Aligned& operands, Limb* result, Extent& extent, bool& a_is_larger);
bool product_avx2(const Magnitude& a, const Magnitude& b, Limb* result, Extent& extent);
bool half_avx2(const Magnitude& a, Limb* result, Extent& extent);
bool truncate_avx2(const Limb* limbs, bool add_unit, Limb* result, Extent& extent);
Extent extent_avx2(const Limb* limbs);
int compare_avx2(const Aligned& operands);
bool unpack_avx2(const StoredPairs& stored, int exponent, Limb* result, Extent& extent);
bool pack_avx2(const Magnitude& a, bool complemented, std::uint8_t* bytes, PackedPairs& packed);

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_AVX2_H */
