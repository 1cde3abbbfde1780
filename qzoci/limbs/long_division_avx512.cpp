#include "qzoci/limbs/avx512.h"
#include "qzoci/limbs/x86.h"

#if QZOCI_HAS_X86_KERNELS

#include "qzoci/limbs/avx512_vectors.h"
#include "qzoci/limbs/long_division.h"
#include "qzoci/limbs/portable.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace qzoci::limbs {
namespace {

using std::int64_t;
using std::uint64_t;

constexpr int array_limbs = 3 * vector_limbs;
static_assert(max_columns * 2 == array_limbs);

QZOCI_AVX512 inline void store_all(const Loaded& a, Limb (&limbs)[array_limbs]) {
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        _mm512_storeu_si512(limbs + part * vector_limbs, a.part[part]);
    }
}

QZOCI_AVX512 inline Loaded load_all(const Limb (&limbs)[array_limbs]) {
    return {{_mm512_loadu_si512(limbs), _mm512_loadu_si512(limbs + vector_limbs),
             _mm512_loadu_si512(limbs + 2 * vector_limbs)}};
}

/* An operand from its leading limb on, multiplied by the normalising factor. */
struct Scaled {
    Loaded limbs;
    LimbMask kept; /* where the plain scaling leaves a limb of exactly the base */
};

/* Lemma 1 of long_division.cpp: x_i = floor(B / factor), and then the limb is B exactly where it is 0 here. */
QZOCI_AVX512 inline Scaled scale(const Loaded& x, Limb factor) {
    const Vector by = _mm512_set1_epi64(factor);
    const Vector limb = _mm512_set1_epi64(base);
    const Vector suspicious = all(base / factor);
    Vector upper[4];
    upper[3] = _mm512_setzero_si512();
    Scaled scaled;
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        const Vector even = _mm512_mul_epu32(x.part[part], by);
        const Vector odd = _mm512_mul_epu32(_mm512_srli_epi64(x.part[part], 32), by);
        const Vector upper_even = over_base(even);
        const Vector upper_odd = over_base(odd);
        upper[part] = _mm512_or_si512(upper_even, _mm512_slli_epi64(upper_odd, 32));
        const Vector rest_even = _mm512_sub_epi64(even, _mm512_mul_epu32(upper_even, limb));
        const Vector rest_odd = _mm512_sub_epi64(odd, _mm512_mul_epu32(upper_odd, limb));
        scaled.limbs.part[part] = _mm512_or_si512(rest_even, _mm512_slli_epi64(rest_odd, 32));
    }
    Vector carries[4];
    carries[3] = _mm512_setzero_si512();
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        Vector& sum = scaled.limbs.part[part];
        sum = _mm512_add_epi32(sum, _mm512_alignr_epi32(upper[part + 1], upper[part], 1));
        carries[part] = _mm512_srli_epi32(_mm512_sub_epi32(all(max_limb), sum), 31);
    }
    Vector largest = _mm512_setzero_si512();
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        Vector& sum = scaled.limbs.part[part];
        sum = _mm512_add_epi32(_mm512_min_epu32(sum, _mm512_sub_epi32(sum, all(base))),
                               _mm512_alignr_epi32(carries[part + 1], carries[part], 1));
        largest = _mm512_max_epu32(largest, sum);
    }
    if (_mm512_cmpge_epu32_mask(largest, all(base)) != 0) {
        Limb limbs[array_limbs];
        store_all(scaled.limbs, limbs);
        ripple(limbs, array_limbs);
        scaled.limbs = load_all(limbs);
    }
    __mmask16 kept[3];
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        const Vector sum = scaled.limbs.part[part];
        kept[part] =
            _mm512_mask_testn_epi32_mask(_mm512_cmpeq_epi32_mask(x.part[part], suspicious), sum, sum);
    }
    scaled.kept = joined(kept[0], kept[1], kept[2]);
    return scaled;
}

