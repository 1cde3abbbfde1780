#include "qzoci/limbs/avx512.h"
#include "qzoci/limbs/x86.h"

#if QZOCI_HAS_X86_KERNELS

#include "qzoci/limbs/avx512_vectors.h"
#include "qzoci/limbs/stored_form_vectors.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace qzoci::limbs {
namespace {

using std::uint32_t;
using std::uint8_t;

/* One bit a pair. */
using PairMask = uint32_t;

constexpr PairMask first_pairs(int count) {
    return (PairMask{1} << count) - 1;
}

/* The address of the byte that many places before; masked-off bytes there are neither read nor written. */
inline void* places_before(const void* bytes, int places) {
    return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(bytes) - static_cast<unsigned>(places));
}

} // namespace

/* See the portable kernel. Reading from some bytes before puts the pairs at their places in limbs. */
QZOCI_AVX512 bool unpack_avx512(const StoredPairs& stored, int exponent, Limb* result, Extent& extent) {
    const int place = place_in_limb(exponent);
    const PairMask inside = first_pairs(stored.count) << place;
    const Pairs bytes = _mm256_maskz_loadu_epi8(inside, places_before(stored.bytes, place));
    const Pairs above = _mm256_sub_epi8(bytes, every(1 + static_cast<int>(stored.complemented)));
    if (_mm256_mask_cmpgt_epu8_mask(inside, above, every(99)) != 0) {
        return false;
    }
    const Pairs pairs = _mm256_maskz_mov_epi8(inside, recoded(above, stored.complemented, 99, 0));
    const __m256i limbs = limbs_of(pairs);
    const int first = limb_of_exponent(exponent);
    const Vector packed[] = {_mm512_zextsi256_si512(limbs)};
    store(at_column(packed, first), result);
    const LimbMask non_zero =
        (LimbMask{_mm256_test_epi32_mask(limbs, limbs)} << first) & bits(0, limb_count - 1);
    extent = extent_of(non_zero);
    return true;
}

/* See the portable kernel. Here the zero pairs before the first significant one stay where they are, and the
 * bytes are written from that many places before. */
QZOCI_AVX512 bool pack_avx512(const Magnitude& a, bool complemented, uint8_t* bytes, PackedPairs& packed) {
    const int count = a.last - a.first + 1;
    const auto limb_mask = static_cast<__mmask8>(first_pairs(std::min(count, stored_limbs)));
    const __m256i limbs = _mm256_maskz_loadu_epi32(limb_mask, a.limbs + a.first);
    const __mmask8 large = _mm256_cmpge_epu32_mask(limbs, _mm256_set1_epi32(base));
    if (!has_packable_ends(a) || large != 0) {
        return false;
    }
    Pairs pairs = split(limbs);
    const PairMask significant = _mm256_test_epi8_mask(pairs, pairs);
    const int leading_zeros = std::countr_zero(significant);
    const int deciding = leading_zeros + stored_pairs;
    const PairMask kept = first_pairs(stored_pairs) << leading_zeros;
    const PairMask rounds_up = _mm256_cmpge_epu8_mask(pairs, every(50)) >> deciding & 1;
    const bool is_cut = count > stored_limbs || significant >> deciding != 0;
    /* Of the pairs kept, the last of these is the last one written. */
    const PairMask candidates = rounds_up != 0           ? ~_mm256_cmpeq_epi8_mask(pairs, every(99))
                                : is_cut && complemented ? kept
                                                         : significant;
    if ((candidates & kept) == 0) {
        return false;
    }
    const int end = 32 - std::countl_zero(candidates & kept);
    pairs = _mm256_mask_add_epi8(pairs, rounds_up << (end - 1), pairs, every(1));
    const PairMask terminator = complemented && end < deciding ? PairMask{1} << end : 0;
    pairs = _mm256_mask_mov_epi8(recoded(pairs, complemented, 101, 1), terminator, every(terminator_byte));
    const PairMask written = (first_pairs(end) & ~first_pairs(leading_zeros)) | terminator;
    _mm256_mask_storeu_epi8(places_before(bytes, leading_zeros), written, pairs);
    packed = {leading_zeros, end - leading_zeros + (terminator != 0 ? 1 : 0)};
    return true;
}

} // namespace qzoci::limbs

#endif /* QZOCI_HAS_X86_KERNELS */
