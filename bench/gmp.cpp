#include "bench/participants.h"
#include "tests/independent/operands.h"

namespace qzoci::bench {
namespace {

constexpr int fraction_pairs = 80;

struct FixedPoint {
    using Number = mpz_class; /* in units of 10^-160 */

    mpz_class one = test::power(100, fraction_pairs);
    std::vector<mpz_class> powers; /* 100^0 to 100^160; none where nothing comes from bytes or goes there */
    mpz_class scaled;
    mpz_class whole;

    explicit FixedPoint(const Row& row) {
        if (row.group == Group::stored) {
            for (int exponent = 0; exponent <= fraction_pairs + largest_scale; ++exponent) {
                powers.push_back(test::power(100, exponent));
            }
        }
    }

    mpz_srcptr power(int exponent) const { return powers[static_cast<size_t>(exponent)].get_mpz_t(); }

    static void begin() {}

    static void prepare(Number& /* x */) {}

    static void set(Number& x, const Operand& operand) { x = operand.units; }

    static Real value(const Number& x) { return Real(x) / power_of_ten(2 * fraction_pairs); }

    void set_scaled(Number& x, const mpz_class& integer, int scale) const {
        mpz_mul(x.get_mpz_t(), integer.get_mpz_t(), power(fraction_pairs + scale));
    }

    static void negate(Number& x) { mpz_neg(x.get_mpz_t(), x.get_mpz_t()); }

    static bool is_negative(const Number& x) { return mpz_sgn(x.get_mpz_t()) < 0; }

    int pairs_before_point(const Number& x) const {
        const int fewest = fewest_pairs_before_point(static_cast<long>(mpz_sizeinbase(x.get_mpz_t(), 2)));
        return fewest + (mpz_cmpabs(x.get_mpz_t(), power(fewest)) >= 0 ? 1 : 0) - fraction_pairs;
    }

    void round_scaled(const Number& x, int scale, mpz_class& integer) {
        if (scale >= fraction_pairs) {
            mpz_mul(integer.get_mpz_t(), x.get_mpz_t(), power(scale - fraction_pairs));
        } else {
            mpz_srcptr divisor = power(fraction_pairs - scale);
            mpz_tdiv_q_2exp(scaled.get_mpz_t(), divisor, 1);
            mpz_abs(integer.get_mpz_t(), x.get_mpz_t());
            mpz_add(scaled.get_mpz_t(), scaled.get_mpz_t(), integer.get_mpz_t());
            mpz_tdiv_q(integer.get_mpz_t(), scaled.get_mpz_t(), divisor);
        }
        mpz_abs(integer.get_mpz_t(), integer.get_mpz_t());
    }

    void unpack(const OCINumber& bytes, Number& x) { bench::unpack(*this, bytes, x); }

    void pack(const Number& x, OCINumber& bytes) { bench::pack(*this, x, bytes); }
};

template <void (*function)(mpz_ptr, mpz_srcptr, mpz_srcptr)>
struct Direct {
    void operator()(const FixedPoint& /* gmp */, mpz_class& result, const mpz_class& a,
                    const mpz_class& b) const {
        function(result.get_mpz_t(), a.get_mpz_t(), b.get_mpz_t());
    }
};

/* Products, quotients and roots are cut rather than rounded: that is the cheaper way. */

struct Product {
    void operator()(FixedPoint& gmp, mpz_class& result, const mpz_class& a, const mpz_class& b) const {
        mpz_mul(gmp.scaled.get_mpz_t(), a.get_mpz_t(), b.get_mpz_t());
        mpz_tdiv_q(result.get_mpz_t(), gmp.scaled.get_mpz_t(), gmp.one.get_mpz_t());
    }
};

struct Quotient {
    void operator()(FixedPoint& gmp, mpz_class& result, const mpz_class& a, const mpz_class& b) const {
        mpz_mul(gmp.scaled.get_mpz_t(), a.get_mpz_t(), gmp.one.get_mpz_t());
        mpz_tdiv_q(result.get_mpz_t(), gmp.scaled.get_mpz_t(), b.get_mpz_t());
    }
};

struct Root {
    void operator()(FixedPoint& gmp, mpz_class& result, const mpz_class& a, const mpz_class& /* b */) const {
        mpz_mul(gmp.scaled.get_mpz_t(), a.get_mpz_t(), gmp.one.get_mpz_t());
        mpz_sqrt(result.get_mpz_t(), gmp.scaled.get_mpz_t());
    }
};

struct Compare {
    int operator()(const mpz_class& a, const mpz_class& b) const {
        return mpz_cmp(a.get_mpz_t(), b.get_mpz_t());
    }
};

std::unique_ptr<Contender> contender(const Row& row) {
    switch (row.operation) {
    case Operation::add:
        return arithmetic(FixedPoint(row), row, Direct<mpz_add>());
    case Operation::sub:
        return arithmetic(FixedPoint(row), row, Direct<mpz_sub>());
    case Operation::mul:
        return arithmetic(FixedPoint(row), row, Product());
    case Operation::div:
        return arithmetic(FixedPoint(row), row, Quotient());
    case Operation::mod:
        return on_numbers(FixedPoint(row), row, Direct<mpz_tdiv_r>());
    case Operation::compare:
        return comparison(FixedPoint(row), row, Compare());
    case Operation::unpack:
        return unpacking(FixedPoint(row), row);
    case Operation::pack:
        return packing(FixedPoint(row), row);
    case Operation::sqrt:
        return on_numbers(FixedPoint(row), row, Root());
    default:
        return nullptr;
    }
}

} // namespace

Participant gmp() {
    return {"GMP", gmp_version, Kind::decimal_peer, false, contender};
}

} // namespace qzoci::bench