/* The lanes joined to pairs. */
QZOCI_AVX512 inline const int64_t* store_columns(const Loaded& a, int64_t (&columns)[max_columns]) {
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        const Vector upper = _mm512_mul_epu32(a.part[part], _mm512_set1_epi64(base));
        _mm512_storeu_si512(columns + 8 * part, _mm512_add_epi64(upper, _mm512_srli_epi64(a.part[part], 32)));
    }
    return columns;
}

/* The digits of a division from lane 0 on, zeros after them. */
QZOCI_AVX512 inline Loaded digits_of(const ColumnDivision& division, int pairs) {
    Loaded digits;
    bool carries = false;
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        const int left = std::clamp(pairs - 8 * part, 0, 8);
        const Vector q =
            _mm512_maskz_loadu_epi64(static_cast<__mmask8>((1 << left) - 1), division.quotient() + 8 * part);
        carries |= _mm512_cmpge_epu64_mask(q, _mm512_set1_epi64(pair_base)) != 0;
        const Vector upper = over_base(q);
        const Vector rest = _mm512_sub_epi64(q, _mm512_mul_epu32(upper, _mm512_set1_epi64(base)));
        digits.part[part] = _mm512_or_si512(upper, _mm512_slli_epi64(rest, 32));
    }
    if (carries) {
        Limb settled[array_limbs] = {};
        division.settle(settled);
        digits = load_all(settled);
    }
    return digits;
}

QZOCI_AVX512 inline LimbMask equal_lanes(const Loaded& a, Limb limb) {
    return joined(_mm512_cmpeq_epi32_mask(a.part[0], all(limb)),
                  _mm512_cmpeq_epi32_mask(a.part[1], all(limb)),
                  _mm512_cmpeq_epi32_mask(a.part[2], all(limb)));
}

/* The lanes with a limb in lowest .. lowest + count - 1. */
QZOCI_AVX512 inline LimbMask lanes_within(const Loaded& a, Limb lowest, Limb count) {
    const auto within = [&](Vector x) QZOCI_AVX512 {
        return _mm512_cmplt_epu32_mask(_mm512_sub_epi32(x, all(lowest)), all(count));
    };
    return joined(within(a.part[0]), within(a.part[1]), within(a.part[2]));
}

/* Lemma 3: no digit or digit + 1 among the first count can have made a product limb of the base, the lowest
 * aside. Only a digit or a divisor limb up to the root of the base can. */
QZOCI_AVX512 bool products_are_clean(const Loaded& digits, int count, const Loaded& divisor, int n) {
    const LimbMask used = bits(0, count - 1);
    const LimbMask upper_limbs = bits(0, n - 2);
    LimbMask small_digits = lanes_within(digits, 1, small_limb) & used;
    LimbMask small_limbs = lanes_within(divisor, 1, small_limb) & upper_limbs;
    if ((small_digits | small_limbs) == 0) {
        return true;
    }
    Limb limbs[array_limbs];
    store_all(digits, limbs);
    for (; small_digits != 0; small_digits &= small_digits - 1) {
        const Limb q = limbs[std::countr_zero(small_digits)];
        LimbMask hits = equal_lanes(divisor, base / (q + 1));
        if (q > 1) {
            hits |= equal_lanes(divisor, base / q);
        }
        if ((hits & upper_limbs) != 0) {
            return false;
        }
    }
    store_all(divisor, limbs);
    for (; small_limbs != 0; small_limbs &= small_limbs - 1) {
        const Limb v = limbs[std::countr_zero(small_limbs)];
        const Limb lowest = base / (v + 1);
        if ((lanes_within(digits, lowest, base / v - lowest + 1) & used) != 0) {
            return false;
        }
    }
    return true;
}

