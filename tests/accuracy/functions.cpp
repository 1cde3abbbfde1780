#include "tests/accuracy/functions.h"

#include "tests/accuracy/samples.h"

#include <algorithm>
#include <array>
#include <string>

namespace qzoci::test::accuracy {
namespace {

/* ---- What the results are to be ---- */

template <int (*function)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)>
Real exact_of(const Real& x, const Real& /* y */) {
    return of<function>(x);
}

/* To 38 digits after the point, half-up in magnitude. */
Real rounded(const Real& number) {
    constexpr int digits = 38;
    return Real((number * power_of_ten(digits)).nearest_integer()) / power_of_ten(digits);
}

Real rounded_sine(const Real& x, const Real& /* y */) {
    return rounded(of<mpfr_sin>(x));
}

Real rounded_cosine(const Real& x, const Real& /* y */) {
    return rounded(of<mpfr_cos>(x));
}

Real quotient_of_rounded(const Real& x, const Real& y) {
    return rounded_sine(x, y) / rounded_cosine(x, y);
}

Real angle(const Real& y, const Real& x) {
    return of<mpfr_atan2>(y, x);
}

Real power_of_real(const Real& x, const Real& y) {
    return of<mpfr_pow>(x, y);
}

/* base^(2^k), times base for an odd exponent, k the number of halvings that bring the even magnitude to 1. */
Real power_of_squarings(const Real& base, int magnitude) {
    if (magnitude == 0) {
        return 1;
    }
    const bool is_odd = magnitude % 2 != 0;
    Real result = is_odd ? base : Real(1);
    if (magnitude == 1) {
        return result;
    }
    Real square = base;
    for (int rest = magnitude - (is_odd ? 1 : 0); rest > 1; rest /= 2) {
        square = square * square;
    }
    return result * square;
}

Real power_of_integer(const Real& x, const Real& y) {
    const int exponent = static_cast<int>(y.to_double());
    const Real result = power_of_squarings(x, std::abs(exponent));
    return exponent < 0 ? Real(1) / result : result;
}

/* ---- What the error grows with ---- */

const Real one = 1;

Real nothing(const Point& /* point */) {
    return 1;
}

Real argument(const Point& p) {
    return larger(one, magnitude(p.x));
}

Real result_and_argument(const Point& p) {
    return one + larger(one, magnitude(p.x)) * magnitude(p.exact);
}

/* The tangent's slope times what the sine's error grows with. */
Real slope_of_tangent(const Point& p) {
    return argument(p) * larger(one, p.exact * p.exact);
}

Real slope_of_rounded_tangent(const Point& p) {
    return larger(power_of_ten(122), argument(p)) * larger(one, p.exact * p.exact);
}

Real last_rounded_digit(const Point& p) {
    return larger(power_of_ten(122), argument(p));
}

Real reciprocal_argument(const Point& p) {
    return larger(one, power_of_ten(160) / magnitude(p.x));
}

Real reciprocal_ratio(const Point& p) {
    return larger(one, power_of_ten(160) * magnitude(p.y / p.x));
}

/* 1 - x^2 is half a unit off, or d^2 where that is smaller, and so is its root 1 / sqrt d times as much. */
Real steepness_near_one(const Point& p) {
    const Real d = one - magnitude(p.x);
    if (d.is_zero()) {
        return 1;
    }
    const Real steepness = one / of<mpfr_sqrt>(d);
    const Real below = d * d * steepness * power_of_ten(160);
    return larger(one, steepness < below ? steepness : below);
}

Real square_of_exponential(const Point& p) {
    return of<mpfr_exp>(magnitude(p.x) + magnitude(p.x));
}

Real scale_of_logarithm(const Real& x, const Real& logarithm) {
    return larger(larger(one, magnitude(logarithm)), one / of<mpfr_sqrt>(x));
}

Real logarithm_and_root(const Point& p) {
    return scale_of_logarithm(p.x, p.exact);
}

Real power_scale(const Point& p) {
    const Real base = magnitude(p.x);
    const Real logarithm = of<mpfr_log>(base);
    const Real exponent = magnitude(p.y);
    return one + magnitude(p.exact) * (one + exponent * scale_of_logarithm(base, logarithm));
}

Real integer_power_scale(const Point& p) {
    return one + magnitude(p.y) * magnitude(p.exact);
}

Real reciprocal_power_scale(const Point& p) {
    /* 1 / (p + d) is d / p^2 off, and p itself is at most as far off as integer_power_scale says. */
    const Real positive_power = one / magnitude(p.exact);
    return one + (one + magnitude(p.y) * positive_power) / (positive_power * positive_power);
}

const Law constant{"", nothing};
const Law growing_with_argument{"max(1, |x|)", argument};
const Law growing_like_tangent{"max(1, |x|) · max(1, tan² x)", slope_of_tangent};
const Law growing_like_rounded_tangent{"max(10^122, |x|) · max(1, tan² x)", slope_of_rounded_tangent};
const Law growing_from_38_digits{"max(10^122, |x|)", last_rounded_digit};
const Law reciprocal{"max(1, 10^160 / |x|)", reciprocal_argument};
const Law reciprocal_of_ratio{"max(1, 10^160 · |x / y|)", reciprocal_ratio};
const Law growing_near_one{"max(1, min(1 / √d, 10^160 · d√d)), d = 1 − |x|", steepness_near_one};
const Law growing_with_result{"(1 + max(1, |x|) · |result|)", result_and_argument};
const Law growing_with_square{"e^(2 |x|)", square_of_exponential};
const Law growing_like_logarithm{"max(1, |ln x|, 1 / √x)", logarithm_and_root};
const Law growing_like_power{"(1 + |result| · (1 + |y| · max(1, |ln |x||, 1 / √|x|)))", power_scale};
const Law growing_with_integer_power{"(1 + n · |result|)", integer_power_scale};
const Law growing_with_reciprocal_power{"(1 + (1 + |n| · p) / p²), p = |1 / result|", reciprocal_power_scale};

/* ---- Where ---- */

bool always(const Point& /* point */) {
    return true;
}

const Real& logarithm_of_ten() {
    static const Real value = of<mpfr_log>(Real(10));
    return value;
}

bool is_beyond_record(const Point& p) {
    return magnitude(p.exact) >= power_of_ten(160);
}

bool tangent_may_overflow(const Point& p) {
    return magnitude(p.exact) >= power_of_ten(144);
}

bool rounded_cosine_is_zero(const Point& p) {
    return rounded_cosine(p.x, p.y).is_zero();
}

bool is_huge_angle(const Point& p) {
    return magnitude(p.x) >= power_of_ten(110);
}

bool is_huge_or_steep_angle(const Point& p) {
    return argument(p) * larger(one, magnitude(p.exact)) >= power_of_ten(110);
}

bool square_overflows(const Point& p) {
    return magnitude(p.x) >= power_of_ten(80);
}

/* A sum that carries into the top limb counts as overflow, like one that carries out of it. */
bool halving_overflows(const Point& p) {
    const mpz_class sum = (p.x * p.x).truncated() + 1;
    return sum == power(10, 152) || sum == power(10, 160);
}

bool ratio_square_overflows(const Point& p) {
    return magnitude(p.x) >= magnitude(p.y) * power_of_ten(80);
}

bool exponential_overflows(const Point& p) {
    return p.x >= logarithm_of_ten() * Real(160);
}

/* e^x is below 10^-144, so that 1 / e^x is infinite; not where e^x is 0. */
bool reciprocal_exponential_overflows(const Point& p) {
    return p.x < logarithm_of_ten() * Real(-144) && p.x > Real(-369);
}

bool hyperbolic_overflows(const Point& p) {
    return exponential_overflows(p) || p.x < logarithm_of_ten() * Real(-144);
}

bool is_very_negative(const Point& p) {
    return p.x <= logarithm_of_ten() * Real(-110);
}

bool is_negative(const Point& p) {
    return p.x.is_negative();
}

bool has_negative_exponent(const Point& p) {
    return p.y.is_negative();
}

bool is_large_reciprocal(const Point& p) {
    return p.y.is_negative() && magnitude(p.exact) >= power_of_ten(110);
}

bool integer_power_may_overflow(const Point& p) {
    const Real size = magnitude(p.exact);
    return size >= power_of_ten(160) ||
           (p.y.is_negative() && (size >= power_of_ten(144) || size <= power_of_ten(-160)));
}

constexpr std::string_view everywhere = "all arguments";

const std::array sqrt_ranges = {
    Range{everywhere, always, constant, sqrt_bound},
};

const std::array sin_ranges = {
    Range{"|x| ≥ 10^110", is_huge_angle, growing_with_argument, sin_huge_bound},
    Range{"|x| < 10^110", always, growing_with_argument, sin_bound},
};

const std::array cos_ranges = {
    Range{"|x| ≥ 10^110", is_huge_angle, growing_with_argument, cos_huge_bound},
    Range{"|x| < 10^110", always, growing_with_argument, cos_bound},
};

const std::array tan_ranges = {
    Range{"|x| · |tan x| ≥ 10^110 or |x| ≥ 10^110", is_huge_or_steep_angle, growing_like_tangent,
          tan_steep_bound},
    Range{"other", always, growing_like_tangent, tan_bound},
};

const std::array tan_excluded = {
    Exclusion{"|tan x| ≥ 10^144: the quotient can be an infinity", tangent_may_overflow, Answer::anything},
};

const std::array sinr_ranges = {
    Range{"|x| ≥ 10^110", is_huge_angle, growing_from_38_digits, sinr_huge_bound},
    Range{"|x| < 10^110", always, constant, sinr_bound},
};

const std::array cosr_ranges = {
    Range{"|x| ≥ 10^110", is_huge_angle, growing_from_38_digits, cosr_huge_bound},
    Range{"|x| < 10^110", always, constant, cosr_bound},
};

const std::array tanr_ranges = {
    Range{"|x| ≥ 10^110", is_huge_angle, growing_like_rounded_tangent, tanr_huge_bound},
    Range{"|x| < 10^110", always, constant, tanr_bound},
};

const std::array tanr_excluded = {
    Exclusion{"the cosine rounds to 0: an infinity with the sine's sign", rounded_cosine_is_zero,
              Answer::infinity},
};

const std::array atan_ranges = {
    Range{"|x| ≥ 10^80: the result is ±π/2", square_overflows, reciprocal, atan_huge_bound},
    Range{"|x| < 10^80", always, constant, atan_bound},
};

const std::array atan_excluded = {
    Exclusion{"|x| so little below 10^76 or 10^80 that x² + 1 overflows: an error", halving_overflows,
              Answer::failure},
};

const std::array asin_ranges = {
    Range{everywhere, always, growing_near_one, asin_bound},
};

const std::array acos_ranges = {
    Range{everywhere, always, growing_near_one, acos_bound},
};

const std::array atan2_ranges = {
    Range{"|y / x| ≥ 10^80: the angle is that of the y axis", ratio_square_overflows, reciprocal_of_ratio,
          atan2_steep_bound},
    Range{"|y / x| < 10^80", always, constant, atan2_bound},
};

const std::array exp_ranges = {
    Range{everywhere, always, growing_with_result, exp_bound},
};

const std::array exp_excluded = {
    Exclusion{"e^x ≥ 10^160: +infinity", is_beyond_record, Answer::infinity},
};

const std::array sinh_ranges = {
    Range{"x ≤ ln 10^-110 = −253.28…", is_very_negative, growing_with_square, sinh_very_negative_bound},
    Range{"ln 10^-110 < x < 0", is_negative, growing_with_square, sinh_negative_bound},
    Range{"x ≥ 0", always, growing_with_result, sinh_bound},
};

const std::array cosh_ranges = {
    Range{"x ≤ ln 10^-110 = −253.28…", is_very_negative, growing_with_square, cosh_very_negative_bound},
    Range{"ln 10^-110 < x < 0", is_negative, growing_with_square, cosh_negative_bound},
    Range{"x ≥ 0", always, growing_with_result, cosh_bound},
};

const std::array sinh_excluded = {
    Exclusion{"x ≥ ln 10^160 = 368.41… or x < ln 10^-144 = −331.57…: an infinity with the sign of x",
              hyperbolic_overflows, Answer::infinity},
};

const std::array cosh_excluded = {
    Exclusion{"x ≥ ln 10^160 = 368.41… or x < ln 10^-144 = −331.57…: +infinity", hyperbolic_overflows,
              Answer::infinity},
};

const std::array tanh_ranges = {
    Range{everywhere, always, constant, tanh_bound},
};

const std::array tanh_excluded = {
    Exclusion{"x ≥ ln 10^160 = 368.41…: +infinity", exponential_overflows, Answer::infinity},
    Exclusion{"−369 < x < ln 10^-144 = −331.57…: −infinity", reciprocal_exponential_overflows,
              Answer::infinity},
};

const std::array ln_ranges = {
    Range{everywhere, always, growing_like_logarithm, ln_bound},
};

const std::array ipow_ranges = {
    Range{"n < 0 and |result| ≥ 10^110", is_large_reciprocal, growing_with_reciprocal_power,
          ipow_large_reciprocal_bound},
    Range{"n < 0, other", has_negative_exponent, growing_with_reciprocal_power, ipow_negative_bound},
    Range{"n ≥ 0", always, growing_with_integer_power, ipow_bound},
};

const std::array ipow_excluded = {
    Exclusion{"|x|^n formed on the way ≥ 10^160, or |result| ≥ 10^144 for n < 0: an infinity, zero, an "
              "error, or digits lost at the top",
              integer_power_may_overflow, Answer::anything},
};

const std::array pow_ranges = {
    Range{everywhere, always, growing_like_power, pow_bound},
};

const std::array pow_excluded = {
    Exclusion{"|result| ≥ 10^160: an infinity with its sign", is_beyond_record, Answer::infinity},
};

template <sword (*operation)(const QZCICalcNumber*, QZCICalcNumber*)>
sword of_one(const Arguments& arguments, QZCICalcNumber* result) {
    return operation(&arguments.first.record, result);
}

template <sword (*operation)(const QZCICalcNumber*, const QZCICalcNumber*, QZCICalcNumber*)>
sword of_two(const Arguments& arguments, QZCICalcNumber* result) {
    return operation(&arguments.first.record, &arguments.second.record, result);
}

sword integer_power(const Arguments& arguments, QZCICalcNumber* result) {
    return QZCICalcNumIntPower(&arguments.first.record, arguments.exponent, result);
}

} // namespace

