/* When the literal digits are the true ones.
 *
 * Notation. B = 10^8. u, v: the operands; d = floor(B / (v_top + 1)), u' = d u and v' = d v as the scaling
 * leaves them, V the integer of v'. A window U is the n+1 limbs of u' (or of what is left of it) that one
 * step works on, q its true digit floor(U / V), qq the trial digit after refinement, before the add-back. v1,
 * v2: the two top limbs of v'.
 *
 * Scaling (and each trial product) multiplies limb by limb and splits a carry off only above B: x_i becomes
 * m x_i + c_i, and a value of exactly B stays in place. The array keeps its numeric value; it is canonical
 * (all limbs below B) iff no limb is B.
 *
 * Lemma 1. A limb of a canonical x becomes B iff m x_i + c_i = B with the incoming carry c_i; then x_i =
 * floor(B / m). Proof. c_i <= m - 1: by induction, m (B - 1) + (m - 1) < m B gives a carry of at most m - 1.
 * So m x_i lies in [B - m + 1, B], which holds one multiple of m, m floor(B / m). []
 *
 * Facts about normalisation. v1 >= B / 2, v' has n limbs, u' has at most one limb more than u.
 *   Proof. d (v_top + 1) <= B, so limb v_top with its carry c <= d - 1 gives at most B - 1: no carry leaves
 * v'. For the lower bound: if v_top >= B / 2 it holds with d = 1. Otherwise d > B / (v_top + 1) - 1, so d
 * v_top > B - B / (v_top + 1) - v_top, a concave function of v_top with the value B / 2 - 1 at both ends
 * v_top = 1 and v_top = B / 2 - 1; being an integer, d v_top >= B / 2. A carry only adds. []
 *
 * Lemma 2. Let u' and v' be canonical, U canonical with U < B V, and qq V formed without a limb of B above
 * its lowest. Let qq be q or q + 1. Then the step stores the digit q and leaves the canonical window U - q V
 * < V, so that the next window is canonical and below B V again. Proof. The subtraction works on canonical
 * limbs and borrows as it should, so its last borrow tells U < qq V. A lowest product limb of B meets a
 * minuend limb below B and no borrow: it borrows B and leaves the minuend limb, which is right. If U >= qq V
 * then qq = q. Otherwise qq = q + 1 and U - (q + 1) V + B^(n+1) plus V, the carry out dropped, is U - q V. U
 * - q V < V has its limb n zero, and with a next limb below B is at most (V - 1) B + B - 1 < B V. [] The
 * first window: u < B^(m+n) gives floor(d u / B^m) < d B^n <= B V, as v >= B^(n-1).
 *
 * Lemma 3. q <= qq always, and qq <= q + 1 when n = 1, or n >= 3, or n = 2 and (q + 1) v2 <= v1 B.
 *   Proof. Let X = u_n B + u_(n-1), so that X B^(n-1) <= U < (X + 1) B^(n-1). U < B V gives u_n <= v1.
 *   First estimate: u_n = v1 gives B - 1 >= q (U < B V). Otherwise u_n <= v1 - 1 gives qq = floor(X / v1) <=
 * B - 1, and q <= U / (v1 B^(n-1)) < (X + 1) / v1, so q <= qq. n = 1: qq = floor(X / v1) = q; u_n = v1 cannot
 * be. n = 2: if u_n = v1, U / V >= v1 B^2 / (v1 B + v2) >= B - v2 / v1 > B - 2, as v2 < B <= 2 v1; so q >= B
 * - 2 = qq - 1. Otherwise qq - U / V <= X / v1 - X B / (v1 B + v2) = X v2 / (v1 V), and X B <= U < (q + 1) V
 * makes this less than (q + 1) v2 / (v1 B) <= 1; so qq < U / V + 1 < q + 2. (As q + 1 <= B, the condition
 * holds for every digit when v2 <= v1.) n >= 3: let W = v1 B + v2 and Y = X B + u_(n-2). The loop lowers qq
 * while qq W > Y, exactly: its bracket is X - qq v1, and (bracket) B + u_(n-2) stays below 2^64 here. qq W >
 * Y, so qq W >= Y + 1 and qq V >= qq W B^(n-2) >= (Y + 1) B^(n-2) > U: only too large a digit is lowered.
 * (The classical stop once the bracket reaches B changes nothing: then qq v2 <= (B - 1)^2 < bracket B.) At
 * the end qq <= Y / W, while U / V > Y / (W + 1); the distance of the two is Y / (W (W + 1)) < B / W <= 2 /
 * B, as Y B^(n-2) <= U < B V < B (W + 1) B^(n-2). So qq < U / V + 1, qq <= q + 1. []
 *
 * Lemma 4. A product t v', t >= 2, can have a limb i >= 1 equal to B only if 0 <= B - t v'_i <= t - 1 (the
 * carry into limb i); so t <= 10^4 or v'_i <= 10^4. t <= 1 makes none when v' is canonical. The limb above
 * the n-th is a carry below t. Where the condition is met for t = q or q + 1 the product's limbs are formed
 * and looked at.
 *
 * By induction over the windows the first digits are the true ones if the conditions of Lemmas 2 to 4 hold
 * for u', v' and each of these digits; if that is all digits, what is left is the true remainder times d,
 * whose division by d is exact. */
