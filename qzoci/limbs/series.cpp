/* A series in binary. With T the power in units of 10^-160, f the factor and d the divisor, a pass that keeps
 * the term as the power takes T to
 *     N = floor(T * f + 1/2),  T' = floor(N / d) + (N mod d >= t),  t = ceil(0.50000001 * d):
 * a product rounds up from half a unit on, a quotient by one limb rounds up above 50000000 in limb 40. Since N
 * is an integer, T' is the number of those M = d * b + t, b = 0, 1, ..., that are <= N, that is <= T * f + 1/2:
 *     T' = floor(T * f / d + c),  c = 1 - (t - 1/2) / d.
 * So one product by f / d, which does not wait for T, makes a pass; of its binary digits only those above the
 * point and one below it are formed.
 *
 * All errors make that sum too small, by less than `doubt`: f / d is cut, columns are left out, and c is
 * lowered by more than its own error. A sum that near below an integer is a rare step, which is done in limbs.
 * So is one whose N may be a multiple of 10^8, for it may have come from 99999999 in limb 39, which rounds up
 * to 1 and not to 0. */
#include "qzoci/limbs/series.h"

#include "qzoci/limbs/binary_digits.h"
#include "qzoci/limbs/portable.h"
#include "qzoci/limbs/reciprocal.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <span>

namespace qzoci::limbs {
namespace {

using std::int64_t;
using std::uint64_t;

constexpr Limb max_units = 15;

/* Powers stay below 2^545. */
constexpr int64_t max_top_digit = 32;

/* In units of 2^-60: the errors are below 2^8 of f / d and the columns, and below 4 of c. */
constexpr int64_t doubt = 1024;

/* ---- Division of several digits by one limb ---- */

/* One chain of digits is slow, as each waits for the one before it, but several run side by side. */
constexpr int batch = 4;

/* With B = 2^60, R = B mod d, the remainder r so far and the next digit x, the next quotient digit is
 * r * floor(B / d) + floor(W / d) for W = r * R + x < 2^32 + 2^60, and the next W is W * R - floor(W / d) *
 * (d * R) + x', modulo 2^64: one high product, one product and two sums make the chain. */
class DigitDivision {
public:
    DigitDivision() = default;

    /* d >= 2. */
    DigitDivision(int64_t leading_digit, const SeriesDivisor& by)
        : reciprocal_(by.reciprocal()), d_(static_cast<uint64_t>(by.d())),
          base_quotient_(reciprocal_.quotient(uint64_t{digit_base})),
          base_rest_(uint64_t{digit_base} - base_quotient_ * d_), step_(base_rest_ * d_),
          w_(static_cast<uint64_t>(leading_digit)) {}

    /* The next quotient digit; following is the dividend's digit after its own, or zero. */
    int64_t next(int64_t following) {
        const uint64_t low = reciprocal_.quotient(w_);
        const uint64_t digit = rest_ * base_quotient_ + low;
        rest_ = w_ - low * d_;
        w_ = w_ * base_rest_ - low * step_ + static_cast<uint64_t>(following);
        return static_cast<int64_t>(digit);
    }

    int64_t rest() const { return static_cast<int64_t>(rest_); }

private:
    Reciprocal reciprocal_ = Reciprocal(2);
    uint64_t d_ = 2;
    uint64_t base_quotient_ = 0;
    uint64_t base_rest_ = 0;
    uint64_t step_ = 0;
    uint64_t w_ = 0;
    uint64_t rest_ = 0;
};

/* The same where a digit may be too small by what the next ones then make up for. With 2^(e-1) < d <= 2^e and a
 * multiplier M below 2^(63+e) / d by at most 2,
 *     q = floor(floor((r * B + x) / 2^e) * 2 * M / 2^64)
 * is too small by less than 2 for the bits cut off, 1.5 for M and 1 for the floor, where r < 6 * d. So r stays
 * below 6 * d, what is multiplied by M below 6 * 2^61 < 2^64, and digits stay below 6 * 2^60 < 2^63. */
class LooseDivision {
public:
    LooseDivision() = default;

    /* d >= 2. */
    explicit LooseDivision(const SeriesDivisor& by)
        : d_(static_cast<uint64_t>(by.d())), multiplier_(by.reciprocal().multiplier - 2),
          e_(by.reciprocal().shift + 1) {}

