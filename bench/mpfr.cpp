#include "bench/participants.h"

namespace qzoci::bench {
namespace {

class MpfrNumber {
public:
    MpfrNumber() { mpfr_init(value_); }

    MpfrNumber(MpfrNumber&& other) noexcept : MpfrNumber() { mpfr_swap(value_, other.value_); }

    MpfrNumber(const MpfrNumber&) = delete;
    MpfrNumber& operator=(const MpfrNumber&) = delete;
    MpfrNumber& operator=(MpfrNumber&&) = delete;

    ~MpfrNumber() { mpfr_clear(value_); }

    mpfr_ptr get() { return value_; }

    mpfr_srcptr get() const { return value_; }

private:
    mpfr_t value_;
};

struct Mpfr {
    using Number = MpfrNumber;

    mpfr_prec_t precision;
    std::vector<Number> powers; /* 100^-80 to 100^80; none where nothing comes from bytes or goes there */
    Number scaled;
    mpz_class whole;

    explicit Mpfr(const Row& row) : precision(bits_for_digits(row.digits)) {
        prepare(scaled);
        if (row.group == Group::stored) {
            for (int scale = -largest_scale; scale <= largest_scale; ++scale) {
                prepare(powers.emplace_back());
                mpfr_set(powers.back().get(), power_of_ten(2 * scale).get(), MPFR_RNDN);
            }
        }
    }

    mpfr_srcptr power(int scale) const {
        const int place = scale + largest_scale;
        return powers[static_cast<size_t>(place)].get();
    }

    static void begin() {}

    void prepare(Number& x) const { mpfr_set_prec(x.get(), precision); }

    static void set(Number& x, const Operand& operand) {
        const Real value = value_of(operand);
        mpfr_set(x.get(), value.get(), MPFR_RNDN);
    }

    static Real value(const Number& x) {
        Real value;
        mpfr_set(value.get(), x.get(), MPFR_RNDN);
        return value;
    }

    void set_scaled(Number& x, const mpz_class& integer, int scale) const {
        mpfr_set_z(x.get(), integer.get_mpz_t(), MPFR_RNDN);
        mpfr_mul(x.get(), x.get(), power(scale), MPFR_RNDN);
    }

    static void negate(Number& x) { mpfr_neg(x.get(), x.get(), MPFR_RNDN); }

    static bool is_negative(const Number& x) { return mpfr_signbit(x.get()) != 0; }

    int pairs_before_point(const Number& x) const {
        const int fewest = fewest_pairs_before_point(mpfr_get_exp(x.get()));
        return fewest + (mpfr_cmpabs(x.get(), power(fewest)) >= 0 ? 1 : 0);
    }

    void round_scaled(const Number& x, int scale, mpz_class& integer) {
        mpfr_mul(scaled.get(), x.get(), power(scale), MPFR_RNDN);
        mpfr_get_z(integer.get_mpz_t(), scaled.get(), MPFR_RNDN);
        mpz_abs(integer.get_mpz_t(), integer.get_mpz_t());
    }

    void unpack(const OCINumber& bytes, Number& x) { bench::unpack(*this, bytes, x); }

    void pack(const Number& x, OCINumber& bytes) { bench::pack(*this, x, bytes); }
};

template <int (*function)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t)>
struct Binary {
    void operator()(const Mpfr& /* mpfr */, MpfrNumber& result, const MpfrNumber& a,
                    const MpfrNumber& b) const {
        function(result.get(), a.get(), b.get(), MPFR_RNDN);
    }
};

template <int (*function)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)>
struct Unary {
    void operator()(const Mpfr& /* mpfr */, MpfrNumber& result, const MpfrNumber& a,
                    const MpfrNumber& /* b */) const {
        function(result.get(), a.get(), MPFR_RNDN);
    }
};

struct Compare {
    int operator()(const MpfrNumber& a, const MpfrNumber& b) const { return mpfr_cmp(a.get(), b.get()); }
};

std::unique_ptr<Contender> contender(const Row& row) {
    switch (row.operation) {
    case Operation::add:
        return arithmetic(Mpfr(row), row, Binary<mpfr_add>());
    case Operation::sub:
        return arithmetic(Mpfr(row), row, Binary<mpfr_sub>());
    case Operation::mul:
        return arithmetic(Mpfr(row), row, Binary<mpfr_mul>());
    case Operation::div:
        return arithmetic(Mpfr(row), row, Binary<mpfr_div>());
    case Operation::mod:
        return on_numbers(Mpfr(row), row, Binary<mpfr_fmod>());
    case Operation::compare:
        return comparison(Mpfr(row), row, Compare());
    case Operation::unpack:
        return unpacking(Mpfr(row), row);
    case Operation::pack:
        return packing(Mpfr(row), row);
    case Operation::sqrt:
        return on_numbers(Mpfr(row), row, Unary<mpfr_sqrt>());
    case Operation::exp:
        return on_numbers(Mpfr(row), row, Unary<mpfr_exp>());
    case Operation::ln:
        return on_numbers(Mpfr(row), row, Unary<mpfr_log>());
    case Operation::sin:
        return on_numbers(Mpfr(row), row, Unary<mpfr_sin>());
    case Operation::cos:
        return on_numbers(Mpfr(row), row, Unary<mpfr_cos>());
    case Operation::tan:
        return on_numbers(Mpfr(row), row, Unary<mpfr_tan>());
    case Operation::atan:
        return on_numbers(Mpfr(row), row, Unary<mpfr_atan>());
    case Operation::asin:
        return on_numbers(Mpfr(row), row, Unary<mpfr_asin>());
    case Operation::sinh:
        return on_numbers(Mpfr(row), row, Unary<mpfr_sinh>());
    case Operation::cosh:
        return on_numbers(Mpfr(row), row, Unary<mpfr_cosh>());
    case Operation::tanh:
        return on_numbers(Mpfr(row), row, Unary<mpfr_tanh>());
    case Operation::power:
        return on_numbers(Mpfr(row), row, Binary<mpfr_pow>());
    }
    return nullptr;
}

} // namespace

Participant mpfr() {
    return {"MPFR", mpfr_get_version(), Kind::binary_peer, true, contender};
}

} // namespace qzoci::bench
