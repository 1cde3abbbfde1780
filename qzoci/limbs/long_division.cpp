/* The quotient by a divisor of several limbs, where its laid-down digits are known to be the true ones.
 *
 * The plain steps scale both operands by d = floor(B / (v_0 + 1)) to u' and v' (B = 10^8, v_0 the leading
 * divisor limb; limbs here are counted from the most significant one), estimate each digit from two limbs,
 * subtract its product and add back once at most. Two oddities can make a digit differ from the true one:
 *   - scaling and product forming keep a limb of exactly B;
 *   - a two-limb divisor takes the first estimate unrefined.
 *
 * Lemma 1. Scaling canonical x by m leaves a limb equal to B iff m * x_i + c_i = B for the carry c_i <= m - 1
 * that enters it; then x_i = floor(B / m), since (B - m, B] holds one multiple of m. []
 *
 * Lemma 2. If no limb of u' and v' is B, no product t * v' that is formed has a limb equal to B but possibly
 * its lowest, and n >= 3 or v'_1 <= v'_0, then every digit is the true one. For by induction each window U is
 * canonical and below B * v'. With n >= 3 the refinement is the classical two-limb test, so q <= qq <= q + 1.
 * With n = 2, qq - U / v' <= r / v' * v'_1 / v'_0 < 1 for the remainder's leading part r < v', so again qq <=
 * q + 1. All limbs are canonical, so the subtraction's borrow tells U < qq * v', and one add-back is exactly
 * enough. A lowest product limb of B meets no borrow and only borrows: value and borrow stay right. []
 *
 * Lemma 3. A product limb t * v'_i + c equals B only if v'_i = floor(B / t), and then t <= 10^4 or v'_i <=
 * 10^4. The multipliers t are a digit q or q + 1. []
 *
 * Lemma 4. Let n >= 3 and Lemma 2 hold but for limbs B in u'. If every true digit after the leading one, up
 * to and with the first that is not used, lies in 5..B - 3, the digits are still the true ones. For a limb B
 * keeps all values right; only two things can go wrong. (i) The borrow: with r the highest window position
 * holding B, no borrow leaves r, so the flag errs only if the subtrahend's part above r exceeds the window's
 * by one while the true difference is not negative; then the true remainder is below 2 B^r, r <= n - 1, and
 * the next true digit is at most 4. (ii) The estimate: the two-limb value can be one too small, which lowers
 * qq below q only if the remainder is below B^(n-2), hence the next digit 0; or qq starts from B instead of B
 * - 1, where the true digit is at least B - 2. []
 *
 * Only the digits down to the one below limb 39 are looked at; whatever later digits would be does not
 * matter. */
#include "qzoci/limbs/portable.h"
#include "qzoci/limbs/wide.h"

#include <algorithm>
#include <cstdint>

namespace qzoci::limbs {
namespace {

using std::int64_t;
using std::uint64_t;

constexpr int64_t pair_base = int64_t{base} * base;

/* Lemma 3's bound: the root of B. */
constexpr Limb small_limb = 10000;

/* A scaled dividend has a carry limb above its limbs, and zero limbs below them. */
constexpr int scaled_limbs = limb_count + 1;

/* Places of a quotient from limb 1 on, the limb below limb 39 that rounds it, and one more. */
constexpr int max_digits = limb_count + 2;
constexpr int max_pairs = max_digits / 2;

/* Where the digits of a quotient stand: digit t at limb start + t; the last one, at limb 40, rounds. */
struct Places {
    Places(const Magnitude& dividend, const Magnitude& divisor)
        : start(units_limb - (divisor.first - dividend.first)), digits(limb_count + 1 - start) {}

    int start;
    int digits;
};

/* scaled[0..count] = limbs[0..count-1] * factor, with the carry in scaled[0], all limbs canonical. False: the
 * plain scaling leaves a limb of exactly B. */
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
        exact_base |= suspect && upper[i] * base + sum == base;
        carry = sum >= base ? 1 : 0;
        scaled[i + 1] = carry != 0 ? sum - base : sum;
    }
    scaled[0] = static_cast<Limb>(upper[0]) + carry;
    return !exact_base;
}

/* Writes the digits to their places and rounds half-up at limb 39 as the plain steps do: a limb of 99999999
 * becomes 0 and carries. */
