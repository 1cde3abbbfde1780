#include "qzoci/oci_calc_number_arithmetic.h"

#include "qzoci/limbs/limbs.h"

#include <algorithm>
#include <cstdio>

namespace qzoci::engine {
namespace {

/* Half a limb: the first dropped limb rounds up from here on (single-limb division: only above). */
constexpr ub4 half_limb = limb_base / 2;
constexpr ub4 max_limb = limb_base - 1;

bool has_walkable_limbs(const QZCICalcNumber& num) {
    return is_walkable(num.start_pos, num.end_pos);
}

bool has_canonical_limbs(const QZCICalcNumber& num) {
    return std::all_of(num.data_part + num.start_pos, num.data_part + num.end_pos + 1,
                       [](ub4 limb) { return limb < limb_base; });
}

bool are_records(const QZCICalcNumber* a, const QZCICalcNumber* b, const QZCICalcNumber* c) {
    return a != nullptr && b != nullptr && c != nullptr;
}

/* ---- Fast kernels ----
 * Each try_ function finishes its stretch with the digits and flags of the plain steps, straight into the
 * caller's record, or is false with nothing written. */

/* a + b, or a - b where subtract is set. */
bool try_sum(Trace t, const QZCICalcNumber& a, const QZCICalcNumber& b, bool subtract,
             QZCICalcNumber& result) {
    if (!is_ordinary(a) || !is_ordinary(b) || !has_sign(a) || !has_sign(b)) {
        return false;
    }
    const limbs::Aligned operands = {a.data_part, b.data_part, std::min(a.start_pos, b.start_pos),
                                     std::max(a.end_pos, b.end_pos)};
    limbs::Extent extent = {-1, -1};
    sb1 sign = a.num_signed;
    if ((a.num_signed == b.num_signed) != subtract) {
        if (!t.counted(Stretch::sum, limbs::kernels().sum(operands, result.data_part, extent))) {
            return false;
        }
    } else {
        bool a_is_larger = false;
        if (!t.counted(Stretch::difference,
                       limbs::kernels().difference(operands, result.data_part, extent, a_is_larger))) {
            return false;
        }
        sign = a_is_larger ? sign : static_cast<sb1>(-sign);
    }
    set_fields(result, extent, sign);
    return true;
}

bool try_product(Trace t, const QZCICalcNumber& a, const QZCICalcNumber& b, QZCICalcNumber& product) {
    if (!is_ordinary(a) || !is_ordinary(b) || a.start_pos + b.start_pos < units_limb) {
        return false;
    }
    const sb1 sign = sign_product(a, b);
    limbs::Extent extent = {-1, -1};
    if (!t.counted(Stretch::product,
                   limbs::kernels().product(magnitude(a), magnitude(b), product.data_part, extent))) {
        return false;
    }
    set_fields(product, extent, sign);
    return true;
}

/* The divisor stands at limb units_limb - shift. */
bool try_quotient_by_limb(Trace t, const QZCICalcNumber& dividend, ub4 divisor, int shift, sb1 sign,
                          QZCICalcNumber& quotient) {
    const int start = dividend.start_pos + shift;
    if (start < 1 || start >= limb_count || divisor >= limb_base || divisor == 0) {
        return false;
    }
    limbs::Extent extent = {-1, -1};
    if (!t.counted(Stretch::quotient_by_limb,
                   limbs::kernels().quotient_by_limb(magnitude(dividend), divisor, shift, quotient.data_part,
                                                     extent))) {
        return false;
    }
    set_fields(quotient, extent, sign);
    return true;
}

bool try_quotient(Trace t, const QZCICalcNumber& dividend, const QZCICalcNumber& divisor,
                  QZCICalcNumber& quotient) {
    if (!is_ordinary(dividend) || !is_ordinary(divisor)) {
        return false;
    }
    const sb1 sign = sign_product(dividend, divisor);
    if (divisor.start_pos == divisor.end_pos) {
        return try_quotient_by_limb(t, dividend, divisor.data_part[divisor.start_pos],
                                    units_limb - divisor.start_pos, sign, quotient);
    }
    if (divisor.start_pos - dividend.start_pos >= units_limb || divisor.data_part[divisor.start_pos] == 0) {
        return false;
    }
    limbs::Extent extent = {-1, -1};
    if (!t.counted(Stretch::quotient, limbs::kernels().quotient(magnitude(dividend), magnitude(divisor),
                                                                quotient.data_part, extent))) {
        return false;
    }
    set_fields(quotient, extent, sign);
    return true;
}

/* Where |modend| > |modor|. */
bool try_remainder(Trace t, const QZCICalcNumber& modend, const QZCICalcNumber& modor,
                   QZCICalcNumber& remainder) {
    if (!is_ordinary(modend) || !is_ordinary(modor) || modor.data_part[modor.start_pos] == 0 ||
        modend.data_part[modend.start_pos] == 0 || modend.start_pos > modor.start_pos ||
        QZCICalcNumAbsCompare(&modend, &modor) <= 0) {
        return false;
    }
    const sb1 sign = modend.num_signed;
    /* modend's limbs count down to modor's last one, even those after its end position. */
    const limbs::Magnitude dividend = {modend.data_part, modend.start_pos,
                                       std::max(modend.end_pos, modor.end_pos)};
    limbs::Extent extent = {-1, -1};
    if (modor.start_pos == modor.end_pos) {
        extent = limbs::kernels().remainder_by_limb(dividend, modor.data_part[modor.start_pos],
                                                    modor.start_pos, remainder.data_part);
        t.counted(Stretch::remainder_by_limb, true);
    } else if (!t.counted(Stretch::remainder, limbs::kernels().remainder(dividend, magnitude(modor),
                                                                         remainder.data_part, extent))) {
        return false;
    }
    set_fields(remainder, extent, sign);
    return true;
}

/* ---- Addition and subtraction ---- */

/* The sum of two finite records of equal sign. */
sword add_limbs(const QZCICalcNumber* augend, const QZCICalcNumber* addend, QZCICalcNumber& cresult) {
    constexpr const char* name = "QZCICalcNumAdd";
    const int first = std::min(augend->start_pos, addend->start_pos);
    const int last = std::max(augend->end_pos, addend->end_pos);
    if (!is_walkable(first, last)) {
        QZOCI_MALFORMED(name);
        return OCI_ERROR;
    }
    sb8 carry = 0;
    for (int pos = last; pos >= first; --pos) {
        const sb8 value = sb8{augend->data_part[pos]} + addend->data_part[pos] + carry;
        carry = value >= limb_base ? 1 : 0;
        cresult.data_part[pos] = static_cast<ub4>(value > max_limb ? value - limb_base : value);
    }
    cresult.num_signed = augend->num_signed;
    if (carry == 1 && first > 1) {
        cresult.data_part[first - 1] = 1;
    } else if (carry == 1) {
        /* A carry into limb 0 counts as overflow, like one out of it: callers rely on it. */
        std::puts("add set infinity to one with carry");
        cresult.num_infinity = 1;
        QZOCI_ERROR("augend:%p + addend:%p has overflow:%ld", ptr(augend), ptr(addend), 1L);
    }
    QZCICalcNumInit(&cresult);
    return OCI_SUCCESS;
}

/* Two infinities, or one and a finite record, of equal sign. */
sword subtract_infinities(Trace t, const QZCICalcNumber* minuend, const QZCICalcNumber* subtrahend,
                          QZCICalcNumber& cremainder) {
    QZOCI_DEBUG(t, "minuend:%p - subtrahend:%p meet infinity", ptr(minuend), ptr(subtrahend));
    if (minuend->num_infinity == 0) {
        cremainder = infinity_of_sign(static_cast<sb1>(-minuend->num_signed));
        return OCI_SUCCESS;
    }
    if (subtrahend->num_infinity == 0) {
        cremainder = infinity_of_sign(minuend->num_signed);
        return OCI_SUCCESS;
    }
    QZOCI_ERROR("minuend:%p - (-addend):%p all are infinity numbers", ptr(minuend), ptr(subtrahend));
    /* Not symmetric: (+inf) - (+inf) is zero, (-inf) - (-inf) is -inf. Callers rely on it. */
    if (minuend->num_signed == -1) {
        return to_infinity(t, &cremainder, -1);
    }
    return OCI_SUCCESS;
}

/* The difference of two finite records of equal sign. */
sword subtract_limbs(Trace t, const QZCICalcNumber* minuend, const QZCICalcNumber* subtrahend,
                     QZCICalcNumber& cremainder) {
    constexpr const char* name = "QZCICalcNumSub";
    const auto [in_minuend, in_subtrahend] =
        std::mismatch(minuend->data_part, minuend->data_part + limb_count, subtrahend->data_part);
    const bool equal = in_minuend == minuend->data_part + limb_count;
    const bool minuend_is_larger = !equal && *in_minuend > *in_subtrahend;
    const QZCICalcNumber& larger = minuend_is_larger ? *minuend : *subtrahend;
    const QZCICalcNumber& smaller = minuend_is_larger ? *subtrahend : *minuend;
    if (equal) {
        const sword status = to_zero(t, &cremainder);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("minuend:%p + subtrahend:%p QZCICalcNumToZero error:%d", ptr(minuend),
                        ptr(subtrahend), status);
            return status;
        }
    }
    /* x - x is a zero with the sign opposite to x's: callers rely on it. */
    cremainder.num_signed = minuend_is_larger ? minuend->num_signed : static_cast<sb1>(-minuend->num_signed);

