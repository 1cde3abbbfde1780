/* What is timed: rows of one operation on operands of one class, with the results they must come to. */
#ifndef QZOCI_BENCH_ROWS_H
#define QZOCI_BENCH_ROWS_H

#include "qzoci/oci_calc_number.h"
#include "tests/accuracy/real.h"
#include "tests/independent/exact.h"

#include <string>
#include <string_view>
#include <vector>

namespace qzoci::bench {

using test::Operand;
using test::accuracy::power_of_ten;
using test::accuracy::Real;

enum class Operation {
    add,
    sub,
    mul,
    div,
    mod,
    compare,
    unpack,
    pack,
    sqrt,
    exp,
    ln,
    sin,
    cos,
    tan,
    atan,
    asin,
    sinh,
    cosh,
    tanh,
    power
};

/* The tables of the page. */
enum class Group {
    stored, /* between stored bytes: unpack both operands, operate, pack; also unpacking and packing alone */
    record, /* between numbers of the contender's own type */
    function, /* likewise */
    growth    /* likewise, against the number of significant limbs */
};

/* Operands in each row. */
inline constexpr size_t pair_count = 64;

struct Pair {
    Operand a;
    Operand b; /* zero where the operation takes one operand */
    OCINumber a_bytes;
    OCINumber b_bytes; /* both only in Group::stored */
    Real exact;        /* the mathematical result */
    Real laid_down;    /* what the engine must come to: exact, but for some quotients and remainders */
    Real unit;         /* in which errors are counted: 10^-160, or the last place of 20 pairs */

    /* Whether the laid-down result is deliberately not the mathematical one. */
    bool is_unlucky() const;
};

struct Row {
    Operation operation;
    Group group;
    std::string name;     /* of the operation */
    std::string operands; /* their class, or their range */
    std::vector<Pair> pairs;
    int digits;           /* decimal digits of the precision that gives results 160 fraction digits */
    double largest_error; /* that the engine may have, in units */
    int limbs;            /* significant limbs of each operand, in Group::growth */
};

std::vector<Row> all_rows();

/* The exact value of a record's limbs, which may exceed 99999999. Precondition: not infinite. */
Real value_of(const QZCICalcNumber& record);

/* The magnitude in units of 10^-160 as a number. */
Real value_of(const Operand& operand);

} // namespace qzoci::bench

#endif /* QZOCI_BENCH_ROWS_H */