/* Rounds half-up at limb 39 as the plain steps do; lane count - 1 has the rounding digit, limb 40. */
QZOCI_AVX512 inline void round_and_store(const Loaded& digits, const Places& places, Limb* result,
                                         Extent& extent) {
    Loaded placed = at_column(digits.part, places.start);
    const LimbMask halves = joined(_mm512_cmpge_epu32_mask(digits.part[0], all(base / 2)),
                                   _mm512_cmpge_epu32_mask(digits.part[1], all(base / 2)),
                                   _mm512_cmpge_epu32_mask(digits.part[2], all(base / 2)));
    if ((halves & bit(places.digits - 1)) != 0) {
        const LimbMask out = carries_out(bit(limb_count), equal_lanes(placed, max_limb));
        QZOCI_UNROLLED
        for (int part = 0; part < 3; ++part) {
            const Vector x = placed.part[part];
            const __mmask16 cleared = part_of(out, part);
            placed.part[part] = _mm512_maskz_add_epi32(
                static_cast<__mmask16>(~cleared), x, _mm512_maskz_mov_epi32(part_of(out >> 1, part), all(1)));
        }
    }
    store(placed, result);
    extent = extent_of(placed);
}

/* Both operands of a division. */
struct Operands {
    Loaded u;
    Loaded v;
    Scaled scaled_v;
    Limb factor;
    int n;

    /* False: a limb above 99999999, or a scaled divisor with a limb of the base. */
    QZOCI_AVX512 bool prepare(const Magnitude& dividend, const Magnitude& divisor) {
        u = load(dividend);
        v = load(divisor);
        n = divisor.last - divisor.first + 1;
        if (!is_canonical(u) || !is_canonical(v)) {
            return false;
        }
        factor = base / (divisor.limbs[divisor.first] + 1);
        scaled_v = scale(from_column(v, divisor.first), factor);
        return scaled_v.kept == 0;
    }
};

/* Lemma 5: the dividend's leading limb, in lane 1 after the carry, may be the base. */
bool is_clean_dividend(const Scaled& scaled_u) {
    return (scaled_u.kept & ~bit(1)) == 0;
}

/* The division of the scaled operands, of which the dividend has its carry in lane 0 and counts so many limbs
 * after it. */
class Division {
public:
    QZOCI_AVX512 Division(const Operands& operands, const Scaled& scaled_u, int dividend_limbs)
        : columns_(store_columns(scaled_u.limbs, dividend_), dividend_limbs / 2 + 1,
                   store_columns(operands.scaled_v.limbs, divisor_), (operands.n + 1) / 2) {}

    Division(const Division&) = delete;
    Division& operator=(const Division&) = delete;

    QZOCI_AVX512 Loaded digits(int pairs) {
        columns_.run(pairs);
        return digits_of(columns_, pairs);
    }

    int64_t next() const { return columns_.next(); }

private:
    int64_t dividend_[max_columns];
    int64_t divisor_[max_columns];
    ColumnDivision columns_;
};

/* ---- Remainder ---- */

/* One or two digits from the leading limbs of both operands, as one number q. With D_0, D_1, D_2 and W_0, W_1
 * their pairs, the dividend's standing so that D_0 is q's excess over 10^16 and below 10^8, a first quotient in
 * floating point is at most 10 off, and its rest is good to 10^-6 of the divisor: false where that leaves q in
 * doubt. Limbs that are left out are worth 10^-8 of it. */
