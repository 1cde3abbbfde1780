/* Operand pairs, random and structured, each a function of its index alone. */
#ifndef QZOCI_TESTS_INDEPENDENT_OPERANDS_H
#define QZOCI_TESTS_INDEPENDENT_OPERANDS_H

#include "tests/independent/exact.h"

#include <span>
#include <string_view>
#include <vector>

namespace qzoci::test {

/* A generator of its own, so that a seed gives the same operands with every standard library. (For the same
 * with every compiler, no expression draws twice in an order the language leaves open.) */
class Random {
public:
    explicit Random(ub8 seed) : state_(seed) {}

    ub8 next();

    /* 0 .. count-1. */
    ub8 below(ub8 count) { return next() % count; }

    int between(int first, int last) {
        return first + static_cast<int>(below(static_cast<ub8>(last) - static_cast<ub8>(first) + 1));
    }

    bool one_in(ub8 count) { return below(count) == 0; }

    template <typename Value>
    Value pick(std::span<const Value> values) {
        return values[below(values.size())];
    }

private:
    ub8 state_;
};

/* An integer of this many base-100 digits, the first not 0, with runs of 00, 49, 50 and 99 more often than
 * chance would have them. */
mpz_class integer_of_pairs(Random& random, int count);

/* An integer of one to longest limbs, as limbs LEAST significant first, the last one not 0: uniform ones or
 * those at which carries and thresholds turn. */
std::vector<ub4> random_limbs(Random& random, int longest);

/* Of either sign. */
Operand signed_operand(Random& random, const mpz_class& units);

/* number to the power exponent. */
mpz_class power(unsigned long number, int exponent);

struct OperandPair {
    std::string_view family; /* what kind of operands */
    ub8 index;
    ub8 seed;
    Operand a;
    Operand b;
    ub4 factor; /* for the multiplication by an integer */
};

/* Any index; the families alternate in a fixed cycle of family_cycle pairs. */
OperandPair operand_pair(ub8 index);

inline constexpr ub8 family_cycle = 100;

} // namespace qzoci::test

#endif /* QZOCI_TESTS_INDEPENDENT_OPERANDS_H */
