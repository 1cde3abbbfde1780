#include "qzoci/limbs/square_root.h"

#include "qzoci/limbs/limb_pairs.h"
#include "qzoci/limbs/portable.h"
#include "qzoci/limbs/wide.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace qzoci::limbs {
namespace {

using std::int64_t;
using std::uint64_t;

/* Root limbs down to limb 39: at most from limb 10 on. */
constexpr int max_pairs = (limb_count - 9 + 1) / 2;

/* The root in pairs of limbs, S_0 + S_1 / 10^16 + ..., by columns as in the long division: with D the
 * radicand's pairs, column k is D_k less all S_i * S_j with i + j = k, and S_k is estimated from what is left
 * of the two leading columns over 2 * (S_0 + S_1 / 10^16), with an error below 0.01 and rounded down. A pair
 * may be one off, and the next one then makes up for it. So pairs stay below 1.1 * 10^16 in magnitude,
 * columns below 2^111. S_0 has at least nine digits. */
class ColumnRoot {
public:
    /* top is the limb of the root's leading limb; the radicand's leading two limbs then are 2 * top - 20 and
     * 2 * top - 19, of which the first may be zero. */
    ColumnRoot(const Magnitude& number, int top) {
        const auto limb_at = [&](int i) -> int64_t {
            return i >= number.first && i <= number.last ? number.limbs[i] : 0;
        };
        const int leading = 2 * top - units_limb - 1;
        leading_pair_ = limb_at(leading) * base + limb_at(leading + 1);
        for (int k = 0; k < max_pairs + 2; ++k) {
            const int i = leading + 2 + 2 * k;
            columns_[k] = limb_at(i) * base + limb_at(i + 1);
        }
    }

    /* pairs >= 2, and limbs[0..2 * pairs - 1] = the root's limbs; next = an estimate, not off by more than
     * 64, of the pair after them, which is in 0..10^16 - 1 but for such an error. */
    void run(int pairs, Limb* limbs, int64_t& next) {
        first_pair();
        second_pair();
        const Divisor divisor(pairs_[0], pairs_[1]);
        for (int k = 2; k < pairs; ++k) {
            pairs_[k] = estimate(k, divisor);
            account_for(k, pairs);
        }
        next = estimate(pairs, divisor);
        settle(pairs, next, limbs);
    }

private:
    /* 2^(62 + e) / (2 * (S_0 + S_1 / 10^16)) for e = the bit width of 2 * S_0 - 4, a few units off at most. The 4
     * keeps it below 2^63 where S_0 is a power of two: S_1 is at least -1.1 * 10^16, so the divisor is above
     * 2^(e - 1) + 1. */
    struct Divisor {
        Divisor(int64_t s0, int64_t s1) {
            const auto e = static_cast<int>(std::bit_width(static_cast<uint64_t>(2 * s0 - 4)));
            const double y0 = 2.0 * static_cast<double>(s0);
            const double y1 = 2.0 * static_cast<double>(s1) / 1e16;
            const auto rough = static_cast<int64_t>(std::ldexp(1.0, 62 + e) / (y0 + y1));
            const Wide residue =
                Wide::product(int64_t{1} << 57, int64_t{1} << (5 + e)) - Wide::product(rough, 2 * s0);
            const double rest =
                static_cast<double>(residue.shifted(8)) * 256.0 - static_cast<double>(rough) * y1;
            inverse = rough + static_cast<int64_t>(rest / (y0 + y1));
            shift = e - 8;
        }

        /* floor(x / divisor) but for an error below 0.01; |x| < 1.1 * 10^16 * divisor. */
        int64_t quotient(Wide x) const { return Wide::product(x.shifted(shift), inverse).shifted(70); }

        int64_t inverse;
        int shift;
    };

    void first_pair() {
        const Wide radicand = Wide::product(leading_pair_, pair_base) + columns_[0];
        const double value =
            static_cast<double>(leading_pair_) * 1e16 + static_cast<double>(columns_[0].low());
        auto root = static_cast<int64_t>(std::sqrt(value));
        const int64_t left = (radicand - Wide::product(root, root)).low();
        root += left / (2 * root) - (left < 0 ? 1 : 0);
        pairs_[0] = root;
        remainder_ = (radicand - Wide::product(root, root)).low();
    }

    /* S_1 enters its own estimate by its square; each round divides the error by 10^8 at least. */
    void second_pair() {
        const Wide leading = Wide::product(remainder_, pair_base) + columns_[1];
        const Wide next = columns_[2];
        const Divisor divisor(pairs_[0], 0);
        int64_t s = divisor.quotient(leading + Wide(over_pair_base(next)));
        for (int round = 0; round < 3; ++round) {
            s = divisor.quotient(leading + Wide(over_pair_base(next - Wide::product(s, s))));
        }
        pairs_[1] = s;
        remainder_ = (leading - Wide::product(2 * pairs_[0], s)).low();
        columns_[2] = next - Wide::product(s, s);
    }

