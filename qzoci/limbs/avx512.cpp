#include "qzoci/limbs/avx512.h"
#include "qzoci/limbs/x86.h"

#if QZOCI_HAS_X86_KERNELS

#include "qzoci/limbs/avx512_vectors.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace qzoci::limbs {
namespace {

using std::uint64_t;

/* ---- Sum and difference ---- */

QZOCI_AVX512 inline Vector lower(Vector a, Vector b) {
    return _mm512_min_epu32(a, b);
}

QZOCI_AVX512 inline Vector higher(Vector a, Vector b) {
    return _mm512_max_epu32(a, b);
}

QZOCI_AVX512 inline bool exceeds_limb(Vector a) {
    return _mm512_cmpge_epu32_mask(a, all(base)) != 0;
}

/* What each limb's neighbour below holds, the last one's being the first of the part below. */
QZOCI_AVX512 inline Vector from_below(Vector part, Vector part_below) {
    return _mm512_alignr_epi32(part_below, part, 1);
}

/* The rare ways load their operands again: one that is handed over would be stored on the common way too. */
QZOCI_AVX512 __attribute__((noinline)) bool sum_with_ripples(const Aligned& operands, Limb* result,
                                                             Extent& extent) {
    const Loaded a = load({operands.a, operands.first, operands.last});
    const Loaded b = load({operands.b, operands.first, operands.last});
    Loaded sum;
    __mmask16 makes[3];
    __mmask16 passes[3];
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        sum.part[part] = _mm512_add_epi32(a.part[part], b.part[part]);
        makes[part] = _mm512_cmpge_epu32_mask(sum.part[part], all(base));
        passes[part] = _mm512_cmpeq_epi32_mask(sum.part[part], all(max_limb));
    }
    const LimbMask out =
        carries_out(joined(makes[0], makes[1], makes[2]), joined(passes[0], passes[1], passes[2]));
    /* A carry out of the operands into limb 0 is an overflow, and so is one out of limb 0. */
    if (!is_canonical(a) || !is_canonical(b) || (out & bit(std::min(operands.first, 1))) != 0) {
        return false;
    }
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        sum.part[part] =
            _mm512_mask_add_epi32(sum.part[part], part_of(out >> 1, part), sum.part[part], all(1));
        sum.part[part] = _mm512_mask_sub_epi32(sum.part[part], part_of(out, part), sum.part[part], all(base));
    }
    store(sum, result);
    extent = extent_of(sum);
    return true;
}

/* The limbs of larger and smaller differ where differing says so. */
QZOCI_AVX512 __attribute__((noinline)) void difference_with_ripples(const Limb* larger, const Limb* smaller,
                                                                    LimbMask differing, Limb* result,
                                                                    Extent& extent) {
    const Loaded a = load({larger, 0, limb_count - 1});
    const Loaded b = load({smaller, 0, limb_count - 1});
    Loaded difference;
    __mmask16 makes[3];
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        difference.part[part] = _mm512_sub_epi32(a.part[part], b.part[part]);
        makes[part] = _mm512_movepi32_mask(difference.part[part]);
    }
    const LimbMask out = carries_out(joined(makes[0], makes[1], makes[2]), ~differing);
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        const Vector less_borrow = _mm512_mask_sub_epi32(difference.part[part], part_of(out >> 1, part),
                                                         difference.part[part], all(1));
        difference.part[part] =
            _mm512_mask_add_epi32(less_borrow, part_of(out, part), less_borrow, all(base));
    }
    store(difference, result);
    extent = extent_of(difference);
}

/* ---- Product ---- */

/* The deciding limb of the rounding and the two guard columns after it, as in the portable kernel. */
constexpr int deciding_limb = limb_count;
constexpr int last_column = deciding_limb + 2;
constexpr Limb guard_units = 42;

/* Carries, rounds and places the column sums; see the portable kernel for the condition and its proof. exact
 * tells that no column is left out. first >= 0, and a carry out of column first is dropped. */