    const int first = std::min(minuend->start_pos, subtrahend->start_pos);
    const int last = std::max(minuend->end_pos, subtrahend->end_pos);
    if (!is_walkable(first, last)) {
        QZOCI_MALFORMED(name);
        return OCI_ERROR;
    }
    sb8 borrow = 0;
    for (int pos = last; pos >= first; --pos) {
        const sb8 value = sb8{larger.data_part[pos]} - smaller.data_part[pos] + borrow;
        borrow = value < 0 ? -1 : 0;
        cremainder.data_part[pos] = static_cast<ub4>(value < 0 ? value + limb_base : value);
    }
    if (borrow == -1) {
        /* Only limbs outside 0..99999999 or outside the positions lead here. */
        std::puts("sub set infinity to one with carry");
        cremainder = infinity_of_sign(minuend->num_signed);
        QZOCI_ERROR("minuend:%p - addend:%p has overflow:%ld", ptr(minuend), ptr(subtrahend),
                    static_cast<long>(borrow));
    }
    QZCICalcNumInit(&cremainder);
    return OCI_SUCCESS;
}

/* The private result of an addition, before it is copied to the caller. */
sword sum_of(Trace t, const QZCICalcNumber* augend, const QZCICalcNumber* addend, QZCICalcNumber& cresult) {
    if (augend->is_zero != 0 || addend->is_zero != 0) {
        const sword status = assign(t, augend->is_zero != 0 ? addend : augend, &cresult);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("augend:%p + addend:%p QZCICalcNumAssign error:%d", ptr(augend), ptr(addend), status);
        }
        return status;
    }
    if (!has_sign(*augend) || !has_sign(*addend)) {
        QZOCI_ERROR("QZCICalcNumAdd get a error format");
        return OCI_ERROR;
    }
    if (augend->num_signed != addend->num_signed) {
        QZCICalcNumber tmp_num = canonical_zero();
        sword status = assign(t, addend, &tmp_num);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("augend:%p + addend:%p QZCICalcNumAssign error:%d", ptr(augend), ptr(addend), status);
            return status;
        }
        status = neg(t, &tmp_num);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("augend:%p + addend:%p QZCICalcNumNeg error:%d", ptr(augend), ptr(addend), status);
            return status;
        }
        status = sub(t, augend, &tmp_num, &cresult);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("augend:%p - (-addend):%p QZCICalcNumSub error:%d", ptr(augend), ptr(addend), status);
        }
        return status;
    }
    if (augend->num_infinity != 0 || addend->num_infinity != 0) {
        QZOCI_DEBUG(t, "augend:%p + addend:%p meet infinity", ptr(augend), ptr(addend));
        cresult = infinity_of_sign(augend->num_signed);
        return OCI_SUCCESS;
    }
    return add_limbs(augend, addend, cresult);
}

/* The private result of a subtraction, before it is copied to the caller. */
sword difference_of(Trace t, const QZCICalcNumber* minuend, const QZCICalcNumber* subtrahend,
                    QZCICalcNumber& cremainder) {
    if (minuend->is_zero != 0 || subtrahend->is_zero != 0) {
        const bool minuend_is_zero = minuend->is_zero != 0;
        sword status = assign(t, minuend_is_zero ? subtrahend : minuend, &cremainder);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("minuend:%p + subtrahend:%p QZCICalcNumAssign error:%d", ptr(minuend),
                        ptr(subtrahend), status);
            return status;
        }
        if (minuend_is_zero) {
            status = neg(t, &cremainder); /* 0 - 0 flips the sign of the zero */
            if (status != OCI_SUCCESS) {
                QZOCI_ERROR("minuend:%p + subtrahend:%p QZCICalcNumNeg error:%d", ptr(minuend),
                            ptr(subtrahend), status);
            }
        }
        return status;
    }
    if (!has_sign(*minuend) || !has_sign(*subtrahend)) {
        QZOCI_ERROR("QZCICalcNumSub get a error format");
        return OCI_ERROR;
    }
    if (minuend->num_signed != subtrahend->num_signed) {
        QZCICalcNumber tmp_num = canonical_zero();
        sword status = assign(t, subtrahend, &tmp_num);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("minuend:%p + subtrahend:%p QZCICalcNumAssign error:%d", ptr(minuend),
                        ptr(subtrahend), status);
            return status;
        }
        status = neg(t, &tmp_num);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("minuend:%p + subtrahend:%p QZCICalcNumNeg error:%d", ptr(minuend), ptr(subtrahend),
                        status);
            return status;
        }
        status = add(t, minuend, &tmp_num, &cremainder);
        if (status != OCI_SUCCESS) {
            /* The text names the subtraction although the addition failed; log readers key on it. */
            QZOCI_ERROR("minuend:%p - (-addend):%p QZCICalcNumSub error:%d", ptr(minuend), ptr(subtrahend),
                        status);
        }
        return status;
    }
    if (minuend->num_infinity != 0 || subtrahend->num_infinity != 0) {
        return subtract_infinities(t, minuend, subtrahend, cremainder);
    }
    return subtract_limbs(t, minuend, subtrahend, cremainder);
}

