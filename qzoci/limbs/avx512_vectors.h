/* Whole limb arrays in 512-bit registers, for the files with kernels of that instruction set. */
#ifndef QZOCI_LIMBS_AVX512_VECTORS_H
#define QZOCI_LIMBS_AVX512_VECTORS_H

#include "qzoci/limbs/limb_mask.h"
#include "qzoci/limbs/limbs.h"
#include "qzoci/limbs/x86.h"

#if defined(__GNUC__) && !defined(__clang__)
/* The intrinsics of GCC 12 start from a variable set to itself, which this warning takes for a use of ours
 * (GCC bug 105593). */
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include <algorithm>
#include <bit>
#include <cstdint>

/* Each function carries the instruction set itself, so that no other file's code is compiled for it. */
#define QZOCI_AVX512 __attribute__((target("avx512f,avx512dq,avx512bw,avx512vl,avx512ifma,bmi,bmi2,lzcnt")))

namespace qzoci::limbs {

using Vector = __m512i; /* 16 limbs, or 8 columns */

inline constexpr int vector_limbs = 16;

/* A whole array: limbs 0..15, 16..31, 32..39 and eight zeros. */
struct Loaded {
    Vector part[3];
};

constexpr __mmask16 part_of(LimbMask mask, int part) {
    return static_cast<__mmask16>(mask >> (part * vector_limbs));
}

QZOCI_AVX512 inline Vector all(Limb limb) {
    return _mm512_set1_epi32(static_cast<int>(limb));
}

/* The limbs first..last, zeros elsewhere. The last load covers eight limbs: one of sixteen would wait for a
 * store to what follows the array, masked off or not. */
QZOCI_AVX512 inline Loaded load(const Magnitude& a) {
    const LimbMask inside = bits(a.first, a.last);
    return {{_mm512_maskz_loadu_epi32(part_of(inside, 0), a.limbs),
             _mm512_maskz_loadu_epi32(part_of(inside, 1), a.limbs + vector_limbs),
             _mm512_zextsi256_si512(_mm256_maskz_loadu_epi32(static_cast<__mmask8>(part_of(inside, 2)),
                                                             a.limbs + 2 * vector_limbs))}};
}

QZOCI_AVX512 inline bool is_canonical(const Loaded& a) {
    const Vector largest = _mm512_max_epu32(_mm512_max_epu32(a.part[0], a.part[1]), a.part[2]);
    return _mm512_cmpge_epu32_mask(largest, all(base)) == 0;
}

QZOCI_AVX512 inline void store(const Loaded& a, Limb* result) {
    _mm512_storeu_si512(result, a.part[0]);
    _mm512_storeu_si512(result + vector_limbs, a.part[1]);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(result + 2 * vector_limbs),
                        _mm512_castsi512_si256(a.part[2]));
}

QZOCI_AVX512 inline LimbMask joined(__mmask16 part0, __mmask16 part1, __mmask16 part2) {
    return LimbMask{part0} | LimbMask{part1} << vector_limbs | LimbMask{part2} << (2 * vector_limbs);
}

QZOCI_AVX512 inline Extent extent_of(LimbMask non_zero) {
    if (non_zero == 0) {
        return {-1, -1};
    }
    return {std::countr_zero(non_zero), 63 - std::countl_zero(non_zero)};
}

QZOCI_AVX512 inline LimbMask non_zero_limbs(const Loaded& a) {
    return joined(_mm512_test_epi32_mask(a.part[0], a.part[0]), _mm512_test_epi32_mask(a.part[1], a.part[1]),
                  _mm512_test_epi32_mask(a.part[2], a.part[2]));
}

QZOCI_AVX512 inline Extent extent_of(const Loaded& a) {
    return extent_of(non_zero_limbs(a));
}

/* Limbs of columns first.. moved to their places in a whole array. */
template <int Vectors>
QZOCI_AVX512 inline Loaded at_column(const Vector (&packed)[Vectors], int first) {
    const Vector iota = _mm512_set_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    const LimbMask filled = first + Vectors * vector_limbs >= limb_count
                                ? bits(first, limb_count - 1)
                                : bits(first, first + Vectors * vector_limbs - 1);
    Loaded placed;
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        const Vector source = _mm512_add_epi32(iota, _mm512_set1_epi32(part * vector_limbs - first));
        const __mmask16 mask = part_of(filled, part);
        if constexpr (Vectors == 1) {
            placed.part[part] = _mm512_maskz_permutexvar_epi32(mask, source, packed[0]);
        } else {
            placed.part[part] = _mm512_maskz_permutex2var_epi32(mask, packed[0], source, packed[1]);
            if constexpr (Vectors == 3) {
                const __mmask16 third =
                    _mm512_mask_cmpge_epi32_mask(mask, source, _mm512_set1_epi32(2 * vector_limbs));
                placed.part[part] =
                    _mm512_mask_permutexvar_epi32(placed.part[part], third, source, packed[2]);
            }
        }
    }
    return placed;
}

