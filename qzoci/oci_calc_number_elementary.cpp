#include "qzoci/oci_calc_number_elementary.h"

#include "qzoci/limbs/exact_root.h"
#include "qzoci/limbs/series.h"
#include "qzoci/limbs/square_root.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace qzoci::engine {
namespace {

QZCICalcNumber integer(sb8 value) {
    QZCICalcNumber num;
    initCalcNumberFromInt(&num, value);
    return num;
}

/* units + fraction * 10^-8, for units and fraction below 10^8. */
QZCICalcNumber two_limbs(ub4 units, ub4 fraction) {
    QZCICalcNumber num = canonical_zero();
    num.data_part[units_limb] = units;
    num.data_part[first_fraction_limb] = fraction;
    QZCICalcNumInit(&num);
    return num;
}

QZCICalcNumber one_half() {
    return two_limbs(0, limb_base / 2);
}

QZCICalcNumber pi_half_with_sign(sb1 sign) {
    QZCICalcNumber num;
    QZCICalcNumSetPiHalf(&num);
    num.num_signed = sign;
    return num;
}

/* ---- Series ---- */

/* What a series does with the sign that a term has from the division. */
enum class TermSign {
    kept,
    by_index,       /* minus at odd indices, plus at even ones */
    turned_at_even, /* the opposite at even indices */
};

/* The divisors of a series: by index, and those of the usual indices in a form for the kernel. */
struct Divisors {
    sb8 first_index;
    sb8 (*divisor)(sb8 index);
    std::span<const limbs::SeriesDivisor> prepared;
};

template <sb8 (*divisor)(sb8), int First, int Count>
constexpr Divisors divisors_of() {
    return {First, divisor, limbs::series_divisors<divisor, First, Count>};
}

/* A series that adds up terms until one has become zero. Each pass, with the index n counting up:
 *     power = power * factor;  term = power / divisor(n);  set_sign(n, term);  sum = sum + term
 * power and term may be one record. */
struct Series {
    QZCICalcNumber& power;
    const QZCICalcNumber& factor;
    QZCICalcNumber& term;
    QZCICalcNumber& sum;
    const Divisors& divisors;
    TermSign sign;
    const char* product_error;
    const char* quotient_error;
    const char* sum_error;
};

/* No series of a well-formed argument has 300 terms; one that runs this long makes no progress. */
constexpr int max_series_passes = 4096;

void set_sign(TermSign rule, sb8 index, QZCICalcNumber& term) {
    if (rule == TermSign::by_index) {
        term.num_signed = index % 2 != 0 ? -1 : 1;
    } else if (rule == TermSign::turned_at_even && index % 2 == 0) {
        term.num_signed = static_cast<sb1>(-term.num_signed);
    }
}

sword series_pass(Trace t, const Series& s, sb8 index) {
    const sb8 divisor = s.divisors.divisor(index);
    QZOCI_FORWARD(mul(t, &s.power, &s.factor, &s.power), "%s", s.product_error);
    if (!try_quotient_by_integer(t, s.power, divisor, s.term)) {
        const QZCICalcNumber divor = integer(divisor);
        QZOCI_FORWARD(div(t, &s.power, &divor, &s.term), "%s", s.quotient_error);
    }
    set_sign(s.sign, index, s.term);
    QZOCI_FORWARD(add(t, &s.sum, &s.term, &s.sum), "%s", s.sum_error);
    return OCI_SUCCESS;
}

enum class OnFailure { leave, repeat_index };

bool term_is_negative_at_odd(sb8 index, bool) {
    return index % 2 != 0;
}

bool term_is_turned_at_even(sb8 index, bool negative) {
    return negative != (index % 2 == 0);
}

bool term_keeps_sign(sb8, bool negative) {
    return negative;
}

/* The same signs as a kernel takes them. */
auto sign_function(TermSign rule) {
    return rule == TermSign::by_index         ? term_is_negative_at_odd
           : rule == TermSign::turned_at_even ? term_is_turned_at_even
                                              : term_keeps_sign;
}

bool try_series(Trace t, const Series& s) {
    if (!is_ordinary(s.power) || !is_ordinary(s.factor) || !is_ordinary(s.sum) || !has_sign(s.power) ||
        !has_sign(s.factor) || !has_sign(s.sum)) {
        return false;
    }
    const auto signed_magnitude = [](const QZCICalcNumber& num) {
        return limbs::SignedMagnitude{magnitude(num), num.num_signed == -1};
    };
    const limbs::SeriesRule rule = {s.divisors.first_index, s.divisors.prepared, sign_function(s.sign),
                                    &s.power == &s.term};
    limbs::Extent extent = {-1, -1};
    bool negative = false;
    if (!t.counted(Stretch::series,
                   limbs::sum_series(rule, signed_magnitude(s.power), signed_magnitude(s.factor),
                                     signed_magnitude(s.sum), s.sum.data_part, extent, negative))) {
        return false;
    }
    set_fields(s.sum, extent, negative ? -1 : 1);
    return true;
}

/* Runs the series to its end. A failed pass ends it, or is made again at the same index with the records as
 * the failure left them. */
sword sum_series(Trace t, const Series& s, OnFailure on_failure) {
    if (t.fast && s.term.is_zero == 0 && try_series(t, s)) {
        return OCI_SUCCESS;
    }
    sb8 index = s.divisors.first_index;
    for (int passes = 0; s.term.is_zero == 0; ++passes) {
        if (passes == max_series_passes) {
            QZOCI_ERROR("%s", s.product_error);
            return OCI_ERROR;
        }
        const sword status = series_pass(t, s, index);
        if (status == OCI_SUCCESS) {
            ++index;
        } else if (on_failure == OnFailure::leave) {
            return status;
        }
    }
    return OCI_SUCCESS;
}

constexpr sb8 odd_divisor(sb8 index) {
    return 2 * index - 1;
}

/* The arctangent of one half has 262 terms, logarithms have a quarter of that. */
constexpr Divisors odd_divisors = divisors_of<odd_divisor, 2, 268>();

/* ---- Square root ---- */

/* Notices that the guesses of a root repeat, by Brent's method: each guess is compared with a saved one,
 * which is renewed after 1, 2, 4, ... guesses. Also when they go on for too long. */
class GuessWatch {
public:
    bool repeats(const QZCICalcNumber& guess) {
        ++guesses_;
        if (guesses_ > max_guesses || (guesses_ > 1 && same(guess, saved_))) {
            return true;
        }
        if (guesses_ == next_save_) {
            saved_ = guess;
            next_save_ *= 2;
        }
        return false;
    }

private:
    static bool same(const QZCICalcNumber& a, const QZCICalcNumber& b) {
        return a.num_infinity == b.num_infinity &&
               std::equal(a.data_part, a.data_part + limb_count, b.data_part);
    }

