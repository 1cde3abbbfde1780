/* Any operation in memory of the caller's choice, with its debug lines; side_effect.h compares the sides. */
#ifndef QZOCI_TESTS_SUPPORT_CALLS_H
#define QZOCI_TESTS_SUPPORT_CALLS_H

#include "qzoci/oci_calc_number.h"
#include "tests/support/operations.h"
#include "tests/support/records.h"
#include "tests/support/side_effect.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {

/* Of the text buffers of these tests: the longest text and more. */
inline constexpr size_t max_text_size = 400;

/* Where a call finds its operands and leaves its results. Records may be shared. */
struct CallPlaces {
    const QZCICalcNumber* first;
    const QZCICalcNumber* second;
    const OCINumber* stored_operand;
    QZCICalcNumber* result;
    OCINumber* stored_result;
    char* text; /* operands.text_size bytes */
};

struct CallEffect {
    sb8 status;
    QZCICalcNumber result;
    OCINumber stored;
    std::string text;               /* the whole buffer */
    std::vector<std::string> lines; /* error and standard-output lines, and debug lines where they are kept */

    bool operator==(const CallEffect& other) const = default;
};

/* Shows status, result, stored number, text in hex and lines. */
void PrintTo(const CallEffect& effect, std::ostream* out);

/* Poisons the results at the places; in place, the result becomes the first operand. */
void prepare_results(const Operation& operation, const Operands& operands, const CallPlaces& places);

/* Calls with the operands that stand at the places already. */
CallEffect call_at(const Operation& operation, Side side, const Operands& operands, const CallPlaces& places);

/* Calls with operands and results in ordinary memory of their own. */
CallEffect effect_of_call(const Operation& operation, Side side, const Operands& operands);

/* Without debug lines, as on the sides that write none. */
CallEffect without_debug_lines(CallEffect effect);

/* Every operation but the limb routines, whose arrays have contracts of their own. */
std::vector<const Operation*> operations_on_numbers();

} // namespace qzoci::test

#endif /* QZOCI_TESTS_SUPPORT_CALLS_H */
