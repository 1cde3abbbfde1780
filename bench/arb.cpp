#include "bench/participants.h"

#include <arb.h>

namespace qzoci::bench {
namespace {

/* A ball, whose midpoint alone serves as a floating-point number. */
class Ball {
public:
    Ball() { arb_init(value_); }

    Ball(Ball&& other) noexcept : Ball() { arb_swap(value_, other.value_); }

    Ball(const Ball&) = delete;
    Ball& operator=(const Ball&) = delete;
    Ball& operator=(Ball&&) = delete;

    ~Ball() { arb_clear(value_); }

    arb_ptr get() { return value_; }

    arb_srcptr get() const { return value_; }

    arf_ptr middle() { return arb_midref(value_); }

    arf_srcptr middle() const { return arb_midref(value_); }

private:
    arb_t value_;
};

/* With digits to spare, cut rather than rounded: that is the cheaper way. */
constexpr arf_rnd_t cut = ARF_RND_DOWN;

struct Arb {
    using Number = Ball;

    slong precision;
    std::vector<Number> powers; /* 100^-80 to 100^80; none where nothing comes from bytes or goes there */
    Number scaled;
    mpz_class whole;

    explicit Arb(const Row& row) : precision(bits_for_digits(row.digits)) {
        if (row.group == Group::stored) {
            for (int scale = -largest_scale; scale <= largest_scale; ++scale) {
                set(powers.emplace_back(), power_of_ten(2 * scale));
            }
        }
    }

    arf_srcptr power(int scale) const { return powers[static_cast<size_t>(scale + largest_scale)].middle(); }

    static void begin() {}

    static void prepare(Number& /* x */) {}

    void set(Number& x, const Real& value) const {
        arf_set_mpfr(x.middle(), value.get());
        arf_set_round(x.middle(), x.middle(), precision, ARF_RND_NEAR);
    }

    void set(Number& x, const Operand& operand) const { set(x, value_of(operand)); }

    static Real value(const Number& x) {
        Real value;
        arf_get_mpfr(value.get(), x.middle(), MPFR_RNDN);
        return value;
    }

    void set_scaled(Number& x, const mpz_class& integer, int scale) const {
        arf_set_mpz(x.middle(), integer.get_mpz_t());
        arf_mul(x.middle(), x.middle(), power(scale), precision, cut);
    }

    static void negate(Number& x) { arf_neg(x.middle(), x.middle()); }

    static bool is_negative(const Number& x) { return arf_sgn(x.middle()) < 0; }

    int pairs_before_point(const Number& x) const {
        const int fewest = fewest_pairs_before_point(arf_abs_bound_lt_2exp_si(x.middle()));
        return fewest + (arf_cmpabs(x.middle(), power(fewest)) >= 0 ? 1 : 0);
    }

    void round_scaled(const Number& x, int scale, mpz_class& integer) {
        arf_mul(scaled.middle(), x.middle(), power(scale), precision, cut);
        fmpz_t rounded;
        fmpz_init(rounded);
        arf_get_fmpz(rounded, scaled.middle(), ARF_RND_NEAR);
        fmpz_abs(rounded, rounded);
        fmpz_get_mpz(integer.get_mpz_t(), rounded);
        fmpz_clear(rounded);
    }

    void unpack(const OCINumber& bytes, Number& x) { bench::unpack(*this, bytes, x); }

    void pack(const Number& x, OCINumber& bytes) { bench::pack(*this, x, bytes); }
};

template <int (*function)(arf_ptr, arf_srcptr, arf_srcptr, slong, arf_rnd_t)>
struct FloatingPoint {
    void operator()(const Arb& arb, Ball& result, const Ball& a, const Ball& b) const {
        function(result.middle(), a.middle(), b.middle(), arb.precision, cut);
    }
};

struct Product {
    void operator()(const Arb& arb, Ball& result, const Ball& a, const Ball& b) const {
        arf_mul(result.middle(), a.middle(), b.middle(), arb.precision, cut);
    }
};

/* There is no function for it. */
struct Remainder {
    void operator()(Arb& arb, Ball& result, const Ball& a, const Ball& b) const {
        arf_div(arb.scaled.middle(), a.middle(), b.middle(), arb.precision, cut);
        arf_floor(arb.scaled.middle(), arb.scaled.middle());
        arf_set(result.middle(), a.middle());
        arf_submul(result.middle(), arb.scaled.middle(), b.middle(), arb.precision, cut);
    }
};

struct Root {
    void operator()(const Arb& arb, Ball& result, const Ball& a, const Ball& /* b */) const {
        arf_sqrt(result.middle(), a.middle(), arb.precision, cut);
    }
};

template <void (*function)(arb_ptr, arb_srcptr, slong)>
struct Unary {
    void operator()(const Arb& arb, Ball& result, const Ball& a, const Ball& /* b */) const {
        function(result.get(), a.get(), arb.precision);
    }
};

struct Power {
    void operator()(const Arb& arb, Ball& result, const Ball& a, const Ball& b) const {
        arb_pow(result.get(), a.get(), b.get(), arb.precision);
    }
};

struct Compare {
    int operator()(const Ball& a, const Ball& b) const { return arf_cmp(a.middle(), b.middle()); }
};

std::unique_ptr<Contender> contender(const Row& row) {
    switch (row.operation) {
    case Operation::add:
        return arithmetic(Arb(row), row, FloatingPoint<arf_add>());
    case Operation::sub:
        return arithmetic(Arb(row), row, FloatingPoint<arf_sub>());
    case Operation::mul:
        return arithmetic(Arb(row), row, Product());
    case Operation::div:
        return arithmetic(Arb(row), row, FloatingPoint<arf_div>());
    case Operation::mod:
        return on_numbers(Arb(row), row, Remainder());
    case Operation::compare:
        return comparison(Arb(row), row, Compare());
    case Operation::unpack:
        return unpacking(Arb(row), row);
    case Operation::pack:
        return packing(Arb(row), row);
    case Operation::sqrt:
        return on_numbers(Arb(row), row, Root());
    case Operation::exp:
        return on_numbers(Arb(row), row, Unary<arb_exp>());
    case Operation::ln:
        return on_numbers(Arb(row), row, Unary<arb_log>());
    case Operation::sin:
        return on_numbers(Arb(row), row, Unary<arb_sin>());
    case Operation::cos:
        return on_numbers(Arb(row), row, Unary<arb_cos>());
    case Operation::tan:
        return on_numbers(Arb(row), row, Unary<arb_tan>());
    case Operation::atan:
        return on_numbers(Arb(row), row, Unary<arb_atan>());
    case Operation::asin:
        return on_numbers(Arb(row), row, Unary<arb_asin>());
    case Operation::sinh:
        return on_numbers(Arb(row), row, Unary<arb_sinh>());
    case Operation::cosh:
        return on_numbers(Arb(row), row, Unary<arb_cosh>());
    case Operation::tanh:
        return on_numbers(Arb(row), row, Unary<arb_tanh>());
    case Operation::power:
        return on_numbers(Arb(row), row, Power());
    }
    return nullptr;
}

} // namespace

Participant arb() {
    return {"FLINT/Arb", std::string(FLINT_VERSION) + ", " + arb_version, Kind::binary_peer, false,
            contender};
}

} // namespace qzoci::bench