    static constexpr int max_guesses = 4096;
    int guesses_ = 0;
    int next_save_ = 1;
    QZCICalcNumber saved_ = canonical_zero();
};

/* The root by exact arithmetic, where the guesses repeat: in units of 10^-160, the g with
 * g^2 - 1.5 g <= number * 10^320 < g^2 + 0.5 g, the smaller if two fit. The iteration ends there when its
 * quotient and its halving are exact. */
QZCICalcNumber exact_root_of(const QZCICalcNumber& number) {
    /* number * 10^320 in 60 limbs and the carry of limbs above 99999999, least significant first; the lower
     * twenty are zero. */
    constexpr int root_limbs = 31;
    ub4 square[2 * root_limbs] = {};
    ub8 carry = 0;
    int k = 20;
    for (int i = limb_count - 1; i >= 0; --i, ++k) {
        const ub8 value = number.data_part[i] + carry;
        square[k] = static_cast<ub4>(value % limb_base);
        carry = value / limb_base;
    }
    square[k] = static_cast<ub4>(carry);

    ub4 root[root_limbs];
    const bool rounds_up = limbs::exact_root(square, root_limbs, root);
    QZCICalcNumber guess = canonical_zero();
    for (int i = 0; i < root_limbs; ++i) {
        guess.data_part[limb_count - 1 - i] = root[i];
    }
    for (int i = limb_count - 1; rounds_up; --i) {
        if (++guess.data_part[i] < limb_base) {
            break;
        }
        guess.data_part[i] = 0; /* the root has at most 31 limbs: the carry stops above them at the latest */
    }
    QZCICalcNumInit(&guess);
    return guess;
}

/* new_guess = (number / cur_guess + cur_guess) * 0.5; on a failure new_guess is as the failing step left it.
 */
sword heron_step(Trace t, const QZCICalcNumber* number, const QZCICalcNumber& cur_guess,
                 const QZCICalcNumber& half_num, QZCICalcNumber& new_guess) {
    QZCICalcNumber tmp_result = canonical_zero();
    QZOCI_FORWARD(div(t, number, &cur_guess, &tmp_result), "QZCICalcNumSqrt: QZCICalcNumDiv error");
    QZOCI_FORWARD(add(t, &tmp_result, &cur_guess, &new_guess), "QZCICalcNumSqrt: QZCICalcNumAdd error");
    if (!try_half(t, new_guess)) {
        QZOCI_FORWARD(mul(t, &new_guess, &half_num, &new_guess), "QZCICalcNumSqrt: QZCICalcNumMul error");
    }
    return OCI_SUCCESS;
}

/* True for a guess without limbs below limb 29 whose square, exact then, is number. */
bool is_exact_root(Trace t, const QZCICalcNumber& number, const QZCICalcNumber& guess) {
    QZCICalcNumber square;
    return guess.end_pos <= 29 && mul(t, &guess, &guess, &square) == OCI_SUCCESS &&
           QZCICalcNumCompare(&square, &number) == 0;
}

/* Jumps to where the iteration ends: to a root that is a fixed point of its step and alone in its
 * neighbourhood, or to an exact one that its step keeps. Digit for digit the walk's result but for the
 * possibility that limbs::is_isolated_fixed_point names and estimates; an engine built with
 * QZOCI_CERTIFIED_ROOT_ONLY always walks. */
bool try_root(Trace t, const QZCICalcNumber& number, QZCICalcNumber& cresult) {
#ifdef QZOCI_CERTIFIED_ROOT_ONLY
    static_cast<void>(t);
    static_cast<void>(number);
    static_cast<void>(cresult);
    return false;
#else
    if (number.num_infinity != 0 || !is_limb_index(number.start_pos) || number.start_pos > number.end_pos ||
        !is_limb_index(number.end_pos) || number.data_part[number.start_pos] == 0) {
        return false;
    }
    const limbs::Magnitude radicand = {number.data_part, number.start_pos, number.end_pos};
    QZCICalcNumber guess = canonical_zero();
    limbs::Extent extent = {-1, -1};
    if (!limbs::nearest_root(radicand, guess.data_part, extent)) {
        return t.counted(Stretch::root, false);
    }
    guess.start_pos = static_cast<sb1>(extent.first);
    guess.end_pos = static_cast<sb1>(extent.last);
    guess.is_zero = 0;
    bool ends_here = limbs::is_isolated_fixed_point(radicand, {guess.data_part, extent.first, extent.last});
    if (!ends_here && is_exact_root(t, number, guess)) {
        QZCICalcNumber next;
        ends_here = heron_step(t, &number, guess, one_half(), next) == OCI_SUCCESS &&
                    QZCICalcNumCompare(&next, &guess) == 0;
    }
    if (ends_here) {
        cresult = guess;
    }
    return t.counted(Stretch::root, ends_here);
#endif
}

/* The root of a positive finite record: the first guess that a step leaves unchanged. */
sword iterate_root(Trace t, const QZCICalcNumber* number, QZCICalcNumber& cresult) {
    if (t.fast && try_root(t, *number, cresult)) {
        return OCI_SUCCESS;
    }
    const QZCICalcNumber half_num = one_half();
    QZCICalcNumber new_guess = canonical_zero();
    QZCICalcNumber cur_guess;
    sword status = QZCICalcNumSqrtFirst(number, &cur_guess);
    if (status != OCI_SUCCESS) {
        return status;
    }
    GuessWatch watch;
    for (;;) {
        status = heron_step(t, number, cur_guess, half_num, new_guess);
        if (QZCICalcNumCompare(&new_guess, &cur_guess) == 0) {
            break;
        }
        if (watch.repeats(new_guess)) {
            cur_guess = status == OCI_SUCCESS ? exact_root_of(*number) : cur_guess;
            break;
        }
        const sword assigned = assign(t, &new_guess, &cur_guess);
        if (assigned != OCI_SUCCESS) {
            /* At debug level, unlike the same line below; log readers key on it. */
            QZOCI_DEBUG(t, "QZCICalcNumSqrt: QZCICalcNumAssign error");
            return assigned;
        }
    }
    QZOCI_DEBUG(t, "QZCICalcNumSqrt: Get a guess");
    if (status != OCI_SUCCESS) {
        return status;
    }
    QZOCI_FORWARD(assign(t, &cur_guess, &cresult), "QZCICalcNumSqrt: QZCICalcNumAssign error");
    return OCI_SUCCESS;
}

/* The private result of the square root. resultp is the caller's record, which +infinity reaches for a
 * moment. */
sword root_of(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp, QZCICalcNumber& cresult) {
    if (number->is_zero != 0) {
        QZOCI_DEBUG(t, "QZCICalcNumSqrt number is zero");
        const sword status = to_zero(t, &cresult);
        if (status != OCI_SUCCESS) {
            QZOCI_ERROR("sqrt(%p) QZCICalcNumToZero error:%d", ptr(number), status);
        }
        return status;
    }
    if (number->num_signed != 1) {
        /* Zero and success: callers rely on it. */
        QZOCI_ERROR("QZCICalcNumSqrt: the number is negitive");
        return OCI_SUCCESS;
    }
    if (number->num_infinity == 1) {
        /* The infinity is overwritten by the zero of cresult, so that the root of +infinity is zero: callers
         * rely on it. */
        QZOCI_ERROR("QZCICalcNumSqrt: the number is positive infinity");
        to_infinity(t, resultp, 1);
        return OCI_SUCCESS;
    }
    return iterate_root(t, number, cresult);
}

/* ---- Sine, cosine, tangent ---- */

constexpr sb8 sine_divisor(sb8 index) {
    return 2 * index * (2 * index + 1);
}

/* The sine of pi has 66 terms. */
constexpr Divisors sine_divisors = divisors_of<sine_divisor, 1, 72>();

/* The sine of a finite, non-zero record: reduced modulo 2 pi, folded into [0, pi], summed. */
sword sine(Trace t, const QZCICalcNumber* number, QZCICalcNumber& var) {
    QZCICalcNumber pi;
    QZCICalcNumber d_pi;
    QZCICalcNumSetPi(&pi);
    QZCICalcNumSetPiDouble(&d_pi);
    QZOCI_FORWARD(mod(t, number, &d_pi, &var), "QZCICalcNumSin error in Mod");

    /* sin(-a) = -sin a, and sin a = -sin(a - pi); pi itself is not folded. */
    sb1 sign = 1;
    if (var.num_signed < 0) {
        var.num_signed = 1;
        sign = -1;
    }
    if (QZCICalcNumCompare(&var, &pi) > 0) {
        sign = static_cast<sb1>(-sign);
        QZOCI_FORWARD(sub(t, &var, &pi, &var), "QZCICalcNumSin error in Sub");
    }

    QZCICalcNumber factor = canonical_zero();
    QZOCI_FORWARD(mul(t, &var, &var, &factor), "QZCICalcNumSin error in Mul");
    QZCICalcNumber iteration_result = var;
    const Series series = {iteration_result,
                           factor,
                           iteration_result,
                           var,
                           sine_divisors,
                           TermSign::by_index,
                           "QZCICalcNumSin error in Mul",
                           "QZCICalcNumSin error in Div",
                           "QZCICalcNumSin error in Add"};
    const sword status = sum_series(t, series, OnFailure::leave);
    var.num_signed = sign;
    return status;
}

bool is_zero_or_infinite(const QZCICalcNumber& num) {
    return num.is_zero != 0 || num.num_infinity != 0;
}

sword cosine(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    if (number == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    if (is_zero_or_infinite(*number)) {
        *resultp = integer(1);
        return OCI_SUCCESS;
    }
    const QZCICalcNumber pi_half = pi_half_with_sign(1);
    QZCICalcNumber tnumber = canonical_zero();
    QZOCI_FORWARD(assign(t, number, &tnumber), "QZCICalcNumCos call QZCICalcNumAssign error");
    QZOCI_FORWARD(add(t, &tnumber, &pi_half, &tnumber), "QZCICalcNumCos call QZCICalcNumAdd error");
    QZOCI_FORWARD(sin(t, &tnumber, resultp), "QZCICalcNumCos call QZCICalcNumSin error");
    return OCI_SUCCESS;
}

sword tangent(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    if (number == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZCICalcNumber snumber;
    QZCICalcNumber cnumber;
    QZOCI_FORWARD(sin(t, number, &snumber), "QZCICalcNumTan call QZCICalcNumSin error");
    QZOCI_FORWARD(cos(t, number, &cnumber), "QZCICalcNumTan call QZCICalcNumCos error");
    if (cnumber.is_zero != 0) {
        QZOCI_DEBUG(t, "QZCICalcNumTan get cos(number) is zero, set infinity");
        resultp->num_infinity = 1;
        resultp->num_signed = snumber.num_signed;
        QZCICalcNumInit(resultp);
        return OCI_SUCCESS;
    }
    QZOCI_FORWARD(div(t, &snumber, &cnumber, resultp), "QZCICalcNumTan call QZCICalcNumDiv error");
    return OCI_SUCCESS;
}

sword rounded_sine(Trace t, const QZCICalcNumber* number, QZCICalcNumber* result) {
    QZOCI_FORWARD(sin(t, number, result), "QZCICalcNumSinWithRound error in QZCICalcNumSin");
    QZOCI_FORWARD(to_round_to_oci_number(t, result),
                  "QZCICalcNumSinWithRound error in QZCICalcNumRoundToOCINumber");
    return OCI_SUCCESS;
}

sword rounded_cosine(Trace t, const QZCICalcNumber* number, QZCICalcNumber* result) {
    QZOCI_FORWARD(cos(t, number, result), "QZCICalcNumCosWithRound error in QZCICalcNumCos");
    QZOCI_FORWARD(to_round_to_oci_number(t, result),
                  "QZCICalcNumCosWithRound error in QZCICalcNumRoundToOCINumber");
    return OCI_SUCCESS;
}

sword tangent_of_rounded(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    if (number == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZCICalcNumber snumber;
    QZCICalcNumber cnumber;
    QZOCI_FORWARD(sin_with_round(t, number, &snumber), "QZCICalcNumTanWithRound call QZCICalcNumSin error");
    QZOCI_FORWARD(cos_with_round(t, number, &cnumber), "QZCICalcNumTanWithRound call QZCICalcNumCos error");
    if (cnumber.is_zero != 0) {
        QZOCI_DEBUG(t, "QZCICalcNumTanWithRound get cos(number) is zero, set infinity");
        to_infinity(t, resultp, snumber.num_signed);
        return OCI_SUCCESS;
    }
    QZOCI_FORWARD(div(t, &snumber, &cnumber, resultp), "QZCICalcNumTanWithRound call QZCICalcNumDiv error");
    return OCI_SUCCESS;
}

/* ---- Inverse trigonometric functions ---- */

/* Reductions of a range by square roots: twelve bring any well-formed argument there. */
constexpr int max_reductions = 31;

constexpr const char* atan_assign_error = "QZCICalcNumAtan call NumAssign error";
constexpr const char* atan_mul_error = "QZCICalcNumAtan call NumMul error";
constexpr const char* atan_add_error = "QZCICalcNumAtan call NumAdd error";
constexpr const char* atan_sqrt_error = "QZCICalcNumAtan call NumSqrt error";
constexpr const char* atan_div_error = "QZCICalcNumAtan call NumDiv error";

/* Reduces copy_number to at most 0.5 in magnitude by arctan z = 2 arctan(z / (1 + sqrt(1 + z^2))), counting
 * the halvings of the angle. A z whose square overflows has the result pi/2, and zero is left to be reduced.
 */
sword reduce_angle(Trace t, const QZCICalcNumber* number, QZCICalcNumber& copy_number, ub4& reduction_count,
                   QZCICalcNumber& cresult) {
    const QZCICalcNumber one = integer(1);
    const QZCICalcNumber param_bound = one_half();
    while (QZCICalcNumCompareAbs(&copy_number, &param_bound) == 1) {
        QZCICalcNumber tmp = canonical_zero();
        QZOCI_FORWARD(assign(t, &copy_number, &tmp), "%s", atan_assign_error);
        QZOCI_FORWARD(mul(t, &tmp, &tmp, &tmp), "%s", atan_mul_error);
        if (tmp.num_infinity != 0) {
            QZOCI_DEBUG(t, "QZCICalcNumAtan get a large number, result is pi/2");
            cresult = pi_half_with_sign(number->num_signed);
            copy_number = canonical_zero();
            continue;
        }
        QZOCI_FORWARD(add(t, &tmp, &one, &tmp), "%s", atan_add_error);
        QZOCI_FORWARD(sqrt(t, &tmp, &tmp), "%s", atan_sqrt_error);
        QZOCI_FORWARD(add(t, &tmp, &one, &tmp), "%s", atan_add_error);
        QZOCI_FORWARD(div(t, &copy_number, &tmp, &copy_number), "%s", atan_div_error);
        ++reduction_count;
        if (reduction_count > max_reductions) {
            QZOCI_ERROR("%s", atan_sqrt_error);
            return OCI_ERROR;
        }
    }
    return OCI_SUCCESS;
}

/* cresult = cresult + arctan z, |z| <= 0.5. A failure before the series leaves it with what was added so far;
 * one in the series repeats the pass. */
sword add_arctangent_series(Trace t, const QZCICalcNumber& z, QZCICalcNumber& cresult) {
    QZCICalcNumber doublex = canonical_zero();
    QZCICalcNumber iteration_result = canonical_zero();
    QZCICalcNumber factor = canonical_zero();
    QZOCI_FORWARD(mul(t, &z, &z, &doublex), "%s", atan_mul_error);
    QZOCI_FORWARD(assign(t, &z, &iteration_result), "%s", atan_assign_error);
    QZOCI_FORWARD(assign(t, &z, &factor), "%s", atan_assign_error);
    QZOCI_FORWARD(add(t, &cresult, &iteration_result, &cresult), "%s", atan_add_error);
    const Series series = {factor,         doublex,        iteration_result,
                           cresult,        odd_divisors,   TermSign::turned_at_even,
                           atan_mul_error, atan_div_error, atan_add_error};
    return sum_series(t, series, OnFailure::repeat_index);
}

sword arctangent(Trace t, const QZCICalcNumber* number, QZCICalcNumber& cresult) {
    QZCICalcNumber copy_number = canonical_zero();
    ub4 reduction_count = 0;
    QZOCI_FORWARD(assign(t, number, &copy_number), "%s", atan_assign_error);
    const sword reduced = reduce_angle(t, number, copy_number, reduction_count, cresult);
    if (reduced != OCI_SUCCESS) {
        return reduced;
    }
    /* Whatever the series comes to, the scaling decides the status: callers rely on it. */
    add_arctangent_series(t, copy_number, cresult);
    QZOCI_FORWARD(mul_integer(t, &cresult, 1U << reduction_count, &cresult),
                  "QZCICalcNumAtan call NumMulWithInterge error");
    return OCI_SUCCESS;
}

sword arcsine(Trace t, const QZCICalcNumber* number, QZCICalcNumber& cresult) {
    const QZCICalcNumber one = integer(1);
    const sb1 compare_result = QZCICalcNumCompareAbs(number, &one);
    if (compare_result > 0) {
        QZOCI_ERROR("input number is too large");
        return OCI_ERROR;
    }
    if (compare_result == 0) {
        cresult = pi_half_with_sign(number->num_signed == -1 ? -1 : 1);
        return OCI_SUCCESS;
    }
    QZCICalcNumber tmp_number = canonical_zero();
    QZOCI_FORWARD(mul(t, number, number, &tmp_number), "QZCICalcNumAsin call QZCICalcNumMul error");
    /* The addition's text for the subtraction, the division's for the arctangent; log readers key on them. */
    QZOCI_FORWARD(sub(t, &one, &tmp_number, &tmp_number), "QZCICalcNumAsin call QZCICalcNumAdd error");
    QZOCI_FORWARD(sqrt(t, &tmp_number, &tmp_number), "QZCICalcNumAsin call QZCICalcNumSqrt error");
    QZOCI_FORWARD(div(t, number, &tmp_number, &tmp_number), "QZCICalcNumAsin call QZCICalcNumDiv error");
    QZOCI_FORWARD(atan(t, &tmp_number, &cresult), "QZCICalcNumAsin call QZCICalcNumDiv error");
    return OCI_SUCCESS;
}

sword arccosine(Trace t, const QZCICalcNumber* number, QZCICalcNumber& cresult) {
    const QZCICalcNumber pi_half = pi_half_with_sign(1);
    QZOCI_FORWARD(asin(t, number, &cresult), "QZCICalcNumAcos call QZCICalcNumAsin error");
    /* The addition's text for the subtraction; log readers key on it. */
    QZOCI_FORWARD(sub(t, &pi_half, &cresult, &cresult), "QZCICalcNumAcos call QZCICalcNumAdd error");
    return OCI_SUCCESS;
}

/* The angle of the point (x, y). */
sword angle_of(Trace t, const QZCICalcNumber* y, const QZCICalcNumber* x, QZCICalcNumber& cresult) {
    if (x->is_zero != 0) {
        if (y->is_zero != 0) {
            /* An error line, but success with zero: callers rely on it. */
            QZOCI_ERROR("QZCICalcNumAtan2 error with number1 is zero and number2 is zero");
            return OCI_SUCCESS;
        }
        cresult = pi_half_with_sign(y->num_signed == 1 ? 1 : -1);
        return OCI_SUCCESS;
    }
    QZCICalcNumber tmp_number = canonical_zero();
    QZOCI_FORWARD(div(t, y, x, &tmp_number), "QZCICalcNumAtan2 call QZCICalcNumDiv error");
    QZOCI_FORWARD(atan(t, &tmp_number, &cresult), "QZCICalcNumAtan2 call QZCICalcNumAtan error");
    if (x->num_signed == 1) {
        return OCI_SUCCESS;
    }
    QZCICalcNumber pi;
    QZCICalcNumSetPi(&pi);
    if (y->is_zero == 0 && y->num_signed != 1) {
        QZOCI_FORWARD(sub(t, &cresult, &pi, &cresult), "QZCICalcNumAtan2 call QZCICalcNumSub error");
    } else {
        QZOCI_FORWARD(add(t, &cresult, &pi, &cresult), "QZCICalcNumAtan2 call QZCICalcNumAdd error");
    }
    return OCI_SUCCESS;
}

/* ---- Exponential and hyperbolic functions ---- */

/* The integer part of |x| from which e^x saturates. */
constexpr ub4 exponential_bound = 369;

/* Halvings of the argument: twelve bring any well-formed argument below 0.1. */
constexpr ub4 max_halvings = 4096;

/* Read from the fields alone; an infinity, whose start_pos is -1, is among these. */
bool exponential_saturates(const QZCICalcNumber& num) {
    return num.is_zero == 0 &&
           (num.start_pos < units_limb ||
            (num.start_pos == units_limb && num.data_part[units_limb] >= exponential_bound));
}

constexpr sb8 factorial_divisor(sb8 index) {
    return index;
}

/* The exponential of 0.1 has 73 terms. */
constexpr Divisors factorial_divisors = divisors_of<factorial_divisor, 1, 80>();

/* cresult = e^x' by its series, |x'| < 0.1. */
sword exponential_series(Trace t, const QZCICalcNumber& new_exponent, QZCICalcNumber& cresult) {
    QZCICalcNumber term = integer(1);
    cresult = integer(1);
    /* The product's failure has the division's text; log readers key on it. */
    const Series series = {term,
                           new_exponent,
                           term,
                           cresult,
                           factorial_divisors,
                           TermSign::kept,
                           "QZCICalcNumExp: QZCICalcNumDiv error",
                           "QZCICalcNumExp: QZCICalcNumDiv error",
                           "QZCICalcNumExp: QZCICalcNumAdd error"};
    return sum_series(t, series, OnFailure::leave);
}

/* cresult = cresult^(2^times), cut short when a square is zero or infinite. */
sword square_repeatedly(Trace t, ub4 times, QZCICalcNumber& cresult) {
    if (is_zero_or_infinite(cresult) || times == 0) {
        return OCI_SUCCESS;
    }
    QZOCI_DEBUG(t, "QZCICalcNumExp:times_exponent_div_2:%d", static_cast<int>(times));
    for (; times != 0 && !is_zero_or_infinite(cresult); --times) {
        QZOCI_FORWARD(mul(t, &cresult, &cresult, &cresult), "QZCICalcNumExp: QZCICalcNumMul error");
    }
    return OCI_SUCCESS;
}

sword exponential(Trace t, const QZCICalcNumber* number, QZCICalcNumber& cresult) {
    cresult = integer(1);
    if (exponential_saturates(*number)) {
        if (number->num_signed == 1) {
            QZOCI_FORWARD(to_infinity(t, &cresult, 1), "QZCICalcNumExp: QZCICalcNumToInfinity error");
        } else if (number->num_signed == -1) {
            QZOCI_FORWARD(to_zero(t, &cresult), "QZCICalcNumExp: QZCICalcNumToZero error");
        }
        return OCI_SUCCESS;
    }
    const QZCICalcNumber term = integer(1);
    const QZCICalcNumber base_2 = integer(2);
    QZCICalcNumber base_exp = integer(10);
    QZCICalcNumber new_exponent = canonical_zero();
    QZOCI_FORWARD(div(t, &term, &base_exp, &base_exp), "QZCICalcNumExp: QZCICalcNumDiv error");
    QZOCI_FORWARD(assign(t, number, &new_exponent), "QZCICalcNumExp: QZCICalcNumAssign error");
    ub4 times_exponent_div_2 = 0;
    while (QZCICalcNumAbsCompare(&new_exponent, &base_exp) >= 0) {
        QZOCI_FORWARD(div(t, &new_exponent, &base_2, &new_exponent), "QZCICalcNumExp: QZCICalcNumDiv error");
        ++times_exponent_div_2;
        if (times_exponent_div_2 > max_halvings) {
            QZOCI_ERROR("QZCICalcNumExp: QZCICalcNumDiv error");
            return OCI_ERROR;
        }
    }
    const sword status = exponential_series(t, new_exponent, cresult);
    return status == OCI_SUCCESS ? square_repeatedly(t, times_exponent_div_2, cresult) : status;
}

/* What the hyperbolic sine and cosine differ in. */
struct Hyperbolic {
    const char* name;
    bool is_sine;
    sword (*combine)(Trace, const QZCICalcNumber*, const QZCICalcNumber*, QZCICalcNumber*);
};

constexpr Hyperbolic hyperbolic_sine = {"QZCICalcNumSinh", true, sub};
constexpr Hyperbolic hyperbolic_cosine = {"QZCICalcNumCosh", false, add};

sword hyperbolic(Trace t, const Hyperbolic& h, const QZCICalcNumber* number, QZCICalcNumber& cresult) {
    const QZCICalcNumber zero_dot_five = one_half();
    QZCICalcNumber e_power = canonical_zero();
    QZCICalcNumber e_power_nega = canonical_zero();
    QZOCI_FORWARD(exp(t, number, &e_power), "%s call QZCICalcNumExp error", h.name);
    if (e_power.is_zero != 0) {
        /* e^x is dropped entirely. */
        QZCICalcNumber nega = canonical_zero();
        QZOCI_FORWARD(assign(t, number, &nega), "%s call QZCICalcNumAssign error", h.name);
        QZOCI_FORWARD(neg(t, &nega), "%s call QZCICalcNumNeg error", h.name);
        QZOCI_FORWARD(exp(t, &nega, &e_power_nega), "%s call QZCICalcNumExp error", h.name);
        QZOCI_FORWARD(mul(t, &e_power_nega, &zero_dot_five, &cresult), "%s call QZCICalcNumMul error",
                      h.name);
        if (h.is_sine) {
            QZOCI_FORWARD(neg(t, &cresult), "%s call QZCICalcNumNeg error", h.name);
        }
        return OCI_SUCCESS;
    }
    const QZCICalcNumber one = integer(1);
    QZOCI_FORWARD(div(t, &one, &e_power, &e_power_nega), "%s call QZCICalcNumDiv error", h.name);
    /* The cosine's addition has the subtraction's text too; log readers key on it. */
    QZOCI_FORWARD(h.combine(t, &e_power, &e_power_nega, &cresult), "%s call QZCICalcNumSub error", h.name);
    QZOCI_FORWARD(mul(t, &cresult, &zero_dot_five, &cresult), "%s call QZCICalcNumMul error", h.name);
    return OCI_SUCCESS;
}

sword hyperbolic_tangent(Trace t, const QZCICalcNumber* number, QZCICalcNumber& cresult) {
    const QZCICalcNumber one = integer(1);
    if (number->num_infinity == 1) {
        cresult = one;
        cresult.num_signed = number->num_signed == 1 ? 1 : -1;
        return OCI_SUCCESS;
    }
    QZCICalcNumber e_power = canonical_zero();
    QZCICalcNumber e_power_nega = canonical_zero();
    QZOCI_FORWARD(exp(t, number, &e_power), "QZCICalcNumTanh call QZCICalcNumExp error");
    if (e_power.is_zero != 0) {
        QZCICalcNumber nega = canonical_zero();
        QZOCI_FORWARD(assign(t, number, &nega), "QZCICalcNumTanh call QZCICalcNumAssign error");
        QZOCI_FORWARD(neg(t, &nega), "QZCICalcNumTanh call QZCICalcNumNeg error");
        QZOCI_FORWARD(exp(t, &nega, &e_power_nega), "QZCICalcNumTanh call QZCICalcNumExp error");
        cresult = one;
        cresult.num_signed = -1;
        return OCI_SUCCESS;
    }
    QZCICalcNumber sum = canonical_zero();
    QZCICalcNumber diff = canonical_zero();
    QZOCI_FORWARD(div(t, &one, &e_power, &e_power_nega), "QZCICalcNumTanh call QZCICalcNumDiv error");
    QZOCI_FORWARD(add(t, &e_power, &e_power_nega, &sum), "QZCICalcNumTanh call QZCICalcNumAdd error");
    QZOCI_FORWARD(sub(t, &e_power, &e_power_nega, &diff), "QZCICalcNumTanh call QZCICalcNumSub error");
    QZOCI_FORWARD(div(t, &diff, &sum, &cresult), "QZCICalcNumTanh call QZCICalcNumDiv error");
    return OCI_SUCCESS;
}

/* ---- Logarithm ---- */

/* One square root of the argument; each halves the logarithm, which doubles the compensation. */
sword reduce_logarithm(Trace t, QZCICalcNumber& reduced_arg, ub4& reduction_compensation) {
    constexpr const char* error = "QZCICalcNumLn call QZCICalcNumSqrt error";
    QZOCI_FORWARD(sqrt(t, &reduced_arg, &reduced_arg), "%s", error);
    reduction_compensation *= 2;
    /* A sign byte other than 1 makes the root zero, from which no further root leads into the interval. */
    if (reduced_arg.is_zero != 0 || reduction_compensation == 0) {
        QZOCI_ERROR("%s", error);
        return OCI_ERROR;
    }
    return OCI_SUCCESS;
}

/* cresult = ln r / 2 for 0.9 < r < 1.1, by z + z^3/3 + z^5/5 + ... with z = (r - 1) / (r + 1). */
sword logarithm_series(Trace t, const QZCICalcNumber& reduced_arg, QZCICalcNumber& cresult) {
    const QZCICalcNumber series_number = integer(1);
    QZCICalcNumber term = integer(1);
    QZCICalcNumber tmp = canonical_zero();
    QZCICalcNumber z = canonical_zero();
    QZCICalcNumber z_square = canonical_zero();
    QZCICalcNumber term_x_exponent = canonical_zero();
    QZOCI_FORWARD(add(t, &series_number, &reduced_arg, &tmp), "QZCICalcNumLn call QZCICalcNumAdd error");
    QZOCI_FORWARD(sub(t, &reduced_arg, &series_number, &z), "QZCICalcNumLn call QZCICalcNumSub error");
    QZOCI_FORWARD(div(t, &z, &tmp, &z), "QZCICalcNumLn call QZCICalcNumDiv error");
    QZOCI_FORWARD(mul(t, &z, &z, &z_square), "QZCICalcNumLn call QZCICalcNumMul error");
    QZOCI_FORWARD(assign(t, &z, &term_x_exponent), "QZCICalcNumLn call QZCICalcNumAssign error");
    QZOCI_FORWARD(assign(t, &z, &cresult), "QZCICalcNumLn call QZCICalcNumAssign error");
    const Series series = {term_x_exponent,
                           z_square,
                           term,
                           cresult,
                           odd_divisors,
                           TermSign::kept,
                           "QZCICalcNumLn call QZCICalcNumMul error",
                           "QZCICalcNumLn call QZCICalcNumDiv error",
                           "QZCICalcNumLn call QZCICalcNumAdd error"};
    return sum_series(t, series, OnFailure::leave);
}

sword logarithm(Trace t, const QZCICalcNumber* number, QZCICalcNumber& cresult) {
    if (number->num_signed == -1) {
        QZOCI_ERROR("QZCICalcNumLn with error number:%p, negitive", ptr(number));
        return OCI_ERROR;
    }
    if (number->is_zero == 1) {
        /* The zero flag stays set: callers rely on it. */
        cresult = infinity_of_sign(-1);
        cresult.is_zero = 1;
        return OCI_SUCCESS;
    }
    if (number->num_infinity == 1) {
        return to_infinity(t, &cresult, 1);
    }
    const QZCICalcNumber zero_dot_nine = two_limbs(0, 90000000);
    const QZCICalcNumber one_dot_one = two_limbs(1, 10000000);
    ub4 reduction_compensation = 2;
    QZCICalcNumber reduced_arg = canonical_zero();
    QZOCI_FORWARD(assign(t, number, &reduced_arg), "QZCICalcNumLn call QZCICalcNumAssign error");
    sword status = OCI_SUCCESS;
    while (status == OCI_SUCCESS && QZCICalcNumCompare(&reduced_arg, &zero_dot_nine) <= 0) {
        status = reduce_logarithm(t, reduced_arg, reduction_compensation);
    }
    while (status == OCI_SUCCESS && QZCICalcNumCompare(&reduced_arg, &one_dot_one) >= 0) {
        status = reduce_logarithm(t, reduced_arg, reduction_compensation);
    }
    if (status == OCI_SUCCESS) {
        status = logarithm_series(t, reduced_arg, cresult);
    }
    if (status != OCI_SUCCESS) {
        return status;
    }
    QZOCI_FORWARD(mul_integer(t, &cresult, reduction_compensation, &cresult),
                  "QZCICalcNumLn call QZCICalcNumMulWithInt error");
    return OCI_SUCCESS;
}

/* ---- Powers ---- */

/* x = x^(2^k), k the number of halvings that bring the even magnitude down to 1. */
sword square_to_power_of_two(Trace t, ub4 magnitude, QZCICalcNumber& x_square) {
    for (; magnitude != 1; magnitude >>= 1) {
        /* A failed squaring leaves the record as it was and would fail for ever: its status ends the
         * operation. */
        QZOCI_FORWARD(mul(t, &x_square, &x_square, &x_square),
                      "QZCICalcNumIntPower call QZCICalcNumMul error");
    }
    return OCI_SUCCESS;
}

/* Only the highest power of two is formed, so that 6 gives base^4 and 7 gives base^5: callers rely on it. */
sword integer_power(Trace t, const QZCICalcNumber* base, sword exponent, QZCICalcNumber& cresult) {
    constexpr const char* assign_error = "QZCICalcNumIntPower call QZCICalcNumAssign error";
    if (exponent == 0) {
        cresult = integer(1);
        return OCI_SUCCESS;
    }
    const bool is_negative = exponent < 0;
    ub4 magnitude = is_negative ? 0 - static_cast<ub4>(exponent) : static_cast<ub4>(exponent);
    QZCICalcNumber x = canonical_zero();
    QZCICalcNumber x_square = canonical_zero();
    QZOCI_FORWARD(assign(t, base, &x), "%s", assign_error);
    QZOCI_FORWARD(assign(t, &x, &x_square), "%s", assign_error);
    if (magnitude % 2 != 0) {
        --magnitude;
        QZOCI_FORWARD(assign(t, base, &cresult), "%s", assign_error);
    }
    if (magnitude != 0) {
        const sword status = square_to_power_of_two(t, magnitude, x_square);
        if (status != OCI_SUCCESS) {
            return status;
        }
        if (cresult.is_zero == 1) {
            QZOCI_FORWARD(add(t, &cresult, &x_square, &cresult),
                          "QZCICalcNumIntPower call QZCICalcNumAdd error");
        } else {
            QZOCI_FORWARD(mul(t, &cresult, &x_square, &cresult),
                          "QZCICalcNumIntPower call QZCICalcNumMul error");
        }
    }
    if (is_negative) {
        const QZCICalcNumber one = integer(1);
        QZOCI_FORWARD(div(t, &one, &cresult, &cresult), "QZCICalcNumIntPower call QZCICalcNumDiv error");
    }
    return OCI_SUCCESS;
}

/* An infinite base with a non-zero exponent. False: no special case, the general one runs. */
bool power_of_infinity(Trace t, const QZCICalcNumber& base, const QZCICalcNumber& exponent, sword& status,
                       QZCICalcNumber& result) {
    const bool positive_base = base.num_signed == 1;
    const bool negative_base = base.num_signed == -1;
    if (exponent.num_infinity != 0) {
        if (negative_base) {
            QZOCI_ERROR("QZCICalcNumPower meet error infinity number");
            status = OCI_ERROR;
            return true;
        }
        if (positive_base && exponent.num_signed == 1) {
            status = to_infinity(t, &result, 1);
            return true;
        }
        if (positive_base && exponent.num_signed == -1) {
            result = integer(0);
            return true;
        }
        return false;
    }
    if (exponent.num_signed == -1) {
        result = integer(0);
        return true;
    }
    if (negative_base) {
        /* An exponent whose last non-zero limb is not the units limb, such as 100000000, counts as odd:
         * callers rely on it. */
        const bool even = exponent.end_pos == units_limb && exponent.data_part[units_limb] % 2 == 0;
        status = to_infinity(t, &result, even ? 1 : -1);
        return true;
    }
    if (positive_base) {
        status = to_infinity(t, &result, 1);
        return true;
    }
    return false;
}

/* A finite, non-zero base with an infinite exponent. The limits are inverted: a base above 1 to +infinity is
 * 0, one below 1 is +infinity. Callers rely on it. */
sword power_to_infinity(Trace t, const QZCICalcNumber& base, const QZCICalcNumber& exponent,
                        QZCICalcNumber& result) {
    if (base.num_signed == -1) {
        return to_infinity(t, &result, -1);
    }
    const QZCICalcNumber ocn = integer(1);
    const sb1 comp = QZCICalcNumCompare(&base, &ocn);
    if (comp == 0) {
        result = integer(1);
        return OCI_SUCCESS;
    }
    if ((comp ^ exponent.num_signed) < 0) {
        return to_infinity(t, &result, 1);
    }
    result = integer(0);
    return OCI_SUCCESS;
}

/* The table of zero and infinite operands. False: no row matches, the general case runs. */
bool special_power(Trace t, const QZCICalcNumber& base, const QZCICalcNumber& exponent, sword& status,
                   QZCICalcNumber& result) {
    status = OCI_SUCCESS;
    if (exponent.is_zero != 0) {
        result = integer(1);
        return true;
    }
    if (base.is_zero != 0) {
        if (exponent.num_signed == -1) {
            status = to_infinity(t, &result, 1);
        } else {
            result = integer(0);
        }
        return true;
    }
    if (base.num_infinity != 0) {
        return power_of_infinity(t, base, exponent, status, result);
    }
    if (exponent.num_infinity != 0) {
        status = power_to_infinity(t, base, exponent, result);
        return true;
    }
    return false;
}

sword general_power(Trace t, const QZCICalcNumber* base, const QZCICalcNumber* exponent,
                    QZCICalcNumber& tmp_result) {
    QZCICalcNumber tmp_base = canonical_zero();
    QZOCI_FORWARD(assign(t, base, &tmp_base), "QZCICalcNumPower error in QZCICalcNumAssign");
    sb1 final_signed = 1;
    if (base->num_signed == -1) {
        if (exponent->end_pos > units_limb) {
            QZOCI_ERROR("QZCICalcNumPower error in (-x)^t.001 is error");
            return OCI_ERROR;
        }
        QZOCI_FORWARD(neg(t, &tmp_base), "QZCICalcNumPower error in QZCICalcNumNeg");
        final_signed = exponent->data_part[units_limb] % 2 != 0 ? -1 : 1;
    }
    /* These three texts begin with the logarithm's name; log readers key on them. */
    tmp_result = integer(0);
    QZOCI_FORWARD(ln(t, &tmp_base, &tmp_result), "QZCICalcNumLn error in QZCICalcNumLn");
    QZOCI_FORWARD(mul(t, exponent, &tmp_result, &tmp_result), "QZCICalcNumLn error in QZCICalcNumMul");
    QZOCI_FORWARD(exp(t, &tmp_result, &tmp_result), "QZCICalcNumLn error in QZCICalcNumExp");
    tmp_result.num_signed = final_signed;
    return OCI_SUCCESS;
}

/* Runs the computation on a private record and copies it to the caller's on success. */
template <typename Compute>
sword into_private(QZCICalcNumber* resultp, Compute compute) {
    QZCICalcNumber cresult = canonical_zero();
    const sword status = compute(cresult);
    if (status == OCI_SUCCESS) {
        *resultp = cresult;
    }
    return status;
}

} // namespace

sword sqrt(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumSqrt with number:%p, result:%p", ptr(number), ptr(resultp));
    if (number == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZOCI_LEAVE(t, "QZCICalcNumSqrt", into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return root_of(t, number, resultp, cresult);
                }));
}

sword sin(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumSin with number:%p, result:%p", ptr(number), ptr(resultp));
    if (number == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZOCI_LEAVE(t, "QZCICalcNumSin", into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return is_zero_or_infinite(*number) ? OCI_SUCCESS : sine(t, number, cresult);
                }));
}

sword cos(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumCos with number:%p, result:%p", ptr(number), ptr(resultp));
    QZOCI_LEAVE(t, "QZCICalcNumCos", cosine(t, number, resultp));
}

sword tan(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumTan with number:%p, result:%p", ptr(number), ptr(resultp));
    QZOCI_LEAVE(t, "QZCICalcNumTan", tangent(t, number, resultp));
}

sword sin_with_round(Trace t, const QZCICalcNumber* number, QZCICalcNumber* result) {
    QZOCI_DEBUG(t, "call QZCICalcNumSinWithRound with params number:%p, result:%p", ptr(number), ptr(result));
    QZOCI_LEAVE(t, "QZCICalcNumSinWithRound", rounded_sine(t, number, result));
}

sword cos_with_round(Trace t, const QZCICalcNumber* number, QZCICalcNumber* result) {
    QZOCI_DEBUG(t, "call QZCICalcNumCosWithRound with params number:%p, result:%p", ptr(number), ptr(result));
    QZOCI_LEAVE(t, "QZCICalcNumCosWithRound", rounded_cosine(t, number, result));
}

sword tan_with_round(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumTanWithRound with number:%p, result:%p", ptr(number),
                ptr(resultp));
    QZOCI_LEAVE(t, "QZCICalcNumTanWithRound", tangent_of_rounded(t, number, resultp));
}

