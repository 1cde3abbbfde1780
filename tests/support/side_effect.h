/* What an operation does on one side, to be compared with what it does on another. */
#ifndef QZOCI_TESTS_SUPPORT_SIDE_EFFECT_H
#define QZOCI_TESTS_SUPPORT_SIDE_EFFECT_H

#include "tests/support/operations.h"
#include "tests/support/records.h"

#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {

/* Bytes that no operation leaves. */
OCINumber poison_stored();

enum class ResultIs { own_record, first_operand, second_operand };

/* Those that the operation's form does not name are not looked at; in place, a is the operand. */
struct Operands {
    QZCICalcNumber a;
    QZCICalcNumber b;
    OCINumber stored = poison_stored();
    sb8 integer = 0;
    size_t text_size = 0;
    ResultIs result_is = ResultIs::own_record;
};

struct SideEffect {
    sb8 status;
    QZCICalcNumber result;
    OCINumber stored;               /* the packed number, all of whose 22 bytes are compared */
    std::string text;               /* the whole buffer, filled with '#' before the call */
    std::vector<std::string> lines; /* without debug lines */
    bool operands_unchanged;        /* those that are not the result */

    bool operator==(const SideEffect& other) const = default;
};

/* Every operation but qzci_knuth_div. Each operand and result is a variable of its own, so that an address
 * sanitizer sees an access beside it. */
SideEffect effect_of(const Operation& operation, Side side, const Operands& operands);

/* The operation with its operands and what two sides make of them, in several lines. */
std::string difference_text(const Operation& operation, const Operands& operands, const SideEffect& plain,
                            const SideEffect& other);

/* As find_operation, but an unknown name throws std::invalid_argument. */
const Operation& operation(std::string_view name);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_SUPPORT_SIDE_EFFECT_H */