template <int Vectors>
QZOCI_AVX512 inline bool finish_product(Columns<Vectors>& columns, int first, bool exact, Limb* result,
                                        Extent& extent) {
    Vector packed[Vectors];
    carry_through(columns, packed);
    LimbMask rounding = 0; /* columns from half a base on */
    LimbMask below_half = 0;
    LimbMask near_top = 0;
    QZOCI_UNROLLED
    for (int v = 0; v < Vectors; ++v) {
        const int shift = v * vector_limbs + first;
        rounding |= LimbMask{_mm512_cmpge_epu32_mask(packed[v], all(base / 2))} << shift;
        below_half |= LimbMask{_mm512_cmpeq_epi32_mask(packed[v], all(base / 2 - 1))} << shift;
        near_top |= LimbMask{_mm512_cmpge_epu32_mask(packed[v], all(base - guard_units))} << shift;
    }
    Loaded placed = at_column(packed, first);
    if (!exact) {
        const bool full_last =
            (part_of(bit(limb_count - 1), 2) & _mm512_cmpeq_epi32_mask(placed.part[2], all(max_limb))) != 0;
        if (full_last ||
            ((below_half & bit(deciding_limb)) != 0 && (near_top & bit(deciding_limb + 1)) != 0)) {
            return false;
        }
    }
    if ((rounding & bit(deciding_limb)) != 0) {
        const __mmask16 last = part_of(bit(limb_count - 1), 2);
        const Vector rounded = _mm512_mask_add_epi32(placed.part[2], last, placed.part[2], all(1));
        /* 99999999 becomes 1, without a carry. */
        placed.part[2] = _mm512_mask_mov_epi32(rounded, _mm512_cmpeq_epi32_mask(rounded, all(base)), all(1));
    }
    store(placed, result);
    extent = extent_of(placed);
    return true;
}

template <int Vectors>
QZOCI_AVX512 inline Columns<Vectors> no_columns() {
    Columns<Vectors> columns;
    QZOCI_UNROLLED
    for (int v = 0; v < Vectors; ++v) {
        columns.even[v] = _mm512_setzero_si512();
        columns.odd[v] = _mm512_setzero_si512();
    }
    return columns;
}

/* Any operands: windows of b by masked loads, each serving the even columns with a_i and the odd ones with
 * a_(i+1). */
template <int Vectors>
QZOCI_AVX512 bool product_by_loads(const Magnitude& a, const Magnitude& b, int first, bool exact,
                                   Limb* result, Extent& extent) {
    auto columns = no_columns<Vectors>();
    const LimbMask inside = bits(b.first, b.last);
    Vector factor = _mm512_setzero_si512();
    for (int i = a.first - 1; i <= a.last; ++i) {
        const Vector next = i < a.last ? all(a.limbs[i + 1]) : _mm512_setzero_si512();
        const int start = first + units_limb - i;
        const LimbMask window = start >= 0 ? inside >> start : inside << -start;
        /* Masked-off limbs are not read; the address may lie outside the array. */
        const auto address = reinterpret_cast<std::uintptr_t>(b.limbs) +
                             static_cast<std::uintptr_t>(std::intptr_t{start} * std::intptr_t{sizeof(Limb)});
        QZOCI_UNROLLED
        for (int v = 0; v < Vectors; ++v) {
            const Vector limbs = _mm512_maskz_loadu_epi32(
                part_of(window, v),
                reinterpret_cast<const void*>(address + static_cast<std::uintptr_t>(v) * sizeof(Vector)));
            columns.even[v] = _mm512_add_epi64(columns.even[v], _mm512_mul_epu32(factor, limbs));
            columns.odd[v] = _mm512_add_epi64(columns.odd[v], _mm512_mul_epu32(next, limbs));
        }
        factor = next;
    }
    return finish_product(columns, first, exact, result, extent);
}

/* Many rows: from here on, the copy of b between zeros that saves their masks is worth it. */
constexpr int many_rows = 16;
constexpr int zeros_before =
    2 * vector_limbs; /* a window starts at limb -20 at the lowest, and at 39 at most */
constexpr int padded_vectors = 8;

/* Adds the products by limb i of a, whose value factor is, and by all after it. The first Skipped vectors of
 * columns have all their products: the windows of b that are left for them lie before its first limb. */