    int64_t estimate(int k, const Divisor& divisor) const {
        const Wide leading = Wide::product(remainder_, pair_base) + columns_[k];
        return divisor.quotient(leading + Wide(over_pair_base(columns_[k + 1])));
    }

    void account_for(int k, int pairs) {
        const int64_t s = pairs_[k];
        remainder_ =
            (Wide::product(remainder_, pair_base) + columns_[k] - Wide::product(2 * pairs_[0], s)).low();
        for (int j = 1; j < k && k + j <= pairs + 1; ++j) {
            columns_[k + j] = columns_[k + j] - Wide::product(2 * s, pairs_[j]);
        }
        if (2 * k <= pairs + 1) {
            columns_[2 * k] = columns_[2 * k] - Wide::product(s, s);
        }
    }

    void settle(int pairs, int64_t next, Limb* limbs) const {
        int carry = next < 0 ? -1 : next >= pair_base ? 1 : 0;
        for (int k = pairs - 1; k >= 0; --k) {
            int64_t s = pairs_[k] + carry;
            carry = s < 0 ? -1 : s >= pair_base ? 1 : 0;
            s -= carry * pair_base;
            limbs[2 * k] = static_cast<Limb>(s / base);
            limbs[2 * k + 1] = static_cast<Limb>(s % base);
        }
    }

    int64_t leading_pair_ = 0;
    int64_t remainder_ = 0;
    int64_t pairs_[max_pairs + 1] = {};
    Wide columns_[max_pairs + 2];
};

/* The constants of the isolation test: a limb up to small can take part in a product limb of 10^8; the root's
 * last limb may move by radius units, which moves the limb of the scaled root above it by half as much. */
constexpr Limb small = 10000;
constexpr Limb radius = 10000;
constexpr Limb scaled_radius = radius / 2 + 2;

bool is_near(Limb limb, Limb centre, Limb distance) {
    return limb + distance >= centre && limb <= centre + distance;
}

bool has_limb(const Limb* first, const Limb* last, Limb limb) {
    return std::find(first, last, limb) != last;
}

} // namespace

bool nearest_root(const Magnitude& number, Limb* root, Extent& extent) {
    if (!is_canonical(number)) {
        return false;
    }
    /* The leading limb has the weight 10^(8 * (19 - first)); the root's has half the exponent, rounded down.
     */
    const int top = number.first >= units_limb ? units_limb + (number.first - units_limb + 1) / 2
                                               : units_limb - (units_limb - number.first) / 2;
    const int count = limb_count - top;
    const int pairs = (count + 1) / 2;
    Limb limbs[2 * max_pairs];
    int64_t next = 0;
    ColumnRoot(number, top).run(pairs, limbs, next);

    /* With s the root cut at limb 39 and f what follows it, g is s for f < 1/4 and s + 1 from there on (but
     * for less than 1 / s). An error of one unit across f = 0 changes s, but not g. */
    constexpr Limb quarter_limb = base / 4;
    constexpr int64_t quarter = pair_base / 4;
    constexpr int64_t doubt = 64;
    const bool has_extra_limb = 2 * pairs > count;
    bool rounds_up = false;
    if (has_extra_limb) {
        const Limb after = limbs[count];
        if (is_near(after, quarter_limb, 1)) {
            return false;
        }
        rounds_up = after > quarter_limb;
    } else {
        if (next >= quarter - doubt && next <= quarter + doubt) {
            return false;
        }
        /* A next outside 0..10^16 - 1 has moved s by one already. */
        rounds_up = next < 0 || (next > quarter && next < pair_base);
    }
    std::fill(root, root + top, 0U);
    std::copy(limbs, limbs + count, root + top);
    for (int i = limb_count - 1; rounds_up; --i) {
        rounds_up = ++root[i] == base;
        root[i] = rounds_up ? 0 : root[i];
    }
    extent = extent_within(root, top - 1, limb_count - 1);
    return true;
}