/* ---- Multiplication ---- */

/* Limbs of the raw product, and one above, which the length test reads. */
constexpr int product_limbs = 2 * limb_count;

/* Product exponents above this do not fit the record. */
constexpr int max_product_exponent = 20;

/* Adds one limb product, split into limb and carry, at index t of the raw product (least significant limb
 * first). Signed division of a wrapped value and a single subtraction of 10^8 are what limbs above 99999999
 * meet. False: the carry ran past the product array. */
bool accumulate(ub4* tmp_data_part, int t, ub4 limb1, ub4 limb2) {
    const auto value = static_cast<sb8>(ub8{limb1} * limb2);
    sb8 carry = value / limb_base;
    sb8 tmp_value = value % limb_base + tmp_data_part[t];
    if (tmp_value > max_limb) {
        tmp_value -= limb_base;
        ++carry;
    }
    tmp_data_part[t] = static_cast<ub4>(tmp_value);
    for (int k = t + 1; carry != 0; ++k) {
        if (k >= product_limbs) {
            return false;
        }
        const sb8 tmp_carry = carry + tmp_data_part[k];
        const bool carries = tmp_carry > max_limb;
        tmp_data_part[k] = static_cast<ub4>(carries ? tmp_carry - limb_base : tmp_carry);
        carry = carries ? 1 : 0;
    }
    return true;
}

/* True when the record has the limbs that a count of positions from end_pos upward promises. The count is that
 * of a signed byte, which wraps to a positive one for positions such as 127 and -128. */
bool has_limbs_above_last(const QZCICalcNumber& num, int count) {
    return num.end_pos < limb_count && num.end_pos - count >= -1;
}

/* The raw product of the significant limbs. False: a malformed operand. */
bool multiply_limbs(Trace t, const QZCICalcNumber* mul1, int len2, const QZCICalcNumber* mul2, int len1,
                    ub4* tmp_data_part) {
    if (len1 > 0 && len2 > 0 && (!has_limbs_above_last(*mul1, len2) || !has_limbs_above_last(*mul2, len1))) {
        return false;
    }
    for (int i = 0; i < len2; ++i) {
        for (int j = 0; j < len1; ++j) {
            const ub4 limb1 = mul1->data_part[mul1->end_pos - i];
            const ub4 limb2 = mul2->data_part[mul2->end_pos - j];
            const bool done = accumulate(tmp_data_part, i + j, limb1, limb2);
            QZOCI_DEBUG(t, "QZCICalcNumMul:%p x %p result:%i, %u", ptr(mul1), ptr(mul2), i + j,
                        tmp_data_part[i + j]);
            if (!done) {
                return false;
            }
        }
    }
    return true;
}

void product_overflow(Trace t, int new_len, int exp_sum, sb1 sign, QZCICalcNumber& cproduct) {
    cproduct.num_signed = sign;
    cproduct.num_infinity = 1;
    QZCICalcNumInit(&cproduct);
    QZOCI_DEBUG(t,
                "exceed max precision to calc in QZCICalcNumMul :need %d + %d < %d, set to infinity number",
                new_len, exp_sum, max_product_exponent);
}

/* Moves the raw product, whose lowest limb has the exponent exp_sum, to the fixed point and rounds it there.
 */
void align_product(Trace t, ub4* tmp_data_part, int new_len, int exp_sum, sb1 sign,
                   QZCICalcNumber& cproduct) {
    int source = 0;
    int target = units_limb - exp_sum;
    if (-exp_sum > max_product_exponent) {
        QZOCI_DEBUG(t, "exceed min precision to calc in QZCICalcNumMul :need %d * -1 <= %d", exp_sum,
                    max_product_exponent);
        source = -max_product_exponent - exp_sum;
        target = limb_count - 1;
        if (source >= product_limbs) {
            product_overflow(t, new_len, exp_sum, sign, cproduct);
            return;
        }
        if (tmp_data_part[source - 1] >= half_limb) {
            /* A kept limb of 99999999 rounds up to 1 and carries nothing: callers rely on it. */
            tmp_data_part[source] = tmp_data_part[source] >= max_limb ? 1 : tmp_data_part[source] + 1;
        }
    }
    for (; target >= 0 && source < product_limbs; ++source, --target) {
        cproduct.data_part[target] = tmp_data_part[source];
    }
    cproduct.num_signed = sign;
    QZCICalcNumInit(&cproduct);
}

/* The product of two finite, non-zero records. */
sword multiply(Trace t, const QZCICalcNumber* multiplicand, const QZCICalcNumber* multiplier,
               QZCICalcNumber& cproduct) {
    const int exp_sum = (units_limb - multiplicand->end_pos) + (units_limb - multiplier->end_pos);
    const QZCICalcNumber* mul1 = multiplier;
    const QZCICalcNumber* mul2 = multiplicand;
    int len1 = static_cast<sb1>(multiplicand->end_pos + 1 - multiplicand->start_pos);
    int len2 = static_cast<sb1>(multiplier->end_pos + 1 - multiplier->start_pos);
    if (len1 < len2) {
        std::swap(len1, len2);
        std::swap(mul1, mul2);
    }
    ub4 tmp_data_part[product_limbs + 1] = {};
    const int above_top = len1 + len2;
    if (above_top < 0 || above_top > product_limbs ||
        !multiply_limbs(t, mul1, len2, mul2, len1, tmp_data_part)) {
        QZOCI_MALFORMED("QZCICalcNumMul");
        return OCI_ERROR;
    }
    /* The limb one above the highest product limb is always zero, so that a product whose top limb is
     * non-zero can pass the test below and lose that limb: the wrap modulo 10^160 is what callers rely on. */
    const int new_len = tmp_data_part[above_top] == 0 ? above_top - 1 : above_top;
    const sb1 sign = sign_product(*multiplicand, *multiplier);
    QZOCI_DEBUG(t, "QZCICalcNumMul new_len:%d exp_sum: %d", new_len, exp_sum);
    if (exp_sum + new_len > max_product_exponent) {
        product_overflow(t, new_len, exp_sum, sign, cproduct);
    } else {
        align_product(t, tmp_data_part, new_len, exp_sum, sign, cproduct);
    }
    return OCI_SUCCESS;
}

