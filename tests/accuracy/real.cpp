#include "tests/accuracy/real.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace qzoci::test::accuracy {
namespace {

/* mpfr_round takes no rounding mode. */
int round_half_away(mpfr_ptr result, mpfr_srcptr x, mpfr_rnd_t /* mode */) {
    return mpfr_round(result, x);
}

constexpr int largest_exponent = 330;

using Powers = std::array<Real, 2 * largest_exponent + 1>;

size_t place_of(int exponent) {
    const int place = exponent + largest_exponent;
    return static_cast<size_t>(place);
}

Powers powers_of_ten() {
    Powers powers;
    for (int exponent = -largest_exponent; exponent <= largest_exponent; ++exponent) {
        mpfr_ptr power = powers.at(place_of(exponent)).get();
        mpfr_ui_pow_ui(power, 10, static_cast<unsigned long>(exponent < 0 ? -exponent : exponent), MPFR_RNDN);
        if (exponent < 0) {
            mpfr_ui_div(power, 1, power, MPFR_RNDN);
        }
    }
    return powers;
}

} // namespace

double Real::log10() const {
    long exponent = 0;
    const double fraction = mpfr_get_d_2exp(&exponent, value_, MPFR_RNDN);
    return std::log10(std::fabs(fraction)) + static_cast<double>(exponent) * std::log10(2.0);
}

mpz_class Real::truncated() const {
    mpz_class integer;
    mpfr_get_z(integer.get_mpz_t(), value_, MPFR_RNDZ);
    return integer;
}

mpz_class Real::nearest_integer() const {
    return of<round_half_away>(*this).truncated();
}

const Real& power_of_ten(int exponent) {
    static const Powers powers = powers_of_ten();
    return powers.at(place_of(exponent));
}

const Real& pi() {
    static const Real value = [] {
        Real number;
        mpfr_const_pi(number.get(), MPFR_RNDN);
        return number;
    }();
    return value;
}

} // namespace qzoci::test::accuracy
