#include "qzoci/limbs/avx2.h"
#include "qzoci/limbs/limb_mask.h"
#include "qzoci/limbs/x86.h"

#if QZOCI_HAS_X86_KERNELS

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace qzoci::limbs {
namespace {

using Vector = __m256i; /* 8 limbs, or 4 columns */

constexpr int vector_limbs = 8;
constexpr int parts = limb_count / vector_limbs;

/* A whole array. */
struct Loaded {
    Vector part[parts];
};

QZOCI_AVX2 inline Vector all(Limb limb) {
    return _mm256_set1_epi32(static_cast<int>(limb));
}

QZOCI_AVX2 inline Vector load_vector(const Limb* limbs) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(limbs));
}

QZOCI_AVX2 inline void store(const Loaded& a, Limb* result) {
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(result + part * vector_limbs), a.part[part]);
    }
}

/* ---- Masks ---- */

/* Lanes of limbs from a first one on: those of 8 limbs from limb i on stand at from_first(first) + i, for i -
 * first from -48 to 47. */
constexpr int steps = 48;

constexpr std::array<std::int32_t, 2 * steps + vector_limbs> step_lanes = [] {
    std::array<std::int32_t, 2 * steps + vector_limbs> lanes = {};
    std::fill(lanes.begin() + steps, lanes.end(), -1);
    return lanes;
}();

/* Set in the lanes of the limbs from first on, of the eight that start with limb start. */
QZOCI_AVX2 inline Vector lanes_from(int first, int start) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(step_lanes.data() + steps + start - first));
}

/* Set in the lanes of the limbs first..last. */
QZOCI_AVX2 inline Loaded lanes_inside(int first, int last) {
    Loaded lanes;
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        const int start = part * vector_limbs;
        lanes.part[part] = _mm256_andnot_si256(lanes_from(last + 1, start), lanes_from(first, start));
    }
    return lanes;
}

/* The limbs first..last, zeros elsewhere. */
QZOCI_AVX2 inline Loaded load(const Magnitude& a) {
    Loaded loaded = lanes_inside(a.first, a.last);
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        loaded.part[part] = _mm256_and_si256(loaded.part[part], load_vector(a.limbs + part * vector_limbs));
    }
    return loaded;
}

QZOCI_AVX2 inline Vector larger(Vector a, Vector b) {
    return _mm256_max_epu32(a, b);
}

QZOCI_AVX2 inline Vector largest(const Loaded& a) {
    return larger(larger(larger(a.part[0], a.part[1]), larger(a.part[2], a.part[3])), a.part[4]);
}

/* True when a lane is at least the bound. */
QZOCI_AVX2 inline bool any_from(Vector limbs, Limb bound) {
    return _mm256_movemask_epi8(_mm256_cmpeq_epi32(larger(limbs, all(bound)), limbs)) != 0;
}

/* From lanes that are all ones or all zeros. */
QZOCI_AVX2 inline LimbMask mask_of(const Loaded& lanes) {
    LimbMask mask = 0;
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        const int part_mask = _mm256_movemask_ps(_mm256_castsi256_ps(lanes.part[part]));
        mask |= static_cast<LimbMask>(part_mask) << (part * vector_limbs);
    }
    return mask;
}

/* All ones in the lanes of a part whose bits are set. */
template <int Part>
QZOCI_AVX2 inline Vector lanes_of(Vector broadcast_mask) {
    const Vector byte = _mm256_shuffle_epi8(broadcast_mask, _mm256_set1_epi8(Part));
    const Vector lane_bits = _mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128);
    return _mm256_cmpeq_epi32(_mm256_and_si256(byte, lane_bits), lane_bits);
}

QZOCI_AVX2 inline Loaded lanes_of(LimbMask mask) {
    const Vector broadcast = _mm256_set1_epi64x(static_cast<long long>(mask));
    return {{lanes_of<0>(broadcast), lanes_of<1>(broadcast), lanes_of<2>(broadcast), lanes_of<3>(broadcast),
             lanes_of<4>(broadcast)}};
}

