/* Stored numbers for those who are not the engine: from bytes to a whole number of digit pairs, and back. */
#ifndef QZOCI_BENCH_STORED_FORM_H
#define QZOCI_BENCH_STORED_FORM_H

#include "qzoci/oci_types.h"

#include <gmpxx.h>

#include <array>

namespace qzoci::bench {

inline constexpr int most_pairs = 20;

/* 100^exponent times the number that the pairs spell when the point stands after the first one. Not zero, not
 * infinite; the first pair is not 0. */
struct DigitPairs {
    std::array<unsigned char, most_pairs + 2> pairs; /* room for what mpn_get_str writes */
    int count;
    int exponent;
    bool is_negative;
};

DigitPairs pairs_of(const OCINumber& number);

/* At most most_pairs pairs. Trailing zero pairs are left out. */
OCINumber number_of(const DigitPairs& digits);

/* The pairs as a whole number, its point after the last one. */
void set_whole(mpz_class& whole, const DigitPairs& digits);

/* whole * 100^scale, whole > 0 and below 100^21, its last pair 0 where it has 21. */
DigitPairs pairs_of_whole(const mpz_class& whole, int scale, bool is_negative);

/* The smallest k that numbers of 2^(exponent - 1) to 2^exponent can have with 100^(k-1) <= x < 100^k. The largest is
 * one more, or the same. */
int fewest_pairs_before_point(long exponent);

/* Scales 100^k that numbers between bytes and records are multiplied by have k of at most this magnitude. */
inline constexpr int largest_scale = 80;

/* The number by a contender's own means. Peer has
 *     void set_scaled(Number&, const mpz_class& whole, int scale)        whole * 100^scale
 *     void negate(Number&) */
template <typename Peer>
void unpack(Peer& peer, const OCINumber& number, typename Peer::Number& x) {
    const DigitPairs digits = pairs_of(number);
    set_whole(peer.whole, digits);
    peer.set_scaled(x, peer.whole, digits.exponent - digits.count + 1);
    if (digits.is_negative) {
        peer.negate(x);
    }
}

/* The bytes by a contender's own means. Peer has
 *     int pairs_before_point(const Number&)      the k with 100^(k-1) <= |x| < 100^k
 *     void round_scaled(const Number&, int scale, mpz_class& whole)      |x| * 100^scale, to nearest
 *     bool is_negative(const Number&) */
template <typename Peer>
void pack(Peer& peer, const typename Peer::Number& x, OCINumber& number) {
    const int scale = most_pairs - peer.pairs_before_point(x);
    peer.round_scaled(x, scale, peer.whole);
    number = number_of(pairs_of_whole(peer.whole, -scale, peer.is_negative(x)));
}

} // namespace qzoci::bench

#endif /* QZOCI_BENCH_STORED_FORM_H */
