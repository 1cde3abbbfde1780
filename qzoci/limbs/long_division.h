/* What the long divisions of every level share; long_division.cpp has the lemmas. */
#ifndef QZOCI_LIMBS_LONG_DIVISION_H
#define QZOCI_LIMBS_LONG_DIVISION_H

#include "qzoci/limbs/limb_pairs.h"
#include "qzoci/limbs/limbs.h"
#include "qzoci/limbs/reciprocal.h"
#include "qzoci/limbs/wide.h"
#include "qzoci/limbs/x86.h"

#include <algorithm>
#include <cstdint>

namespace qzoci::limbs {

/* Lemma 3's bound: the root of the base. */
inline constexpr Limb small_limb = 10000;

/* The limbs of a record, the one below limb 39 that rounds a quotient, and the second of a pair. */
inline constexpr int max_places = limb_count + 2;
inline constexpr int max_pairs = max_places / 2;

/* Where the digits of a quotient stand: digit t at limb start + t; the last one, at limb 40, rounds. */
struct Places {
    Places(const Magnitude& dividend, const Magnitude& divisor)
        : start(units_limb - (divisor.first - dividend.first)), digits(limb_count + 1 - start) {}

    int start;
    int digits;
};

/* Columns of an operand, two limbs each, with zeros after its own: a scaled dividend has its carry limb first.
 */
inline constexpr int max_columns = 24;

/* The quotient digits of a division of pair columns. With D the dividend's pairs and W the divisor's (W_0 >=
 * 5 * 10^15), (D_0 + D_1 / 10^16 + ...) / (W_0 + W_1 / 10^16 + ...) = Q_0 / 10^16 + Q_1 / 10^32 + ... Each Q
 * is estimated from the exact remainder of the two leading columns with an error below 0.14, then rounded
 * down: it may be one off, and then the next one is slightly negative or above 10^16 and makes up for it. So
 * all Q stay between -0.14 * 10^16 and 1.14 * 10^16, all columns below 21 * 1.2 * 10^32 < 2^111 in magnitude,
 * and the sum of the series is exact. Carries are settled at the end. */
class ColumnDivision {
public:
    /* The columns are max_columns each, of which so many are the operand's. */
    ColumnDivision(const std::int64_t* dividend, int dividend_pairs, const std::int64_t* divisor,
                   int divisor_pairs)
        : dividend_(dividend), divisor_(divisor), dividend_pairs_(dividend_pairs),
          divisor_pairs_(divisor_pairs) {}

    /* Finds so many pairs of digits, at most max_pairs. */
    void run(int pairs) {
        divide(pairs);
        quotient_[first_pair + pairs - 1] += correction(pairs);
        pairs_ = pairs;
    }

    /* The pairs found, each of which may lie outside 0..10^16 - 1 and then carries. */
    const std::int64_t* quotient() const { return quotient_ + first_pair; }