/* The limbs of multiplicand * multiplier in place of cproduct's. False: a carry beyond limb 0. */
bool multiply_by_integer(const QZCICalcNumber& multiplicand, ub4 multiplier, QZCICalcNumber& cproduct) {
    sb8 carry = 0;
    int compute_pos = multiplicand.end_pos;
    for (; compute_pos >= multiplicand.start_pos; --compute_pos) {
        const ub8 product = ub8{multiplicand.data_part[compute_pos]} * multiplier + static_cast<ub8>(carry);
        const auto value = static_cast<sb8>(product);
        carry = value / limb_base;
        cproduct.data_part[compute_pos] = static_cast<ub4>(value % limb_base);
    }
    for (; carry != 0; --compute_pos) {
        if (compute_pos < 0) {
            return false;
        }
        cproduct.data_part[compute_pos] = static_cast<ub4>(carry % limb_base);
        carry /= limb_base;
    }
    return true;
}

/* ---- Division ---- */

/* Refining a trial digit for well-formed operands takes fewer than 200 steps; beyond this many it is
 * malformed. */
constexpr int max_refinements = 1000;

/* Scratch arrays of the long division hold its 41-limb extension of a 40-limb dividend and a carry limb. */
constexpr int scratch_limbs = 82;

/* Quotient limbs of a division after the leading one: one of them lies below limb 39 for every quotient that
 * is placed, and rounds it. */
constexpr int quotient_top = 41;

/* The trial digit, as knuth_calc_delta returns it. False: it would divide by zero or does not settle.
 * All arithmetic is modulo 2^64. */
bool try_trial_digit(ub8 j, ub8 n, const ub4* u, const ub4* v, ub8& qq) {
    const ub8 top = v[n - 1];
    const ub8 leading = u[j + n] * ub8{limb_base} + u[j + n - 1];
    if (u[j + n] == top) {
        qq = max_limb;
    } else if (top != 0) {
        qq = leading / top;
    } else {
        return false;
    }
    if (n <= 2) {
        return true; /* a two-limb divisor takes the first estimate as it stands: callers rely on it */
    }
    for (int refinements = 0; qq * v[n - 2] > (leading - qq * top) * limb_base + u[j + n - 2];
         ++refinements) {
        if (refinements == max_refinements) {
            return false;
        }
        --qq;
    }
    return true;
}

/* Scales u and v by the normalising factor d and divides: quotient[m..last]. u is left with the scaled
 * remainder. False: a step would divide by zero, or a digit does not settle. */
bool divide_scaled(ub4* u, ub4* v, sb1 m, sb1 n, int last, ub4* quotient, ub8& d) {
    const ub8 top = v[n - 1];
    d = limb_base / (top + 1);
    if (d == 0) {
        return false;
    }
    calc_mul(u, static_cast<sb1>(m + n), d);
    calc_mul(v, n, d);
    for (int j = m; j >= last; --j) {
        ub8 qq = 0;
        if (!try_trial_digit(static_cast<ub8>(j), static_cast<ub8>(n), u, v, qq)) {
            return false;
        }
        knuth_probe_quotient(static_cast<sb1>(j), n, u, v, &qq);
        quotient[j] = static_cast<ub4>(qq);
    }
    return true;
}

bool divide_with_remainder(ub4* u, ub4* v, sb1 m, sb1 n, ub4* quotient, ub4* remainder) {
    ub8 d = 0;
    if (!divide_scaled(u, v, m, n, 0, quotient, d)) {
        return false;
    }
    std::copy(u, u + n, remainder);
    ub8 tmp_r = 0;
    calc_div(remainder, n, d, &tmp_r);
    return true;
}

/* Copies limbs last..first of the record to an array that holds the least significant limb first. */
void load_reversed(const QZCICalcNumber& num, int last, int first, ub4* array) {
    for (int i = last; i >= first; --i) {
        *array++ = num.data_part[i];
    }
}

/* Places the quotient at the fixed point and rounds it half-up by the first limb that has no place. */
void place_quotient(Trace t, const ub4* quotient, int diff, QZCICalcNumber& cresult) {
    int i = units_limb - diff;
    int k = quotient_top;
    for (; i < limb_count; ++i, --k) {
        cresult.data_part[i] = quotient[k];
    }
    QZOCI_DEBUG(t, "QZCICalcNumDiv k:%d, and quotient[k]:%d, i:%d", k, static_cast<int>(quotient[k]), i);
    if (quotient[k] < half_limb || i > limb_count) {
        return; /* a quotient that starts two or more limbs below limb 39 is zero */
    }
    int pos = i - 1;
    while (pos >= 0 && cresult.data_part[pos] == max_limb) {
        cresult.data_part[pos--] = 0;
    }
    if (pos >= 0) {
        ++cresult.data_part[pos];
    } else {
        QZOCI_DEBUG(t, "QZCICalcNumDiv result exceed precision, set to infinity number");
        cresult.num_infinity = 1;
    }
}

/* The quotient by a divisor of two or more limbs. */
sword divide_long(Trace t, const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                  QZCICalcNumber& cresult) {
    const sb1 sign = sign_product(*dividend, *divisor);
    const int diff = divisor->start_pos - dividend->start_pos;
    if (diff >= units_limb) {
        /* The leading limb would land in limb 0 or above, be it zero: infinite although the quotient may fit.
         * Callers rely on it. */
        cresult.num_infinity = 1;
        cresult.num_signed = sign;
        QZCICalcNumInit(&cresult);
        QZOCI_ERROR("dividend:%p / divisor:%p QZCICalcNumDiv exceed set to num_infinity:%d", ptr(dividend),
                    ptr(divisor), 0);
        return OCI_SUCCESS;
    }
    const int n = divisor->end_pos - divisor->start_pos + 1;
    if (n < 2 || !has_walkable_limbs(*divisor) || !has_walkable_limbs(*dividend)) {
        QZOCI_MALFORMED("QZCICalcNumDiv");
        return OCI_ERROR;
    }
    QZOCI_DEBUG(t, "Donald Knuth Algo D. start: dividend:%p divisor:%p, m:%d, n:%d", ptr(dividend),
                ptr(divisor), quotient_top, n);
    ub4 u[scratch_limbs] = {};
    ub4 v[scratch_limbs] = {};
    ub4 quotient[quotient_top + 1] = {};
    /* The dividend ends at u[n + 40]; the zero limbs below it are its extension. */
    const int dividend_limbs = std::max(dividend->end_pos - dividend->start_pos + 1, 0);
    load_reversed(*dividend, dividend->end_pos, dividend->start_pos, u + n + limb_count + 1 - dividend_limbs);
    load_reversed(*divisor, divisor->end_pos, divisor->start_pos, v);
    /* The digits after the rounding one are never looked at; only limbs above 99999999 or a leading zero limb
     * can make a step that forms them impossible. */
    const bool stops_early = t.fast && is_ordinary(*dividend) &&
                             divisor->data_part[divisor->start_pos] != 0 && has_canonical_limbs(*dividend) &&
                             has_canonical_limbs(*divisor);
    const int placed = std::max(limb_count - (units_limb - diff), 0);
    ub8 d = 0;
    if (!divide_scaled(u, v, quotient_top, static_cast<sb1>(n), stops_early ? quotient_top - placed : 0,
                       quotient, d)) {
        QZOCI_MALFORMED("QZCICalcNumDiv");
        return OCI_ERROR;
    }
    place_quotient(t, quotient, diff, cresult);
    cresult.num_signed = sign;
    QZCICalcNumInit(&cresult);
    return OCI_SUCCESS;
}

