/* The kernels between limbs and the bytes of the stored form.
 *
 * Six limbs hold 24 digit pairs: twenty, and up to three zero pairs before the first of them. A pair is stored
 * as pair + 1, or as 101 - pair where it is complemented. */
#ifndef QZOCI_LIMBS_STORED_FORM_H
#define QZOCI_LIMBS_STORED_FORM_H

#include "qzoci/limbs/limbs.h"

namespace qzoci::limbs {

inline constexpr int pairs_per_limb = 4;
inline constexpr int stored_pairs = 20;
inline constexpr int stored_limbs = 6;
inline constexpr std::uint8_t terminator_byte = 102;

/* The limb that the pair of this base-100 exponent belongs to. */
constexpr int limb_of_exponent(int exponent) {
    return units_limb - (exponent >> 2);
}

/* How many places of that limb lie above the pair. */
constexpr int place_in_limb(int exponent) {
    return 3 - (exponent & 3);
}

/* True where the digits that decide the packing lie in the first six limbs, see pack_portable: the first and
 * the last limb are 1..99999999. The limbs between are the kernel's to test. */
constexpr bool has_packable_ends(const Magnitude& a) {
    return a.limbs[a.first] - 1 < max_limb && a.limbs[a.last] - 1 < max_limb;
}

/* 24 bytes, eight a word, the first one lowest. */
inline constexpr int word_count = 3;
using Words = std::uint64_t[word_count];

/* Exactly count <= 20 bytes, zeros after them. */
void load_bytes(const std::uint8_t* bytes, int count, Words& words);

/* Packs the 24 pairs that the first six limbs of the operand are; see pack_portable. */
bool pack_pairs(const Magnitude& a, Words& pairs, bool complemented, std::uint8_t* bytes,
                PackedPairs& packed);

bool unpack_portable(const StoredPairs& pairs, int exponent, Limb* result, Extent& extent);
bool pack_portable(const Magnitude& a, bool complemented, std::uint8_t* bytes, PackedPairs& packed);

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_STORED_FORM_H */
