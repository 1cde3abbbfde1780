/* Fast kernels on limb arrays. They know limbs, and the bytes of stored digits, only: no record, no sign, no
 * log.
 *
 * A fixed-point magnitude is 40 limbs, base 10^8, most significant first, with the point between limb 19 and
 * limb 20, as in a working record. Each kernel finishes one named stretch of the laid-down steps with the
 * very digits that the plain steps give, or returns false, with nothing written, where the condition for that
 * does not hold. The condition and its proof stand beside each kernel. */
#ifndef QZOCI_LIMBS_LIMBS_H
#define QZOCI_LIMBS_LIMBS_H

#include <atomic>
#include <cstdint>

namespace qzoci::limbs {

using Limb = std::uint32_t;

inline constexpr Limb base = 100000000;
inline constexpr Limb max_limb = base - 1;
inline constexpr int limb_count = 40;
inline constexpr int units_limb = 19;

/* An operand: the limbs first..last of an array of 40; those outside count as zero, whatever they hold.
 * Precondition of every kernel: 0 <= first <= last <= 39. */
struct Magnitude {
    const Limb* limbs;
    int first;
    int last;
};

/* The first and last non-zero limb of a result, both -1 when there is none. */
struct Extent {
    int first;
    int last;
};

/* Two operands of an addition or subtraction. Unlike elsewhere, both count over first..last, the union of
 * their own extents, and a comparison takes all 40 limbs. Precondition: 0 <= first <= last <= 39. */
struct Aligned {
    const Limb* a;
    const Limb* b;
    int first;
    int last;
};

/* Digit pairs of a stored number, most significant first: count of them, 0..20. A byte is pair + 1, or 101 -
 * pair where the pairs are complemented. */
struct StoredPairs {
    const std::uint8_t* bytes;
    int count;
    bool complemented;
};

/* What packing has found and written. */
struct PackedPairs {
    int leading_zeros; /* pairs of the first limb before its first non-zero one, 0..3 */
    int length;        /* bytes written, the terminator among them */
};

/* Kernels of one instruction set. A result array has room for 40 limbs, all of which are written, and may be
 * an operand's. */
struct Kernels {
    /* The sum. False also where a carry reaches limb 0. */
    bool (*sum)(const Aligned& operands, Limb* result, Extent& extent);

    /* The difference of the larger and the smaller operand, and which of them is larger. False also where all
     * limbs are equal. */
    bool (*difference)(const Aligned& operands, Limb* result, Extent& extent, bool& a_is_larger);

    /* The product rounded at limb 39: up from 50000000 in limb 40, a limb 39 of 99999999 up to 1 without a
     * carry. A limb above limb 0 is dropped. Precondition: a.first + b.first >= 19. */
    bool (*product)(const Magnitude& a, const Magnitude& b, Limb* result, Extent& extent);

    /* The product by 0.5, rounded as a product is. */
    bool (*half)(const Magnitude& a, Limb* result, Extent& extent);

    /* The quotient by one limb standing at limb 19 - shift, rounded at limb 39: up above 50000000 in limb 40,
     * with a carry. Precondition: 1 <= dividend.first + shift <= 39, 1 <= divisor <= 99999999. */
    bool (*quotient_by_limb)(const Magnitude& dividend, Limb divisor, int shift, Limb* result,
                             Extent& extent);

    /* The quotient by a divisor of two or more limbs, rounded at limb 39: up from 50000000 in limb 40, with a
     * carry. Precondition: divisor.first - dividend.first <= 18, divisor.limbs[divisor.first] non-zero. */
    bool (*quotient)(const Magnitude& dividend, const Magnitude& divisor, Limb* result, Extent& extent);

    /* What is left of the dividend after its division by a divisor of two or more limbs, down to the units.
     * Precondition: dividend.first <= divisor.first, dividend.last >= divisor.last, both leading limbs
     * non-zero. */
    bool (*remainder)(const Magnitude& dividend, const Magnitude& divisor, Limb* result, Extent& extent);

    /* What is left of the dividend after its division by one limb standing at limb last, down to the units.
     * Limbs above 99999999 count as they are. Never declines. Precondition: dividend.first <= last <=
     * dividend.last, divisor non-zero. */
    Extent (*remainder_by_limb)(const Magnitude& dividend, Limb divisor, int last, Limb* result);

    /* Limbs 0..19 of all 40, one added to limb 19 where add_unit is set. False also where that would carry. */
    bool (*truncate)(const Limb* limbs, bool add_unit, Limb* result, Extent& extent);

    /* The extent of any 40 limbs. Never declines. */
    Extent (*extent)(const Limb* limbs);

    /* 1, -1 or 0 as a is above, below or equal to b, any limbs. Never declines. */
    int (*compare)(const Aligned& operands);

    /* The limbs of stored pairs, the first of which has the base-100 exponent given, -80..79; pairs below limb
     * 39 are dropped. False where a byte is no pair's. */
    bool (*unpack)(const StoredPairs& stored, int exponent, Limb* result, Extent& extent);

    /* The significant pairs, rounded half-up to twenty and without 00 pairs at the end, as the bytes of a
     * stored number; the terminator 102 follows fewer than twenty complemented ones. Complemented pairs of
     * which more than twenty are not rounded up stay twenty. False also where twenty pairs of 99 round up, or
     * the first or last limb is zero. Writes the bytes of packed.length alone. */
    bool (*pack)(const Magnitude& a, bool complemented, std::uint8_t* bytes, PackedPairs& packed);
};

/* Which instruction set the kernels use; each includes those before it. */
enum class Level { portable = 1, avx2, avx512 };

/* The kernels in use; null before they are found out. Any order of accesses will do: every thread finds out the
 * same. */
extern std::atomic<const Kernels*> kernels_in_use;

/* Finds out the kernels for this CPU. */
const Kernels& find_kernels();

/* The kernels for this CPU, found out at the first call; safe to call from any thread. */
inline const Kernels& kernels() {
    const Kernels* const found = kernels_in_use.load(std::memory_order_relaxed);
    return found != nullptr ? *found : find_kernels();
}

/* Makes kernels() return those of the level, or of the best one below it that this CPU and build have;
 * returns that level. For tests. */
Level force_level(Level level);

/* The level that kernels() returns, when not forced. */
Level best_level();

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_LIMBS_H */
