/* Real numbers of MPFR with value semantics, precise enough to count as exact here: a record has at most 320
 * digits, 1063 bits, and the steepest function met (the tangent beside a pole) needs another 530. */
#ifndef QZOCI_TESTS_ACCURACY_REAL_H
#define QZOCI_TESTS_ACCURACY_REAL_H

#include <gmpxx.h>
#include <mpfr.h>

#include <string>
#include <utility>

namespace qzoci::test::accuracy {

class Real {
public:
    static constexpr mpfr_prec_t precision = 2048;

    Real() : Real(0L) {}

    // NOLINTNEXTLINE(google-explicit-constructor,hicpp-explicit-conversions): a small integer is a number
    Real(long value) {
        mpfr_init2(value_, precision);
        mpfr_set_si(value_, value, MPFR_RNDN);
    }

    static Real of_double(double value) {
        Real real;
        mpfr_set_d(real.value_, value, MPFR_RNDN);
        return real;
    }

    explicit Real(const mpz_class& value) {
        mpfr_init2(value_, precision);
        mpfr_set_z(value_, value.get_mpz_t(), MPFR_RNDN);
    }

    Real(const Real& other) {
        mpfr_init2(value_, precision);
        mpfr_set(value_, other.value_, MPFR_RNDN);
    }

    Real(Real&& other) noexcept : Real() { mpfr_swap(value_, other.value_); }

    Real& operator=(const Real& other) {
        mpfr_set(value_, other.value_, MPFR_RNDN);
        return *this;
    }

    Real& operator=(Real&& other) noexcept {
        mpfr_swap(value_, other.value_);
        return *this;
    }

    ~Real() { mpfr_clear(value_); }

    mpfr_srcptr get() const { return value_; }

    mpfr_ptr get() { return value_; }

    bool is_negative() const { return mpfr_sgn(value_) < 0; }

    bool is_zero() const { return mpfr_zero_p(value_) != 0; }

    /* Infinite beyond the range of double, 0 below it. */
    double to_double() const { return mpfr_get_d(value_, MPFR_RNDN); }

    /* Of the magnitude; minus infinity of zero. Good to about 15 digits. */
    double log10() const;

    /* The integer nearest to it, halves away from zero. Precondition of both: finite. */
    mpz_class nearest_integer() const;

    mpz_class truncated() const;

private:
    mpfr_t value_;
};

/* A function of MPFR, such as of<mpfr_sin>(x). */
template <int (*function)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)>
Real of(const Real& x) {
    Real result;
    function(result.get(), x.get(), MPFR_RNDN);
    return result;
}

template <int (*function)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t)>
Real of(const Real& x, const Real& y) {
    Real result;
    function(result.get(), x.get(), y.get(), MPFR_RNDN);
    return result;
}

inline Real operator+(const Real& x, const Real& y) {
    return of<mpfr_add>(x, y);
}

inline Real operator-(const Real& x, const Real& y) {
    return of<mpfr_sub>(x, y);
}

inline Real operator*(const Real& x, const Real& y) {
    return of<mpfr_mul>(x, y);
}

inline Real operator/(const Real& x, const Real& y) {
    return of<mpfr_div>(x, y);
}

inline Real operator-(const Real& x) {
    return of<mpfr_neg>(x);
}

inline bool operator<(const Real& x, const Real& y) {
    return mpfr_less_p(x.get(), y.get()) != 0;
}

inline bool operator>(const Real& x, const Real& y) {
    return y < x;
}

inline bool operator<=(const Real& x, const Real& y) {
    return mpfr_lessequal_p(x.get(), y.get()) != 0;
}

inline bool operator>=(const Real& x, const Real& y) {
    return y <= x;
}

inline Real magnitude(const Real& x) {
    return x.is_negative() ? -x : x;
}

inline Real larger(const Real& x, const Real& y) {
    return x < y ? y : x;
}

/* 10^exponent. */
const Real& power_of_ten(int exponent);

const Real& pi();

} // namespace qzoci::test::accuracy

#endif /* QZOCI_TESTS_ACCURACY_REAL_H */
