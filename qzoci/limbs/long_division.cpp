/* Quotient and remainder by a divisor of several limbs, where the laid-down digits are known to be the true
 * ones.
 *
 * The plain steps scale both operands by d = floor(B / (v_0 + 1)) to u' and v' (B = 10^8, v_0 the leading
 * divisor limb; limbs here are counted from the most significant one), estimate each digit from two limbs,
 * subtract its product and add back once at most. Two oddities can make a digit differ from the true one:
 *   - scaling and product forming keep a limb of exactly B;
 *   - a two-limb divisor, n = 2, takes the first estimate unrefined.
 *
 * Lemma 1. Scaling canonical x by m leaves a limb equal to B iff m * x_i + c_i = B for the carry c_i <= m - 1
 * that enters it; then x_i = floor(B / m), since (B - m, B] holds one multiple of m. []
 *
 * Lemma 2. If no limb of u' and v' is B, no product t * v' that is formed has a limb equal to B but possibly
 * its lowest, and n >= 3, then every digit is the true one. For by induction each window U is canonical and
 * below B * v'. The refinement is the classical two-limb test, so q <= qq <= q + 1. All limbs are canonical, so
 * the subtraction's borrow tells U < qq * v', and one add-back is exactly enough. A lowest product limb of B
 * meets no borrow and only borrows: value and borrow stay right. []
 *
 * Lemma 3. A product limb t * v'_i + c equals B only if v'_i = floor(B / t), and then t <= 10^4 or v'_i <=
 * 10^4. The multipliers t are a digit q or q + 1. []
 *
 * Lemma 4. Let Lemma 2 hold but for limbs B in u'. If every true digit after the leading one, up
 * to and with the first that is not used, lies in 5..B - 3, the digits are still the true ones. For a limb B
 * keeps all values right; only two things can go wrong. (i) The borrow: with r the highest window position
 * holding B, no borrow leaves r, so the flag errs only if the subtrahend's part above r exceeds the window's
 * by one while the true difference is not negative; then the true remainder is below 2 B^r, r <= n - 1, and
 * the next true digit is at most 4. (ii) The estimate: the two-limb value can be one too small, which lowers
 * qq below q only if the remainder is below B^(n-2), hence the next digit 0; or qq starts from B instead of B
 * - 1, where the true digit is at least B - 2. []
 *
 * Lemma 5. A limb of B in u' that is its leading one does no harm. For nothing is carried out of it, so the
 * first window begins 0, B and its value is the true one; v'_0 >= B / 2 makes the trial digit 1, or 2 where
 * v'_0 = B / 2, which Lemma 3 excludes. The subtrahend v' takes v'_0 < B and at most a borrow from that limb:
 * it borrows nothing and is canonical from then on. []
 *
 * A quotient has its digits looked at down to the one below limb 39; whatever later digits would be does not
 * matter. A remainder has them down to the units of v's last limb, and is then u - q * v: what is left of u',
 * divided by d. By Lemma 2 it is left in canonical limbs; under Lemma 4 it need not be.
 *
 * With n = 2 the digits are formed as they are laid down, see TwoLimbDivision. */
#include "qzoci/limbs/long_division.h"
#include "qzoci/limbs/portable.h"

#include <algorithm>
#include <cstdint>

