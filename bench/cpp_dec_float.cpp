#include "bench/participants.h"

#include <boost/multiprecision/cpp_dec_float.hpp>

#include <charconv>
#include <cstring>
#include <stdexcept>

namespace qzoci::bench {
namespace {

template <unsigned digits>
struct DecimalFloat {
    using Number = boost::multiprecision::number<boost::multiprecision::cpp_dec_float<digits>>;

    static void begin() {}

    static void prepare(Number& /* x */) {}

    static void set(Number& x, const Operand& operand) { x = Number(operand.units.get_str() + "e-160"); }

    static Real value(const Number& x) {
        Real value;
        mpfr_set_str(value.get(), x.str(0, std::ios_base::scientific).c_str(), 10, MPFR_RNDN);
        return value;
    }

    /* Text is the only way in and out that keeps the digits. */
    static void unpack(const OCINumber& bytes, Number& x) {
        const DigitPairs digit_pairs = pairs_of(bytes);
        std::array<char, 2 * most_pairs + 8> text;
        char* end = text.data();
        if (digit_pairs.is_negative) {
            *end++ = '-';
        }
        for (int i = 0; i < digit_pairs.count; ++i) {
            const unsigned char pair = digit_pairs.pairs[static_cast<size_t>(i)];
            *end++ = static_cast<char>('0' + pair / 10);
            *end++ = static_cast<char>('0' + pair % 10);
        }
        *end++ = 'e';
        const int exponent = 2 * (digit_pairs.exponent - digit_pairs.count + 1);
        end = std::to_chars(end, text.data() + text.size() - 1, exponent).ptr;
        *end = '\0';
        x.backend() = static_cast<const char*>(text.data());
    }

    static void pack(const Number& x, OCINumber& bytes) {
        /* The first digit stands alone in its pair where its place is even. */
        const bool stands_alone = x.backend().order() % 2 == 0;
        const int after_first = 2 * most_pairs - (stands_alone ? 2 : 1);
        const std::string text = x.str(after_first, std::ios_base::scientific);

        DigitPairs digit_pairs;
        digit_pairs.is_negative = text[0] == '-';
        std::array<char, 2 * most_pairs> digits_of_pairs;
        char* place = digits_of_pairs.data();
        const size_t exponent_at = text.find('e');
        const char* exponent_text = text.c_str() + exponent_at + (text[exponent_at + 1] == '+' ? 2 : 1);
        int exponent = 0;
        std::from_chars(exponent_text, text.c_str() + text.size(), exponent);
        if (exponent % 2 == 0) {
            *place++ = '0';
        }
        for (size_t i = digit_pairs.is_negative ? 1 : 0; i < exponent_at; ++i) {
            if (text[i] != '.' && place != digits_of_pairs.end()) {
                *place++ = text[i];
            }
        }
        std::fill(place, digits_of_pairs.end(), '0');
        digit_pairs.count = most_pairs;
        for (size_t i = 0; i < most_pairs; ++i) {
            digit_pairs.pairs[i] = static_cast<unsigned char>(10 * (digits_of_pairs[2 * i] - '0') +
                                                              digits_of_pairs[2 * i + 1] - '0');
        }
        digit_pairs.exponent = (exponent - (exponent % 2 != 0 ? 1 : 0)) / 2;
        bytes = number_of(digit_pairs);
    }
};

/* operate(result, a, b). */
template <typename Operate>
struct Binary {
    Operate operate;

    template <typename Peer, typename Number>
    void operator()(const Peer& /* peer */, Number& result, const Number& a, const Number& b) const {
        operate(result, a, b);
    }
};

template <typename Operate>
Binary(Operate) -> Binary<Operate>;

template <unsigned digits>
std::unique_ptr<Contender> contender_of(const Row& row) {
    using Peer = DecimalFloat<digits>;
    using Number = typename Peer::Number;
    const Peer peer;
    const auto arithmetic_row = [&](auto operate) { return arithmetic(peer, row, Binary{operate}); };
    const auto row_of = [&](auto operate) { return on_numbers(peer, row, Binary{operate}); };
    switch (row.operation) {
    case Operation::add:
        return arithmetic_row([](Number& r, const Number& a, const Number& b) { r = a + b; });
    case Operation::sub:
        return arithmetic_row([](Number& r, const Number& a, const Number& b) { r = a - b; });
    case Operation::mul:
        return arithmetic_row([](Number& r, const Number& a, const Number& b) { r = a * b; });
    case Operation::div:
        return arithmetic_row([](Number& r, const Number& a, const Number& b) { r = a / b; });
    case Operation::mod:
        return row_of([](Number& r, const Number& a, const Number& b) { r = fmod(a, b); });
    case Operation::compare:
        return comparison(peer, row, [](const Number& a, const Number& b) { return a.compare(b); });
    case Operation::unpack:
        return unpacking(peer, row);
    case Operation::pack:
        return packing(peer, row);
    case Operation::sqrt:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = sqrt(a); });
    case Operation::exp:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = exp(a); });
    case Operation::ln:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = log(a); });
    case Operation::sin:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = sin(a); });
    case Operation::cos:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = cos(a); });
    case Operation::tan:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = tan(a); });
    case Operation::atan:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = atan(a); });
    case Operation::asin:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = asin(a); });
    case Operation::sinh:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = sinh(a); });
    case Operation::cosh:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = cosh(a); });
    case Operation::tanh:
        return row_of([](Number& r, const Number& a, const Number& /* b */) { r = tanh(a); });
    case Operation::power:
        return row_of([](Number& r, const Number& a, const Number& b) { r = pow(a, b); });
    }
    return nullptr;
}

/* The precision is fixed when compiled; these are the digits that the rows need, in whole limbs of eight. */
std::unique_ptr<Contender> contender(const Row& row) {
    if (row.digits <= 168) {
        return contender_of<168>(row);
    }
    if (row.digits <= 184) {
        return contender_of<184>(row);
    }
    if (row.digits <= 200) {
        return contender_of<200>(row);
    }
    if (row.digits <= 296) {
        return contender_of<296>(row);
    }
    if (row.digits <= 320) {
        return contender_of<320>(row);
    }
    throw std::logic_error("a row that needs more digits than were compiled for");
}

} // namespace

Participant cpp_dec_float() {
    return {"cpp_dec_float", BOOST_LIB_VERSION, Kind::decimal_peer, false, contender};
}

} // namespace qzoci::bench
