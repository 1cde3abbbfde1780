#include "fuzz/sides.h"

#include "fuzz/demand.h"

#include <string>

namespace qzoci::fuzz {
namespace {

using test::Form;
using test::Operands;
using test::Operation;
using test::ResultIs;
using test::SideEffect;

/* The result record as it was before the call. */
QZCICalcNumber result_before(const Operation& operation, const Operands& operands) {
    if (operation.form == Form::in_place || operation.form == Form::in_place_integer ||
        operands.result_is == ResultIs::first_operand) {
        return operands.a;
    }
    return operands.result_is == ResultIs::second_operand ? operands.b : test::poison_record();
}

bool failed(const Operation& operation, const SideEffect& effect) {
    return operation.form != Form::comparison && effect.status != OCI_SUCCESS;
}

} // namespace

SideEffect same_on_all_sides(const Operation& operation, const Operands& operands) {
    SideEffect plain = effect_of(operation, test::Side::plain, operands);
    for (const test::Side side : {test::Side::fast, test::Side::traced}) {
        const SideEffect other = effect_of(operation, side, operands);
        if (!(plain == other)) {
            fail("the " + std::string(side_name(side)) +
                 " side differs: " + difference_text(operation, operands, plain, other));
        }
    }
    const bool result_kept = plain.result == result_before(operation, operands) &&
                             plain.stored == test::poison_stored() &&
                             plain.text == std::string(plain.text.size(), '#');
    if (!plain.operands_unchanged || (failed(operation, plain) && !result_kept)) {
        fail("an operand, or the result of a failure, changed: " +
             difference_text(operation, operands, plain, plain));
    }
    return plain;
}

} // namespace qzoci::fuzz