namespace qzoci::limbs {
namespace {

using std::int64_t;
using std::uint64_t;

/* A scaled dividend has a carry limb above its limbs, and zero limbs below them. */
constexpr int scaled_limbs = limb_count + 1;

/* scaled[0..count] = limbs[0..count-1] * factor, with the carry in scaled[0], all limbs canonical. False: the
 * plain scaling leaves a limb of exactly B that is not the leading one. */
bool scale(const Limb* limbs, int count, Limb factor, Limb* scaled) {
    /* Upper and lower halves first, without a chain; then the carries, each 0 or 1 more. */
    uint64_t upper[limb_count + 1];
    bool suspect = false;
    const Limb suspicious =
        factor == 1 ? base : base / factor; /* Lemma 1; factor 1 never makes a limb of B */
    upper[count] = 0;
    for (int i = 0; i < count; ++i) {
        const uint64_t product = uint64_t{limbs[i]} * factor;
        upper[i] = product / base;
        scaled[i + 1] = static_cast<Limb>(product - upper[i] * base);
        suspect |= limbs[i] == suspicious;
    }
    Limb carry = 0;
    bool exact_base = false;
    for (int i = count - 1; i >= 0; --i) {
        const Limb sum = scaled[i + 1] + static_cast<Limb>(upper[i + 1]) + carry;
        /* The plain scaling sees limb * factor + incoming carry. */
        exact_base |= suspect && i > 0 && upper[i] * base + sum == base;
        carry = sum >= base ? 1 : 0;
        scaled[i + 1] = carry != 0 ? sum - base : sum;
    }
    scaled[0] = static_cast<Limb>(upper[0]) + carry;
    return !exact_base;
}

/* Lemma 3: no digit or digit + 1 can have made a product limb of B, the lowest aside. */
bool products_are_clean(const Limb* digits, int count, const Limb* scaled_divisor, int divisor_limbs) {
    const Limb* const divisor_end = scaled_divisor + divisor_limbs - 1;
    const auto is_small = [](Limb limb) { return limb - 1 < small_limb; };
    const bool small_divisor_limbs = std::any_of(scaled_divisor, divisor_end, is_small);
    for (int k = 0; k < count; ++k) {
        const Limb q = digits[k];
        for (Limb t = q; t <= q + 1 && t <= small_limb; ++t) {
            if (t >= 2 && std::find(scaled_divisor, divisor_end, base / t) != divisor_end) {
                return false;
            }
        }
        if (!small_divisor_limbs) {
            continue;
        }
        for (const Limb* v = scaled_divisor; v != divisor_end; ++v) {
            if (is_small(*v) && q + 1 > base / (*v + 1) && q <= base / *v) {
                return false;
            }
        }
    }
    return true;
}

/* ---- Divisors of two limbs ---- */

/* Both operands multiplied by the normalising factor, the carry first, canonical. */
struct Scaled {
    /* False: the plain scaling leaves a limb of exactly B, in the dividend other than as its leading one. */
    bool scale_divisor(const Magnitude& v) {
        factor = base / (v.limbs[v.first] + 1);
        n = v.last - v.first + 1;
        return scale(v.limbs + v.first, n, factor, divisor_with_carry);
    }

    bool scale_dividend(const Magnitude& u, int last) {
        m = last - u.first + 1;
        return scale(u.limbs + u.first, m, factor, dividend);
    }

    const Limb* divisor() const {
        return divisor_with_carry + 1;
    } /* the carry is 0 by choice of the factor */

    /* Limb i of the dividend, the carry being limb 0. */
    Limb dividend_limb(int i) const { return i <= m ? dividend[i] : 0; }

