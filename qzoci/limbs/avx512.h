/* Kernels in AVX-512 (F, DQ, BW, VL, IFMA). To be called only where dispatch.cpp has found these. */
#ifndef QZOCI_LIMBS_AVX512_H
#define QZOCI_LIMBS_AVX512_H

#include "qzoci/limbs/limbs.h"

namespace qzoci::limbs {

bool sum_avx512(const Aligned& operands, Limb* result, Extent& extent);
bool difference_avx512(const Aligned& operands, Limb* result, Extent& extent, bool& a_is_larger);
bool product_avx512(const Magnitude& a, const Magnitude& b, Limb* result, Extent& extent);
bool half_avx512(const Magnitude& a, Limb* result, Extent& extent);
bool quotient_avx512(const Magnitude& dividend, const Magnitude& divisor, Limb* result, Extent& extent);
bool remainder_avx512(const Magnitude& dividend, const Magnitude& divisor, Limb* result, Extent& extent);
bool truncate_avx512(const Limb* limbs, bool add_unit, Limb* result, Extent& extent);
Extent extent_avx512(const Limb* limbs);
int compare_avx512(const Aligned& operands);
bool unpack_avx512(const StoredPairs& stored, int exponent, Limb* result, Extent& extent);
bool pack_avx512(const Magnitude& a, bool complemented, std::uint8_t* bytes, PackedPairs& packed);

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_AVX512_H */