QZOCI_AVX2 inline LimbMask zeros_of(const Loaded& a) {
    Loaded zero;
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        zero.part[part] = _mm256_cmpeq_epi32(a.part[part], _mm256_setzero_si256());
    }
    return mask_of(zero);
}

QZOCI_AVX2 inline Extent extent_of(const Loaded& a) {
    const LimbMask non_zero = bits(0, limb_count - 1) & ~zeros_of(a);
    if (non_zero == 0) {
        return {-1, -1};
    }
    return {std::countr_zero(non_zero), 63 - std::countl_zero(non_zero)};
}

/* ---- Sum and difference ---- */

/* The lanes that a carry or borrow enters, from those that make one and those that pass one on (99999999 in a
 * sum, 0 in a difference). They go up by one limb; only where one meets a limb that passes it on the masks
 * are formed. */
QZOCI_AVX2 inline Loaded carries_in(const Loaded& makes, const Loaded& passes) {
    Loaded in;
    Vector passed = _mm256_setzero_si256();
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        const Vector below = part + 1 < parts ? makes.part[part + 1] : _mm256_setzero_si256();
        const Vector across = _mm256_permute2x128_si256(makes.part[part], below, 0x21);
        in.part[part] = _mm256_alignr_epi8(across, makes.part[part], sizeof(Limb));
        passed = _mm256_or_si256(passed, _mm256_and_si256(in.part[part], passes.part[part]));
    }
    if (_mm256_testz_si256(passed, passed) == 0) {
        in = lanes_of(carries_out(mask_of(makes), mask_of(passes)) >> 1);
    }
    return in;
}

QZOCI_AVX2 inline Limb limb_0(Vector part_0) {
    return static_cast<Limb>(_mm_cvtsi128_si32(_mm256_castsi256_si128(part_0)));
}

/* ---- Rounding at limb 39 ---- */

/* One in limb 39 of part 4. */
QZOCI_AVX2 inline Vector last_place() {
    return _mm256_setr_epi32(0, 0, 0, 0, 0, 0, 0, 1);
}

/* Part 4 with up added, which is last_place() or zero: 99999999 becomes 1, without a carry. */
QZOCI_AVX2 inline Vector rounded(Vector part, Vector up) {
    const Vector sum = _mm256_add_epi32(part, up);
    return _mm256_blendv_epi8(sum, last_place(), _mm256_cmpeq_epi32(sum, all(base)));
}

/* ---- Product ---- */

/* The deciding limb of the rounding and the two guard columns after it, as in the portable kernel. */
constexpr int deciding_limb = limb_count;
constexpr int last_column = deciding_limb + 2;
constexpr Limb guard_units = 42;
constexpr int column_parts = parts + 1;

/* Of eight columns, those with even and those with odd numbers, in 64-bit lanes. */
struct Columns {
    Vector even;
    Vector odd;
};

/* An operand with zeros around its limbs, for windows that reach beyond the array. */
class Padded {
public:
    QZOCI_AVX2 explicit Padded(const Loaded& a) {
        _mm256_store_si256(reinterpret_cast<Vector*>(limbs_), _mm256_setzero_si256());
        _mm256_store_si256(reinterpret_cast<Vector*>(limbs_ + vector_limbs + limb_count),
                           _mm256_setzero_si256());
        store(a, limbs_ + vector_limbs);
    }

    /* The eight limbs from limb start on; -8 <= start <= 40. */
    QZOCI_AVX2 Vector window(int start) const { return load_vector(limbs_ + vector_limbs + start); }

private:
    alignas(Vector) Limb limbs_[vector_limbs + limb_count + vector_limbs];
};

/* The sums of all a_i * b_j with i + j - 19 = c, for the eight columns c from start on. A window of b, with
 * a_i, serves the even columns and, with a_(i+1), the odd ones. */