template <int Vectors, int Skipped>
QZOCI_AVX512 inline void add_rows(const Magnitude& a, const Limb* padded, int b_first, int first, int i,
                                  Vector factor, Columns<Vectors>& columns) {
    const int last = std::min(a.last, first + units_limb + (Skipped + 1) * vector_limbs - 1 - b_first);
    for (; i <= last; ++i) {
        const Vector next = i < a.last ? all(a.limbs[i + 1]) : _mm512_setzero_si512();
        const Limb* const window = padded + zeros_before + first + units_limb - i;
        QZOCI_UNROLLED
        for (int v = Skipped; v < Vectors; ++v) {
            const Vector limbs = _mm512_loadu_si512(window + v * vector_limbs);
            columns.even[v] = _mm512_add_epi64(columns.even[v], _mm512_mul_epu32(factor, limbs));
            columns.odd[v] = _mm512_add_epi64(columns.odd[v], _mm512_mul_epu32(next, limbs));
        }
        factor = next;
    }
    if constexpr (Skipped + 1 < Vectors) {
        add_rows<Vectors, Skipped + 1>(a, padded, b_first, first, i, factor, columns);
    }
}

template <int Vectors>
QZOCI_AVX512 bool product_of_many_rows(const Magnitude& a, const Magnitude& b, int first, bool exact,
                                       Limb* result, Extent& extent) {
    const Vector zero = _mm512_setzero_si512();
    const Loaded loaded = load(b);
    const Vector vectors[padded_vectors] = {zero,           zero, loaded.part[0], loaded.part[1],
                                            loaded.part[2], zero, zero,           zero};
    alignas(Vector) Limb padded[padded_vectors * vector_limbs];
    QZOCI_UNROLLED
    for (int v = 0; v < padded_vectors; ++v) {
        _mm512_store_si512(padded + v * vector_limbs, vectors[v]);
    }
    auto columns = no_columns<Vectors>();
    add_rows<Vectors, 0>(a, padded, b.first, first, a.first - 1, zero, columns);
    return finish_product(columns, first, exact, result, extent);
}

/* Operands from limb 19 on: windows of b by rotating registers. Column 18 takes the carry. */
constexpr int fraction_first_column = units_limb - 1;

/* The 16 limbs from limb Start on of b, whose limbs before 16 and after 47 are zero. */
template <int Start>
QZOCI_AVX512 inline Vector window(const Loaded& b) {
    constexpr int block = Start >= 0 ? Start / vector_limbs : -1;
    constexpr int offset = Start - block * vector_limbs;
    const Vector zero = _mm512_setzero_si512();
    const Vector low = block == 1 ? b.part[1] : block == 2 ? b.part[2] : zero;
    const Vector high = block == 0 ? b.part[1] : block == 1 ? b.part[2] : zero;
    if constexpr (offset == 0) {
        return low;
    } else {
        return _mm512_alignr_epi32(high, low, offset);
    }
}

template <int I>
QZOCI_AVX512 inline void add_window(const Limb* a, const Loaded& b, Vector factor, Columns<2>& columns) {
    constexpr int start = fraction_first_column + units_limb - I;
    const Vector next = I < limb_count - 1 ? all(a[I + 1]) : _mm512_setzero_si512();
    if constexpr (start + vector_limbs > units_limb) { /* otherwise the window lies before limb 19 */
        const Vector limbs = window<start>(b);
        columns.even[0] = _mm512_add_epi64(columns.even[0], _mm512_mul_epu32(factor, limbs));
        columns.odd[0] = _mm512_add_epi64(columns.odd[0], _mm512_mul_epu32(next, limbs));
    }
    const Vector limbs = window<start + vector_limbs>(b);
    columns.even[1] = _mm512_add_epi64(columns.even[1], _mm512_mul_epu32(factor, limbs));
    columns.odd[1] = _mm512_add_epi64(columns.odd[1], _mm512_mul_epu32(next, limbs));
    if constexpr (I < limb_count - 1) {
        add_window<I + 1>(a, b, next, columns);
    }
}

QZOCI_AVX512 bool product_of_fractions(const Limb* a, const Loaded& b, bool exact, Limb* result,
                                       Extent& extent) {
    const Vector zero = _mm512_setzero_si512();
    Columns<2> columns = {{zero, zero}, {zero, zero}};
    add_window<units_limb - 1>(a, b, zero, columns);
    return finish_product(columns, fraction_first_column, exact, result, extent);
}

} // namespace

/* Without masks, which take longer than the addition: a sum of two limbs below base is settled by the smaller of
 * itself and itself less base, and its carry is the sign of max_limb - sum. A limb of 99999999 that receives a
 * carry is left at base, and then all carries are found at once. Above limb 2 none can reach limb 0. The loads
 * do not wait for the positions, which an operation just before may still be finding out; limbs outside them,
 * which count as zero, are mostly zero. */