/* Let g* be the root, n >= 3 its limbs down to limb 39, G its leading limb, d = floor(B / (G + 1)) the long
 * division's factor, V* = d * g* with limbs v_0 (lowest) .. v_(n-1), S = 10^4, R the radius, h = R / 2 + 2.
 * Suppose
 *   (a) limb 39 of g* lies in S + R + 4 .. B - 6 - R;
 *   (b) every v_i, 2 <= i <= n - 2, is above S, and S + h < v_1 < B - h;
 *   (c) every limb of g* between the leading one and limb 39 is above S;
 *   (d) for t = G and G + 1 with 2 <= t <= S, no v_i, i >= 1, is within h of floor(B / t);
 *   (e) if d >= 2, floor(B / d) is no limb of number but possibly its leading one, none of g* above limb 39,
 *       and not within R of limb 39; if it is the leading limb of number, G < B - 3;
 *   (f) limb 39 of g* is neither 80664063 nor 80664064.
 * Then g* is a fixed point of the laid-down step, and no other g within R is.
 *
 * Proof. Let g = g* + a, |a| <= R, and T = number * 10^320.
 *   1. By (a) g has the limbs of g* but for limb 39, which is in S + 4 .. B - 6; n and d are the same.
 *   2. T / g = g* - a + (a^2 + e) / g with -1.5 g* <= e < 0.5 g*, so |T / g - g*| <= R + 2: the digits of
 *      T / g above limb 39 are those of g*, and the digit at limb 39 is above S.
 *   3. d * g differs from V* by at most R * B / 2: limb 1 by at most R / 2 + 1 without a carry (b), higher ones
 *      not at all. So v_i > S for all i >= 1 (the leading one is at least B / 2), and (d) holds for d * g at
 *      distance 0.
 *   4. By (e) and Lemma 1 of the long division, d * g has no limb equal to B, and the scaled dividend at most
 *      its leading one. That one is met by the first non-zero digit's step at the latest, and as in Lemma 4 the
 *      step is right: an erring borrow needs a next digit of at most 4, a too small estimate a next digit of 0,
 *      and both are above S by (c) and 2; an estimate from B instead of B - 1 needs a first digit G of at least
 *      B - 2. The step leaves a canonical window.
 *   5. By Lemma 3 and v_i > S a product limb i >= 1 equals B only for t <= S. The multipliers are a digit or a
 *      digit + 1: 0 or 1 before the leading digit, G and G + 1 at it (d), above S for the others by (c) and 2.
 *   6. The digit below limb 39 is arbitrary; a limb B there needs t <= S < B / 2, and then the literal and the
 *      true digit are both below half, so the rounding is the same, and nothing comes after.
 *   7. So all digits that matter are true (Lemma 2), the halving's oddity at 99999999 needs limb 39 to be 0 or
 *      1, and a fixed point means g^2 - 1.5 g <= T < g^2 + 0.5 g. Two g satisfy that only for
 *      T = g^2 + (g - 1) / 2, g odd; as T is a multiple of 10^160, that g ends in 99999999, which (a) excludes,
 *      or is the one residue modulo 2 * 10^160 that (f) names. []
 *
 * What this leaves open is an end of the iteration farther than R from g*, at a guess whose division is wrong in
 * just the way that holds it there. Such ends are found just below the squares of short numbers, as for
 * 3.99999999999999999999992 or 24.999999999999997; their roots fail (a) or (c). For a root whose limbs pass these,
 * the count of the coincidences needed makes it less likely than 10^-18 a call; none is known. */
bool is_isolated_fixed_point(const Magnitude& number, const Magnitude& root) {
    const int n = root.last - root.first + 1;
    if (n < 3 || root.last != limb_count - 1) {
        return false;
    }
    const Limb* const g = root.limbs + root.first;
    const Limb* const g_last = g + n - 1;
    const Limb last = *g_last;
    const auto is_small = [](Limb limb) { return limb <= small; };
    if (last < small + radius + 4 || last > base - 6 - radius || last == 80664063 || last == 80664064 ||
        std::any_of(g + 1, g_last, is_small)) {
        return false;
    }
    const Limb d = base / (g[0] + 1);
    if (d >= 2) {
        const Limb suspicious = base / d;
        const bool suspicious_lead = number.limbs[number.first] == suspicious && g[0] >= base - 3;
        if (suspicious_lead ||
            has_limb(number.limbs + number.first + 1, number.limbs + number.last + 1, suspicious) ||
            has_limb(g, g_last, suspicious) || is_near(last, suspicious, radius)) {
            return false;
        }
    }
    /* v[0] is the leading limb here. */
    Limb v[limb_count];
    uint64_t carry = 0;
    for (int i = n - 1; i >= 0; --i) {
        const uint64_t value = uint64_t{g[i]} * d + carry;
        carry = value / base;
        v[i] = static_cast<Limb>(value % base);
    }
    const Limb above_last = v[n - 2];
    if (std::any_of(v + 1, v + n - 2, is_small) || above_last <= small + scaled_radius ||
        above_last >= base - scaled_radius) {
        return false;
    }
    for (Limb t = g[0]; t <= g[0] + 1; ++t) {
        if (t >= 2 && t <= small &&
            std::any_of(v, v + n - 1, [&](Limb limb) { return is_near(limb, base / t, scaled_radius); })) {
            return false;
        }
    }
    return true;
}

} // namespace qzoci::limbs
