/* Every operation on records by its public name, callable in one way on each of the sides that must agree.
 *
 * The limb routines calc_add ... knuth_probe_quotient have shapes and contracts of their own and are called
 * directly; qzci_knuth_div, which drives them all, is here. */
#ifndef QZOCI_TESTS_SUPPORT_OPERATIONS_H
#define QZOCI_TESTS_SUPPORT_OPERATIONS_H

#include "qzoci/oci_calc_number.h"

#include <array>
#include <span>
#include <string_view>
#include <vector>

namespace qzoci::test {

/* How an operation is called. Results, flags, status, error lines and standard-output lines are the same on
 * all. An operation that writes no lines at all is one function, and all sides call it. */
enum class Side {
    public_function, /* as a host does; lines as qzoci_log_is_on answers */
    traced,          /* the engine's own function, with lines */
    plain,           /* without lines */
    fast             /* without lines, fast kernels allowed */
};

inline constexpr std::array all_sides = {Side::public_function, Side::traced, Side::plain, Side::fast};

std::string_view side_name(Side side);

/* What an operation takes; the order of the arguments is the one of the public header. */
enum class Form {
    create,              /* result */
    create_from_integer, /* result, integer */
    in_place,            /* result, which is the operand too */
    in_place_integer,    /* likewise, and integer */
    unary,               /* first, result */
    unary_integer,       /* first, integer, result */
    binary,              /* first, second, result */
    comparison,          /* first, second */
    from_stored,         /* result, stored_operand */
    to_stored,           /* first, stored_result */
    to_text,             /* first, text, text_size */
    integer_function,    /* integer */
    long_division        /* division */
};

/* The operands and results of qzci_knuth_div; limbs least significant first. */
struct LongDivision {
    sb1 m = 0;
    sb1 n = 0;
    std::vector<ub4> u;         /* m + n + 1 limbs, the last one spare */
    std::vector<ub4> v;         /* n + 1 limbs, the last one spare */
    std::vector<ub4> quotient;  /* m + 1 limbs */
    std::vector<ub4> remainder; /* n limbs */
};

/* Those members count that the operation's form names. An integer is narrowed to the operation's parameter.
 */
struct Arguments {
    const QZCICalcNumber* first = nullptr;
    const QZCICalcNumber* second = nullptr;
    QZCICalcNumber* result = nullptr;
    sb8 integer = 0;
    const OCINumber* stored_operand = nullptr;
    OCINumber* stored_result = nullptr;
    char* text = nullptr;
    size_t text_size = 0;
    LongDivision* division = nullptr;
};

struct Operation {
    std::string_view name;
    Form form;
    /* Returns the status, the value of a comparison or integer function, or 0 for a void operation. */
    sb8 (*call)(Side side, const Arguments& arguments);
};

std::span<const Operation> all_operations();

/* Null when there is none of that name. */
const Operation* find_operation(std::string_view name);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_SUPPORT_OPERATIONS_H */