void place(const Limb* digits, const Places& places, Limb* result, Extent& extent) {
    Limb placed[limb_count] = {};
    const int count = places.digits - 1;
    std::copy(digits, digits + count, placed + places.start);
    const bool rounds_up = digits[count] >= base / 2;
    if (rounds_up) {
        int i = limb_count - 1;
        while (i > 0 && placed[i] == max_limb) {
            placed[i--] = 0;
        }
        ++placed[i]; /* limb 0 holds no digit: the carry stops there at the latest */
    }
    std::copy(placed, placed + limb_count, result);
    extent = extent_within(result, rounds_up ? 0 : places.start, limb_count - 1);
}

/* ---- Column division in base 10^16 ---- */

/* The quotient digits of a division of pair columns. With D the dividend's pairs and W the divisor's (W_0 >=
 * 5 * 10^15), (D_0 + D_1 / 10^16 + ...) / (W_0 + W_1 / 10^16 + ...) = Q_0 / 10^16 + Q_1 / 10^32 + ... Each Q
 * is estimated from the exact remainder of the two leading columns with an error below 0.01, then rounded
 * down: it may be one off, and then the next one is slightly negative or above 10^16 and makes up for it. So
 * all Q stay below 1.1 * 10^16 in magnitude, all columns below 21 * 1.1 * 10^32 < 2^111, and the sum of the
 * series is exact. Carries are settled at the end. */
class ColumnDivision {
public:
    /* scaled_dividend has its carry limb first. divisor_limbs >= 2. */
    ColumnDivision(const Limb* scaled_dividend, int dividend_limbs, const Limb* scaled_divisor,
                   int divisor_limbs)
        : divisor_pairs_((divisor_limbs + 1) / 2) {
        for (int i = 0; i < divisor_pairs_; ++i) {
            divisor_[i] = pair(scaled_divisor, divisor_limbs, 2 * i);
        }
        dividend_pairs_ = (dividend_limbs + 1) / 2;
        for (int i = 0; i < dividend_pairs_; ++i) {
            columns_[i] = pair(scaled_dividend, dividend_limbs, 2 * i);
        }
    }

    /* digits[0..2 * pairs - 1] = the true digits; next = an estimate, not off by more than 64, of the pair
     * after them. */
    void run(int pairs, Limb* digits, int64_t& next) {
        divide(pairs, next);
        settle(pairs, correction(pairs, next), digits);
    }

private:
    static int64_t pair(const Limb* limbs, int count, int i) {
        return int64_t{limbs[i]} * base + (i + 1 < count ? limbs[i + 1] : 0);
    }

    /* 2^115 / (W_0 + W_1 / 10^16), a few units off at most: the floating-point quotient is good to 2^-51, and
     * one Newton step on the exact residue squares that. */
    int64_t reciprocal() const {
        constexpr double two_115 = 4.153837486827862e34;
        const auto w0 = static_cast<double>(divisor_[0]);
        const double w1 = (divisor_pairs_ > 1 ? static_cast<double>(divisor_[1]) : 0.0) / 1e16;
        const auto rough = static_cast<int64_t>(two_115 / (w0 + w1));
        const Wide residue =
            Wide::product(int64_t{1} << 57, int64_t{1} << 58) - Wide::product(rough, divisor_[0]);
        const double rest = static_cast<double>(residue.shifted(8)) * 256.0 - static_cast<double>(rough) * w1;
        return rough + static_cast<int64_t>(rest / w0);
    }

    /* floor(column / 10^16), off by 2 at most. */
    static int64_t over_pair_base(Wide column) {
        constexpr int64_t reduced = 2076918743413931051; /* 2^114 / 10^16 */
        return Wide::product(column.shifted(50), reduced).shifted(64);
    }

    void divide(int pairs, int64_t& next) {
        const int64_t inverse = reciprocal();
        const int last_column = pairs + 2;
        remainder_ = columns_[0].low();
        for (int k = 0;; ++k) {
            const Wide leading = Wide::product(remainder_, pair_base) + columns_[k + 1];
            const Wide estimated = leading + Wide(over_pair_base(columns_[k + 2]));
            const int64_t q = Wide::product(estimated.shifted(44), inverse).shifted(71);
            if (k == pairs) {
                next = q;
                return;
            }
            quotient_[k] = q;
            remainder_ = (leading - Wide::product(q, divisor_[0])).low();
            const int count = std::min(divisor_pairs_, last_column - k);
            for (int i = 1; i < count; ++i) {
                columns_[k + 1 + i] = columns_[k + 1 + i] - Wide::product(q, divisor_[i]);
            }
        }
    }