/* The reverse: lane i has limb first + i, or 0 beyond the array's limbs. -1 <= first < limb_count. */
QZOCI_AVX512 inline Loaded from_column(const Loaded& a, int first) {
    const Vector iota = _mm512_set_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    const LimbMask inside = bits(0, limb_count - 1);
    const LimbMask filled = first < 0 ? inside << 1 : inside >> first;
    Loaded moved;
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        const Vector source = _mm512_add_epi32(iota, _mm512_set1_epi32(part * vector_limbs + first));
        const __mmask16 mask = part_of(filled, part);
        const __mmask16 third =
            _mm512_mask_cmpge_epi32_mask(mask, source, _mm512_set1_epi32(2 * vector_limbs));
        moved.part[part] = _mm512_mask_permutexvar_epi32(
            _mm512_maskz_permutex2var_epi32(mask, a.part[0], source, a.part[1]), third, source, a.part[2]);
    }
    return moved;
}

/* Sums of columns first, first + 2, ... in even and first + 1, first + 3, ... in odd, eight a vector. */
template <int Vectors>
struct Columns {
    Vector even[Vectors];
    Vector odd[Vectors];
};

/* floor(c / 10^8) in 64-bit lanes, for c < 2^59: with M = ceil(2^70 / 390625), M * 390625 = 2^70 + e, e <
 * 2^15, the product (c >> 8) * M / 2^70 exceeds (c >> 8) / 390625 by less than 2^51 * 2^15 / 390625 / 2^70 <
 * 1 / 390625. */
QZOCI_AVX512 inline Vector over_base(Vector c) {
    const Vector reciprocal = _mm512_set1_epi64(3022314549036573);
    const Vector high = _mm512_madd52hi_epu64(_mm512_setzero_si512(), _mm512_srli_epi64(c, 8), reciprocal);
    return _mm512_srli_epi64(high, 18);
}

/* Hands what exceeds a limb to the column above; the carry of the first column is dropped. From an odd column
 * it stays in its lane, from an even one it moves down by a lane. */
template <int Vectors>
QZOCI_AVX512 inline void carry_pass(Columns<Vectors>& columns) {
    const Vector limb = _mm512_set1_epi64(base);
    Vector from_even[Vectors + 1];
    from_even[Vectors] = _mm512_setzero_si512();
    QZOCI_UNROLLED
    for (int v = 0; v < Vectors; ++v) {
        from_even[v] = over_base(columns.even[v]);
    }
    QZOCI_UNROLLED
    for (int v = 0; v < Vectors; ++v) {
        const Vector from_odd = over_base(columns.odd[v]);
        const Vector rest_even = _mm512_sub_epi64(columns.even[v], _mm512_mul_epu32(from_even[v], limb));
        const Vector rest_odd = _mm512_sub_epi64(columns.odd[v], _mm512_mul_epu32(from_odd, limb));
        columns.even[v] = _mm512_add_epi64(rest_even, from_odd);
        columns.odd[v] = _mm512_add_epi64(rest_odd, _mm512_alignr_epi64(from_even[v + 1], from_even[v], 1));
    }
}

/* Carries on where limbs of base to base + 42 are left: about three products in a million. */
QZOCI_AVX512 inline void ripple(Limb* limbs, int count) {
    Limb carry = 0;
    for (int i = count - 1; i >= 0; --i) {
        limbs[i] += carry;
        carry = limbs[i] >= base ? 1 : 0;
        limbs[i] -= carry != 0 ? base : 0;
    }
}

/* Turns column sums below 2^59 into limbs; what leaves the first column is dropped. */
template <int Vectors>
QZOCI_AVX512 inline void carry_through(Columns<Vectors>& columns, Vector (&packed)[Vectors]) {
    carry_pass(columns);
    carry_pass(columns);
    __mmask16 excess = 0;
    QZOCI_UNROLLED
    for (int v = 0; v < Vectors; ++v) {
        packed[v] = _mm512_or_si512(columns.even[v], _mm512_slli_epi64(columns.odd[v], 32));
        excess |= _mm512_cmpge_epu32_mask(packed[v], all(base));
    }
    if (excess != 0) {
        Limb limbs[Vectors * vector_limbs];
        QZOCI_UNROLLED
        for (int v = 0; v < Vectors; ++v) {
            _mm512_storeu_si512(limbs + v * vector_limbs, packed[v]);
        }
        ripple(limbs, Vectors * vector_limbs);
        QZOCI_UNROLLED
        for (int v = 0; v < Vectors; ++v) {
            packed[v] = _mm512_loadu_si512(limbs + v * vector_limbs);
        }
    }
}

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_AVX512_VECTORS_H */