sword atan(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    constexpr const char* name = "QZCICalcNumAtan";
    QZOCI_DEBUG(t, "call function QZCICalcNumAtan with number:%p, result:%p", ptr(number), ptr(resultp));
    if (number == nullptr || resultp == nullptr) {
        QZOCI_LEAVE(t, name, OCI_INVALID_HANDLE);
    }
    QZOCI_LEAVE(t, name, into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return arctangent(t, number, cresult);
                }));
}

sword asin(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumAsin with number:%p, result:%p", ptr(number), ptr(resultp));
    if (number == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZOCI_LEAVE(t, "QZCICalcNumAsin",
                into_private(resultp, [&](QZCICalcNumber& cresult) { return arcsine(t, number, cresult); }));
}

sword acos(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumAcos with number:%p, result:%p", ptr(number), ptr(resultp));
    if (number == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZOCI_LEAVE(t, "QZCICalcNumAcos", into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return arccosine(t, number, cresult);
                }));
}

sword atan2(Trace t, const QZCICalcNumber* number1, const QZCICalcNumber* number2, QZCICalcNumber* resultp) {
    /* The text names the one-argument function; log readers key on it. */
    QZOCI_DEBUG(t, "call function QZCICalcNumAtan with number:%p, number2:%p, result:%p", ptr(number1),
                ptr(number2), ptr(resultp));
    if (number1 == nullptr || number2 == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZOCI_LEAVE(t, "QZCICalcNumAtan2", into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return angle_of(t, number1, number2, cresult);
                }));
}