#include "tests/independent/long_division.h"

#include <algorithm>
#include <stdexcept>

namespace qzoci::test {
namespace {

constexpr ub4 half_limb = 50000000;
constexpr int quotient_digits = 42;
/* Divisors with limbs below B never refine one digit more often than this. */
constexpr int refinement_limit = 1000;

/* limbs times factor in place, as the engine scales; one limb more, 0 or the last carry. */
std::vector<ub4> scaled(std::vector<ub4> limbs, ub8 factor) {
    ub8 carry = 0;
    for (ub4& limb : limbs) {
        const ub8 value = limb * factor + carry;
        const bool splits = value > base;
        carry = splits ? value / base : 0;
        limb = static_cast<ub4>(splits ? value % base : value);
    }
    limbs.push_back(static_cast<ub4>(carry));
    return limbs;
}

ub8 normalising_factor(const std::vector<ub4>& v) {
    return ub8{base} / (ub8{v.back()} + 1);
}

/* window: n + 1 limbs, v: n + 1 limbs, the top one 0 but for limbs above B. */
ub8 trial_digit(std::span<const ub4> window, std::span<const ub4> v, size_t n) {
    const ub8 top = v[n - 1];
    const ub8 leading = ub8{window[n]} * base + window[n - 1];
    if (top == 0) {
        throw std::logic_error("the divisor is not normalised");
    }
    ub8 digit = window[n] == top ? ub8{base} - 1 : leading / top;
    if (n <= 2) {
        return digit;
    }
    ub8 bracket = leading - digit * top;
    for (int refinements = 0; digit * v[n - 2] > bracket * base + window[n - 2]; ++refinements) {
        if (refinements == refinement_limit) {
            throw std::logic_error("the trial digit does not settle");
        }
        --digit;
        bracket += top;
    }
    return digit;
}

/* window -= digit * v, the product formed on the way; above its n limbs stands its carry, or what stands above v
 * where there is none. Returns whether a borrow left the window. */
bool subtract_multiple(std::span<ub4> window, std::span<const ub4> v, ub8 digit) {
    const size_t n = v.size() - 1;
    ub8 carry = 0;
    sb8 borrow = 0;
    for (size_t i = 0; i <= n; ++i) {
        const ub8 above = carry != 0 ? carry : v[i];
        const ub8 value = i < n ? digit * v[i] + carry : above;
        const bool splits = i < n && value > base;
        carry = splits ? value / base : 0;
        const sb8 subtrahend = sb8{static_cast<ub4>(splits ? value % base : value)} + borrow;
        const sb8 minuend = window[i];
        borrow = subtrahend > minuend ? 1 : 0;
        window[i] = static_cast<ub4>(minuend - subtrahend + borrow * base);
    }
    return borrow != 0;
}

void add_back(std::span<ub4> window, std::span<const ub4> v) {
    ub8 carry = 0;
    for (size_t i = 0; i < window.size(); ++i) {
        const ub8 value = carry + v[i] + window[i];
        carry = value >= base ? 1 : 0;
        window[i] = static_cast<ub4>(value - carry * base);
    }
}

/* limbs / divisor; the result keeps the number of limbs. */
std::vector<ub4> divided(std::vector<ub4> limbs, ub8 divisor) {
    ub8 rest = 0;
    for (size_t i = limbs.size(); i-- > 0;) {
        const ub8 value = rest * base + limbs[i];
        limbs[i] = static_cast<ub4>(value / divisor);
        rest = value % divisor;
    }
    return limbs;
}

bool has_limb_of_base(std::span<const ub4> limbs) {
    return std::find(limbs.begin(), limbs.end(), base) != limbs.end();
}

/* The candidates of Lemma 4 for one factor. */
class ProductLimbs {
public:
    /* v: the scaled divisor, canonical, n limbs. */
    explicit ProductLimbs(const std::vector<ub4>& v) : v_(v) {
        std::copy_if(v.begin() + 1, v.end(), std::back_inserter(small_),
                     [](ub4 limb) { return limb != 0 && limb <= root_of_base; });
    }

