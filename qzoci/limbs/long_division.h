/* What the long divisions of every level share; long_division.cpp has the lemmas. */
#ifndef QZOCI_LIMBS_LONG_DIVISION_H
#define QZOCI_LIMBS_LONG_DIVISION_H

#include "qzoci/limbs/limbs.h"
#include "qzoci/limbs/reciprocal.h"
#include "qzoci/limbs/wide.h"

#include <algorithm>
#include <cstdint>

namespace qzoci::limbs {

inline constexpr std::int64_t pair_base = std::int64_t{base} * base;

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
 * is estimated from the exact remainder of the two leading columns with an error below 0.01, then rounded
 * down: it may be one off, and then the next one is slightly negative or above 10^16 and makes up for it. So
 * all Q stay below 1.1 * 10^16 in magnitude, all columns below 21 * 1.1 * 10^32 < 2^111, and the sum of the
 * series is exact. Carries are settled at the end. */
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
        quotient_[pairs - 1] += correction(pairs);
        pairs_ = pairs;
    }

    /* The pairs found, each of which may lie outside 0..10^16 - 1 and then carries. */
    const std::int64_t* quotient() const { return quotient_; }

    /* digits[0..2 * pairs - 1] = the true digits. */
    void settle(Limb* digits) const {
        std::int64_t carry = 0;
        for (int k = pairs_ - 1; k >= 0; --k) {
            std::int64_t q = quotient_[k] + carry;
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
    /* 2^115 / (W_0 + W_1 / 10^16), a few units off at most: the floating-point quotient is good to 2^-51, and
     * one Newton step on the exact residue squares that. */
    std::int64_t reciprocal() const {
        constexpr double two_115 = 4.153837486827862e34;
        const auto w0 = static_cast<double>(divisor_[0]);
        const double w1 = static_cast<double>(divisor_[1]) / 1e16;
        const double inverse = 1 / (w0 + w1);
        const auto rough = static_cast<std::int64_t>(two_115 * inverse);
        const Wide residue =
            Wide::product(std::int64_t{1} << 57, std::int64_t{1} << 58) - Wide::product(rough, divisor_[0]);
        const double rest = static_cast<double>(residue.shifted(8)) * 256.0 - static_cast<double>(rough) * w1;
        return rough + static_cast<std::int64_t>(rest * inverse);
    }

    /* floor(column / 10^16), off by 2 at most. */
    static std::int64_t over_pair_base(Wide column) {
        constexpr std::int64_t reduced = 2076918743413931051; /* 2^114 / 10^16 */
        return Wide::product(column.shifted(50), reduced).shifted(64);
    }

    /* Column j less the products of Q_0..Q_(k-1) that fall on it. */
    Wide column_after(int k, int j) const {
        Wide column = j < dividend_pairs_ ? Wide(dividend_[j]) : Wide();
        for (int i = std::max(0, j - divisor_pairs_); i < k; ++i) {
            column = column - Wide::product(quotient_[i], divisor_[j - 1 - i]);
        }
        return column;
    }

    /* Step k has in head the two leading columns together, and column k + 2 in below, both after the
     * products of Q_0..Q_(k-1). What column k + 2 adds to the estimate goes by a multiple of W_2, off by 200
     * of the head's units at most. */
    void divide(int pairs) {
        constexpr double below_2_63_over_pair_base = 922.33720368547;
        const std::int64_t inverse = reciprocal();
        const std::int64_t w0 = divisor_[0];
        const std::int64_t w1 = divisor_[1];
        const std::int64_t w2 = divisor_[2];
        const auto third = static_cast<std::int64_t>(static_cast<double>(w2) * below_2_63_over_pair_base);
        Wide head = Wide::product(dividend_[0], pair_base) + Wide(dividend_[1]);
        Wide below = dividend_[2];
        std::int64_t below_head = 0;
        for (int k = 0;; ++k) {
            const std::int64_t q = Wide::product((head + Wide(below_head)).shifted(44), inverse).shifted(71);
            if (k == pairs) {
                next_ = q;
                break;
            }
            quotient_[k] = q;
            const Wide column = column_after(k, k + 3);
            const std::int64_t rest = (head - Wide::product(q, w0)).low();
            head = Wide::product(rest, pair_base) + below - Wide::product(q, w1);
            below_head = over_pair_base(column) - Wide::product(2 * q, third).shifted(64);
            below = column - Wide::product(q, w2);
        }
        head_ = head;
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
        }
    }

    const std::int64_t* dividend_;
    const std::int64_t* divisor_;
    int dividend_pairs_;
    int divisor_pairs_;
    int pairs_ = 0;
    std::int64_t next_ = 0;
    Wide head_;
    std::int64_t quotient_[max_pairs];
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
