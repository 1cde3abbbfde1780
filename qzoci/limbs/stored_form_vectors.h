/* Digit pairs in a 256-bit register, for the kernels of AVX2 and AVX-512 alike. */
#ifndef QZOCI_LIMBS_STORED_FORM_VECTORS_H
#define QZOCI_LIMBS_STORED_FORM_VECTORS_H

#include "qzoci/limbs/stored_form.h"
#include "qzoci/limbs/x86.h"

#include <immintrin.h>

namespace qzoci::limbs {

/* 24 digit pairs, most significant first, and eight zeros. */
using Pairs = __m256i;

QZOCI_AVX2 inline Pairs every(int byte) {
    return _mm256_set1_epi8(static_cast<char>(byte));
}

/* x + offset, or sum - x = ~x + (sum + 1) where complemented: from a pair to its byte or back. Signs come in no
 * order, so that a branch on them would be mispredicted half the time. */
QZOCI_AVX2 inline Pairs recoded(Pairs x, bool complemented, int sum, int offset) {
    const int flag = static_cast<int>(complemented);
    return _mm256_add_epi8(_mm256_xor_si256(x, every(-flag)), every(offset + flag * (sum + 1 - offset)));
}

/* The pairs of eight limbs of at most 99999999, the most significant one first. With q = limb / 10^4 the two
 * halves are q + 2^16 (limb - 10^4 q) = 2^16 limb - (10^4 * 2^16 - 1) q, and likewise with 100 and bytes; for
 * the quotients see split_limb, and 3518437209 * 10^4 exceeds 2^45 by 1168, 1168 * 10^8 < 2^45. */
QZOCI_AVX2 inline Pairs split(__m256i limbs) {
    const __m256i reciprocal = _mm256_set1_epi64x(3518437209);
    const __m256i even = _mm256_srli_epi64(_mm256_mul_epu32(limbs, reciprocal), 45);
    const __m256i odd = _mm256_mul_epu32(_mm256_srli_epi64(limbs, 32), reciprocal);
    const __m256i upper = _mm256_blend_epi32(even, _mm256_srli_epi64(odd, 13), 0xAA);
    const __m256i fours = _mm256_sub_epi32(_mm256_slli_epi32(limbs, 16),
                                           _mm256_mullo_epi32(upper, _mm256_set1_epi32(655359999)));
    const __m256i hundreds = _mm256_srli_epi16(_mm256_mulhi_epu16(fours, _mm256_set1_epi16(5243)), 3);
    return _mm256_sub_epi16(_mm256_slli_epi16(fours, 8),
                            _mm256_mullo_epi16(hundreds, _mm256_set1_epi16(25599)));
}

/* The six limbs, two zeros after them, of pairs 0..99. */
QZOCI_AVX2 inline __m256i limbs_of(Pairs pairs) {
    const __m256i fours = _mm256_maddubs_epi16(pairs, _mm256_set1_epi16(1 << 8 | 100));
    return _mm256_madd_epi16(fours, _mm256_set1_epi32(1 << 16 | 10000));
}

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_STORED_FORM_VECTORS_H */