    int64_t next(int64_t digit) {
        const auto x = static_cast<uint64_t>(digit);
        const uint64_t upper = (rest_ << (digit_bits + 1 - e_)) + (x >> e_ << 1);
        const uint64_t q = high_product(upper, multiplier_);
        rest_ = (rest_ << digit_bits) + x - q * d_;
        return static_cast<int64_t>(q);
    }

private:
    uint64_t d_ = 2;
    uint64_t multiplier_ = 0;
    int e_ = 1;
    uint64_t rest_ = 0;
};

/* ---- Powers, terms and their sum ---- */

/* A power or term: an integer in units of 10^-160 that knows its length. Digits from count on are zero. */
struct Term {
    Term() = default;

    explicit Term(const Magnitude& a) : count(integer_digits) {
        to_binary(a, digit);
        trim();
    }

    void trim() {
        while (count > 0 && digit[count - 1] == 0) {
            --count;
        }
    }

    /* Adds one. Precondition: below 2^600 - 1. */
    void increment() {
        int i = 0;
        while (digit[i] == digit_base - 1) {
            digit[i++] = 0;
        }
        ++digit[i];
        count = std::max(count, i + 1);
    }

    Integer digit = {};
    int count = 0;
};

/* The sum of the terms, in signed digits that carry on once in a batch. */
class Sum {
public:
    Sum(const Term& start, bool negative) { add(start, negative); }

    /* At most batch + 1 digits are added to each without a settle() between. */
    void add(const Term& term, bool negative) {
        for (int i = 0; i < term.count; ++i) {
            add_digit(i, term.digit[i], negative);
        }
    }

    void add_digit(int i, int64_t digit, bool negative) {
        const int64_t flip = negative ? -1 : 0;
        digit_[i] += (digit ^ flip) - flip;
    }

    /* All digits but the last become 0..2^60 - 1. */
    void settle() {
        for (int i = 0; i < integer_digits - 1; ++i) {
            digit_[i + 1] += digit_[i] >> digit_bits;
            digit_[i] &= digit_base - 1;
        }
    }

    /* Writes the limbs. False: zero, or above what limb 19 holds. */
    bool write(Limb* limbs, bool& negative) {
        constexpr int64_t max_top = 1 << 16; /* 2^556 < 10^168 */
        settle();
        negative = digit_[integer_digits - 1] < 0;
        if (negative) {
            std::transform(std::begin(digit_), std::end(digit_), std::begin(digit_), std::negate<>());
            settle();
        }
        const bool is_zero =
            std::all_of(std::begin(digit_), std::end(digit_), [](int64_t d) { return d == 0; });
        if (is_zero || digit_[integer_digits - 1] >= max_top) {
            return false;
        }
        to_limbs(digit_, limbs);
        return true;
    }

private:
    Integer digit_ = {};
};

/* product[1..count] += t * factor; what is above them is returned. */
int64_t add_multiple(const Term& t, int64_t factor, int64_t* product) {
    int64_t carry = 0;
    for (int i = 0; i < t.count; ++i) {
        const Wide sum = Wide::product(t.digit[i], factor) + Wide(product[i + 1] + carry);
        product[i + 1] = sum.low() & (digit_base - 1);
        carry = sum.shifted(digit_bits);
    }
    return carry;
}

/* True where N = d * Q + floor(d * F + 1/2) or one above it, for the product Q + F, may be a multiple of 10^8.
 * The lowest byte alone tells no for all but one in 256. */
bool may_end_in_zero_limb(const int64_t* product, int count, int64_t d) {
    constexpr int64_t half = digit_base / 2;
    const Wide scaled = Wide::product(product[0], d) + Wide(half);
    const int64_t rest = scaled.shifted(digit_bits);
    const bool ambiguous = (scaled.low() & (digit_base - 1)) >= digit_base - d * doubt;
    const int64_t low_bits = (product[1] & 0xFF) * d + rest;
    if ((low_bits & 0xFF) != 0 && !(ambiguous && ((low_bits + 1) & 0xFF) == 0)) {
        return false;
    }
    int64_t last_limb = 0;
    for (int i = count; i > 0; --i) {
        last_limb = (last_limb * (digit_base % base) + product[i] % base) % base;
    }
    last_limb = (last_limb * d + rest) % base;
    return last_limb == 0 || (ambiguous && last_limb == max_limb);
}

/* ---- The passes ---- */

/* The divisors of a batch of passes. */
using Batch = std::span<const SeriesDivisor, batch>;

class Series {
public:
    Series(const SeriesRule& rule, const Term& power, int last_limb, const Magnitude& factor)
        : rule_(rule), factor_(factor), power_(power), fraction_(over_unit(Term(factor).digit)),
          last_limb_(last_limb) {}