QZOCI_AVX2 inline Columns sums(const Magnitude& a, const Magnitude& b, const Padded& padded_b, int start) {
    Columns columns = {_mm256_setzero_si256(), _mm256_setzero_si256()};
    const int low = std::max(a.first, start + units_limb - b.last);
    const int high = std::min(a.last, start + units_limb + vector_limbs - 1 - b.first);
    if (low > high) {
        return columns;
    }
    Vector factor = all(a.limbs[low]);
    columns.odd = _mm256_mul_epu32(factor, padded_b.window(start + units_limb - low + 1));
    for (int i = low; i < high; ++i) {
        const Vector window = padded_b.window(start + units_limb - i);
        columns.even = _mm256_add_epi64(columns.even, _mm256_mul_epu32(factor, window));
        factor = all(a.limbs[i + 1]);
        columns.odd = _mm256_add_epi64(columns.odd, _mm256_mul_epu32(factor, window));
    }
    columns.even =
        _mm256_add_epi64(columns.even, _mm256_mul_epu32(factor, padded_b.window(start + units_limb - high)));
    return columns;
}

/* First pass. A column has at most min(c + 1, 60 - c) <= 30 products (a.first + b.first >= 19), so it is
 * below 3 * 10^17. q = floor(floor(c / 2^27) * M / 2^31) with M = floor(2^58 / 10^8) is not above c / 10^8,
 * and less than 2^27 / 10^8 + 0.54 + 1 < 2.9 below it. So the rest is below 2.9 * 10^8, and with the carry,
 * below 3 * 10^9, below 2^32. */
QZOCI_AVX2 inline Vector first_carry(Vector column) {
    const Vector product = _mm256_mul_epu32(_mm256_srli_epi64(column, 27), _mm256_set1_epi64x(2882303761));
    return _mm256_srli_epi64(product, 31);
}

/* Second pass: floor(c / 10^8) for c < 2^32, since ceil(2^57 / 10^8) * 10^8 exceeds 2^57 by less than 2^25.
 * It is at most 32, so a limb is left below 10^8 + 32. */
QZOCI_AVX2 inline Vector second_carry(Vector column) {
    return _mm256_srli_epi64(_mm256_mul_epu32(column, _mm256_set1_epi64x(1441151881)), 57);
}

/* Columns less the carries from them and plus those to them: from an odd column it stays in its lane, from an
 * even one it moves down by a lane, the first one of the columns below into the last lane. */
QZOCI_AVX2 inline Columns carried(const Columns& columns, Vector from_even, Vector from_odd,
                                  Vector from_below) {
    const Vector limb = _mm256_set1_epi64x(base);
    const Vector to_odd = _mm256_permute4x64_epi64(_mm256_blend_epi32(from_even, from_below, 0x03), 0x39);
    const Vector rest_even = _mm256_sub_epi64(columns.even, _mm256_mul_epu32(from_even, limb));
    const Vector rest_odd = _mm256_sub_epi64(columns.odd, _mm256_mul_epu32(from_odd, limb));
    return {_mm256_add_epi64(rest_even, from_odd), _mm256_add_epi64(rest_odd, to_odd)};
}

/* Carries on where limbs of base to base + 32 are left: about three products in a million. */
void ripple(Limb* limbs, int first, int last) {
    Limb carry = 0;
    for (int i = last; i >= first; --i) {
        limbs[i] += carry;
        carry = limbs[i] >= base ? 1 : 0;
        limbs[i] -= carry != 0 ? base : 0;
    }
}

} // namespace

