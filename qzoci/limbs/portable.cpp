#include "qzoci/limbs/portable.h"

#include "qzoci/limbs/reciprocal.h"

#include <algorithm>

namespace qzoci::limbs {
namespace {

using std::uint64_t;

constexpr Limb half_limb = base / 2;

/* Two limbs as one digit, base 10^16: pair i holds limbs 2 * i and 2 * i + 1, and the point stands behind
 * pair 9. */
constexpr uint64_t pair_base = uint64_t{base} * base;
constexpr int pair_count = limb_count / 2;
constexpr int units_pair = units_limb / 2;

/* The limb that decides the rounding of a product or quotient. In a product it leads the pair below the last
 * one, and the guard limb is the other one of that pair. */
constexpr int deciding_limb = limb_count;
constexpr uint64_t half_pair = pair_base / 2;

/* The last column of pairs of a product that is summed. */
constexpr int last_column = pair_count + 1;

/* The dropped columns are worth less than this many units of the guard limb, see product_portable. */
constexpr Limb guard_units = 42;

/* An operand in pairs. */
struct Pairs {
    explicit Pairs(const Magnitude& a) : first(a.first / 2), last(a.last / 2) {
        for (int i = first; i <= last; ++i) {
            pair[i] = a.limbs[2 * i] * uint64_t{base} + a.limbs[2 * i + 1];
        }
        if (a.first % 2 != 0) {
            pair[first] -= a.limbs[a.first - 1] * uint64_t{base};
        }
        if (a.last % 2 == 0) {
            pair[last] -= a.limbs[a.last + 1];
        }
    }

