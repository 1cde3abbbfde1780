/* What an operation does on one side, to be compared with what it does on another. */
#ifndef QZOCI_TESTS_LIMBS_EFFECT_H
#define QZOCI_TESTS_LIMBS_EFFECT_H

#include "tests/support/operations.h"
#include "tests/support/records.h"

#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {

/* Bytes that no operation leaves. */
OCINumber poison_stored();

/* Those that the operation's form does not name are not looked at; in place, a is the operand. */
struct Operands {
    QZCICalcNumber a;
    QZCICalcNumber b;
    OCINumber stored = poison_stored();
};

struct Effect {
    sb8 status;
    QZCICalcNumber result;
    OCINumber stored;               /* the packed number, all of whose 22 bytes are compared */
    std::vector<std::string> lines; /* without debug lines */

    bool operator==(const Effect& other) const = default;
};

Effect effect_of(const Operation& operation, Side side, const Operands& operands);

/* The operation with its operands and what each side makes of them, in several lines. */
std::string difference_text(const Operation& operation, const Operands& operands, const Effect& plain,
                            const Effect& fast);

/* As find_operation, but an unknown name throws std::invalid_argument. */
const Operation& operation(std::string_view name);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_LIMBS_EFFECT_H */
