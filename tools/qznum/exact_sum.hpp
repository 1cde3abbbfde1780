/* Sums without rounding, whatever the order and the count of the summands. */
#ifndef QZNUM_EXACT_SUM_HPP
#define QZNUM_EXACT_SUM_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/number_bytes.hpp>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace qznum {

/* An exact decimal: base-100 digit pairs, the first of which counts pair * 100^exponent. Neither the first nor the
 * last pair is 0; zero has no pairs. */
struct ExactDecimal {
    bool negative = false;
    int exponent = 0;
    std::vector<ub1> pairs;

    /* All digits, plainly: "-12.5". */
    std::string text() const;
};

/* A number in its stored form, rounded once: half-up in magnitude to 20 pairs, as the engine packs records. */
struct Packed {
    OCINumber number{};
    std::string change; /* what packing changed, in words; empty: nothing */
};

Packed pack_exact(const ExactDecimal& value);

/* The mathematical quotient by a count, packed; not the engine's division, some of whose quotients differ.
 * Precondition: count is 1 .. 2^56. */
Packed pack_mean(const ExactDecimal& sum, std::size_t count);

/* Counts of units of each power of 100 that a stored number's pair can have, from 100^62 down to 100^-84. That is
 * wider than the engine's record, which ends at 100^-80: no digit of a summand is lost. Exact for 2^56 summands. */
class ExactSum {
public:
    /* Precondition: the layout of well-formed bytes, not infinite. */
    void add(const qzoci::number_layout& number);

    void merge(const ExactSum& other);

    ExactDecimal value() const;

private:
    static constexpr int lowest_weight = -84;
    static constexpr int highest_weight = 62 + 10; /* room for what is carried out of the summands' highest */

    using Units = std::array<sb8, highest_weight - lowest_weight + 1>; /* from the lowest weight up */

    static bool carry(Units& units);

    Units units_{};
};

} // namespace qznum

#endif /* QZNUM_EXACT_SUM_HPP */