QZOCI_AVX512 bool few_digits(const Magnitude& u, const Magnitude& v, int count, uint64_t& q) {
    constexpr double pair = 1e16;
    constexpr double doubt = 1e-5;
    const auto limb_at = [](const Magnitude& a, int i) -> uint64_t {
        return i >= a.first && i <= a.last ? a.limbs[i] : 0;
    };
    const auto pair_at = [&](const Magnitude& a, int i) { return limb_at(a, i) * base + limb_at(a, i + 1); };
    const int second = u.first + count - 1;
    const uint64_t d0 = limb_at(u, second - 1);
    const uint64_t d1 = pair_at(u, second);
    const uint64_t d2 = pair_at(u, second + 2);
    const uint64_t w0 = pair_at(v, v.first);
    const uint64_t w1 = pair_at(v, v.first + 2);
    const auto number = [](uint64_t x) { return static_cast<double>(static_cast<int64_t>(x)); };
    const double inverse = 1 / (number(w0) + number(w1) / pair);
    const auto rough = static_cast<uint64_t>(
        static_cast<int64_t>(((number(d0) * pair + number(d1)) + number(d2) / pair) * inverse));
    const double rest = number(d0 * static_cast<uint64_t>(pair_base) + d1 - rough * w0) +
                        (number(d2) - number(rough) * number(w1)) / pair;
    const double quotient = rest * inverse;
    const double whole = std::floor(quotient);
    q = rough + static_cast<uint64_t>(static_cast<int64_t>(whole));
    return quotient - whole > doubt && quotient - whole < 1 - doubt;
}

/* Lemma 3 for one digit. */
QZOCI_AVX512 inline bool product_is_clean(Limb q, const Operands& operands) {
    const Limb t = std::max(q, Limb{1}); /* 0 and 1 make no limb of the base */
    return ((equal_lanes(operands.scaled_v.limbs, base / t) |
             equal_lanes(operands.scaled_v.limbs, base / (q + 1))) &
            bits(0, operands.n - 2)) == 0;
}

/* u - q * v from limb first = v.first on; the limbs before it cancel. */
QZOCI_AVX512 inline Loaded less_product(const Operands& operands, const Limb* q, int count, int first) {
    Columns<3> columns;
    const auto add = [&](int part, Vector digit, Vector limbs) QZOCI_AVX512 {
        columns.even[part] = _mm512_add_epi64(columns.even[part], _mm512_mul_epu32(digit, limbs));
        columns.odd[part] =
            _mm512_add_epi64(columns.odd[part], _mm512_mul_epu32(digit, _mm512_srli_epi64(limbs, 32)));
    };
    const Loaded& v = operands.v;
    const Vector last_digit = all(q[count - 1]);
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        columns.even[part] = _mm512_mul_epu32(last_digit, v.part[part]);
        columns.odd[part] = _mm512_mul_epu32(last_digit, _mm512_srli_epi64(v.part[part], 32));
    }
    if (count == 2) {
        const Vector digit = all(q[0]);
        add(0, digit, _mm512_alignr_epi32(v.part[1], v.part[0], 1));
        add(1, digit, _mm512_alignr_epi32(v.part[2], v.part[1], 1));
        add(2, digit, _mm512_alignr_epi32(_mm512_setzero_si512(), v.part[2], 1));
    } else if (count > 2) {
        Limb padded[2 * array_limbs];
        QZOCI_UNROLLED
        for (int part = 0; part < 3; ++part) {
            _mm512_storeu_si512(padded + part * vector_limbs, v.part[part]);
            _mm512_storeu_si512(padded + array_limbs + part * vector_limbs, _mm512_setzero_si512());
        }
        for (int j = 0; j < count - 1; ++j) {
            const Vector digit = all(q[j]);
            const Limb* const moved = padded + (count - 1 - j);
            QZOCI_UNROLLED
            for (int part = 0; part < 3; ++part) {
                add(part, digit, _mm512_loadu_si512(moved + part * vector_limbs));
            }
        }
    }
    Vector product[3];
    carry_through(columns, product);
    const LimbMask kept = bits(first, limb_count - 1);
    __mmask16 makes[3];
    __mmask16 passes[3];
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        makes[part] = _mm512_cmplt_epu32_mask(operands.u.part[part], product[part]);
        passes[part] = _mm512_cmpeq_epi32_mask(operands.u.part[part], product[part]);
    }
    const LimbMask out =
        carries_out(joined(makes[0], makes[1], makes[2]) & kept, joined(passes[0], passes[1], passes[2]));
    Loaded left;
    QZOCI_UNROLLED
    for (int part = 0; part < 3; ++part) {
        const Vector difference = _mm512_sub_epi32(operands.u.part[part], product[part]);
        const Vector less_borrow =
            _mm512_mask_sub_epi32(difference, part_of(out >> 1, part), difference, all(1));
        left.part[part] =
            _mm512_maskz_mov_epi32(part_of(kept, part), _mm512_mask_add_epi32(less_borrow, part_of(out, part),
                                                                              less_borrow, all(base)));
    }
    return left;
}