/* The private result of a division with an infinite operand. */
sword divide_infinities(Trace t, const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                        QZCICalcNumber& cresult) {
    QZOCI_DEBUG(t, "dividend:%p / divisor:%p meet infinity", ptr(dividend), ptr(divisor));
    if (dividend->num_infinity == 0) {
        return to_zero(t, &cresult);
    }
    QZOCI_ERROR("dividend:%p / divisor:%p all are infinity numbers", ptr(dividend), ptr(divisor));
    cresult.num_infinity = 1;
    cresult.num_signed = sign_product(*divisor, *dividend);
    QZCICalcNumInit(&cresult);
    return OCI_SUCCESS;
}

/* The raw quotient limbs, most significant first, of a division by one limb; returns how many. */
int single_limb_quotient(Trace t, const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                         ub4 (&qut)[limb_count]) {
    const sb8 divisor_num = divisor->data_part[divisor->start_pos];
    sb8 carry = 0;
    int i = 0;
    for (; i < limb_count; ++i) {
        if (dividend->start_pos + i <= dividend->end_pos) {
            carry += dividend->data_part[dividend->start_pos + i];
        } else if (carry == 0) {
            break;
        }
        qut[i] = static_cast<ub4>(carry / divisor_num);
        carry = carry % divisor_num * limb_base;
        QZOCI_DEBUG(t, "QZCICaclNumDivOneDivisor %p / %p, value[%d]: %d..%ld", ptr(dividend), ptr(divisor), i,
                    static_cast<int>(qut[i]), static_cast<long>(carry));
    }
    return i;
}

/* Adds one to limb 39 with a full carry; a carry out of limb 0 is lost. */
void increment_last_limb(QZCICalcNumber& num) {
    for (int k = limb_count - 1; k >= 0; --k) {
        if (num.data_part[k] < max_limb) {
            ++num.data_part[k];
            return;
        }
        num.data_part[k] = 0;
    }
}

/* True when dividing the dividend's limbs up to last_read by the divisor's limb stays inside memory and
 * divides by no zero. */
bool single_limb_operands(const QZCICalcNumber& dividend, const QZCICalcNumber& divisor, int last_read) {
    if (!is_limb_index(divisor.start_pos) || !is_walkable(dividend.start_pos, last_read)) {
        return false;
    }
    const bool divides = dividend.start_pos <= last_read;
    return !divides || divisor.data_part[divisor.start_pos] != 0;
}

/* ---- Modulo ---- */

/* The remainder by a divisor of two or more limbs, |modend| > |modor|. */
sword modulo_long(const QZCICalcNumber& modend, const QZCICalcNumber& modor, QZCICalcNumber& cresult) {
    const int first = modor.start_pos;
    const int last = modor.end_pos;
    const int n = last - first + 1;
    if (n < 2 || !has_walkable_limbs(modor) || !is_walkable(modend.start_pos, last) ||
        modend.end_pos >= limb_count) {
        QZOCI_MALFORMED("QZCICalcNumMod");
        return OCI_ERROR;
    }
    ub4 u[scratch_limbs] = {};
    ub4 v[scratch_limbs] = {};
    ub4 quotient[scratch_limbs] = {};
    ub4 remainder[limb_count] = {};
    /* At least two quotient steps, with a zero limb above a dividend that starts at the divisor's limb. */
    const int m = std::max(first - modend.start_pos, 1);
    load_reversed(modor, last, first, v);
    load_reversed(modend, last, modend.start_pos, u);
    if (!divide_with_remainder(u, v, static_cast<sb1>(m), static_cast<sb1>(n), quotient, remainder)) {
        QZOCI_MALFORMED("QZCICalcNumMod");
        return OCI_ERROR;
    }
    for (int i = last, k = 0; i >= first; --i, ++k) {
        cresult.data_part[i] = remainder[k];
    }
    /* What lies below the divisor's last limb takes no part in the division. */
    for (int i = last + 1; i <= modend.end_pos; ++i) {
        cresult.data_part[i] = modend.data_part[i];
    }
    cresult.num_signed = modend.num_signed;
    QZCICalcNumInit(&cresult);
    return OCI_SUCCESS;
}

/* The result is modend itself. */
sword keep_modend(Trace t, const QZCICalcNumber* modend, const QZCICalcNumber* modor,
                  QZCICalcNumber& cresult) {
    const sword status = assign(t, modend, &cresult);
    if (status != OCI_SUCCESS) {
        QZOCI_ERROR("modend:%p / modor:%p QZCICalcNumAssign error:%d", ptr(modend), ptr(modor), status);
    }
    return status;
}

/* The private result of the modulo, before it is copied to the caller. */
sword remainder_of(Trace t, const QZCICalcNumber* modend, const QZCICalcNumber* modor,
                   QZCICalcNumber& cresult) {
    if (modor->is_zero != 0) {
        QZOCI_ERROR("QZCICalcNumMod: the divisor is zeor");
        return OCI_ERROR;
    }
    if (modend->is_zero != 0) {
        QZOCI_DEBUG(t, "QZCICalcNumMod dividend is zero");
        const sword status = to_zero(t, &cresult);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("modend:%p / modor:%p QZCICalcNumToZero error:%d", ptr(modend), ptr(modor), status);
        }
        return status;
    }
    if (modend->num_infinity == 1) {
        QZOCI_DEBUG(t, "QZCICalcNumMod modend is infinity");
        return OCI_SUCCESS; /* with the canonical zero: callers rely on it */
    }
    if (modor->num_infinity == 1) {
        QZOCI_DEBUG(t, "QZCICalcNumMod modor is infinity");
        return keep_modend(t, modend, modor, cresult);
    }
    const sb1 compare_result = QZCICalcNumAbsCompare(modend, modor);
    if (compare_result == 0) {
        QZOCI_DEBUG(t, "QZCICalcNumMod modor is equal to modend");
        return OCI_SUCCESS; /* a positive zero, whatever the signs */
    }
    if (compare_result < 0) {
        QZOCI_DEBUG(t, "QZCICalcNumMod modor big than modend");
        return keep_modend(t, modend, modor, cresult);
    }
    if (modor->start_pos == modor->end_pos) {
        /* The text says dividend although it is the divisor; log readers key on it. */
        QZOCI_DEBUG(t, "QZCICalcNumMod dividend' length is 1");
        const sword status = mod_one_limb(t, modend, modor, &cresult);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("multiplicand:%p mod multiplier:%p QZCICaclNumModOneDivsor error:%d", ptr(modend),
                        ptr(modor), status);
        }
        return status;
    }
    return modulo_long(*modend, *modor, cresult);
}

/* ---- Ceiling and floor ---- */