    /* What is to be added to the last pair: -1, 0 or 1. */
    int correction(int pairs, int64_t next) const {
        constexpr int64_t doubt = 64;
        if (next > doubt && next < pair_base - doubt) {
            return 0;
        }
        if (next < pair_base / 2) {
            return next < -doubt || remainder_is_negative(pairs, 0) ? -1 : 0;
        }
        return next > pair_base + doubt || !remainder_is_negative(pairs, 1) ? 1 : 0;
    }

    /* The exact column j >= pairs + 1 after all pairs, less the divisor's pair there when less_divisor is 1.
     */
    Wide exact_column(int j, int pairs, int less_divisor) const {
        Wide column = columns_[j];
        if (j > pairs + 2) {
            for (int k = std::max(0, j - divisor_pairs_); k < pairs; ++k) {
                column = column - Wide::product(quotient_[k], divisor_[j - 1 - k]);
            }
        }
        const int i = j - pairs;
        return less_divisor != 0 && i < divisor_pairs_ ? column - Wide(divisor_[i]) : column;
    }

    /* The sign of what is left after all pairs, less the divisor when less_divisor is 1; from the top, until
     * what follows can no longer turn it. All columns after one are worth less than 2^58 of its units. */
    bool remainder_is_negative(int pairs, int less_divisor) const {
        int64_t left = remainder_ - (less_divisor != 0 ? divisor_[0] : 0);
        const int end = std::max(dividend_pairs_, pairs + divisor_pairs_);
        for (int j = pairs + 1; j < end; ++j) {
            if (left >= decided || left <= -decided) {
                break;
            }
            const Wide total = Wide::product(left, pair_base) + exact_column(j, pairs, less_divisor);
            const int64_t upper = total.shifted(60);
            if (upper != 0 && upper != -1) {
                return upper < 0;
            }
            left = total.low();
        }
        return left < 0;
    }

    void settle(int pairs, int carry, Limb* digits) const {
        for (int k = pairs - 1; k >= 0; --k) {
            int64_t q = quotient_[k] + carry;
            carry = 0;
            if (q < 0) {
                q += pair_base;
                carry = -1;
            } else if (q >= pair_base) {
                q -= pair_base;
                carry = 1;
            }
            digits[2 * k] = static_cast<Limb>(q / base);
            digits[2 * k + 1] = static_cast<Limb>(q % base);
        }
    }

    static constexpr int64_t decided = int64_t{1} << 60;
    static constexpr int max_columns = max_pairs + (limb_count + 1) / 2 + 3;

    int divisor_pairs_;
    int dividend_pairs_ = 0;
    int64_t remainder_ = 0;
    int64_t divisor_[(limb_count + 1) / 2] = {};
    int64_t quotient_[max_pairs] = {};
    Wide columns_[max_columns];
};

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

/* Lemma 4's condition. digits[1..count-1] are used after the leading one; after is an estimate of the pair of
 * digits after the computed ones, of which extra says how many lie beyond count. */
bool digits_stay_inside(const Limb* digits, int count, int extra, int64_t after) {
    const auto inside = [](int64_t digit) { return digit >= 5 && digit <= base - 3; };
    const auto clearly_inside = [](int64_t pair) {
        return pair >= int64_t{6} * base && pair < pair_base - int64_t{4} * base;
    };
    return std::all_of(digits + 1, digits + count + extra, inside) && (extra != 0 || clearly_inside(after));
}

} // namespace

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
    const int n = divisor.last - divisor.first + 1;
    const int m = dividend.last - dividend.first + 1;
    const Limb factor = base / (divisor.limbs[divisor.first] + 1);
    Limb divisor_with_carry[scaled_limbs];
    Limb scaled_dividend[scaled_limbs];
    if (!scale(divisor.limbs + divisor.first, n, factor, divisor_with_carry)) {
        return false;
    }
    const Limb* const scaled_divisor = divisor_with_carry + 1; /* the carry is 0 by choice of the factor */
    if (n == 2 && scaled_divisor[1] > scaled_divisor[0]) {
        return false;
    }
    const bool clean_dividend = scale(dividend.limbs + dividend.first, m, factor, scaled_dividend);
    if (!clean_dividend && n == 2) {
        return false;
    }
    const int pairs = (places.digits + 1) / 2;
    Limb digits[max_digits];
    int64_t after = 0;
    ColumnDivision(scaled_dividend, m + 1, scaled_divisor, n).run(pairs, digits, after);
    if (!products_are_clean(digits, places.digits, scaled_divisor, n)) {
        return false;
    }
    if (!clean_dividend && !digits_stay_inside(digits, places.digits, 2 * pairs - places.digits, after)) {
        return false;
    }
    place(digits, places, result, extent);
    return true;
}

} // namespace qzoci::limbs