sword exp(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    /* The exit trace bears the square root's name, on every return; log readers key on it. */
    constexpr const char* name = "QZCICalcNumSqrt";
    QZOCI_DEBUG(t, "call function QZCICalcNumExp with number:%p, result:%p", ptr(number), ptr(resultp));
    if (number == nullptr || resultp == nullptr) {
        QZOCI_LEAVE(t, name, OCI_INVALID_HANDLE);
    }
    QZOCI_LEAVE(t, name, into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return exponential(t, number, cresult);
                }));
}

sword sinh(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumSinh with number:%p, result:%p", ptr(number), ptr(resultp));
    if (number == nullptr || resultp == nullptr) {
        QZOCI_LEAVE(t, hyperbolic_sine.name, OCI_INVALID_HANDLE);
    }
    QZOCI_LEAVE(t, hyperbolic_sine.name, into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return hyperbolic(t, hyperbolic_sine, number, cresult);
                }));
}

sword cosh(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumCosh with number:%p, result:%p", ptr(number), ptr(resultp));
    if (number == nullptr || resultp == nullptr) {
        QZOCI_LEAVE(t, hyperbolic_cosine.name, OCI_INVALID_HANDLE);
    }
    QZOCI_LEAVE(t, hyperbolic_cosine.name, into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return hyperbolic(t, hyperbolic_cosine, number, cresult);
                }));
}