    /* Adds all terms to the sum. False: a rare step cannot be done, the terms grow, or there are too many. */
    bool run(bool power_is_negative, bool factor_is_negative, Sum& sum) {
        return rule_.term_is_power
                   ? run_terms(power_is_negative, factor_is_negative, sum)
                   : run_powers(power_is_negative != factor_is_negative, factor_is_negative, sum);
    }

private:
    /* Each term is the next power. */
    bool run_terms(bool negative, bool factor_is_negative, Sum& sum) {
        int64_t index = rule_.first_index;
        for (auto left = rule_.divisors; left.size() >= batch; left = left.subspan(batch)) {
            const Batch by = left.first<batch>();
            BinaryFraction scaled[batch];
            scale_fraction(by, scaled);
            for (int i = 0; i < batch; ++i, ++index) {
                negative = rule_.term_is_negative(index, negative != factor_is_negative);
                const auto take = [&](int k, int64_t digit) { sum.add_digit(k, digit, negative); };
                if (!next_power(by[static_cast<size_t>(i)], scaled[i], take)) {
                    return false;
                }
                if (power_.count == 0) {
                    return true;
                }
            }
            sum.settle();
        }
        return false;
    }

    /* The power goes on undivided. */
    bool run_powers(bool negative, bool factor_is_negative, Sum& sum) {
        static constexpr SeriesDivisor one(1);
        const auto take = [](int, int64_t) {};
        int64_t index = rule_.first_index;
        for (auto left = rule_.divisors; left.size() >= batch; left = left.subspan(batch)) {
            Term powers[batch];
            const int count = power_.count;
            for (int i = 0; i < batch && power_.count != 0; ++i) {
                if (!next_power(one, fraction_, take) || power_.count > count) {
                    return false;
                }
                powers[i] = power_;
            }
            Term terms[batch];
            divide_powers(powers, left.first<batch>(), count, terms);
            for (int i = 0; i < batch; ++i, ++index) {
                if (terms[i].count == 0) {
                    return true;
                }
                sum.add(terms[i], rule_.term_is_negative(index, negative));
                negative = negative != factor_is_negative;
            }
            sum.settle();
        }
        return false;
    }

    /* The fraction over each divisor, to the digits that the batch needs. */
    void scale_fraction(Batch by, BinaryFraction (&scaled)[batch]) const {
        const int growth = fraction_.digit[0] >= by[0].d() ? 1 : 0;
        const int last = std::min(power_.count + 1 + growth, fraction_digits);
        LooseDivision division[batch];
        for (int b = 0; b < batch; ++b) {
            division[b] = LooseDivision(by[static_cast<size_t>(b)]);
        }
        for (int i = 0; i <= last; ++i) {
            for (int b = 0; b < batch; ++b) {
                scaled[b].digit[i] = division[b].next(fraction_.digit[i]);
            }
        }
        for (int b = 0; b < batch; ++b) {
            scaled[b].digit[fraction_digits + 1] = 0;
            if (by[static_cast<size_t>(b)].d() == 1) {
                scaled[b] = fraction_;
            }
        }
    }

    /* floor(N / d) + (N mod d >= t) for each of the powers N of up to count digits, d >= 2. */
    static void divide_powers(const Term (&powers)[batch], Batch by, int count, Term (&terms)[batch]) {
        DigitDivision division[batch];
        for (int b = 0; b < batch; ++b) {
            division[b] = DigitDivision(powers[b].digit[count - 1], by[static_cast<size_t>(b)]);
        }
        for (int i = count - 1; i >= 0; --i) {
            for (int b = 0; b < batch; ++b) {
                terms[b].digit[i] = division[b].next(i > 0 ? powers[b].digit[i - 1] : 0);
            }
        }
        for (int b = 0; b < batch; ++b) {
            terms[b].count = count;
            terms[b].trim();
            if (division[b].rest() >= by[static_cast<size_t>(b)].round_up_from()) {
                terms[b].increment();
            }
        }
    }

    /* T' of the head comment, with scaled = f / d; take_digit(k, digit) is called for its digits. False: as in
     * run(). */
    template <typename TakeDigit>
    bool next_power(const SeriesDivisor& by, const BinaryFraction& scaled, TakeDigit take_digit) {
        switch (power_.count) {
        case 1:
            return pass<1>(by, scaled, take_digit);
        case 2:
            return pass<2>(by, scaled, take_digit);
        case 3:
            return pass<3>(by, scaled, take_digit);
        case 4:
            return pass<4>(by, scaled, take_digit);
        case 5:
            return pass<5>(by, scaled, take_digit);
        case 6:
            return pass<6>(by, scaled, take_digit);
        case 7:
            return pass<7>(by, scaled, take_digit);
        case 8:
            return pass<8>(by, scaled, take_digit);
        case 9:
            return pass<9>(by, scaled, take_digit);
        default:
            return pass<10>(by, scaled, take_digit);
        }
    }