    Limb factor = 0;
    int n = 0;
    int m = 0;
    Limb divisor_with_carry[scaled_limbs];
    Limb dividend[scaled_limbs];
};

/* Precondition: n = 2. */
bool is_regular_two_limb_divisor(const Scaled& scaled) {
    return scaled.divisor()[0] != base / 2;
}

TwoLimbDivision two_limb_division(const Scaled& scaled) {
    return {scaled.divisor()[0], scaled.divisor()[1],
            uint64_t{scaled.dividend[0]} * base + scaled.dividend_limb(1)};
}

/* ---- Longer divisors ---- */

int pairs_of(const Limb* limbs, int count, int64_t (&columns)[max_columns]) {
    const int whole = count / 2;
    for (int i = 0; i < whole; ++i) {
        columns[i] = int64_t{limbs[2 * i]} * base + limbs[2 * i + 1];
    }
    std::fill(columns + whole, columns + max_columns, 0);
    if (count % 2 != 0) {
        columns[whole] = int64_t{limbs[count - 1]} * base;
    }
    return (count + 1) / 2;
}

/* digits[0..2 * pairs - 1] = the true digits; the result is an estimate of the next pair. */
int64_t divide_columns(const Scaled& scaled, int pairs, Limb* digits) {
    int64_t dividend[max_columns];
    int64_t divisor[max_columns];
    const int dividend_pairs = pairs_of(scaled.dividend, scaled.m + 1, dividend);
    const int divisor_pairs = pairs_of(scaled.divisor(), scaled.n, divisor);
    ColumnDivision division(dividend, dividend_pairs, divisor, divisor_pairs);
    division.run(pairs);
    division.settle(digits);
    return division.next();
}

/* ---- Remainder ---- */

/* result = u - q * v over v's limbs, and u's own limbs after them. digits[j] stands at limb u.first + j -
 * v.first before v's leading one; count = v.first - u.first + 1. Column sums are below 2^59. */
void subtract_product(const Magnitude& u, const Magnitude& v, const Limb* digits, int count, Limb* result) {
    Limb left[limb_count] = {};
    std::copy(u.limbs + u.first, u.limbs + u.last + 1, left + u.first);
    std::fill(left + u.first, left + v.first, 0U);
    uint64_t borrow = 0;
    for (int c = v.last; c >= v.first; --c) {
        uint64_t subtrahend = borrow;
        const int last_digit = std::min(count - 1, c - u.first);
        for (int j = std::max(0, c - u.first - (v.last - v.first)); j <= last_digit; ++j) {
            subtrahend += uint64_t{digits[j]} * v.limbs[v.first + c - u.first - j];
        }
        borrow = subtrahend / base;
        const auto limb = static_cast<Limb>(subtrahend - borrow * base);
        const bool borrows = left[c] < limb;
        left[c] += (borrows ? base : 0) - limb;
        borrow += borrows ? 1 : 0;
    }
    std::copy(left, left + limb_count, result);
}

} // namespace

void round_and_store(Limb (&placed)[max_places], int start, Limb* result, Extent& extent) {
    const bool rounds_up = placed[limb_count] >= base / 2;
    if (rounds_up) {
        int i = limb_count - 1;
        while (i > 0 && placed[i] == max_limb) {
            placed[i--] = 0;
        }
        ++placed[i]; /* limb 0 holds no digit: the carry stops there at the latest */
    }
    std::copy(placed, placed + limb_count, result);
    extent = extent_within(result, rounds_up ? 0 : start, limb_count - 1);
}

bool digits_stay_inside(const Limb* digits, int count, int extra, int64_t after) {
    const auto inside = [](int64_t digit) { return digit >= 5 && digit <= base - 3; };
    const auto clearly_inside = [](int64_t pair) {
        return pair >= int64_t{6} * base && pair < pair_base - int64_t{4} * base;
    };
    return std::all_of(digits + 1, digits + count + extra, inside) && (extra != 0 || clearly_inside(after));
}

bool quotient_portable(const Magnitude& dividend, const Magnitude& divisor, Limb* result, Extent& extent) {
    const Places places(dividend, divisor);
    if (!is_canonical(dividend) || !is_canonical(divisor)) {
        return false;
    }
    if (places.digits < 1) { /* a quotient that starts two or more limbs below limb 39 */
        std::fill(result, result + limb_count, 0U);
        extent = {-1, -1};
        return true;
    }
    Scaled scaled;
    if (!scaled.scale_divisor(divisor)) {
        return false;
    }
    const bool clean_dividend = scaled.scale_dividend(dividend, dividend.last);
    Limb placed[max_places] = {};
    Limb* const digits = placed + places.start;
    if (scaled.n == 2) {
        if (!clean_dividend || !is_regular_two_limb_divisor(scaled)) {
            return false;
        }
        TwoLimbDivision division = two_limb_division(scaled);
        for (int t = 0; t < places.digits; ++t) {
            digits[t] = division.digit(scaled.dividend_limb(t + 2));
        }
        round_and_store(placed, places.start, result, extent);
        return true;
    }
    const int pairs = (places.digits + 1) / 2;
    const int64_t after = divide_columns(scaled, pairs, digits);
    if (!products_are_clean(digits, places.digits, scaled.divisor(), scaled.n)) {
        return false;
    }
    if (!clean_dividend && !digits_stay_inside(digits, places.digits, 2 * pairs - places.digits, after)) {
        return false;
    }
    round_and_store(placed, places.start, result, extent);
    return true;
}

bool remainder_portable(const Magnitude& dividend, const Magnitude& divisor, Limb* result, Extent& extent) {
    if (!is_canonical(dividend) || !is_canonical(divisor)) {
        return false;
    }
    Scaled scaled;
    if (!scaled.scale_divisor(divisor) || !scaled.scale_dividend(dividend, divisor.last)) {
        return false;
    }
    const int count = divisor.first - dividend.first + 1;
    if (scaled.n == 2) {
        if (!is_regular_two_limb_divisor(scaled)) {
            return false;
        }
        TwoLimbDivision division = two_limb_division(scaled);
        for (int t = 0; t < count; ++t) {
            division.digit(scaled.dividend_limb(t + 2));
        }
        const uint64_t rest = division.rest() / scaled.factor;
        Limb left[limb_count] = {};
        left[divisor.first] = static_cast<Limb>(rest / base);
        left[divisor.last] = static_cast<Limb>(rest % base);
        for (int i = divisor.last + 1; i <= dividend.last; ++i) {
            left[i] = dividend.limbs[i];
        }
        std::copy(left, left + limb_count, result);
    } else {
        Limb digits[max_places];
        divide_columns(scaled, (count + 1) / 2, digits);
        if (!products_are_clean(digits, count, scaled.divisor(), scaled.n)) {
            return false;
        }
        subtract_product(dividend, divisor, digits, count, result);
    }
    extent = extent_within(result, divisor.first, limb_count - 1);
    return true;
}

} // namespace qzoci::limbs