/* What ceiling and floor differ in. */
struct IntegerRounding {
    const char* name;
    const char* correction_name;
    sb1 corrected_sign; /* a fraction of this sign needs the correction by one */
    sword (*correct)(Trace, const QZCICalcNumber*, const QZCICalcNumber*, QZCICalcNumber*);
};

constexpr IntegerRounding ceiling = {"QZCICalcNumCeil", "QZCICalcNumAdd", 1, add};
constexpr IntegerRounding flooring = {"QZCICalcNumFloor", "QZCICalcNumSub", -1, sub};

sword round_to_integer(Trace t, const IntegerRounding& rounding, const QZCICalcNumber* number,
                       QZCICalcNumber* result) {
    if (number == nullptr || result == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    const bool corrects = number->end_pos > units_limb && number->num_signed == rounding.corrected_sign;
    if (t.fast && try_truncated(t, *number, corrects, *result)) {
        return OCI_SUCCESS;
    }
    QZCICalcNumber tmp_result = canonical_zero();
    sword status = assign(t, number, &tmp_result);
    if (status != OCI_SUCCESS) {
        QZOCI_ERROR("%s: QZCICalcNumAssign error", rounding.name);
        return status;
    }
    if (number->num_infinity == 1) {
        QZOCI_ERROR("%s: get infinity number, do nothing", rounding.name);
        *result = tmp_result;
        return OCI_SUCCESS;
    }
    status = to_round(t, &tmp_result);
    if (status != OCI_SUCCESS) {
        QZOCI_ERROR("%s: QZCICalcNumToRound error", rounding.name);
        return status;
    }
    if (corrects) {
        QZCICalcNumber adj_num;
        initCalcNumberFromInt(&adj_num, 1);
        status = rounding.correct(t, &tmp_result, &adj_num, &tmp_result);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("%s: %s error", rounding.name, rounding.correction_name);
            return status;
        }
    }
    *result = tmp_result;
    return OCI_SUCCESS;
}

/* ---- The operations without fast kernels; apart from their callers, whose way to a kernel is short then ---- */

[[gnu::noinline]] sword add_by_steps(Trace t, const QZCICalcNumber* augend, const QZCICalcNumber* addend,
                                     QZCICalcNumber* sump) {
    constexpr const char* name = "QZCICalcNumAdd";
    QZOCI_DEBUG(t, "call function QZCICalcNumAdd with augend:%p, addend:%p, sum:%p", ptr(augend), ptr(addend),
                ptr(sump));
    if (augend == nullptr || addend == nullptr || sump == nullptr) {
        QZOCI_LEAVE(t, name, OCI_INVALID_HANDLE);
    }
    QZCICalcNumber cresult = canonical_zero();
    const sword status = sum_of(t, augend, addend, cresult);
    if (status == OCI_SUCCESS) {
        *sump = cresult;
    }
    QZOCI_LEAVE(t, name, status);
}

[[gnu::noinline]] sword sub_by_steps(Trace t, const QZCICalcNumber* minuend, const QZCICalcNumber* subtrahend,
                                     QZCICalcNumber* remainderp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumSub with minuend:%p, subtrahend:%p, remainder:%p", ptr(minuend),
                ptr(subtrahend), ptr(remainderp));
    if (minuend == nullptr || subtrahend == nullptr || remainderp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZCICalcNumber cremainder = canonical_zero();
    const sword status = difference_of(t, minuend, subtrahend, cremainder);
    if (status == OCI_SUCCESS) {
        *remainderp = cremainder;
    }
    QZOCI_LEAVE(t, "QZCICalcNumSub", status);
}

[[gnu::noinline]] sword mul_by_steps(Trace t, const QZCICalcNumber* multiplicand,
                                     const QZCICalcNumber* multiplier, QZCICalcNumber* productp) {
    constexpr const char* name = "QZCICalcNumMul";
    QZOCI_DEBUG(t, "call function QZCICalcNumMul with multiplicand:%p, multiplier:%p, product:%p",
                ptr(multiplicand), ptr(multiplier), ptr(productp));
    if (multiplicand == nullptr || multiplier == nullptr || productp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZCICalcNumber cproduct = canonical_zero();
    sword status = OCI_SUCCESS;
    if (multiplicand->is_zero != 0 || multiplier->is_zero != 0) {
        /* Before the infinity test: zero times infinity is zero. */
        status = to_zero(t, &cproduct);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("multiplicand:%p + multiplier:%p QZCICalcNumToZero error:%d", ptr(multiplicand),
                        ptr(multiplier), status);
        }
    } else if (multiplicand->num_infinity != 0 || multiplier->num_infinity != 0) {
        QZOCI_DEBUG(t, "multiplicand:%p + multiplier:%p meet infinity", ptr(multiplicand), ptr(multiplier));
        cproduct.num_signed = sign_product(*multiplicand, *multiplier);
        cproduct.num_infinity = 1;
        QZCICalcNumInit(&cproduct);
    } else {
        status = multiply(t, multiplicand, multiplier, cproduct);
    }
    if (status == OCI_SUCCESS) {
        *productp = cproduct;
    }
    QZOCI_LEAVE(t, name, status);
}

[[gnu::noinline]] sword div_by_steps(Trace t, const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                                     QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumDiv with dividend:%p, divisor:%p, result:%p", ptr(dividend),
                ptr(divisor), ptr(resultp));
    if (dividend == nullptr || divisor == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    if (divisor->is_zero != 0) {
        QZOCI_ERROR("QZCICalcNumDiv: the divisor is zeor");
        return OCI_ERROR;
    }
    QZCICalcNumber cresult = canonical_zero();
    sword status = OCI_SUCCESS;
    if (dividend->is_zero != 0 || dividend->num_infinity != 0 || divisor->num_infinity != 0) {
        if (dividend->is_zero != 0) {
            QZOCI_DEBUG(t, "QZCICalcNumDiv dividend is zero");
            status = to_zero(t, &cresult);
        } else {
            status = divide_infinities(t, dividend, divisor, cresult);
        }
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("multiplicand:%p / multiplier:%p QZCICalcNumToZero error:%d", ptr(dividend),
                        ptr(divisor), status);
        }
    } else if (divisor->start_pos == divisor->end_pos) {
        /* The text says dividend although it is the divisor; log readers key on it. */
        QZOCI_DEBUG(t, "QZCICalcNumDiv dividend' length is 1");
        status = div_one_limb(t, dividend, divisor, &cresult);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("multiplicand:%p / multiplier:%p QZCICaclNumDivOneDivisor error:%d", ptr(dividend),
                        ptr(divisor), status);
        }
    } else {
        status = divide_long(t, dividend, divisor, cresult);
    }
    if (status == OCI_SUCCESS) {
        *resultp = cresult;
    }
    return status; /* without an exit trace, on every path */
}

} // namespace

bool try_quotient_by_integer(Trace t, const QZCICalcNumber& dividend, sb8 divisor, QZCICalcNumber& quotient) {
    return t.fast && is_ordinary(dividend) && divisor > 0 && divisor < limb_base &&
           try_quotient_by_limb(t, dividend, static_cast<ub4>(divisor), 0, dividend.num_signed, quotient);
}

