#include "qzoci/limbs/avx2.h"
#include "qzoci/limbs/x86.h"

#if QZOCI_HAS_X86_KERNELS

#include "qzoci/limbs/stored_form_vectors.h"

#include <algorithm>
#include <bit>

namespace qzoci::limbs {
namespace {

using std::uint64_t;
using std::uint8_t;

using Vector = __m256i;

constexpr int vector_limbs = 8;

QZOCI_AVX2 inline void store(Vector limbs, Limb* result) {
    _mm256_storeu_si256(reinterpret_cast<Vector*>(result), limbs);
}

/* The 24 bytes, that many places later. */
QZOCI_AVX2 inline Vector moved(const Words& words, int places) {
    const int shift = 8 * places;
    const auto word = [&](int i) {
        return static_cast<long long>(words[i] << shift | (i > 0 ? words[i - 1] >> 1 >> (63 - shift) : 0));
    };
    return _mm256_set_epi64x(0, word(2), word(1), word(0));
}

/* Set in the places first..first + count - 1. */
QZOCI_AVX2 inline Vector places_inside(int first, int count) {
    const Vector iota = _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19,
                                         20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31);
    return _mm256_and_si256(_mm256_cmpgt_epi8(iota, every(first - 1)),
                            _mm256_cmpgt_epi8(every(first + count), iota));
}

} // namespace

/* See the portable kernel. It is also called where a store of eight limbs would reach beyond limb 39. */
QZOCI_AVX2 bool unpack_avx2(const StoredPairs& stored, int exponent, Limb* result, Extent& extent) {
    const int first = limb_of_exponent(exponent);
    if (first > limb_count - vector_limbs) {
        return unpack_portable(stored, exponent, result, extent);
    }
    Words words;
    load_bytes(stored.bytes, stored.count, words);
    const int place = place_in_limb(exponent);
    const Vector inside = places_inside(place, stored.count);
    const Pairs above =
        _mm256_sub_epi8(moved(words, place), every(1 + static_cast<int>(stored.complemented)));
    const Vector is_pair = _mm256_cmpeq_epi8(_mm256_min_epu8(above, every(99)), above);
    if (_mm256_testc_si256(is_pair, inside) == 0) {
        return false;
    }
    const Pairs pairs = _mm256_and_si256(recoded(above, stored.complemented, 99, 0), inside);
    const Vector limbs = limbs_of(pairs);
    for (int i = 0; i < limb_count; i += vector_limbs) {
        store(_mm256_setzero_si256(), result + i);
    }
    store(limbs, result + first);
    const Vector zero = _mm256_cmpeq_epi32(limbs, _mm256_setzero_si256());
    const auto non_zero = static_cast<unsigned>(~_mm256_movemask_ps(_mm256_castsi256_ps(zero)) & 0xFF);
    extent = {-1, -1};
    if (non_zero != 0) {
        extent = {first + std::countr_zero(non_zero), first + 31 - std::countl_zero(non_zero)};
    }
    return true;
}

/* See the portable kernel. */
QZOCI_AVX2 bool pack_avx2(const Magnitude& a, bool complemented, uint8_t* bytes, PackedPairs& packed) {
    const int count = std::min(a.last - a.first + 1, stored_limbs);
    const Vector inside =
        _mm256_cmpgt_epi32(_mm256_set1_epi32(count), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    const Vector limbs = _mm256_maskload_epi32(reinterpret_cast<const int*>(a.limbs + a.first), inside);
    const Vector largest = _mm256_set1_epi32(static_cast<int>(max_limb));
    const Vector canonical = _mm256_cmpeq_epi32(_mm256_max_epu32(limbs, largest), largest);
    if (!has_packable_ends(a) || _mm256_movemask_epi8(canonical) != -1) {
        return false;
    }
    const Vector pairs = split(limbs);
    const __m128i lower = _mm256_castsi256_si128(pairs);
    Words words = {static_cast<uint64_t>(_mm_cvtsi128_si64(lower)),
                   static_cast<uint64_t>(_mm_extract_epi64(lower, 1)),
                   static_cast<uint64_t>(_mm256_extract_epi64(pairs, 2))};
    return pack_pairs(a, words, complemented, bytes, packed);
}

} // namespace qzoci::limbs

#endif /* QZOCI_HAS_X86_KERNELS */