/* Then a chain of digits takes the time, and vectors would only lengthen it. */
bool has_two_limbs(const Magnitude& divisor) {
    return divisor.last == divisor.first + 1;
}

} // namespace

QZOCI_AVX512 bool quotient_avx512(const Magnitude& dividend, const Magnitude& divisor, Limb* result,
                                  Extent& extent) {
    const Places places(dividend, divisor);
    if (has_two_limbs(divisor) || places.digits < 1) {
        return quotient_portable(dividend, divisor, result, extent);
    }
    Operands operands;
    if (!operands.prepare(dividend, divisor)) {
        return false;
    }
    const Scaled scaled_u = scale(from_column(operands.u, dividend.first - 1), operands.factor);
    Division division(operands, scaled_u, dividend.last - dividend.first + 1);
    const int pairs = (places.digits + 1) / 2;
    const Loaded digits = division.digits(pairs);
    if (!products_are_clean(digits, places.digits, operands.scaled_v.limbs, operands.n)) {
        return false;
    }
    if (!is_clean_dividend(scaled_u)) {
        Limb settled[array_limbs];
        store_all(digits, settled);
        if (!digits_stay_inside(settled, places.digits, 2 * pairs - places.digits, division.next())) {
            return false;
        }
    }
    round_and_store(digits, places, result, extent);
    return true;
}

QZOCI_AVX512 bool remainder_avx512(const Magnitude& dividend, const Magnitude& divisor, Limb* result,
                                   Extent& extent) {
    if (has_two_limbs(divisor)) {
        return remainder_portable(dividend, divisor, result, extent);
    }
    Operands operands;
    if (!operands.prepare(dividend, divisor)) {
        return false;
    }
    const int count = divisor.first - dividend.first + 1;
    const int limbs = divisor.last - dividend.first + 1; /* those below take no part */
    const Loaded counted = from_column(operands.u, dividend.first - 1);
    const LimbMask suspects = equal_lanes(counted, base / operands.factor) & bits(2, limbs);
    Limb digits[array_limbs];
    uint64_t q = 0;
    if (count <= 2 && suspects == 0 && few_digits(dividend, divisor, count, q)) {
        digits[0] = static_cast<Limb>(q / base);
        digits[count - 1] = static_cast<Limb>(q % base);
        if (!product_is_clean(digits[0], operands) || !product_is_clean(digits[count - 1], operands)) {
            return false;
        }
    } else {
        Loaded within;
        QZOCI_UNROLLED
        for (int part = 0; part < 3; ++part) {
            within.part[part] = _mm512_maskz_mov_epi32(part_of(bits(1, limbs), part), counted.part[part]);
        }
        const Scaled scaled_u = scale(within, operands.factor);
        Division division(operands, scaled_u, limbs);
        const Loaded found = division.digits((count + 1) / 2);
        if (!is_clean_dividend(scaled_u) ||
            !products_are_clean(found, count, operands.scaled_v.limbs, operands.n)) {
            return false;
        }
        store_all(found, digits);
    }
    const Loaded left = less_product(operands, digits, count, divisor.first);
    store(left, result);
    extent = extent_of(left);
    return true;
}

} // namespace qzoci::limbs

#endif /* QZOCI_HAS_X86_KERNELS */