QZOCI_AVX2 bool sum_avx2(const Aligned& operands, Limb* result, Extent& extent) {
    const Loaded inside = lanes_inside(operands.first, operands.last);
    Loaded largest_limbs;
    Loaded sum;
    Loaded makes;
    Loaded passes;
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        const Vector a = load_vector(operands.a + part * vector_limbs);
        const Vector b = load_vector(operands.b + part * vector_limbs);
        largest_limbs.part[part] = _mm256_and_si256(larger(a, b), inside.part[part]);
        sum.part[part] = _mm256_and_si256(_mm256_add_epi32(a, b), inside.part[part]);
        makes.part[part] = _mm256_cmpgt_epi32(sum.part[part], all(max_limb));
        passes.part[part] = _mm256_cmpeq_epi32(sum.part[part], all(max_limb));
    }
    const Loaded carry = carries_in(makes, passes);
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        sum.part[part] = _mm256_sub_epi32(sum.part[part], carry.part[part]);
    }
    /* A carry out of the operands into limb 0 is an overflow, and so is one out of limb 0. */
    const Limb overflow = operands.first == 0 ? base : 1;
    if (any_from(largest(largest_limbs), base) || limb_0(sum.part[0]) >= overflow) {
        return false;
    }
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        /* Below base, the difference wraps and is the larger. */
        sum.part[part] = _mm256_min_epu32(sum.part[part], _mm256_sub_epi32(sum.part[part], all(base)));
    }
    store(sum, result);
    extent = extent_of(sum);
    return true;
}

QZOCI_AVX2 bool difference_avx2(const Aligned& operands, Limb* result, Extent& extent, bool& a_is_larger) {
    int differing = operands.first;
    while (differing < operands.last && operands.a[differing] == operands.b[differing]) {
        ++differing;
    }
    const bool larger_is_a = operands.a[differing] > operands.b[differing];
    const Vector negation = all(larger_is_a ? 0 : ~Limb{0});
    Loaded largest_limbs;
    Loaded difference; /* of the larger and the smaller operand, below zero where it borrows */
    Loaded makes;
    Loaded passes;
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        const Vector a = load_vector(operands.a + part * vector_limbs);
        const Vector b = load_vector(operands.b + part * vector_limbs);
        largest_limbs.part[part] = larger(a, b);
        const Vector forward = _mm256_sub_epi32(a, b);
        difference.part[part] = _mm256_sub_epi32(_mm256_xor_si256(forward, negation), negation);
        makes.part[part] = _mm256_srai_epi32(difference.part[part], 31);
        passes.part[part] = _mm256_cmpeq_epi32(difference.part[part], _mm256_setzero_si256());
    }
    /* Also where limbs outside first..last differ: the plain steps compare but do not subtract them. */
    const LimbMask unequal = bits(0, limb_count - 1) & ~mask_of(passes);
    if (unequal == 0 || (unequal & ~bits(operands.first, operands.last)) != 0 ||
        any_from(largest(largest_limbs), base)) {
        return false;
    }
    const Loaded borrow = carries_in(makes, passes);
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        const Vector less_borrow = _mm256_add_epi32(difference.part[part], borrow.part[part]);
        /* Below zero, it has wrapped and is the larger. */
        difference.part[part] = _mm256_min_epu32(less_borrow, _mm256_add_epi32(less_borrow, all(base)));
    }
    store(difference, result);
    extent = extent_of(difference);
    a_is_larger = larger_is_a;
    return true;
}

/* See the portable kernel for the condition and its proof. Eight columns at a time from the last ones on:
 * what they hand up is settled before the columns above take it. The carry of column 0 is dropped.
 * Columns 43..47 are summed along. */
