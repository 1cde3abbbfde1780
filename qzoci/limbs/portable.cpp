#include "qzoci/limbs/portable.h"

#include "qzoci/limbs/reciprocal.h"

#include <algorithm>

namespace qzoci::limbs {
namespace {

using std::uint64_t;

constexpr Limb half_limb = base / 2;

/* The limb of the product that decides the rounding, and the last column that is summed: two guard columns.
 */
constexpr int deciding_limb = limb_count;
constexpr int last_column = deciding_limb + 2;

/* The dropped columns are worth less than this many units of the first guard limb, see product_portable. */
constexpr Limb guard_units = 42;

/* sums[c + 1] = the sum of all a_i * b_j with i + j - 19 = c, for c up to last_column. Each of the at most 40
 * products is below 10^16, so a sum is below 2^59. */
void sum_columns(const Magnitude& a, const Magnitude& b, uint64_t* sums) {
    for (int i = a.first; i <= a.last; ++i) {
        const int last = std::min(b.last, last_column + units_limb - i);
        const uint64_t factor = a.limbs[i];
        uint64_t* const row = sums + i - units_limb + 1;
        for (int j = b.first; j <= last; ++j) {
            row[j] += factor * b.limbs[j];
        }
    }
}

/* Turns the sums of columns first..last into limbs; what leaves column first goes into column first - 1,
 * which must be zero. Two passes without a chain leave limbs below base + 42, and only a rare one needs the
 * rippling third. */
void carry_columns(uint64_t* columns, int first, int last) {
    for (int pass = 0; pass < 2; ++pass) {
        uint64_t above = columns[first] / base;
        columns[first - 1] += above;
        for (int c = first; c < last; ++c) {
            const uint64_t next = columns[c + 1] / base;
            columns[c] = columns[c] - above * base + next;
            above = next;
        }
        columns[last] -= above * base;
    }
    for (int c = last; c >= first; --c) {
        if (columns[c] >= base) {
            columns[c] -= base;
            ++columns[c - 1];
        }
    }
}

/* Adds one to limb 39 with a full carry; one out of limb 0 is lost. */
void increment_last(Limb* limbs) {
    for (int i = limb_count - 1; i >= 0; --i) {
        if (limbs[i] < max_limb) {
            ++limbs[i];
            return;
        }
        limbs[i] = 0;
    }
}

} // namespace

bool is_canonical(const Magnitude& a) {
    return std::all_of(a.limbs + a.first, a.limbs + a.last + 1, [](Limb limb) { return limb < base; });
}

Extent extent_within(const Limb* limbs, int first, int last) {
    while (first <= last && limbs[first] == 0) {
        ++first;
    }
    if (first > last) {
        return {-1, -1};
    }
    while (limbs[last] == 0) {
        --last;
    }
    return {first, last};
}

bool sum_portable(const Aligned& operands, Limb* result, Extent& extent) {
    Limb sums[limb_count] = {};
    Limb carry = 0;
    Limb seen = 0;
    for (int i = operands.last; i >= operands.first; --i) {
        const Limb a = operands.a[i];
        const Limb b = operands.b[i];
        seen = std::max({seen, a, b});
        const Limb sum = a + b + carry;
        carry = sum >= base ? 1 : 0;
        sums[i] = sum - (carry != 0 ? base : 0);
    }
    if (seen >= base || (carry != 0 && operands.first <= 1)) {
        return false;
    }
    const int first = operands.first - static_cast<int>(carry);
    if (carry != 0) {
        sums[first] = 1;
    }
    std::copy(sums, sums + limb_count, result);
    extent = extent_within(result, first, operands.last);
    return true;
}

/* A borrow out of the first limb, which only limbs outside first..last can cause, declines. */
bool difference_portable(const Aligned& operands, Limb* result, Extent& extent, bool& a_is_larger) {
    const auto [in_a, in_b] = std::mismatch(operands.a, operands.a + limb_count, operands.b);
    if (in_a == operands.a + limb_count) {
        return false;
    }
    const bool larger_is_a = *in_a > *in_b;
    const Limb* const larger = larger_is_a ? operands.a : operands.b;
    const Limb* const smaller = larger_is_a ? operands.b : operands.a;
    Limb differences[limb_count] = {};
    Limb borrow = 0;
    Limb seen = 0;
    for (int i = operands.last; i >= operands.first; --i) {
        seen = std::max({seen, larger[i], smaller[i]});
        const Limb subtrahend = smaller[i] + borrow;
        borrow = larger[i] < subtrahend ? 1 : 0;
        differences[i] = larger[i] + (borrow != 0 ? base : 0) - subtrahend;
    }
    if (seen >= base || borrow != 0) {
        return false;
    }
    std::copy(differences, differences + limb_count, result);
    extent = extent_within(result, operands.first, operands.last);
    a_is_larger = larger_is_a;
    return true;
}

/* Short product: columns below last_column are left out. What they are worth is less than
 * 40 * 10^16 * (1 + 10^-8 + ...) units of column 43, hence less than 42 units of column 41. So the deciding
 * limb is the true one unless limb 41 >= base - 42; and a deciding limb that is one too small matters only
 *   - at 49999999, which is then really 50000000 and rounds up;
 *   - at 99999999, which is then really 0 with a carry into limb 39: rounding up adds the same one there,
 * unless limb 39 is 99999999, which a carry makes 0 but the rounding 1. In these cases the kernel declines.
 */
bool product_portable(const Magnitude& a, const Magnitude& b, Limb* result, Extent& extent) {
    if (!is_canonical(a) || !is_canonical(b)) {
        return false;
    }
    const int first = a.first + b.first - units_limb;
    const int last = std::min(a.last + b.last - units_limb, last_column);
    const bool exact = a.last + b.last - units_limb <= last_column;
    /* Column -1 has a place, as the limb above limb 0 that is dropped. */
    uint64_t sums[last_column + 2] = {};
    uint64_t* const columns = sums + 1;
    if (first <= last) {
        sum_columns(a, b, sums);
        carry_columns(columns, first, last);
    }
    const bool inconclusive =
        columns[limb_count - 1] == max_limb ||
        (columns[deciding_limb] == half_limb - 1 && columns[deciding_limb + 1] >= base - guard_units);
    if (!exact && inconclusive) {
        return false;
    }
    std::copy(columns, columns + limb_count, result);
    if (columns[deciding_limb] >= half_limb) {
        Limb& rounded = result[limb_count - 1];
        rounded = rounded == max_limb ? 1 : rounded + 1;
    }
    extent = extent_within(result, std::clamp(first - 1, 0, limb_count - 1), limb_count - 1);
    return true;
}

/* A limb of x * 0.5 is floor(x_i / 2), with half a base added when the limb above is odd; the dropped limb is
 * half a base when limb 39 is odd, and rounds up. */
bool half_portable(const Magnitude& a, Limb* result, Extent& extent) {
    if (!is_canonical(a)) {
        return false;
    }
    Limb halves[limb_count] = {};
    Limb odd = 0;
    for (int i = a.first; i <= a.last; ++i) {
        halves[i] = a.limbs[i] / 2 + odd * half_limb;
        odd = a.limbs[i] % 2;
    }
    if (a.last < limb_count - 1) {
        halves[a.last + 1] = odd * half_limb;
    } else if (odd != 0) {
        Limb& rounded = halves[limb_count - 1];
        rounded = rounded == max_limb ? 1 : rounded + 1;
    }
    std::copy(halves, halves + limb_count, result);
    extent = extent_within(result, a.first, limb_count - 1);
    return true;
}

/* Two limbs a step. With R = 10^16 mod d, the remainder r so far and the next pair X of dividend limbs, the
 * next pair of quotient limbs is r * floor(10^16 / d) + floor(W / d) for W = r * R + X < 10^16 + 10^16 <
 * 2^55. The next W is W * R - floor(W / d) * (d * R) + X', modulo 2^64, so that one high product, one shift
 * and one low product make the chain. Limb first + i of the quotient stands at limb first + shift + i; the
 * precondition leaves at least one place, and a limb below limb 39 to round by. */
bool quotient_by_limb_portable(const Magnitude& dividend, Limb divisor, int shift, Limb* result,
                               Extent& extent) {
    if (!is_canonical(dividend)) {
        return false;
    }
    constexpr uint64_t pair_base = uint64_t{base} * base;
    const int start = dividend.first + shift;
    /* Limb 40 rounds, limb 41 is the second of a pair. */
    Limb limbs[limb_count + 2] = {};
    const auto limb_at = [&](int i) -> uint64_t { return i <= dividend.last ? dividend.limbs[i] : 0; };
    const auto pair_at = [&](int i) { return limb_at(i) * base + limb_at(i + 1); };
    if (divisor == 1) {
        for (int i = start; i <= deciding_limb; ++i) {
            limbs[i] = static_cast<Limb>(limb_at(i - shift));
        }
    } else {
        const Reciprocal reciprocal(divisor);
        const uint64_t pair_quotient = pair_base / divisor;
        const uint64_t pair_rest = pair_base % divisor;
        const uint64_t step = pair_rest * divisor;
        uint64_t rest = 0;
        uint64_t w = pair_at(dividend.first);
        for (int i = start; i <= deciding_limb; i += 2) {
            const uint64_t low = reciprocal.quotient(w);
            const uint64_t pair = rest * pair_quotient + low;
            limbs[i] = static_cast<Limb>(pair / base);
            limbs[i + 1] = static_cast<Limb>(pair % base);
            rest = w - low * divisor;
            w = w * pair_rest - low * step + pair_at(i + 2 - shift);
        }
    }
    const bool rounds_up = limbs[deciding_limb] > half_limb;
    if (rounds_up) {
        increment_last(limbs);
    }
    std::copy(limbs, limbs + limb_count, result);
    extent = extent_within(result, rounds_up ? 0 : start, limb_count - 1);
    return true;
}

bool truncate_portable(const Limb* limbs, bool add_unit, Limb* result, Extent& extent) {
    const Limb unit = add_unit ? 1 : 0;
    if (!is_canonical({limbs, 0, units_limb}) || limbs[units_limb] + unit == base) {
        return false;
    }
    std::copy(limbs, limbs + units_limb + 1, result);
    result[units_limb] += unit;
    std::fill(result + units_limb + 1, result + limb_count, Limb{0});
    extent = extent_within(result, 0, units_limb);
    return true;
}

Extent extent_portable(const Limb* limbs) {
    return extent_within(limbs, 0, limb_count - 1);
}

int compare_portable(const Aligned& operands) {
    for (int i = operands.first; i <= operands.last; ++i) {
        if (operands.a[i] != operands.b[i]) {
            return operands.a[i] > operands.b[i] ? 1 : -1;
        }
    }
    return 0;
}

} // namespace qzoci::limbs