sword tanh(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    constexpr const char* name = "QZCICalcNumTanh";
    QZOCI_DEBUG(t, "call function QZCICalcNumTanh with number:%p, result:%p", ptr(number), ptr(resultp));
    if (number == nullptr || resultp == nullptr) {
        QZOCI_LEAVE(t, name, OCI_INVALID_HANDLE);
    }
    QZOCI_LEAVE(t, name, into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return hyperbolic_tangent(t, number, cresult);
                }));
}

sword ln(Trace t, const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    QZOCI_DEBUG(t, "call function QZCICalcNumLn with number:%p, result:%p", ptr(number), ptr(resultp));
    if (number == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZOCI_LEAVE(t, "QZCICalcNumLn", into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return logarithm(t, number, cresult);
                }));
}

sword int_power(Trace t, const QZCICalcNumber* base, sword exp, QZCICalcNumber* resultp) {
    /* The text names the logarithm; log readers key on it. */
    QZOCI_DEBUG(t, "call function QZCICalcNumLn with base:%p, exp:%d, result:%p", ptr(base), exp,
                ptr(resultp));
    if (base == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    QZOCI_LEAVE(t, "QZCICalcNumIntPower", into_private(resultp, [&](QZCICalcNumber& cresult) {
                    return integer_power(t, base, exp, cresult);
                }));
}

sword power(Trace t, const QZCICalcNumber* base, const QZCICalcNumber* exp, QZCICalcNumber* resultp) {
    constexpr const char* name = "QZCICalcNumPower";
    QZOCI_DEBUG(t, "call function QZCICalcNumPower with number:%p, exp:%p, result:%p", ptr(base), ptr(exp),
                ptr(resultp));
    if (base == nullptr || exp == nullptr || resultp == nullptr) {
        QZOCI_LEAVE(t, name, OCI_INVALID_HANDLE);
    }
    QZOCI_LEAVE(t, name, into_private(resultp, [&](QZCICalcNumber& tmp_result) {
                    sword status = OCI_SUCCESS;
                    return special_power(t, *base, *exp, status, tmp_result)
                               ? status
                               : general_power(t, base, exp, tmp_result);
                }));
}

} // namespace qzoci::engine