QZOCI_AVX512 bool sum_avx512(const Aligned& operands, Limb* result, Extent& extent) {
    const Loaded a = load({operands.a, 0, limb_count - 1});
    const Loaded b = load({operands.b, 0, limb_count - 1});
    Loaded sum;
    Loaded either;
    Vector carries[4];
    carries[3] = _mm512_setzero_si512();
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        either.part[part] = _mm512_or_si512(a.part[part], b.part[part]);
        sum.part[part] = _mm512_add_epi32(a.part[part], b.part[part]);
        carries[part] = _mm512_srli_epi32(_mm512_sub_epi32(all(max_limb), sum.part[part]), 31);
    }
    Loaded settled;
    Vector largest = _mm512_setzero_si512();
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        settled.part[part] =
            _mm512_add_epi32(lower(sum.part[part], _mm512_sub_epi32(sum.part[part], all(base))),
                             from_below(carries[part], carries[part + 1]));
        largest = higher(largest, higher(settled.part[part], higher(a.part[part], b.part[part])));
    }
    if (operands.first < 2 || (non_zero_limbs(either) & ~bits(operands.first, operands.last)) != 0 ||
        exceeds_limb(largest)) {
        return sum_with_ripples(operands, result, extent);
    }
    store(settled, result);
    extent = extent_of(settled);
    return true;
}

/* As the sum: a limb of the larger less one of the smaller is settled by the smaller of itself and itself plus
 * base, and its borrow is its sign. Equal limbs that receive a borrow become negative then, and all borrows are
 * found at once. */
QZOCI_AVX512 bool difference_avx512(const Aligned& operands, Limb* result, Extent& extent,
                                    bool& a_is_larger) {
    const Loaded a = load({operands.a, 0, limb_count - 1});
    const Loaded b = load({operands.b, 0, limb_count - 1});
    Loaded forward;
    Vector largest = _mm512_setzero_si512();
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        forward.part[part] = _mm512_sub_epi32(a.part[part], b.part[part]);
        largest = higher(largest, higher(a.part[part], b.part[part]));
    }
    const LimbMask differing = non_zero_limbs(forward);
    if ((differing & ~bits(operands.first, operands.last)) != 0 || differing == 0 || exceeds_limb(largest)) {
        return false; /* also where limbs outside first..last differ: the plain steps compare but do not
                         subtract them */
    }
    /* Mostly the first limbs tell, and then nothing waits for the mask, whose lowest bit is the most significant
     * limb. */
    int deciding = operands.first;
    if (operands.a[deciding] == operands.b[deciding]) [[unlikely]] {
        deciding = std::countr_zero(differing);
    }
    const bool larger_is_a = operands.a[deciding] > operands.b[deciding];
    a_is_larger = larger_is_a;
    const Vector flip = _mm512_set1_epi32(static_cast<int>(larger_is_a) - 1);
    Loaded difference;
    Vector borrows[4];
    borrows[3] = _mm512_setzero_si512();
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        difference.part[part] = _mm512_sub_epi32(_mm512_xor_si512(forward.part[part], flip), flip);
        borrows[part] = _mm512_srli_epi32(difference.part[part], 31);
    }
    Loaded settled;
    Vector passing = _mm512_setzero_si512();
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        const Vector less_borrow =
            _mm512_sub_epi32(difference.part[part], from_below(borrows[part], borrows[part + 1]));
        passing = _mm512_or_si512(passing, _mm512_xor_si512(less_borrow, difference.part[part]));
        settled.part[part] = lower(less_borrow, _mm512_add_epi32(less_borrow, all(base)));
    }
    if (_mm512_movepi32_mask(passing) != 0) {
        difference_with_ripples(larger_is_a ? operands.a : operands.b, larger_is_a ? operands.b : operands.a,
                                differing, result, extent);
        return true;
    }
    store(settled, result);
    extent = extent_of(settled);
    return true;
}