QZOCI_AVX2 bool product_avx2(const Magnitude& a, const Magnitude& b, Limb* result, Extent& extent) {
    const Loaded loaded_a = load(a);
    const Loaded loaded_b = load(b);
    if (any_from(larger(largest(loaded_a), largest(loaded_b)), base)) {
        return false;
    }
    const Padded padded_b(loaded_b);
    const int first = std::max(a.first + b.first - units_limb - 1, 0) / vector_limbs;
    const int last_of_all = a.last + b.last - units_limb;
    const bool exact = last_of_all <= last_column;
    const int last = std::min(last_of_all, last_column) / vector_limbs;
    alignas(Vector) Limb limbs[column_parts * vector_limbs] = {};
    Vector below[2] = {_mm256_setzero_si256(), _mm256_setzero_si256()};
    Vector greatest = _mm256_setzero_si256();
    for (int part = last; part >= first; --part) {
        Columns columns = sums(a, b, padded_b, part * vector_limbs);
        const Vector even1 = first_carry(columns.even);
        columns = carried(columns, even1, first_carry(columns.odd), below[0]);
        const Vector even2 = second_carry(columns.even);
        columns = carried(columns, even2, second_carry(columns.odd), below[1]);
        below[0] = even1;
        below[1] = even2;
        const Vector packed = _mm256_or_si256(columns.even, _mm256_slli_epi64(columns.odd, 32));
        greatest = larger(greatest, packed);
        _mm256_store_si256(reinterpret_cast<Vector*>(limbs) + part, packed);
    }
    if (any_from(greatest, base)) {
        ripple(limbs, first * vector_limbs, last * vector_limbs + vector_limbs - 1);
    }
    const bool inconclusive =
        limbs[limb_count - 1] == max_limb ||
        (limbs[deciding_limb] == base / 2 - 1 && limbs[deciding_limb + 1] >= base - guard_units);
    if (!exact && inconclusive) {
        return false;
    }
    const Vector up = _mm256_and_si256(all(limbs[deciding_limb] >= base / 2 ? 1 : 0), last_place());
    Loaded product;
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        product.part[part] = load_vector(limbs + part * vector_limbs);
    }
    product.part[parts - 1] = rounded(product.part[parts - 1], up);
    store(product, result);
    extent = extent_of(product);
    return true;
}

/* See the portable kernel. The limb above a limb comes by moving the array up by one. */
QZOCI_AVX2 bool half_avx2(const Magnitude& a, Limb* result, Extent& extent) {
    const Loaded x = load(a);
    if (any_from(largest(x), base)) {
        return false;
    }
    Loaded halves;
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        const Vector before = part == 0 ? _mm256_setzero_si256() : x.part[part - 1];
        const Vector above =
            _mm256_alignr_epi8(x.part[part], _mm256_permute2x128_si256(before, x.part[part], 0x21), 12);
        const Vector odd_above = _mm256_srai_epi32(_mm256_slli_epi32(above, 31), 31);
        halves.part[part] =
            _mm256_add_epi32(_mm256_srli_epi32(x.part[part], 1), _mm256_and_si256(odd_above, all(base / 2)));
    }
    halves.part[parts - 1] =
        rounded(halves.part[parts - 1], _mm256_and_si256(x.part[parts - 1], last_place()));
    store(halves, result);
    extent = extent_of(halves);
    return true;
}

QZOCI_AVX2 bool truncate_avx2(const Limb* limbs, bool add_unit, Limb* result, Extent& extent) {
    constexpr int units_part = units_limb / vector_limbs; /* and there lane 3 */
    Loaded integer = load({limbs, 0, units_limb});
    const Vector unit = _mm256_setr_epi32(0, 0, 0, static_cast<int>(add_unit), 0, 0, 0, 0);
    integer.part[units_part] = _mm256_add_epi32(integer.part[units_part], unit);
    if (any_from(largest(integer), base)) {
        return false;
    }
    store(integer, result);
    extent = extent_of(integer);
    return true;
}

QZOCI_AVX2 Extent extent_avx2(const Limb* limbs) {
    return extent_of(load({limbs, 0, limb_count - 1}));
}

QZOCI_AVX2 int compare_avx2(const Aligned& operands) {
    Loaded equal;
    QZOCI_UNROLLED
    for (int part = 0; part < parts; ++part) {
        equal.part[part] = _mm256_cmpeq_epi32(load_vector(operands.a + part * vector_limbs),
                                              load_vector(operands.b + part * vector_limbs));
    }
    const LimbMask differing = bits(operands.first, operands.last) & ~mask_of(equal);
    if (differing == 0) {
        return 0;
    }
    const int i = std::countr_zero(differing);
    return operands.a[i] > operands.b[i] ? 1 : -1;
}

} // namespace qzoci::limbs

#endif /* QZOCI_HAS_X86_KERNELS */
