#include "qzoci/limbs/stored_form.h"

#include "qzoci/limbs/portable.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>

namespace qzoci::limbs {
namespace {

using std::uint64_t;
using std::uint8_t;

constexpr int word_bytes = 8;
static_assert(word_count * word_bytes == stored_limbs * pairs_per_limb);

/* The byte in each place of a word. */
constexpr uint64_t every(uint64_t byte) {
    return byte * 0x0101010101010101;
}

/* The compilers make one move of each of these two. */
template <std::size_t... Index>
uint64_t word_at(const uint8_t* bytes, std::index_sequence<Index...> /* places */) {
    return (... | (uint64_t{bytes[Index]} << (word_bytes * Index)));
}

template <std::size_t... Index>
void put_word(uint64_t word, uint8_t* bytes, std::index_sequence<Index...> /* places */) {
    (..., (bytes[Index] = static_cast<uint8_t>(word >> (word_bytes * Index))));
}

constexpr auto places = std::make_index_sequence<word_bytes>();

/* shift < 64 bits downward, and what comes in from the word above. */
constexpr uint64_t shifted_down(uint64_t word, uint64_t above, int shift) {
    return word >> shift | (above << 1) << (63 - shift);
}

/* The last count = 0..7 of the eight bytes before end, zeros after them. */
uint64_t last_bytes(const uint8_t* end, int count) {
    return word_at(end - word_bytes, places) >> 1 >> (63 - 8 * count);
}

void store_bytes(const Words& words, int count, uint8_t* bytes) {
    for (const uint64_t word : words) {
        if (count < word_bytes) {
            for (int i = 0; i < count; ++i) {
                bytes[i] = static_cast<uint8_t>(word >> (8 * i));
            }
            return;
        }
        put_word(word, bytes, places);
        bytes += word_bytes;
        count -= word_bytes;
    }
}

/* The words with what is given for one of their bytes added, an index at a time, as an array that is indexed by
 * a variable stays in memory. */
void add_at(Words& words, int index, uint64_t byte) {
    for (int i = 0; i < word_count; ++i) {
        const uint64_t shifted = byte << (8 * (index % word_bytes));
        words[i] += index / word_bytes == i ? shifted : 0;
    }
}

/* Ones in the first count bytes from word index on. */
constexpr uint64_t counted_bytes(int count, int index) {
    const int bytes = std::clamp(count - index * word_bytes, 0, word_bytes);
    return bytes == 0 ? 0 : ~uint64_t{0} >> (8 * (word_bytes - bytes));
}

/* The last non-zero byte, -1 when there is none. */
int last_byte(const Words& words) {
    for (int i = word_count - 1; i >= 0; --i) {
        if (words[i] != 0) {
            return i * word_bytes + (63 - std::countl_zero(words[i])) / 8;
        }
    }
    return -1;
}

/* Turns the bytes inside into pairs 0..99, the others into 0. False: a byte is no pair's. With lowest = 1 or 2
 * a byte of a pair lies in lowest..lowest + 99: its top bit is clear, lowest can be taken from it without a
 * borrow, and 28 added to the rest do not set the top bit. */
bool decode(uint64_t& word, uint64_t inside, bool complemented) {
    constexpr uint64_t top = every(128);
    const uint64_t above = (word | top) - every(complemented ? 2 : 1);
    const uint64_t rest = above & ~top & inside;
    if (((word | ~above | (rest + every(28))) & top & inside) != 0) {
        return false;
    }
    word = complemented ? (every(99) - rest) & inside : rest;
    return true;
}

/* Two limbs from eight pairs: neighbours joined to values below 10^4, and these to limbs. */
void join_pairs(uint64_t pairs, Limb* limbs) {
    constexpr uint64_t bytes = 0x00FF00FF00FF00FF;
    constexpr uint64_t halves = 0x0000FFFF0000FFFF;
    const uint64_t fours = (pairs & bytes) * 100 + (pairs >> 8 & bytes);
    const uint64_t eights = (fours & halves) * 10000 + (fours >> 16 & halves);
    limbs[0] = static_cast<Limb>(eights);
    limbs[1] = static_cast<Limb>(eights >> 32);
}

/* The four pairs of a limb, the most significant one lowest. v * 5243 >> 19 is v / 100 for v < 10^4: 5243 *
 * 100 exceeds 2^19 by 12, and 12 * 10^4 < 2^19. */
uint64_t split_limb(Limb limb) {
    const uint64_t fours = limb / 10000 | uint64_t{limb % 10000} << 32;
    const uint64_t hundreds = fours * 5243 >> 19 & 0x0000007F0000007F;
    const uint64_t pairs = hundreds | (fours - hundreds * 100) << 8;
    return (pairs | pairs >> 16) & 0xFFFFFFFF;
}

/* The 24 pairs of the first six limbs. False: a limb above 99999999. */
bool split_limbs(const Magnitude& a, Words& pairs) {
    Limb largest = 0;
    const auto pairs_of = [&](int i) {
        const Limb limb = a.first + i <= a.last ? a.limbs[a.first + i] : 0;
        largest = std::max(largest, limb);
        return split_limb(limb);
    };
    for (int i = 0; i < word_count; ++i) {
        const uint64_t upper = pairs_of(2 * i);
        pairs[i] = upper | pairs_of(2 * i + 1) << 32;
    }
    return largest < base;
}

/* The twentieth pair of 24 and those before it in its word. */
constexpr uint64_t twentieth = counted_bytes(stored_pairs, 2);

/* Moves the pairs up by up to three places and cuts the word of the twentieth after it; returns what was cut, the
 * first pair lowest. */
uint64_t keep_twenty(Words& pairs, int places_up) {
    const int shift = 8 * places_up;
    pairs[0] = shifted_down(pairs[0], pairs[1], shift);
    pairs[1] = shifted_down(pairs[1], pairs[2], shift);
    const uint64_t rest = pairs[2] >> shift;
    pairs[2] = rest & twentieth;
    return rest >> (8 * (stored_pairs % word_bytes));
}

} // namespace

/* A last word of fewer than eight bytes is read from its end. */
void load_bytes(const uint8_t* bytes, int count, Words& words) {
    words[0] = words[1] = words[2] = 0;
    if (count >= 2 * word_bytes) {
        words[0] = word_at(bytes, places);
        words[1] = word_at(bytes + word_bytes, places);
        words[2] = last_bytes(bytes + count, count - 2 * word_bytes);
    } else if (count >= word_bytes) {
        words[0] = word_at(bytes, places);
        words[1] = last_bytes(bytes + count, count - word_bytes);
    } else {
        for (int i = 0; i < count; ++i) {
            words[0] |= uint64_t{bytes[i]} << (8 * i);
        }
    }
}

/* Bytes that are no pair's decline: their weighted sums wrap and leave 0..99999999. */
bool unpack_portable(const StoredPairs& pairs, int exponent, Limb* result, Extent& extent) {
    Words words;
    load_bytes(pairs.bytes, pairs.count, words);
    for (int i = 0; i < word_count; ++i) {
        if (!decode(words[i], counted_bytes(pairs.count, i), pairs.complemented)) {
            return false;
        }
    }
    const int shift = 8 * place_in_limb(exponent);
    Limb limbs[stored_limbs];
    uint64_t below = 0;
    for (int i = 0; i < word_count; ++i) {
        join_pairs(words[i] << shift | (below >> 1) >> (63 - shift), limbs + 2 * i);
        below = words[i];
    }
    const int first = limb_of_exponent(exponent);
    const int kept = std::min(stored_limbs, limb_count - first);
    std::fill(result, result + limb_count, Limb{0});
    for (int i = 0; i < kept; ++i) {
        result[first + i] = limbs[i];
    }
    extent = extent_within(result, first, first + kept - 1);
    return true;
}

bool pack_pairs(const Magnitude& a, Words& pairs, bool complemented, uint8_t* bytes, PackedPairs& packed) {
    const int leading_zeros = std::countr_zero(pairs[0]) / 8;
    const uint64_t cut = keep_twenty(pairs, leading_zeros);
    int last = stored_pairs - 1;
    if ((cut & 255) >= 50) {
        constexpr uint64_t nines = every(99);
        last = last_byte({pairs[0] ^ nines, pairs[1] ^ nines, pairs[2] ^ (nines & twentieth)});
        if (last < 0) {
            return false;
        }
        add_at(pairs, last, 1);
    } else if (!complemented || (cut == 0 && a.last - a.first < stored_limbs)) {
        last = last_byte(pairs);
    }
    int length = last + 1;
    for (int i = 0; i < word_count; ++i) {
        const uint64_t written = pairs[i] & counted_bytes(length, i);
        pairs[i] = complemented ? every(101) - written : written + every(1);
    }
    if (complemented && length < stored_pairs) {
        add_at(pairs, length, terminator_byte - 101); /* the byte of a zero pair stands there */
        ++length;
    }
    store_bytes(pairs, length, bytes);
    packed = {leading_zeros, length};
    return true;
}

/* With F = 0..3 zero pairs before it in the first limb, which is not zero, the first significant pair is pair
 * F, the twentieth F + 19, and the deciding one F + 20 <= 23: all in the first six limbs. More than twenty are
 * significant where one after the twentieth is, in these limbs or because a seventh exists: the last limb is
 * not zero. Twenty pairs of 99 that round up change the exponent and decline. */
bool pack_portable(const Magnitude& a, bool complemented, uint8_t* bytes, PackedPairs& packed) {
    Words pairs;
    return has_packable_ends(a) && split_limbs(a, pairs) && pack_pairs(a, pairs, complemented, bytes, packed);
}

} // namespace qzoci::limbs