bool try_half(Trace t, QZCICalcNumber& num) {
    if (!t.fast || !is_ordinary(num)) {
        return false;
    }
    limbs::Extent extent = {-1, -1};
    if (!t.counted(Stretch::half, limbs::kernels().half(magnitude(num), num.data_part, extent))) {
        return false;
    }
    set_fields(num, extent, num.num_signed);
    return true;
}

sword add(Trace t, const QZCICalcNumber* augend, const QZCICalcNumber* addend, QZCICalcNumber* sump) {
    if (t.fast && are_records(augend, addend, sump) && try_sum(t, *augend, *addend, false, *sump)) {
        return OCI_SUCCESS;
    }
    return add_by_steps(t, augend, addend, sump);
}

sword sub(Trace t, const QZCICalcNumber* minuend, const QZCICalcNumber* subtrahend,
          QZCICalcNumber* remainderp) {
    if (t.fast && are_records(minuend, subtrahend, remainderp) &&
        try_sum(t, *minuend, *subtrahend, true, *remainderp)) {
        return OCI_SUCCESS;
    }
    return sub_by_steps(t, minuend, subtrahend, remainderp);
}

sword mul(Trace t, const QZCICalcNumber* multiplicand, const QZCICalcNumber* multiplier,
          QZCICalcNumber* productp) {
    if (t.fast && are_records(multiplicand, multiplier, productp) &&
        try_product(t, *multiplicand, *multiplier, *productp)) {
        return OCI_SUCCESS;
    }
    return mul_by_steps(t, multiplicand, multiplier, productp);
}

sword mul_integer(Trace t, const QZCICalcNumber* multiplicand, ub4 multiplier, QZCICalcNumber* productp) {
    constexpr const char* name = "QZCICalcNumMulWhitInterge";
    QZCICalcNumber cproduct = canonical_zero();
    QZOCI_DEBUG(t, "call function QZCICalcNumMulWhitInterge with multiplicand:%p, multiplier:%u, product:%p",
                ptr(multiplicand), multiplier, ptr(&cproduct));
    if (multiplicand == nullptr || productp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    if (multiplier == 0 || multiplicand->is_zero != 0) {
        const sword status = to_zero(t, &cproduct);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("multiplicand:%p + multiplier:%u QZCICalcNumToZero error:%d", ptr(multiplicand),
                        multiplier, status);
            QZOCI_LEAVE(t, name, status);
        }
    } else if (multiplicand->num_infinity != 0) {
        cproduct = infinity_of_sign(1);
    } else if (!has_walkable_limbs(*multiplicand)) {
        QZOCI_MALFORMED(name);
        QZOCI_LEAVE(t, name, OCI_ERROR);
    } else if (multiply_by_integer(*multiplicand, multiplier, cproduct)) {
        QZCICalcNumInit(&cproduct);
    } else {
        /* "With" in the text against "Whit" in the operation's name; log readers key on it. */
        QZOCI_ERROR("exceed max precision to calc in QZCICalcNumMulWithInterge");
        cproduct = infinity_of_sign(1);
    }
    /* After the zeroing too, and without normalising: a zero product of a negative multiplicand has sign -1.
     */
    cproduct.num_signed = multiplicand->num_signed;
    *productp = cproduct;
    QZOCI_LEAVE(t, name, OCI_SUCCESS);
}