using qzoci::engine::trace_of_this_call;
namespace engine = qzoci::engine;

extern "C" {

sword QZCICalcNumSqrtFirst(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    if (number == nullptr || resultp == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    if (!engine::is_limb_index(number->start_pos)) {
        QZOCI_MALFORMED("QZCICalcNumSqrtFirst");
        return OCI_ERROR;
    }
    const auto leading = static_cast<long double>(number->data_part[number->start_pos]);
    QZCICalcNumber cresult = engine::canonical_zero();
    cresult.data_part[number->start_pos] = static_cast<ub4>(std::round(std::sqrt(leading)));
    QZCICalcNumInit(&cresult);
    *resultp = cresult;
    return OCI_SUCCESS;
}

sword QZCICalcNumSqrt(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::sqrt(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumSin(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::sin(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumCos(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::cos(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumTan(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::tan(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumSinWithRound(const QZCICalcNumber* number, QZCICalcNumber* result) {
    return engine::sin_with_round(trace_of_this_call(), number, result);
}

sword QZCICalcNumCosWithRound(const QZCICalcNumber* number, QZCICalcNumber* result) {
    return engine::cos_with_round(trace_of_this_call(), number, result);
}

sword QZCICalcNumTanWithRound(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::tan_with_round(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumAtan(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::atan(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumAsin(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::asin(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumAcos(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::acos(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumAtan2(const QZCICalcNumber* number1, const QZCICalcNumber* number2,
                       QZCICalcNumber* resultp) {
    return engine::atan2(trace_of_this_call(), number1, number2, resultp);
}

sword QZCICalcNumExp(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::exp(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumSinh(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::sinh(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumCosh(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::cosh(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumTanh(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::tanh(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumLn(const QZCICalcNumber* number, QZCICalcNumber* resultp) {
    return engine::ln(trace_of_this_call(), number, resultp);
}

sword QZCICalcNumIntPower(const QZCICalcNumber* base, sword exp, QZCICalcNumber* resultp) {
    return engine::int_power(trace_of_this_call(), base, exp, resultp);
}

sword QZCICalcNumPower(const QZCICalcNumber* base, const QZCICalcNumber* exp, QZCICalcNumber* resultp) {
    return engine::power(trace_of_this_call(), base, exp, resultp);
}

} // extern "C"
