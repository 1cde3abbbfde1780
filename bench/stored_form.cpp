#include "bench/stored_form.h"

#include <algorithm>
#include <cmath>

namespace qzoci::bench {
namespace {

constexpr int pair_base = 100;
constexpr ub1 sign_byte = 128;
constexpr ub1 terminator = 102;
constexpr int positive_bias = 193;
constexpr int negative_bias = 62;

} // namespace

DigitPairs pairs_of(const OCINumber& number) {
    const ub1* bytes = number.OCINumberPart;
    DigitPairs digits{};
    digits.is_negative = bytes[1] < sign_byte;
    digits.count = bytes[0] - 1;
    const ub1* mantissa = bytes + 2;
    if (digits.is_negative) {
        digits.exponent = negative_bias - bytes[1];
        digits.count -= mantissa[digits.count - 1] == terminator ? 1 : 0;
        std::transform(mantissa, mantissa + digits.count, digits.pairs.begin(),
                       [](ub1 byte) { return static_cast<unsigned char>(pair_base + 1 - byte); });
    } else {
        digits.exponent = bytes[1] - positive_bias;
        std::transform(mantissa, mantissa + digits.count, digits.pairs.begin(),
                       [](ub1 byte) { return static_cast<unsigned char>(byte - 1); });
    }
    return digits;
}

OCINumber number_of(const DigitPairs& digits) {
    int count = digits.count;
    while (digits.pairs[static_cast<size_t>(count) - 1] == 0) {
        --count;
    }
    OCINumber number;
    ub1* bytes = number.OCINumberPart;
    bytes[0] = static_cast<ub1>(count + 1);
    const unsigned char* pairs = digits.pairs.data();
    if (digits.is_negative) {
        bytes[1] = static_cast<ub1>(negative_bias - digits.exponent);
        std::transform(pairs, pairs + count, bytes + 2,
                       [](unsigned char pair) { return static_cast<ub1>(pair_base + 1 - pair); });
        if (count < most_pairs) {
            bytes[2 + count] = terminator;
            ++bytes[0];
        }
    } else {
        bytes[1] = static_cast<ub1>(positive_bias + digits.exponent);
        std::transform(pairs, pairs + count, bytes + 2,
                       [](unsigned char pair) { return static_cast<ub1>(pair + 1); });
    }
    return number;
}

void set_whole(mpz_class& whole, const DigitPairs& digits) {
    constexpr mp_size_t room = 4; /* 21 pairs take 140 bits, and mpn_set_str one limb more */
    mp_limb_t* limbs = mpz_limbs_write(whole.get_mpz_t(), room);
    const mp_size_t used =
        mpn_set_str(limbs, digits.pairs.data(), static_cast<size_t>(digits.count), pair_base);
    mpz_limbs_finish(whole.get_mpz_t(), used);
}

int fewest_pairs_before_point(long exponent) {
    constexpr double pairs_per_bit = 0.15051499783199059761; /* the logarithm of 2 to the base 100 */
    return static_cast<int>(std::floor(pairs_per_bit * (static_cast<double>(exponent) - 1))) + 1;
}

DigitPairs pairs_of_whole(const mpz_class& whole, int scale, bool is_negative) {
    constexpr size_t room = 4;
    std::array<mp_limb_t, room> limbs; // NOLINT(cppcoreguidelines-pro-type-member-init): used as far as set
    const auto size = static_cast<mp_size_t>(mpz_size(whole.get_mpz_t()));
    std::copy_n(mpz_limbs_read(whole.get_mpz_t()), size, limbs.begin()); /* mpn_get_str destroys them */
    std::array<unsigned char, most_pairs + 4> text;
    const size_t length = mpn_get_str(text.data(), pair_base, limbs.data(), size);
    const auto first = std::find_if(text.begin(), text.end(), [](unsigned char pair) { return pair != 0; });

    DigitPairs digits;
    digits.count = static_cast<int>(length) - static_cast<int>(first - text.begin());
    std::copy_n(first, digits.count, digits.pairs.begin());
    digits.exponent = scale + digits.count - 1;
    digits.is_negative = is_negative;
    return digits;
}

} // namespace qzoci::bench