    /* True when factor * v has a limb of B above its lowest. */
    bool reach_base(ub8 factor) const {
        if (factor < 2 || !may_reach_base(factor)) {
            return false;
        }
        const std::vector<ub4> product = scaled(v_, factor);
        return has_limb_of_base(std::span(product).subspan(1));
    }

private:
    static constexpr ub4 root_of_base = 10000;

    bool may_reach_base(ub8 factor) const {
        const auto meets = [factor](ub4 limb) {
            return factor * limb <= base && base - factor * limb < factor;
        };
        return factor <= root_of_base ? std::any_of(v_.begin() + 1, v_.end(), meets)
                                      : std::any_of(small_.begin(), small_.end(), meets);
    }

    const std::vector<ub4>& v_;
    std::vector<ub4> small_; /* those that a factor above 10^4 can bring to B */
};

bool estimate_is_close(const std::vector<ub4>& v, ub8 digit) {
    return v.size() != 2 || (digit + 1) * v[0] <= ub8{base} * v[1];
}

int start_difference(const Operand& dividend, const Operand& divisor) {
    return divisor.record.start_pos - dividend.record.start_pos;
}

/* Limbs first..last of the record, last one first. */
std::vector<ub4> limbs_between(const QZCICalcNumber& record, int first, int last) {
    std::vector<ub4> limbs(record.data_part + first, record.data_part + last + 1);
    std::reverse(limbs.begin(), limbs.end());
    return limbs;
}

/* The record's own scan, so that limbs above B pass as they are. */
void normalise(QZCICalcNumber& record) {
    record.start_pos = -1;
    record.end_pos = -1;
    record.is_zero = 1;
    for (int i = 0; i < QZCI_CALC_LIMBS; ++i) {
        if (record.data_part[i] != 0) {
            record.start_pos = record.start_pos < 0 ? static_cast<sb1>(i) : record.start_pos;
            record.end_pos = static_cast<sb1>(i);
            record.is_zero = 0;
        }
    }
}

} // namespace

DivisionResult literal_division(const Division& operands) {
    const size_t n = operands.v.size();
    const ub8 factor = normalising_factor(operands.v);
    std::vector<ub4> u = scaled(operands.u, factor);
    std::vector<ub4> v = scaled(operands.v, factor);
    std::vector<ub4> quotient(static_cast<size_t>(operands.digits()));
    for (size_t j = quotient.size(); j-- > 0;) {
        const std::span<ub4> window(u.data() + j, n + 1);
        ub8 digit = trial_digit(window, v, n);
        if (subtract_multiple(window, v, digit)) {
            --digit;
            add_back(window, v);
        }
        quotient[j] = static_cast<ub4>(digit);
    }
    u.resize(n);
    v.resize(n);
    return {std::move(quotient), divided(std::move(u), factor), std::move(v)};
}

Certainty certainty(const Division& operands, int used_digits) {
    const ub8 factor = normalising_factor(operands.v);
    if (has_limb_of_base(scaled(operands.u, factor))) {
        return Certainty::limb_in_dividend;
    }
    std::vector<ub4> v = scaled(operands.v, factor);
    v.pop_back();
    if (has_limb_of_base(v)) {
        return Certainty::limb_in_divisor;
    }
    const size_t all_digits = static_cast<size_t>(operands.digits());
    const std::vector<ub4> digits = limbs_of(integer_of(operands.u) / integer_of(operands.v), all_digits);
    const ProductLimbs product_limbs(v);
    for (size_t i = 0; i < static_cast<size_t>(used_digits); ++i) {
        const ub8 digit = digits[all_digits - 1 - i];
        if (!estimate_is_close(v, digit)) {
            return Certainty::two_limb_estimate;
        }
        const ub8 largest_trial = std::min<ub8>(digit + 1, base - 1);
        if (product_limbs.reach_base(digit) || product_limbs.reach_base(largest_trial)) {
            return Certainty::limb_in_product;
        }
    }
    return Certainty::certain;
}

Division quotient_division(const Operand& dividend, const Operand& divisor) {
    const QZCICalcNumber& a = dividend.record;
    const QZCICalcNumber& b = divisor.record;
    Division division{{}, limbs_between(b, b.start_pos, b.end_pos)};
    const std::vector<ub4> significant = limbs_between(a, a.start_pos, a.end_pos);
    division.u.resize(division.v.size() + quotient_digits - 1 - significant.size());
    division.u.insert(division.u.end(), significant.begin(), significant.end());
    return division;
}

int quotient_digits_used(const Operand& dividend, const Operand& divisor) {
    constexpr int placed_and_rounding_digit = 22;
    return std::clamp(placed_and_rounding_digit + start_difference(dividend, divisor), 0, quotient_digits);
}

QZCICalcNumber record_of_quotient(const DivisionResult& division, const Operand& dividend,
                                  const Operand& divisor) {
    QZCICalcNumber record{};
    record.num_signed = static_cast<sb1>(dividend.sign() * divisor.sign());
    int target = 19 - start_difference(dividend, divisor);
    size_t digit = quotient_digits - 1;
    while (target < QZCI_CALC_LIMBS) {
        record.data_part[target++] = division.quotient[digit--];
    }
    if (target - 1 < QZCI_CALC_LIMBS && division.quotient[digit] >= half_limb) {
        for (--target; target >= 0 && record.data_part[target] == base - 1; --target) {
            record.data_part[target] = 0;
        }
        if (target < 0) {
            throw std::logic_error("a rounding carry past limb 0: no quotient starts there");
        }
        ++record.data_part[target];
    }
    normalise(record);
    return record;
}

/* The divisor's limbs decide which limbs take part; u gets a zero limb on top when both start at the same
 * place. */
Division remainder_division(const Operand& dividend, const Operand& divisor) {
    const QZCICalcNumber& a = dividend.record;
    const QZCICalcNumber& b = divisor.record;
    Division division{limbs_between(a, a.start_pos, b.end_pos), limbs_between(b, b.start_pos, b.end_pos)};
    division.u.resize(std::max(division.u.size(), division.v.size() + 1));
    return division;
}

QZCICalcNumber record_of_remainder(const DivisionResult& division, const Operand& dividend,
                                   const Operand& divisor) {
    QZCICalcNumber record = dividend.record;
    std::fill(record.data_part, record.data_part + divisor.record.start_pos, 0U);
    std::reverse_copy(division.remainder.begin(), division.remainder.end(),
                      record.data_part + divisor.record.start_pos);
    normalise(record);
    return record;
}

} // namespace qzoci::test
