/* The arguments at which the elementary functions are measured: special ones first, then families drawn at
 * random in a fixed cycle. Each is a function of its index alone, so that a sample is the beginning of every
 * larger one. */
#ifndef QZOCI_TESTS_ACCURACY_ARGUMENTS_H
#define QZOCI_TESTS_ACCURACY_ARGUMENTS_H

#include "tests/accuracy/real.h"
#include "tests/independent/operands.h"

#include <string_view>
#include <vector>

namespace qzoci::test::accuracy {

/* Those members count that the function takes. */
struct Arguments {
    Operand first = zero_operand(1);
    Operand second = zero_operand(1);
    sword exponent = 0;
};

Real value_of(const Operand& operand);

/* The exact value of the limbs, whatever they are. Precondition: not infinite. */
Real value_of(const QZCICalcNumber& record);

/* As record_from_decimal takes it. */
Operand operand_of_decimal(std::string_view decimal);

/* The operand nearest to a number below 10^160 in magnitude. */
Operand nearest_operand(const Real& number);

/* A number between 0.02 and 0.047 with 160 digits after the point whose square, cut at limb 39, has 99999999
 * there and is rounded up. The product then gets 1 in that limb and no carry. */
Real number_of_last_nines(Random& random);

/* Where a function of one argument is measured. */
struct Domain {
    int smallest;         /* the main part: smallest <= x <= largest, in thousandths */
    int largest;          /* smallest < largest */
    int lowest_exponent;  /* and magnitudes 10^lowest_exponent .. 10^(highest_exponent + 1) */
    int highest_exponent; /* -160 .. 159 */
    bool is_signed;       /* those also with the sign - */
};

/* An argument of one of these families, in turn: thousandths through the main part; the main part
 * and every magnitude with few digits, with 40 digits and with all digits of the record; next to one of
 * the points. */
Operand random_operand(const Domain& domain, const std::vector<Operand>& points, Random& random, ub8 index);

} // namespace qzoci::test::accuracy

#endif /* QZOCI_TESTS_ACCURACY_ARGUMENTS_H */