sword div_one_limb(Trace t, const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                   QZCICalcNumber* resultp) {
    constexpr const char* name = "QZCICaclNumDivOneDivisor";
    QZOCI_DEBUG(t, "call function QZCICaclNumDivOneDivisor with dividend:%p, divisor:%p, result:%p",
                ptr(dividend), ptr(divisor), ptr(resultp));
    if (dividend == nullptr || divisor == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    const int last_read = std::min<int>(dividend->end_pos, dividend->start_pos + limb_count - 1);
    if (!single_limb_operands(*dividend, *divisor, last_read)) {
        QZOCI_MALFORMED(name);
        QZOCI_LEAVE(t, name, OCI_ERROR);
    }
    QZCICalcNumber cresult = canonical_zero();
    ub4 qut[limb_count] = {};
    const int length = single_limb_quotient(t, dividend, divisor, qut);
    auto exp_pow = static_cast<sb1>(divisor->start_pos - dividend->start_pos);
    int j = 1;
    if (qut[0] != 0) {
        ++exp_pow;
        j = 0;
    }
    QZOCI_DEBUG(t, "QZCICaclNumDivOneDivisor dividend:%p, divisor:%p, exp_pow:%d, len:%d - %d", ptr(dividend),
                ptr(divisor), exp_pow, length, j);
    if (exp_pow > units_limb) {
        /* A leading limb in limb 0 is infinite already, one limb early: callers rely on it. */
        cresult.num_infinity = 1;
        QZOCI_DEBUG(t, "QZCICaclNumDivOneDivisor exceed max precesion");
    } else {
        for (int k = first_fraction_limb - exp_pow; k < limb_count && j < length; ++k, ++j) {
            cresult.data_part[k] = qut[j];
        }
        /* Strictly above half, and even when the quotient starts well below limb 39: callers rely on both. */
        if (j < length && qut[j] > half_limb) {
            increment_last_limb(cresult);
        }
    }
    cresult.num_signed = sign_product(*divisor, *dividend);
    QZCICalcNumInit(&cresult);
    *resultp = cresult;
    QZOCI_LEAVE(t, name, OCI_SUCCESS);
}

sword mod_one_limb(Trace t, const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                   QZCICalcNumber* resultp) {
    constexpr const char* name = "QZCICaclNumModOneDivsor";
    if (dividend == nullptr || divisor == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    const int p = divisor->start_pos;
    if (!single_limb_operands(*dividend, *divisor, p) || dividend->end_pos >= limb_count) {
        QZOCI_MALFORMED(name);
        QZOCI_LEAVE(t, name, OCI_ERROR);
    }
    QZCICalcNumber cresult = canonical_zero();
    const sb8 divisor_num = divisor->data_part[p];
    sb8 carry = 0;
    for (int i = dividend->start_pos; i <= p; ++i) {
        const sb8 value = carry * limb_base + dividend->data_part[i];
        carry = value % divisor_num;
        QZOCI_DEBUG(t, "QZCICaclNumModOneDivsor %p / %p, value[%i]: %ld mod %ld ..%ld", ptr(dividend),
                    ptr(divisor), i, static_cast<long>(value), static_cast<long>(divisor_num),
                    static_cast<long>(carry));
    }
    cresult.data_part[p] = static_cast<ub4>(carry);
    for (int i = p + 1; i <= dividend->end_pos; ++i) {
        cresult.data_part[i] = dividend->data_part[i];
    }
    cresult.num_signed = dividend->num_signed;
    QZCICalcNumInit(&cresult);
    *resultp = cresult;
    QZOCI_LEAVE(t, name, OCI_SUCCESS);
}

sword div(Trace t, const QZCICalcNumber* dividend, const QZCICalcNumber* divisor, QZCICalcNumber* resultp) {
    if (t.fast && are_records(dividend, divisor, resultp) && try_quotient(t, *dividend, *divisor, *resultp)) {
        return OCI_SUCCESS;
    }
    return div_by_steps(t, dividend, divisor, resultp);
}

sword mod(Trace t, const QZCICalcNumber* modend, const QZCICalcNumber* modor, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumMod with modend:%p, modor:%p, result:%p", ptr(modend),
                ptr(modor), ptr(resultp));
    if (modend == nullptr || modor == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    if (t.fast && try_remainder(t, *modend, *modor, *resultp)) {
        return OCI_SUCCESS;
    }
    QZCICalcNumber cresult = canonical_zero();
    const sword status = remainder_of(t, modend, modor, cresult);
    if (status == OCI_SUCCESS) {
        *resultp = cresult;
    }
    QZOCI_LEAVE(t, "QZCICalcNumMod", status);
}

sword ceil(Trace t, const QZCICalcNumber* number, QZCICalcNumber* result) {
    QZOCI_DEBUG(t, "call function OCINumberCeil with number:%p, result:%p", ptr(number), ptr(result));
    QZOCI_LEAVE(t, ceiling.name, round_to_integer(t, ceiling, number, result));
}

sword floor(Trace t, const QZCICalcNumber* number, QZCICalcNumber* result) {
    QZOCI_DEBUG(t, "call function OCINumberFloor with number:%p, result:%p", ptr(number), ptr(result));
    QZOCI_LEAVE(t, flooring.name, round_to_integer(t, flooring, number, result));
}

} // namespace qzoci::engine

using namespace qzoci::engine;

extern "C" {

void calc_add(ub4* augend, sb1 len1, ub4* addend, sb1 len2, ub4* result) {
    ub8 carry = 0;
    for (int i = 0; i < len1 || i < len2; ++i) {
        ub8 value = carry + (i < len2 ? addend[i] : 0) + (i < len1 ? augend[i] : 0);
        carry = value > max_limb ? 1 : 0;
        if (carry != 0) {
            value -= limb_base;
        }
        result[i] = static_cast<ub4>(value);
    }
}

void calc_sub(ub4* minuend, sb1 len1, ub4* subtrahend, sb1 len2, boolean* negative, ub4* result) {
    sb8 borrow = 0;
    for (int i = 0; i < len1 || i < len2; ++i) {
        const sb8 tmp_subtrahend = (i < len2 ? sb8{subtrahend[i]} : 0) + borrow;
        sb8 tmp_minuend = i < len1 ? minuend[i] : 0;
        borrow = tmp_subtrahend > tmp_minuend ? 1 : 0;
        if (borrow != 0) {
            tmp_minuend += limb_base;
        }
        result[i] = static_cast<ub4>(tmp_minuend - tmp_subtrahend);
    }
    *negative = borrow != 0 ? 1 : 0;
}

void calc_mul(ub4* num, sb1 len, ub8 multiplier) {
    ub8 carry = 0;
    for (int i = 0; i < len; ++i) {
        const ub8 value = num[i] * multiplier + carry;
        /* Strictly greater: a value of exactly 10^8 stays in its limb. Quotients depend on it, and callers on
         * them. */
        const bool carries = value > limb_base;
        num[i] = static_cast<ub4>(carries ? value % limb_base : value);
        carry = carries ? value / limb_base : 0;
    }
    if (carry != 0) {
        num[len] = static_cast<ub4>(carry);
    }
}

void calc_div(ub4* num, sb1 len, ub8 divisor, ub8* reminder) {
    ub8 rest = 0;
    for (int i = len - 1; i >= 0; --i) {
        const ub8 value = rest * limb_base + num[i];
        num[i] = static_cast<ub4>(value / divisor);
        rest = value % divisor;
    }
    *reminder = rest;
}

ub8 knuth_calc_delta(ub8 j, ub8 n, ub4* u, ub4* v) {
    ub8 qq = 0;
    return try_trial_digit(j, n, u, v, qq) ? qq : 0;
}

void knuth_probe_quotient(sb1 j, sb1 n, ub4* u, ub4* v, ub8* qq) {
    ub4 qq_mul_v[scratch_limbs];
    ub4 u_sub[scratch_limbs];
    const auto length = static_cast<sb1>(n + 1);
    std::copy(v, v + length, qq_mul_v);
    calc_mul(qq_mul_v, n, *qq);
    boolean negative = 0;
    calc_sub(u + j, length, qq_mul_v, length, &negative, u_sub);
    if (negative == 0) {
        std::copy(u_sub, u_sub + length, u + j);
        return;
    }
    /* Added back once at most, even where the trial digit was two too large: callers rely on it. */
    --*qq;
    calc_add(u_sub, length, v, length, u + j);
}

void qzci_knuth_div(ub4* u, ub4* v, sb1 m, sb1 n, ub4* quotient, ub4* remainder) {
    divide_with_remainder(u, v, m, n, quotient, remainder);
}

sword QZCICalcNumAdd(const QZCICalcNumber* augend, const QZCICalcNumber* addend, QZCICalcNumber* sump) {
    return add(trace_of_this_call(), augend, addend, sump);
}

sword QZCICalcNumSub(const QZCICalcNumber* minuend, const QZCICalcNumber* subtrahend,
                     QZCICalcNumber* remainderp) {
    return sub(trace_of_this_call(), minuend, subtrahend, remainderp);
}

sword QZCICalcNumMul(const QZCICalcNumber* multiplicand, const QZCICalcNumber* multiplier,
                     QZCICalcNumber* productp) {
    return mul(trace_of_this_call(), multiplicand, multiplier, productp);
}

sword QZCICalcNumMulWhitInterge(const QZCICalcNumber* multiplicand, ub4 multiplier,
                                QZCICalcNumber* productp) {
    return mul_integer(trace_of_this_call(), multiplicand, multiplier, productp);
}

sword QZCICaclNumDivOneDivisor(const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                               QZCICalcNumber* resultp) {
    return div_one_limb(trace_of_this_call(), dividend, divisor, resultp);
}

sword QZCICaclNumModOneDivsor(const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                              QZCICalcNumber* resultp) {
    return mod_one_limb(trace_of_this_call(), dividend, divisor, resultp);
}

sword QZCICalcNumDiv(const QZCICalcNumber* dividend, const QZCICalcNumber* divisor, QZCICalcNumber* resultp) {
    return div(trace_of_this_call(), dividend, divisor, resultp);
}

sword QZCICalcNumMod(const QZCICalcNumber* modend, const QZCICalcNumber* modor, QZCICalcNumber* resultp) {
    return mod(trace_of_this_call(), modend, modor, resultp);
}

sword QZCICalcNumCeil(const QZCICalcNumber* number, QZCICalcNumber* result) {
    return ceil(trace_of_this_call(), number, result);
}

sword QZCICalcNumFloor(const QZCICalcNumber* number, QZCICalcNumber* result) {
    return floor(trace_of_this_call(), number, result);
}

} // extern "C"
