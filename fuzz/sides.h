/* The demand on every operation: the same on all sides. */
#ifndef QZOCI_FUZZ_SIDES_H
#define QZOCI_FUZZ_SIDES_H

#include "tests/support/side_effect.h"

namespace qzoci::fuzz {

/* Calls the operation on the traced, the plain and the fast side, which must agree in digits, flags, status, bytes,
 * text, error lines and lines on standard output, leave the operands alone, and leave the result alone where they
 * fail. Returns what the plain side did. */
test::SideEffect same_on_all_sides(const test::Operation& operation, const test::Operands& operands);

} // namespace qzoci::fuzz

#endif /* QZOCI_FUZZ_SIDES_H */