QZOCI_AVX512 bool product_avx512(const Magnitude& a, const Magnitude& b, Limb* result, Extent& extent) {
    const Loaded loaded_a = load(a);
    const Loaded loaded_b = load(b);
    if (!is_canonical(loaded_a) || !is_canonical(loaded_b)) {
        return false;
    }
    const int first = std::max(a.first + b.first - units_limb - 1, 0);
    if (first > deciding_limb) {
        store({{_mm512_setzero_si512(), _mm512_setzero_si512(), _mm512_setzero_si512()}}, result);
        extent = {-1, -1};
        return true;
    }
    const int last = std::min(a.last + b.last - units_limb, last_column);
    const bool exact = a.last + b.last - units_limb <= last_column;
    if (a.first == units_limb && b.first == units_limb && a.last == limb_count - 1) {
        return product_of_fractions(a.limbs, loaded_b, exact, result, extent);
    }
    const bool a_is_shorter = a.last - a.first <= b.last - b.first;
    const Magnitude& shorter = a_is_shorter ? a : b;
    const Magnitude& longer = a_is_shorter ? b : a;
    const bool has_many_rows = shorter.last - shorter.first + 1 >= many_rows;
    switch ((last - first) / vector_limbs) {
    case 0:
        return product_by_loads<1>(shorter, longer, first, exact, result, extent);
    case 1:
        return has_many_rows ? product_of_many_rows<2>(shorter, longer, first, exact, result, extent)
                             : product_by_loads<2>(shorter, longer, first, exact, result, extent);
    default:
        return has_many_rows ? product_of_many_rows<3>(shorter, longer, first, exact, result, extent)
                             : product_by_loads<3>(shorter, longer, first, exact, result, extent);
    }
}

/* See the portable kernel. The limb above a limb comes by moving the array up by one. */
QZOCI_AVX512 bool half_avx512(const Magnitude& a, Limb* result, Extent& extent) {
    const Loaded x = load(a);
    if (!is_canonical(x)) {
        return false;
    }
    const Vector zero = _mm512_setzero_si512();
    const LimbMask odd =
        joined(_mm512_test_epi32_mask(x.part[0], all(1)), _mm512_test_epi32_mask(x.part[1], all(1)),
               _mm512_test_epi32_mask(x.part[2], all(1)));
    const LimbMask below_odd = odd << 1;
    Loaded halves;
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        const Vector half = _mm512_srli_epi32(x.part[part], 1);
        halves.part[part] = _mm512_add_epi32(
            half,
            _mm512_mask_mov_epi32(zero, part_of(below_odd & bits(0, limb_count - 1), part), all(base / 2)));
    }
    if ((odd & bit(limb_count - 1)) != 0) {
        const __mmask16 last = part_of(bit(limb_count - 1), 2);
        const Vector rounded = _mm512_mask_add_epi32(halves.part[2], last, halves.part[2], all(1));
        halves.part[2] = _mm512_mask_mov_epi32(rounded, _mm512_cmpeq_epi32_mask(rounded, all(base)), all(1));
    }
    store(halves, result);
    extent = extent_of(halves);
    return true;
}

QZOCI_AVX512 bool truncate_avx512(const Limb* limbs, bool add_unit, Limb* result, Extent& extent) {
    Loaded integer = load({limbs, 0, units_limb});
    if (add_unit) {
        integer.part[1] =
            _mm512_mask_add_epi32(integer.part[1], part_of(bit(units_limb), 1), integer.part[1], all(1));
    }
    if (!is_canonical(integer)) {
        return false;
    }
    store(integer, result);
    extent = extent_of(integer);
    return true;
}

QZOCI_AVX512 Extent extent_avx512(const Limb* limbs) {
    return extent_of(load({limbs, 0, limb_count - 1}));
}

QZOCI_AVX512 int compare_avx512(const Aligned& operands) {
    const Loaded a = load({operands.a, operands.first, operands.last});
    const Loaded b = load({operands.b, operands.first, operands.last});
    const LimbMask differs =
        joined(_mm512_cmpneq_epi32_mask(a.part[0], b.part[0]), _mm512_cmpneq_epi32_mask(a.part[1], b.part[1]),
               _mm512_cmpneq_epi32_mask(a.part[2], b.part[2]));
    if (differs == 0) {
        return 0;
    }
    const int i = std::countr_zero(differs);
    return operands.a[i] > operands.b[i] ? 1 : -1;
}

} // namespace qzoci::limbs

#endif /* QZOCI_HAS_X86_KERNELS */
