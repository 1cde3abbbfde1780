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
 * the subtraction's borrow tells U < qq * v', and one add-back is exactly enough. A lowest product limb of B meets no borrow and only borrows: value and borrow stay right. []
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
#include "qzoci/limbs/portable.h"
#include "qzoci/limbs/reciprocal.h"
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

/* ---- Divisors of two limbs ---- */

/* The digits as they are laid down. A window (w_2, w_1, w_0) has h = w_2 * B + w_1; the trial digit is
 * floor(h / v'_0), or B - 1 where w_2 = v'_0; the window loses its product with v' = v'_0 * B + v'_1, and gets
 * v' back once where that went below zero, all modulo B^3. The next window begins with its two lower limbs,
 * the next h. The unrefined trial digit can be two or more too large; then h is not the true rest but
 * canonical all the same, and the next trial digit can exceed B, up to 2 B.
 *
 * The steps on limbs are these steps on values where every limb is canonical. With trial digit t, the lower
 * product limb may be B: it meets no borrow and only borrows. The middle one, t * v'_0 + c, is B only for t =
 * 2 and v'_0 = B / 2, for c = 0 at t = 1 and v'_0 >= B / 2: the kernels decline this divisor. The upper one
 * is at most B + 1 and takes part in the sign alone, which is right. A limb of B in u' that is its leading one
 * does no harm: t = 1 leaves B - v'_0 and no borrow. */
class TwoLimbDivision {
public:
    TwoLimbDivision(Limb upper, Limb lower, std::uint64_t first_h)
        : reciprocal_(upper), upper_(uint64_t{upper} * base), divisor_(upper_ + lower), h_(first_h) {}

    /* The next digit, at most 2 B; next is the limb that the window gets. */
    Limb digit(Limb next) {
        uint64_t trial = reciprocal_.quotient(h_);
        if (h_ - upper_ < base) {
            trial = max_limb;
        }
        /* Below 3 B^2 in magnitude, so that the terms may wrap. */
        auto left = static_cast<int64_t>(h_ * base + next - trial * divisor_);
        const int64_t below_zero = left < 0 ? -1 : 0;
        left += below_zero & static_cast<int64_t>(divisor_);
        if (left < 0 || left >= pair_base) {
            left %= pair_base;
            left += left < 0 ? pair_base : 0;
        }
        h_ = static_cast<uint64_t>(left);
        return static_cast<Limb>(trial + static_cast<uint64_t>(below_zero));
    }

    /* The two lower limbs of the last window. */
    uint64_t rest() const { return h_; }

private:
    Reciprocal reciprocal_;
    uint64_t upper_;
    uint64_t divisor_;
    uint64_t h_;
};

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
    Limb digits[max_digits];
    if (scaled.n == 2) {
        if (!clean_dividend || !is_regular_two_limb_divisor(scaled)) {
            return false;
        }
        TwoLimbDivision division = two_limb_division(scaled);
        for (int t = 0; t < places.digits; ++t) {
            digits[t] = division.digit(scaled.dividend_limb(t + 2));
        }
        place(digits, places, result, extent);
        return true;
    }
    const int pairs = (places.digits + 1) / 2;
    int64_t after = 0;
    ColumnDivision(scaled.dividend, scaled.m + 1, scaled.divisor(), scaled.n).run(pairs, digits, after);
    if (!products_are_clean(digits, places.digits, scaled.divisor(), scaled.n)) {
        return false;
    }
    if (!clean_dividend && !digits_stay_inside(digits, places.digits, 2 * pairs - places.digits, after)) {
        return false;
    }
    place(digits, places, result, extent);
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
        Limb digits[max_digits];
        int64_t after = 0;
        ColumnDivision(scaled.dividend, scaled.m + 1, scaled.divisor(), scaled.n)
            .run((count + 1) / 2, digits, after);
        if (!products_are_clean(digits, count, scaled.divisor(), scaled.n)) {
            return false;
        }
        subtract_product(dividend, divisor, digits, count, result);
    }
    extent = extent_within(result, divisor.first, limb_count - 1);
    return true;
}

} // namespace qzoci::limbs