std::span<const Function> all_functions() {
    static const std::array functions = {
        Function{.name = "sqrt",
                 .reference = "",
                 .call = of_one<QZCICalcNumSqrt>,
                 .exact = exact_of<mpfr_sqrt>,
                 .arguments = samples::of_sqrt,
                 .takes = Takes::one,
                 .excluded = {},
                 .ranges = sqrt_ranges,
                 .quotients = nullptr,
                 .sample_size = 120000},
        Function{.name = "sin",
                 .reference = "",
                 .call = of_one<QZCICalcNumSin>,
                 .exact = exact_of<mpfr_sin>,
                 .arguments = samples::of_sine,
                 .takes = Takes::one,
                 .excluded = {},
                 .ranges = sin_ranges,
                 .quotients = nullptr,
                 .sample_size = 200000},
        Function{.name = "cos",
                 .reference = "",
                 .call = of_one<QZCICalcNumCos>,
                 .exact = exact_of<mpfr_cos>,
                 .arguments = samples::of_cosine,
                 .takes = Takes::one,
                 .excluded = {},
                 .ranges = cos_ranges,
                 .quotients = nullptr,
                 .sample_size = 200000},
        Function{.name = "tan",
                 .reference = "",
                 .call = of_one<QZCICalcNumTan>,
                 .exact = exact_of<mpfr_tan>,
                 .arguments = samples::of_sine,
                 .takes = Takes::one,
                 .excluded = tan_excluded,
                 .ranges = tan_ranges,
                 .quotients = tangent_quotients,
                 .sample_size = 100000},
        Function{.name = "sinr",
                 .reference = "the sine rounded half-up to 38 fraction digits",
                 .call = of_one<QZCICalcNumSinWithRound>,
                 .exact = rounded_sine,
                 .arguments = samples::of_sine,
                 .takes = Takes::one,
                 .excluded = {},
                 .ranges = sinr_ranges,
                 .quotients = nullptr,
                 .sample_size = 100000},
        Function{.name = "cosr",
                 .reference = "the cosine rounded half-up to 38 fraction digits",
                 .call = of_one<QZCICalcNumCosWithRound>,
                 .exact = rounded_cosine,
                 .arguments = samples::of_cosine,
                 .takes = Takes::one,
                 .excluded = {},
                 .ranges = cosr_ranges,
                 .quotients = nullptr,
                 .sample_size = 100000},
        Function{.name = "tanr",
                 .reference = "the quotient of the rounded sine and cosine",
                 .call = of_one<QZCICalcNumTanWithRound>,
                 .exact = quotient_of_rounded,
                 .arguments = samples::of_sine,
                 .takes = Takes::one,
                 .excluded = tanr_excluded,
                 .ranges = tanr_ranges,
                 .quotients = rounded_tangent_quotients,
                 .sample_size = 80000},
        Function{.name = "atan",
                 .reference = "",
                 .call = of_one<QZCICalcNumAtan>,
                 .exact = exact_of<mpfr_atan>,
                 .arguments = samples::of_atan,
                 .takes = Takes::one,
                 .excluded = atan_excluded,
                 .ranges = atan_ranges,
                 .quotients = arctangent_quotients,
                 .sample_size = 80000},
        Function{.name = "asin",
                 .reference = "",
                 .call = of_one<QZCICalcNumAsin>,
                 .exact = exact_of<mpfr_asin>,
                 .arguments = samples::of_asin,
                 .takes = Takes::one,
                 .excluded = {},
                 .ranges = asin_ranges,
                 .quotients = arcsine_quotients,
                 .sample_size = 80000},
        Function{.name = "acos",
                 .reference = "",
                 .call = of_one<QZCICalcNumAcos>,
                 .exact = exact_of<mpfr_acos>,
                 .arguments = samples::of_asin,
                 .takes = Takes::one,
                 .excluded = {},
                 .ranges = acos_ranges,
                 .quotients = arcsine_quotients,
                 .sample_size = 80000},
        Function{.name = "atan2",
                 .reference = "",
                 .call = of_two<QZCICalcNumAtan2>,
                 .exact = angle,
                 .arguments = samples::of_atan2,
                 .takes = Takes::two,
                 .excluded = {},
                 .ranges = atan2_ranges,
                 .quotients = angle_quotients,
                 .sample_size = 80000},
        Function{.name = "exp",
                 .reference = "",
                 .call = of_one<QZCICalcNumExp>,
                 .exact = exact_of<mpfr_exp>,
                 .arguments = samples::of_exp,
                 .takes = Takes::one,
                 .excluded = exp_excluded,
                 .ranges = exp_ranges,
                 .quotients = nullptr,
                 .sample_size = 200000},
        Function{.name = "sinh",
                 .reference = "",
                 .call = of_one<QZCICalcNumSinh>,
                 .exact = exact_of<mpfr_sinh>,
                 .arguments = samples::of_exp,
                 .takes = Takes::one,
                 .excluded = sinh_excluded,
                 .ranges = sinh_ranges,
                 .quotients = hyperbolic_quotients,
                 .sample_size = 100000},
        Function{.name = "cosh",
                 .reference = "",
                 .call = of_one<QZCICalcNumCosh>,
                 .exact = exact_of<mpfr_cosh>,
                 .arguments = samples::of_exp,
                 .takes = Takes::one,
                 .excluded = cosh_excluded,
                 .ranges = cosh_ranges,
                 .quotients = hyperbolic_quotients,
                 .sample_size = 100000},
        Function{.name = "tanh",
                 .reference = "",
                 .call = of_one<QZCICalcNumTanh>,
                 .exact = exact_of<mpfr_tanh>,
                 .arguments = samples::of_exp,
                 .takes = Takes::one,
                 .excluded = tanh_excluded,
                 .ranges = tanh_ranges,
                 .quotients = hyperbolic_tangent_quotients,
                 .sample_size = 100000},
        Function{.name = "ln",
                 .reference = "",
                 .call = of_one<QZCICalcNumLn>,
                 .exact = exact_of<mpfr_log>,
                 .arguments = samples::of_ln,
                 .takes = Takes::one,
                 .excluded = {},
                 .ranges = ln_ranges,
                 .quotients = logarithm_quotients,
                 .sample_size = 40000},
        Function{.name = "ipow",
                 .reference = "the power that its squarings form",
                 .call = integer_power,
                 .exact = power_of_integer,
                 .arguments = samples::of_ipow,
                 .takes = Takes::one_and_integer,
                 .excluded = ipow_excluded,
                 .ranges = ipow_ranges,
                 .quotients = integer_power_quotients,
                 .sample_size = 200000},
        Function{.name = "pow",
                 .reference = "",
                 .call = of_two<QZCICalcNumPower>,
                 .exact = power_of_real,
                 .arguments = samples::of_pow,
                 .takes = Takes::two,
                 .excluded = pow_excluded,
                 .ranges = pow_ranges,
                 .quotients = power_quotients,
                 .sample_size = 40000},
    };
    return functions;
}

} // namespace qzoci::test::accuracy