    /* digits[0..2 * pairs - 1] = the true digits. */
    void settle(Limb* digits) const {
        std::int64_t carry = 0;
        for (int k = pairs_ - 1; k >= 0; --k) {
            std::int64_t q = quotient_[first_pair + k] + carry;
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

    /* An estimate, not off by more than 64, of the pair after those found. */
    std::int64_t next() const { return next_; }

private:
    static constexpr int block = 4;
    static constexpr int first_pair = block - 1;

    /* 2^115 / (W_0 + W_1 / 10^16), a few units off at most: the floating-point quotient is good to 2^-51, and
     * one Newton step on the exact residue squares that. */
    std::int64_t reciprocal() const {
        constexpr double two_115 = 4.153837486827862e34;
        const auto w0 = static_cast<double>(divisor_[0]);
        const double w1 = static_cast<double>(divisor_[1]) * 1e-16;
        const double inverse = 1 / (w0 + w1);
        const auto rough = static_cast<std::int64_t>(two_115 * inverse);
        const Wide residue =
            Wide::product(std::int64_t{1} << 57, std::int64_t{1} << 58) - Wide::product(rough, divisor_[0]);
        const double rest = static_cast<double>(residue.shifted(8)) * 256.0 - static_cast<double>(rough) * w1;
        return rough + static_cast<std::int64_t>(rest * inverse);
    }

    static constexpr std::uint64_t bits(std::int64_t x) { return static_cast<std::uint64_t>(x); }

    static constexpr std::int64_t low_bits(std::uint64_t x) { return static_cast<std::int64_t>(x); }

    /* Column j less the products of Q_0..Q_(k-1) that fall on it, four at a time: where fewer are left, the
     * zeros before Q_0 or after the divisor's columns make up for it. */
    Wide column_after(int k, int j) const {
        Wide column = j < dividend_pairs_ ? Wide(dividend_[j]) : Wide();
        const int first = std::max(0, j - divisor_pairs_);
        const std::int64_t* q = quotient_ + first_pair + k - 1;
        const std::int64_t* w = divisor_ + j - k;
        for (int left = k - first; left > 0; left -= block) {
            QZOCI_UNROLLED
            for (int i = 0; i < block; ++i) {
                column = column - Wide::product(q[-i], w[i]);
            }
            q -= block;
            w += block;
        }
        return column;
    }

    /* After Q_0..Q_(k-1), rest is what is left down to column k, in its units; above and below are the next
     * two columns, of which column k + 3 hands all but a few 10^16 to the one before it, so that both stay
     * below 2.3 * 10^32 and rest below 3.5 * 10^16. The sum of the three, in units of 2^47, is the estimate's
     * numerator: each of its terms is rounded down, together by less than 4, which is 0.12 of a Q; the
     * reciprocal adds 0.02. The chain
     * from one Q to the next has three multiplications; exact values are needed modulo 2^64 alone. */
    void divide(int pairs) {
        constexpr std::int64_t shifted_base = pair_base << 9;
        const std::int64_t inverse = reciprocal();
        const std::int64_t w0 = divisor_[0];
        const std::int64_t w1 = divisor_[1];
        const std::int64_t w2 = divisor_[2];
        const std::int64_t second = (w1 << 9) + static_cast<std::int64_t>(static_cast<double>(w2) * 5.12e-14);
        std::int64_t rest = dividend_[0];
        std::int64_t above = dividend_[1];
        Wide below = dividend_[2];
        Wide last_below;
        std::int64_t estimate = Wide::product(rest << 8, shifted_base).shifted(64) + (above >> 47);
        for (int k = 0;; ++k) {
            const std::int64_t q = Wide::product(estimate, inverse).shifted(68);
            if (k == pairs) {
                next_ = q;
                head_ = Wide::product(rest, pair_base) + last_below -
                        Wide::product(quotient_[first_pair + k - 1], w1);
                break;
            }
            quotient_[first_pair + k] = q;
            const Wide column = column_after(k, k + 3);
            carry_ = over_pair_base(column);
            below = below + Wide(carry_);
            rest = low_bits(bits(rest) * bits(pair_base) + bits(above) - bits(q) * bits(w0));
            estimate = Wide::product(rest * 256, shifted_base).shifted(64) + below.shifted(47) -
                       Wide::product(q * 256, second).shifted(64);
            last_below = below;
            above = low_bits(bits(below.low()) - bits(q) * bits(w1));
            below =
                Wide(low_bits(bits(column.low()) - bits(carry_) * bits(pair_base))) - Wide::product(q, w2);
        }
    }

    /* What is to be added to the last pair: -1, 0 or 1. */
    std::int64_t correction(int pairs) const {
        constexpr std::int64_t doubt = 64;
        if (next_ > doubt && next_ < pair_base - doubt) {
            return 0;
        }
        if (next_ < pair_base / 2) {
            return next_ < -doubt || remainder_is_negative(pairs, 0) ? -1 : 0;
        }
        return next_ > pair_base + doubt || !remainder_is_negative(pairs, 1) ? 1 : 0;
    }

    /* The sign of what is left after all pairs, less the divisor when less_divisor is 1; from the top, until
     * what follows can no longer turn it. All columns after one are worth less than 2^58 of its units. */
    bool remainder_is_negative(int pairs, int less_divisor) const {
        constexpr std::int64_t decided = std::int64_t{1} << 60;
        const int end = std::max(dividend_pairs_, pairs + divisor_pairs_);
        Wide total = head_;
        if (less_divisor != 0) {
            total = total - Wide::product(divisor_[0], pair_base) - Wide(divisor_[1]);
        }
        for (int j = pairs + 2;; ++j) {
            const std::int64_t upper = total.shifted(60);
            if (upper != 0 && upper != -1) {
                return upper < 0;
            }
            const std::int64_t left = total.low();
            if (j >= end || left >= decided || left <= -decided) {
                return left < 0;
            }
            const int i = j - pairs;
            const Wide subtrahend = less_divisor != 0 && i < divisor_pairs_ ? Wide(divisor_[i]) : Wide();
            total = Wide::product(left, pair_base) + column_after(pairs, j) - subtrahend;
            if (j == pairs + 2) {
                total = total - Wide::product(carry_, pair_base);
            }
        }
    }

    const std::int64_t* dividend_;
    const std::int64_t* divisor_;
    int dividend_pairs_;
    int divisor_pairs_;
    int pairs_ = 0;
    std::int64_t next_ = 0;
    std::int64_t carry_ = 0; /* what column pairs + 2 has handed to the one before it */
    Wide head_;              /* what is left down to column pairs + 1 */
    std::int64_t quotient_[first_pair + max_pairs] = {}; /* Q_0 is quotient_[first_pair] */
};

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
        : reciprocal_(upper), upper_(std::uint64_t{upper} * base), divisor_(upper_ + lower), h_(first_h) {}

    /* The next digit, at most 2 B; next is the limb that the window gets. */
    Limb digit(Limb next) {
        std::uint64_t trial = reciprocal_.quotient(h_);
        if (h_ - upper_ < base) {
            trial = max_limb;
        }
        /* Below 3 B^2 in magnitude, so that the terms may wrap. */
        auto left = static_cast<std::int64_t>(h_ * base + next - trial * divisor_);
        const std::int64_t below_zero = left < 0 ? -1 : 0;
        left += below_zero & static_cast<std::int64_t>(divisor_);
        if (left < 0 || left >= pair_base) {
            left %= pair_base;
            left += left < 0 ? pair_base : 0;
        }
        h_ = static_cast<std::uint64_t>(left);
        return static_cast<Limb>(trial + static_cast<std::uint64_t>(below_zero));
    }

    /* The two lower limbs of the last window. */
    std::uint64_t rest() const { return h_; }

private:
    Reciprocal reciprocal_;
    std::uint64_t upper_;
    std::uint64_t divisor_;
    std::uint64_t h_;
};

/* Rounds the digits, which stand in their places from limb start on, half-up at limb 39 by limb 40 as the plain
 * steps do: a limb of 99999999 becomes 0 and carries. */
void round_and_store(Limb (&placed)[max_places], int start, Limb* result, Extent& extent);

/* Lemma 4's condition. digits[1..count-1] are used after the leading one; after is an estimate of the pair of
 * digits after the computed ones, of which extra says how many lie beyond count. */
bool digits_stay_inside(const Limb* digits, int count, int extra, std::int64_t after);

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_LONG_DIVISION_H */