    template <int L, typename TakeDigit>
    bool pass(const SeriesDivisor& by, const BinaryFraction& scaled, TakeDigit take_digit) {
        int64_t product[L + 1];
        fraction_product<L>(power_.digit, scaled.digit, product);
        int64_t above = 0;
        if (scaled.digit[0] != 0) {
            above = add_multiple(power_, scaled.digit[0], product);
        }
        const bool exact = product_is_exact(by.d());
        const int64_t with_offset = product[0] + by.offset() - doubt / 2;
        if ((with_offset & (digit_base - 1)) >= digit_base - doubt ||
            (!exact && may_end_in_zero_limb(product, L, by.d()))) {
            if (!rare_step(by.d())) {
                return false;
            }
            for (int i = 0; i < power_.count; ++i) {
                take_digit(i, power_.digit[i]);
            }
            return true;
        }
        int64_t carry = with_offset >> digit_bits;
        for (int i = 0; i < L; ++i) {
            const int64_t sum = product[i + 1] + carry;
            const int64_t digit = sum & (digit_base - 1);
            power_.digit[i] = digit;
            take_digit(i, digit);
            carry = sum >> digit_bits;
        }
        above += carry;
        if (above != 0) {
            if (L == integer_digits) {
                return false;
            }
            power_.digit[L] = above;
            power_.count = L + 1;
            take_digit(L, above);
        } else if (power_.digit[L - 1] == 0) {
            power_.trim();
        }
        return power_.digit[integer_digits - 1] < max_top_digit;
    }

    /* True where T * f has no digits below the last place: the first few powers of a short argument, whose last
     * limb may well be zero. Keeps account of the last limb that T' may have. */
    bool product_is_exact(int64_t d) {
        const int last = last_limb_ + factor_.last - units_limb;
        if (last >= limb_count) {
            last_limb_ = limb_count - 1;
            return false;
        }
        const int more = d == 1 ? 0 : base % d == 0 ? 1 : limb_count;
        last_limb_ = std::min(last + more, limb_count - 1);
        return true;
    }

    /* The pass by the kernels for limbs. */
    bool rare_step(int64_t d) {
        Limb limbs[limb_count];
        to_limbs(power_.digit, limbs);
        Extent extent = extent_within(limbs, units_limb, limb_count - 1);
        if (!kernels().product({limbs, extent.first, extent.last}, factor_, limbs, extent)) {
            return false;
        }
        if (extent.first >= 0 && d != 1 &&
            !kernels().quotient_by_limb({limbs, extent.first, extent.last}, static_cast<Limb>(d), 0, limbs,
                                        extent)) {
            return false;
        }
        if (extent.first < 0) {
            power_ = Term();
            return true;
        }
        if (extent.first < units_limb) {
            return false;
        }
        power_ = Term({limbs, extent.first, extent.last});
        return true;
    }

    const SeriesRule& rule_;
    Magnitude factor_;
    Term power_;
    BinaryFraction fraction_; /* of the factor */
    int last_limb_;           /* no limb of the power after this one is other than zero */
};

bool is_let_in(const Magnitude& a) {
    return a.first >= units_limb && is_canonical(a) &&
           (a.first > units_limb || a.limbs[units_limb] <= max_units);
}

/* No limb outside first..last, as the sum's steps would carry it along. */
bool is_normal(const Magnitude& a) {
    const Extent extent = extent_within(a.limbs, 0, limb_count - 1);
    return extent.first == a.first && extent.last == a.last;
}

bool same(const Magnitude& a, const Magnitude& b) {
    return a.first == b.first && a.last == b.last &&
           std::equal(a.limbs + a.first, a.limbs + a.last + 1, b.limbs + b.first);
}

} // namespace

bool sum_series(const SeriesRule& rule, const SignedMagnitude& power, const SignedMagnitude& factor,
                const SignedMagnitude& sum, Limb* result, Extent& extent, bool& negative) {
    if (!is_let_in(power.magnitude) || !is_let_in(factor.magnitude) || !is_let_in(sum.magnitude) ||
        !is_normal(sum.magnitude)) {
        return false;
    }
    /* Every series starts with a sum of its first power. */
    const Term start(power.magnitude);
    Sum total(same(power.magnitude, sum.magnitude) ? start : Term(sum.magnitude), sum.negative);
    Limb limbs[limb_count];
    if (!Series(rule, start, power.magnitude.last, factor.magnitude)
             .run(power.negative, factor.negative, total) ||
        !total.write(limbs, negative)) {
        return false;
    }
    std::copy(limbs, limbs + limb_count, result);
    extent = extent_within(result, units_limb, limb_count - 1);
    return true;
}

} // namespace qzoci::limbs