    uint64_t pair[pair_count];
    int first;
    int last;
};

/* The sum of all a_i * b_j with i + j - 9 = column. As a.first + b.first >= 9, it has at most min(column + 1,
 * 30 - column) <= 15 products, each below 10^32: it is below 1.5 * 10^33 < 2^111. */
Wide column_sum(const Pairs& a, const Pairs& b, int column) {
    const int total = column + units_pair;
    const int last = std::min(a.last, total - b.first);
    Wide sum;
    for (int i = std::max(a.first, total - b.last); i <= last; ++i) {
        sum = sum + Wide::product(static_cast<std::int64_t>(a.pair[i]),
                                  static_cast<std::int64_t>(b.pair[total - i]));
    }
    return sum;
}

/* pairs[c] = the digit of column c, for first..last; what leaves column first goes into pairs[first - 1],
 * which must be zero. The quotient of a sum S < 2^111 by 10^16 is formed from h = floor(S / 2^48) < 2^63 and
 * M = floor(2^117 / 10^16) as floor(h * M / 2^69). It is not above S / 10^16, and less than 2^48 / 10^16 +
 * 2^-6 + 1 < 1.05 below it: the rest is below 1.05 * 10^16. With the carry, which is below 1.5 * 10^17, it is
 * divided once more; then a digit is below 10^16 + 17, and only a rare one needs the rippling pass. */
void sum_columns(const Pairs& a, const Pairs& b, int first, int last, uint64_t* pairs) {
    constexpr uint64_t reciprocal = 16615349947311448411U;
    uint64_t below = 0; /* the carry of the column below, in the first pass */
    uint64_t below_twice = 0;
    bool excess = false;
    for (int c = last; c >= first; --c) {
        const Wide sum = column_sum(a, b, c);
        const uint64_t carry = high_product(static_cast<uint64_t>(sum.shifted(48)), reciprocal) >> 5;
        const uint64_t once = static_cast<uint64_t>(sum.low()) - carry * pair_base + below;
        const uint64_t carry_twice = once / pair_base;
        pairs[c] = once - carry_twice * pair_base + below_twice;
        excess |= pairs[c] >= pair_base;
        below = carry;
        below_twice = carry_twice;
    }
    pairs[first - 1] = below + below_twice;
    for (int c = last; excess && c >= first; --c) {
        if (pairs[c] >= pair_base) {
            pairs[c] -= pair_base;
            ++pairs[c - 1];
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

/* The whole array first: a fixed count and no early end suit vector instructions, which compilers know on most
 * machines. The upper bit of x | (max_limb - x) is set just where x is above max_limb. */
bool is_canonical(const Magnitude& a) {
    Limb seen = 0;
    for (int i = 0; i < limb_count; ++i) {
        seen |= a.limbs[i] | (max_limb - a.limbs[i]);
    }
    return seen >> 31 == 0 ||
           std::all_of(a.limbs + a.first, a.limbs + a.last + 1, [](Limb limb) { return limb < base; });
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

/* Short product: the last columns are left out. Columns of single limbs behind limb 42, as in the vector
 * kernels, are worth less than 40 * 10^16 * (1 + 10^-8 + ...) units of limb 43, hence less than 42 units of
 * limb 41; columns of pairs behind limb 43, as here, less than 20 * 10^32 * (1 + 10^-16 + ...) units of limb
 * 45, hence less than 21 of limb 41. So the deciding limb is the true one unless limb 41 >= base - 42; and a
 * deciding limb that is one too small matters only
 *   - at 49999999, which is then really 50000000 and rounds up;
 *   - at 99999999, which is then really 0 with a carry into limb 39: rounding up adds the same one there,
 * unless limb 39 is 99999999, which a carry makes 0 but the rounding 1. In these cases the kernel declines.
 */
bool product_portable(const Magnitude& a, const Magnitude& b, Limb* result, Extent& extent) {
    if (!is_canonical(a) || !is_canonical(b)) {
        return false;
    }
    const Pairs a_pairs(a);
    const Pairs b_pairs(b);
    const int first = a_pairs.first + b_pairs.first - units_pair;
    const int last = std::min(a_pairs.last + b_pairs.last - units_pair, last_column);
    const bool exact = a_pairs.last + b_pairs.last - units_pair <= last_column;
    /* Pair -1 has a place, as the one above limb 0 that is dropped. */
    uint64_t places[last_column + 2] = {};
    uint64_t* const pairs = places + 1;
    if (first <= last) {
        sum_columns(a_pairs, b_pairs, first, last, pairs);
    }
    const uint64_t deciding = pairs[pair_count];
    const bool inconclusive = pairs[pair_count - 1] % base == max_limb ||
                              (deciding < half_pair && deciding >= half_pair - guard_units);
    if (!exact && inconclusive) {
        return false;
    }
    const int start = std::clamp(first - 1, 0, pair_count - 1);
    const int end = std::min(last + 1, pair_count);
    std::fill(result, result + limb_count, Limb{0});
    for (int i = start; i < end; ++i) {
        result[2 * i] = static_cast<Limb>(pairs[i] / base);
        result[2 * i + 1] = static_cast<Limb>(pairs[i] % base);
    }
    if (deciding >= half_pair) {
        Limb& rounded = result[limb_count - 1];
        rounded = rounded == max_limb ? 1 : rounded + 1;
    }
    extent = extent_within(result, 2 * start, limb_count - 1);
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
        const uint64_t pair_quotient = reciprocal.quotient(pair_base);
        const uint64_t pair_rest = pair_base - pair_quotient * divisor;
        const uint64_t step = pair_rest * divisor;
        uint64_t rest = 0;
        uint64_t w = pair_at(dividend.first);
        const int last = dividend.last + shift;
        for (int i = start; i <= deciding_limb && (i <= last || rest != 0); i += 2) {
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

Extent remainder_by_limb_portable(const Magnitude& dividend, Limb divisor, int last, Limb* result) {
    /* The rest is below 2^32, so that what is divided stays below 2^32 x 10^8 + 2^32 whatever the limbs are: the
     * laid-down steps, without their record. */
    uint64_t rest = 0;
    for (int i = dividend.first; i <= last; ++i) {
        rest = (rest * base + dividend.limbs[i]) % divisor;
    }
    if (result != dividend.limbs) {
        std::copy(dividend.limbs + last + 1, dividend.limbs + dividend.last + 1, result + last + 1);
    }
    std::fill(result, result + last, Limb{0});
    result[last] = static_cast<Limb>(rest);
    std::fill(result + dividend.last + 1, result + limb_count, Limb{0});
    return extent_within(result, last, dividend.last);
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
